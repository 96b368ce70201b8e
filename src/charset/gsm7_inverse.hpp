// Text to 7-bit codes.  A character is sent as the first code of its
// language's main row that holds it, or else as the escape and the first
// code of the extension row that does.  Instead of searching both rows for
// every character, the answer for every UCS-2 unit is worked out once, at
// compile time, into a two-level table: the unit's high byte picks a page,
// the low byte an entry.  Only high bytes that occur in the tables get a
// page of their own; all others share one empty page.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "charset/gsm7_tables.hpp"

namespace smsutil::charset {

struct Gsm7Code {
    bool found;
    bool escaped;  // send kEscape before `code`
    std::uint8_t code;
};

// Where `unit` goes in the language `row` (0 to 2); any other row finds
// nothing.
Gsm7Code find_gsm7_code(std::uint32_t row, std::uint16_t unit);

namespace inverse_detail {

// One byte per entry: a main code, an extension code with the top bit set,
// or kNotFound (which an extension code 0x7F would collide with; the
// builder reports that case).
inline constexpr std::uint8_t kNotFound = 0xFF;
inline constexpr std::uint8_t kEscapedBit = 0x80;
inline constexpr std::size_t kPageSize = 256;

constexpr bool is_unit(std::uint32_t value) { return value <= 0xFFFF; }

// Pages needed for `main` and `ext`: the shared empty page plus one for
// every high byte that some entry has.
constexpr std::size_t page_count(const Gsm7Rows &main, const Gsm7Rows &ext)
{
    bool used[kPageSize] = {};
    for (const Gsm7Rows *table : {&main, &ext})
        for (const auto &row : *table)
            for (std::uint32_t value : row)
                if (is_unit(value)) used[value >> 8] = true;
    std::size_t count = 1;
    for (bool u : used) count += u ? 1 : 0;
    return count;
}

template <std::size_t Pages>
struct InverseTable {
    std::uint8_t page_of[kPageSize];
    std::uint8_t entries[Pages][kRowCount][kPageSize];
    bool exact;  // false when some first match cannot be represented

    constexpr Gsm7Code find(std::uint32_t row, std::uint16_t unit) const
    {
        if (row >= kRowCount) return {false, false, 0};
        const std::uint8_t e = entries[page_of[unit >> 8]][row][unit & 0xFF];
        if (e == kNotFound) return {false, false, 0};
        return {true, (e & kEscapedBit) != 0, static_cast<std::uint8_t>(e & ~kEscapedBit)};
    }
};

template <std::size_t Pages>
constexpr InverseTable<Pages> build(const Gsm7Rows &main, const Gsm7Rows &ext)
{
    InverseTable<Pages> t{};
    for (auto &page : t.entries)
        for (auto &row : page)
            for (auto &e : row) e = kNotFound;

    std::size_t next_page = 1;
    auto page_for = [&](std::uint32_t unit) -> std::size_t {
        std::uint8_t &p = t.page_of[unit >> 8];
        if (p == 0) p = static_cast<std::uint8_t>(next_page++);
        return p;
    };
    // Walking each row from its last code down to code 0 leaves the first
    // match in place; the main row goes last because it wins over the
    // extension.
    for (std::uint32_t r = 0; r < kRowCount; ++r) {
        for (std::uint32_t c = kCodeCount; c-- > 0;) {
            const std::uint32_t v = ext[r][c];
            if (!is_unit(v)) continue;
            t.entries[page_for(v)][r][v & 0xFF] = static_cast<std::uint8_t>(c | kEscapedBit);
        }
        for (std::uint32_t c = kCodeCount; c-- > 0;) {
            const std::uint32_t v = main[r][c];
            if (is_unit(v)) t.entries[page_for(v)][r][v & 0xFF] = static_cast<std::uint8_t>(c);
        }
    }
    // Every character of a row must come back as found; an extension code
    // 0x7F taken as the first match would read as kNotFound.
    t.exact = next_page == Pages;
    for (std::uint32_t r = 0; r < kRowCount; ++r)
        for (const Gsm7Rows *table : {&main, &ext})
            for (std::uint32_t v : (*table)[r])
                if (is_unit(v) && !t.find(r, static_cast<std::uint16_t>(v)).found) t.exact = false;
    return t;
}

}  // namespace inverse_detail
}  // namespace smsutil::charset
