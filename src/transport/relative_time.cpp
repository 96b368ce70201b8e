// The one-octet relative validity period (TP-VP, relative format) and the
// duration it stands for, held BCD-coded in a wms_timestamp.
#include <cstring>

#include "smsutil/wms_ts.h"

namespace {

unsigned bcd_or_zero(uint8_t bcd)
{
    uint8_t v = 0;
    wms_ts_bcd_to_int(bcd, &v);
    return v;
}

unsigned ceil_div(unsigned a, unsigned b) { return (a + b - 1) / b; }

}  // namespace

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_relative_time(const wms_timestamp *duration)
{
    if (duration == nullptr) return 0;
    const unsigned days =
        365 * bcd_or_zero(duration->year) + 30 * bcd_or_zero(duration->month) + bcd_or_zero(duration->day);
    if (days > 30) return static_cast<uint8_t>(192 + ceil_div(days, 7));
    if (days >= 1) return static_cast<uint8_t>(166 + days);
    const unsigned minutes = 60 * bcd_or_zero(duration->hour) + bcd_or_zero(duration->minute);
    // A zero duration wraps to 255, the longest period.
    if (minutes <= 720) return static_cast<uint8_t>(ceil_div(minutes, 5) - 1);
    return static_cast<uint8_t>(143 + (minutes - 691) / 30);
}

SMSUTIL_API void wms_ts_decode_relative_time(uint8_t vp, wms_timestamp *duration)
{
    if (duration == nullptr) return;
    std::memset(duration, 0, sizeof *duration);
    if (vp <= 143) {
        const unsigned total = (vp + 1u) * 5u;
        duration->hour = wms_ts_int_to_bcd(static_cast<uint8_t>(total / 60));
        duration->minute = wms_ts_int_to_bcd(static_cast<uint8_t>(total % 60));
    } else if (vp <= 166) {
        const unsigned extra = (vp - 143u) * 30u;
        duration->hour = wms_ts_int_to_bcd(static_cast<uint8_t>(12 + extra / 60));
        duration->minute = wms_ts_int_to_bcd(static_cast<uint8_t>(extra % 60));
    } else if (vp <= 196) {
        const unsigned d = vp - 166u;
        duration->month = wms_ts_int_to_bcd(static_cast<uint8_t>(d / 30));
        duration->day = wms_ts_int_to_bcd(static_cast<uint8_t>(d % 30));
    } else {
        const unsigned d = (vp - 192u) * 7u;
        const unsigned rest = d % 365;
        duration->year = wms_ts_int_to_bcd(static_cast<uint8_t>(d / 365));
        duration->month = wms_ts_int_to_bcd(static_cast<uint8_t>(rest / 30));
        duration->day = wms_ts_int_to_bcd(static_cast<uint8_t>(rest % 30));
    }
}

}  // extern "C"
