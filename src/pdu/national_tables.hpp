// The GSM 7-bit alphabet of the standards-true codec: the default alphabet
// and its extension table, and the Turkish, Spanish and Portuguese
// national language locking-shift and single-shift tables, in both
// directions.  These are independent of the fixed interface's tables in
// src/charset, which keep the gateway's own contents.
//
// A text is read through one locking-shift table (its main table) and one
// single-shift table (what follows the escape 0x1B); the user data header
// names the language of each, and a header that names none means the
// default alphabet for both.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "pdu/national_rows.hpp"

namespace smsutil::pdu {

// Language identifiers as the national language shift elements carry them.
enum Language : std::uint8_t {
    kDefaultLanguage = 0,
    kTurkish = 1,
    kSpanish = 2,
    kPortuguese = 3,
};
inline constexpr unsigned kLanguageCount = 4;

using Row = rows::Row;
inline constexpr std::uint8_t kEscape = 0x1B;
// Table entry of a code without a character (and of the escape itself).
inline constexpr std::uint16_t kNoCharacter = 0xFFFF;

// Whether `id` has a table of its own.  Spanish has a single-shift table
// but no locking-shift table; a locking shift to Spanish selects the
// default alphabet and is not an error.
constexpr bool has_locking_table(unsigned id) { return id == kTurkish || id == kPortuguese; }
constexpr bool has_single_shift_table(unsigned id) { return id >= kTurkish && id <= kPortuguese; }
// Identifiers above this have no table of either kind.
constexpr bool is_known_language(unsigned id) { return id < kLanguageCount; }

// The main table a locking shift to `id` selects: the default alphabet for
// 0, for Spanish and for a language without a table.
constexpr const Row &locking_row(unsigned id)
{
    return id == kTurkish ? rows::kLocking[1] : id == kPortuguese ? rows::kLocking[2] : rows::kLocking[0];
}
// The table after the escape under a single shift to `id`: the default
// extension table for 0 and for a language without a table.
constexpr const Row &single_shift_row(unsigned id)
{
    return has_single_shift_table(id) ? rows::kSingleShift[id] : rows::kSingleShift[0];
}

// ---- Text to 7-bit codes ----

inline constexpr std::uint8_t kNoCode = 0xFF;

// Where one character goes in every table at once, so that an encoder
// weighing the languages against each other looks a character up once.
// Indexed by language identifier; kNoCode where the table lacks it.
// locking[kSpanish] repeats the default alphabet's code.
struct Codes {
    std::array<std::uint8_t, kLanguageCount> locking;
    std::array<std::uint8_t, kLanguageCount> single;
};

namespace inverse_detail {

inline constexpr Codes kNone = {{kNoCode, kNoCode, kNoCode, kNoCode}, {kNoCode, kNoCode, kNoCode, kNoCode}};

// Most characters are Latin-1 and are looked up directly; the few others
// (Greek capitals, Turkish letters, euro, infinity) sit in a short list
// sorted by code point.
struct WideEntry {
    char32_t code_point;
    Codes codes;
};

template <typename Visit>
constexpr void for_each_entry(Visit visit)
{
    for (unsigned id = 0; id < kLanguageCount; ++id) {
        // Lowest code first: were a character in a table twice, the first
        // code would be the one kept.
        for (std::size_t c = 0; c < 128; ++c) visit(locking_row(id)[c], id, false, static_cast<std::uint8_t>(c));
        for (std::size_t c = 0; c < 128; ++c) visit(single_shift_row(id)[c], id, true, static_cast<std::uint8_t>(c));
    }
}

constexpr std::size_t wide_count()
{
    std::array<char32_t, 7 * 128> seen{};
    std::size_t n = 0;
    for_each_entry([&](std::uint16_t v, unsigned, bool, std::uint8_t) {
        if (v == kNoCharacter || v < 0x100) return;
        for (std::size_t i = 0; i < n; ++i)
            if (seen[i] == v) return;
        seen[n++] = v;
    });
    return n;
}

struct Inverse {
    std::array<Codes, 256> latin1;
    std::array<WideEntry, wide_count()> wide;
};

constexpr void set_code(Codes &codes, unsigned id, bool single, std::uint8_t code)
{
    std::uint8_t &slot = single ? codes.single[id] : codes.locking[id];
    if (slot == kNoCode) slot = code;
}

constexpr Inverse build()
{
    Inverse t{};
    for (Codes &c : t.latin1) c = kNone;
    std::size_t n = 0;
    for_each_entry([&](std::uint16_t v, unsigned, bool, std::uint8_t) {
        if (v == kNoCharacter || v < 0x100) return;
        for (std::size_t i = 0; i < n; ++i)
            if (t.wide[i].code_point == v) return;
        t.wide[n++] = {v, kNone};
    });
    // Insertion sort: a handful of entries, once, at compile time.
    for (std::size_t i = 1; i < n; ++i)
        for (std::size_t j = i; j > 0 && t.wide[j - 1].code_point > t.wide[j].code_point; --j) {
            const WideEntry tmp = t.wide[j];
            t.wide[j] = t.wide[j - 1];
            t.wide[j - 1] = tmp;
        }
    for_each_entry([&](std::uint16_t v, unsigned id, bool single, std::uint8_t code) {
        if (v == kNoCharacter) return;
        if (v < 0x100) {
            set_code(t.latin1[v], id, single, code);
            return;
        }
        for (WideEntry &e : t.wide)
            if (e.code_point == v) set_code(e.codes, id, single, code);
    });
    return t;
}

inline constexpr Inverse kInverse = build();

}  // namespace inverse_detail

// The codes of `code_point` in every table; all kNoCode for a character no
// table holds (and for any code point beyond the tables' range).
constexpr const Codes &codes_of(char32_t code_point)
{
    using namespace inverse_detail;
    if (code_point < 0x100) return kInverse.latin1[code_point];
    std::size_t lo = 0;
    std::size_t hi = kInverse.wide.size();
    while (lo < hi) {
        const std::size_t mid = (lo + hi) / 2;
        if (kInverse.wide[mid].code_point < code_point)
            lo = mid + 1;
        else
            hi = mid;
    }
    return lo < kInverse.wide.size() && kInverse.wide[lo].code_point == code_point ? kInverse.wide[lo].codes : kNone;
}

// The code of `code_point` in the main table of language `id` (as
// locking_row selects it), or kNoCode.
constexpr std::uint8_t locking_code(unsigned id, char32_t code_point)
{
    return codes_of(code_point).locking[is_known_language(id) ? id : 0u];
}
// The code that follows the escape for `code_point` under a single shift to
// `id` (as single_shift_row selects it), or kNoCode.
constexpr std::uint8_t single_shift_code(unsigned id, char32_t code_point)
{
    return codes_of(code_point).single[is_known_language(id) ? id : 0u];
}

}  // namespace smsutil::pdu
