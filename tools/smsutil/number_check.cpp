#include "number_check.hpp"

#include "smsutil/smsutil.h"

namespace smsutil::cli {

std::string dial_number_problem(const std::string &number)
{
    constexpr size_t kMaxCharacters = SMS_NUMBER_SIZE - 1;
    if (number.empty()) return "is empty";
    if (number.size() > kMaxCharacters) return "is longer than " + std::to_string(kMaxCharacters) + " characters";
    if (number == "+") return "has no digits";
    for (size_t i = 0; i < number.size(); ++i) {
        const char c = number[i];
        const bool allowed = (c >= '0' && c <= '9') || c == '*' || c == '#' || (c == '+' && i == 0);
        if (!allowed) return std::string("has the character '") + c + "' (digits, *, # and a leading + only)";
    }
    return {};
}

}  // namespace smsutil::cli
