// Identifiers of the bearer-data subparameters and the facts about them
// that the encoder and the decoder must agree on.
#pragma once

#include <cstdint>

namespace smsutil::cdma {

enum SubparameterId : std::uint8_t {
    kMessageId = 0,
    kUserData = 1,
    kUserResponse = 2,
    kMcTime = 3,
    kValidityAbsolute = 4,
    kValidityRelative = 5,
    kDeferredAbsolute = 6,
    kDeferredRelative = 7,
    kPriority = 8,
    kPrivacy = 9,
    kReplyOption = 10,
    kNumberOfMessages = 11,
    kAlertOnDelivery = 12,
    kLanguage = 13,
    kCallback = 14,
    kDisplayMode = 15,
};

inline constexpr std::uint8_t kLastSubparameterId = kDisplayMode;

constexpr std::uint32_t mask_bit(std::uint8_t id) { return 1u << id; }

// Field widths on the air.
inline constexpr unsigned kMessageTypeBits = 4;
inline constexpr unsigned kMessageIdBits = 16;
inline constexpr unsigned kEncodingBits = 5;
inline constexpr unsigned kIs91TypeBits = 8;
inline constexpr unsigned kNumFieldsBits = 8;
inline constexpr unsigned kOctetUnitBits = 8;
inline constexpr unsigned kIs91CharBits = 6;
inline constexpr unsigned kIs91DigitBits = 4;
inline constexpr unsigned kTwoBitFieldBits = 2;
inline constexpr unsigned kBcdDigitBits = 4;
inline constexpr unsigned kNumberTypeBits = 3;
inline constexpr unsigned kNumberPlanBits = 4;
inline constexpr unsigned kDtmfDigitBits = 4;
inline constexpr unsigned kCharDigitBits = 8;

// Absolute times travel as six BCD octets: year to second.
inline constexpr unsigned kAbsoluteTimeOctets = 6;

// IS-91 units are 4 bits for a call-back number and 6 bits otherwise.
constexpr unsigned is91_unit_bits(std::uint32_t is91ep_type)
{
    return is91ep_type == 132 ? kIs91DigitBits : kIs91CharBits;
}

}  // namespace smsutil::cdma
