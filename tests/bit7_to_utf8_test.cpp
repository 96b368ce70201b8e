#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

class Bit7ToUtf8 : public smsutil::test::LogTest {};

struct Case {
    std::vector<uint8_t> codes;
    uint32_t coding;
    std::string utf8;
};

// Each text fits in its length plus the terminator; one byte less fails.
// Codes without a character are logged and dropped, not fatal.
TEST_F(Bit7ToUtf8, FitsWithItsTerminatorAndNotOneByteLess)
{
    const Case cases[] = {{{0x48, 0x69, 0x00}, 0, "Hi@"},
                          {{0x07, 0x1B, 0x67}, 1, "\xC4\xB1\xC4\x9F"},  // Turkish main row and extension
                          {{0x1B, 0x09, 0x09}, 2, "\xC3\xA7\xC3\x87"},
                          {{0x07, 0x1B, 0x65}, 7, "\xC3\xAC\xE2\x82\xAC"},  // unknown language: row 0
                          {{0x41, 0x1B, 0x41, 0x80, 0x42}, 0, "AB"},
                          {{0x41, 0x1B}, 0, "A"}};
    for (const auto &c : cases) {
        const auto size = int32_t(c.utf8.size() + 1);
        std::string out(c.utf8.size() + 1, '#');
        ASSERT_EQ(BIT7_TO_UTF8(c.codes.data(), int32_t(c.codes.size()), out.data(), size, c.coding), 0);
        EXPECT_EQ(std::string(out.c_str()), c.utf8);
        EXPECT_EQ(BIT7_TO_UTF8(c.codes.data(), int32_t(c.codes.size()), out.data(), size - 1, c.coding), -1);
        EXPECT_EQ(out[0], '\0');  // emptied, still terminated
    }
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "iInputLen = [5]\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[2][65]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[3][128]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "UCS2_TO_UTF8 function run unsuccessfully!\n\n"));
#endif
}

TEST_F(Bit7ToUtf8, FailsOnCorruptCodesTooManyCharactersAndBadParameters)
{
    std::vector<uint8_t> codes(513, 0x41);
    std::vector<char> out(600);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 512, out.data(), 600, 0), 0);
    EXPECT_EQ(std::strlen(out.data()), 512u);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 513, out.data(), 600, 0), -1);
    codes[1] = 0x81;
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 2, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), -1, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(nullptr, 1, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 1, nullptr, 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 1, out.data(), 0, 0), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "UCS2 buffer is not enough.[512][512]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[1][129]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "Param error!\n\n"));
#endif
}

// Every character of every row survives UTF-8 -> 7-bit -> UTF-8 under its
// own language, except the one at the escape position of the main row: it
// is sent as the escape code itself.
TEST(Gsm7RoundTrip, EveryCharacterOfEveryRowComesBack)
{
    for (uint32_t coding = 0; coding < GSM7_TABLE_ROWS; ++coding) {
        std::set<uint32_t> lost;
        for (const auto *table : {&g_GSM_7BitTable, &g_GSM_7BitExtTable})
            for (uint32_t value : (*table)[coding]) {
                if (value == GSM7_NO_CHARACTER) continue;
                const uint16_t unit[] = {uint16_t(value), 0};
                char utf8[4] = {}, back[8];
                uint8_t codes[2];
                uint32_t len = 0;
                ASSERT_EQ(UCS2_TO_UTF8(unit, utf8, 3), 0);
                ASSERT_EQ(UTF8_TO_7BIT(utf8, codes, 2, &len, coding), 0) << value;
                ASSERT_EQ(BIT7_TO_UTF8(codes, int32_t(len), back, 8, coding), 0);
                if (std::string(back) != utf8) lost.insert(value);
            }
        EXPECT_EQ(lost, std::set<uint32_t>{g_GSM_7BitTable[coding][GSM7_ESCAPE]}) << "coding " << coding;
    }
}

TEST_F(Bit7ToUtf8, HandleInputConvertsInPlaceWithinTheBuffer)
{
    std::vector<uint8_t> text(513, 0x10);  // capital delta: two bytes each
    uint32_t len = 0;
    smsutil::test::AllocationScope heap;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 160, 0, 0, &len), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(len, 320u);
    EXPECT_EQ(text[0], 0xCE);
    EXPECT_EQ(text[320], 0);
    const uint8_t turkish[] = {0x07, 0x1B, 0x65};
    std::memcpy(text.data(), turkish, 3);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 3, 1, WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT, &len), 0);
    EXPECT_STREQ(reinterpret_cast<char *>(text.data()), "\xC4\xB1 e");
    text.assign(513, 0x41);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 512, 0, 0, &len), 0);
    EXPECT_EQ(text[512], 0);  // a full text keeps its terminator
    text.assign(513, 0x41);
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 513, 0, 0, &len), -1);
    text[0] = 0x1B;
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 1, 0, 0, &len), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("handle_input_sms_7bit_to_utf8", "UCS2_TO_UTF8() failed\n\n"));
    EXPECT_TRUE(logged_by("handle_input_sms_7bit_to_utf8", "gsm7_to_unicode() failed\n\n"));
#endif
}

}  // namespace
