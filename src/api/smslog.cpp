// _smslog: the exported entry of the diagnostic log.
#include <cstdarg>
#include <cstdio>

#include "common/log_writer.hpp"
#include "smsutil/sms_api.h"

namespace {
constexpr std::uint32_t kMaxLevel = 5;
}  // namespace

extern "C" SMSUTIL_API void _smslog(const char *path, uint32_t level, const char *format, ...)
{
    using namespace smsutil::common;
    if (level > kMaxLevel || format == nullptr) return;
    char buf[kLineBufferSize];
    va_list ap;
    va_start(ap, format);
    const int n = std::vsnprintf(buf, kLineFormatSize, format, ap);
    va_end(ap);
    if (n < 0) return;
    log_write_line(path, buf, static_cast<std::size_t>(n));
}
