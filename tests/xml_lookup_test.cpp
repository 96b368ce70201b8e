// Lookups by dotted path, attribute, key and URL at their limits and with
// missing arguments; the ordinary cases are lines of data/xml_cases.txt.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/support.hpp"

namespace {

using namespace smsutil::test;

// The split keeps no state: a caller's own strtok loop survives a search,
// and a search starts at the given node, not at its parent's first child.
TEST(DottedPathSearch, StartsAtTheGivenNodeAndLeavesTheCallersTokenizer)
{
    xmltest::Tree tree = xmltest::parse("<a><b><c>1</c></b><b><c>2</c></b></a>");
    EXPECT_STREQ(NDL_XML_FindNodeByName(tree->lastChild, "b.c")->value, "2");
    EXPECT_EQ(NDL_XML_FindNodeByName(nullptr, "a"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByName(tree.get(), nullptr), nullptr);
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
    const XML_Node *third = first->nextSibling->nextSibling;
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", "2"), third);  // any prefix
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", nullptr), first);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first->nextSibling, "i", "id", nullptr), third);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "k", ""), third);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", "id", "4"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "j", "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(nullptr, "i", "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, nullptr, "id", "1"), nullptr);
    EXPECT_EQ(NDL_XML_FindNodeByAttr(first, "i", nullptr, "1"), nullptr);
}

// Names, conditions and segments longer than the working buffers are
// refused, never cut.
TEST(KeyLookupLimits, OverlongPartsAreRefusedNotCut)
{
    const std::string name128(128, 'n');
    const std::string k127(127, 'k');
    const std::string dots(253, '.');
    const std::string doc = "<a><" + name128 + " id='1'>v</" + name128 + "><b " + k127 + "='w'>t</b></a>";
    xmltest::Tree tree = xmltest::parse(doc.c_str());
    const struct {
        std::string key;
        int rc;
        const char *text;
    } cases[] = {{"a." + name128 + "[id=1]", -1, ""},
                 {"a.b[" + k127 + "]", 0, "w"},
                 {"a.b[" + std::string(125, 'k') + "=w]", -1, ""},
                 {"a.b[" + k127 + "k]", -1, ""},
                 {"a" + dots + "b[" + k127 + "]", 0, "w"},
                 {"a." + dots + "b[" + k127 + "]", -1, ""},
                 {"a" + dots + "b", 0, "t"},
                 {"a." + dots + "b", -1, ""}};
    for (const auto &c : cases) {
        char out[32] = "untouched";
        EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), c.key.c_str(), out), c.rc) << c.key.size();
        EXPECT_STREQ(out, c.text) << c.key.size();
    }
}

TEST(KeyLookupLimits, BoundedFormRefusesValuesThatDoNotFit)
{
    xmltest::Tree tree = xmltest::parse("<a><b id='12345'>1234</b></a>");
    const struct {
        const char *key;
        std::size_t size;
        int rc;
        const char *text;
    } cases[] = {{"a.b", 5, 0, "1234"}, {"a.b", 4, -1, ""}, {"a.b[id]", 5, -1, ""}, {"a.b[id]", 6, 0, "12345"}};
    char out[8];
    for (const auto &c : cases) {
        EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), c.key, out, c.size), c.rc) << c.key << c.size;
        EXPECT_STREQ(out, c.text);
    }
    out[0] = 'z';
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), "a.b", out, 0), -1);
    EXPECT_EQ(out[0], 'z');  // no room to write even the terminator
}

TEST(KeyLookupLimits, MissingArguments)
{
    xmltest::Tree tree = xmltest::parse("<a>v</a>");
    char out[8] = "keep";
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(nullptr, "a", out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), nullptr, out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), "a", nullptr), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(nullptr, "a", out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr("f", nullptr, out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr("f", "a", nullptr), -1);
    EXPECT_STREQ(out, "keep");
}

// The file is parsed at each call; a value longer than the bounded buffer
// is refused without a byte beyond it.
TEST(KeyLookupFile, ReadsTheFeatureSetting)
{
    const std::string path =
        xmltest::write_work_file("key_lookup_feature.xml",
                                 "<?xml version=\"1.0\"?>\n<!-- features -->\n<configuration><FEATURE_SMS>"
                                 "<lang_table>2</lang_table><long>" +
                                     std::string(100, 'v') + "</long></FEATURE_SMS></configuration>\n<extra/>\n");
    char out[33] = "junk";
    out[32] = '#';
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(path.c_str(), "configuration.FEATURE_SMS.lang_table", out), 0);
    EXPECT_STREQ(out, "2");
    EXPECT_EQ(NDL_XML_GetNodeOrAttrEx(path.c_str(), "configuration.FEATURE_SMS.long", out, 32), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(out[32], '#');
    std::strcpy(out, "junk");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(xmltest::work_path("absent.xml").c_str(), "a", out), -1);
    EXPECT_STREQ(out, "");
}

TEST(UrlLookupArguments, RequiredAndBounded)
{
    xmltest::Tree tree = xmltest::parse("<r><item/></r>");
    XML_Node *out = nullptr;
    EXPECT_EQ(NDL_XML_GetNodeByUrl(nullptr, "r", &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), nullptr, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), "r", nullptr), XML_ERR_PARAM);
    const std::string fits = "r" + std::string(505, '.') + "item.";  // 511 bytes
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), fits.c_str(), &out), XML_OK);
    EXPECT_EQ(out, tree->firstChild);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), (fits + ".").c_str(), &out), XML_ERR_PARAM);
}

}  // namespace
