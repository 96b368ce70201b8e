// Reading and composing whole messages through the message interface, and cutting text into packs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

class ParseSmsTest : public LogTest {
protected:
    int32_t parse(const std::string &pdu, uint32_t state)
    {
        std::memset(&in_, 0, sizeof in_);
        in_.index = 7;
        in_.state = state;
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

#define SC "0891682143658709F1"
#define HI_DELIVER SC "0405812143F500004250607080902302E834"

struct Parsed {
    const char *name;
    const char *pdu;
    uint32_t state;
    const char *fields;
};

class ParseSmsPdu : public ParseSmsTest, public ::testing::WithParamInterface<Parsed> {};

TEST_P(ParseSmsPdu, GivesEveryField)
{
    const std::string pdu = GetParam().pdu;
    AllocationScope heap;
    ASSERT_EQ(parse(pdu, GetParam().state), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(in_.length, std::strlen(GetParam().pdu));
    EXPECT_EQ(fields(), GetParam().fields);
}

INSTANTIATE_TEST_SUITE_P(
    Pdus, ParseSmsPdu,
    ::testing::Values(
        Parsed{"seven_bit", HI_DELIVER, 1,
               "7 1 +8612345678901 12345 [hi] 2 code 0 2024-05-06 07:08:09 part 0 0 0/0 report 0 0"},
        // U+4F60 U+597D; lowercase hex is accepted as well.
        Parsed{
            "ucs2_becomes_utf8",
            "0891682143658709f10405812143f50008425060708090230"
            "44f60597d",
            0,
            "7 0 +8612345678901 12345 [\xE4\xBD\xA0\xE5\xA5\xBD] 6 code 0 2024-05-06 07:08:09 part 0 0 0/0 report 0 0"},
        Parsed{"eight_bit_keeps_wire_order",
               SC "0405812143F500044250607080902304"
                  "41424344",
               1, "7 1 +8612345678901 12345 [ABCD] 4 code 2 2024-05-06 07:08:09 part 0 0 0/0 report 0 0"},
        // The report's time is the discharge time.
        Parsed{"report_without_user_data",
               SC "062A0581214"
                  "3F5425060708090234250607180902300",
               1, "7 1 +8612345678901 12345 [] 0 code 1 2024-05-06 17:08:09 part 0 0 0/0 report 1 0"},
        // TP-PI 04: only TP-UDL follows; no DCS means the default alphabet.
        Parsed{"report_failed_with_text",
               SC "062A0581214"
                  "3F54250607080902342506071809023"
                  "40"
                  "04"
                  "02E834",
               1, "7 1 +8612345678901 12345 [hi] 2 code 0 2024-05-06 17:08:09 part 0 0 0/0 report 1 4"},
        Parsed{"stored_submit", "0891682143658709f1110005812143f50000ff02e834", 3,
               "7 3 +8612345678901 12345 [hi] 2 code 0 0000-00-00 00:00:00 part 0 0 0/0 report 0 0"},
        Parsed{"concatenated_8bit_reference", SC "4405812143F50000425060708090800F0500032A0302E061391D44BFBF01", 1,
               "7 1 +8612345678901 12345 [part two] 8 code 0 2024-05-06 07:08:09 part 1 2A 2/3 report 0 0"},
        Parsed{"concatenated_16bit_reference", SC "4405812143F50000425060708090801006080412340302F0B09C0EA2DFDF", 1,
               "7 1 +8612345678901 12345 [part two] 8 code 0 2024-05-06 07:08:09 part 1 1234 2/3 report 0 0"},
        // TP-UDL 3 is too short for the header: the part numbers are kept, the
        // header octets are never read as text.
        Parsed{"header_past_udl",
               SC "440581214"
                  "3F50000425060708090230"
                  "3"
                  "050003120301E832",
               1, "7 1 +8612345678901 12345 [] 0 code 0 2024-05-06 07:08:09 part 1 12 1/3 report 0 0"},
        // ESC 0x47 is G breve in the Turkish single shift table only.
        Parsed{"national_single_shift",
               SC "4405812143F500004250607080908007"
                  "03240101D81C01",
               1, "7 1 +8612345678901 12345 [\xC4\x9E] 2 code 0 2024-05-06 07:08:09 part 0 0 0/0 report 0 0"}),
    [](const auto &info) { return std::string(info.param.name); });

struct Refusal {
    const char *name;
    const char *pdu;
    uint32_t state;
    const char *message;
};

class ParseSmsRefusal : public ParseSmsTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(ParseSmsRefusal, FailsWithItsLogLine)
{
    EXPECT_EQ(parse(GetParam().pdu, GetParam().state), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged(GetParam().message)) << log_text();
#endif
}

INSTANTIATE_TEST_SUITE_P(
    Pdus, ParseSmsRefusal,
    ::testing::Values(
        Refusal{"no_sc_digits", "000405812143F500004250607080902302E834", 1, "parse_centernum run unsuccessfully!"},
        Refusal{"sc_length_ten", "0A91682143658709F1FFFF", 1, "SCANum length parsed is out of the range!"},
        Refusal{"bad_first_char", "Z8", 1, "The CheckSCANum digit1 is incompatible!"},
        Refusal{"shorter_than_sc", "0891682143", 1, "The ParseSms pdu is shorter than its sc address!"},
        Refusal{"submit_as_received", "0891682143658709f1110005812143f50000ff02e834", 1,
                "The ParseSms sms type is not recognized!"},
        Refusal{"mti_three", "0891682143658709F10305812143F500004250607080902302E834", 1,
                "The tpdu_type in ParseSms is not recognized!"},
        Refusal{"unknown_state", "0891682143658709F10405812143F500004250607080902302E834", 4,
                "The ParseSms state is not recognized!"},
        Refusal{"year_99", "0891682143658709F10405812143F500009950607080902302E834", 1,
                "The ParseDeliverSms function's false status is 10506"},
        Refusal{"truncated_tpdu", "0891682143658709F10405812143", 1,
                "The ParseDeliverSms function's false status is 10506"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ParseSmsTest, UnknownStateStillStoresTheServiceCentre)
{
    EXPECT_EQ(parse("0891682143658709F10405812143F500004250607080902302E834", 4), -1);
    EXPECT_STREQ(out_.sca, "+8612345678901");
    EXPECT_EQ(out_.index, 7u);
}

TEST_F(ParseSmsTest, LengthLimitIs512Characters)
{
    std::string pdu = "0891682143658709F10405812143F500004250607080902302E834";
    pdu.resize(512, '0');
    EXPECT_EQ(parse(pdu, 1), 0);
    EXPECT_STREQ(out_.content, "hi");

    // 513 characters: the record's own field holds no terminator.
    std::memset(&in_, 0, sizeof in_);
    std::memset(in_.pdu, '0', sizeof in_.pdu);
    in_.state = 1;
    EXPECT_EQ(ParseSms(&in_, &out_), -1);
    EXPECT_EQ(in_.length, 513u);
}

TEST_F(ParseSmsTest, NullRecords)
{
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
    void septets(std::size_t n, char code = 0x61)
    {
        std::memset(msg_.content, code, n);
        msg_.content[n] = '\0';
        msg_.byContentLen = static_cast<uint8_t>(n);
    }
    void utf8_chars(std::size_t n, const char *ch)
    {
        std::string text;
        for (std::size_t i = 0; i < n; ++i) text += ch;
        std::strcpy(msg_.content, text.c_str());
        msg_.sms_content_code = SMS_CONTENT_UCS2;
    }
    // The TPDU octets of the composed PDU after the 9-octet service centre.
    std::string tpdu() const { return std::string(out_.pdu).substr(18); }

    SmsMessage msg_{};
    SmsSendPdu out_{};
};

struct Composed {
    const char *name;
    std::function<void(SmsMessage &)> set;
    const char *pdu;
};
class ComposeSmsPdu : public ComposeSmsTest, public ::testing::WithParamInterface<Composed> {};

TEST_P(ComposeSmsPdu, GivesTheLowercasePdu)
{
    septets(2);
    msg_.content[0] = 0x68;
    msg_.content[1] = 0x69;
    GetParam().set(msg_);
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_STREQ(out_.pdu, GetParam().pdu);
    EXPECT_EQ(m_stConfiguration.dwMsgClass, 4u);
    EXPECT_EQ(out_.wLength, std::strlen(out_.pdu));
    EXPECT_STREQ(m_szSCAddress, msg_.sca);
}

INSTANTIATE_TEST_SUITE_P(
    Messages, ComposeSmsPdu,
    ::testing::Values(Composed{"two_septets", [](SmsMessage &) {}, "0891682143658709f1110005812143f50000ff02e834"},
                      // '@' is septet 0: the count carries it.
                      Composed{"septet_zero",
                               [](SmsMessage &m) {
                                   m.content[0] = 0x00;
                                   m.content[1] = 0x41;
                               },
                               "0891682143658709f1110005812143f50000ff028020"},
                      Composed{"long_part",
                               [](SmsMessage &m) {
                                   m.sms_flag_type = 1;
                                   m.btTotalPack = 3;
                                   m.btPack = 2;
                                   m.mr = 0x1234;
                               },
                               "0891682143658709f1513405812143f50000ff09050003340302d069"},
                      Composed{"part_outside_the_total_gives_no_header",
                               [](SmsMessage &m) {
                                   m.sms_flag_type = 1;
                                   m.btTotalPack = 2;
                                   m.btPack = 3;
                               },
                               "0891682143658709f1110005812143f50000ff02e834"},
                      Composed{"national_single_shift", [](SmsMessage &m) { m.byteCoding = 1; },
                               "0891682143658709f1510005812143f50000ff070324010140a701"},
                      Composed{"status_report_request", [](SmsMessage &m) { m.dwStatusReportRequest = 1; },
                               "0891682143658709f1310005812143f50000ff02e834"},
                      Composed{"ucs2_high_octet_first",
                               [](SmsMessage &m) {
                                   std::strcpy(m.content, "A\xE2\x82\xAC");  // A, euro sign
                                   m.sms_content_code = SMS_CONTENT_UCS2;
                               },
                               "0891682143658709f1110005812143f50008ff04004120ac"},
                      Composed{"empty_destination_and_centre", [](SmsMessage &m) { m.szAddress[0] = m.sca[0] = '\0'; },
                               "0181110000810000ff02e834"},
                      Composed{"validity_59_seconds", [](SmsMessage &m) { std::strcpy(m.szValidity, "59"); },
                               "0891682143658709f1110005812143f50000ff02e834"},
                      Composed{"validity_hour", [](SmsMessage &m) { std::strcpy(m.szValidity, "3600abc"); },
                               "0891682143658709f1110005812143f500000b02e834"},
                      Composed{"validity_day", [](SmsMessage &m) { std::strcpy(m.szValidity, "86400"); },
                               "0891682143658709f1110005812143f50000a702e834"}),
    [](const auto &info) { return std::string(info.param.name); });

struct LengthCase {
    const char *name;
    uint32_t coding;
    uint32_t flag;
    std::size_t units;
    int32_t expected;
    const char *message;
};

class ComposeLength : public ComposeSmsTest, public ::testing::WithParamInterface<LengthCase> {};

TEST_P(ComposeLength, LimitsAtTheBoundary)
{
    const LengthCase &c = GetParam();
    msg_.sms_flag_type = c.flag;
    if (c.coding == SMS_CONTENT_7BIT)
        septets(c.units);
    else
        utf8_chars(c.units, "\xE4\xBD\xA0");  // three bytes, one character
    if (c.flag == 1) {
        msg_.btTotalPack = 2;
        msg_.btPack = 1;
    }
    EXPECT_EQ(ComposeSms(&msg_, &out_), c.expected);
#if SMSUTIL_TRACE_ENABLED
    if (c.message[0] != '\0') {
        EXPECT_TRUE(logged(c.message)) << log_text().substr(0, 2000);
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(Limits, ComposeLength,
                         ::testing::Values(LengthCase{"gsm_normal_160", SMS_CONTENT_7BIT, 0, 160, 0, ""},
                                           LengthCase{"gsm_normal_161", SMS_CONTENT_7BIT, 0, 161, -1,
                                                      "The ComposeSms 7 bit length is out of range in the normal sms!"},
                                           LengthCase{"gsm_long_153", SMS_CONTENT_7BIT, 1, 153, 0, ""},
                                           LengthCase{"gsm_long_154", SMS_CONTENT_7BIT, 1, 154, -1,
                                                      "The ComposeSms 7 bit length is out of range in the long sms!"},
                                           LengthCase{"ucs2_normal_70", SMS_CONTENT_UCS2, 0, 70, 0, ""},
                                           LengthCase{"ucs2_normal_71", SMS_CONTENT_UCS2, 0, 71, -1,
                                                      "The ComposeSms UCS2 length is out of range in the normal sms!"},
                                           LengthCase{"ucs2_long_67", SMS_CONTENT_UCS2, 1, 67, 0, ""},
                                           LengthCase{"ucs2_long_68", SMS_CONTENT_UCS2, 1, 68, -1,
                                                      "The ComposeSms UCS2 length is out of range in the long sms!"},
                                           LengthCase{
                                               "unchecked_flag_refused_by_encoder", SMS_CONTENT_7BIT, 2, 200, -1,
                                               "MSEncodeSubmit function run unsuccessfully! The ERROR CODE is 10502"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST_F(ComposeSmsTest, EightBitCodingIsRefused)
{
    septets(2);
    msg_.sms_content_code = SMS_CONTENT_8BIT;
    EXPECT_EQ(ComposeSms(&msg_, &out_), -1);
    EXPECT_EQ(out_.pdu[0], '\0');  // written only on success
}

struct AddressRefusal {
    const char *name;
    const char *address;
    const char *sca;
    std::vector<std::string> lines;  // logged on the way out
};
class ComposeAddressRefusal : public ComposeSmsTest, public ::testing::WithParamInterface<AddressRefusal> {};

TEST_P(ComposeAddressRefusal, FailsAndLeavesOutputAlone)
{
    septets(2);
    std::memset(msg_.szAddress, 0, sizeof msg_.szAddress);
    std::memset(msg_.sca, 0, sizeof msg_.sca);
    std::memcpy(msg_.szAddress, GetParam().address, std::min(std::strlen(GetParam().address), sizeof msg_.szAddress));
    std::memcpy(msg_.sca, GetParam().sca, std::min(std::strlen(GetParam().sca), sizeof msg_.sca));
    std::strcpy(out_.pdu, "untouched");
    EXPECT_EQ(ComposeSms(&msg_, &out_), -1);
    EXPECT_STREQ(out_.pdu, "untouched");
#if SMSUTIL_TRACE_ENABLED
    for (const std::string &line : GetParam().lines) EXPECT_TRUE(logged(line)) << line;
#endif
}
const char kDestinationRefused[] = "EWCheckDialNum in ConstructAddressData function run unsuccessfully!";
const char kScRefused[] = "EWCheckDialNum in ComposeSCAddrData function run unsuccessfully!";
const char kScCode[] = "ComposeSCAddrData function run unsuccessfully! The ERROR CODE is 10503";
INSTANTIATE_TEST_SUITE_P(
    Numbers, ComposeAddressRefusal,
    ::testing::Values(AddressRefusal{"letter_in_destination", "12a45", "+8612345678901", {kDestinationRefused}},
                      AddressRefusal{"plus_alone_destination", "+", "+8612345678901", {kDestinationRefused}},
                      // 21 digits fill the field with no terminator: refused, never cut to 20.
                      AddressRefusal{"destination_21_unterminated",
                                     "123456789012345678901",
                                     "+8612345678901",
                                     {"The length of dwlen is 21", kDestinationRefused}},
                      AddressRefusal{
                          "sca_21_unterminated",
                          "12345",
                          "123456789012345678901",
                          {"The dwlen is 21", kScRefused, kScCode, "ComposeSubmitSms function run unsuccessfully!"}},
                      AddressRefusal{"sca_illegal", "12345", "86-1", {kScRefused, kScCode}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ComposeSmsTest, NullRecordsAndNoHeap)
{
    EXPECT_EQ(ComposeSms(nullptr, &out_), -1);
    EXPECT_EQ(ComposeSms(&msg_, nullptr), -1);
    utf8_chars(70, "\xC3\xA9");
    AllocationScope scope;
    EXPECT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_EQ(scope.allocations(), 0u);
}

TEST(ConstructValidity, ThirtyDayMonthsAndThreeSixtyDayYears)
{
    const uint32_t saved = m_stConfiguration.dwValidity;
    m_stConfiguration.dwValidity = 31104000u + 2592000u + 86400u + 3600u + 60u + 1u;
    wms_gw_validity v;
    ConstructValidityData(&v);
    EXPECT_EQ(v.format, WMS_VP_RELATIVE);
    EXPECT_EQ(v.time.year, 0x01);
    EXPECT_EQ(v.time.month, 0x01);
    EXPECT_EQ(v.time.day, 0x01);
    EXPECT_EQ(v.time.hour, 0x01);
    EXPECT_EQ(v.time.minute, 0x01);
    EXPECT_EQ(v.time.second, 0x01);
    m_stConfiguration.dwValidity = saved;
}

std::string repeat(const char *s, std::size_t n)
{
    std::string out;
    for (std::size_t i = 0; i < n; ++i) out += s;
    return out;
}

class SplitPack : public LogTest {
protected:
    int32_t split(const std::string &text, int32_t pack_coding, uint32_t coding = 0)
    {
        std::memset(packs_, 0x5A, sizeof packs_);
        return sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding, coding, packs_);
    }
    SmsPack packs_[SMS_MAX_PACKS]{};
};

struct CountCase {
    const char *name;
    int32_t pack_coding;
    const char *unit;
    std::size_t count;
    int32_t packs;
    uint32_t first = 0;     // bytes of the first pack, when stated
    const char *tail = "";  // text after the units
    uint32_t coding = 0;
};

class SplitPackCount : public SplitPack, public ::testing::WithParamInterface<CountCase> {};

TEST_P(SplitPackCount, PacksAtTheBoundaries)
{
    const CountCase &c = GetParam();
    const std::string text = repeat(c.unit, c.count) + c.tail;
    EXPECT_EQ(split(text, c.pack_coding, c.coding), c.packs);
    if (c.packs < 1) return;
    if (c.first != 0) {
        EXPECT_EQ(packs_[0].length, c.first);
    }
    std::string joined;
    for (int32_t k = 0; k < c.packs; ++k) {
        EXPECT_EQ(packs_[k].length, std::strlen(packs_[k].content));
        joined += packs_[k].content;
    }
    EXPECT_EQ(joined, text);  // nothing lost, nothing doubled
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, SplitPackCount,
    ::testing::Values(CountCase{"ucs2_70", 0, "\xE4\xBD\xA0", 70, 1}, CountCase{"ucs2_71", 0, "\xE4\xBD\xA0", 71, 2},
                      CountCase{"ucs2_268", 0, "a", 268, 4}, CountCase{"ucs2_269", 0, "a", 269, -1},
                      CountCase{"gsm_160", 1, "a", 160, 1}, CountCase{"gsm_161", 1, "a", 161, 2},
                      CountCase{"gsm_612", 1, "a", 612, 4}, CountCase{"gsm_613", 1, "a", 613, -1},
                      CountCase{"ucs2_two_byte_71", 0, "\xC3\xA9", 71, 2, 134},  // 67 characters in the first
                      CountCase{"gsm_161_b", 1, "b", 161, 2, 153},
                      // 152 plain codes, then the euro sign's pair at codes 153 and 154.
                      CountCase{"escape_pair_never_straddles", 1, "x", 152, 2, 152,
                                "\xE2\x82\xAC"
                                "yyyyyyyyyy"},
                      CountCase{"unconvertible_character", 1, "abc", 1, -1, 0, "\xE4\xBD\xA0"},
                      // 117 Turkish euro signs (one code each) are 351 bytes of UTF-8; 118 do not fit.
                      CountCase{"turkish_117", 1, "\xE2\x82\xAC", 117, 1, 351, "", 1},
                      CountCase{"turkish_118", 1, "\xE2\x82\xAC", 118, -1, 0, "", 1},
                      CountCase{"gsm_escape_pairs_300", 1, "{", 300, 4},
                      CountCase{"gsm_escape_pairs_306", 1, "{", 306, -1}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SplitPack, EmptyTextAndBadArguments)
{
    EXPECT_EQ(split("", 0), 1);
    EXPECT_EQ(packs_[0].length, 0u);
    EXPECT_STREQ(packs_[0].content, "");
    EXPECT_EQ(sms_util_split_pack("abc", 0, 1, 0, packs_), 1);
    EXPECT_EQ(sms_util_split_pack("abc", -1, 1, 0, packs_), -1);
    EXPECT_EQ(sms_util_split_pack(nullptr, 3, 1, 0, packs_), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 1, 0, nullptr), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 2, 0, packs_), -1);
}

TEST_F(SplitPack, NoHeap)
{
    const std::string gsm = repeat("a", 600);
    const std::string ucs = repeat("\xE4\xBD\xA0", 200);
    AllocationScope scope;
    EXPECT_EQ(sms_util_split_pack(gsm.c_str(), 600, 1, 0, packs_), 4);
    EXPECT_EQ(sms_util_split_pack(ucs.c_str(), 600, 0, 0, packs_), 3);
    EXPECT_EQ(scope.allocations(), 0u);
}

struct Utf8CountCase {
    int32_t n;
    const char *text;
    int32_t bytes;
};
class FindUtf8Count : public ::testing::TestWithParam<Utf8CountCase> {};
TEST_P(FindUtf8Count, BytesOfTheFirstCharacters)
{
    EXPECT_EQ(find_utf8_count(GetParam().n, GetParam().text), GetParam().bytes);
}
INSTANTIATE_TEST_SUITE_P(Texts, FindUtf8Count,
                         ::testing::Values(Utf8CountCase{3,
                                                         "a\xC3\xA9\xE2\x82\xAC"
                                                         "b",
                                                         6},
                                           Utf8CountCase{2,
                                                         "\xDF\xBF\xE0\xA4\xA0"
                                                         "b",
                                                         5},  // 0xDF, 0xE0 leads
                                           Utf8CountCase{0, "abc", 0}, Utf8CountCase{10, "abc", 3},
                                           Utf8CountCase{2, "a\xE2\x82", 1},          // cut-short sequence
                                           Utf8CountCase{1, "\xF0\x9F\x98\x80", 3}),  // 0xF0 reads as a 3-byte lead
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(FindUtf8CountNull, Refused) { EXPECT_EQ(find_utf8_count(3, nullptr), -1); }

}  // namespace
