#include "common/trace.hpp"

#include <cstdio>
#include <cstring>

#include "common/log_writer.hpp"

namespace smsutil::common {
namespace {

constexpr std::size_t kNameColumns = 16;
constexpr std::size_t kLineColumns = 4;
// Longer names than any function has are cut here, which keeps the prefix
// well inside the line.
constexpr std::size_t kMaxName = 64;

// Writes "[%16s: %4d]:" without going through printf: the name
// right-aligned in 16 columns, the source line in 4.  Returns its length.
std::size_t put_prefix(char *out, const char *func, int line)
{
    char *p = out;
    *p++ = '[';
    const std::size_t name_len = strnlen(func, kMaxName);
    for (std::size_t i = name_len; i < kNameColumns; ++i) *p++ = ' ';
    std::memcpy(p, func, name_len);
    p += name_len;
    *p++ = ':';
    *p++ = ' ';
    char digits[12];
    std::size_t n = 0;
    for (unsigned v = static_cast<unsigned>(line); n == 0 || v != 0; v /= 10)
        digits[n++] = static_cast<char>('0' + v % 10);
    for (std::size_t i = n; i < kLineColumns; ++i) *p++ = ' ';
    while (n > 0) *p++ = digits[--n];
    *p++ = ']';
    *p++ = ':';
    return static_cast<std::size_t>(p - out);
}

}  // namespace

void trace_line(const char *func, int line, const char *format, ...)
{
    // Formatted once, prefix and message, into the buffer that is written.
    char buf[kLineBufferSize];
    const std::size_t prefix = put_prefix(buf, func, line);
    va_list ap;
    va_start(ap, format);
    std::vsnprintf(buf + prefix, kLineFormatSize - prefix, format, ap);
    va_end(ap);
    // A character code 0 inside the message ends the line there.
    log_write_line(kLogPath, buf, strnlen(buf, kLineFormatSize));
}

}  // namespace smsutil::common
