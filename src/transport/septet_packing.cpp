// GSM 7-bit packing: septets laid end to end, least significant bit first,
// optionally after fill bits that align text behind a user data header.
#include <algorithm>

#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

constexpr unsigned fill_of_start_code(unsigned start_code) { return start_code == 0 ? 0 : 8 - (start_code & 7); }

}  // namespace

std::size_t pack_septets(std::span<const std::uint8_t> septets, unsigned fill, std::span<std::uint8_t> out)
{
    fill %= 7;
    if (out.empty()) return 0;
    // The caller has cleared the fill bits of the first octet; anything it
    // keeps there (they belong to the octet before the text) is preserved.
    std::uint32_t acc = fill != 0 ? out[0] : 0;
    unsigned bits = fill;
    std::size_t pos = 0;
    // The septets whose whole octets fit; packing stops at the first octet
    // that does not.
    const std::size_t fitting = std::min(septets.size(), (8 * out.size() + 7 - fill) / 7);
    for (const std::uint8_t septet : septets.first(fitting)) {
        acc |= static_cast<std::uint32_t>(septet & 0x7F) << bits;
        bits += 7;
        // Seven bits in, so at most one whole octet out.
        if (bits >= 8) {
            out[pos++] = static_cast<std::uint8_t>(acc);
            acc >>= 8;
            bits -= 8;
        }
    }
    if (fitting == septets.size() && bits > 0 && pos < out.size()) out[pos++] = static_cast<std::uint8_t>(acc);
    return pos;
}

std::size_t unpack_septets(std::span<const std::uint8_t> in, std::size_t count, unsigned start_code,
                           std::span<std::uint8_t> out)
{
    const std::size_t fill = fill_of_start_code(start_code);
    // A septet is stored only when its last bit lies inside `in`.
    const std::size_t available = 8 * in.size() >= fill ? (8 * in.size() - fill) / 7 : 0;
    const std::size_t stored = std::min({count, out.size(), available});
    // Octets are fed in as the next septet needs them, so none past the
    // last stored septet's final octet is read.
    std::size_t next = fill / 8;
    std::uint32_t acc = 0;
    unsigned bits = 0;
    if (stored > 0) {
        acc = in[next++] >> (fill % 8);
        bits = 8 - fill % 8;
    }
    for (std::size_t i = 0; i < stored; ++i) {
        if (bits < 7) {
            acc |= static_cast<std::uint32_t>(in[next++]) << bits;
            bits += 8;
        }
        out[i] = static_cast<std::uint8_t>(acc & 0x7F);
        acc >>= 7;
        bits -= 7;
    }
    const std::size_t end_bit = fill + 7 * stored;
    // A character that fills the high seven bits of the octet just read is
    // stored as well, even one past the wanted count; the caller's length
    // says what is text.
    if (stored == count && end_bit % 8 == 1 && stored < out.size() && end_bit / 8 < in.size())
        out[stored] = static_cast<std::uint8_t>(in[end_bit / 8] >> 1);
    return std::min((end_bit + 7) / 8, in.size());
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint16_t wms_ts_pack_gw_7_bit_chars(const uint8_t *septets, uint16_t count, uint16_t fill,
                                                uint16_t capacity, uint8_t *out)
{
    if (out == nullptr || (septets == nullptr && count != 0)) return 0;
    return static_cast<uint16_t>(smsutil::transport::pack_septets(std::span<const uint8_t>(septets, count), fill,
                                                                  std::span<uint8_t>(out, capacity)));
}

SMSUTIL_API uint8_t wms_ts_unpack_gw_7_bit_chars(const uint8_t *packed, uint8_t count, uint8_t capacity,
                                                 uint16_t start_code, uint8_t *out)
{
    if (packed == nullptr || out == nullptr) return 0;
    // Only the octets that count characters occupy are read.
    const std::size_t size = smsutil::transport::packed_size(count, smsutil::transport::fill_of_start_code(start_code));
    return static_cast<uint8_t>(smsutil::transport::unpack_septets(std::span<const uint8_t>(packed, size), count,
                                                                   start_code, std::span<uint8_t>(out, capacity)));
}

}  // extern "C"
