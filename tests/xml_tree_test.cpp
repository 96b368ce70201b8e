// The XML node model: creating, linking, copying and editing nodes, attributes and typed values, the text buffer and
// the memory hooks.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <string>

#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using xmltest::describe;

XML_Node *make(const char *name, const char *prefix = nullptr, const char *value = nullptr)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, prefix, name, value, &node), XML_OK);
    return node;
}

// Starting from p:n(v): null leaves a field, "" clears it, text replaces it.
TEST(NodeModel, SetNodeNullLeavesEmptyClearsTextReplaces)
{
    const struct {
        const char *prefix, *name, *value, *expected;
    } cases[] = {{nullptr, nullptr, nullptr, "p:n(v)"},
                 {nullptr, "", nullptr, "p:?(v)"},
                 {"", nullptr, "", "n"},
                 {"q", "m", "w", "q:m(w)"},
                 {nullptr, nullptr, "w", "p:n(w)"}};
    for (const auto &c : cases) {
        xmltest::Tree node(make("n", "p", "v"));
        EXPECT_EQ(NDL_XML_SetNode(node.get(), c.prefix, c.name, c.value), XML_OK);
        EXPECT_EQ(describe(node.get()), c.expected);
    }
    EXPECT_EQ(XML_Strdup(""), nullptr);
    EXPECT_EQ(NDL_XML_SetNode(nullptr, "p", "n", "v"), XML_ERR_PARAM);
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(1, nullptr, "n", nullptr, &node), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, "n", nullptr, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(describe(xmltest::Tree(make(nullptr)).get()), "?");
}

TEST(NodeModel, SetNodeFailureKeepsFieldsButNotTheCleared)
{
    xmltest::Tree node(make("n", "p", "v"));
    // A field cleared before the allocation for the next one fails stays cleared.
    xmltest::HookScope hooks(1);
    EXPECT_EQ(NDL_XML_SetNode(node.get(), "", "m", nullptr), XML_ERR_NO_MEMORY);
    EXPECT_EQ(describe(node.get()), "n(v)");
}

TEST(NodeModel, GettersAndNavigation)
{
    xmltest::Tree tree = xmltest::parse("<p:r a='1'><a/><b>x</b><c/></p:r>");
    uint32_t kind = 9, count = 7, leaf_count = 7;
    const char *prefix = "-", *name = nullptr, *value = nullptr;
    XML_Node *b = NDL_XML_GetNodeNextSibling(NDL_XML_GetNodeFirstChild(tree.get()));
    ASSERT_EQ(NDL_XML_GetNodeValue(b, &kind, &prefix, &name, &value), XML_OK);
    EXPECT_EQ(std::to_string(kind) + (prefix == nullptr ? "" : "!") + name + value, "0bx");
    ASSERT_EQ(NDL_XML_GetNodeValue(tree.get(), nullptr, &prefix, nullptr, nullptr), XML_OK);
    EXPECT_STREQ(prefix, "p");
    EXPECT_EQ(NDL_XML_GetNodeValue(nullptr, &kind, nullptr, nullptr, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodePrevSibling(NDL_XML_GetNodeLastChild(tree.get())), b);
    EXPECT_EQ(NDL_XML_GetNodeParent(b), tree.get());
    EXPECT_EQ(NDL_XML_GetNodeChildNum(nullptr, &count), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeChildNum(tree.get(), nullptr), XML_ERR_PARAM);
    ASSERT_EQ(NDL_XML_GetNodeChildNum(tree.get(), &count), XML_OK);
    ASSERT_EQ(NDL_XML_GetNodeChildNum(b, &leaf_count), XML_OK);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(leaf_count, 0u);
    for (auto get : {NDL_XML_GetNodeParent, NDL_XML_GetNodeFirstChild, NDL_XML_GetNodeLastChild,
                     NDL_XML_GetNodeNextSibling, NDL_XML_GetNodePrevSibling})
        EXPECT_EQ(get(nullptr), nullptr);
}

TEST(NodeModel, IteratorWalksDocumentOrder)
{
    xmltest::Tree tree = xmltest::parse("<r><a><b/><c/></a><d><e><f/></e></d><g/></r>");
    std::string order;
    for (const XML_Node *n = tree.get(); n != nullptr; n = NDL_XML_Iterator(n)) order += n->name;
    EXPECT_EQ(order, "rabcdefg");
    EXPECT_EQ(NDL_XML_Iterator(nullptr), nullptr);
}

TEST(NodeModel, FreeNodeOfAChildKeepsItsSiblingsLinked)
{
    xmltest::Tree tree = xmltest::parse("<r><a/><b><x a='1'>t</x></b><c/></r>");
    NDL_XML_FreeNode(tree->firstChild->nextSibling);
    EXPECT_EQ(describe(tree.get()), "r[a,c]");
    NDL_XML_FreeNode(nullptr);
    XML_FreeNode(nullptr);
    XML_FreeSingleNode(nullptr);
}

enum class Op { kFirstChild, kAppendChild, kNextSibling, kPrevSibling };

uint32_t apply(Op op, XML_Node *target, XML_Node *node)
{
    switch (op) {
    case Op::kFirstChild:
        return NDL_XML_AddFirstChildNode(target, node);
    case Op::kAppendChild:
        return NDL_XML_AppendChildNode(target, node);
    case Op::kNextSibling:
        return NDL_XML_AddNextSiblingNode(target, node);
    default:
        return NDL_XML_AddPrevSiblingNode(target, node);
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
    XML_Node *target =
        GetParam().target[0] != '\0' ? NDL_XML_FindNodeByName(tree->firstChild, GetParam().target) : tree.get();
    ASSERT_NE(target, nullptr);
    ASSERT_EQ(apply(GetParam().op, target, make("n")), XML_OK);
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
    xmltest::Tree other(make("other"));
    const std::string before = describe(tree.get());
    for (Op op : {Op::kFirstChild, Op::kAppendChild}) {
        EXPECT_EQ(apply(op, tree.get(), a->nextSibling), XML_ERR_PARAM);  // has parent and sibling
        EXPECT_EQ(apply(op, nullptr, lone.get()), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, tree.get(), nullptr), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, tree->firstAttr, lone.get()), XML_ERR_PARAM);  // attribute as parent
    }
    for (Op op : {Op::kNextSibling, Op::kPrevSibling}) {
        EXPECT_EQ(apply(op, lone.get(), other.get()), XML_ERR_PARAM);  // detached reference
        EXPECT_EQ(apply(op, x, x), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, x, a), XML_ERR_PARAM);
        EXPECT_EQ(apply(op, nullptr, lone.get()), XML_ERR_PARAM);
    }
    EXPECT_EQ(describe(tree.get()), before);
    // A detached node cannot go into its own subtree either.
    XML_Node *leaf = make("leaf");
    ASSERT_EQ(NDL_XML_AppendChildNode(x, leaf), XML_OK);
    xmltest::Tree top(a);
    ASSERT_EQ(NDL_XML_RemoveNode(a), XML_OK);
    EXPECT_EQ(NDL_XML_AppendChildNode(leaf, a), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddFirstChildNode(a, a), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddNextSiblingNode(leaf, a), XML_ERR_PARAM);
    EXPECT_EQ(describe(a), "a[x[leaf]]");
}

TEST(TreeLinks, RemoveNode)
{
    xmltest::Tree tree = xmltest::parse("<r><a><only/></a><b/><c/><d/></r>");
    xmltest::Tree only(tree->firstChild->firstChild);
    ASSERT_EQ(NDL_XML_RemoveNode(only.get()), XML_OK);
    EXPECT_EQ(NDL_XML_RemoveNode(only.get()), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RemoveNode(nullptr), XML_ERR_PARAM);
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
    NDL_XML_FreeNode(tree->firstAttr->nextSibling);
    EXPECT_EQ(describe(tree.get()), "r{a=1,c=3}");
    xmltest::Tree a(tree->firstAttr);
    ASSERT_EQ(NDL_XML_RemoveNode(a.get()), XML_OK);
    EXPECT_EQ(describe(tree.get()), "r{c=3}");
    EXPECT_TRUE(a->parent == nullptr && a->nextSibling == nullptr);
}

// A copy sharing any string with its source is freed twice.
TEST(Clone, DeepAndSelfCopiesAreEqualAndDetached)
{
    xmltest::Tree tree = xmltest::parse(
        "<top><p:r a='1' q:b='2'><c x='y'>t</c><d><e f='g'><h>i</h></e></d><j/></p:r>"
        "<next/></top>");
    XML_Node *source = tree->firstChild;
    XML_Node *copy = nullptr;
    ASSERT_EQ(NDL_XML_CloneNode(source, &copy), XML_OK);
    xmltest::Tree deep(copy);
    EXPECT_EQ(describe(copy), describe(source));
    EXPECT_TRUE(copy->parent == nullptr && copy->nextSibling == nullptr && copy->prevSibling == nullptr);
    ASSERT_EQ(NDL_XML_CloneNodeSelf(source, &copy), XML_OK);
    EXPECT_EQ(describe(xmltest::Tree(copy).get()), "p:r{a=1,q:b=2}");
    EXPECT_EQ(NDL_XML_CloneNodeSelf(nullptr, &copy), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNodeSelf(source, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNode(nullptr, &copy), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNode(source, nullptr), XML_ERR_PARAM);
}

TEST(Attributes, AddRefusesDuplicatesPerPrefix)
{
    xmltest::Tree tree = xmltest::parse("<r/>");
    XML_Node *r = tree.get();
    EXPECT_EQ(NDL_XML_AddAttr(r, nullptr, "a", "1"), XML_OK);
    EXPECT_EQ(NDL_XML_AddAttr(r, nullptr, "a", "2"), XML_ERR_EXISTS);
    EXPECT_EQ(NDL_XML_AddAttr(r, "", "a", "2"), XML_ERR_EXISTS);  // "" means no prefix
    EXPECT_EQ(NDL_XML_AddAttr(r, "p", "a", "3"), XML_OK);
    EXPECT_EQ(NDL_XML_AddAttr(r, "q", "a", ""), XML_OK);
    EXPECT_EQ(NDL_XML_AddAttr(r, nullptr, "", "1"), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddAttr(r, nullptr, nullptr, "1"), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_AddAttr(nullptr, nullptr, "a", "1"), XML_ERR_PARAM);
    EXPECT_EQ(describe(r), "r{a=1,p:a=3,q:a}");
    // A ready node is refused the same way until its prefix is cleared.
    XML_Node *attr = XML_NewNode(XML_NODE_ATTR);
    ASSERT_EQ(XML_SetNode(attr, "p", "a", "4"), XML_OK);
    EXPECT_EQ(XML_AddAttrNode(attr, r), XML_ERR_EXISTS);
    EXPECT_EQ(XML_AddAttrNode(nullptr, r), XML_ERR_PARAM);
    EXPECT_EQ(XML_AddAttrNode(attr, nullptr), XML_ERR_PARAM);
    ASSERT_EQ(NDL_XML_SetNode(attr, "", "b", nullptr), XML_OK);
    EXPECT_EQ(XML_AddAttrNode(attr, r), XML_OK);
    EXPECT_EQ(describe(r), "r{a=1,p:a=3,q:a,b=4}");
}

TEST(Attributes, GetAndIterate)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:a='2' e=''/>");
    // The result's last octet (0 found, 1 refused, 3 missing) and the value.
    auto get = [&](const char *prefix, const char *name) {
        const char *value = "-";
        const uint32_t rc = NDL_XML_GetAttr(tree.get(), prefix, name, &value);
        return std::to_string(rc & 0xFF) + ":" + (value != nullptr ? value : "null");
    };
    EXPECT_EQ(get(nullptr, "a"), "0:1");
    EXPECT_EQ(get("p", "a"), "0:2");
    EXPECT_EQ(get("", "a"), "3:-");
    EXPECT_EQ(get(nullptr, "e"), "0:null");
    EXPECT_EQ(get(nullptr, "zz"), "3:-");
    EXPECT_EQ(get(nullptr, nullptr), "1:-");
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, "a", nullptr), XML_ERR_PARAM);
    const char *prefix = nullptr, *name = nullptr, *value = nullptr;
    std::string seen;
    for (uint32_t rc = NDL_XML_GetFirstAttr(tree.get(), &prefix, &name, &value); rc == XML_OK;
         rc = NDL_XML_GetNextSiblingAttr(tree.get(), prefix, name, &prefix, &name, &value))
        seen += std::string(prefix != nullptr ? prefix : "-") + name + (value != nullptr ? value : "-") + ";";
    EXPECT_EQ(seen, "-a1;pa2;-e-;");
    xmltest::Tree bare = xmltest::parse("<r/>");
    EXPECT_EQ(NDL_XML_GetFirstAttr(bare.get(), &prefix, &name, &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetFirstAttr(bare.get(), nullptr, &name, &value), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNextSiblingAttr(tree.get(), nullptr, "zz", &prefix, &name, &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetNextSiblingAttr(tree.get(), nullptr, nullptr, &prefix, &name, &value), XML_ERR_PARAM);
}

TEST(Attributes, SetChangesOrClearsAndRemoveKeepsTheOrder)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:b='2' c='3'/>");
    XML_Node *r = tree.get();
    EXPECT_EQ(NDL_XML_SetAttr(r, nullptr, "zz", "1"), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_SetAttr(r, "", "a", "9"), XML_OK);  // "" means no prefix here
    EXPECT_EQ(NDL_XML_SetAttr(r, "p", "b", ""), XML_OK);
    EXPECT_EQ(describe(r), "r{a=9,p:b,c=3}");
    EXPECT_EQ(NDL_XML_SetAttr(r, nullptr, "a", nullptr), XML_OK);
    EXPECT_EQ(NDL_XML_SetAttr(nullptr, nullptr, "a", "1"), XML_ERR_PARAM);
    EXPECT_EQ(describe(r), "r{a,p:b,c=3}");
    EXPECT_EQ(NDL_XML_RemoveAttr(r, nullptr, "b"), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_RemoveAttr(r, "p", "b"), XML_OK);
    EXPECT_EQ(describe(r), "r{a,c=3}");
    EXPECT_EQ(NDL_XML_RemoveAttr(r, nullptr, "c"), XML_OK);
    EXPECT_EQ(NDL_XML_RemoveAttr(r, "", "a"), XML_OK);
    EXPECT_EQ(describe(r), "r");
}

TEST(TypedValues, RefusedArguments)
{
    xmltest::Tree tree = xmltest::parse("<r a='5'>5</r>");
    uint32_t out = 0;
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(nullptr, XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "zz", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), "", "a", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    ASSERT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_UINT32, &out), XML_OK);
    EXPECT_EQ(out, 5u);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "", XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "b", 9, &out), XML_ERR_PARAM);
    EXPECT_EQ(describe(tree.get()), "r{a=5}(5)");
}

// Formatting at every width is checked by the typed reads of the XML cases,
// which write each value back.  A boolean is the whole 32-bit word.
TEST(TypedValues, BooleanWordAndAttributesUpdatedOrAppended)
{
    const uint32_t wide_true = 0x100;
    xmltest::Tree node = xmltest::parse("<r/>");
    ASSERT_EQ(NDL_XML_SetNodeValueEx(node.get(), XML_VAL_BOOL, &wide_true), XML_OK);
    EXPECT_EQ(describe(node.get()), "r(true)");
    // An existing attribute is updated, a new one appended; "" finds no
    // unprefixed attribute, and the new one would collide with it.
    xmltest::Tree tree = xmltest::parse("<r a='1' b='2'/>");
    const int32_t v = 42;
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_INT32, &v), XML_OK);
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "c", XML_VAL_INT32, &v), XML_OK);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "", "b", XML_VAL_INT32, &v), XML_ERR_EXISTS);
    EXPECT_EQ(describe(tree.get()), "r{a=42,b=2,c=42}");
}

class MemBuf : public ::testing::Test {
protected:
    void SetUp() override { XML_MembufInit(&buf_); }
    void TearDown() override { XML_MembufDestroy(&buf_); }
    std::string text() const { return buf_.data != nullptr ? std::string(buf_.data, buf_.length) : ""; }
    XML_MemBuf buf_{};
};

// Growth in 1024-byte steps (by the size of a larger insertion: see the assignments).
TEST_F(MemBuf, GrowsInSteps)
{
    const char byte = 'x';
    for (int i = 0; i < 1024; ++i) ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u);
    ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 2048u);
    EXPECT_EQ(buf_.data[1025], '\0');
}

// An assignment shrinks the buffer only when it frees more than one step.
TEST_F(MemBuf, AssignShrinksOnlyBeyondOneStep)
{
    const struct {
        uint32_t fill, capacity, assigned, expected_capacity;
    } cases[] = {{4000, 4096, 10, 1034}, {1030, 1030, 10, 1030}, {10, 1030, 2000, 3020}, {4000, 4096, 4000, 4096}};
    for (const auto &c : cases) {
        XML_MembufDestroy(&buf_);
        XML_MembufInit(&buf_);
        ASSERT_EQ(XML_MemBufAppendStr(&buf_, std::string(c.capacity, 'c').c_str()), XML_OK);
        ASSERT_EQ(XML_MemBufAssignStr(&buf_, std::string(c.fill, 'f').c_str()), XML_OK);
        ASSERT_EQ(buf_.capacity, c.capacity);
        const std::string value(c.assigned, 'v');
        ASSERT_EQ(XML_MemBufAssign(&buf_, value.c_str(), c.assigned), XML_OK);
        EXPECT_EQ(buf_.capacity, c.expected_capacity) << c.fill << " " << c.assigned;
        EXPECT_EQ(std::string(buf_.data), value);
    }
}

TEST_F(MemBuf, InsertAtPositions)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "bc"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, "a", 1, 0), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, "XY", 2, 2), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, "!", 1, 5), XML_OK);
    EXPECT_EQ(XML_MemBufInsert(&buf_, "z", 1, 7), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufInsert(&buf_, nullptr, 1, 0), XML_OK);
    EXPECT_EQ(XML_MemBufInsert(&buf_, "z", 0, 0), XML_OK);
    EXPECT_EQ(text(), "abXYc!");
    EXPECT_EQ(XML_MemBufInsert(nullptr, "z", 1, 0), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAppend(nullptr, "z"), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAppendStr(nullptr, "z"), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAssign(nullptr, "z", 1), XML_ERR_PARAM);
}

// Inserting or assigning a part of the buffer itself, also across a
// reallocation that moves the bytes.
TEST_F(MemBuf, SourceInsideTheBuffer)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abcdef"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data + 3, 2, 1), XML_OK);  // source behind the position
    EXPECT_EQ(text(), "adebcdef");
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abcdef"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data + 1, 4, 3), XML_OK);
    EXPECT_EQ(text(), "abcbcdedef");
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data, 10, 0), XML_OK);
    EXPECT_EQ(text(), "abcbcdedefabcbcdedef");
    const std::string big(2000, 'z');
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data + 20, 2000, 0), XML_OK);
    EXPECT_EQ(text(), big + "abcbcdedefabcbcdedef" + big);
    ASSERT_EQ(XML_MemBufAssign(&buf_, buf_.data + 2000, 10), XML_OK);
    EXPECT_EQ(text(), "abcbcdedef");
}

// A null source empties the buffer; zero bytes to a buffer that never grew
// allocate nothing.
TEST_F(MemBuf, EmptyAssignments)
{
    xmltest::HookScope hooks;
    ASSERT_EQ(XML_MemBufAssign(&buf_, "abc", 0), XML_OK);
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(hooks.requests(), 0);
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abc"), XML_OK);
    ASSERT_EQ(XML_MemBufAssign(&buf_, nullptr, 3), XML_OK);
    EXPECT_TRUE(buf_.data == nullptr && buf_.length == 0 && buf_.capacity == 0);
}

TEST_F(MemBuf, GrowthFallsBackToExactSize)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "keep"), XML_OK);
    const std::string big(5000, 'b');
    xmltest::HookScope hooks(1);  // the step fails, the exact-size retry not
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
    EXPECT_EQ(buf_.capacity, 5004u);
    EXPECT_EQ(hooks.requests(), 2);
}

void *any_malloc(size_t n) { return std::malloc(n); }
void *any_calloc(size_t c, size_t n) { return std::calloc(c, n); }
void any_free(void *p) { std::free(p); }
void *any_realloc(void *p, size_t n) { return std::realloc(p, n); }

// A table with a hole is refused and the counting hooks stay in place.
TEST(MemoryHooks, IncompleteTableIsRefusedAndEachServiceReachesItsHook)
{
    EXPECT_STREQ(GRV_XML_GetVersion(), "V1.01");
    EXPECT_EQ(NDL_XML_RegDebugFunc([](const char *) {}), XML_ERR_NOT_FOUND);  // no debug output to route
    xmltest::HookScope hooks;
    EXPECT_EQ(NDL_XML_RegMemFunc(nullptr, any_calloc, any_free, any_realloc), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(any_malloc, nullptr, any_free, any_realloc), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(any_malloc, any_calloc, nullptr, any_realloc), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_RegMemFunc(any_malloc, any_calloc, any_free, nullptr), XML_ERR_PARAM);
    void *a = XML_Realloc(XML_Malloc(4), 64);
    void *b = XML_Calloc(2, 4);
    EXPECT_EQ(static_cast<unsigned char *>(b)[7], 0);
    EXPECT_EQ(hooks.requests(), 3);
    EXPECT_EQ(hooks.live(), 2);
    XML_Free(a);
    NDL_XML_FreeMem(b);
    XML_Free(nullptr);
    NDL_XML_FreeMem(nullptr);
    EXPECT_EQ(hooks.live(), 0);
}

}  // namespace
