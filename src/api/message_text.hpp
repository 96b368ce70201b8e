// Turning the user data of a decoded TPDU into the caller's UTF-8 text.
#pragma once

#include <cstdint>

#include "smsutil/sms_api.h"
#include "transport/codec_internal.hpp"

namespace smsutil::api {

// UCS-2 (charset 0) or 7-bit (anything else) user data of msg into
// out->content; sets byContentLen and, after a 7-bit conversion,
// sms_content_code 0.  0 or -1, the converter having logged.
int32_t convert_text(SmsMessageData &msg, SmsMessage *out, const char *caller);

// UCS-2 text as the TPDU holds it into out->content, giving what the
// exchanged pairs of a message record with `taken` octets of text would
// give: U+0000 units dropped, no more than `taken` octets of the rest (a
// last odd octet is the low octet of its pair), ending at a zero unit.
void convert_ucs2_in_place(const transport::Ucs2InPlace &text, std::size_t taken, SmsMessage *out);

// The 8-bit user data as it stood in the TPDU.
void copy_8bit_text(const SmsMessageData &msg, SmsMessage *out);

}  // namespace smsutil::api
