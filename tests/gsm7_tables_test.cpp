#include <gtest/gtest.h>

#include <cstdint>

#include "charset/gsm7_inverse.hpp"
#include "smsutil/sms_charset.h"

namespace {

using smsutil::charset::find_gsm7_code;
using smsutil::charset::Gsm7Code;

constexpr uint32_t kNone = GSM7_NO_CHARACTER;

// The extension rows as the receiving side expects them; every code not
// listed has no character in any row.
struct ExtRow {
    uint8_t code;
    uint32_t value[3];
};
constexpr ExtRow kExtension[] = {
    {0x09, {kNone, kNone, 0x00E7}},   {0x0A, {0x000A, 0x000A, 0x000A}}, {0x14, {0x005E, 0x005E, 0x005E}},
    {0x1B, {0x0020, 0x0020, 0x0020}}, {0x28, {0x007B, 0x007B, 0x007B}}, {0x29, {0x007D, 0x007D, 0x007D}},
    {0x2F, {0x005C, 0x005C, 0x005C}}, {0x3C, {0x005B, 0x005B, 0x005B}}, {0x3D, {0x007E, 0x007E, 0x007E}},
    {0x3E, {0x005D, 0x005D, 0x005D}}, {0x40, {0x007C, 0x007C, 0x007C}}, {0x41, {kNone, kNone, 0x00C1}},
    {0x47, {kNone, 0x011E, kNone}},   {0x49, {kNone, 0x0130, 0x00CD}},   {0x4F, {kNone, kNone, 0x00D3}},
    {0x53, {kNone, 0x015E, kNone}},   {0x55, {kNone, kNone, 0x00DA}},   {0x61, {kNone, kNone, 0x00E1}},
    {0x63, {kNone, 0x00E7, kNone}},   {0x65, {0x20AC, 0x20AC, 0x20AC}}, {0x67, {kNone, 0x011F, kNone}},
    {0x69, {kNone, 0x0131, 0x00ED}},   {0x6F, {kNone, kNone, 0x00F3}},   {0x73, {kNone, 0x015F, kNone}},
    {0x75, {kNone, kNone, 0x00FA}},
};

TEST(Gsm7Tables, ExtensionRowsHoldExactlyTheListedCharacters)
{
    for (uint32_t code = 0; code < GSM7_TABLE_CODES; ++code) {
        const ExtRow *listed = nullptr;
        for (const auto &row : kExtension)
            if (row.code == code) listed = &row;
        for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r)
            EXPECT_EQ(g_GSM_7BitExtTable[r][code], listed ? listed->value[r] : kNone)
                << "row " << r << " code 0x" << std::hex << code;
    }
}

// Row 0 spot checks where the default alphabet departs from ASCII, and
// every position where the Turkish locking row departs from row 0.
struct MainCase {
    uint32_t row;
    uint8_t code;
    uint32_t value;
};
constexpr MainCase kMain[] = {
    {0, 0x00, 0x0040}, {0, 0x01, 0x00A3}, {0, 0x02, 0x0024}, {0, 0x10, 0x0394}, {0, 0x11, 0x005F},
    {0, 0x1B, 0x001B}, {0, 0x24, 0x00A4}, {0, 0x40, 0x00A1}, {0, 0x60, 0x00BF}, {0, 0x7F, 0x00E0},
    {1, 0x04, 0x20AC}, {1, 0x07, 0x0131}, {1, 0x0B, 0x011E}, {1, 0x0C, 0x011F}, {1, 0x1B, 0x0020},
    {1, 0x1C, 0x015E}, {1, 0x1D, 0x015F}, {1, 0x40, 0x0130}, {1, 0x60, 0x00E7}, {2, 0x1B, 0x0020},
};

TEST(Gsm7Tables, MainRowsDifferOnlyWhereTheLanguageDoes)
{
    for (const auto &c : kMain) EXPECT_EQ(g_GSM_7BitTable[c.row][c.code], c.value) << "code " << int(c.code);
    for (uint32_t r = 1; r < GSM7_TABLE_ROWS; ++r)
        for (uint32_t code = 0; code < GSM7_TABLE_CODES; ++code) {
            bool listed = false;
            for (const auto &c : kMain) listed = listed || (c.row == r && c.code == code);
            if (!listed) {
                EXPECT_EQ(g_GSM_7BitTable[r][code], g_GSM_7BitTable[0][code]);
            }
        }
}

// The plain search the reverse table stands in for.
Gsm7Code linear_search(uint32_t row, uint16_t unit)
{
    for (uint32_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitTable[row][c] == unit) return {true, false, static_cast<uint8_t>(c)};
    for (uint32_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitExtTable[row][c] == unit) return {true, true, static_cast<uint8_t>(c)};
    return {false, false, 0};
}

TEST(Gsm7Inverse, EqualsFirstMatchSearchForEveryUnitOfEveryRow)
{
    int mismatches = 0;
    for (uint32_t row = 0; row < GSM7_TABLE_ROWS; ++row)
        for (uint32_t u = 0; u <= 0xFFFF; ++u) {
            const Gsm7Code fast = find_gsm7_code(row, static_cast<uint16_t>(u));
            const Gsm7Code slow = linear_search(row, static_cast<uint16_t>(u));
            const bool same = fast.found == slow.found &&
                              (!slow.found || (fast.escaped == slow.escaped && fast.code == slow.code));
            if (!same && ++mismatches <= 10) ADD_FAILURE() << "row " << row << " unit 0x" << std::hex << u;
        }
    EXPECT_EQ(mismatches, 0);
}

TEST(Gsm7Inverse, RowOutsideTheTablesFindsNothing)
{
    EXPECT_FALSE(find_gsm7_code(GSM7_TABLE_ROWS, 0x0041).found);
    EXPECT_FALSE(find_gsm7_code(0xFFFFFFFFu, 0x0041).found);
}

}  // namespace
