// Internal view of the 7-bit code tables: their shape and the one bounded
// way to read an entry.
#pragma once

#include <array>
#include <cstdint>

#include "smsutil/sms_charset.h"

namespace smsutil::charset {

inline constexpr std::uint32_t kRowCount = GSM7_TABLE_ROWS;
inline constexpr std::uint32_t kCodeCount = GSM7_TABLE_CODES;
inline constexpr std::uint8_t kEscape = GSM7_ESCAPE;
inline constexpr std::uint32_t kNoCharacter = GSM7_NO_CHARACTER;
// Codes above this are refused as corrupt; 128 itself merely has no
// character, which callers report differently.
inline constexpr std::uint32_t kHighestAcceptedCode = 128;

using Gsm7Rows = std::uint32_t[kRowCount][kCodeCount];

// A received text may name a national language we have no table for; it is
// read through the default row so that the message stays legible.
constexpr std::uint32_t decoding_row(std::uint32_t coding) { return coding < kRowCount ? coding : 0; }

// The character of `code` in the row of `coding`, or kNoCharacter for a
// code past the end of a row.  Never indexes outside the table.
constexpr std::uint32_t gsm7_value(const Gsm7Rows &table, std::uint32_t coding, std::uint32_t code)
{
    return code < kCodeCount ? table[decoding_row(coding)][code] : kNoCharacter;
}

// One code's character as UTF-8, ready to be copied as four bytes of
// which `length` count.  A length of 0 marks a code that needs more than a
// look-up: the escape, and a character that would end the text.
struct Utf8Code {
    std::uint8_t bytes[3];
    std::uint8_t length;
};

// The default alphabet as UTF-8, for the usual received text, indexed by
// any octet so that a code past the alphabet needs no test of its own.
extern const std::array<Utf8Code, 256> kDefaultRowUtf8;

// Codes that stand for their own ASCII character: the space to 'z' except
// '$', '@' and the six between 'Z' and 'a'.  Most received text is made of
// them, which lets a converter check and copy several at a time.
struct CodeRange {
    std::uint8_t low;
    std::uint8_t high;
};
inline constexpr CodeRange kAsciiCodes{0x20, 0x7A};
inline constexpr CodeRange kNotAscii[] = {{0x24, 0x24}, {0x40, 0x40}, {0x5B, 0x60}};

}  // namespace smsutil::charset
