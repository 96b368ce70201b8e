// The TEXT argument of encode and split: given on the command line, or "-"
// (or nothing) for standard input.
#pragma once

#include <string>

namespace smsutil::cli {

// Standard input loses one trailing line end, which the shell or editor
// added and the user did not mean to send.  A NUL byte is a usage error:
// the library reads texts up to their terminator.
std::string text_from_argument(const std::string &argument, bool given);

}  // namespace smsutil::cli
