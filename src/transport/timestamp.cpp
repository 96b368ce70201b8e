// The seven-octet time stamp (TP-SCTS, TP-DT, absolute TP-VP): BCD fields
// sent as swapped semi-octets, then a signed quarter-hour time zone.
#include <array>

#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

constexpr std::uint8_t swap_nibbles(std::uint8_t v) { return static_cast<std::uint8_t>((v << 4) | (v >> 4)); }

struct FieldRange {
    std::uint8_t min;
    std::uint8_t max;
    std::uint8_t fallback;  // what a decoder substitutes for a bad value
};

// year, month, day, hour, minute, second
constexpr std::array<FieldRange, 6> kRanges{{{0, 99, 0}, {1, 12, 1}, {1, 31, 1}, {0, 23, 0}, {0, 59, 0}, {0, 59, 0}}};
constexpr int kMaxQuarterHours = 48;

std::array<std::uint8_t, 6> fields_of(const wms_timestamp &t)
{
    return {t.year, t.month, t.day, t.hour, t.minute, t.second};
}

constexpr bool in_range(std::uint8_t bcd, const FieldRange &range)
{
    const unsigned high = bcd >> 4;
    const unsigned low = bcd & 0x0F;
    if (high > 9 || low > 9) return false;
    const unsigned v = 10 * high + low;
    return v >= range.min && v <= range.max;
}

// What each field decodes to from every octet as sent: its BCD value with
// the semi-octets swapped back, or the field's fallback when out of range.
constexpr auto kDecoded = [] {
    std::array<std::array<std::uint8_t, 256>, 6> t{};
    for (std::size_t i = 0; i < t.size(); ++i)
        for (unsigned octet = 0; octet < 256; ++octet) {
            const std::uint8_t bcd = swap_nibbles(static_cast<std::uint8_t>(octet));
            t[i][octet] = in_range(bcd, kRanges[i]) ? bcd : kRanges[i].fallback;
        }
    return t;
}();

// The time zone octet as sent: quarter hours in swapped semi-octets, bit 3
// the sign; a value beyond 12 hours decodes as 0.
constexpr auto kZones = [] {
    std::array<std::int8_t, 256> t{};
    for (unsigned o = 0; o < t.size(); ++o) {
        const int zone = (o & 0x08) != 0 ? -static_cast<int>(10 * (o & 0x07) + (o >> 4))
                                         : static_cast<int>(10 * (o & 0x0F) + (o >> 4));
        t[o] = static_cast<std::int8_t>(zone < -kMaxQuarterHours || zone > kMaxQuarterHours ? 0 : zone);
    }
    return t;
}();

}  // namespace

std::size_t encode_timestamp(const wms_timestamp &time, OctetWriter &out)
{
    if (!out.has_room(kTimestampSize)) return 0;
    const auto fields = fields_of(time);
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (!in_range(fields[i], kRanges[i])) return 0;
        out.put(swap_nibbles(fields[i]));
    }
    const int zone = time.timezone;
    if (zone < -kMaxQuarterHours || zone > kMaxQuarterHours) return 0;
    const int m = zone < 0 ? -zone : zone;
    out.put(static_cast<std::uint8_t>(((m % 10) << 4) | (m / 10) | (zone < 0 ? 0x08 : 0)));
    return kTimestampSize;
}

bool decode_timestamp(OctetReader &in, wms_timestamp &time)
{
    std::span<const std::uint8_t> raw;
    if (!in.take(kTimestampSize, raw)) return false;
    time.year = kDecoded[0][raw[0]];
    time.month = kDecoded[1][raw[1]];
    time.day = kDecoded[2][raw[2]];
    time.hour = kDecoded[3][raw[3]];
    time.minute = kDecoded[4][raw[4]];
    time.second = kDecoded[5][raw[5]];
    time.timezone = kZones[raw[6]];
    return true;
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_timestamp(const wms_timestamp *time, uint8_t *out)
{
    if (time == nullptr || out == nullptr) return 0;
    smsutil::transport::OctetWriter w(out, smsutil::transport::kTimestampSize);
    return static_cast<uint8_t>(smsutil::transport::encode_timestamp(*time, w));
}

SMSUTIL_API uint8_t wms_ts_decode_timestamp(const uint8_t *data, wms_timestamp *time)
{
    if (data == nullptr || time == nullptr) return 0;
    smsutil::transport::OctetReader r(data, smsutil::transport::kTimestampSize);
    smsutil::transport::decode_timestamp(r, *time);
    return smsutil::transport::kTimestampSize;
}

}  // extern "C"
