// GSM 7-bit packing: septets laid end to end, least significant bit first,
// optionally after fill bits that align text behind a user data header.
#include <algorithm>

#include "common/le_words.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

constexpr unsigned fill_of_start_code(unsigned start_code) { return start_code == 0 ? 0 : 8 - (start_code & 7); }

// Eight septets take exactly seven octets, so whole groups go through one
// 64-bit word: the septets are spread to (or gathered from) one per octet
// by halving the bit fields three times instead of one shift per septet.
constexpr std::size_t kGroupSeptets = 8;
constexpr std::size_t kGroupOctets = 7;

// 56 bits of septets, first septet lowest, into eight octets of seven bits.
inline std::uint64_t spread_septets(std::uint64_t w)
{
    w = (w & 0x000000000FFFFFFFu) | (w & 0x00FFFFFFF0000000u) << 4;
    w = (w & 0x00003FFF00003FFFu) | (w & 0x0FFFC0000FFFC000u) << 2;
    return (w & 0x007F007F007F007Fu) | (w & 0x3F803F803F803F80u) << 1;
}

// The inverse: eight octets, their high bits ignored, into 56 bits.
inline std::uint64_t gather_septets(std::uint64_t w)
{
    w &= 0x7F7F7F7F7F7F7F7Fu;
    w = (w & 0x007F007F007F007Fu) | (w & 0x7F007F007F007F00u) >> 1;
    w = (w & 0x00003FFF00003FFFu) | (w & 0x3FFF00003FFF0000u) >> 2;
    return (w & 0x000000000FFFFFFFu) | (w & 0x0FFFFFFF00000000u) >> 4;
}

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
    std::size_t done = 0;
    // Fewer than eight pending bits plus a 56-bit group fit one word.
    for (; fitting - done >= kGroupSeptets && out.size() - pos >= kGroupOctets; done += kGroupSeptets) {
        const std::uint64_t w = acc | gather_septets(common::load_le64(&septets[done])) << bits;
        common::store_le64(&out[pos], w, kGroupOctets);
        pos += kGroupOctets;
        acc = static_cast<std::uint32_t>(w >> 56);
    }
    for (const std::uint8_t septet : septets.subspan(done, fitting - done)) {
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
    // Nothing outside `in` is read: past the groups, octets are fed in as
    // the next septet needs them.
    std::size_t next = fill / 8;
    std::size_t i = 0;
    // A whole group is read as eight octets (the last one only for the bits
    // past the fill), and only while all eight lie inside `in`.
    for (; stored - i >= kGroupSeptets && in.size() - next >= 8; i += kGroupSeptets, next += kGroupOctets)
        common::store_le64(&out[i], spread_septets(common::load_le64(&in[next]) >> (fill % 8)), kGroupSeptets);
    std::uint32_t acc = 0;
    unsigned bits = 0;
    if (stored > i) {
        acc = in[next++] >> (fill % 8);
        bits = 8 - fill % 8;
    }
    for (; i < stored; ++i) {
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
