// The XML node model: creating, linking, copying and editing nodes, attributes and typed values, the text buffer and
// the memory hooks.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using xmltest::describe;

TEST(NodeModel, StrdupOfEmptyTextIsNull)
{
    EXPECT_EQ(XML_Strdup(""), nullptr);
    char *copy = XML_Strdup("abc");
    ASSERT_NE(copy, nullptr);
    EXPECT_STREQ(copy, "abc");
    XML_Free(copy);
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
    // A field cleared before the allocation for the next one fails stays cleared.
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
    xmltest::Tree tree = xmltest::parse("<r><a/><b><x a='1'>t</x></b><c/></r>");
    NDL_XML_FreeNode(tree->firstChild->nextSibling);
    EXPECT_EQ(describe(tree.get()), "r[a,c]");
    NDL_XML_FreeNode(nullptr);
    XML_FreeNode(nullptr);
    XML_FreeSingleNode(nullptr);
}

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

constexpr const char *kSource =
    "<top><p:r a='1' q:b='2'>"
    "<c x='y'>t</c><d><e f='g'><h>i</h></e></d><j/></p:r><next/></top>";

// A copy sharing any string with its source is freed twice.
TEST(Clone, DeepCopyIsEqualAndDetached)
{
    xmltest::Tree tree = xmltest::parse(kSource);
    XML_Node *source = tree->firstChild;
    XML_Node *copy = nullptr;
    ASSERT_EQ(NDL_XML_CloneNode(source, &copy), XML_OK);
    xmltest::Tree owned(copy);
    EXPECT_EQ(describe(copy), describe(source));
    EXPECT_EQ(copy->parent, nullptr);
    EXPECT_EQ(copy->nextSibling, nullptr);
    EXPECT_EQ(copy->prevSibling, nullptr);
}

TEST(Clone, SelfCopyHasAttributesButNoChildren)
{
    xmltest::Tree tree = xmltest::parse(kSource);
    XML_Node *copy = nullptr;
    ASSERT_EQ(NDL_XML_CloneNodeSelf(tree->firstChild, &copy), XML_OK);
    EXPECT_EQ(describe(copy), "p:r{a=1,q:b=2}");
    NDL_XML_FreeNode(copy);
    EXPECT_EQ(NDL_XML_CloneNodeSelf(nullptr, &copy), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNodeSelf(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNode(nullptr, &copy), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_CloneNode(tree.get(), nullptr), XML_ERR_PARAM);
}

TEST(Attributes, DuplicatesAreRefusedPerPrefix)
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
}

TEST(Attributes, GetAttrMatchesPrefixExactly)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:a='2' e=''/>");
    const char *value = "unset";
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, "a", &value), XML_OK);
    EXPECT_STREQ(value, "1");
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), "p", "a", &value), XML_OK);
    EXPECT_STREQ(value, "2");
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), "", "a", &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, "e", &value), XML_OK);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, "zz", &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, nullptr, &value), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetAttr(tree.get(), nullptr, "a", nullptr), XML_ERR_PARAM);
}

TEST(Attributes, IterationVisitsAllInOrder)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:a='2' b='3'/>");
    const char *prefix = nullptr;
    const char *name = nullptr;
    const char *value = nullptr;
    std::string seen;
    for (uint32_t rc = NDL_XML_GetFirstAttr(tree.get(), &prefix, &name, &value); rc == XML_OK;
         rc = NDL_XML_GetNextSiblingAttr(tree.get(), prefix, name, &prefix, &name, &value))
        seen += std::string(prefix != nullptr ? prefix : "-") + name + value + ";";
    EXPECT_EQ(seen, "-a1;pa2;-b3;");
    xmltest::Tree bare = xmltest::parse("<r/>");
    EXPECT_EQ(NDL_XML_GetFirstAttr(bare.get(), &prefix, &name, &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetFirstAttr(bare.get(), nullptr, &name, &value), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNextSiblingAttr(tree.get(), nullptr, "zz", &prefix, &name, &value), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetNextSiblingAttr(tree.get(), nullptr, nullptr, &prefix, &name, &value), XML_ERR_PARAM);
}

TEST(Attributes, SetAttrChangesOrClearsButNeverCreates)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:b='2'/>");
    XML_Node *r = tree.get();
    EXPECT_EQ(NDL_XML_SetAttr(r, nullptr, "zz", "1"), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_SetAttr(r, "", "a", "9"), XML_OK);  // "" means no prefix here
    EXPECT_EQ(NDL_XML_SetAttr(r, "p", "b", ""), XML_OK);
    EXPECT_EQ(describe(r), "r{a=9,p:b}");
    const char *value = "unset";
    EXPECT_EQ(NDL_XML_GetAttr(r, "p", "b", &value), XML_OK);
    EXPECT_EQ(value, nullptr);
    EXPECT_EQ(NDL_XML_SetAttr(r, nullptr, "a", nullptr), XML_OK);
    EXPECT_EQ(describe(r), "r{a,p:b}");
    EXPECT_EQ(NDL_XML_SetAttr(nullptr, nullptr, "a", "1"), XML_ERR_PARAM);
}

struct Removal {
    const char *name;
    const char *prefix;
    const char *attr;
    const char *expected;
};

class AttributeRemoval : public ::testing::TestWithParam<Removal> {};

TEST_P(AttributeRemoval, LeavesTheOthersInOrder)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' p:b='2' c='3'/>");
    const Removal &c = GetParam();
    const uint32_t expected_rc = std::string(c.expected) == "missing" ? XML_ERR_NOT_FOUND : XML_OK;
    EXPECT_EQ(NDL_XML_RemoveAttr(tree.get(), c.prefix, c.attr), expected_rc);
    if (expected_rc == XML_OK) {
        EXPECT_EQ(describe(tree.get()), c.expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Positions, AttributeRemoval,
                         ::testing::Values(Removal{"First", "", "a", "r{p:b=2,c=3}"},
                                           Removal{"Middle", "p", "b", "r{a=1,c=3}"},
                                           Removal{"Last", nullptr, "c", "r{a=1,p:b=2}"},
                                           Removal{"WrongPrefix", nullptr, "b", "missing"},
                                           Removal{"Absent", nullptr, "z", "missing"}),
                         xmltest::case_name<Removal>);

TEST(Attributes, AddAttrNodeRefusesDuplicateWithoutChange)
{
    xmltest::Tree tree = xmltest::parse("<r p:a='1'/>");
    XML_Node *attr = XML_NewNode(XML_NODE_ATTR);
    ASSERT_EQ(XML_SetNode(attr, "p", "a", "2"), XML_OK);
    EXPECT_EQ(XML_AddAttrNode(attr, tree.get()), XML_ERR_EXISTS);
    EXPECT_EQ(XML_AddAttrNode(nullptr, tree.get()), XML_ERR_PARAM);
    EXPECT_EQ(XML_AddAttrNode(attr, nullptr), XML_ERR_PARAM);
    ASSERT_EQ(NDL_XML_SetNode(attr, "", nullptr, nullptr), XML_OK);
    EXPECT_EQ(XML_AddAttrNode(attr, tree.get()), XML_OK);
    EXPECT_EQ(attr->parent, tree.get());
    EXPECT_EQ(describe(tree.get()), "r{p:a=1,a=2}");
}

struct Read {
    const char *name;
    uint32_t type;
    const char *text;
    bool ok;
    int64_t expected;  // read back at the type's width and signedness
};

int64_t read_back(uint32_t type, const unsigned char *raw)
{
    switch (type) {
    case XML_VAL_INT32: {
        int32_t v;
        std::memcpy(&v, raw, 4);
        return v;
    }
    case XML_VAL_BOOL:
    case XML_VAL_UINT32: {
        uint32_t v;
        std::memcpy(&v, raw, 4);
        return v;
    }
    case XML_VAL_INT16: {
        int16_t v;
        std::memcpy(&v, raw, 2);
        return v;
    }
    case XML_VAL_UINT16: {
        uint16_t v;
        std::memcpy(&v, raw, 2);
        return v;
    }
    case XML_VAL_INT8: {
        int8_t v;
        std::memcpy(&v, raw, 1);
        return v;
    }
    default:
        return raw[0];
    }
}

std::size_t width(uint32_t type) { return type <= XML_VAL_UINT32 ? 4 : type <= XML_VAL_UINT16 ? 2 : 1; }

class TypedRead : public ::testing::TestWithParam<Read> {};

// The variable is written at the type's width only, and only on success.
TEST_P(TypedRead, ParsesWithinRange)
{
    const Read &c = GetParam();
    xmltest::Tree tree = xmltest::parse("<r/>");
    ASSERT_EQ(NDL_XML_SetNode(tree.get(), nullptr, nullptr, c.text), XML_OK);
    unsigned char raw[8];
    std::memset(raw, 0xA5, sizeof raw);
    const uint32_t rc = NDL_XML_GetNodeValueEx(tree.get(), c.type, raw);
    if (!c.ok) {
        EXPECT_EQ(rc, XML_ERR_PARAM);
        for (unsigned char b : raw) EXPECT_EQ(b, 0xA5);
        return;
    }
    ASSERT_EQ(rc, XML_OK);
    EXPECT_EQ(read_back(c.type, raw), c.expected);
    for (std::size_t i = width(c.type); i < sizeof raw; ++i) EXPECT_EQ(raw[i], 0xA5) << i;
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, TypedRead,
    ::testing::Values(
        Read{"BoolTrue", XML_VAL_BOOL, "true", true, 1}, Read{"BoolOne", XML_VAL_BOOL, "1", true, 1},
        Read{"BoolFalse", XML_VAL_BOOL, "false", true, 0}, Read{"BoolZero", XML_VAL_BOOL, "0", true, 0},
        Read{"BoolUpperCase", XML_VAL_BOOL, "TRUE", false, 0}, Read{"BoolTwo", XML_VAL_BOOL, "2", false, 0},
        Read{"BoolPadded", XML_VAL_BOOL, " 1", false, 0},
        Read{"Uint32Max", XML_VAL_UINT32, "4294967295", true, 4294967295LL},
        Read{"Uint32Over", XML_VAL_UINT32, "4294967296", false, 0},
        Read{"Uint32MiddleBelow", XML_VAL_UINT32, "4199999999", true, 4199999999LL},
        Read{"Uint32MiddleAbove", XML_VAL_UINT32, "4300000000", false, 0},
        Read{"Uint32Negative", XML_VAL_UINT32, "-1", false, 0}, Read{"Uint32Plus", XML_VAL_UINT32, "+1", false, 0},
        Read{"Int32Min", XML_VAL_INT32, "-2147483648", true, -2147483648LL},
        Read{"Int32Max", XML_VAL_INT32, "2147483647", true, 2147483647LL},
        Read{"Int32Over", XML_VAL_INT32, "2147483648", false, 0},
        Read{"Int32Under", XML_VAL_INT32, "-2147483649", false, 0}, Read{"Int32Plus", XML_VAL_INT32, "+7", true, 7},
        Read{"Int32LeadingZeros", XML_VAL_INT32, "007", true, 7}, Read{"Int32MinusZero", XML_VAL_INT32, "-0", true, 0},
        Read{"Int32AllZeros", XML_VAL_INT32, "000", true, 0}, Read{"Int32Empty", XML_VAL_INT32, "", false, 0},
        Read{"Int32LeadingSpace", XML_VAL_INT32, " 7", false, 0},
        Read{"Int32TrailingSpace", XML_VAL_INT32, "7 ", false, 0}, Read{"Int32SignOnly", XML_VAL_INT32, "-", false, 0},
        Read{"Int32TwoSigns", XML_VAL_INT32, "+-7", false, 0}, Read{"Int32Hex", XML_VAL_INT32, "0x10", false, 0},
        Read{"Int16Max", XML_VAL_INT16, "32767", true, 32767}, Read{"Int16Min", XML_VAL_INT16, "-32768", true, -32768},
        Read{"Int16Over", XML_VAL_INT16, "32768", false, 0}, Read{"Int16Under", XML_VAL_INT16, "-32769", false, 0},
        Read{"Uint16Max", XML_VAL_UINT16, "65535", true, 65535}, Read{"Uint16Over", XML_VAL_UINT16, "65536", false, 0},
        Read{"Int8Min", XML_VAL_INT8, "-128", true, -128}, Read{"Int8Max", XML_VAL_INT8, "127", true, 127},
        Read{"Int8Over", XML_VAL_INT8, "128", false, 0}, Read{"Int8Under", XML_VAL_INT8, "-129", false, 0},
        Read{"Uint8Max", XML_VAL_UINT8, "255", true, 255}, Read{"Uint8Over", XML_VAL_UINT8, "256", false, 0},
        Read{"Uint8Negative", XML_VAL_UINT8, "-1", false, 0},
        Read{"TwentyFiveDigits", XML_VAL_UINT32, "1000000000000000000000000", false, 0},
        Read{"SeventeenSignificant", XML_VAL_UINT32, "10000000000000000", false, 0},
        Read{"SeventeenWithZeros", XML_VAL_UINT8, "00000000000000001", true, 1},
        Read{"ThirtyZerosThenOne", XML_VAL_INT8, "0000000000000000000000000000001", true, 1}),
    xmltest::case_name<Read>);

TEST(TypedValues, RefusedArguments)
{
    xmltest::Tree tree = xmltest::parse("<r a='5'>5</r>");
    uint32_t out = 0;
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(nullptr, XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    xmltest::Tree empty = xmltest::parse("<r/>");
    EXPECT_EQ(NDL_XML_GetNodeValueEx(empty.get(), XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "zz", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), "", "a", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    ASSERT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_UINT32, &out), XML_OK);
    EXPECT_EQ(out, 5u);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "", XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "b", 9, &out), XML_ERR_PARAM);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=5}(5)");
}

struct Write {
    const char *name;
    uint32_t type;
    int64_t value;  // stored at the type's width
    const char *text;
};

class TypedWrite : public ::testing::TestWithParam<Write> {};

TEST_P(TypedWrite, FormatsAtTheTypesWidth)
{
    const Write &c = GetParam();
    unsigned char raw[8];
    std::memset(raw, 0x7F, sizeof raw);  // bytes beyond the width must not matter
    const uint64_t bits = static_cast<uint64_t>(c.value);
    std::memcpy(raw, &bits, width(c.type));
    xmltest::Tree tree = xmltest::parse("<r>old</r>");
    ASSERT_EQ(NDL_XML_SetNodeValueEx(tree.get(), c.type, raw), XML_OK);
    EXPECT_STREQ(tree->value, c.text);
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "p", "a", c.type, raw), XML_OK);
    EXPECT_STREQ(tree->firstAttr->value, c.text);
}

INSTANTIATE_TEST_SUITE_P(Formats, TypedWrite,
                         ::testing::Values(Write{"BoolNonZero", XML_VAL_BOOL, 0x100, "true"},
                                           Write{"BoolZero", XML_VAL_BOOL, 0, "false"},
                                           Write{"Int32Min", XML_VAL_INT32, INT32_MIN, "-2147483648"},
                                           Write{"Uint32Max", XML_VAL_UINT32, UINT32_MAX, "4294967295"},
                                           Write{"Int16Negative", XML_VAL_INT16, -300, "-300"},
                                           Write{"Uint16Max", XML_VAL_UINT16, 65535, "65535"},
                                           Write{"Int8Negative", XML_VAL_INT8, -5, "-5"},
                                           Write{"Uint8High", XML_VAL_UINT8, 251, "251"}),
                         xmltest::case_name<Write>);

TEST(TypedValues, SetAttrValueExAppendsOrUpdates)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' b='2'/>");
    const int32_t v = 42;
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_INT32, &v), XML_OK);
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "c", XML_VAL_INT32, &v), XML_OK);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=42,b=2,c=42}");
    // "" finds no unprefixed attribute, and the new one collides with it.
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "", "b", XML_VAL_INT32, &v), XML_ERR_EXISTS);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=42,b=2,c=42}");
}

class MemBuf : public ::testing::Test {
protected:
    void SetUp() override { XML_MembufInit(&buf_); }
    void TearDown() override { XML_MembufDestroy(&buf_); }
    std::string text() const { return buf_.data != nullptr ? std::string(buf_.data, buf_.length) : ""; }
    XML_MemBuf buf_{};
};

TEST_F(MemBuf, GrowsInSteps)
{
    const char byte = 'x';
    ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u);
    for (int i = 1; i < 1024; ++i) ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u);
    ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 2048u);
    EXPECT_EQ(buf_.length, 1025u);
    EXPECT_EQ(buf_.data[1025], '\0');
}

TEST_F(MemBuf, LargeInsertionGrowsByItsOwnSize)
{
    const std::string big(3000, 'b');
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, "a"), XML_OK);
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u + 3000u);
    EXPECT_EQ(text(), "a" + big);
}

struct Assign {
    const char *name;
    uint32_t fill;      // bytes held before the assignment
    uint32_t capacity;  // capacity before
    uint32_t assigned;
    uint32_t expected_capacity;
};

class MemBufAssign : public MemBuf, public ::testing::WithParamInterface<Assign> {};

TEST_P(MemBufAssign, ShrinksOnlyBeyondOneStep)
{
    const Assign &c = GetParam();
    XML_MemBuf &buf = buf_;
    const std::string fill(c.fill, 'f');
    ASSERT_EQ(XML_MemBufAppendStr(&buf, std::string(c.capacity, 'c').c_str()), XML_OK);
    ASSERT_EQ(buf.capacity, c.capacity);
    ASSERT_EQ(XML_MemBufAssignStr(&buf, fill.c_str()), XML_OK);
    ASSERT_EQ(buf.capacity, c.capacity);
    const std::string value(c.assigned, 'v');
    ASSERT_EQ(XML_MemBufAssign(&buf, value.c_str(), c.assigned), XML_OK);
    EXPECT_EQ(buf.capacity, c.expected_capacity);
    EXPECT_EQ(buf.length, c.assigned);
    EXPECT_EQ(std::string(buf.data), value);
}

INSTANTIATE_TEST_SUITE_P(Capacity, MemBufAssign,
                         ::testing::Values(Assign{"ShrinksLargeBuffer", 4000, 4096, 10, 1034},
                                           Assign{"KeepsWithinOneStep", 1030, 1030, 10, 1030},
                                           Assign{"GrowsByTheLargerOfStepAndExtra", 10, 1030, 2000, 3020},
                                           Assign{"SameLengthUnchanged", 4000, 4096, 4000, 4096}),
                         xmltest::case_name<Assign>);

TEST_F(MemBuf, InsertAtPositions)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "bc"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, "a", 1, 0), XML_OK);
    EXPECT_EQ(text(), "abc");
    ASSERT_EQ(XML_MemBufInsert(&buf_, "XY", 2, 2), XML_OK);
    EXPECT_EQ(text(), "abXYc");
    ASSERT_EQ(XML_MemBufInsert(&buf_, "!", 1, 5), XML_OK);
    EXPECT_EQ(text(), "abXYc!");
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

TEST_F(MemBuf, NullSourceAssignEmpties)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abc"), XML_OK);
    ASSERT_EQ(XML_MemBufAssign(&buf_, nullptr, 3), XML_OK);
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(buf_.length, 0u);
    EXPECT_EQ(buf_.capacity, 0u);
}

TEST_F(MemBuf, ZeroBytesToNeverGrownBufferAllocatesNothing)
{
    xmltest::HookScope hooks;
    ASSERT_EQ(XML_MemBufAssign(&buf_, "abc", 0), XML_OK);
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(buf_.length, 0u);
    EXPECT_EQ(hooks.requests(), 0);
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

}  // namespace
