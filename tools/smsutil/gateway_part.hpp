// One PDU line read through the message interface (ParseSms) as a part of
// a long message, with the alphabet its TPDU announces: the record itself
// reports UTF-8 once a 7-bit text is converted.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "smsutil/smsutil.h"

namespace smsutil::cli {

struct GatewayPart {
    std::unique_ptr<SmsMessage> message; // the part's text points into it
    sms_reasm_part part{};
    std::string error;                   // why the line is not a message; empty when it is
};

GatewayPart read_gateway_part(std::string_view text, uint32_t state);

// "ucs2", "gsm7", "8bit" or "other" for an SMS_CONTENT_* value.
const char* content_coding_name(uint32_t coding);

}  // namespace smsutil::cli
