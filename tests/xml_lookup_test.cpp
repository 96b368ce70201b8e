// Finding nodes and attributes by dotted path, key and URL.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/support.hpp"

namespace {

using namespace smsutil::test;

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

INSTANTIATE_TEST_SUITE_P(
    Paths, DottedPath,
    ::testing::Values(PathCase{"Nested", "a.b.c", "1"}, PathCase{"FirstMatchOnly", "a.b.d", nullptr},
                      PathCase{"RunsOfDots", "a..b...c", "1"}, PathCase{"LeadingAndTrailingDots", ".a.b.c.", "1"},
                      PathCase{"LaterTopLevelElement", "x.y", "4"}, PathCase{"ElementWithoutText", "a.b", ""},
                      PathCase{"OnlyDots", ".", nullptr}, PathCase{"Empty", "", nullptr},
                      PathCase{"Missing", "a.q", nullptr}, PathCase{"BeyondLeaf", "a.b.c.z", nullptr},
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

// b with id 7 has no text of its own (mixed content is refused by the
// parser), so a condition selecting it copies nothing.
constexpr const char *kKeyDoc =
    "<a>"
    "<b id='6'><c>six</c></b>"
    "<b id='7' name='seven'><c>first c</c><c k='v'><d>deep</d></c><e/></b>"
    "<b id='8' p:name='prefixed'>eight</b>"
    "<f>plain</f>"
    "</a>";

struct KeyCase {
    const char *name;
    const char *key;
    int rc;
    const char *text;
};

class KeyLookup : public ::testing::TestWithParam<KeyCase> {};

TEST_P(KeyLookup, SelectsTheText)
{
    xmltest::Tree tree = xmltest::parse(kKeyDoc);
    char out[64];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), GetParam().key, out), GetParam().rc) << GetParam().key;
    EXPECT_STREQ(out, GetParam().text);
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), GetParam().key, out, sizeof out), GetParam().rc);
    EXPECT_STREQ(out, GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(
    Forms, KeyLookup,
    ::testing::Values(
        KeyCase{"DottedPath", "a.f", 0, "plain"}, KeyCase{"NestedPath", "a.b.c", 0, "six"},
        KeyCase{"ElementWithoutText", "a.b", 0, ""}, KeyCase{"MissingPath", "a.z", -1, ""},
        KeyCase{"BareAttribute", "a.b[id]", 0, "6"}, KeyCase{"BareAttributeFirstHavingIt", "a.b[name]", 0, "seven"},
        KeyCase{"BareAttributeNeedsNoPrefix", "a.b[id=8][name]", -1, ""},
        KeyCase{"ConditionText", "a.b[id=8]", 0, "eight"}, KeyCase{"ConditionWithoutText", "a.b[id=7]", 0, ""},
        KeyCase{"ConditionNoMatch", "a.b[id=9]", -1, ""},
        KeyCase{"ConditionThenAttribute", "a.b[id=7][name]", 0, "seven"},
        KeyCase{"ConditionThenPath", "a.b[id=7].c", 0, "first c"},
        KeyCase{"ConditionThenPathNoDot", "a.b[id=7]c", 0, "first c"},
        KeyCase{"TwoConditionsThenPath", "a.b[id=7].c[k=v].d", 0, "deep"},
        KeyCase{"PathAfterBracketWithoutText", "a.b[id=7].e", -1, ""},
        KeyCase{"TrailingDotAfterBracket", "a.b[id=6].", 0, ""},
        KeyCase{"SecondBracketDropsRest", "a.b[id=7][name].c", 0, "seven"}, KeyCase{"MissingClose", "a.b[id=7", -1, ""},
        KeyCase{"CloseBeforeOpen", "a]b[id", -1, ""}, KeyCase{"LaterBracketUnclosed", "a.b[id=7].c[k=v", -1, ""},
        KeyCase{"EmptySegment", "[id]", -1, ""}, KeyCase{"EmptyConditionName", "a.b[=7]", -1, ""},
        KeyCase{"MissingAttribute", "a.b[zz]", -1, ""}),
    xmltest::case_name<KeyCase>);

TEST(KeyLookupLimits, OverlongPartsAreRefusedNotCut)
{
    const std::string long_name(128, 'n');
    const std::string doc =
        "<a><" + long_name + " id='1'>v</" + long_name + "><b " + std::string(127, 'k') + "='w'>t</b></a>";
    xmltest::Tree tree = xmltest::parse(doc.c_str());
    char out[32] = "untouched";
    // Element name of 128 bytes behind a bracket.
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a." + long_name + "[id=1]").c_str(), out), -1);
    EXPECT_STREQ(out, "");
    // A 127-byte condition fits, 128 does not.
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a.b[" + std::string(127, 'k') + "]").c_str(), out), 0);
    EXPECT_STREQ(out, "w");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a.b[" + std::string(125, 'k') + "=w]").c_str(), out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a.b[" + std::string(128, 'k') + "]").c_str(), out), -1);
    // A segment of 255 bytes is read, 256 refused; the same for a plain key.
    const std::string dots254(253, '.');
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a" + dots254 + "b[" + std::string(127, 'k') + "]").c_str(), out),
              0);
    EXPECT_EQ(
        NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a." + dots254 + "b[" + std::string(127, 'k') + "]").c_str(), out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a" + dots254 + "b").c_str(), out), 0);
    EXPECT_STREQ(out, "t");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), ("a." + dots254 + "b").c_str(), out), -1);
    EXPECT_STREQ(out, "");
}

TEST(KeyLookupLimits, BoundedFormRefusesValuesThatDoNotFit)
{
    xmltest::Tree tree = xmltest::parse("<a><b id='12345'>1234</b></a>");
    char out[8] = "xxxxxxx";
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), "a.b", out, 5), 0);
    EXPECT_STREQ(out, "1234");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), "a.b", out, 4), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), "a.b[id]", out, 5), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_NodeEx(tree.get(), "a.b[id]", out, 6), 0);
    EXPECT_STREQ(out, "12345");
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
    EXPECT_STREQ(out, "keep");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr_Node(tree.get(), "a", nullptr), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(nullptr, "a", out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr("f", nullptr, out), -1);
    EXPECT_EQ(NDL_XML_GetNodeOrAttr("f", "a", nullptr), -1);
    EXPECT_STREQ(out, "keep");
}

TEST(KeyLookupFile, ReadsTheFeatureSetting)
{
    const std::string path = xmltest::write_work_file(
        "key_lookup_feature.xml",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!-- features -->\n<configuration>\n"
        "  <FEATURE_SMS>\n    <lang_table>2</lang_table>\n  </FEATURE_SMS>\n</configuration>\n<extra/>\n");
    xmltest::HookScope hooks;
    char out[32] = "junk";
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(path.c_str(), "configuration.FEATURE_SMS.lang_table", out), 0);
    EXPECT_STREQ(out, "2");
    EXPECT_EQ(NDL_XML_GetNodeOrAttrEx(path.c_str(), "configuration.FEATURE_SMS.lang_table", out, sizeof out), 0);
    EXPECT_STREQ(out, "2");
    EXPECT_EQ(NDL_XML_GetNodeOrAttrEx(path.c_str(), "configuration.FEATURE_SMS.missing", out, sizeof out), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(hooks.live(), 0);  // every top-level element released
    std::strcpy(out, "junk");
    EXPECT_EQ(NDL_XML_GetNodeOrAttr(xmltest::work_path("absent.xml").c_str(), "a", out), -1);
    EXPECT_STREQ(out, "");
}

TEST(KeyLookupFile, LongValueNeverOverflowsTheBoundedBuffer)
{
    const std::string value(100, 'v');
    const std::string path =
        xmltest::write_work_file("key_lookup_long.xml", "<configuration><FEATURE_SMS><lang_table>" + value +
                                                            "</lang_table></FEATURE_SMS></configuration>");
    char out[33];
    out[32] = '#';
    EXPECT_EQ(NDL_XML_GetNodeOrAttrEx(path.c_str(), "configuration.FEATURE_SMS.lang_table", out, 32), -1);
    EXPECT_STREQ(out, "");
    EXPECT_EQ(out[32], '#');
}

constexpr const char *kUrlDoc =
    "<r><item>1</item><other/><item>2</item><item>3</item><item>4</item><item>5</item>"
    "<p:item>6</p:item><box><x:leaf>7</x:leaf><n:n>8</n:n></box></r>";

struct UrlCase {
    const char *name;
    const char *url;
    uint32_t rc;
    const char *found;  // value of the node stored
};

class UrlLookup : public ::testing::TestWithParam<UrlCase> {};

TEST_P(UrlLookup, FollowsNamesAndIndexes)
{
    xmltest::Tree tree = xmltest::parse(kUrlDoc);
    XML_Node *out = nullptr;
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), GetParam().url, &out), GetParam().rc) << GetParam().url;
    if (GetParam().rc == XML_OK) {
        ASSERT_NE(out, nullptr);
        EXPECT_STREQ(out->value != nullptr ? out->value : "", GetParam().found);
    } else {
        EXPECT_EQ(out, nullptr);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Rules, UrlLookup,
    ::testing::Values(
        UrlCase{"RootItself", "r", XML_OK, ""}, UrlCase{"FirstChildByName", "r.item", XML_OK, "1"},
        UrlCase{"IndexCountsSameNameOnly", "r.item.3", XML_OK, "3"}, UrlCase{"IndexOne", "r.item.1", XML_OK, "1"},
        UrlCase{"IndexIncludesPrefixedTwin", "r.item.6", XML_OK, "6"},
        UrlCase{"IndexTooLarge", "r.item.9", XML_ERR_NOT_FOUND, ""},
        UrlCase{"IndexZero", "r.item.0", XML_ERR_INDEX, ""},
        UrlCase{"IndexAfterFirstComponent", "r.3", XML_ERR_INDEX, ""},
        UrlCase{"IndexAfterIndex", "r.item.2.1", XML_ERR_INDEX, ""},
        UrlCase{"TenDigitIndex", "r.item.0000000001", XML_ERR_NOT_FOUND, ""},
        UrlCase{"NineDigitIndex", "r.item.000000002", XML_OK, "2"},
        UrlCase{"WrongFirstComponent", "x.item", XML_ERR_NOT_FOUND, ""},
        UrlCase{"MissingChild", "r.none", XML_ERR_NOT_FOUND, ""}, UrlCase{"PrefixedName", "r.p:item", XML_OK, "6"},
        UrlCase{"PrefixedNested", "r.box.x:leaf", XML_OK, "7"},
        UrlCase{"LocalNameMatchesPrefixed", "r.box.leaf", XML_OK, "7"},
        UrlCase{"WrongPrefix", "r.box.y:leaf", XML_ERR_NOT_FOUND, ""},
        UrlCase{"PrefixEqualsNameFirstOccurrenceWins", "r.box.n:n", XML_ERR_NOT_FOUND, ""},
        UrlCase{"PrefixedNameMatchesAtItsStart", "r.box.x:leafy", XML_OK, "7"},
        UrlCase{"NameMustFollowTheColon", "r.box.leaf:x", XML_ERR_NOT_FOUND, ""},
        UrlCase{"EmptyComponentsSkipped", "..r..item..2..", XML_OK, "2"},
        UrlCase{"OnlyDots", "...", XML_ERR_NOT_FOUND, ""}, UrlCase{"NameAfterIndex", "r.box.1.leaf", XML_OK, "7"}),
    xmltest::case_name<UrlCase>);

TEST(UrlLookupArguments, RequiredAndBounded)
{
    xmltest::Tree tree = xmltest::parse(kUrlDoc);
    XML_Node *out = nullptr;
    EXPECT_EQ(NDL_XML_GetNodeByUrl(nullptr, "r", &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), nullptr, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), "", &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), "r", nullptr), XML_ERR_PARAM);
    const std::string fits = "r" + std::string(505, '.') + "item.";  // 511 bytes
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), fits.c_str(), &out), XML_OK);
    EXPECT_EQ(NDL_XML_GetNodeByUrl(tree.get(), (fits + ".").c_str(), &out), XML_ERR_PARAM);
}

}  // namespace
