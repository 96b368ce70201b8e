#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/sms_api.h"
#include "support/log_fixture.hpp"

namespace {

std::string hex_of(const SmsOctetBuf &buf)
{
    char text[2 * SMS_OCTET_BUF_SIZE + 1];
    BcdToAscii(text, buf.data, buf.dwLen);
    return text;
}

struct ScCase {
    const char *name;
    const char *number;
    const char *octets;
    uint8_t ton;
};

class ComposeScAddress : public ::testing::TestWithParam<ScCase> {};

TEST_P(ComposeScAddress, GivesTheOctetsThatPrefixAPdu)
{
    SendOrWriteMsg work{};
    SmsOctetBuf buf{};
    ASSERT_EQ(ComposeSCAddrData(GetParam().number, &work, &buf), 0);
    EXPECT_EQ(hex_of(buf), GetParam().octets);
    EXPECT_EQ(work.byScTon, GetParam().ton);
    EXPECT_EQ(work.byScNpi, 1);
}

INSTANTIATE_TEST_SUITE_P(Numbers, ComposeScAddress,
                         ::testing::Values(ScCase{"international", "+8612345678901", "0891682143658709f1", 1},
                                           ScCase{"national_even", "1234", "038121" "43", 0},
                                           ScCase{"empty", "", "0181", 0},
                                           ScCase{"twenty_digits", "12345678901234567890",
                                                  "0b812143658709214365870"
                                                  "9",
                                                  0}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(ComposeScAddressRefusal, TooLongOrIllegal)
{
    SendOrWriteMsg work{};
    SmsOctetBuf buf{};
    EXPECT_EQ(ComposeSCAddrData("123456789012345678901", &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("+", &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData(nullptr, &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", nullptr, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", &work, nullptr), -1);
}

struct TransformCase {
    const char *text;
    int32_t ret;
    uint32_t value;
    const char *message;
};

class TransformSca : public smsutil::test::LogTest, public ::testing::WithParamInterface<TransformCase> {};

TEST_P(TransformSca, ReadsTwoHexCharacters)
{
    uint32_t out = 99;
    EXPECT_EQ(TransformSCANum(GetParam().text, &out), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_EQ(out, GetParam().value);
    }
#if SMSUTIL_TRACE_ENABLED
    if (GetParam().message[0] != '\0') {
        EXPECT_TRUE(logged_by("TransformSCANum", GetParam().message)) << log_text();
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(Texts, TransformSca,
                         ::testing::Values(TransformCase{"08", 0, 8, ""}, TransformCase{"0a", 0, 10, ""},
                                           TransformCase{"0A", 0, 10, ""}, TransformCase{"FF", 0, 255, ""},
                                           TransformCase{"0G", -1, 0, "The CheckSCANum digit2 is incompatible!"},
                                           TransformCase{"G0", -1, 0, "The CheckSCANum digit1 is incompatible!"},
                                           TransformCase{"", -1, 0, "The CheckSCANum digit1 is incompatible!"},
                                           TransformCase{"0", -1, 0, "The CheckSCANum digit2 is incompatible!"}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

struct CentreCase {
    const char *src;
    int32_t ret;
    const char *number;
};

class ParseCentreNum : public ::testing::TestWithParam<CentreCase> {};

TEST_P(ParseCentreNum, SwapsDigitsAndAddsPlusOnlyFor86)
{
    char out[SMS_NUMBER_SIZE];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(parse_centernum(SMS_NUMBER_SIZE, out, GetParam().src), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_STREQ(out, GetParam().number);
    }
}

INSTANTIATE_TEST_SUITE_P(Addresses, ParseCentreNum,
                         ::testing::Values(CentreCase{"91682143658709F1", 0, "+8612345678901"},
                                           CentreCase{"914421436587F9", 0, "44123456789"},
                                           CentreCase{"81214365", 0, "123456"},
                                           CentreCase{"A1682143658709f1", 0, "8612345678901"},
                                           CentreCase{"81", -1, ""}, CentreCase{"8", -1, ""},
                                           CentreCase{"", -1, ""}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(ParseCentreNumBounds, OutputThatWouldNotFitIsRefused)
{
    char small[8];
    EXPECT_EQ(parse_centernum(sizeof small, small, "91682143658709F1"), -1);
    char exact[15];  // "+8612345678901" and its terminator
    EXPECT_EQ(parse_centernum(sizeof exact, exact, "91682143658709F1"), 0);
    EXPECT_STREQ(exact, "+8612345678901");
    EXPECT_EQ(parse_centernum(21, nullptr, "91"), -1);
}

class CentreLog : public smsutil::test::LogTest {};
TEST_F(CentreLog, EmptyDigitsReportZeroLength)
{
    char out[SMS_NUMBER_SIZE];
    EXPECT_EQ(parse_centernum(SMS_NUMBER_SIZE, out, "81"), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("parse_centernum", "src len is[0]"));
#endif
    // Too long for a number: the log gives the whole length, not a cap.
    EXPECT_EQ(parse_centernum(SMS_NUMBER_SIZE, out, "81" "1234567890123456789012"), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("parse_centernum", "src len is[22]")) << log_text();
#endif
}

}  // namespace
