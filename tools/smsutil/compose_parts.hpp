// A text turned into the SUBMIT PDUs of one message or a concatenated
// series, each one read back through ParseSms before it is handed out.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "text_coding.hpp"

namespace smsutil::cli {

struct ComposeRequest {
    std::string to;
    std::string smsc;
    uint32_t language = 0;
    uint32_t reference = 0;       // TP-MR and, for a series, the concatenation reference
    bool reference_given = true;  // false: a series takes a fresh reference
    bool status_report = false;
    bool has_validity = false;
    uint32_t validity_seconds = 0;
};

struct ComposedPart {
    std::string pdu;
    size_t tpdu_octets = 0;  // what AT+CMGS counts: the PDU without the service centre
};

struct ComposeOutcome {
    std::vector<ComposedPart> parts;
    std::string error;        // empty on success
    bool over_limit = false;  // the text needs more parts than a message may have
};

// coding is Gsm7 or Ucs2.  A part that does not read back as its text and
// series position is an error: a phone would show the same difference.
ComposeOutcome compose_text(const ComposeRequest &request, const std::string &text, Coding coding);

}  // namespace smsutil::cli
