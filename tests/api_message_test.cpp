// Reading and composing whole messages through the message interface, and cutting text into packs.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "smsutil/sms_api.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

class ParseSmsTest : public LogTest {
protected:
    // Each parse starts with an empty log.
    int32_t parse(const std::string &pdu, uint32_t state)
    {
        LogTest::SetUp();
        std::memset(&in_, 0, sizeof in_);
        in_.index = 7, in_.state = state;
        std::strncpy(in_.pdu, pdu.c_str(), sizeof in_.pdu - 1);
        std::memset(&out_, 0xA5, sizeof out_);
        return ParseSms(&in_, &out_);
    }
    // What a row states, in one line.
    std::string fields() const
    {
        char text[1200];
        std::snprintf(text, sizeof text,
                      "%u %u %s %s [%s] %u code %u %04u-%02u-%02u %02u:%02u:%02u part %u %X %u/%u report %u %u",
                      out_.index, out_.state, out_.sca, out_.szAddress, out_.content, out_.byContentLen,
                      out_.sms_content_code, out_.wYear, out_.byMonth, out_.byDay, out_.byHour, out_.byMinute,
                      out_.bySecond, out_.sms_flag_type, out_.mr, out_.btPack, out_.btTotalPack, out_.byStatusReport,
                      out_.dwReportStatus);
        return text;
    }
    SmsReadPdu in_{};
    SmsMessage out_{};
};

TEST_F(ParseSmsTest, EveryCaseOfTheTable)
{
    std::istringstream table(read_file(std::string(SMSUTIL_TEST_DATA_DIR) + "/parse_sms.txt"));
    ASSERT_GT(table.str().size(), 1000u);  // the file was found and read
    std::string line;
    while (std::getline(table, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream row(line);
        uint32_t state = 0;
        std::string pdu, want;
        row >> state >> pdu >> std::ws;
        std::getline(row, want);
        SCOPED_TRACE(line);
        if (want[0] == '!') {
            EXPECT_EQ(parse(pdu, state), -1);
#if SMSUTIL_TRACE_ENABLED
            EXPECT_TRUE(logged(want.substr(2))) << log_text();
#endif
            continue;
        }
        AllocationScope heap;
        ASSERT_EQ(parse(pdu, state), 0);
        EXPECT_EQ(heap.allocations(), 0u);
        EXPECT_EQ(in_.length, pdu.size());
        EXPECT_EQ(fields(), want);
        // The sender's text ends in zeros, even where it ends early at an '@'.
        const std::size_t end = strnlen(out_.szAddress, sizeof out_.szAddress);
        for (std::size_t i = end; i < sizeof out_.szAddress; ++i) EXPECT_EQ(out_.szAddress[i], 0) << i;
        // Every byte of the record is written or cleared: other garbage gives the same record.
        const SmsMessage first = out_;
        std::memset(&out_, 0x5A, sizeof out_);
        ASSERT_EQ(ParseSms(&in_, &out_), 0);
        EXPECT_EQ(std::memcmp(&first, &out_, sizeof out_), 0);
    }
}

TEST_F(ParseSmsTest, BoundsAndNullRecords)
{
    std::string pdu = "0891682143658709F10405812143F500004250607080902302E834";
    pdu.resize(512, '0');
    EXPECT_EQ(parse(pdu, 1), 0);
    EXPECT_STREQ(out_.content, "hi");
    // 513 characters: the record's own field holds no terminator.
    std::memset(in_.pdu, '0', sizeof in_.pdu);
    EXPECT_EQ(ParseSms(&in_, &out_), -1);
    EXPECT_EQ(in_.length, 513u);

    EXPECT_EQ(ParseSms(nullptr, &out_), -1);
    EXPECT_EQ(ParseSms(&in_, nullptr), -1);
}

class ComposeSmsTest : public LogTest {
protected:
    void SetUp() override
    {
        LogTest::SetUp();
        std::memset(&msg_, 0, sizeof msg_);
        std::strcpy(msg_.szAddress, "12345");
        std::strcpy(msg_.sca, "+8612345678901");
        msg_.sms_content_code = SMS_CONTENT_7BIT;
        std::memset(&out_, 0, sizeof out_);
    }
    void text(const std::string &t, uint32_t coding)
    {
        std::memcpy(msg_.content, t.data(), t.size());
        msg_.content[t.size()] = '\0';
        msg_.byContentLen = static_cast<uint8_t>(t.size()), msg_.sms_content_code = coding;
    }
    void expect_logged(const std::vector<std::string> &lines) const
    {
#if SMSUTIL_TRACE_ENABLED
        for (const std::string &line : lines) EXPECT_TRUE(line.empty() || logged(line)) << line;
#else
        (void)lines;
#endif
    }
    SmsMessage msg_{};
    SmsSendPdu out_{};
};

std::string repeat(const std::string &s, std::size_t n)
{
    std::string out;
    for (std::size_t i = 0; i < n; ++i) out += s;
    return out;
}

using Setter = void (*)(SmsMessage &);
constexpr uint32_t G7 = SMS_CONTENT_7BIT, U2 = SMS_CONTENT_UCS2;
#define SC "0891682143658709f1"

// The composed SUBMITs of the rows that parse back are rows of the ParseSms table too.
TEST_F(ComposeSmsTest, GivesTheLowercasePdu)
{
    const std::tuple<std::string, uint32_t, Setter, const char *> cases[] = {
        {"hi", G7, nullptr, SC "110005812143f50000ff02e834"},
        {std::string("\0A", 2), G7, nullptr, SC "110005812143f50000ff028020"},
        {"hi", G7, [](SmsMessage &m) { m.sms_flag_type = 1, m.btTotalPack = 3, m.btPack = 2, m.mr = 0x1234; },
         SC "513405812143f50000ff09050003340302d069"},
        // A part outside the total gives no header.
        {"hi", G7, [](SmsMessage &m) { m.sms_flag_type = 1, m.btTotalPack = 2, m.btPack = 3; },
         SC "110005812143f50000ff02e834"},
        {"hi", G7, [](SmsMessage &m) { m.byteCoding = 1; }, SC "510005812143f50000ff070324010140a701"},
        {"hi", G7, [](SmsMessage &m) { m.dwStatusReportRequest = 1; }, SC "310005812143f50000ff02e834"},
        {"A\xE2\x82\xAC", U2, nullptr, SC "110005812143f50008ff04004120ac"},
        {"hi", G7, [](SmsMessage &m) { m.szAddress[0] = m.sca[0] = '\0'; }, "0181110000810000ff02e834"},
        {"hi", G7, [](SmsMessage &m) { std::strcpy(m.szValidity, "59"); }, SC "110005812143f50000ff02e834"},
        {"hi", G7, [](SmsMessage &m) { std::strcpy(m.szValidity, "3600abc"); }, SC "110005812143f500000b02e834"},
        {"hi", G7, [](SmsMessage &m) { std::strcpy(m.szValidity, "86400"); }, SC "110005812143f50000a702e834"},
        // Seconds are cut into years of 360 days and months of 30, which the
        // relative time then counts as 365 and 30 days.
        {"hi", G7, [](SmsMessage &m) { std::strcpy(m.szValidity, "31104000"); }, SC "110005812143f50000f502e834"},
        {"hi", G7, [](SmsMessage &m) { std::strcpy(m.szValidity, "33786061"); }, SC "110005812143f50000f902e834"}};
    for (const auto &[content, coding, set, pdu] : cases) {
        SetUp();
        text(content, coding);
        if (set != nullptr) set(msg_);
        AllocationScope heap;
        ASSERT_EQ(ComposeSms(&msg_, &out_), 0) << pdu;
        EXPECT_EQ(heap.allocations(), 0u);
        EXPECT_STREQ(out_.pdu, pdu);
        EXPECT_EQ(out_.wLength, std::strlen(out_.pdu));
        EXPECT_STREQ(m_szSCAddress, msg_.sca);
    }
}

TEST_F(ComposeSmsTest, LimitsLengthAtTheBoundaries)
{
    const std::string han = "\xE4\xBD\xA0";  // three bytes, one character
    const std::tuple<std::string, uint32_t, uint32_t, int32_t, const char *> cases[] = {
        {repeat("a", 160), G7, 0, 0, ""},
        {repeat("a", 161), G7, 0, -1, "The ComposeSms 7 bit length is out of range in the normal sms!"},
        {repeat("a", 153), G7, 1, 0, ""},
        {repeat("a", 154), G7, 1, -1, "The ComposeSms 7 bit length is out of range in the long sms!"},
        {repeat(han, 70), U2, 0, 0, ""},
        {repeat(han, 71), U2, 0, -1, "The ComposeSms UCS2 length is out of range in the normal sms!"},
        {repeat(han, 67), U2, 1, 0, ""},
        {repeat(han, 68), U2, 1, -1, "The ComposeSms UCS2 length is out of range in the long sms!"},
        {repeat("a", 200), G7, 2, -1, "MSEncodeSubmit function run unsuccessfully! The ERROR CODE is 10502"},
        {"hi", SMS_CONTENT_8BIT, 0, -1, ""}};
    for (const auto &[content, coding, flag, expected, message] : cases) {
        SetUp();
        text(content, coding);
        msg_.sms_flag_type = flag, msg_.btTotalPack = flag == 1 ? 2 : 0, msg_.btPack = flag == 1 ? 1 : 0;
        EXPECT_EQ(ComposeSms(&msg_, &out_), expected) << content.size() << " bytes, flag " << flag;
        EXPECT_EQ(out_.pdu[0] == '\0', expected != 0);  // written only on success
        expect_logged({message});
    }
    // Content with no terminator cannot be measured as UCS-2 without reading past it.
    SetUp();
    std::memset(msg_.content, 'a', sizeof msg_.content);
    msg_.sms_content_code = SMS_CONTENT_UCS2;
    EXPECT_EQ(ComposeSms(&msg_, &out_), -1);
    EXPECT_EQ(out_.pdu[0], '\0');
}

TEST_F(ComposeSmsTest, RefusedNumbersLeaveTheOutputAlone)
{
    const std::string dest = "EWCheckDialNum in ConstructAddressData function run unsuccessfully!";
    const std::string sc = "EWCheckDialNum in ComposeSCAddrData function run unsuccessfully!";
    const std::string sc_code = "ComposeSCAddrData function run unsuccessfully! The ERROR CODE is 10503";
    const std::string submit = "ComposeSubmitSms function run unsuccessfully!";
    // 21 digits fill the field with no terminator: refused, never cut to 20.
    const std::tuple<const char *, const char *, std::vector<std::string>> cases[] = {
        {"12a45", "+8612345678901", {dest}},
        {"+", "+8612345678901", {dest}},
        {"123456789012345678901", "+8612345678901", {"The length of dwlen is 21", dest}},
        {"12345", "123456789012345678901", {"The dwlen is 21", sc, sc_code, submit}},
        {"12345", "86-1", {sc, sc_code}}};
    for (const auto &[address, sca, lines] : cases) {
        SetUp();
        text("hi", SMS_CONTENT_7BIT);
        // Unterminated where the number fills the field.
        std::memset(msg_.szAddress, 0, sizeof msg_.szAddress);
        std::memset(msg_.sca, 0, sizeof msg_.sca);
        std::memcpy(msg_.szAddress, address, std::strlen(address));
        std::memcpy(msg_.sca, sca, std::strlen(sca));
        std::strcpy(out_.pdu, "untouched");
        EXPECT_EQ(ComposeSms(&msg_, &out_), -1) << address << " " << sca;
        EXPECT_STREQ(out_.pdu, "untouched");
        expect_logged(lines);
    }
}

TEST_F(ComposeSmsTest, NullRecords)
{
    EXPECT_EQ(ComposeSms(nullptr, &out_), -1);
    EXPECT_EQ(ComposeSms(&msg_, nullptr), -1);
}

TEST(SplitPack, PacksAtTheBoundaries)
{
    const std::string han = "\xE4\xBD\xA0", euro = "\xE2\x82\xAC";
    // Text, GSM (1) or UCS-2 (0) packs, national coding, packs expected and bytes of the first (0: not checked).
    const std::tuple<std::string, int32_t, uint32_t, int32_t, uint32_t> cases[] = {
        {repeat(han, 70), 0, 0, 1, 0},
        {repeat(han, 71), 0, 0, 2, 0},
        {repeat("a", 268), 0, 0, 4, 0},
        {repeat("a", 269), 0, 0, -1, 0},
        {repeat("a", 160), 1, 0, 1, 0},
        {repeat("a", 612), 1, 0, 4, 0},
        {repeat("a", 613), 1, 0, -1, 0},
        {repeat("\xC3\xA9", 71), 0, 0, 2, 134},
        {repeat("b", 161), 1, 0, 2, 153},
        // 152 plain codes, then the euro sign's pair at codes 153 and 154: the pair never straddles.
        {repeat("x", 152) + euro + "yyyyyyyyyy", 1, 0, 2, 152},
        {"abc" + han, 1, 0, -1, 0},
        // 117 Turkish euro signs (one code each) are 351 bytes of UTF-8; 118 do not fit.
        {repeat(euro, 117), 1, 1, 1, 351},
        {repeat(euro, 118), 1, 1, -1, 0},
        {repeat("{", 300), 1, 0, 4, 0},
        {repeat("{", 306), 1, 0, -1, 0},
        {"", 0, 0, 1, 0}};
    SmsPack out[SMS_MAX_PACKS];
    for (const auto &[text, pack_coding, coding, packs, first] : cases) {
        std::memset(out, 0x5A, sizeof out);
        AllocationScope heap;
        ASSERT_EQ(sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding, coding, out), packs)
            << text.size();
        EXPECT_EQ(heap.allocations(), 0u);
        EXPECT_TRUE(first == 0 || out[0].length == first) << out[0].length;
        std::string joined;
        for (int32_t k = 0; k < packs; ++k) {
            EXPECT_EQ(out[k].length, std::strlen(out[k].content));
            joined += out[k].content;
        }
        EXPECT_EQ(joined, packs < 1 ? "" : text);  // nothing lost, nothing doubled
    }
    EXPECT_EQ(sms_util_split_pack("abc", 0, 1, 0, out), 1);
    EXPECT_EQ(sms_util_split_pack("abc", -1, 1, 0, out), -1);
    EXPECT_EQ(sms_util_split_pack(nullptr, 3, 1, 0, out), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 1, 0, nullptr), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 2, 0, out), -1);
}

TEST(FindUtf8Count, BytesOfTheFirstCharacters)
{
    // 0xDF and 0xE0 are leads; a cut-short sequence ends the count; 0xF0 reads as a 3-byte lead.
    EXPECT_EQ(find_utf8_count(3, "a\xC3\xA9\xE2\x82\xAC\x62"), 6);
    EXPECT_EQ(find_utf8_count(2, "\xDF\xBF\xE0\xA4\xA0\x62"), 5);
    EXPECT_EQ(find_utf8_count(0, "abc"), 0);
    EXPECT_EQ(find_utf8_count(10, "abc"), 3);
    EXPECT_EQ(find_utf8_count(2, "a\xE2\x82"), 1);
    EXPECT_EQ(find_utf8_count(1, "\xF0\x9F\x98\x80"), 3);
    EXPECT_EQ(find_utf8_count(3, nullptr), -1);
}

}  // namespace
