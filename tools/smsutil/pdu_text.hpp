// A PDU as a modem prints it: service-centre address, then the TPDU.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace smsutil::cli {

struct PduText {
    std::vector<uint8_t> service_centre;  // length octet, type of address, digits
    std::vector<uint8_t> tpdu;
    std::string error;  // why the text is not a PDU; empty when it is
};

// Splits the text without judging the TPDU itself; that is the library's job.
PduText split_pdu_text(std::string_view text);

}  // namespace smsutil::cli
