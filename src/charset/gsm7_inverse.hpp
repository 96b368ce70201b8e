// Text to 7-bit codes.  A character is sent as the first code of its
// language's main row that holds it, or else as the escape and the first
// code of the extension row that does.  Instead of searching both rows for
// every character, the answer for every UCS-2 unit is worked out once, at
// compile time (see paged_inverse.hpp).
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

#include "charset/gsm7_tables.hpp"
#include "charset/paged_inverse.hpp"

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
// check below reports that case).
inline constexpr std::uint8_t kNotFound = 0xFF;
inline constexpr std::uint8_t kEscapedBit = 0x80;

constexpr bool is_unit(std::uint32_t value) { return value <= 0xFFFF; }

// Lists every mapping of `main` and `ext` so that the first match wins:
// each row is walked from its last code down to code 0, and the main row
// goes after the extension because it wins over it.
struct Mappings {
    const Gsm7Rows &main;
    const Gsm7Rows &ext;

    template <typename Emit>
    constexpr void operator()(Emit emit) const
    {
        for (std::uint32_t r = 0; r < kRowCount; ++r) {
            for (std::uint32_t c = kCodeCount; c-- > 0;)
                if (is_unit(ext[r][c])) emit(r, ext[r][c], static_cast<std::uint8_t>(c | kEscapedBit));
            for (std::uint32_t c = kCodeCount; c-- > 0;)
                if (is_unit(main[r][c])) emit(r, main[r][c], static_cast<std::uint8_t>(c));
        }
    }
};

template <std::size_t Pages>
using InverseTable = paged::Table<Pages, kRowCount>;

constexpr Gsm7Code decode_entry(std::uint8_t e)
{
    if (e == kNotFound) return {false, false, 0};
    return {true, (e & kEscapedBit) != 0, static_cast<std::uint8_t>(e & ~kEscapedBit)};
}

// Every character of a row must come back as found; an extension code
// 0x7F taken as the first match would read as kNotFound.
template <std::size_t Pages>
constexpr bool is_exact(const InverseTable<Pages> &t, const Gsm7Rows &main, const Gsm7Rows &ext)
{
    for (std::uint32_t r = 0; r < kRowCount; ++r)
        for (const Gsm7Rows *table : {&main, &ext})
            for (std::uint32_t v : (*table)[r])
                if (is_unit(v) && t.find(r, static_cast<std::uint16_t>(v)) == kNotFound) return false;
    return true;
}

}  // namespace inverse_detail
}  // namespace smsutil::charset
