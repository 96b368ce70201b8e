// The tool's fuzz corpus replayed: every input that once found something
// new must still end in a status.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "run_tool.hpp"
#include "smsutil_command_line.hpp"

namespace smsutil::cli::test {
namespace {

TEST(FuzzCorpus, EveryInputEndsInAStatus)
{
    size_t inputs = 0;
    for (const auto &entry : std::filesystem::directory_iterator(SMSUTIL_FUZZ_CORPUS_DIR)) {
        const std::string data = read_file(entry.path().string());
        const int status = fuzzin::run_smsutil(reinterpret_cast<const uint8_t *>(data.data()), data.size());
        EXPECT_TRUE(status >= 0 && status <= 2) << entry.path() << " gave " << status;
        ++inputs;
    }
    EXPECT_GT(inputs, 0U);
}

}  // namespace
}  // namespace smsutil::cli::test
