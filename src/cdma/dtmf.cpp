// DTMF digit codes (1-9, 10 for 0, 11 for '*', 12 for '#') to and from
// the characters they dial.
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "smsutil/wms_cdma.h"

namespace {

constexpr char kDigitChars[] = "1234567890*#";
constexpr std::uint8_t kLastCode = 12;

// 0 for a character that has no DTMF code.
constexpr std::uint8_t code_of(char c)
{
    for (std::uint8_t i = 0; i < kLastCode; ++i)
        if (kDigitChars[i] == c) return static_cast<std::uint8_t>(i + 1);
    return 0;
}

}  // namespace

extern "C" SMSUTIL_API uint8_t wms_ts_dtmf2ascii(uint8_t count, const uint8_t *codes, char *text)
{
    if (codes == nullptr || text == nullptr) return 0;
    for (std::size_t i = 0; i < count; ++i) {
        if (codes[i] == 0 || codes[i] > kLastCode) return 0;
        text[i] = kDigitChars[codes[i] - 1];
    }
    return count;
}

extern "C" SMSUTIL_API uint8_t wms_ts_ascii2dtmf(const char *text, uint8_t *codes)
{
    if (text == nullptr || codes == nullptr) return 0;
    // Counts are 8-bit: a text of 256 characters or more wraps around.
    const auto count = static_cast<std::uint8_t>(std::strlen(text));
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint8_t code = code_of(text[i]);
        if (code == 0) return 0;
        codes[i] = code;
    }
    return count;
}
