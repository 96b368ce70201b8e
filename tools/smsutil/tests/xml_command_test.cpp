// `smsutil xml`: values by key, nodes by URL path and whole files written
// back, and the errors for keys, paths and files that do not resolve.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <fstream>
#include <string>

#include "run_tool.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

const std::string kFeatureFile = std::string(SMSUTIL_EXAMPLES_DIR) + "/optional_feature.xml";

// A list with repeated and prefixed elements, for indexes and prefixes.
std::string list_file()
{
    const std::string path = std::string(SMSUTIL_CLI_WORK_DIR) + "/list.xml";
    std::ofstream(path) << "<r><item id=\"1\">a</item><item id=\"2\">b</item><p:item>c</p:item>"
                           "<empty/></r>";
    return path;
}

struct GetCase {
    const char *name;
    const char *key;
    const char *value;  // null when the key selects nothing
};

class XmlGet : public ::testing::TestWithParam<GetCase> {};

TEST_P(XmlGet, PrintsTheSelectedText)
{
    const auto &c = GetParam();
    const ToolRun run = run_tool({"xml", "get", kFeatureFile, c.key});
    const auto lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 1U) << run.out;
    if (c.value == nullptr) {
        EXPECT_EQ(run.status, 1);
        EXPECT_NE(json::parse(lines[0])["error"].get<std::string>().find(c.key), std::string::npos);
    } else {
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(json::parse(lines[0]), (json{{"key", c.key}, {"value", c.value}}));
    }
}

INSTANTIATE_TEST_SUITE_P(Keys, XmlGet,
                         ::testing::Values(GetCase{"LanguageTable", "configuration.FEATURE_SMS.lang_table", "2"},
                                           GetCase{"MissingElement", "configuration.FEATURE_SMS.nothing", nullptr},
                                           GetCase{"UnclosedBracket", "configuration.FEATURE_WIFI[enabled", nullptr}),
                         [](const auto &info) { return std::string(info.param.name); });

struct UrlCase {
    const char *name;
    const char *url;
    const char *xml;    // expected text, or null for an error
    const char *error;  // part of the error
};

class XmlUrl : public ::testing::TestWithParam<UrlCase> {};

TEST_P(XmlUrl, PrintsTheNodeOrTheLibraryCode)
{
    const auto &c = GetParam();
    const ToolRun run = run_tool({"xml", "url", list_file(), c.url});
    if (c.xml != nullptr) {
        EXPECT_EQ(run.status, 0);
        EXPECT_EQ(run.out, c.xml);
    } else {
        EXPECT_EQ(run.status, 1);
        const auto lines = lines_of(run.out);
        ASSERT_EQ(lines.size(), 1U);
        EXPECT_NE(json::parse(lines[0])["error"].get<std::string>().find(c.error), std::string::npos) << lines[0];
    }
}

INSTANTIATE_TEST_SUITE_P(Paths, XmlUrl,
                         ::testing::Values(UrlCase{"SecondItem", "r.item.2", "<item id=\"2\">b</item>\n", ""},
                                           UrlCase{"ChildlessElement", "r.empty", "<empty/>\n", ""},
                                           UrlCase{"IndexZero", "r.item.0", nullptr, "0x1F000706"},
                                           UrlCase{"OtherRoot", "x.item", nullptr, "not found"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(XmlFmt, WritesTheFileBackInCompactFormThatReadsTheSame)
{
    const ToolRun first = run_tool({"xml", "fmt", kFeatureFile});
    ASSERT_EQ(first.status, 0);
    EXPECT_EQ(first.out.rfind("<configuration>\n<FEATURE_SMS>\n<lang_table>2</lang_table>\n", 0), 0U) << first.out;
    const std::string copy = std::string(SMSUTIL_CLI_WORK_DIR) + "/formatted.xml";
    std::ofstream(copy) << first.out;
    EXPECT_EQ(run_tool({"xml", "fmt", copy}).out, first.out);
}

TEST(XmlFmt, MalformedFileGivesTheSyntaxCode)
{
    const std::string path = std::string(SMSUTIL_CLI_WORK_DIR) + "/broken.xml";
    std::ofstream(path) << "<a><b></a>";
    const ToolRun run = run_tool({"xml", "fmt", path});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("0x1F000705"), std::string::npos) << run.out;
}

TEST(XmlFmt, MissingFileIsAUsageError)
{
    const ToolRun run = run_tool({"xml", "fmt", std::string(SMSUTIL_CLI_WORK_DIR) + "/no-such-file.xml"});
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(lines_of(run.err).size(), 1U);
}

}  // namespace
}  // namespace smsutil::cli::test
