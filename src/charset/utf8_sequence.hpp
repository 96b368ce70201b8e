// How far one UTF-8 character reaches.  Counting and converting UTF-8
// anywhere in the library use this one rule, so that a count always
// matches what a conversion produces.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/octets.hpp"

namespace smsutil::charset {

inline constexpr std::size_t kMaxUtf8Sequence = 3;

// Length (1 to 3) of the sequence that starts at `text`, or 0 when `text`
// is at the terminator or the sequence is cut short by it.  Only the lead
// byte decides: below 0x80 one byte, 0xC0 to 0xDF two, anything else three
// (four-byte forms are not part of this text model).  Continuation bytes
// are taken as they come; no byte past the terminator is read.
constexpr std::size_t utf8_sequence_length(const unsigned char *text)
{
    const unsigned char lead = text[0];
    if (lead == 0) return 0;
    const std::size_t length = lead < 0x80 ? 1 : (lead >= 0xC0 && lead <= 0xDF) ? 2 : 3;
    for (std::size_t i = 1; i < length; ++i)
        if (text[i] == 0) return 0;
    return length;
}

inline std::size_t utf8_sequence_length(const char *text)
{
    return utf8_sequence_length(reinterpret_cast<const unsigned char *>(text));
}

// Bytes of one unit as UTF-8.
constexpr std::size_t utf8_length_of(std::uint16_t u) { return 1 + (u > 0x7F) + (u > 0x7FF); }

// One unit as UTF-8 at `p`, whose room the caller has checked; returns the
// end.  Surrogate units get no special treatment: each is a three-byte
// sequence of its own, since the text model has no pairs.
inline std::uint8_t *put_utf8_unchecked(std::uint8_t *p, std::uint16_t u)
{
    if (u <= 0x7F) {
        *p = static_cast<std::uint8_t>(u);
        return p + 1;
    }
    if (u <= 0x7FF) {
        p[0] = static_cast<std::uint8_t>(0xC0 | (u >> 6));
        p[1] = static_cast<std::uint8_t>(0x80 | (u & 0x3F));
        return p + 2;
    }
    p[0] = static_cast<std::uint8_t>(0xE0 | (u >> 12));
    p[1] = static_cast<std::uint8_t>(0x80 | ((u >> 6) & 0x3F));
    p[2] = static_cast<std::uint8_t>(0x80 | (u & 0x3F));
    return p + 3;
}

// One unit as UTF-8, all or nothing.
inline bool put_utf8(common::OctetWriter &out, std::uint16_t u)
{
    const std::size_t length = utf8_length_of(u);
    if (!out.has_room(length)) return false;
    put_utf8_unchecked(out.unwritten().data(), u);
    return out.advance(length);
}

}  // namespace smsutil::charset
