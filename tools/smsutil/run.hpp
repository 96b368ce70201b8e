// The whole tool behind main(), callable in-process: the tests and the
// fuzz target run it on their own streams.
#pragma once

#include <istream>
#include <ostream>

namespace smsutil::cli {

// Exit status: 0 ok, 1 a PDU, text or document failed, 2 usage error.
int run(int argc, const char *const *argv, std::istream &in, std::ostream &out, std::ostream &err);

}  // namespace smsutil::cli
