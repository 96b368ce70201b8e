#include <gtest/gtest.h>

#include <cstring>

#include "xml_test_support.hpp"

namespace {

constexpr const char *kDoc = "<a><b><c>1</c></b><b><c>2</c><d>3</d></b></a><x><y>4</y></x>";

struct PathCase {
    const char *name;
    const char *path;
    const char *found;  // value of the node found, "" without value, null for none
};

class DottedPath : public ::testing::TestWithParam<PathCase> {};

TEST_P(DottedPath, FindsFromTheStartLevel)
{
    xmltest::Tree tree = xmltest::parse(kDoc);
    const XML_Node *node = NDL_XML_FindNodeByName(tree.get(), GetParam().path);
    if (GetParam().found == nullptr) {
        EXPECT_EQ(node, nullptr);
        return;
    }
    ASSERT_NE(node, nullptr);
    EXPECT_STREQ(node->value != nullptr ? node->value : "", GetParam().found);
}

INSTANTIATE_TEST_SUITE_P(Paths, DottedPath,
                         ::testing::Values(PathCase{"Nested", "a.b.c", "1"},
                                           PathCase{"FirstMatchOnly", "a.b.d", nullptr},
                                           PathCase{"RunsOfDots", "a..b...c", "1"},
                                           PathCase{"LeadingAndTrailingDots", ".a.b.c.", "1"},
                                           PathCase{"LaterTopLevelElement", "x.y", "4"},
                                           PathCase{"ElementWithoutText", "a.b", ""},
                                           PathCase{"OnlyDots", ".", nullptr}, PathCase{"Empty", "", nullptr},
                                           PathCase{"Missing", "a.q", nullptr},
                                           PathCase{"BeyondLeaf", "a.b.c.z", nullptr},
                                           PathCase{"PrefixIsNotPartOfName", "a.p:b", nullptr}),
                         xmltest::case_name<PathCase>);

TEST(DottedPathSearch, StartsAtTheGivenNodeNotItsParentsFirstChild)
{
    xmltest::Tree tree = xmltest::parse(kDoc);
    const XML_Node *second_b = tree->lastChild;
    EXPECT_STREQ(NDL_XML_FindNodeByName(second_b, "b.c")->value, "2");
    EXPECT_EQ(NDL_XML_FindNodeByName(nullptr, "a"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByName(tree.get(), nullptr), nullptr);
}

// The split keeps no state: a caller's own strtok loop survives a search.
TEST(DottedPathSearch, LeavesCallersTokenizerAlone)
{
    xmltest::Tree tree = xmltest::parse(kDoc);
    char list[] = "one,two,three";
    std::string seen;
    for (char *tok = std::strtok(list, ","); tok != nullptr; tok = std::strtok(nullptr, ",")) {
        EXPECT_NE(NDL_XML_FindNodeByName(tree.get(), "a.b.c"), nullptr);
        seen += tok;
    }
    EXPECT_EQ(seen, "onetwothree");
}

TEST(DottedPathSearch, ByAttribute)
{
    xmltest::Tree tree = xmltest::parse("<r><i id='1'/><j id='2'/><i p:id='2' k=''/><i id='3'/></r>");
    const XML_Node *first = tree->firstChild;
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", "2"), first->nextSibling->nextSibling);  // any prefix
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", nullptr), first);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first->nextSibling, "i", "id", nullptr), first->nextSibling->nextSibling);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "k", ""), first->nextSibling->nextSibling);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", "4"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "j", "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(nullptr, "i", "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, nullptr, "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", nullptr, "1"), nullptr);
}

}  // namespace
