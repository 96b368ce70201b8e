// The transport codec's own view of a TPDU: what ParseSms saw before it
// flattened the message into a record.
#pragma once

#include <cstdint>
#include <variant>
#include <vector>

#include "smsutil/smsutil.h"

namespace smsutil::cli {

struct DecodedTpdu {
    // monostate: no decoder applies (reserved TP-MTI, or a SUBMIT read as received).
    std::variant<std::monostate, wms_gw_deliver, wms_gw_submit, wms_gw_status_report> record;
    wms_status_e_type status = WMS_TS_STATUS_OK;
    uint8_t first_octet = 0;
};

// Picks the decoder as ParseSms does: by storage state (2 and 3 are stored
// SUBMITs), then by TP-MTI.
DecodedTpdu decode_tpdu(const std::vector<uint8_t> &tpdu, uint32_t state);

}  // namespace smsutil::cli
