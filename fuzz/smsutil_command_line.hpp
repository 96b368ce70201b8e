// A fuzz input as one run of smsutil: arguments separated by zero octets,
// an empty argument (two zero octets) ending them, and the rest as
// standard input.  Shared by the fuzz target and the test that replays
// its corpus.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <sstream>
#include <string>
#include <vector>

#include "run.hpp"

namespace fuzzin {

// The tool's status, or -1 for an input not run: arguments that name
// device or process files (xml reads any file it is given, and /dev/zero
// never ends).
inline int run_smsutil(const uint8_t *data, std::size_t size)
{
    constexpr std::size_t kMaxArguments = 24;
    std::vector<std::string> args{"smsutil"};
    std::size_t at = 0;
    while (at < size && args.size() < kMaxArguments) {
        const void *nul = std::memchr(data + at, 0, size - at);
        const std::size_t end =
            nul != nullptr ? static_cast<std::size_t>(static_cast<const uint8_t *>(nul) - data) : size;
        if (end == at) {
            ++at;
            break;
        }
        args.emplace_back(reinterpret_cast<const char *>(data + at), end - at);
        at = end + 1;
    }
    for (const auto &arg : args) {
        if (arg.find("/dev") != std::string::npos || arg.find("/proc") != std::string::npos ||
            arg.find("/sys") != std::string::npos) {
            return -1;
        }
    }
    std::vector<const char *> argv;
    for (const auto &arg : args) argv.push_back(arg.c_str());
    std::istringstream in(at < size ? std::string(reinterpret_cast<const char *>(data + at), size - at)
                                    : std::string());
    std::ostringstream out;
    std::ostringstream err;
    return smsutil::cli::run(static_cast<int>(argv.size()), argv.data(), in, out, err);
}

}  // namespace fuzzin
