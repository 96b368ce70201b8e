#include "common/trace.hpp"

#include <cstdio>

#include "common/log_writer.hpp"
#include "smsutil/sms_api.h"

namespace smsutil::common {

void trace_line(const char *func, int line, const char *format, ...)
{
    char buf[kTraceLineSize];
    int prefix = std::snprintf(buf, sizeof buf, "[%16s: %4d]:", func, line);
    if (prefix < 0) return;
    if (static_cast<std::size_t>(prefix) < sizeof buf) {
        va_list ap;
        va_start(ap, format);
        std::vsnprintf(buf + prefix, sizeof buf - static_cast<std::size_t>(prefix), format, ap);
        va_end(ap);
    }
    // Handed over as an argument, never as a format: a '%' that came in
    // through a number or a PDU is not interpreted a second time.
    _smslog(kLogPath, 1, "%s", buf);
}

}  // namespace smsutil::common
