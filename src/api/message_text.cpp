#include "api/message_text.hpp"

#include <algorithm>
#include <cstring>
#include <utility>

#include "charset/utf8_sequence.hpp"
#include "common/le_words.hpp"
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

namespace {

// One unit as UTF-8 in a single four-byte store whose spare bytes are zero;
// `p` has room for four bytes and nothing behind the text needs keeping.
uint8_t *put_utf8_word(uint8_t *p, uint32_t u)
{
    // Most text that comes as UCS-2 needs three bytes a unit: tested first.
    if (u > 0x7FF) {
        common::store_le64(p, (0xE0 | u >> 12) | (0x80 | (u >> 6 & 0x3F)) << 8 | (0x80 | (u & 0x3F)) << 16, 4);
        return p + 3;
    }
    if (u > 0x7F) {
        common::store_le64(p, (0xC0 | u >> 6) | (0x80 | (u & 0x3F)) << 8, 4);
        return p + 2;
    }
    common::store_le64(p, u, 4);
    return p + 1;
}

}  // namespace

void convert_ucs2_in_place(const transport::Ucs2InPlace &text, std::size_t taken, SmsMessage *out)
{
    const uint8_t *const octets = text.octets.data();
    const std::size_t size = text.octets.size();
    const std::size_t length = std::min(text.length, size);
    auto *const start = reinterpret_cast<uint8_t *>(out->content);
    uint8_t *p = start;
    // At most 80 units of three bytes each (and one spare): the record
    // always has room.  Whole pairs ahead of position `taken` always fit
    // whole, since dropped units only leave more room.
    const std::size_t whole = std::min(length, taken) & ~std::size_t{1};
    std::size_t dropped = 0;
    std::size_t i = 0;
    for (; i < whole; i += 2) {
        const uint32_t unit = static_cast<uint32_t>(octets[i]) << 8 | octets[i + 1];
        if (unit == 0) {
            dropped += 2;
            continue;
        }
        p = put_utf8_word(p, unit);
    }
    for (std::size_t used = i - dropped; i < length && used < taken; i += 2) {
        // The pair of an odd last octet is the octet after it, when the TPDU has one.
        const uint8_t high = octets[i];
        const uint8_t low = i + 1 < size ? octets[i + 1] : 0;
        if ((high | low) == 0) continue;
        const uint32_t unit = used + 1 == taken ? low : static_cast<uint32_t>(high << 8 | low);
        used += 2;
        if (unit == 0) break;
        p = put_utf8_word(p, unit);
    }
    out->byContentLen = static_cast<uint8_t>(p - start);
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
