#include <gtest/gtest.h>

#include "support/log_fixture.hpp"
#include "xml_test_support.hpp"

namespace {

TEST(MemoryHooks, VersionAndDebugRegistration)
{
    EXPECT_STREQ(GRV_XML_GetVersion(), "V1.01");
    EXPECT_EQ(NDL_XML_RegDebugFunc(nullptr), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_RegDebugFunc([](const char *) {}), XML_ERR_NOT_FOUND);
}

TEST(MemoryHooks, IncompleteTableIsRefusedAndPreviousStays)
{
    xmltest::HookScope hooks;
    EXPECT_EQ(NDL_XML_RegMemFunc(nullptr, xmltest::plain_calloc, xmltest::plain_free, xmltest::plain_realloc),
              XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(xmltest::plain_malloc, nullptr, xmltest::plain_free, xmltest::plain_realloc),
              XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(xmltest::plain_malloc, xmltest::plain_calloc, nullptr, xmltest::plain_realloc),
              XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(xmltest::plain_malloc, xmltest::plain_calloc, xmltest::plain_free, nullptr),
              XML_ERR_PARAM);
    void *block = XML_Malloc(8);
    EXPECT_EQ(hooks.live(), 1);  // still the counting table
    XML_Free(block);
    EXPECT_EQ(hooks.live(), 0);
}

TEST(MemoryHooks, EachServiceReachesItsHook)
{
    xmltest::HookScope hooks;
    void *a = XML_Malloc(4);
    void *b = XML_Calloc(2, 4);
    EXPECT_EQ(static_cast<unsigned char *>(b)[7], 0);
    a = XML_Realloc(a, 64);
    EXPECT_EQ(hooks.requests(), 3);
    EXPECT_EQ(hooks.live(), 2);
    XML_Free(a);
    NDL_XML_FreeMem(b);
    XML_Free(nullptr);
    NDL_XML_FreeMem(nullptr);
    EXPECT_EQ(hooks.live(), 0);
}

// Everything a parse, an edit, a serialization and a lookup allocate comes
// back through the table.
TEST(MemoryHooks, WholeWorkflowBalances)
{
    xmltest::HookScope hooks;
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_Parse("<r a='1'><c>t</c></r><s/>", &root), XML_OK);
    EXPECT_GT(hooks.live(), 0);
    ASSERT_EQ(NDL_XML_AddAttr(root, "p", "b", "2"), XML_OK);
    char *text = nullptr;
    ASSERT_EQ(NDL_XML_Transform(root, &text), XML_OK);
    NDL_XML_FreeMem(text);
    XML_FreeNode(root);
    EXPECT_EQ(hooks.live(), 0);
}

class XmlWritesNoLog : public smsutil::test::LogTest {};

TEST_F(XmlWritesNoLog, NotEvenOnFailures)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_Parse("<r><bad></r>", &root), XML_ERR_SYNTAX);
    ASSERT_EQ(NDL_XML_Parse("<r a='1'>v</r>", &root), XML_OK);
    char out[16];
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(root, "r[a]", out), 0);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(xmltest::work_path("absent.xml").c_str(), "r", out), -1);
    XML_FreeNode(root);
    EXPECT_TRUE(log_lines().empty());
}

}  // namespace
