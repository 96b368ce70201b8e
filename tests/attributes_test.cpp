#include <gtest/gtest.h>

#include "xml_test_support.hpp"

namespace {

using xmltest::describe;

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
    xmltest::HookScope hooks(1);
    EXPECT_EQ(NDL_XML_SetAttr(r, "p", "b", "new"), XML_ERR_NO_MEMORY);
    EXPECT_EQ(describe(r), "r{a,p:b}");
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

// Each allocation of an added attribute failing in turn: the element's
// list is as before and nothing leaks.
TEST(Attributes, AddAttrAllocationFailureSweep)
{
    xmltest::Tree tree = xmltest::parse("<r x='1'><c/></r>");
    const std::string before = describe(tree.get());
    for (long k = 1;; ++k) {
        xmltest::HookScope hooks(k);
        const uint32_t rc = NDL_XML_AddAttr(tree.get(), "p", "name", "value");
        if (!hooks.failure_hit()) {
            ASSERT_EQ(rc, XML_OK);
            EXPECT_EQ(describe(tree.get()), "r{x=1,p:name=value}[c]");
            ASSERT_EQ(NDL_XML_RemoveAttr(tree.get(), "p", "name"), XML_OK);
            EXPECT_EQ(hooks.live(), 0);
            EXPECT_EQ(k, 5);  // node, prefix, name, value, then none
            break;
        }
        EXPECT_EQ(rc, XML_ERR_NO_MEMORY) << "k=" << k;
        EXPECT_EQ(describe(tree.get()), before);
        EXPECT_EQ(hooks.live(), 0) << "k=" << k;
    }
}

}  // namespace
