// Conversions into and out of the national 8-bit code.  Text in that code
// turns into 7-bit codes one byte at a time: plain bytes are already
// codes, upper bytes become the escape and their extension code.
#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "charset/kv8bit_tables.hpp"
#include "common/feature_file.hpp"
#include "common/octets.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_charset.h"

namespace {

using namespace smsutil::charset;

constexpr std::size_t kSettingSize = 32;
// With this setting c cedilla, whose first byte is its Turkish one, goes
// out under the Spanish extension code instead.
constexpr int kSpanishCedillaSetting = 2;
constexpr std::uint8_t kTurkishCedillaCode = 0x63;
constexpr std::uint8_t kSpanishCedillaCode = 0x09;
// An escape pair is only written while three bytes of room remain.
constexpr std::uint32_t kPairRoom = 3;
constexpr std::uint8_t kEscape = GSM7_ESCAPE;

// The setting's decimal value as the text reads it: leading blanks and a
// sign allowed, anything else ends the number, no digits read as 0.  Out of
// range values saturate instead of overflowing.
int setting_value(const char *text)
{
    const long value = std::strtol(text, nullptr, 10);
    if (value > INT_MAX) return INT_MAX;
    if (value < INT_MIN) return INT_MIN;
    return static_cast<int>(value);
}

// Bytes 0x81 upward: the extension code from the writable table, which a
// gateway may have patched, so it is read at every call.
std::uint8_t extension_code(std::uint8_t byte, bool spanish_cedilla)
{
    const std::uint8_t code = extern_code_table[byte & kKv8bitLowMask];
    if (code == kTurkishCedillaCode && spanish_cedilla) return kSpanishCedillaCode;
    // An escape followed by 0 decodes to nothing, so an unassigned byte
    // vanishes instead of turning into some other character.
    return code == KV8BIT_NO_EXTENSION_CODE ? 0 : code;
}

// Length of a zero-terminated text that is not trusted to end within max.
std::uint32_t bounded_length(const std::uint8_t *text, std::uint32_t max)
{
    const void *end = std::memchr(text, 0, max);
    return end == nullptr ? max : static_cast<std::uint32_t>(static_cast<const std::uint8_t *>(end) - text);
}

}  // namespace

extern "C" SMSUTIL_API int32_t ucs2_to_kv8bit(const uint16_t *pUCS2, int32_t iInputLen, uint8_t *p8BitData,
                                              int32_t iBufLen, uint32_t *pdwOutputLen)
{
    if (pUCS2 == nullptr || p8BitData == nullptr || pdwOutputLen == nullptr || iInputLen < 0 || iInputLen > iBufLen)
        return -1;
    *pdwOutputLen = 0;
    for (int32_t i = 0; i < iInputLen; ++i) {
        const std::uint8_t byte = find_kv8bit_byte(pUCS2[i]);
        if (byte != 0) p8BitData[i] = byte;
    }
    *pdwOutputLen = static_cast<uint32_t>(iInputLen);
    p8BitData[iInputLen] = 0;
    return 0;
}

extern "C" SMSUTIL_API int32_t kv8bit_to_gsm7bit(const uint8_t *p8BitData, uint32_t dwInputLen, uint8_t *pGSM_7Data,
                                                 uint32_t dwBufLen, uint32_t *pdwOutputLen)
{
    if (p8BitData == nullptr || pGSM_7Data == nullptr || pdwOutputLen == nullptr || dwInputLen > dwBufLen) {
        SMS_TRACE(
            "(NULL == p8BitData) || (NULL == pGSM_7Data) || (NULL == pdwOutputLen) || (dwInputLen > "
            "dwBufLen)\n\n");
        return -1;
    }

    // An empty setting (no file, no key, a value too long) reads as 0.
    char bit7_code[kSettingSize] = {};
    smsutil::common::read_lang_table_setting(bit7_code, sizeof bit7_code);
    const int setting = setting_value(bit7_code);
    SMS_TRACE("bit7_code is %s\n\n", bit7_code);
    SMS_TRACE("atoi(bit7_code) is %d\n\n", setting);

    *pdwOutputLen = 0;
    // The dump shows the text up to its terminator, never past dwInputLen.
    DumpBuffer(p8BitData,
               static_cast<int32_t>(bounded_length(p8BitData, std::min<std::uint32_t>(dwInputLen, INT32_MAX))),
               "kv8bit_to_gsm7bit get data of 8bit");

    const bool spanish_cedilla = setting == kSpanishCedillaSetting;
    smsutil::common::OctetReader in(p8BitData, dwInputLen);
    smsutil::common::OctetWriter out(pGSM_7Data, dwBufLen);
    std::uint8_t byte = 0;
    while (out.remaining() > 0 && in.read(byte)) {
        if (byte <= kKv8bitAt) {
            out.put(static_cast<std::uint8_t>(byte & kKv8bitLowMask));
            continue;
        }
        if (out.remaining() < kPairRoom) {
            SMS_TRACE("count > dwBufLen - 2\n\n");
            return -1;
        }
        out.put(kEscape);
        out.put(extension_code(byte, spanish_cedilla));
    }
    // Input left once the output is full is dropped on purpose: the caller
    // sized the output for what it can send.
    *pdwOutputLen = static_cast<uint32_t>(out.position());
    return 0;
}

extern "C" SMSUTIL_API int32_t handle_input_sms_ascii_to_7bit(uint8_t *pText, uint32_t *pdwOutputLen)
{
    constexpr std::uint32_t kSize = KV8BIT_TEXT_BUFFER_SIZE;
    std::uint8_t work[kSize] = {};
    const std::uint32_t length = pText == nullptr ? 0 : bounded_length(pText, kSize);
    if (kv8bit_to_gsm7bit(pText, length, work, kSize, pdwOutputLen) != 0) return -1;
    DumpBuffer(work, static_cast<int32_t>(*pdwOutputLen), "handle_input_sms_ascii_to_7bit get gsm 7bit data");
    // The whole buffer is replaced: the codes may contain 0x00, so only the
    // returned length says where they end.
    std::memcpy(pText, work, kSize);
    return 0;
}
