// Writing SUBMIT PDUs: the fields every part shares are encoded once, then
// each part gets its header and text.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "pdu/encode_plan.hpp"
#include "smsutil/sms_pdu.h"

namespace smsutil::pdu {

// A service-centre address or destination: length and type octets, then
// up to ten octets of digits.
inline constexpr std::size_t kMaxNumberOctets = 2 + SMS_PDU_MAX_DIGITS / 2;

struct Envelope {
    std::array<std::uint8_t, kMaxNumberOctets> service_centre{};
    std::uint8_t service_centre_length = 0;
    std::array<std::uint8_t, kMaxNumberOctets> destination{};
    std::uint8_t destination_length = 0;
    std::array<std::uint8_t, 7> validity{};
    std::uint8_t validity_length = 0;
    std::uint8_t first_octet = 0;  // without TP-UDHI, which depends on the part
    std::uint8_t class_bits = 0;   // of TP-DCS
    bool reference_16bit = false;
    std::uint16_t reference = 0;
};

// The shared fields from the caller's options: SMS_PDU_OK or the result
// code that names the bad option.
int make_envelope(const sms_pdu_encode_options &options, Envelope &envelope);

// Part `number` (1-based) of the plan, carrying `piece` of `text`.
void write_part(const Envelope &envelope, const Plan &plan, std::span<const std::uint8_t> text,
                const Cutter::Piece &piece, std::size_t number, sms_pdu_part &part);

}  // namespace smsutil::pdu
