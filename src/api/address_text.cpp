// Addresses and octets as text: a decoded TP address for the caller, and
// PDU octets as the modem's hexadecimal text.
#include <cstring>

#include "api/extract_steps.hpp"
#include "common/bcd_value.hpp"
#include "common/hex_text.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"

extern "C" {

SMSUTIL_API int32_t DecodeAddress(const wms_address *address, char *pszAddr, uint32_t *pdwLen)
{
    SMS_RETURN_IF_NULL(pszAddr);
    if (address == nullptr || pdwLen == nullptr || *pdwLen == 0) return -1;
    *pdwLen = smsutil::api::address_text(*address, pszAddr, *pdwLen);
    return 0;
}

SMSUTIL_API void BcdToAscii(char *out, const uint8_t *in, uint32_t count)
{
    if (out == nullptr) return;
    if (in != nullptr) out = smsutil::common::put_hex(out, in, count);
    *out = '\0';
}

}  // extern "C"

extern "C" SMSUTIL_API void AsciiToBcd(uint8_t *out, const char *in, uint32_t count)
{
    if (out == nullptr || in == nullptr) return;
    // Characters go in pairs: an odd count takes the character after the
    // last one as its low nibble (for a whole string, the terminator: 0).
    smsutil::common::get_hex(out, in, (static_cast<std::size_t>(count) + 1) / 2);
}

uint32_t smsutil::api::address_text(const wms_address &address, char *out, uint32_t capacity)
{
    uint32_t pos = 0;
    uint32_t room = capacity - 1;
    if (address.number_type == WMS_NUMBER_INTERNATIONAL && room > 0) {
        out[pos++] = '+';
        --room;
    }
    uint32_t count = address.number_of_digits;
    if (count > room) count = room;
    if (count > WMS_ADDRESS_DIGITS_SIZE) count = WMS_ADDRESS_DIGITS_SIZE;
    if (address.digit_mode != WMS_DIGIT_MODE_BCD)
        std::memcpy(out + pos, address.digits, count);
    else
        for (uint32_t i = 0; i < count; ++i) out[pos + i] = common::kBcdDigitChars[address.digits[i] & 0x0F];
    pos += count;
    out[pos] = '\0';
    SMS_TRACE_AS("DecodeAddress", "DecodeAddress function run successfully!\n\n");
    return pos;
}
