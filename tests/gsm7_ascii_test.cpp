#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

struct Case {
    const char *name;
    Bytes codes;  // 7-bit side
    Bytes text;   // single-byte side
};

// Pairs that convert both ways.
class Gsm7AsciiBothWays : public ::testing::TestWithParam<Case> {};

TEST_P(Gsm7AsciiBothWays, ConvertsAtExactCapacity)
{
    const auto &c = GetParam();
    Bytes text(c.text.size() + 2, 0xAA);
    uint32_t len = 0;
    ASSERT_EQ(sms_gsm7_to_ascii(c.codes.data(), static_cast<int32_t>(c.codes.size()), text.data(),
                                static_cast<int32_t>(c.text.size()), &len),
              0);
    ASSERT_EQ(len, c.text.size());
    EXPECT_EQ(Bytes(text.begin(), text.begin() + len), c.text);
    EXPECT_EQ(text[len], 0);
    EXPECT_EQ(text[len + 1], 0xAA);

    Bytes codes(c.codes.size() + 1, 0xAA);
    ASSERT_EQ(sms_ascii_to_gsm7(c.text.data(), static_cast<int32_t>(c.text.size()), codes.data(),
                                static_cast<int32_t>(c.codes.size()), &len),
              0);
    ASSERT_EQ(len, c.codes.size());
    EXPECT_EQ(Bytes(codes.begin(), codes.begin() + len), c.codes);
    EXPECT_EQ(codes[len], 0xAA);  // no terminator
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Gsm7AsciiBothWays,
    ::testing::Values(Case{"Letters", {0x48, 0x69}, {'H', 'i'}},
                      Case{"AtDollarUnderscore", {0x00, 0x02, 0x11}, {'@', '$', '_'}},
                      Case{"PoundAndEAcute", {0x01, 0x05}, {0xA3, 0xE9}},
                      Case{"LineFeedAndSpaceStayPlain", {0x0A, 0x20}, {0x0A, 0x20}},
                      Case{"BraceAndBackslashEscaped", {0x1B, 0x28, 0x1B, 0x2F}, {'{', '\\'}},
                      Case{"VerticalLineEscapedLast", {0x41, 0x1B, 0x40}, {'A', '|'}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Gsm7ToAscii, CharactersBeyondLatin1BecomeSpaces)
{
    const uint8_t codes[] = {0x10, 0x1B, 0x65, 0x01};
    uint8_t text[8];
    uint32_t len = 0;
    ASSERT_EQ(sms_gsm7_to_ascii(codes, 4, text, 7, &len), 0);
    EXPECT_EQ(Bytes(text, text + len), (Bytes{0x20, 0x20, 0xA3}));
}

struct BadCodes {
    const char *name;
    Bytes codes;
};

class Gsm7ToAsciiRefuses : public ::testing::TestWithParam<BadCodes> {};

TEST_P(Gsm7ToAsciiRefuses, FailsWithLengthZero)
{
    const auto &c = GetParam();
    uint8_t text[8];
    uint32_t len = 9;
    EXPECT_EQ(sms_gsm7_to_ascii(c.codes.data(), static_cast<int32_t>(c.codes.size()), text, 7, &len), -1);
    EXPECT_EQ(len, 0u);
}

INSTANTIATE_TEST_SUITE_P(Cases, Gsm7ToAsciiRefuses,
                         ::testing::Values(BadCodes{"Above128", {0x41, 0x81}}, BadCodes{"Code128", {0x80}},
                                           BadCodes{"TrailingEscape", {0x41, 0x1B}},
                                           BadCodes{"EscapedWithoutCharacter", {0x1B, 0x41}},
                                           BadCodes{"EscapedAbove127", {0x1B, 0x95}},
                                           BadCodes{"OnePastCapacity", Bytes(8, 0x41)}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(Gsm7ToAscii, ZeroCapacityCountsAndBadArgumentsFail)
{
    const uint8_t codes[] = {0x41, 0x1B, 0x28};
    uint8_t text[4] = {0xAA, 0xAA, 0xAA, 0xAA};
    uint32_t len = 0;
    ASSERT_EQ(sms_gsm7_to_ascii(codes, 3, text, 0, &len), 0);
    EXPECT_EQ(len, 2u);
    EXPECT_EQ(text[0], 0xAA);
    EXPECT_EQ(sms_gsm7_to_ascii(codes, 3, nullptr, 0, &len), 0);
    EXPECT_EQ(sms_gsm7_to_ascii(nullptr, 3, text, 3, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(codes, 3, nullptr, 3, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(codes, -1, text, 3, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(codes, 1, text, -1, &len), -1);
}

TEST(AsciiToGsm7, RefusesWhatCannotBeSentOrDoesNotFit)
{
    const uint8_t grave[] = {'a', 0x60};
    const uint8_t brace[] = {'a', '{'};
    uint8_t codes[4];
    uint32_t len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(grave, 2, codes, 4, &len), -1);
    EXPECT_EQ(len, 1u);
    EXPECT_EQ(sms_ascii_to_gsm7(brace, 2, codes, 2, &len), -1);  // the pair's second byte has no room
    EXPECT_EQ(len, 2u);
    len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(brace, 2, codes, 1, &len), -1);  // longer than the capacity: at once
    EXPECT_EQ(len, 9u);
    EXPECT_EQ(sms_ascii_to_gsm7(brace, 0, nullptr, 0, &len), 0);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(sms_ascii_to_gsm7(nullptr, 0, codes, 4, &len), -1);
    EXPECT_EQ(sms_ascii_to_gsm7(brace, 2, nullptr, 4, &len), -1);
    EXPECT_EQ(sms_ascii_to_gsm7(brace, -1, codes, 4, &len), -1);
}

// Every byte that converts to 7-bit comes back unchanged, except the
// escape character itself, which is sent as the escape code.
TEST(Gsm7AsciiRoundTrip, EveryConvertibleByteComesBack)
{
    int convertible = 0;
    std::vector<int> lost;
    for (int b = 0; b < 256; ++b) {
        const uint8_t in = static_cast<uint8_t>(b);
        uint8_t codes[2];
        uint32_t len = 0;
        if (sms_ascii_to_gsm7(&in, 1, codes, 2, &len) != 0) continue;
        ++convertible;
        uint8_t back[2] = {};
        uint32_t back_len = 0;
        if (sms_gsm7_to_ascii(codes, static_cast<int32_t>(len), back, 1, &back_len) != 0 || back_len != 1 ||
            back[0] != in)
            lost.push_back(b);
    }
    // The default alphabet less its ten Greek capitals, plus eight
    // characters that only the extension has.
    EXPECT_EQ(convertible, 128 - 10 + 8);
    EXPECT_EQ(lost, std::vector<int>{0x1B});
}

TEST(HandleInput7BitToAscii, ConvertsInPlaceOrLeavesTheBuffer)
{
    uint8_t text[514] = {0x48, 0x1B, 0x3C, 0x01};
    uint32_t len = 0;
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 4, &len), 0);
    EXPECT_EQ(len, 3u);
    EXPECT_STREQ(reinterpret_cast<char *>(text), "H[\xA3");

    text[0] = 0x1B;
    text[1] = 0x41;
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 2, &len), -1);
    EXPECT_EQ(text[1], 0x41);

    std::memset(text, 0x41, sizeof text);
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 513, &len), 0);
    EXPECT_EQ(len, 513u);
    EXPECT_EQ(text[513], 0);
    std::memset(text, 0x41, sizeof text);
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 514, &len), -1);
}

TEST(Gsm7AsciiHeap, NeverAllocates)
{
    uint8_t text[514] = {0x41, 0x1B, 0x28};
    uint8_t codes[8];
    uint32_t len = 0;
    smsutil::test::AllocationScope scope;
    sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("a{"), 2, codes, 8, &len);
    handle_input_sms_7bit_to_ascii(text, 3, &len);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
