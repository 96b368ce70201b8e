#include <gtest/gtest.h>

#include "xml_test_support.hpp"

namespace {

using xmltest::describe;

TEST(NodeModel, StrdupOfEmptyTextIsNull)
{
    EXPECT_EQ(XML_Strdup(""), nullptr);
    char *copy = XML_Strdup("abc");
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, "abc");
    XML_Free(copy);
}

TEST(NodeModel, NewNodeIsZeroedExceptKind)
{
    XML_Node *node = XML_NewNode(XML_NODE_ATTR);
    ASSERT_NE(node, nullptr);
    EXPECT_EQ(node->kind, XML_NODE_ATTR);
    EXPECT_EQ(node->name, nullptr);
    EXPECT_EQ(node->parent, nullptr);
    EXPECT_EQ(node->firstAttr, nullptr);
    XML_FreeSingleNode(node);
}

struct SetCase {
    const char *name;
    const char *prefix_arg;
    const char *name_arg;
    const char *value_arg;
    const char *expected;  // describe() of the node afterwards
};

class NodeSet : public ::testing::TestWithParam<SetCase> {};

// Starting from p:n(v): null leaves a field, "" clears it, text replaces it.
TEST_P(NodeSet, NullLeavesEmptyClearsTextReplaces)
{
    const SetCase &c = GetParam();
    XML_Node *node = nullptr;
    ASSERT_EQ(NDL_XML_CreateNode(0, "p", "n", "v", &node), XML_OK);
    EXPECT_EQ(NDL_XML_SetNode(node, c.prefix_arg, c.name_arg, c.value_arg), XML_OK);
    EXPECT_EQ(describe(node), c.expected);
    NDL_XML_FreeNode(node);
}

INSTANTIATE_TEST_SUITE_P(Fields, NodeSet,
                         ::testing::Values(SetCase{"AllNull", nullptr, nullptr, nullptr, "p:n(v)"},
                                           SetCase{"ClearName", nullptr, "", nullptr, "p:?(v)"},
                                           SetCase{"ClearPrefixAndValue", "", nullptr, "", "n"},
                                           SetCase{"ReplaceAll", "q", "m", "w", "q:m(w)"},
                                           SetCase{"ReplaceValueOnly", nullptr, nullptr, "w", "p:n(w)"}),
                         xmltest::case_name<SetCase>);

TEST(NodeModel, SetNodeFailureKeepsFieldsButNotTheCleared)
{
    XML_Node *node = nullptr;
    ASSERT_EQ(NDL_XML_CreateNode(0, "p", "n", "v", &node), XML_OK);
    for (long k = 1; k <= 3; ++k) {
        xmltest::HookScope hooks(k);
        EXPECT_EQ(XML_SetNode(node, "a", "b", "c"), XML_ERR_NO_MEMORY);
        EXPECT_EQ(describe(node), "p:n(v)");
        EXPECT_EQ(hooks.live(), 0);
    }
    xmltest::HookScope hooks(1);
    EXPECT_EQ(NDL_XML_SetNode(node, "", "m", nullptr), XML_ERR_NO_MEMORY);
    EXPECT_EQ(describe(node), "n(v)");
    NDL_XML_FreeNode(node);
}

TEST(NodeModel, CreateNodeArguments)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(1, nullptr, "n", nullptr, &node), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, "n", nullptr, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(node, nullptr);
    ASSERT_EQ(NDL_XML_CreateNode(0, nullptr, nullptr, nullptr, &node), XML_OK);
    EXPECT_EQ(node->kind, XML_NODE_ELEMENT);
    EXPECT_EQ(node->name, nullptr);
    NDL_XML_FreeNode(node);
    for (long k = 1; k <= 2; ++k) {
        xmltest::HookScope hooks(k);
        node = nullptr;
        EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, "n", nullptr, &node), XML_ERR_NO_MEMORY);
        EXPECT_EQ(node, nullptr);
        EXPECT_EQ(hooks.live(), 0);
    }
}

TEST(NodeModel, GettersAndNullNodes)
{
    xmltest::Tree tree = xmltest::parse("<p:r a='1'>x</p:r>");
    uint32_t kind = 9;
    const char *prefix = nullptr;
    const char *name = nullptr;
    const char *value = nullptr;
    ASSERT_EQ(NDL_XML_GetNodeValue(tree.get(), &kind, &prefix, &name, &value), XML_OK);
    EXPECT_EQ(kind, XML_NODE_ELEMENT);
    EXPECT_STREQ(prefix, "p");
    EXPECT_STREQ(name, "r");
    EXPECT_STREQ(value, "x");
    EXPECT_EQ(NDL_XML_GetNodeValue(tree.get(), nullptr, nullptr, nullptr, nullptr), XML_OK);
    EXPECT_EQ(NDL_XML_GetNodeValue(nullptr, &kind, nullptr, nullptr, nullptr), XML_ERR_PARAM);
    uint32_t count = 7;
    EXPECT_EQ(NDL_XML_GetNodeChildNum(nullptr, &count), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeChildNum(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeChildNum(tree.get(), &count), XML_OK);
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(NDL_XML_GetNodeParent(nullptr), nullptr);
    EXPECT_EQ(NDL_XML_GetNodeFirstChild(nullptr), nullptr);
    EXPECT_EQ(NDL_XML_GetNodeLastChild(nullptr), nullptr);
    EXPECT_EQ(NDL_XML_GetNodeNextSibling(nullptr), nullptr);
    EXPECT_EQ(NDL_XML_GetNodePrevSibling(nullptr), nullptr);
    EXPECT_EQ(NDL_XML_Iterator(nullptr), nullptr);
}

TEST(NodeModel, ChildCountAndNavigation)
{
    xmltest::Tree tree = xmltest::parse("<r><a/><b/><c/></r>");
    uint32_t count = 0;
    ASSERT_EQ(NDL_XML_GetNodeChildNum(tree.get(), &count), XML_OK);
    EXPECT_EQ(count, 3u);
    XML_Node *b = NDL_XML_GetNodeNextSibling(NDL_XML_GetNodeFirstChild(tree.get()));
    EXPECT_STREQ(b->name, "b");
    EXPECT_EQ(NDL_XML_GetNodePrevSibling(NDL_XML_GetNodeLastChild(tree.get())), b);
    EXPECT_EQ(NDL_XML_GetNodeParent(b), tree.get());
}

TEST(NodeModel, IteratorWalksDocumentOrder)
{
    xmltest::Tree tree = xmltest::parse("<r><a><b/><c/></a><d><e><f/></e></d><g/></r>");
    std::string order;
    for (const XML_Node *n = tree.get(); n != nullptr; n = NDL_XML_Iterator(n)) order += n->name;
    EXPECT_EQ(order, "rabcdefg");
    const XML_Node *f = tree->firstChild->nextSibling->firstChild->firstChild;
    EXPECT_STREQ(NDL_XML_Iterator(f)->name, "g");  // up two levels to a sibling
    EXPECT_EQ(NDL_XML_Iterator(tree->lastChild), nullptr);
}

TEST(NodeModel, FreeNodeOfAChildKeepsItsSiblingsLinked)
{
    xmltest::HookScope hooks;
    xmltest::Tree tree = xmltest::parse("<r><a/><b><x a='1'>t</x></b><c/></r>");
    NDL_XML_FreeNode(tree->firstChild->nextSibling);
    EXPECT_EQ(describe(tree.get()), "r[a,c]");
    NDL_XML_FreeNode(nullptr);
    XML_FreeNode(nullptr);
    XML_FreeSingleNode(nullptr);
    tree.reset();
    EXPECT_EQ(hooks.live(), 0);
}

TEST(NodeModel, FreeNodeReleasesTheWholeTopLevelChain)
{
    xmltest::HookScope hooks;
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_Parse("<a><b c='1'/></a><d>t</d><e/>", &root), XML_OK);
    XML_FreeNode(root);
    EXPECT_EQ(hooks.live(), 0);
}

}  // namespace
