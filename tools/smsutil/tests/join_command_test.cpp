// `smsutil join` run as a process: parts shuffled and repeated, a message
// left incomplete, parts arriving over several runs through the state file.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "run_tool.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

std::vector<std::string> long_message_parts()
{
    std::vector<std::string> parts;
    for (const auto &line : lines_of(read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/long_message.pdu"))) {
        if (!line.empty() && line[0] != '#') parts.push_back(line);
    }
    return parts;
}

std::string decoded_text()
{
    std::string text;
    for (const auto &line :
         json_lines(run_tool({"decode"}, read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/long_message.pdu")).out)) {
        text += line["text"].get<std::string>();
    }
    return text;
}

TEST(Join, ShuffledRepeatedPartsJoinAndAMissingPartIsNamed)
{
    const ToolRun run = run_tool({"join"}, read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/long_message_parts.pdu"));
    EXPECT_EQ(run.status, 0) << run.err;
    const auto lines = json_lines(run.out);
    ASSERT_EQ(lines.size(), 2U) << run.out;
    EXPECT_EQ(lines[0]["complete"], true);
    EXPECT_EQ(lines[0]["text"], decoded_text());
    EXPECT_EQ(lines[0]["reference"], 92);
    EXPECT_EQ(lines[0]["parts"], json::parse(R"([{"part":1,"coding":"gsm7"},{"part":2,"coding":"gsm7"},
                                                  {"part":3,"coding":"gsm7"}])"));
    EXPECT_EQ(lines[1]["complete"], false);
    EXPECT_EQ(lines[1]["reason"], "pending");
    EXPECT_EQ(lines[1]["missing"], json::array({2}));
    EXPECT_NE(lines[1]["address"], lines[0]["address"]);
}

// Pasted modem output joins like bare PDU lines, by either decoder; only
// the standards-true one knows the time stamp's offset.
TEST(Join, ModemOutputThroughEitherDecoder)
{
    std::string pasted = "AT+CMGL=4\r\n";
    for (const auto &part : long_message_parts()) {
        pasted += "+CMGL: 1,1,," + std::to_string(part.size() / 2 - 9) + "\r\n" + part + "\r\n";
    }
    pasted += "OK\r\n";
    for (const auto &[option, timestamp] :
         {std::pair<std::string, std::string>{"", "2026-11-22T23:30:01+01:00"}, {"--gateway", "2026-11-22T23:30:01"}}) {
        std::vector<std::string> args{"join"};
        if (!option.empty()) args.push_back(option);
        const ToolRun run = run_in_process(args, pasted);
        EXPECT_EQ(run.status, 0) << run.out;
        const auto lines = json_lines(run.out);
        ASSERT_EQ(lines.size(), 1U) << run.out;
        EXPECT_EQ(lines[0]["text"], decoded_text()) << option;
        EXPECT_EQ(lines[0]["timestamp"], timestamp) << option;
    }
}

TEST(Join, PartsArriveOverSeveralRuns)
{
    const std::string state = std::string(SMSUTIL_CLI_WORK_DIR) + "/join_state.bin";
    std::remove(state.c_str());
    const auto parts = long_message_parts();
    ToolRun first = run_tool({"join", "--state", state, parts[2], parts[0]});
    EXPECT_EQ(first.status, 0) << first.err;
    EXPECT_EQ(json_lines(first.out).at(0)["missing"], json::array({2}));
    // A bad line is reported and fails the run; the other parts still count.
    ToolRun second = run_tool({"join", "--state", state}, "zz\n" + parts[1] + "\n");
    EXPECT_EQ(second.status, 1);
    const auto lines = json_lines(second.out);
    ASSERT_EQ(lines.size(), 2U) << second.out;
    EXPECT_TRUE(lines[0].contains("error"));
    EXPECT_EQ(lines[1]["text"], decoded_text());

    // A damaged state file is refused and left as it is.
    std::ofstream(state, std::ios::binary) << "SRSM damaged";
    const ToolRun damaged = run_tool({"join", "--state", state, parts[0]});
    EXPECT_EQ(damaged.status, 1);
    EXPECT_NE(damaged.err.find("damaged"), std::string::npos) << damaged.err;
    EXPECT_EQ(read_file(state), "SRSM damaged");
}

}  // namespace
}  // namespace smsutil::cli::test
