#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"

namespace {

struct ReceiverCase {
    const char *name;
    const char *list;
    std::vector<std::string> numbers;
};

class ParseReceiver : public ::testing::TestWithParam<ReceiverCase> {};

TEST_P(ParseReceiver, SplitsOnTheSeparator)
{
    SmsReceiver r[SMS_MAX_RECEIVERS + 1];
    std::memset(r, 0x7F, sizeof r);
    const int32_t n = sms_parse_receiver(";", GetParam().list, r);
    ASSERT_EQ(n, static_cast<int32_t>(GetParam().numbers.size()));
    for (int32_t i = 0; i < n; ++i) EXPECT_EQ(r[i].szNumber, GetParam().numbers[static_cast<std::size_t>(i)]);
    EXPECT_EQ(r[n].szNumber[0], 0x7F);  // entries after the count untouched
    EXPECT_EQ(r[0].dwUserData, 0x7F7F7F7Fu);
}

const std::string k30(30, '1');
const std::string k25 = [] {
    std::string s;
    for (int i = 0; i < 25; ++i) s += std::to_string(100 + i) + ";";
    return s;
}();

INSTANTIATE_TEST_SUITE_P(
    Lists, ParseReceiver,
    ::testing::Values(ReceiverCase{"last_refused", "123;+456;78a", {"123", "+456"}},
                      ReceiverCase{"trailing_separator", "123;456;", {"123", "456"}},
                      ReceiverCase{"two_empty", ";;", {"", ""}},
                      ReceiverCase{"single_number", "+8613800000000", {"+8613800000000"}},
                      ReceiverCase{"cut_to_23", k30.c_str(), {std::string(23, '1')}},
                      ReceiverCase{"empty_list", "", {}},
                      ReceiverCase{"twenty_of_25", k25.c_str(),
                                   {"100", "101", "102", "103", "104", "105", "106", "107", "108", "109",
                                    "110", "111", "112", "113", "114", "115", "116", "117", "118", "119"}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(ParseReceiverNulls, GiveZero)
{
    SmsReceiver r[SMS_MAX_RECEIVERS];
    EXPECT_EQ(sms_parse_receiver(nullptr, "1", r), 0);
    EXPECT_EQ(sms_parse_receiver(";", nullptr, r), 0);
    EXPECT_EQ(sms_parse_receiver(";", "1", nullptr), 0);
}

TEST(ParseReceiverSeparator, LongerSeparatorLeavesItsTail)
{
    SmsReceiver r[SMS_MAX_RECEIVERS];
    ASSERT_EQ(sms_parse_receiver(";;", "12;;34", r), 1);  // ";34" fails the digit test
    EXPECT_STREQ(r[0].szNumber, "12");
}

TEST(ParseReceiverSeparator, EmptySeparatorMatchesAtEveryCharacter)
{
    // An empty separator is found where the scan stands: each character
    // ends an empty receiver and the scan moves on by one.
    SmsReceiver r[SMS_MAX_RECEIVERS];
    std::memset(r, 0x7F, sizeof r);
    ASSERT_EQ(sms_parse_receiver("", "123", r), 3);
    for (int i = 0; i < 3; ++i) EXPECT_STREQ(r[i].szNumber, "") << i;
    EXPECT_EQ(r[3].szNumber[0], 0x7F);
}

struct StrNumCase {
    const char *text;
    int32_t expected;
};
class TestStrNum : public ::testing::TestWithParam<StrNumCase> {};
TEST_P(TestStrNum, DigitsAndPlusOnly) { EXPECT_EQ(sms_test_str_num(GetParam().text), GetParam().expected); }
INSTANTIATE_TEST_SUITE_P(Texts, TestStrNum,
                         ::testing::Values(StrNumCase{"+123", 0}, StrNumCase{"12+3", 0}, StrNumCase{"", -1},
                                           StrNumCase{"12 3", -1}, StrNumCase{nullptr, -1}, StrNumCase{"*1", -1}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(SafeCpy, AlwaysTerminatesWithinSize)
{
    char dst[8];
    std::memset(dst, 'x', sizeof dst);
    EXPECT_EQ(sms_safe_cpy(dst, "abcdef", 4), dst);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst[4], 'x');
    sms_safe_cpy(dst, "ab", 8);
    EXPECT_STREQ(dst, "ab");
    sms_safe_cpy(dst, nullptr, 8);
    EXPECT_EQ(dst[0], '\0');
    dst[0] = 'q';
    sms_safe_cpy(dst, "abc", 0);
    EXPECT_EQ(dst[0], '\0');
    EXPECT_EQ(sms_safe_cpy(nullptr, "abc", 4), nullptr);
}

}  // namespace
