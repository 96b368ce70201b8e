#include "join_state.hpp"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <vector>

namespace smsutil::cli {
namespace {

std::string load_error(int result)
{
    switch (result) {
    case SMS_REASM_ERR_STATE_DAMAGED:
        return "damaged or truncated";
    case SMS_REASM_ERR_STATE_VERSION:
        return "written by a version of smsutil that this one cannot read";
    case SMS_REASM_ERR_STATE_FIT:
        return "holds more pending messages or parts than smsutil join keeps";
    default:
        return "refused (" + std::to_string(result) + ")";
    }
}

bool write_all(int fd, const uint8_t *data, size_t size)
{
    while (size > 0) {
        const ssize_t n = ::write(fd, data, size);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) return false;
        data += n;
        size -= static_cast<size_t>(n);
    }
    return true;
}

}  // namespace

std::string load_state_file(sms_reasm_store *store, const std::string &path, uint64_t now)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return errno == ENOENT ? "" : path + ": " + std::strerror(errno);
    const std::vector<uint8_t> image{std::istreambuf_iterator<char>(in), {}};
    // The file was written when it was last modified: measured from then,
    // the time between two runs counts towards --timeout.
    struct stat info {};
    const uint64_t saved = ::stat(path.c_str(), &info) == 0 ? static_cast<uint64_t>(info.st_mtime) : now;
    const int result = sms_reasm_load_state(store, saved, image.data(), image.size());
    return result == 0 ? "" : path + ": " + load_error(result);
}

std::string save_state_file(const sms_reasm_store *store, const std::string &path, uint64_t now)
{
    std::vector<uint8_t> image(sms_reasm_state_size(store));
    size_t written = 0;
    if (sms_reasm_save_state(store, now, image.data(), image.size(), &written) != 0) {
        return path + ": the pending parts could not be saved";
    }
    const std::string temporary = path + ".tmp";
    const int fd = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    if (fd < 0) return temporary + ": " + std::strerror(errno);
    const bool ok = write_all(fd, image.data(), written) && ::fsync(fd) == 0;
    const int saved_errno = errno;
    ::close(fd);
    if (!ok || std::rename(temporary.c_str(), path.c_str()) != 0) {
        const std::string why = std::strerror(ok ? errno : saved_errno);
        std::remove(temporary.c_str());
        return path + ": " + why;
    }
    return "";
}

}  // namespace smsutil::cli
