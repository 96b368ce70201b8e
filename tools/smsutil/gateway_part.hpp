// One PDU line read as a part of a long message, by the standards-true
// decoder or through the message interface (ParseSms).
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "smsutil/smsutil.h"

namespace smsutil::cli {

struct JoinPart {
    // The part's text points into whichever of the two was filled.
    std::unique_ptr<SmsMessage> message;
    std::unique_ptr<sms_pdu_record> record;
    sms_reasm_part part{};
    std::string error;  // why the line is not a message; empty when it is
};

JoinPart read_decoder_part(std::string_view text);

// With the alphabet the TPDU announces: the record ParseSms fills reports
// UTF-8 once a 7-bit text is converted.
JoinPart read_gateway_part(std::string_view text, uint32_t state);

// "ucs2", "gsm7", "8bit" or "other" for an SMS_CONTENT_* value.
const char *content_coding_name(uint32_t coding);

}  // namespace smsutil::cli
