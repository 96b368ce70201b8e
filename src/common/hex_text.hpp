// Octets as the modem's hexadecimal text and back, through tables built at
// compile time: one look-up per character instead of a chain of range tests.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

namespace smsutil::common {

// The four bits a character stands for.  Hexadecimal digits count in
// either case; any other character gives its own low four bits, which is
// how PDU text has always been read (it is never refused here).
inline constexpr std::array<std::uint8_t, 256> kNibbleOf = [] {
    std::array<std::uint8_t, 256> t{};
    for (unsigned c = 0; c < t.size(); ++c) t[c] = static_cast<std::uint8_t>(c & 0x0F);
    for (unsigned c = 'A'; c <= 'F'; ++c) t[c] = static_cast<std::uint8_t>(c - 'A' + 10);
    for (unsigned c = 'a'; c <= 'f'; ++c) t[c] = static_cast<std::uint8_t>(c - 'a' + 10);
    return t;
}();

inline std::uint8_t nibble_of(char c) { return kNibbleOf[static_cast<unsigned char>(c)]; }

// The two lowercase digits of every octet, so that an octet is written in
// one copy.
inline constexpr std::array<std::array<char, 2>, 256> kHexPairs = [] {
    constexpr char digits[] = "0123456789abcdef";
    std::array<std::array<char, 2>, 256> t{};
    for (unsigned v = 0; v < t.size(); ++v) t[v] = {digits[v >> 4], digits[v & 0x0F]};
    return t;
}();

// Writes 2 * count characters, no terminator.
inline char *put_hex(char *out, const std::uint8_t *in, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, out += 2) std::memcpy(out, kHexPairs[in[i]].data(), 2);
    return out;
}

}  // namespace smsutil::common
