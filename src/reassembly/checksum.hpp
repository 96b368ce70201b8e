// CRC-32 (the reflected 0xEDB88320 polynomial) of a saved state: it catches
// every damaged byte and every burst of up to 32 bits.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace smsutil::reassembly {

inline constexpr std::array<uint32_t, 256> kCrcTable = [] {
    std::array<uint32_t, 256> table{};
    for (uint32_t n = 0; n < 256; ++n) {
        uint32_t c = n;
        for (int k = 0; k < 8; ++k) c = (c & 1U) != 0 ? 0xEDB88320U ^ (c >> 1) : c >> 1;
        table[n] = c;
    }
    return table;
}();

inline uint32_t crc32(const uint8_t *data, std::size_t len)
{
    uint32_t c = 0xFFFFFFFFU;
    for (std::size_t i = 0; i < len; ++i) c = kCrcTable[(c ^ data[i]) & 0xFFU] ^ (c >> 8);
    return c ^ 0xFFFFFFFFU;
}

}  // namespace smsutil::reassembly
