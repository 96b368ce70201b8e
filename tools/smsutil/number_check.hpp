// Telephone numbers as the command line takes them.
#pragma once

#include <string>

namespace smsutil::cli {

// The empty string when the number can be sent (1 to 20 characters: digits,
// * and #, + only in front), else what is wrong with it.
std::string dial_number_problem(const std::string &number);

}  // namespace smsutil::cli
