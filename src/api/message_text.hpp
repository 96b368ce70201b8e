// Turning the user data of a decoded TPDU into the caller's UTF-8 text.
#pragma once

#include <cstdint>

#include "smsutil/sms_api.h"

namespace smsutil::api {

// UCS-2 (charset 0) or 7-bit (anything else) user data of msg into
// out->content; sets byContentLen and, after a 7-bit conversion,
// sms_content_code 0.  0 or -1, the converter having logged.
int32_t convert_text(SmsMessageData &msg, SmsMessage *out, const char *caller);

// The 8-bit user data as it stood in the TPDU.
void copy_8bit_text(const SmsMessageData &msg, SmsMessage *out);

}  // namespace smsutil::api
