// Characters beyond the Basic Multilingual Plane (emoji above all) travel
// in UCS-2 as a high and a low surrogate.  The library converts each 16-bit
// unit on its own: it writes a surrogate as a three-byte sequence and reads
// no four-byte UTF-8.  These helpers carry text between that form and the
// UTF-8 a person types and reads.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace smsutil::cli {

inline constexpr uint32_t kReplacementCharacter = 0xFFFD;

struct Utf8Character {
    uint32_t code_point = 0;
    size_t length = 0;  // bytes taken; 1 for a byte that starts no valid sequence
};

// The character at pos (which must be inside the text); a byte that does
// not start a valid sequence reads as U+FFFD of length 1.
Utf8Character utf8_character_at(std::string_view text, size_t pos);

// UTF-8 of one code point (U+FFFD for one that has none).
std::string utf8_of(uint32_t code_point);

// Characters of the text, and the UCS-2 units they take on the air.
size_t utf8_character_count(std::string_view text);
size_t ucs2_unit_count(std::string_view text);

// True when a character needs a surrogate pair.
bool has_supplementary_character(std::string_view text);

// Every four-byte character written as its high and low surrogate, a
// three-byte sequence each: the form the library's UTF-8 to UCS-2
// conversion turns into the right two units.  Other bytes are kept.
std::string to_library_utf8(std::string_view text);

// The library's UTF-8 made valid: a high surrogate followed by a low one
// becomes the one four-byte character, a lone surrogate U+FFFD.
std::string from_library_utf8(std::string_view bytes);

}  // namespace smsutil::cli
