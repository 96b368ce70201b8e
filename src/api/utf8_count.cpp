// find_utf8_count: where the first n characters of a UTF-8 text end, by the
// same sequence rule every text conversion uses.
#include "charset/utf8_sequence.hpp"
#include "smsutil/sms_api.h"

extern "C" SMSUTIL_API int32_t find_utf8_count(int32_t n, const char *text)
{
    if (text == nullptr) return -1;
    int32_t bytes = 0;
    for (int32_t chars = 0; chars < n; ++chars) {
        const std::size_t len = smsutil::charset::utf8_sequence_length(text + bytes);
        if (len == 0) break;
        bytes += static_cast<int32_t>(len);
    }
    return bytes;
}
