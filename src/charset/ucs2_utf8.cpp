// UCS-2 to UTF-8 and back, and the lengths that go with them.
#include <cstring>

#include "charset/utf8_sequence.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_charset.h"

namespace {

using smsutil::charset::put_utf8_unchecked;
using smsutil::charset::utf8_length_of;
using smsutil::charset::utf8_sequence_length;

// The unit of one complete sequence of `length` bytes.
uint16_t decode_utf8(const unsigned char *s, std::size_t length)
{
    switch (length) {
    case 1:
        return s[0];
    case 2:
        return static_cast<uint16_t>(((s[0] & 0x1F) << 6) | (s[1] & 0x3F));
    default:
        return static_cast<uint16_t>(((s[0] & 0x0F) << 12) | ((s[1] & 0x3F) << 6) | (s[2] & 0x3F));
    }
}

}  // namespace

extern "C" SMSUTIL_API int32_t sms_wcslen(const uint16_t *pUCS2)
{
    int32_t n = 0;
    if (pUCS2 != nullptr)
        while (pUCS2[n] != 0) ++n;
    return n;
}

extern "C" SMSUTIL_API int32_t MultiByte_WideChar(const char *pUTF8)
{
    if (pUTF8 == nullptr) return 0;
    int32_t count = 0;
    for (std::size_t step; (step = utf8_sequence_length(pUTF8)) != 0; pUTF8 += step) ++count;
    return count;
}

extern "C" SMSUTIL_API int32_t UCS2_TO_UTF8(const uint16_t *pUCS2, char *pUTF8, int32_t iBufLen)
{
    if (pUCS2 == nullptr || pUTF8 == nullptr) {
        SMS_TRACE("Param error.\n\n");
        return -1;
    }
    int32_t units = 0;
    while (pUCS2[units] != 0) ++units;
    // Checked up front so that a text that does not fit leaves the
    // destination untouched rather than cut inside a character.  The bytes
    // are only counted when three per unit might not fit.
    std::size_t bytes = 3 * static_cast<std::size_t>(units);
    if (units <= iBufLen && bytes > static_cast<std::size_t>(iBufLen)) {
        bytes = 0;
        for (int32_t i = 0; i < units; ++i) bytes += utf8_length_of(pUCS2[i]);
    }
    if (units > iBufLen || bytes > static_cast<std::size_t>(iBufLen)) {
        SMS_TRACE("Space is not enough!.[%d][%d]\n\n", units, iBufLen);
        return -1;
    }
    auto *p = reinterpret_cast<uint8_t *>(pUTF8);
    for (int32_t i = 0; i < units; ++i) p = put_utf8_unchecked(p, pUCS2[i]);
    return 0;
}

namespace {

// Units low byte first, whatever the host's order, as long as two bytes of
// room remain; returns the number of characters, written or not.
int32_t put_ucs2_units(const unsigned char *s, uint8_t *out, std::size_t capacity)
{
    int32_t count = 0;
    uint8_t *const end = out + capacity;
    for (std::size_t step; (step = utf8_sequence_length(s)) != 0; s += step, ++count) {
        if (end - out < 2) continue;
        const uint16_t unit = decode_utf8(s, step);
        out[0] = static_cast<uint8_t>(unit & 0xFF);
        out[1] = static_cast<uint8_t>(unit >> 8);
        out += 2;
    }
    return count;
}

}  // namespace

extern "C" SMSUTIL_API int32_t UTF8_TO_UCS2(const char *pUTF8, uint8_t *pUCS2, int32_t iBufLen)
{
    if (pUTF8 == nullptr || pUCS2 == nullptr) {
        SMS_TRACE("Param error.\n\n");
        return -1;
    }
    const std::size_t bytes = std::strlen(pUTF8);
    const auto *text = reinterpret_cast<const unsigned char *>(pUTF8);
    // No text has more characters than bytes: one that fits the check by
    // its bytes is converted in the same pass that counts it.  Otherwise it
    // is counted first, so that a refused text leaves the buffer untouched.
    const bool fits = iBufLen >= 0 && bytes <= static_cast<std::size_t>(iBufLen);
    const int32_t count =
        fits ? put_ucs2_units(text, pUCS2, static_cast<std::size_t>(iBufLen)) : MultiByte_WideChar(pUTF8);
    SMS_TRACE("The UCSlen is %d\n\n", count);
    // Callers size the check in characters but the buffer in bytes, so the
    // check passes texts that then only partly fit; the writing stops at the
    // byte capacity.
    if (count > iBufLen) {
        SMS_TRACE("Space is not enough!.[%d][%d]\n\n", count, iBufLen);
        return -1;
    }
    SMS_TRACE("The strlen of *pTempUTF8  is %d\n\n", static_cast<int>(bytes));
    if (!fits) put_ucs2_units(text, pUCS2, static_cast<std::size_t>(iBufLen));
    SMS_TRACE("The UCSlen returned is %d\n\n", count);
    return count;
}
