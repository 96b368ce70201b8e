#include <gtest/gtest.h>

#include "xml_test_support.hpp"

namespace {

using xmltest::describe;

XML_Node *make(const char *name)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, name, nullptr, &node), XML_OK);
    return node;
}

enum class Op { kFirstChild, kAppendChild, kNextSibling, kPrevSibling };

uint32_t apply(Op op, XML_Node *target, XML_Node *node)
{
    switch (op) {
    case Op::kFirstChild: return NDL_XML_AddFirstChildNode(target, node);
    case Op::kAppendChild: return NDL_XML_AppendChildNode(target, node);
    case Op::kNextSibling: return NDL_XML_AddNextSiblingNode(target, node);
    default: return NDL_XML_AddPrevSiblingNode(target, node);
    }
}

struct Insert {
    const char *name;
    Op op;
    const char *target;  // path below r of the receiving node ("" = r itself)
    const char *expected;
};

class TreeInsert : public ::testing::TestWithParam<Insert> {};

TEST_P(TreeInsert, LinksTheNewNode)
{
    xmltest::Tree tree = xmltest::parse("<r><a><x/></a><b/></r>");
    XML_Node *target = GetParam().target[0] != '\0' ? NDL_XML_FindNodeByName(tree->firstChild, GetParam().target)
                                                    : tree.get();
    ASSERT_NE(target, nullptr);
    XML_Node *n = make("n");
    ASSERT_EQ(apply(GetParam().op, target, n), XML_OK);
    EXPECT_EQ(describe(tree.get()), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Positions, TreeInsert,
                         ::testing::Values(Insert{"FirstChild", Op::kFirstChild, "", "r[n,a[x],b]"},
                                           Insert{"AppendChild", Op::kAppendChild, "", "r[a[x],b,n]"},
                                           Insert{"FirstChildOfLeaf", Op::kFirstChild, "b", "r[a[x],b[n]]"},
                                           Insert{"AppendToLeaf", Op::kAppendChild, "a.x", "r[a[x[n]],b]"},
                                           Insert{"AfterFirst", Op::kNextSibling, "a", "r[a[x],n,b]"},
                                           Insert{"AfterLast", Op::kNextSibling, "b", "r[a[x],b,n]"},
                                           Insert{"BeforeFirst", Op::kPrevSibling, "a", "r[n,a[x],b]"},
                                           Insert{"BeforeLast", Op::kPrevSibling, "b", "r[a[x],n,b]"},
                                           Insert{"BeforeOnlyChild", Op::kPrevSibling, "a.x", "r[a[n,x],b]"}),
                         xmltest::case_name<Insert>);

TEST(TreeLinks, RefusedInsertionsChangeNothing)
{
    xmltest::Tree tree = xmltest::parse("<r a='1'><a><x/></a><b/></r>");
    XML_Node *a = tree->firstChild;
    XML_Node *x = a->firstChild;
    xmltest::Tree lone(make("lone"));
    const std::string before = describe(tree.get());
    for (Op op : {Op::kFirstChild, Op::kAppendChild}) {
        EXPECT_EQ(apply(op, tree.get(), a->nextSibling), XML_ERR_PARAM);  // has parent and sibling
        EXPECT_EQ(apply(op, nullptr, lone.get()), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, tree.get(), nullptr), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, tree->firstAttr, lone.get()), XML_ERR_PARAM);  // attribute as parent
    }
    for (Op op : {Op::kNextSibling, Op::kPrevSibling}) {
        xmltest::Tree other(make("other"));
        EXPECT_EQ(apply(op, lone.get(), other.get()), XML_ERR_PARAM);  // detached reference
        EXPECT_EQ(apply(op, x, x), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, x, a), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, nullptr, lone.get()), XML_ERR_PARAM);
    }
    EXPECT_EQ(describe(tree.get()), before);
    EXPECT_EQ(describe(lone.get()), "lone");
}

TEST(TreeLinks, NodeCannotGoIntoItsOwnSubtree)
{
    xmltest::Tree top(make("top"));
    XML_Node *mid = make("mid");
    ASSERT_EQ(NDL_XML_AppendChildNode(top.get(), mid), XML_OK);
    XML_Node *leaf = make("leaf");
    ASSERT_EQ(NDL_XML_AppendChildNode(mid, leaf), XML_OK);
    EXPECT_EQ(NDL_XML_AppendChildNode(leaf, top.get()), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddFirstChildNode(top.get(), top.get()), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddNextSiblingNode(leaf, top.get()), XML_ERR_PARAM);
    EXPECT_EQ(describe(top.get()), "top[mid[leaf]]");
}

TEST(TreeLinks, AddFirstChildKeepsBackwardChain)
{
    xmltest::Tree tree = xmltest::parse("<r><a/><b/></r>");
    XML_Node *n = make("n");
    ASSERT_EQ(NDL_XML_AddFirstChildNode(tree.get(), n), XML_OK);
    const XML_Node *walk = tree->lastChild;
    while (walk->prevSibling != nullptr) walk = walk->prevSibling;
    EXPECT_EQ(walk, n);
}

TEST(TreeLinks, RemoveNode)
{
    xmltest::Tree tree = xmltest::parse("<r><a><only/></a><b/><c/><d/></r>");
    XML_Node *only = tree->firstChild->firstChild;
    ASSERT_EQ(NDL_XML_RemoveNode(only), XML_OK);
    EXPECT_EQ(tree->firstChild->firstChild, nullptr);
    EXPECT_EQ(tree->firstChild->lastChild, nullptr);
    EXPECT_EQ(NDL_XML_RemoveNode(only), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RemoveNode(nullptr), XML_ERR_PARAM);
    XML_FreeNode(only);
    XML_Node *c = tree->lastChild->prevSibling;
    ASSERT_EQ(NDL_XML_RemoveNode(c), XML_OK);
    XML_Node *first = tree->firstChild;
    ASSERT_EQ(NDL_XML_RemoveNode(first), XML_OK);
    EXPECT_EQ(describe(tree.get()), "r[b,d]");
    // Removed nodes can go back in.
    ASSERT_EQ(NDL_XML_AddNextSiblingNode(tree->lastChild, c), XML_OK);
    ASSERT_EQ(NDL_XML_AddPrevSiblingNode(tree->firstChild, first), XML_OK);
    EXPECT_EQ(describe(tree.get()), "r[a,b,d,c]");
}

// An attribute removed as a node leaves its element's attribute list intact.
TEST(TreeLinks, RemoveAttributeNode)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' b='2' c='3'/>");
    XML_Node *b = tree->firstAttr->nextSibling;
    NDL_XML_FreeNode(b);
    EXPECT_EQ(describe(tree.get()), "r{a=1,c=3}");
    // The first attribute too: the element's list starts after it.
    XML_Node *a = tree->firstAttr;
    ASSERT_EQ(NDL_XML_RemoveNode(a), XML_OK);
    EXPECT_EQ(describe(tree.get()), "r{c=3}");
    EXPECT_EQ(a->parent, nullptr);
    EXPECT_EQ(a->nextSibling, nullptr);
    XML_FreeNode(a);
}

}  // namespace
