// Runs the built smsutil binary as a user would and captures what it says.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

namespace smsutil::cli::test {

struct ToolRun {
    int status = -1;
    std::string out;
    std::string err;
};

ToolRun run_tool(const std::vector<std::string> &args, const std::string &input = "");

// The same through the tool's run() in this process: several messages in
// one run share what the tool keeps between them.
ToolRun run_in_process(const std::vector<std::string> &args, const std::string &input = "");

std::string read_file(const std::string &path);

// Lines of a text without their line ends; no entry for a last empty line.
std::vector<std::string> lines_of(const std::string &text);

// One JSON value per output line.
std::vector<nlohmann::json> json_lines(const std::string &out);

// The piece written times times over.
std::string repeat(const std::string &piece, size_t times);

}  // namespace smsutil::cli::test
