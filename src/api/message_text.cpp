#include "api/message_text.hpp"

#include <cstring>
#include <utility>

#include "common/trace.hpp"
#include "smsutil/sms_charset.h"

namespace smsutil::api {

int32_t convert_text(SmsMessageData &msg, SmsMessage *out, const char *caller)
{
    if (out->sms_content_code == SMS_CONTENT_UCS2) {
        // The decoder left the units in host order; copy them out of the
        // byte array instead of aliasing it.
        uint16_t units[SMS_PDU_TEXT_SIZE / 2 + 1] = {};
        std::memcpy(units, msg.SmsData, sizeof msg.SmsData - 1);
        const int32_t ret = UCS2_TO_UTF8(units, out->content, SMS_PDU_TEXT_SIZE);
        if (ret != 0) {
            SMS_TRACE_AS(caller, "UCS2_TO_UTF8 function run unsuccessfully!\n\n");
            return ret;
        }
        out->byContentLen = static_cast<uint8_t>(strnlen(out->content, sizeof out->content));
        return 0;
    }
    uint32_t utf8_len = 0;
    if (handle_input_sms_7bit_to_utf8(msg.SmsData, msg.dwLength, msg.byteCoding, msg.byLangShift, &utf8_len) != 0)
        return -1;
    out->byContentLen = static_cast<uint8_t>(utf8_len);
    out->sms_content_code = SMS_CONTENT_UCS2;
    const std::size_t n = strnlen(reinterpret_cast<const char *>(msg.SmsData), sizeof out->content - 1);
    std::memcpy(out->content, msg.SmsData, n);
    out->content[n] = '\0';
    return 0;
}

void copy_8bit_text(const SmsMessageData &msg, SmsMessage *out)
{
    const uint32_t n = msg.dwLength < sizeof out->content ? msg.dwLength : sizeof out->content - 1;
    std::memcpy(out->content, msg.SmsData, n);
    // Undo the pair exchange of the transport decoder, up to the first pair
    // that ends in a zero octet.
    for (std::size_t i = 0; i + 1 < sizeof out->content && out->content[i + 1] != '\0'; i += 2)
        std::swap(out->content[i], out->content[i + 1]);
    out->byContentLen = static_cast<uint8_t>(strnlen(out->content, sizeof out->content));
}

}  // namespace smsutil::api
