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
    std::size_t pos = 0;
    // The caller has cleared the fill bits of the first octet; anything it
    // keeps there (they belong to the octet before the text) is preserved.
    auto emit = [&](std::uint32_t octet) {
        if (pos >= out.size()) return false;
        const auto v = static_cast<std::uint8_t>(octet & 0xFF);
        out[pos] = (pos == 0 && fill != 0) ? static_cast<std::uint8_t>(out[0] | v) : v;
        ++pos;
        return true;
    };
    std::uint32_t acc = 0;
    unsigned bits = fill;
    for (const std::uint8_t septet : septets) {
        acc |= static_cast<std::uint32_t>(septet & 0x7F) << bits;
        bits += 7;
        for (; bits >= 8; bits -= 8, acc >>= 8) {
            if (!emit(acc)) return pos;
        }
    }
    if (bits > 0) emit(acc);
    return pos;
}

std::size_t unpack_septets(std::span<const std::uint8_t> in, std::size_t count, unsigned start_code,
                           std::span<std::uint8_t> out)
{
    const std::size_t fill = fill_of_start_code(start_code);
    const std::size_t wanted = std::min(count, out.size());
    std::size_t stored = 0;
    for (; stored < wanted; ++stored) {
        const std::size_t bit = fill + 7 * stored;
        const std::size_t first = bit / 8;
        const std::size_t last = (bit + 6) / 8;
        if (last >= in.size()) break;
        std::uint32_t window = in[first];
        if (last != first) window |= static_cast<std::uint32_t>(in[last]) << 8;
        out[stored] = static_cast<std::uint8_t>((window >> (bit % 8)) & 0x7F);
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
