// The value of one BCD octet.  Inline, so that converting a whole time
// stamp costs no call per field.
#pragma once

#include <array>
#include <cstdint>

namespace smsutil::common {

// Each octet's value, or kNotBcd when a semi-octet is not a decimal digit.
inline constexpr std::uint8_t kNotBcd = 0xFF;
inline constexpr auto kBcdValues = [] {
    std::array<std::uint8_t, 256> t{};
    for (unsigned octet = 0; octet < t.size(); ++octet) {
        const unsigned high = octet >> 4;
        const unsigned low = octet & 0x0Fu;
        t[octet] = high <= 9 && low <= 9 ? static_cast<std::uint8_t>(high * 10 + low) : kNotBcd;
    }
    return t;
}();

// The character each semi-octet of a BCD address stands for.
inline constexpr char kBcdDigitChars[16] = {'0', '1', '2', '3', '4', '5', '6', '7',
                                            '8', '9', '*', '#', 'a', 'b', 'c', ' '};

// Sets `value` to the two decimal semi-octets read as a number, or to 0
// when either is not a decimal digit; says whether both were.
inline bool bcd_value(std::uint8_t bcd, std::uint8_t &value)
{
    const std::uint8_t v = kBcdValues[bcd];
    const bool digits = v != kNotBcd;
    value = digits ? v : 0;
    return digits;
}

}  // namespace smsutil::common
