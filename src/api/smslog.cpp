// _smslog: the exported entry of the diagnostic log.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/log_writer.hpp"
#include "smsutil/sms_api.h"

namespace {
constexpr std::uint32_t kMaxLevel = 5;
constexpr std::size_t kFormatSize = 2048;
}  // namespace

extern "C" SMSUTIL_API void _smslog(const char *path, uint32_t level, const char *format, ...)
{
    if (level > kMaxLevel || format == nullptr) return;
    // Two spare bytes so a full 2047-character line still gets its newline.
    char buf[kFormatSize + 2];
    va_list ap;
    va_start(ap, format);
    int n = std::vsnprintf(buf, kFormatSize, format, ap);
    va_end(ap);
    if (n < 0) return;
    std::size_t len = static_cast<std::size_t>(n) < kFormatSize ? static_cast<std::size_t>(n) : kFormatSize - 1;
    if (len > 0 && buf[len - 1] != '\n') {
        buf[len++] = '\n';
        buf[len] = '\0';
    }
    smsutil::common::log_write(path, buf, len);
}
