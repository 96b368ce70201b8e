#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/sms_api.h"
#include "support/log_fixture.hpp"

namespace {

struct DialCase {
    const char *name;
    const char *number;
    int32_t expected;
    const char *message;  // the refusal's log text, or the success line
};

class DialNumber : public smsutil::test::LogTest, public ::testing::WithParamInterface<DialCase> {};

TEST_P(DialNumber, ChecksCharactersAndLength)
{
    const DialCase &c = GetParam();
    EXPECT_EQ(EWCheckDialNum(c.number, 20), c.expected);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("EWCheckDialNum", c.message)) << log_text();
#endif
}

const std::string k20(20, '9');
const std::string k21(21, '9');

INSTANTIATE_TEST_SUITE_P(
    Numbers, DialNumber,
    ::testing::Values(
        DialCase{"plus_alone", "+", -1, "The EWCheckDialNum pszDialNum is only a '+'!"},
        DialCase{"plus_one", "+1", 0, "EWCheckDialNum function run successfully!"},
        DialCase{"plus_inside", "1+2", -1, "The EWCheckDialNum pszDialNum is illegal!"},
        DialCase{"service_code", "*100#", 0, "EWCheckDialNum function run successfully!"},
        DialCase{"twenty_digits", k20.c_str(), 0, "EWCheckDialNum function run successfully!"},
        DialCase{"twenty_one_digits", k21.c_str(), -1,
                 "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!"},
        DialCase{"empty", "", -1, "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!"},
        DialCase{"letter", "12a4", -1, "The EWCheckDialNum pszDialNum is illegal!"},
        DialCase{"space", "12 4", -1, "The EWCheckDialNum pszDialNum is illegal!"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(DialNumberBounds, ReadsNoFurtherThanOnePastTheLimit)
{
    // An unterminated 21-byte field: the check must stop at byte 21.
    char field[21];
    std::memset(field, '5', sizeof field);
    EXPECT_EQ(EWCheckDialNum(field, 20), -1);
    EXPECT_EQ(EWCheckDialNum(nullptr, 20), -1);
}

TEST(DialNumberBounds, LargestMaximumRefusesOnlyTheEmptyNumber)
{
    // One past the maximum must not wrap to 0 where size_t has 32 bits.
    EXPECT_EQ(EWCheckDialNum("12345", UINT32_MAX), 0);
    EXPECT_EQ(EWCheckDialNum("", UINT32_MAX), -1);
    EXPECT_EQ(EWCheckDialNum("1", 0), -1);
}

class AddressData : public smsutil::test::LogTest {};

TEST_F(AddressData, InternationalNumberBecomesTypeOneDigits)
{
    SendOrWriteMsg work{};
    wms_address a;
    std::memset(&a, 0xEE, sizeof a);
    ASSERT_EQ(ConstructAddressData("+86*1#", &work, &a), 0);
    EXPECT_EQ(a.number_type, WMS_NUMBER_INTERNATIONAL);
    EXPECT_EQ(a.number_plan, 1);
    EXPECT_EQ(a.digit_mode, 0);
    EXPECT_EQ(a.number_of_digits, 5);
    const uint8_t expected[5] = {8, 6, 10, 1, 11};
    EXPECT_EQ(std::memcmp(a.digits, expected, 5), 0);
    EXPECT_EQ(a.digits[5], 0);  // zeroed first
}

TEST_F(AddressData, EmptyNumberIsAnEmptyDestination)
{
    SendOrWriteMsg work{};
    wms_address a{};
    ASSERT_EQ(ConstructAddressData("", &work, &a), 0);
    EXPECT_EQ(a.number_type, 0);
    EXPECT_EQ(a.number_plan, 1);
    EXPECT_EQ(a.number_of_digits, 0);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("ConstructAddressData function run successfully!:dwLen==0"));
#endif
}

TEST_F(AddressData, RefusesBadNumbersAndNulls)
{
    SendOrWriteMsg work{};
    wms_address a{};
    EXPECT_EQ(ConstructAddressData("12-3", &work, &a), -1);
    EXPECT_EQ(ConstructAddressData(nullptr, &work, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", nullptr, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", &work, nullptr), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("EWCheckDialNum in ConstructAddressData function run unsuccessfully!"));
    EXPECT_TRUE(logged("The ConstructAddressData pszAddress pointer is NULL!"));
    EXPECT_TRUE(logged("The ConstructAddressData PstSendOrWriteMsg pointer is NULL!"));
    EXPECT_TRUE(logged("The ConstructAddressData PstAddress pointer is NULL!"));
#endif
}

}  // namespace
