// The JSON line `smsutil join` prints for a message: joined, or handed
// over without all its parts.
#pragma once

#include "json_format.hpp"
#include "smsutil/smsutil.h"

namespace smsutil::cli {

// reason: SMS_REASM_PENDING, _EXPIRED or _EVICTED for an incomplete message.
Json joined_json(const sms_reasm_message &message, bool complete, int reason);

}  // namespace smsutil::cli
