// Eight octets as one 64-bit word, octet k of memory in bits 8k..8k+7 on
// any host, for the codecs that work on a word of octets at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace smsutil::common {

inline std::uint64_t little_endian(std::uint64_t w)
{
    if constexpr (std::endian::native == std::endian::big) {
        std::uint64_t r = 0;
        for (unsigned k = 0; k < 8; ++k, w >>= 8) r = r << 8 | (w & 0xFF);
        return r;
    }
    return w;
}

// Reads exactly eight octets.
inline std::uint64_t load_le64(const std::uint8_t *p)
{
    std::uint64_t w;
    std::memcpy(&w, p, sizeof w);
    return little_endian(w);
}

// Writes the low `count` (at most eight) octets of w.
inline void store_le64(std::uint8_t *p, std::uint64_t w, std::size_t count)
{
    const std::uint64_t le = little_endian(w);
    std::memcpy(p, &le, count);
}

// Every octet of a word set to `octet`.
constexpr std::uint64_t each_octet(std::uint8_t octet) { return 0x0101010101010101u * octet; }

}  // namespace smsutil::common
