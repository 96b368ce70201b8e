#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>

#include "charset/kv8bit_tables.hpp"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"

namespace {

using smsutil::charset::kv8bit_block;
using smsutil::charset::kv8bit_ucs2_table;

TEST(Kv8bitTables, LowHalfIsTheDefaultAlphabet)
{
    EXPECT_EQ(kv8bit_ucs2_table[0], 0xFFFFu);
    for (int b = 1; b < 0x80; ++b) EXPECT_EQ(kv8bit_ucs2_table[b], g_GSM_7BitTable[0][b]) << std::hex << b;
    EXPECT_EQ(kv8bit_ucs2_table[0x80], g_GSM_7BitTable[0][0]);
    EXPECT_EQ(extern_code_table[0], 0x00);
}

// Every upper byte with a character carries the code under which its own
// block's extension row holds that character; the others carry none.
TEST(Kv8bitTables, ExtensionCodesLineUpWithTheCharacters)
{
    int characters = 0;
    for (int b = 0x81; b <= 0xFF; ++b) {
        const uint8_t code = extern_code_table[b & 0x7F];
        const uint32_t block = kv8bit_block(static_cast<uint8_t>(b));
        if (kv8bit_ucs2_table[b] == 0xFFFF) {
            EXPECT_EQ(code, KV8BIT_NO_EXTENSION_CODE) << std::hex << b;
            continue;
        }
        ++characters;
        ASSERT_LT(block, 3u) << std::hex << b;
        ASSERT_LT(code, 128) << std::hex << b;
        EXPECT_EQ(g_GSM_7BitExtTable[block][code], kv8bit_ucs2_table[b]) << std::hex << b;
    }
    EXPECT_EQ(characters, 11 + 17 + 19);
}

// The compile-time inverse against the search it replaces, for every unit.
// The search compares the unit as a signed 16-bit value, so nothing from
// 0x8000 up matches (not even 0xFFFF, which marks "none").
TEST(Kv8bitTables, InverseGivesTheFirstMatchForEveryUnit)
{
    int mismatches = 0;
    for (uint32_t u = 0; u <= 0xFFFF; ++u) {
        const auto as_signed = static_cast<int32_t>(static_cast<int16_t>(u));
        int expected = -1;
        for (int b = 0; b < 256 && expected < 0; ++b)
            if (static_cast<uint32_t>(as_signed) == kv8bit_ucs2_table[b]) expected = b;
        const uint16_t unit = static_cast<uint16_t>(u);
        uint8_t out[2] = {0xEE, 0xEE};
        uint32_t len = 0;
        ASSERT_EQ(ucs2_to_kv8bit(&unit, 1, out, 1, &len), 0);
        const int got = out[0] == 0xEE ? -1 : out[0];
        if (got != expected && ++mismatches <= 10) ADD_FAILURE() << std::hex << "unit " << u << " got " << got;
    }
    EXPECT_EQ(mismatches, 0);
}

// Every character of the 8-bit code reaches 7-bit codes that decode back to
// it under the language of its block.  The escape character itself is the
// one exception: as a code it starts a pair.
TEST(Kv8bitTables, EveryCharacterRoundTripsThroughSevenBitCodes)
{
    std::filesystem::remove(SMSUTIL_FEATURE_FILE);  // the tables as they are
    int checked = 0;
    for (int b = 1; b < 256; ++b) {
        const uint32_t unit = kv8bit_ucs2_table[b];
        if (unit == 0xFFFF || unit == GSM7_ESCAPE) continue;
        const uint16_t u16 = static_cast<uint16_t>(unit);
        uint8_t byte[2] = {};
        uint32_t len = 0;
        ASSERT_EQ(ucs2_to_kv8bit(&u16, 1, byte, 1, &len), 0);
        if (byte[0] != b) continue;  // a lower byte already stands for it
        uint8_t codes[3] = {};
        ASSERT_EQ(kv8bit_to_gsm7bit(byte, 1, codes, 3, &len), 0) << std::hex << b;
        const uint32_t coding = b > 0x80 ? kv8bit_block(static_cast<uint8_t>(b)) : 0;
        uint16_t back[2] = {};
        ASSERT_EQ(gsm7_to_unicode(codes, len, coding, WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT, back, 1, &len), 0)
            << std::hex << b;
        EXPECT_EQ(back[0], unit) << std::hex << b;
        ++checked;
    }
    // 126 default-alphabet characters besides the escape, the commercial at,
    // and the upper characters not found lower down: 9 of the default
    // extension, 7 Turkish, 8 Spanish.
    EXPECT_EQ(checked, 126 + 1 + 9 + 7 + 8);
}

}  // namespace
