#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

class Utf8To7Bit : public smsutil::test::LogTest {};

struct Case {
    const char *utf8;
    uint32_t coding;
    std::vector<uint8_t> codes;
};

// Each text fits in exactly its number of codes, with no terminator; one
// less fails, also when only the second byte of an escape pair is missing.
TEST_F(Utf8To7Bit, FitsExactlyAndNotOneLess)
{
    const Case cases[] = {
        {"Hi @$_\n", 0, {0x48, 0x69, 0x20, 0x00, 0x02, 0x11, 0x0A}},
        {"\xE2\x82\xAC{|", 0, {0x1B, 0x65, 0x1B, 0x28, 0x1B, 0x40}},
        {"\xC4\xB1\xC3\xA7\xE2\x82\xAC\xC4\xB0", 1, {0x07, 0x60, 0x04, 0x40}},  // Turkish main row
        {"\xC3\xA1\xC3\xA7", 2, {0x1B, 0x61, 0x1B, 0x09}},
        // A national row's escape position reads as a space and, being the
        // first match, is what a space is sent as.
        {"a b", 2, {0x61, 0x1B, 0x62}}};
    for (const auto &c : cases) {
        const auto n = int32_t(c.codes.size());
        std::vector<uint8_t> out(c.codes.size() + 1, 0xAA);
        uint32_t len = 0;
        ASSERT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n, &len, c.coding), 0) << c.utf8;
        EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + len), c.codes) << c.utf8;
        EXPECT_EQ(out[len], 0xAA);
        EXPECT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n - 1, &len, c.coding), -1) << c.utf8;
    }
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "7bit length = [7]\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Space is not enough!\n\n"));
#endif
}

TEST_F(Utf8To7Bit, RefusesBadParametersAndUnknownCharacters)
{
    uint8_t out[8];
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(nullptr, out, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", nullptr, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, nullptr, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 0, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, &len, 3), -1);  // no table to send it with
#if SMSUTIL_TRACE_ENABLED
    EXPECT_EQ(log_lines().size(), 5u);
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Param error!\n\n"));
#endif
    smsutil::test::AllocationScope heap;
    EXPECT_EQ(UTF8_TO_7BIT("a\xE4\xB8\xAD", out, 8, &len, 0), -1);  // a CJK ideograph
    EXPECT_EQ(UTF8_TO_7BIT("\xC3\xA1", out, 8, &len, 1), -1);       // a acute is Spanish only
    EXPECT_EQ(heap.allocations(), 0u);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "Not found!\n\n"));
#endif
}

// The UCS-2 step checks 4097 characters but its buffer holds 2048 units:
// what lies beyond is silently not converted.
TEST_F(Utf8To7Bit, WorkingBufferBoundsTheText)
{
    std::vector<uint8_t> out(5000, 0xAA);
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(std::string(3000, 'a').c_str(), out.data(), 5000, &len, 0), 0);
    EXPECT_EQ(len, 2048u);
    EXPECT_EQ(out[2048], 0xAA);
    EXPECT_EQ(UTF8_TO_7BIT(std::string(4098, 'a').c_str(), out.data(), 5000, &len, 0), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_7BIT", "UTF8_TO_UCS2 function run unsuccessfully!\n\n"));
#endif
}

}  // namespace
