#include "pdu_text.hpp"

#include "hex.hpp"
#include "modem_input.hpp"

namespace smsutil::cli {

PduText split_pdu_text(std::string_view text)
{
    PduText pdu;
    if (text.empty()) {
        pdu.error = "empty PDU";
        return pdu;
    }
    // In the order a person reads the line: a stray character first, then
    // the length; a line too long is not shown whole.
    if (auto stray = non_hex_character(text)) {
        pdu.error = *stray;
        return pdu;
    }
    if (text.size() > kMaxPduLineCharacters) {
        pdu.error = "longer than a PDU can be (more than " + std::to_string(kMaxPduLineCharacters) + " characters)";
        return pdu;
    }
    auto octets = hex_to_octets(text);
    if (!octets) {
        pdu.error = "odd number of hexadecimal characters";
        return pdu;
    }
    const size_t sca_octets = 1 + size_t{(*octets)[0]};
    if (sca_octets > octets->size()) {
        pdu.error = "service-centre address announces " + std::to_string(sca_octets - 1) +
                    " octets but the PDU ends before them";
        return pdu;
    }
    if (sca_octets == octets->size()) {
        pdu.error = "no TPDU after the service-centre address";
        return pdu;
    }
    pdu.service_centre.assign(octets->begin(), octets->begin() + static_cast<std::ptrdiff_t>(sca_octets));
    pdu.tpdu.assign(octets->begin() + static_cast<std::ptrdiff_t>(sca_octets), octets->end());
    return pdu;
}

}  // namespace smsutil::cli
