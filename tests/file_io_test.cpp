#include <gtest/gtest.h>

#include <string>

#include "xml_test_support.hpp"

namespace {

TEST(ParseFile, ReadsAndParses)
{
    const std::string path = xmltest::write_work_file("file_io_ok.xml", "\xEF\xBB\xBF<r a='1'><c>t</c></r>\n");
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_ParseFile(path.c_str(), &root), XML_OK);
    EXPECT_EQ(xmltest::describe_chain(root), "r{a=1}[c(t)]");
    XML_FreeNode(root);
}

struct FileCase {
    const char *name;
    const char *file;     // null: the file does not exist
    std::size_t size;     // bytes of file to write (NULs included)
    uint32_t rc;
};

class ParseFileFails : public ::testing::TestWithParam<FileCase> {};

TEST_P(ParseFileFails, LeavesTheOutputAlone)
{
    const FileCase &c = GetParam();
    const std::string path = c.file != nullptr
                                 ? xmltest::write_work_file(std::string("file_io_") + c.name, std::string(c.file, c.size))
                                 : xmltest::work_path("file_io_missing.xml");
    XML_Node *keep = reinterpret_cast<XML_Node *>(0x1);
    EXPECT_EQ(NDL_XML_ParseFile(path.c_str(), &keep), c.rc);
    EXPECT_EQ(keep, reinterpret_cast<XML_Node *>(0x1));
}

INSTANTIATE_TEST_SUITE_P(Errors, ParseFileFails,
                         ::testing::Values(FileCase{"Missing", nullptr, 0, XML_ERR_OPEN},
                                           FileCase{"Empty", "", 0, XML_ERR_SYNTAX},
                                           FileCase{"Malformed", "<r>", 3, XML_ERR_SYNTAX},
                                           FileCase{"NulEndsText", "<r>\0</r>", 8, XML_ERR_SYNTAX},
                                           FileCase{"OnlyNul", "\0", 1, XML_ERR_SYNTAX}),
                         xmltest::case_name<FileCase>);

TEST(ParseFile, TextAfterNulIsIgnored)
{
    const std::string path = xmltest::write_work_file("file_io_nul.xml", std::string("<r/>\0garbage<", 13));
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_ParseFile(path.c_str(), &root), XML_OK);
    EXPECT_EQ(xmltest::describe_chain(root), "r");
    XML_FreeNode(root);
}

TEST(ParseFile, Arguments)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_ParseFile(nullptr, &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile("x", nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile(SMSUTIL_TEST_WORK_DIR, &root), XML_ERR_READ);  // a directory
}

// The file buffer, the parse state and the first element give "no memory";
// every later failure a syntax error.  Nothing leaks either way.
TEST(ParseFile, AllocationFailureSweep)
{
    const std::string path = xmltest::write_work_file("file_io_sweep.xml", "<r a='1'><c>t</c><d/></r>");
    for (long k = 1;; ++k) {
        xmltest::HookScope hooks(k);
        XML_Node *root = nullptr;
        const uint32_t rc = NDL_XML_ParseFile(path.c_str(), &root);
        if (!hooks.failure_hit()) {
            ASSERT_EQ(rc, XML_OK);
            XML_FreeNode(root);
            EXPECT_EQ(hooks.live(), 0);
            break;
        }
        EXPECT_EQ(rc, k <= 3 ? XML_ERR_NO_MEMORY : XML_ERR_SYNTAX) << "k=" << k;
        EXPECT_EQ(root, nullptr);
        EXPECT_EQ(hooks.live(), 0) << "k=" << k;
    }
}

}  // namespace
