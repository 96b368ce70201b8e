// A fixture for tests that check what the library wrote to its diagnostic
// log: it empties the log before each case and reads lines back.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace smsutil::test {

// The log path the library under test was built with.
const char *log_path();

std::string read_file(const std::string &path);

class LogTest : public ::testing::Test {
protected:
    void SetUp() override;

    // The whole log text written since SetUp.
    std::string log_text() const;
    // The log split into lines (each without its '\n'; "\n\n" messages
    // leave an empty line after them, which is dropped).
    std::vector<std::string> log_lines() const;
    // True when some line of the log ends with `message` (the part after
    // the "[function: line]:" prefix).
    bool logged(const std::string &message) const;
    // True when a line with that function's prefix ends with `message`.
    bool logged_by(const std::string &function, const std::string &message) const;
};

}  // namespace smsutil::test
