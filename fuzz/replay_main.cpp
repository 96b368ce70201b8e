// Runs fuzz targets without libFuzzer: each target's entry point is compiled
// under its own name (see tests/CMakeLists.txt) and fed every file of its
// corpus directory once, so the ordinary test run replays the seeds and
// every input that once broke an invariant.
//   fuzz_replay <target> <corpus directory>
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "replay_targets.inc"

int main(int argc, char **argv)
{
    if (argc != 3) {
        std::fprintf(stderr, "usage: %s <target> <corpus directory>\n", argv[0]);
        return 2;
    }
    const Target *target = nullptr;
    for (const Target &t : kTargets) {
        if (std::strcmp(t.name, argv[1]) == 0) target = &t;
    }
    if (target == nullptr) {
        std::fprintf(stderr, "unknown target %s\n", argv[1]);
        return 2;
    }
    std::vector<std::filesystem::path> files;
    for (const auto &entry : std::filesystem::directory_iterator(argv[2])) {
        if (entry.is_regular_file()) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fprintf(stderr, "no inputs in %s\n", argv[2]);
        return 1;
    }
    for (const auto &path : files) {
        std::ifstream in(path, std::ios::binary);
        const std::vector<uint8_t> data((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
        // A broken invariant aborts; name the input first so the failure is traceable.
        std::fprintf(stderr, "%s\n", path.filename().c_str());
        target->run(data.data(), data.size());
    }
    std::printf("%s: %zu inputs\n", target->name, files.size());
    return 0;
}
