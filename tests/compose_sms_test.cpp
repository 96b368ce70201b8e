#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

class ComposeSmsTest : public smsutil::test::LogTest {
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ComposeSms", "ComposeSms function run successfully!"));
#endif
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
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("The sms_content_code is not recognized!"));
#endif
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
    smsutil::test::AllocationScope scope;
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

}  // namespace
