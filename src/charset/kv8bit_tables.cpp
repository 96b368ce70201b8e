// The extension codes of the national 8-bit code and, built from its
// character table at compile time, the reverse look-up from UCS-2.
#include <cstddef>
#include <iterator>

#include "charset/kv8bit_tables.hpp"
#include "smsutil/sms_charset.h"

// Lines up with the upper half of kv8bit_ucs2_table: each entry is the code
// under which that character sits in its block's extension row.
extern "C" {
SMSUTIL_API std::uint8_t extern_code_table[128] = {
    0x00, 0x0A, 0x14, 0x1B, 0x28, 0x29, 0x2F, 0x3C, 0x3D, 0x3E, 0x40, 0x65, 0xFF, 0xFF, 0xFF, 0xFF,  // 0x80
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0x90
    0x0A, 0x14, 0x1B, 0x28, 0x29, 0x2F, 0x3C, 0x3D, 0x3E, 0x47, 0x49, 0x53, 0x63, 0x65, 0x67, 0x69,  // 0xA0
    0x73, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0xB0
    0x09, 0x0A, 0x14, 0x1B, 0x28, 0x29, 0x2F, 0x3C, 0x3D, 0x3E, 0x41, 0x49, 0x4F, 0x55, 0x61, 0x65,  // 0xC0
    0x69, 0x6F, 0x75, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0xD0
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0xE0
    0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF,  // 0xF0
};
}

namespace smsutil::charset {
namespace {

// Two levels instead of 65536 entries: the unit's high byte picks a page,
// the low byte an entry.  High bytes that never occur share page 0, which
// stays empty.  An entry of 0 means no byte, since byte 0 has no character.
constexpr std::size_t kPageSize = 256;

constexpr bool is_character(std::uint32_t value)
{
    return value != kKv8bitNone;
}

constexpr std::size_t page_count()
{
    bool used[kPageSize] = {};
    for (std::uint32_t v : kv8bit_ucs2_table)
        if (is_character(v)) used[v >> 8] = true;
    std::size_t count = 1;
    for (bool u : used) count += u ? 1 : 0;
    return count;
}

constexpr std::size_t kPages = page_count();

struct Inverse {
    std::uint8_t page_of[kPageSize];
    std::uint8_t bytes[kPages][kPageSize];
};

constexpr Inverse build_inverse()
{
    Inverse t{};
    std::size_t next_page = 1;
    // From the top down, so the lowest byte of a character is the one left.
    for (std::size_t b = std::size(kv8bit_ucs2_table); b-- > 1;) {
        const std::uint32_t v = kv8bit_ucs2_table[b];
        if (!is_character(v)) continue;
        std::uint8_t &page = t.page_of[v >> 8];
        if (page == 0) page = static_cast<std::uint8_t>(next_page++);
        t.bytes[page][v & 0xFF] = static_cast<std::uint8_t>(b);
    }
    return t;
}

constexpr Inverse kInverse = build_inverse();

// Byte 0 must carry nothing, or a found byte 0 would read as "none".
static_assert(kv8bit_ucs2_table[0] == kKv8bitNone);
static_assert(kPages <= kPageSize);

}  // namespace

std::uint8_t find_kv8bit_byte(std::uint16_t unit)
{
    return kInverse.bytes[kInverse.page_of[unit >> 8]][unit & 0xFF];
}

}  // namespace smsutil::charset
