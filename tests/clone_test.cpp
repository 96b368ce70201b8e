#include <gtest/gtest.h>

#include <set>

#include "xml_test_support.hpp"

namespace {

using xmltest::describe;

constexpr const char *kSource = "<top><p:r a='1' q:b='2'>"
                                "<c x='y'>t</c><d><e f='g'><h>i</h></e></d><j/></p:r><next/></top>";

void collect_pointers(const XML_Node *node, std::set<const void *> &out)
{
    for (; node != nullptr; node = node->nextSibling) {
        out.insert(node);
        for (const void *s : {static_cast<const void *>(node->name), static_cast<const void *>(node->value),
                              static_cast<const void *>(node->prefix)})
            if (s != nullptr) out.insert(s);
        collect_pointers(node->firstAttr, out);
        collect_pointers(node->firstChild, out);
    }
}

TEST(Clone, DeepCopyIsEqualDetachedAndShared)
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
    std::set<const void *> a;
    std::set<const void *> b;
    collect_pointers(source->firstChild, a);
    collect_pointers(copy->firstChild, b);
    for (const void *p : b) EXPECT_EQ(a.count(p), 0u);
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

using CloneFn = uint32_t (*)(const XML_Node *, XML_Node **);

class CloneSweep : public ::testing::TestWithParam<CloneFn> {};

// Each allocation of the copy failing in turn: "no memory", nothing
// stored, nothing leaked, the source unchanged.
TEST_P(CloneSweep, EveryAllocationFailure)
{
    xmltest::Tree tree = xmltest::parse(kSource);
    XML_Node *source = tree->firstChild;
    const std::string before = describe(tree.get());
    for (long k = 1;; ++k) {
        xmltest::HookScope hooks(k);
        XML_Node *copy = nullptr;
        const uint32_t rc = GetParam()(source, &copy);
        EXPECT_EQ(describe(tree.get()), before);
        if (!hooks.failure_hit()) {
            ASSERT_EQ(rc, XML_OK);
            NDL_XML_FreeNode(copy);
            EXPECT_EQ(hooks.live(), 0);
            EXPECT_GT(k, 3);
            break;
        }
        EXPECT_EQ(rc, XML_ERR_NO_MEMORY) << "k=" << k;
        EXPECT_EQ(copy, nullptr);
        EXPECT_EQ(hooks.live(), 0) << "k=" << k;
    }
}

INSTANTIATE_TEST_SUITE_P(Copies, CloneSweep, ::testing::Values(&NDL_XML_CloneNode, &NDL_XML_CloneNodeSelf),
                         [](const ::testing::TestParamInfo<CloneFn> &info) {
                             return std::string(info.param == &NDL_XML_CloneNode ? "Deep" : "Self");
                         });

}  // namespace
