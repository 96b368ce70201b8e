#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/sms_api.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"
#include "support/pdu_builder.hpp"

namespace {

using smsutil::test::deliver_pdu;
using smsutil::test::make_deliver;

class ParseSmsTest : public smsutil::test::LogTest {
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ParseSms", "ParseSms function run successfully:state 0 or 1!"));
    EXPECT_TRUE(logged_by("ParseSms", "The src address is: 12345"));
#endif
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ParseSms", "ParseSms function run successfully:sms status report!"));
    EXPECT_TRUE(logged_by("ParseSms", "The status report  is 0"));
#endif
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ParseSms", "ParseSms function run successfully:state 2 or 3!"));
#endif
}

TEST_F(ParseSmsTest, DeliverStoredAsOutgoingIsReadAsSubmit)
{
    // Read as a SUBMIT, octet 2 (0x81) is an address length above 20.
    EXPECT_EQ(parse("0891682143658709F10405812143F500004250607080902302E834", 2), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ParseSms", "The ParseSubmitSms function's false status is 10506"));
    EXPECT_FALSE(logged("ParseDeliverSms function run successfully!"));
#endif
}

TEST_F(ParseSmsTest, ConcatenatedDeliverEightAndSixteenBitReference)
{
    wms_gw_deliver d = make_deliver(WMS_ALPHABET_GSM7);
    d.user_data_header_present = 1;
    d.user_data.num_headers = 1;
    d.user_data.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    d.user_data.headers[0].u.concat_8 = {0x2A, 3, 2};
    smsutil::test::set_septets(d.user_data, "part two");
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("The ParseSms unparsed pdu size is out of range!"));
#endif
}

TEST_F(ParseSmsTest, NullRecords)
{
    EXPECT_EQ(ParseSms(nullptr, &out_), -1);
    EXPECT_EQ(ParseSms(&in_, nullptr), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("The ParseSms pInputSms pointer is NULL!"));
    EXPECT_TRUE(logged("The ParseSms pOutputSms pointer is NULL!"));
#endif
}

TEST_F(ParseSmsTest, NoHeapAllocation)
{
    const std::string pdu = "0891682143658709F10405812143F500004250607080902302E834";
    std::memset(&in_, 0, sizeof in_);
    std::strcpy(in_.pdu, pdu.c_str());
    in_.state = 1;
    smsutil::test::AllocationScope scope;
    EXPECT_EQ(ParseSms(&in_, &out_), 0);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
