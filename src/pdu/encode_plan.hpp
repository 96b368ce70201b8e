// How a text is sent: which alphabet and national tables, how many parts,
// and where each part's text begins and ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "pdu/encode_utf8.hpp"
#include "pdu/national_tables.hpp"

namespace smsutil::pdu {

enum class Coding : std::uint8_t { kGsm7, kUcs2 };

struct Plan {
    Coding coding = Coding::kGsm7;
    std::uint8_t locking = kDefaultLanguage;  // language of the locking shift element, 0 for none
    std::uint8_t single = kDefaultLanguage;   // language of the single shift element, 0 for none
    std::uint8_t concatenation_octets = 5;    // the element with an 8-bit (5) or 16-bit (6) reference
    std::size_t parts = 1;
};

inline constexpr std::size_t kUserDataOctets = 140;

// Header octets of the shift elements, which every part carries.
constexpr unsigned shift_octets(const Plan &plan)
{
    return 3u * ((plan.locking != kDefaultLanguage ? 1u : 0u) + (plan.single != kDefaultLanguage ? 1u : 0u));
}

// UDHL of a part: 0 without a header.
constexpr unsigned header_length(const Plan &plan)
{
    return shift_octets(plan) + (plan.parts > 1 ? plan.concatenation_octets : 0u);
}

// Septets (GSM 7-bit) or UCS-2 units one part holds after its header.
// 7-bit text starts on the first septet boundary after the header.
constexpr std::size_t part_capacity(const Plan &plan)
{
    const unsigned udhl = header_length(plan);
    const std::size_t header_octets = udhl == 0 ? 0 : udhl + 1u;
    if (plan.coding == Coding::kUcs2) return (kUserDataOctets - header_octets) / 2;
    return (8 * (kUserDataOctets - header_octets)) / 7;
}

// Septets or units of one character: an escape sequence and a surrogate
// pair take two and are never cut.
constexpr unsigned units_of(const Plan &plan, char32_t cp)
{
    if (plan.coding == Coding::kUcs2) return cp > 0xFFFF ? 2u : 1u;
    return codes_of(cp).locking[plan.locking] != kNoCode ? 1u : 2u;
}

// The cheapest way to send `text` with the national languages allowed by
// `languages` (bit 1u << identifier); false when the text is not
// well-formed UTF-8.
bool make_plan(std::span<const std::uint8_t> text, unsigned languages, bool reference_16bit, Plan &plan);

// The parts' texts in order: as many characters as fit into each.
class Cutter {
public:
    struct Piece {
        std::size_t begin = 0;  // byte offsets into the text
        std::size_t end = 0;
        std::size_t units = 0;
    };

    Cutter(std::span<const std::uint8_t> text, const Plan &plan) : text_(text), plan_(plan) {}

    // The next part; false once the text is used up (an empty text gives
    // one empty part).
    bool next(Piece &piece);

private:
    std::span<const std::uint8_t> text_;
    const Plan &plan_;
    std::size_t pos_ = 0;
    bool started_ = false;
};

}  // namespace smsutil::pdu
