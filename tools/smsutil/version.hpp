#pragma once

namespace smsutil::cli {

// The project's version, as the build system knows it.
const char *tool_version();

}  // namespace smsutil::cli
