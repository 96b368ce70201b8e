// What a modem's header line said about a PDU, as JSON around the
// decoded fields.
#pragma once

#include "json_format.hpp"
#include "modem_input.hpp"
#include "pdu_text.hpp"

namespace smsutil::cli {

// "index" and "stat" ({"code", "name"}) in front of the fields, "alpha"
// when the modem matched a name, and a line added to "problems" when the
// header's length does not match the PDU.  A PDU that failed also gets
// the line it came from.
Json with_header(const PduInput &input, const PduText &pdu, Json fields, bool failed);

// The PDU text for an error line: a line too long to be a PDU is shown
// by its start only.
std::string shown_pdu(std::string_view text);

}  // namespace smsutil::cli
