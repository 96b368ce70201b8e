// A text turned into SUBMIT PDUs by the standards-true encoder, which
// picks the default alphabet, a national language's shift tables or UCS-2,
// whichever takes the fewest parts.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "smsutil/sms_pdu.h"

namespace smsutil::cli {

struct SubmitRequest {
    std::string to;
    std::string smsc;        // empty: the modem's own service centre (00)
    uint32_t languages = 0;  // bits 1u << sms_pdu_language
    uint16_t max_parts = SMS_PDU_MAX_PARTS;
    std::optional<uint16_t> reference;  // none: a fresh one for a message of several parts
    bool status_report = false;
    std::optional<uint32_t> validity_seconds;
};

struct SubmitOutcome {
    std::vector<sms_pdu_part> parts;
    std::string error;  // empty on success
};

SubmitOutcome encode_submit(const SubmitRequest &request, const std::string &text);

// "none", "turkish", "spanish", "portuguese".
const char *pdu_language_name(uint8_t language);

}  // namespace smsutil::cli
