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

// The same, already in the high half of an octet.
inline constexpr std::array<std::uint8_t, 256> kHighNibbleOf = [] {
    std::array<std::uint8_t, 256> t{};
    for (unsigned c = 0; c < t.size(); ++c) t[c] = static_cast<std::uint8_t>(kNibbleOf[c] << 4);
    return t;
}();

// Reads 2 * count characters into count octets, two octets per step.
inline std::uint8_t *get_hex(std::uint8_t *out, const char *in, std::size_t count)
{
    const auto *s = reinterpret_cast<const unsigned char *>(in);
    auto octet = [&](std::size_t at) { return static_cast<std::uint8_t>(kHighNibbleOf[s[at]] | kNibbleOf[s[at + 1]]); };
    std::size_t i = 0;
    for (; i + 2 <= count; i += 2, s += 4) {
        out[i] = octet(0);
        out[i + 1] = octet(2);
    }
    if (i < count) out[i++] = octet(0);
    return out + i;
}

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
