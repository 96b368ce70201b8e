// Why ParseSms refused a PDU.  The library answers only -1 and keeps its
// error code to its log, so the tool retraces the steps it takes and names
// the first one the PDU cannot pass.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "pdu_text.hpp"
#include "tpdu_decode.hpp"

namespace smsutil::cli {

struct ParseFailure {
    std::string cause;
    std::optional<uint32_t> error_code;  // SMS_ERR_* the library sets on this path
};

ParseFailure diagnose_parse_failure(const PduText &pdu, uint32_t state, const DecodedTpdu &tpdu);

}  // namespace smsutil::cli
