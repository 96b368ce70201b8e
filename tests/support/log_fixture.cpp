#include "support/log_fixture.hpp"

#include <cstdio>
#include <fstream>
#include <sstream>

#include "common/log_writer.hpp"

namespace smsutil::test {

const char *log_path() { return common::kLogPath; }

std::string read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void LogTest::SetUp()
{
    std::remove(log_path());
    common::log_reset_count();
}

std::string LogTest::log_text() const { return read_file(log_path()); }

std::vector<std::string> LogTest::log_lines() const
{
    std::vector<std::string> lines;
    std::istringstream in(log_text());
    std::string line;
    while (std::getline(in, line))
        if (!line.empty()) lines.push_back(line);
    return lines;
}

bool LogTest::logged(const std::string &message) const
{
    std::string m = message;
    while (!m.empty() && m.back() == '\n') m.pop_back();
    for (const auto &line : log_lines()) {
        auto colon = line.find("]:");
        if (colon != std::string::npos && line.compare(colon + 2, std::string::npos, m) == 0) return true;
    }
    return false;
}

bool LogTest::logged_by(const std::string &function, const std::string &message) const
{
    std::string m = message;
    while (!m.empty() && m.back() == '\n') m.pop_back();
    char prefix[64];
    std::snprintf(prefix, sizeof prefix, "[%16s: ", function.c_str());
    for (const auto &line : log_lines()) {
        auto colon = line.find("]:");
        if (line.rfind(prefix, 0) == 0 && colon != std::string::npos &&
            line.compare(colon + 2, std::string::npos, m) == 0)
            return true;
    }
    return false;
}

}  // namespace smsutil::test
