// Octets as the modem's hexadecimal text and back, through tables built at
// compile time: one look-up per character instead of a chain of range tests.
#pragma once

#include <array>
#include <cstdint>
#include <cstring>

#include "common/le_words.hpp"

#if defined(__SSE2__)
#include <emmintrin.h>
#elif defined(__ARM_NEON)
#include <arm_neon.h>
#endif

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

// Eight characters into four octets in one 64-bit word, computing each
// nibble as its low four bits plus nine when bit 6 is set.  That agrees
// with kNibbleOf for every character without bit 6 and for the letters A
// to F in either case; a word holding any other character returns false
// with nothing written.  Bits 7 and 5 are cleared before the range test so
// that no byte carries into the next.
inline bool get_hex8(std::uint8_t *out, const unsigned char *in)
{
    const std::uint64_t w = load_le64(in);
    const std::uint64_t top = each_octet(0x80);
    const std::uint64_t upper = w & each_octet(0x5F);
    const std::uint64_t letter = (upper + each_octet(0x80 - 'A')) & ~(upper + each_octet(0x7F - 'F'));
    const std::uint64_t bit6 = (w << 1) & top;
    if ((bit6 & (w | ~letter)) != 0) return false;
    // A letter has bit 6 set and stands for its low four bits plus nine.
    const std::uint64_t nibbles = (w & each_octet(0x0F)) + ((w >> 6) & each_octet(0x01)) * 9;
    // Two nibbles per 16-bit lane, then the four octets pulled together.
    std::uint64_t y = (nibbles & 0x00FF00FF00FF00FFu) << 4 | (nibbles >> 8 & 0x00FF00FF00FF00FFu);
    y = (y | y >> 8) & 0x0000FFFF0000FFFFu;
    store_le64(out, y | y >> 16, 4);
    return true;
}

#if (defined(__SSE2__) || defined(__ARM_NEON)) && __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__
#define SMSUTIL_HEX16 1
// Sixteen characters into eight octets by the rule of get_hex8, where the
// host has 128-bit vectors; false with nothing written otherwise.  Each
// 16-bit lane holds a character pair, the first one in its low octet.
inline bool get_hex16(std::uint8_t *out, const unsigned char *in)
{
    using Bytes = std::uint8_t __attribute__((vector_size(16)));
    using Pairs = std::uint16_t __attribute__((vector_size(16)));
    Bytes w;
    std::memcpy(&w, in, sizeof w);
    const auto letter = (Bytes)((w & 0x40) != 0);
    const auto refused = letter & (Bytes)((Bytes)((w & 0xDF) - 'A') >= 6);
#if defined(__SSE2__)
    if (_mm_movemask_epi8((__m128i)refused) != 0) return false;
#else
    std::uint64_t halves[2];
    std::memcpy(halves, &refused, sizeof halves);
    if ((halves[0] | halves[1]) != 0) return false;
#endif
    const auto pairs = (Pairs)((w & 0x0F) + (letter & 9));
    const Pairs octets = ((pairs & 0xFF) << 4) | (pairs >> 8);
    // Every lane is below 256: the narrowing is one instruction where the
    // host has it, and the generic conversion otherwise.
#if defined(__SSE2__)
    const __m128i packed = _mm_packus_epi16((__m128i)octets, (__m128i)octets);
    _mm_storel_epi64(reinterpret_cast<__m128i *>(out), packed);
#else
    vst1_u8(out, vmovn_u16((uint16x8_t)octets));
#endif
    return true;
}
#endif

// The pairs no word step took (a short text, or a group holding some other
// character), one at a time: out of line, so that the usual call keeps no
// registers for this loop.
[[gnu::noinline]] inline void get_hex_pairs(std::uint8_t *out, const unsigned char *s, std::size_t from,
                                            std::size_t count)
{
    for (std::size_t i = from; i < count; ++i)
        out[i] = static_cast<std::uint8_t>(kNibbleOf[s[2 * i]] << 4 | kNibbleOf[s[2 * i + 1]]);
}

// Reads 2 * count characters into count octets.
inline std::uint8_t *get_hex(std::uint8_t *out, const char *in, std::size_t count)
{
    const auto *s = reinterpret_cast<const unsigned char *>(in);
    std::size_t i = 0;
    // A short rest is decoded as the last whole group, which overlaps octets
    // already decoded and gives them the same values again.
#ifdef SMSUTIL_HEX16
    while (count - i >= 8 && get_hex16(out + i, s + 2 * i)) i += 8;
    if (i < count && count - i < 8 && count >= 8 && get_hex16(out + count - 8, s + 2 * (count - 8))) i = count;
#endif
    while (count - i >= 4 && get_hex8(out + i, s + 2 * i)) i += 4;
    if (i < count && count - i < 4 && count >= 4 && get_hex8(out + count - 4, s + 2 * (count - 4))) i = count;
    if (i < count) get_hex_pairs(out, s, i, count);
    return out + count;
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
