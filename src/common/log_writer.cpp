#include "common/log_writer.hpp"

#include <fcntl.h>
#include <unistd.h>

#include <mutex>

namespace smsutil::common {
namespace {

// The count, the emptying and the write are one critical section, so that
// concurrent writers neither tear lines nor both empty the file.
std::mutex g_log_mutex;
// Bytes written since the file was last emptied; wraps like the signed
// 32-bit count the log contract describes.
std::int32_t g_log_bytes = 0;

void write_all(int fd, const char *text, std::size_t len)
{
    while (len > 0) {
        ssize_t n = ::write(fd, text, len);
        if (n <= 0) return;
        text += n;
        len -= static_cast<std::size_t>(n);
    }
}

}  // namespace

void log_write(const char *path, const char *text, std::size_t len)
{
    if (path == nullptr || text == nullptr) return;
    std::lock_guard<std::mutex> lock(g_log_mutex);
    // Wraps like the signed 32-bit count it is; a line is at most 2049 bytes.
    g_log_bytes = static_cast<std::int32_t>(static_cast<std::uint32_t>(g_log_bytes) + static_cast<std::uint32_t>(len));
    int fd;
    if (g_log_bytes > kLogCapacity) {
        fd = ::open(path, O_WRONLY | O_CREAT, 0755);
        if (fd >= 0) {
            if (::ftruncate(fd, 0) != 0) { /* the line is still written */
            }
            ::lseek(fd, 0, SEEK_SET);
        }
        g_log_bytes = 0;
    } else {
        fd = ::open(path, O_RDWR | O_APPEND | O_CREAT, 0755);
    }
    if (fd < 0) return;
    write_all(fd, text, len);
    ::close(fd);
}

void log_write_line(const char *path, char *line, std::size_t len)
{
    if (len > kLineFormatSize - 1) len = kLineFormatSize - 1;
    if (len > 0 && line[len - 1] != '\n') {
        line[len++] = '\n';
        line[len] = '\0';
    }
    log_write(path, line, len);
}

std::int32_t log_byte_count()
{
    std::lock_guard<std::mutex> lock(g_log_mutex);
    return g_log_bytes;
}

void log_reset_count()
{
    std::lock_guard<std::mutex> lock(g_log_mutex);
    g_log_bytes = 0;
}

}  // namespace smsutil::common
