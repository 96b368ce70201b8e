// `smsutil decode` run as a process: golden output for the examples, and
// the error objects and exit status of PDUs the library refuses.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "run_tool.hpp"
#include "smsutil/sms_pdu.h"
#include "smsutil/smsutil.h"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

struct GoldenCase {
    const char *name;  // golden file
    const char *example;
    std::vector<std::string> options;
};

class DecodeGolden : public ::testing::TestWithParam<GoldenCase> {};

TEST_P(DecodeGolden, MatchesTheCheckedInOutput)
{
    const auto &c = GetParam();
    std::vector<std::string> args{"decode"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    const ToolRun run = run_tool(args, read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/" + c.example));
    EXPECT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.out, read_file(std::string(SMSUTIL_GOLDEN_DIR) + "/" + c.name + ".json"));
}

INSTANTIATE_TEST_SUITE_P(
    Examples, DecodeGolden,
    ::testing::Values(GoldenCase{"deliver_7bit", "deliver_7bit.pdu", {}},
                      GoldenCase{"deliver_7bit_detail", "deliver_7bit.pdu", {"--gateway", "--detail"}},
                      GoldenCase{"deliver_ucs2", "deliver_ucs2.pdu", {}},
                      GoldenCase{"deliver_ucs2_detail", "deliver_ucs2.pdu", {"--gateway", "--detail"}},
                      GoldenCase{"status_report", "status_report.pdu", {}},
                      GoldenCase{"status_report_detail", "status_report.pdu", {"--gateway", "--detail"}},
                      GoldenCase{"long_message", "long_message.pdu", {}},
                      GoldenCase{"long_message_detail", "long_message.pdu", {"--gateway", "--detail"}},
                      // Each stored message decodes by the status its header gives, whatever --state says.
                      GoldenCase{"cmgl_session", "cmgl_session.txt", {"--gateway", "--state", "1"}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Decode, ArgumentsAndStandardInputGiveTheSameLines)
{
    const std::string pdus = read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/status_report.pdu");
    std::vector<std::string> args{"decode"};
    for (const auto &line : lines_of(pdus)) {
        if (!line.empty() && line[0] != '#') args.push_back(line);
    }
    ASSERT_EQ(args.size(), 3U);
    EXPECT_EQ(run_tool(args).out, run_tool({"decode"}, pdus).out);
}

TEST(Decode, GoodPdusStillPrintWhenAnotherFails)
{
    const std::string good = lines_of(read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/deliver_7bit.pdu")).at(1);
    const ToolRun run = run_tool({"decode", good, "zz", good});
    EXPECT_EQ(run.status, 1);
    const auto lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(json::parse(lines[0])["type"], "deliver");
    EXPECT_TRUE(json::parse(lines[1]).contains("error"));
    EXPECT_EQ(lines[2], lines[0]);
}

struct BadPduCase {
    const char *name;
    std::string pdu;
    const char *state;
    const char *error_part;
    json result;      // null when the library was not called
    json error_code;  // null when the library sets none
};

class DecodeBadPdu : public ::testing::TestWithParam<BadPduCase> {};

TEST_P(DecodeBadPdu, PrintsTheCauseAndExitsWithOne)
{
    const auto &c = GetParam();
    const ToolRun run = run_tool({"decode", "--gateway", "--state", c.state, c.pdu});
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.err, "");
    const auto lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 1U) << run.out;
    const json out = json::parse(lines[0]);
    // A line too long to be a PDU is shown by its start only.
    EXPECT_EQ(out["pdu"], c.pdu.size() > 352 ? c.pdu.substr(0, 40) + "..." : c.pdu);
    EXPECT_NE(out["error"].get<std::string>().find(c.error_part), std::string::npos) << out["error"];
    EXPECT_EQ(out["result"], c.result);
    EXPECT_EQ(out["error_code"], c.error_code);
}

// Service centre +8613912340000 in front of each TPDU.
const std::string kSc = "0891683119320400F0";
// DELIVER from 12345, 7-bit, time stamp 2024-05-06 07:08:09, text "hi".
const std::string kDeliverHead = "0405812143F50000";
const std::string kDeliverTail = "02E834";

INSTANTIATE_TEST_SUITE_P(
    Cases, DecodeBadPdu,
    ::testing::Values(
        BadPduCase{"NotHex", "0891zz", "1", "'z' (U+007A) at column 5 is not a hexadecimal digit", nullptr, nullptr},
        BadPduCase{"Words", "hello world", "1", "'h' (U+0068) at column 1", nullptr, nullptr},
        BadPduCase{"HeaderGivenAsPdu", "+CMT: ,36", "1", "'+' (U+002B) at column 1", nullptr, nullptr},
        BadPduCase{"NonAscii", "0\u00E9", "1", "'\u00E9' (U+00E9) at column 2", nullptr, nullptr},
        BadPduCase{"ControlCharacter", "08\t91", "1", "U+0009 at column 3", nullptr, nullptr},
        // A stray character is named before the length is judged.
        BadPduCase{"StrayCharacterInAnOddLine", "089x1", "1", "'x' (U+0078) at column 4", nullptr, nullptr},
        BadPduCase{"OddLength", kSc + "040", "1", "odd number", nullptr, nullptr},
        BadPduCase{"LongestLineIsJudgedAsAPdu", std::string(352, '0'), "1", "no digits", -1, nullptr},
        BadPduCase{"TooLong", std::string(353, '0'), "1", "longer than a PDU can be (more than 352", nullptr, nullptr},
        BadPduCase{"ServiceCentreCutShort", "0891683119", "1", "ends before", -1, nullptr},
        BadPduCase{"ServiceCentreTooLong", "0A91" + std::string(18, '1') + "0400", "1", "length 10", -1, nullptr},
        BadPduCase{"NoServiceCentre", "00" + kDeliverHead + "42506070809023" + kDeliverTail, "1", "no digits", -1,
                   nullptr},
        BadPduCase{"ReservedType", kSc + "03", "1", "TP-MTI 3", -1, nullptr},
        BadPduCase{"SubmitReadAsReceived", kSc + "1100058121", "1", "--state 2 or 3", -1, nullptr},
        BadPduCase{"YearOutOfRange", kSc + kDeliverHead + "99506070809023" + kDeliverTail, "1", "year 99", -1,
                   SMS_ERR_DECODE},
        BadPduCase{"AddressTooLong", kSc + "041581" + std::string(22, '1') + "0000" + "42506070809023" + kDeliverTail,
                   "0", "address longer than 20", -1, SMS_ERR_DECODE},
        // An escape followed by a code that the extension table leaves empty.
        BadPduCase{"EscapeWithoutCharacter", kSc + kDeliverHead + "42506070809023" + "029B20", "1", "does not convert",
                   -1, nullptr}),
    [](const auto &info) { return std::string(info.param.name); });

// A header's length that does not match is a problem beside the message;
// a header without its PDU fails with its line, and the rest goes on.
TEST(Decode, ModemHeadersThatDoNotFit)
{
    const std::string pdu = kSc + kDeliverHead + "42506070809023" + kDeliverTail;
    const ToolRun run = run_in_process({"decode"}, "+CMGR: 1,,19\n" + pdu + "\n+CMGL: 3,1,,18\nOK\n+CMT: ,18\n" + pdu);
    EXPECT_EQ(run.status, 1);
    const auto lines = json_lines(run.out);
    ASSERT_EQ(lines.size(), 3U);
    EXPECT_EQ(lines[0]["problems"], json::array({"+CMGR gives a length of 19 TPDU octets, the PDU holds 18"}));
    EXPECT_EQ(lines[0]["text"], "hi");
    EXPECT_EQ(lines[1], (json{{"index", 3},
                              {"stat", {{"code", 1}, {"name", "received read"}}},
                              {"line", 3},
                              {"pdu", ""},
                              {"error", "+CMGL header without a PDU line after it"},
                              {"result", nullptr},
                              {"error_code", nullptr}}));
    EXPECT_FALSE(lines[2].contains("problems"));
}

// Fields the default decoder adds and the flags that pick a view: each
// row decodes one PDU and checks one JSON pointer of its line.
struct FieldCase {
    const char *name;
    std::vector<std::string> args;
    std::string input;
    const char *pointer;
    json expected;
    int status = 0;
};

class DecodeField : public ::testing::TestWithParam<FieldCase> {};

TEST_P(DecodeField, PrintsTheField)
{
    const auto &c = GetParam();
    std::vector<std::string> args{"decode"};
    args.insert(args.end(), c.args.begin(), c.args.end());
    const ToolRun run = run_in_process(args, c.input);
    EXPECT_EQ(run.status, c.status) << run.out;
    const auto lines = json_lines(run.out);
    ASSERT_EQ(lines.size(), 1U) << run.out;
    EXPECT_EQ(lines[0].value(json::json_pointer(c.pointer), json("absent")), c.expected) << run.out;
}

// Class 0, 7-bit "hi" behind a locking shift to language 9, which has no table.
const std::string kUnknownShift = kSc + "4405812143F5001042506070809023070325010940A701";
// 8-bit data to port 2948 from 9200.
const std::string kPush = kSc + "4405812143F50004425060708090230A0605040B8423F0DEADBE";
const std::string kVoicemail = kSc + "0405812143F500C8" + "42506070809023" + kDeliverTail;
const std::string kNoCentre = "00" + kDeliverHead + "42506070809023" + kDeliverTail;
const std::string kSubmit = "0891683119320400f0010005812143f5000002e834";

INSTANTIATE_TEST_SUITE_P(
    Cases, DecodeField,
    ::testing::Values(
        FieldCase{"TimestampWithOffset", {kNoCentre}, "", "/timestamp", "2024-05-06T07:08:09+08:00"},
        FieldCase{"EmptyServiceCentre", {kNoCentre}, "", "/sca", ""},
        FieldCase{"Class", {kUnknownShift}, "", "/class", 0}, FieldCase{"NoClass", {kPush}, "", "/class", nullptr},
        FieldCase{"DcsOctet", {kPush}, "", "/dcs/octet", 4},
        FieldCase{"MessageWaiting",
                  {kVoicemail},
                  "",
                  "/dcs/message_waiting",
                  json{{"type", "voicemail"}, {"active", true}, {"store", false}}},
        FieldCase{"Ports", {kPush}, "", "/ports", json{{"source", 9200}, {"destination", 2948}}},
        FieldCase{"EightBitDataAsHex", {kPush}, "", "/user_data_hex", "deadbe"},
        FieldCase{"NoDataHexForText", {kVoicemail}, "", "/user_data_hex", "absent"},
        FieldCase{"Headers", {kPush}, "", "/headers", json::parse(R"([{"id":5,"data":"0b8423f0"}])")},
        FieldCase{"UnknownLanguageByNumber",
                  {kUnknownShift},
                  "",
                  "/national_language",
                  json{{"locking", 9}, {"single", nullptr}}},
        FieldCase{"Problem", {kUnknownShift}, "", "/problems/0/code", SMS_PDU_PROBLEM_UNKNOWN_LANGUAGE},
        FieldCase{"NoProblems", {kPush}, "", "/problems", "absent"},
        // The modem header's own problem joins the decoder's.
        FieldCase{"HeaderProblemAppended",
                  {},
                  "+CMGR: 1,,19\n" + kUnknownShift,
                  "/problems/1",
                  "+CMGR gives a length of 19 TPDU octets, the PDU holds 23"},
        FieldCase{"StatusReportCategory",
                  {},
                  lines_of(read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/status_report.pdu")).at(2),
                  "/status/category",
                  "permanent error"},
        FieldCase{"DecoderError", {kSc + "0405812143F5000042"}, "", "/result", SMS_PDU_ERR_TRUNCATED_TIMESTAMP, 1},
        // --gateway takes the state from the PDU's kind: a SUBMIT needs no --state.
        FieldCase{"GatewayStateFromKind", {"--gateway", kSubmit}, "", "/type", "submit"},
        FieldCase{"GatewayStateGiven", {"--gateway", "--state", "1", kSubmit}, "", "/result", -1, 1},
        FieldCase{"DetailFollowsTheKind", {"--detail", kSubmit}, "", "/detail/tpdu", "submit"},
        FieldCase{"GatewayHasNoNewFields", {"--gateway", kPush}, "", "/headers", "absent"},
        FieldCase{"CompareBothAgree", {"--compare", kVoicemail}, "", "/differences", json::array()},
        FieldCase{"CompareGatewayOnlyFails", {"--compare", kNoCentre}, "", "/differences", json::array({"error"})},
        FieldCase{"CompareLocalTimeOnly", {"--compare", kVoicemail}, "", "/gateway/timestamp", "2024-05-06T07:08:09"},
        // The gateway reads the header of 8-bit data as text.
        FieldCase{"CompareNamesTheField", {"--compare", kPush}, "", "/differences", json::array({"text"})}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Decode, SkipsBlankAndCommentLines)
{
    const std::string good = lines_of(read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/deliver_7bit.pdu")).at(1);
    const ToolRun run = run_tool({"decode"}, "\n# a comment\n  " + good + "  \r\n\n");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(lines_of(run.out).size(), 1U);
}

}  // namespace
}  // namespace smsutil::cli::test
