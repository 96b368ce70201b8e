// The standards-true decoder's record as JSON: today's field names where
// the gateway output has them, and everything else the PDU says.
#pragma once

#include <string>

#include "json_format.hpp"
#include "smsutil/sms_pdu.h"

namespace smsutil::cli {

// "deliver", "submit", "status-report" or "command".
const char *pdu_kind_name(uint8_t kind);

// "2011-02-28T11:50:50-05:00".  Two-digit years 00 to 95 are this
// century, 96 to 99 the last one.
std::string pdu_time_iso8601(const sms_pdu_time &time);

Json pdu_record_json(const sms_pdu_record &record);

}  // namespace smsutil::cli
