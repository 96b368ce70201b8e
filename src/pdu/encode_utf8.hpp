// Strict reading of UTF-8 for the encoder: a text that is not well formed
// is refused as a whole rather than sent with guessed characters.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace smsutil::pdu {

// The character at text[pos] into cp, pos moved past it.  False, pos left
// where it was, at the end and for anything but the shortest form of a
// scalar value: stray continuation bytes, cut sequences, overlong forms,
// encoded surrogate halves and values above U+10FFFF.
constexpr bool next_code_point(std::span<const std::uint8_t> text, std::size_t &pos, char32_t &cp)
{
    if (pos >= text.size()) return false;
    const std::uint8_t lead = text[pos];
    if (lead < 0x80) {
        cp = lead;
        ++pos;
        return true;
    }
    std::size_t n = 0;
    char32_t value = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        n = 2;
        value = lead & 0x1F;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        n = 3;
        value = lead & 0x0F;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        n = 4;
        value = lead & 0x07;
    } else {
        return false;
    }
    if (text.size() - pos < n) return false;
    for (std::size_t i = 1; i < n; ++i) {
        const std::uint8_t b = text[pos + i];
        if ((b & 0xC0) != 0x80) return false;
        value = (value << 6) | (b & 0x3F);
    }
    if (n == 3 && (value < 0x800 || (value >= 0xD800 && value <= 0xDFFF))) return false;
    if (n == 4 && (value < 0x10000 || value > 0x10FFFF)) return false;
    cp = value;
    pos += n;
    return true;
}

}  // namespace smsutil::pdu
