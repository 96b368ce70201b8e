// Modem answers as people paste them: which PDUs come out, with which
// header, and which lines are refused.
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

#include "modem_input.hpp"

namespace smsutil::cli {
namespace {

// "line index/stat length pdu" or "line error", "-" for what is absent.
std::string summary(const PduInput &input)
{
    const auto or_dash = [](const std::optional<uint32_t> &v) { return v ? std::to_string(*v) : std::string("-"); };
    std::string text = std::to_string(input.line) + " ";
    if (input.header) {
        text += or_dash(input.header->index) + "/" + or_dash(input.header->stat) + " " +
                std::to_string(input.header->length) + " ";
        if (!input.header->alpha.empty()) text += "'" + input.header->alpha + "' ";
    }
    return text + (input.error.empty() ? input.pdu : "error: " + input.error);
}

std::vector<std::string> read_all(const std::string &text)
{
    std::istringstream in(text);
    ModemReader reader(in);
    std::vector<std::string> items;
    while (auto input = reader.next()) items.push_back(summary(*input));
    return items;
}

struct BlockCase {
    const char *name;
    std::string text;
    std::vector<std::string> items;
};

class ModemBlock : public ::testing::TestWithParam<BlockCase> {};

TEST_P(ModemBlock, YieldsEachPduWithItsHeader) { EXPECT_EQ(read_all(GetParam().text), GetParam().items); }

INSTANTIATE_TEST_SUITE_P(
    Cases, ModemBlock,
    ::testing::Values(
        BlockCase{"ListInCrLf",
                  "AT+CMGL=4\r\r\n+CMGL: 1,0,,12\r\nAA\r\n+CMGL: 7,3,\"Bob, Jr\",9\r\nBB\r\n\r\nOK\r\n",
                  {"4 1/0 12 AA", "6 7/3 9 'Bob, Jr' BB"}},
        BlockCase{"CarriageReturnsOnly", "+CMGL: 2,1,,5\rAA\rOK\r", {"2 2/1 5 AA"}},
        BlockCase{"AlphaFieldLeftOut", "+CMGL: 2,1,5\nAA\n", {"2 2/1 5 AA"}},
        BlockCase{"ByteOrderMarkAndBlankLines",
                  "\xEF\xBB\xBF"
                  "+CMGR: 2,,30\n\n  \nAA\n",
                  {"4 -/2 30 AA"}},
        BlockCase{"ReadTakesTheIndexOfItsCommand",
                  "at+cmgr=17\n+CMGR: 1,,3\nAA\n+CMGR: 0,,3\nBB\n",
                  {"3 17/1 3 AA", "5 -/0 3 BB"}},
        BlockCase{"Unsolicited",
                  "+CMT: ,36\nAA\n+CDS: 25\nBB\n+CMT: \"\",4\nCC",
                  {"2 -/- 36 AA", "4 -/- 25 BB", "6 -/- 4 CC"}},
        BlockCase{"PlainPdusAndComments", "# saved\nAA\nBB\n", {"2 AA", "3 BB"}},
        // A header waits for its PDU across blank lines, but not across another line of the modem's.
        BlockCase{"HeaderWithoutPdu",
                  "+CMGL: 1,0,,3\n+CMGR: 0,,3\nOK\n+CMGL: 2,0,,3\n\nAA\n+CMT: ,36\n",
                  {"1 1/0 3 error: +CMGL header without a PDU line after it",
                   "2 -/0 3 error: +CMGR header without a PDU line after it", "6 2/0 3 AA",
                   "7 -/- 36 error: +CMT header without a PDU line after it"}},
        BlockCase{
            "TextModeListing",
            "+CMGL: 1,\"REC UNREAD\",\"+123\",,\"24/05/06\"\nhello\n",
            {"1 error: +CMGL of a text-mode listing (AT+CMGF=1); PDU mode (AT+CMGF=0) lists the PDUs", "2 hello"}},
        BlockCase{"StatusAboveThree", "+CMGL: 1,4,,3\nAA\n", {"1 error: +CMGL status 4 is not one of 0 to 3", "2 AA"}},
        BlockCase{"MalformedHeaders",
                  "+CMGL: 1,0\n+CMGR: x,,3\n+CMT: ,\n+CMT: \"open,3\n",
                  {"1 error: not a header of the form +CMGL: <index>,<stat>,[<alpha>],<length>",
                   "2 error: not a header of the form +CMGR: <stat>,[<alpha>],<length>",
                   "3 error: not a header of the form +CMT: [<alpha>],<length>",
                   "4 error: not a header of the form +CMT: [<alpha>],<length>"}}),
    [](const auto &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace smsutil::cli
