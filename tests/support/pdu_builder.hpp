// Builds PDU text for message-interface tests from transport records, so a
// test can state the message it means instead of hand-packing octets.
#pragma once

#include <string>

#include "smsutil/sms_api.h"

namespace smsutil::test {

inline constexpr const char *kScPrefix = "0891682143658709F1";  // +8612345678901

std::string hex(const uint8_t *octets, std::size_t n);

// Service-centre prefix followed by the encoded TPDU as text.
std::string deliver_pdu(const wms_gw_deliver &deliver);
std::string submit_pdu(const wms_gw_submit &submit);

// A DELIVER from 12345 at 2024-05-06 07:08:09 with the given coding.
wms_gw_deliver make_deliver(uint8_t alphabet);

// Septets of a plain ASCII text (letters, digits, space) in the default alphabet.
void set_septets(wms_gw_user_data &ud, const char *ascii);

}  // namespace smsutil::test
