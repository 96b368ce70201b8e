#include "version.hpp"

namespace smsutil::cli {

const char *tool_version() { return SMSUTIL_TOOL_VERSION; }

}  // namespace smsutil::cli
