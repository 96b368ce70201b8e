#include <gtest/gtest.h>

#include "charset/gsm7_inverse.hpp"

namespace {

using smsutil::charset::Gsm7Code;

constexpr uint32_t N = GSM7_NO_CHARACTER;

// The extension rows as receivers expect them; every code not listed has
// no character in any row.
struct Listed {
    uint8_t code;
    uint32_t row[3];
};
constexpr Listed kExtension[] = {
    {0x09, {N, N, 0xE7}}, {0x0A, {0x0A, 0x0A, 0x0A}}, {0x14, {0x5E, 0x5E, 0x5E}}, {0x1B, {0x20, 0x20, 0x20}},
    {0x28, {0x7B, 0x7B, 0x7B}}, {0x29, {0x7D, 0x7D, 0x7D}}, {0x2F, {0x5C, 0x5C, 0x5C}}, {0x3C, {0x5B, 0x5B, 0x5B}},
    {0x3D, {0x7E, 0x7E, 0x7E}}, {0x3E, {0x5D, 0x5D, 0x5D}}, {0x40, {0x7C, 0x7C, 0x7C}}, {0x41, {N, N, 0xC1}},
    {0x47, {N, 0x11E, N}}, {0x49, {N, 0x130, 0xCD}}, {0x4F, {N, N, 0xD3}}, {0x53, {N, 0x15E, N}},
    {0x55, {N, N, 0xDA}}, {0x61, {N, N, 0xE1}}, {0x63, {N, 0xE7, N}}, {0x65, {0x20AC, 0x20AC, 0x20AC}},
    {0x67, {N, 0x11F, N}}, {0x69, {N, 0x131, 0xED}}, {0x6F, {N, N, 0xF3}}, {0x73, {N, 0x15F, N}},
    {0x75, {N, N, 0xFA}}};

// Where the main rows leave ASCII, and every Turkish departure from row 0.
constexpr Listed kMain[] = {
    {0x00, {0x40, 0x40, 0x40}}, {0x01, {0xA3, 0xA3, 0xA3}}, {0x04, {0xE8, 0x20AC, 0xE8}},
    {0x07, {0xEC, 0x131, 0xEC}}, {0x0B, {0xD8, 0x11E, 0xD8}}, {0x0C, {0xF8, 0x11F, 0xF8}},
    {0x10, {0x394, 0x394, 0x394}}, {0x1B, {0x1B, 0x20, 0x20}}, {0x1C, {0xC6, 0x15E, 0xC6}},
    {0x1D, {0xE6, 0x15F, 0xE6}}, {0x24, {0xA4, 0xA4, 0xA4}}, {0x40, {0xA1, 0x130, 0xA1}},
    {0x60, {0xBF, 0xE7, 0xBF}}, {0x7F, {0xE0, 0xE0, 0xE0}}};

TEST(Gsm7Tables, HoldTheListedCharacters)
{
    for (uint32_t code = 0; code < GSM7_TABLE_CODES; ++code)
        for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r) {
            uint32_t want = N;
            for (const auto &e : kExtension)
                if (e.code == code) want = e.row[r];
            EXPECT_EQ(g_GSM_7BitExtTable[r][code], want) << "extension row " << r << " code " << code;
        }
    for (const auto &m : kMain)
        for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r)
            EXPECT_EQ(g_GSM_7BitTable[r][m.code], m.row[r]) << "main row " << r << " code " << int(m.code);
}

// The plain search that the compile-time reverse table stands in for.
Gsm7Code linear_search(uint32_t row, uint32_t unit)
{
    for (uint8_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitTable[row][c] == unit) return {true, false, c};
    for (uint8_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitExtTable[row][c] == unit) return {true, true, c};
    return {false, false, 0};
}

TEST(Gsm7Inverse, EqualsFirstMatchSearchForEveryUnitOfEveryRow)
{
    int mismatches = 0;
    for (uint32_t row = 0; row < GSM7_TABLE_ROWS; ++row)
        for (uint32_t u = 0; u <= 0xFFFF; ++u) {
            const Gsm7Code fast = smsutil::charset::find_gsm7_code(row, static_cast<uint16_t>(u));
            const Gsm7Code slow = linear_search(row, u);
            if (fast.found != slow.found || fast.escaped != slow.escaped || fast.code != slow.code)
                if (++mismatches <= 10) ADD_FAILURE() << "row " << row << " unit " << u;
        }
    EXPECT_EQ(mismatches, 0);
    EXPECT_FALSE(smsutil::charset::find_gsm7_code(GSM7_TABLE_ROWS, 0x41).found);
}

}  // namespace
