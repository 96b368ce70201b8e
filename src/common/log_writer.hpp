// The diagnostic log file writer behind _smslog.
#pragma once

#include <cstddef>
#include <cstdint>

namespace smsutil::common {

#ifndef SMSUTIL_LOG_PATH
#define SMSUTIL_LOG_PATH "/var/log/sms_sms.log"
#endif
inline constexpr const char *kLogPath = SMSUTIL_LOG_PATH;

// Once more than this many bytes were handed to the writer, the file is
// emptied and counting starts again.
inline constexpr std::int32_t kLogCapacity = 32768;

// Appends `len` bytes of `text` to the file at `path` (one open, one write,
// one close), emptying it first when the byte budget is exceeded.
void log_write(const char *path, const char *text, std::size_t len);

// A line is formatted into at most kLineFormatSize bytes (its terminator
// included); the buffer holding it has two more, so that even a full line
// can still take its newline.
inline constexpr std::size_t kLineFormatSize = 2048;
inline constexpr std::size_t kLineBufferSize = kLineFormatSize + 2;

// Ends the `len` formatted characters of `line` (a kLineBufferSize buffer)
// with a newline unless they are empty or already end in one, and writes
// them.
void log_write_line(const char *path, char *line, std::size_t len);

// Bytes counted since load or since the last emptying.
std::int32_t log_byte_count();
// Test support: start counting from zero again.
void log_reset_count();

}  // namespace smsutil::common
