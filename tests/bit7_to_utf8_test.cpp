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

struct DecodeCase {
    const char *name;
    std::vector<uint8_t> codes;
    uint32_t coding;
    std::string utf8;
};

class Bit7ToUtf8Decodes : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(Bit7ToUtf8Decodes, FitsWithItsTerminatorAndNotOneByteLess)
{
    const auto &c = GetParam();
    const auto size = static_cast<int32_t>(c.utf8.size() + 1);
    const auto count = static_cast<int32_t>(c.codes.size());
    const uint8_t none = 0;
    const uint8_t *codes = c.codes.empty() ? &none : c.codes.data();
    std::vector<char> out(c.utf8.size() + 2, '\x7F');
    ASSERT_EQ(BIT7_TO_UTF8(codes, count, out.data(), size, c.coding), 0);
    EXPECT_EQ(std::string(out.data()), c.utf8);
    EXPECT_EQ(out[c.utf8.size() + 1], '\x7F');
    if (!c.utf8.empty()) {
        EXPECT_EQ(BIT7_TO_UTF8(codes, count, out.data(), size - 1, c.coding), -1);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Bit7ToUtf8Decodes,
    ::testing::Values(DecodeCase{"Plain", {0x48, 0x69, 0x00}, 0, "Hi@"},
                      DecodeCase{"EscapedEuro", {0x1B, 0x65}, 0, "\xE2\x82\xAC"},
                      DecodeCase{"TurkishMainRow", {0x07, 0x1B, 0x67}, 1, "\xC4\xB1\xC4\x9F"},
                      DecodeCase{"SpanishExtension", {0x1B, 0x09, 0x09}, 2, "\xC3\xA7\xC3\x87"},
                      DecodeCase{"UnknownLanguageReadsRowZero", {0x07, 0x1B, 0x65}, 7, "\xC3\xAC\xE2\x82\xAC"},
                      DecodeCase{"EscapedCodeWithoutCharacterDropped", {0x41, 0x1B, 0x41, 0x42}, 0, "AB"},
                      DecodeCase{"Code128Dropped", {0x80, 0x41}, 0, "A"},
                      DecodeCase{"TrailingEscapeDropped", {0x41, 0x1B}, 0, "A"},
                      DecodeCase{"Empty", {}, 0, ""}),
    [](const auto &info) { return std::string(info.param.name); });

class Bit7ToUtf8 : public smsutil::test::LogTest {};

TEST_F(Bit7ToUtf8, SkippedCodesAreLoggedWithTheirPosition)
{
    const uint8_t codes[] = {0x41, 0x1B, 0x41, 0x80};
    char out[8];
    EXPECT_EQ(BIT7_TO_UTF8(codes, 4, out, 8, 0), 0);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "iInputLen = [4]\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[2][65]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[3][128]\n\n"));
#endif
}

TEST_F(Bit7ToUtf8, FailuresAndTheirLines)
{
    const uint8_t bad[] = {0x41, 0x81};
    char out[8];
    EXPECT_EQ(BIT7_TO_UTF8(bad, 2, out, 8, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(bad, -1, out, 8, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(nullptr, 1, out, 8, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(bad, 1, nullptr, 8, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(bad, 1, out, 0, 0), -1);
    out[0] = 'x';
    EXPECT_EQ(BIT7_TO_UTF8(bad, 1, out, 1, 0), -1);  // room for the terminator only
    EXPECT_EQ(out[0], '\0');
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "7Bit code error.[1][129]\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "Param error!\n\n"));
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "UCS2_TO_UTF8 function run unsuccessfully!\n\n"));
#endif
}

TEST_F(Bit7ToUtf8, HoldsAtMost512Characters)
{
    std::vector<uint8_t> codes(513, 0x41);
    std::vector<char> out(600);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 512, out.data(), 600, 0), 0);
    EXPECT_EQ(std::strlen(out.data()), 512u);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 513, out.data(), 600, 0), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("BIT7_TO_UTF8", "UCS2 buffer is not enough.[512][512]\n\n"));
#endif
}

// Every character of every row survives UTF-8 -> 7-bit -> UTF-8 under its
// own language.  The one exception per row is the character sitting at the
// escape position, which is sent as the escape code itself.
TEST(Gsm7RoundTrip, EveryCharacterOfEveryRowComesBack)
{
    for (uint32_t coding = 0; coding < GSM7_TABLE_ROWS; ++coding) {
        std::set<uint32_t> lost;
        for (const auto *table : {&g_GSM_7BitTable, &g_GSM_7BitExtTable})
            for (uint32_t value : (*table)[coding]) {
                if (value == GSM7_NO_CHARACTER) continue;
                const uint16_t units[] = {static_cast<uint16_t>(value), 0};
                char utf8[4] = {};
                ASSERT_EQ(UCS2_TO_UTF8(units, utf8, 3), 0);
                uint8_t codes[2];
                uint32_t len = 0;
                ASSERT_EQ(UTF8_TO_7BIT(utf8, codes, 2, &len, coding), 0) << std::hex << value;
                char back[8];
                ASSERT_EQ(BIT7_TO_UTF8(codes, static_cast<int32_t>(len), back, 8, coding), 0);
                if (std::string(back) != utf8) lost.insert(value);
            }
        EXPECT_EQ(lost, (std::set<uint32_t>{coding == 0 ? 0x001Bu : 0x0020u})) << "coding " << coding;
    }
}

class HandleInput7BitToUtf8 : public smsutil::test::LogTest {};

TEST_F(HandleInput7BitToUtf8, ConvertsInPlace)
{
    uint8_t text[513];
    std::memset(text, 0x10, 160);  // capital delta, two bytes each in UTF-8
    uint32_t len = 0;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text, 160, 0, 0, &len), 0);
    EXPECT_EQ(len, 320u);
    EXPECT_EQ(text[0], 0xCE);
    EXPECT_EQ(text[1], 0x94);
    EXPECT_EQ(text[320], 0);

    const uint8_t turkish[] = {0x07, 0x1B, 0x65};
    std::memcpy(text, turkish, sizeof turkish);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text, 3, 1, WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT, &len), 0);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(text)), "\xC4\xB1 e");
}

TEST_F(HandleInput7BitToUtf8, FullBufferKeepsItsTerminator)
{
    std::vector<uint8_t> text(514, 0x41);
    uint32_t len = 0;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 512, 0, 0, &len), 0);
    EXPECT_EQ(len, 512u);
    EXPECT_EQ(text[512], 0);
    std::fill(text.begin(), text.end(), 0x41);
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 513, 0, 0, &len), -1);
    text[0] = 0x1B;
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 1, 0, 0, &len), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("handle_input_sms_7bit_to_utf8", "UCS2_TO_UTF8() failed\n\n"));
    EXPECT_TRUE(logged_by("handle_input_sms_7bit_to_utf8", "gsm7_to_unicode() failed\n\n"));
#endif
}

TEST(Bit7ToUtf8Heap, NeverAllocates)
{
    uint8_t text[513] = {0x41, 0x1B, 0x65, 0x10};
    char out[16];
    uint32_t len = 0;
    smsutil::test::AllocationScope scope;
    BIT7_TO_UTF8(text, 4, out, 16, 2);
    handle_input_sms_7bit_to_utf8(text, 4, 0, 0, &len);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
