#include <gtest/gtest.h>

#include "xml_test_support.hpp"

namespace {

using xmltest::serialize;

XML_Node *element(const char *prefix, const char *name, const char *value = nullptr)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, prefix, name, value, &node), XML_OK);
    return node;
}

XML_Node *child(XML_Node *parent, const char *name, const char *value = nullptr)
{
    XML_Node *node = element(nullptr, name, value);
    EXPECT_EQ(NDL_XML_AppendChildNode(parent, node), XML_OK);
    return node;
}

// The documented example: attributes, escaped text, an empty element and
// a nested closing run.
xmltest::Tree example_tree()
{
    XML_Node *r = element(nullptr, "r");
    NDL_XML_AddAttr(r, nullptr, "a", "1");
    NDL_XML_AddAttr(r, nullptr, "b", "x<y");
    child(r, "c", "t&u");
    child(r, "d");
    XML_Node *e = child(r, "e");
    NDL_XML_AddAttr(child(e, "f"), nullptr, "z", "q");
    return xmltest::Tree(r);
}

constexpr const char *kExampleText = "<r a=\"1\" b=\"x&lt;y\">\n<c>t&amp;u</c>\n<d/>\n<e>\n<f z=\"q\"/>\n</e>\n</r>\n";

TEST(Serializer, WritesTheExampleByteForByte)
{
    xmltest::Tree tree = example_tree();
    EXPECT_EQ(serialize(tree.get()), kExampleText);
}

struct Lone {
    const char *name;
    const char *prefix;
    const char *value;
    const char *attr_prefix;
    const char *attr_name;
    const char *attr_value;
    const char *text;
};

class SerializerLone : public ::testing::TestWithParam<Lone> {};

TEST_P(SerializerLone, WritesOneLine)
{
    const Lone &c = GetParam();
    xmltest::Tree node(element(c.prefix, "r", c.value));
    if (c.attr_name != nullptr) {
        ASSERT_EQ(NDL_XML_AddAttr(node.get(), c.attr_prefix, c.attr_name, c.attr_value), XML_OK);
    }
    EXPECT_EQ(serialize(node.get()), c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, SerializerLone,
    ::testing::Values(Lone{"Empty", nullptr, nullptr, nullptr, nullptr, nullptr, "<r/>\n"},
                      Lone{"Text", nullptr, "x", nullptr, nullptr, nullptr, "<r>x</r>\n"},
                      Lone{"Prefixes", "p", nullptr, "q", "a", "1", "<p:r q:a=\"1\"/>\n"},
                      Lone{"AttributeWithoutValue", nullptr, nullptr, nullptr, "a", nullptr, "<r a=\"\"/>\n"},
                      Lone{"SpecialCharacters", nullptr, "\"&'<>", nullptr, "a", "<\"'&>",
                           "<r a=\"&lt;&quot;&apos;&amp;&gt;\">&quot;&amp;&apos;&lt;&gt;</r>\n"},
                      Lone{"Utf8AndControlBytes", nullptr, "\xC3\xA9\t\x01", nullptr, nullptr, nullptr,
                           "<r>\xC3\xA9\t\x01</r>\n"}),
    xmltest::case_name<Lone>);

TEST(Serializer, NestedElementsCloseInOrder)
{
    xmltest::Tree a(element(nullptr, "a"));
    child(child(a.get(), "b"), "c");
    EXPECT_EQ(serialize(a.get()), "<a>\n<b>\n<c/>\n</b>\n</a>\n");
}

TEST(Serializer, TextOfElementWithChildrenIsNotWritten)
{
    xmltest::Tree a(element(nullptr, "a", "lost"));
    child(a.get(), "b");
    EXPECT_EQ(serialize(a.get()), "<a>\n<b/>\n</a>\n");
}

TEST(Serializer, WritesOnlyTheSubtreeAndRestoresLinks)
{
    xmltest::Tree tree = example_tree();
    XML_Node *e = tree->lastChild;
    XML_Node *d = tree->firstChild->nextSibling;
    EXPECT_EQ(serialize(d), "<d/>\n");
    EXPECT_EQ(serialize(e), "<e>\n<f z=\"q\"/>\n</e>\n");
    EXPECT_EQ(d->parent, tree.get());
    EXPECT_EQ(d->prevSibling, tree->firstChild);
    EXPECT_EQ(d->nextSibling, e);
    EXPECT_EQ(serialize(tree.get()), kExampleText);
}

TEST(Serializer, NamelessNodeAnywhereIsRefused)
{
    xmltest::Tree tree = example_tree();
    XML_Node *nameless = nullptr;
    ASSERT_EQ(NDL_XML_CreateNode(0, nullptr, nullptr, "v", &nameless), XML_OK);
    ASSERT_EQ(NDL_XML_AppendChildNode(tree->lastChild->firstChild, nameless), XML_OK);
    char *text = reinterpret_cast<char *>(0x1);
    EXPECT_EQ(NDL_XML_Transform(tree.get(), &text), XML_ERR_PARAM);
    EXPECT_EQ(text, reinterpret_cast<char *>(0x1));
    EXPECT_EQ(NDL_XML_Transform(nullptr, &text), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Transform(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(tree->lastChild->parent, tree.get());
}

TEST(Serializer, TransformFileWritesAndReportsOpenFailure)
{
    xmltest::Tree tree = example_tree();
    const std::string path = xmltest::work_path("serializer_out.xml");
    ASSERT_EQ(NDL_XML_TransformFile(tree.get(), path.c_str()), XML_OK);
    EXPECT_EQ(xmltest::read_work_file(path), kExampleText);
    const std::string missing = xmltest::work_path("no_such_dir/out.xml");
    EXPECT_EQ(NDL_XML_TransformFile(tree.get(), missing.c_str()), XML_ERR_OPEN);
    EXPECT_EQ(NDL_XML_TransformFile(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_TransformFile(nullptr, path.c_str()), XML_ERR_PARAM);
}

// A failed growth is retried at the exact size, so some failures are
// absorbed; the others give "no memory" with nothing handed out.
TEST(Serializer, AllocationFailureSweep)
{
    xmltest::Tree tree = example_tree();
    const std::string long_text(3000, 'x');  // needs several growth steps
    child(tree.get(), "long", long_text.c_str());
    const std::string expected = serialize(tree.get());
    const std::string before = xmltest::describe(tree.get());
    int absorbed = 0;
    for (long k = 1;; ++k) {
        xmltest::HookScope hooks(k);
        char *text = nullptr;
        const uint32_t rc = NDL_XML_Transform(tree.get(), &text);
        if (rc == XML_OK) {
            EXPECT_EQ(text, expected);
            NDL_XML_FreeMem(text);
        } else {
            EXPECT_EQ(rc, XML_ERR_NO_MEMORY) << "k=" << k;
            EXPECT_EQ(text, nullptr);
        }
        EXPECT_EQ(hooks.live(), 0) << "k=" << k;
        EXPECT_EQ(xmltest::describe(tree.get()), before);
        if (!hooks.failure_hit()) {
            EXPECT_EQ(rc, XML_OK);
            break;
        }
        if (rc == XML_OK) ++absorbed;
    }
    EXPECT_GT(absorbed, 0);
}

}  // namespace
