// A mistake in how the tool was called: reported on one line, exit status 2.
#pragma once

#include <stdexcept>

namespace smsutil::cli {

class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace smsutil::cli
