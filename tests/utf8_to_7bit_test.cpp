#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

struct EncodeCase {
    const char *name;
    const char *utf8;
    uint32_t coding;
    std::vector<uint8_t> codes;
};

class Utf8To7BitEncodes : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(Utf8To7BitEncodes, FitsExactlyAndNotOneLess)
{
    const auto &c = GetParam();
    const auto n = static_cast<int32_t>(c.codes.size());
    std::vector<uint8_t> out(c.codes.size() + 1, 0xAA);
    uint32_t len = 0;
    ASSERT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n, &len, c.coding), 0);
    ASSERT_EQ(len, c.codes.size());
    EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + n), c.codes);
    EXPECT_EQ(out[c.codes.size()], 0xAA);  // no terminator
    if (n > 1) {
        EXPECT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n - 1, &len, c.coding), -1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Utf8To7BitEncodes,
    ::testing::Values(
        EncodeCase{"PlainDefault", "Hi @$_\n", 0, {0x48, 0x69, 0x20, 0x00, 0x02, 0x11, 0x0A}},
        EncodeCase{"EuroAndBraceTakeEscape", "\xE2\x82\xAC{", 0, {0x1B, 0x65, 0x1B, 0x28}},
        EncodeCase{"EscapePairLast", "a|", 0, {0x61, 0x1B, 0x40}},
        EncodeCase{"TurkishUsesItsMainRow", "\xC4\xB1\xC3\xA7\xE2\x82\xAC", 1, {0x07, 0x60, 0x04}},
        EncodeCase{"TurkishCapitalIDotted", "\xC4\xB0", 1, {0x40}},
        EncodeCase{"SpanishAcuteTakesEscape", "\xC3\xA1\xC3\xA7", 2, {0x1B, 0x61, 0x1B, 0x09}},
        // The escape position of the national rows reads as a space and,
        // being the first match, is what a space is sent as.
        EncodeCase{"NationalSpaceIsTheEscapeCode", "a b", 2, {0x61, 0x1B, 0x62}},
        EncodeCase{"Greek", "\xCE\x94\xCE\xA9", 0, {0x10, 0x15}}),
    [](const auto &info) { return std::string(info.param.name); });

class Utf8To7Bit : public smsutil::test::LogTest {};

TEST_F(Utf8To7Bit, BadParametersAreRefused)
{
    uint8_t out[8];
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(nullptr, out, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", nullptr, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, nullptr, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 0, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, &len, 3), -1);  // no table for that language
#if SMSUTIL_TRACE_ENABLED
    EXPECT_EQ(log_lines().size(), 5u);
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Param error!\n\n"));
#endif
}

TEST_F(Utf8To7Bit, CharacterInNoRowIsNotFound)
{
    uint8_t out[8];
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT("a\xE4\xB8\xAD", out, 8, &len, 0), -1);   // CJK ideograph
    EXPECT_EQ(UTF8_TO_7BIT("\xC3\xA1", out, 8, &len, 1), -1);        // a acute is Spanish only
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Not found!\n\n"));
    EXPECT_FALSE(logged("7bit length = [1]\n\n"));
#endif
}

TEST_F(Utf8To7Bit, EscapePairCutByTheCapacityFails)
{
    uint8_t out[4];
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT("ab\xE2\x82\xAC", out, 3, &len, 0), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Space is not enough!\n\n"));
#endif
}

TEST_F(Utf8To7Bit, WorkingBufferBoundsTheText)
{
    std::vector<uint8_t> out(5000, 0xAA);
    uint32_t len = 0;
    // 3000 characters pass the character check of the UCS-2 step, whose
    // 4097-byte capacity then holds 2048 units: the rest is not converted.
    EXPECT_EQ(UTF8_TO_7BIT(std::string(3000, 'a').c_str(), out.data(), 5000, &len, 0), 0);
    EXPECT_EQ(len, 2048u);
    EXPECT_EQ(out[2048], 0xAA);
    EXPECT_EQ(UTF8_TO_7BIT(std::string(4098, 'a').c_str(), out.data(), 5000, &len, 0), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "7bit length = [2048]\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "UTF8_TO_UCS2 function run unsuccessfully!\n\n"));
#endif
}

TEST(Utf8To7BitHeap, NeverAllocates)
{
    uint8_t out[16];
    uint32_t len = 0;
    smsutil::test::AllocationScope scope;
    UTF8_TO_7BIT("a{\xE2\x82\xAC", out, 16, &len, 0);
    UTF8_TO_7BIT("\xE4\xB8\xAD", out, 16, &len, 2);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
