#include "option_values.hpp"

#include "usage_error.hpp"

namespace smsutil::cli {

OptionCheck whole_number_from(std::string option, uint32_t min, uint32_t max)
{
    return [option = std::move(option), min, max](const std::string &value) {
        // Digits only: no sign, no blanks, nothing the parser would round.
        bool valid = !value.empty() && value.size() <= 10;
        uint64_t number = 0;
        for (char c : value) {
            valid = valid && c >= '0' && c <= '9';
            if (valid) number = number * 10 + static_cast<uint64_t>(c - '0');
        }
        if (!valid || number < min || number > max) {
            throw UsageError(option + " must be a whole number from " + std::to_string(min) + " to " +
                             std::to_string(max));
        }
    };
}

std::function<std::string(std::string)> one_of(std::string option, std::vector<std::string> names)
{
    return [option = std::move(option), names = std::move(names)](const std::string &value) {
        for (size_t i = 0; i < names.size(); ++i) {
            if (value == names[i]) return std::to_string(i);
        }
        std::string list;
        for (size_t i = 0; i < names.size(); ++i) {
            list += (i == 0 ? "" : i + 1 == names.size() ? " or " : ", ") + names[i];
        }
        throw UsageError(option + " must be " + list);
    };
}

}  // namespace smsutil::cli
