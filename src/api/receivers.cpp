// Receiver lists and the small string helpers that go with them.
#include <cstring>

#include "smsutil/sms_api.h"

namespace {

constexpr std::size_t kMaxReceiverChars = SMS_RECEIVER_NUMBER_SIZE - 1;

void store_receiver(SmsReceiver &r, const char *from, std::size_t len)
{
    if (len > kMaxReceiverChars) len = kMaxReceiverChars;
    std::memcpy(r.szNumber, from, len);
    r.szNumber[len] = '\0';
}

}  // namespace

extern "C" {

SMSUTIL_API int32_t sms_test_str_num(const char *text)
{
    if (text == nullptr || text[0] == '\0') return -1;
    for (const char *p = text; *p != '\0'; ++p)
        if (!((*p >= '0' && *p <= '9') || *p == '+')) return -1;
    return 0;
}

SMSUTIL_API char *sms_safe_cpy(char *dst, const char *src, int32_t size)
{
    if (dst == nullptr) return dst;
    if (src == nullptr || size < 1) {
        dst[0] = '\0';
        return dst;
    }
    const std::size_t n = strnlen(src, static_cast<std::size_t>(size) - 1);
    std::memcpy(dst, src, n);
    dst[n] = '\0';
    dst[size - 1] = '\0';
    return dst;
}

SMSUTIL_API int32_t sms_parse_receiver(const char *separator, const char *list, SmsReceiver *receivers)
{
    if (separator == nullptr || list == nullptr || receivers == nullptr) return 0;
    int32_t count = 0;
    const char *pos = list;
    while (count < SMS_MAX_RECEIVERS && *pos != '\0') {
        // An empty separator matches where the scan stands: every character
        // then ends an empty receiver.
        const char *match = std::strstr(pos, separator);
        if (match != nullptr) {
            store_receiver(receivers[count++], pos, static_cast<std::size_t>(match - pos));
            // The separator is taken as one character long.
            pos = match + 1;
            continue;
        }
        if (sms_test_str_num(pos) == 0) store_receiver(receivers[count++], pos, std::strlen(pos));
        break;
    }
    return count;
}

}  // extern "C"
