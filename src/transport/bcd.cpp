// BCD helpers shared by the time stamp, address and message-API code.
#include "common/bcd_value.hpp"
#include "smsutil/wms_ts.h"

extern "C" {

SMSUTIL_API uint8_t wms_ts_int_to_bcd(uint8_t v) { return static_cast<uint8_t>(((v / 10) << 4) + (v % 10)); }

SMSUTIL_API uint8_t wms_ts_bcd_to_int(uint8_t bcd, uint8_t *value)
{
    uint8_t v = 0;
    const bool digits = smsutil::common::bcd_value(bcd, v);
    if (value != nullptr) *value = v;
    return digits ? 1 : 0;
}

SMSUTIL_API void wms_ts_ascii_to_bcd(const char *text, uint8_t count, uint8_t *digits)
{
    if (text == nullptr || digits == nullptr) return;
    for (uint8_t i = 0; i < count; ++i) {
        const char c = text[i];
        digits[i] = c == '#' ? 11 : c == '*' ? 10 : static_cast<uint8_t>(c - '0');
    }
}

SMSUTIL_API void wms_ts_bcd_to_ascii(const uint8_t *digits, uint8_t count, char *text)
{
    if (text == nullptr || digits == nullptr) return;
    for (uint8_t i = 0; i < count; ++i) text[i] = smsutil::common::kBcdDigitChars[digits[i] & 0x0F];
}

}  // extern "C"
