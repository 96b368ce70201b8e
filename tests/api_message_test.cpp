// Reading and composing whole messages through the message interface, and cutting text into packs.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

// A DELIVER from 12345 at 2024-05-06 07:08:09 with the given coding.
wms_gw_deliver make_deliver(uint8_t alphabet)
{
    wms_gw_deliver d;
    std::memset(&d, 0, sizeof d);
    d.address.number_plan = 1;
    d.address.number_of_digits = 5;
    wms_ts_ascii_to_bcd("12345", 5, d.address.digits);
    d.dcs.alphabet = alphabet;
    d.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    d.timestamp = wms_timestamp{0x24, 0x05, 0x06, 0x07, 0x08, 0x09, 8};
    return d;
}

// Letters, digits and the space share their septet code with ASCII.
void set_septets(wms_gw_user_data &ud, const char *ascii)
{
    ud.sm_len = static_cast<uint16_t>(std::strlen(ascii));
    std::memcpy(ud.sm_data, ascii, ud.sm_len);
}

// Service-centre prefix (+8612345678901) and the encoded TPDU as text.
std::string deliver_pdu(const wms_gw_deliver &deliver)
{
    wms_raw_tpdu raw{};
    if (wms_ts_encode_deliver(&deliver, &raw) != WMS_TS_STATUS_OK) return "";
    return "0891682143658709F1" + hex_of(raw);
}

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
    SmsReadPdu in_{};
    SmsMessage out_{};
};

TEST_F(ParseSmsTest, SevenBitDeliver)
{
    ASSERT_EQ(parse("0891682143658709F10405812143F500004250607080902302E834", 1), 0);
    EXPECT_EQ(in_.length, 54u);
    EXPECT_EQ(out_.index, 7u);
    EXPECT_EQ(out_.state, 1u);
    EXPECT_STREQ(out_.sca, "+8612345678901");
    EXPECT_STREQ(out_.szAddress, "12345");
    EXPECT_STREQ(out_.content, "hi");
    EXPECT_EQ(out_.byContentLen, 2);
    EXPECT_EQ(out_.sms_content_code, 0u);
    EXPECT_EQ(out_.wYear, 2024);
    EXPECT_EQ(out_.byMonth, 5);
    EXPECT_EQ(out_.byDay, 6);
    EXPECT_EQ(out_.byHour, 7);
    EXPECT_EQ(out_.byMinute, 8);
    EXPECT_EQ(out_.bySecond, 9);
    EXPECT_EQ(out_.sms_flag_type, 0u);
    EXPECT_EQ(out_.byStatusReport, 0);
}

TEST_F(ParseSmsTest, Ucs2DeliverBecomesUtf8)
{
    // U+4F60 U+597D, lowercase hex accepted as well
    ASSERT_EQ(parse("0891682143658709f10405812143f50008425060708090230" "44f60597d", 0), 0);
    EXPECT_STREQ(out_.content, "\xE4\xBD\xA0\xE5\xA5\xBD");
    EXPECT_EQ(out_.byContentLen, 6);
    EXPECT_EQ(out_.sms_content_code, 0u);
}

TEST_F(ParseSmsTest, EightBitDeliverKeepsWireOrder)
{
    ASSERT_EQ(parse("0891682143658709F10405812143F500044250607080902304" "41424344", 1), 0);
    EXPECT_EQ(out_.sms_content_code, 2u);
    EXPECT_STREQ(out_.content, "ABCD");
    EXPECT_EQ(out_.byContentLen, 4);
}

TEST_F(ParseSmsTest, StatusReportWithoutUserData)
{
    ASSERT_EQ(parse("0891682143658709F1062A0581214" "3F5425060708090234250607180902300", 1), 0);
    EXPECT_EQ(out_.byStatusReport, 1);
    EXPECT_STREQ(out_.szAddress, "12345");
    EXPECT_EQ(out_.dwReportStatus, static_cast<uint32_t>(SMS_STATUS_DELIVERED));
    EXPECT_STREQ(out_.content, "");
    EXPECT_EQ(out_.byContentLen, 0);
    EXPECT_EQ(out_.byHour, 17);  // from the discharge time
    EXPECT_EQ(out_.wYear, 2024);
}

TEST_F(ParseSmsTest, StatusReportWithUserDataAndFailedState)
{
    // TP-PI 04: only TP-UDL follows; no DCS means the default alphabet.
    ASSERT_EQ(parse("0891682143658709F1062A0581214" "3F54250607080902342506071809023" "40" "04" "02E834", 1), 0);
    EXPECT_EQ(out_.dwReportStatus, static_cast<uint32_t>(SMS_STATUS_FAILED));
    EXPECT_STREQ(out_.content, "hi");
    EXPECT_EQ(out_.sms_content_code, 0u);
}

TEST_F(ParseSmsTest, StoredSubmitTakesTheSubmitPathWhateverItsType)
{
    ASSERT_EQ(parse("0891682143658709f1110005812143f50000ff02e834", 3), 0);
    EXPECT_STREQ(out_.szAddress, "12345");
    EXPECT_STREQ(out_.content, "hi");
    EXPECT_EQ(out_.wYear, 0);
}

TEST_F(ParseSmsTest, DeliverStoredAsOutgoingIsReadAsSubmit)
{
    // Read as a SUBMIT, octet 2 (0x81) is an address length above 20.
    EXPECT_EQ(parse("0891682143658709F10405812143F500004250607080902302E834", 2), -1);
}

TEST_F(ParseSmsTest, ConcatenatedDeliverEightAndSixteenBitReference)
{
    wms_gw_deliver d = make_deliver(WMS_ALPHABET_GSM7);
    d.user_data_header_present = 1;
    d.user_data.num_headers = 1;
    d.user_data.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    d.user_data.headers[0].u.concat_8 = {0x2A, 3, 2};
    set_septets(d.user_data, "part two");
    ASSERT_EQ(parse(deliver_pdu(d), 1), 0);
    EXPECT_STREQ(out_.content, "part two");
    EXPECT_EQ(out_.sms_flag_type, 1u);
    EXPECT_EQ(out_.mr, 0x2A);
    EXPECT_EQ(out_.btTotalPack, 3);
    EXPECT_EQ(out_.btPack, 2);

    d.user_data.headers[0].header_id = WMS_UDH_CONCAT_16BIT_REF;
    d.user_data.headers[0].u.concat_16 = {0x1234, 3, 2};
    ASSERT_EQ(parse(deliver_pdu(d), 1), 0);
    EXPECT_STREQ(out_.content, "part two");
    EXPECT_EQ(out_.mr, 0x1234);
    EXPECT_EQ(out_.btPack, 2);

    // TP-UDL 3 is too short for the header: the part numbers are kept, the
    // header octets are never read as text.
    ASSERT_EQ(parse("0891682143658709F1" "440581214" "3F50000425060708090230" "3" "050003120301E832", 1), 0);
    EXPECT_STREQ(out_.content, "");
    EXPECT_EQ(out_.sms_flag_type, 1u);
    EXPECT_EQ(out_.mr, 0x12);
    EXPECT_EQ(out_.btTotalPack, 3);
    EXPECT_EQ(out_.btPack, 1);
}

TEST_F(ParseSmsTest, NationalLanguageHeaderSelectsTheShiftTable)
{
    wms_gw_deliver d = make_deliver(WMS_ALPHABET_GSM7);
    d.user_data_header_present = 1;
    d.user_data.num_headers = 1;
    d.user_data.headers[0].header_id = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
    d.user_data.headers[0].u.nat_lang_ss = {0x24, 1, 1};
    // ESC 0x47 is G breve in the Turkish single shift table only.
    d.user_data.sm_data[0] = 0x1B;
    d.user_data.sm_data[1] = 0x47;
    d.user_data.sm_len = 2;
    ASSERT_EQ(parse(deliver_pdu(d), 1), 0);
    EXPECT_STREQ(out_.content, "\xC4\x9E");
}

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

TEST_F(ParseSmsTest, NoHeapAllocation)
{
    const std::string pdu = "0891682143658709F10405812143F500004250607080902302E834";
    std::memset(&in_, 0, sizeof in_);
    std::strcpy(in_.pdu, pdu.c_str());
    in_.state = 1;
    AllocationScope scope;
    EXPECT_EQ(ParseSms(&in_, &out_), 0);
    EXPECT_EQ(scope.allocations(), 0u);
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

TEST_F(ComposeSmsTest, TwoSeptetsToTheKnownPdu)
{
    msg_.content[0] = 0x68;
    msg_.content[1] = 0x69;
    msg_.byContentLen = 2;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_STREQ(out_.pdu, "0891682143658709f1110005812143f50000ff02e834");
    EXPECT_EQ(out_.wLength, 44);
    EXPECT_EQ(m_stConfiguration.dwMsgClass, 4u);
    EXPECT_STREQ(m_szSCAddress, "+8612345678901");
}

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

INSTANTIATE_TEST_SUITE_P(
    Limits, ComposeLength,
    ::testing::Values(
        LengthCase{"gsm_normal_160", SMS_CONTENT_7BIT, 0, 160, 0, ""},
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
        LengthCase{"unchecked_flag_refused_by_encoder", SMS_CONTENT_7BIT, 2, 200, -1,
                   "MSEncodeSubmit function run unsuccessfully! The ERROR CODE is 10502"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ComposeSmsTest, EightBitCodingIsRefused)
{
    septets(2);
    msg_.sms_content_code = SMS_CONTENT_8BIT;
    EXPECT_EQ(ComposeSms(&msg_, &out_), -1);
    EXPECT_EQ(out_.pdu[0], '\0');  // written only on success
}

TEST_F(ComposeSmsTest, SeptetZeroIsCarriedByCount)
{
    msg_.content[0] = 0x00;  // '@'
    msg_.content[1] = 0x41;
    msg_.byContentLen = 2;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    // TP-UDL 2, then '@' 'A' packed: 00 | 41 << 7 = 0x2080 -> 80 20
    EXPECT_EQ(tpdu().substr(tpdu().size() - 6), "028020");
}

TEST_F(ComposeSmsTest, LongPartCarriesConcatenationAndReference)
{
    septets(10);
    msg_.sms_flag_type = 1;
    msg_.btTotalPack = 3;
    msg_.btPack = 2;
    msg_.mr = 0x1234;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    const std::string t = tpdu();
    EXPECT_EQ(t.substr(0, 4), "5134");            // UDHI + VPF relative + SUBMIT, TP-MR 0x34
    EXPECT_NE(t.find("0500033403" "02"), std::string::npos);  // UDHL 5, IEI 0, len 3, ref, total, part

    // Read back as a stored outgoing message, the part is recognised again.
    SmsReadPdu in{};
    in.state = 2;
    std::strcpy(in.pdu, out_.pdu);
    SmsMessage back{};
    ASSERT_EQ(ParseSms(&in, &back), 0);
    EXPECT_STREQ(back.content, "aaaaaaaaaa");
    EXPECT_EQ(back.sms_flag_type, 1u);
    EXPECT_EQ(back.btTotalPack, 3);
    EXPECT_EQ(back.btPack, 2);
    EXPECT_EQ(back.mr, 0x34);
}

TEST_F(ComposeSmsTest, PartNumberOutsideTheTotalGivesNoHeader)
{
    septets(10);
    msg_.sms_flag_type = 1;
    msg_.btTotalPack = 2;
    msg_.btPack = 3;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_EQ(tpdu().substr(0, 2), "11");
}

TEST_F(ComposeSmsTest, NationalLanguageSingleShiftElement)
{
    septets(4);
    msg_.byteCoding = 1;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_EQ(tpdu().substr(0, 2), "51");
    EXPECT_NE(tpdu().find("03240101"), std::string::npos);  // UDHL 3, IEI 0x24, len 1, Turkish
}

struct ValidityCase {
    const char *text;
    const char *vp;
};
class ComposeValidity : public ComposeSmsTest, public ::testing::WithParamInterface<ValidityCase> {};

TEST_P(ComposeValidity, RelativePeriodOctet)
{
    septets(2);
    std::strcpy(msg_.szValidity, GetParam().text);
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    // first octet, MR, 05 81 21 43 f5, PID, DCS, then TP-VP
    EXPECT_EQ(tpdu().substr(18, 2), GetParam().vp);
}
INSTANTIATE_TEST_SUITE_P(Seconds, ComposeValidity,
                         ::testing::Values(ValidityCase{"", "ff"}, ValidityCase{"59", "ff"},
                                           ValidityCase{"3600", "0b"}, ValidityCase{"86400", "a7"},
                                           ValidityCase{"3600abc", "0b"}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST_F(ComposeSmsTest, StatusReportRequestAndLowercaseOutput)
{
    septets(3);
    msg_.dwStatusReportRequest = 1;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_EQ(tpdu().substr(0, 2), "31");
    for (const char *p = out_.pdu; *p != '\0'; ++p) EXPECT_FALSE(std::isupper(static_cast<unsigned char>(*p)));
    EXPECT_EQ(out_.wLength, std::strlen(out_.pdu));
}

TEST_F(ComposeSmsTest, Ucs2TextIsSentHighOctetFirst)
{
    std::strcpy(msg_.content, "A\xE2\x82\xAC");  // A, euro sign
    msg_.sms_content_code = SMS_CONTENT_UCS2;
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    const std::string t = tpdu();
    EXPECT_EQ(t.substr(16, 2), "08");                  // DCS UCS-2
    EXPECT_EQ(t.substr(t.size() - 10), "04004120ac");  // UDL 4, 0041 20AC
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
    ::testing::Values(
        AddressRefusal{"letter_in_destination", "12a45", "+8612345678901", {kDestinationRefused}},
        AddressRefusal{"plus_alone_destination", "+", "+8612345678901", {kDestinationRefused}},
        // 21 digits fill the field with no terminator: refused, never cut to 20.
        AddressRefusal{"destination_21_unterminated", "123456789012345678901", "+8612345678901",
                       {"The length of dwlen is 21", kDestinationRefused}},
        AddressRefusal{"sca_21_unterminated", "12345", "123456789012345678901",
                       {"The dwlen is 21", kScRefused, kScCode, "ComposeSubmitSms function run unsuccessfully!"}},
        AddressRefusal{"sca_illegal", "12345", "86-1", {kScRefused, kScCode}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(ComposeSmsTest, EmptyDestinationAndEmptyServiceCentre)
{
    septets(2);
    msg_.szAddress[0] = '\0';
    msg_.sca[0] = '\0';
    ASSERT_EQ(ComposeSms(&msg_, &out_), 0);
    EXPECT_EQ(std::string(out_.pdu).substr(0, 12), "018111000081");
}

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
};

class SplitPackCount : public SplitPack, public ::testing::WithParamInterface<CountCase> {};

TEST_P(SplitPackCount, PacksAtTheBoundaries)
{
    const CountCase &c = GetParam();
    const std::string text = repeat(c.unit, c.count);
    EXPECT_EQ(split(text, c.pack_coding), c.packs);
    if (c.packs < 1) return;
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
                      CountCase{"gsm_escape_pairs_300", 1, "{", 300, 4}, CountCase{"gsm_escape_pairs_306", 1, "{", 306, -1}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SplitPack, Ucs2PackSizes)
{
    ASSERT_EQ(split(repeat("\xC3\xA9", 71), 0), 2);
    EXPECT_EQ(packs_[0].length, 134u);  // 67 two-byte characters
    EXPECT_EQ(packs_[1].length, 8u);
}

TEST_F(SplitPack, SevenBitPackSizesAndLog)
{
    ASSERT_EQ(split(repeat("b", 161), 1), 2);
    EXPECT_EQ(packs_[0].length, 153u);
    EXPECT_EQ(packs_[1].length, 8u);
}

TEST_F(SplitPack, EscapePairNeverStraddlesPacks)
{
    // 152 plain codes, then the euro sign's pair at codes 153 and 154.
    const std::string text = repeat("x", 152) + "\xE2\x82\xAC" + repeat("y", 20);
    ASSERT_EQ(split(text, 1), 2);
    EXPECT_EQ(packs_[0].length, 152u);
    EXPECT_EQ(std::string(packs_[1].content).substr(0, 3), "\xE2\x82\xAC");
}

TEST_F(SplitPack, TooManySevenBitPacksIsLogged)
{
    EXPECT_EQ(split(repeat("a", 613), 1), -1);
}

TEST_F(SplitPack, UnconvertibleCharacterFails)
{
    EXPECT_EQ(split("abc\xE4\xBD\xA0", 1), -1);
}

TEST_F(SplitPack, SinglePackThatDoesNotFitIsRefused)
{
    // 118 Turkish euro signs (one code each) are 354 bytes of UTF-8.
    EXPECT_EQ(split(repeat("\xE2\x82\xAC", 118), 1, 1), -1);
    EXPECT_EQ(split(repeat("\xE2\x82\xAC", 117), 1, 1), 1);
    EXPECT_EQ(packs_[0].length, 351u);
}

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
                         ::testing::Values(Utf8CountCase{3, "a\xC3\xA9\xE2\x82\xAC" "b", 6},
                                           Utf8CountCase{2, "\xDF\xBF\xE0\xA4\xA0" "b", 5},  // 0xDF, 0xE0 leads
                                           Utf8CountCase{0, "abc", 0}, Utf8CountCase{10, "abc", 3},
                                           Utf8CountCase{2, "a\xE2\x82", 1},  // cut-short sequence
                                           Utf8CountCase{1, "\xF0\x9F\x98\x80", 3}),  // 0xF0 reads as a 3-byte lead
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(FindUtf8CountNull, Refused) { EXPECT_EQ(find_utf8_count(3, nullptr), -1); }

}  // namespace
