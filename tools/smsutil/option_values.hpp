// Option values checked by the tool itself, so that a wrong one gets a
// sentence saying what the option takes instead of the parser's wording
// ("--coding must be auto, gsm7 or ucs2").  Each throws UsageError.
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace smsutil::cli {

using OptionCheck = std::function<void(const std::string &)>;

// For CLI::Option::each.
OptionCheck whole_number_from(std::string option, uint32_t min, uint32_t max);

// For CLI::Option::transform: the name's place in names ("0", "1", ...),
// which the option's enum or number takes.
std::function<std::string(std::string)> one_of(std::string option, std::vector<std::string> names);

}  // namespace smsutil::cli
