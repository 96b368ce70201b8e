// The part of the counting drivers (smsutil_probe, smsutil_peers) that runs
// one named entry a given number of times, so that callgrind sees the same
// loop in both.
#pragma once

#include <cstdio>
#include <cstdlib>

namespace smsutil::bench {

struct ProbeEntry {
    const char *name;
    bool (*run)();
};

// argv[2], when given, is the number of calls (default 1); 1 when a call fails.
inline int run_entry(const ProbeEntry &entry, int argc, char **argv)
{
    const long count = argc >= 3 ? std::strtol(argv[2], nullptr, 10) : 1;
    for (long i = 0; i < count; ++i)
        if (!entry.run()) {
            std::fprintf(stderr, "%s failed\n", entry.name);
            return 1;
        }
    return 0;
}

}  // namespace smsutil::bench
