#include "run_tool.hpp"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>
#include <sstream>

#include "run.hpp"

namespace smsutil::cli::test {
namespace {

std::string shell_quote(const std::string &arg)
{
    std::string quoted = "'";
    for (char c : arg) {
        if (c == '\'') {
            quoted += "'\\''";
        } else {
            quoted += c;
        }
    }
    return quoted + "'";
}

}  // namespace

std::string read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
}

ToolRun run_tool(const std::vector<std::string> &args, const std::string &input)
{
    const std::string dir = SMSUTIL_CLI_WORK_DIR;
    const std::string in_path = dir + "/stdin.txt";
    const std::string out_path = dir + "/stdout.txt";
    const std::string err_path = dir + "/stderr.txt";
    std::ofstream(in_path, std::ios::binary) << input;
    std::string command = shell_quote(SMSUTIL_TOOL_PATH);
    for (const auto &arg : args) command += " " + shell_quote(arg);
    command += " <" + shell_quote(in_path) + " >" + shell_quote(out_path) + " 2>" + shell_quote(err_path);
    const int raw = std::system(command.c_str());
    ToolRun run;
    run.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    run.out = read_file(out_path);
    run.err = read_file(err_path);
    return run;
}

ToolRun run_in_process(const std::vector<std::string> &args, const std::string &input)
{
    std::vector<const char *> argv{SMSUTIL_TOOL_PATH};
    for (const auto &arg : args) argv.push_back(arg.c_str());
    std::istringstream in(input);
    std::ostringstream out;
    std::ostringstream err;
    ToolRun result;
    result.status = cli::run(static_cast<int>(argv.size()), argv.data(), in, out, err);
    result.out = out.str();
    result.err = err.str();
    return result;
}

std::vector<std::string> lines_of(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    std::string line;
    while (std::getline(in, line)) lines.push_back(line);
    return lines;
}

std::vector<nlohmann::json> json_lines(const std::string &out)
{
    std::vector<nlohmann::json> values;
    for (const auto &line : lines_of(out)) values.push_back(nlohmann::json::parse(line));
    return values;
}

std::string repeat(const std::string &piece, size_t times)
{
    std::string text;
    for (size_t i = 0; i < times; ++i) text += piece;
    return text;
}

}  // namespace smsutil::cli::test
