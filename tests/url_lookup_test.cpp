#include <gtest/gtest.h>

#include <string>

#include "xml_test_support.hpp"

namespace {

constexpr const char *kDoc = "<r><item>1</item><other/><item>2</item><item>3</item><item>4</item><item>5</item>"
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
    xmltest::Tree tree = xmltest::parse(kDoc);
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
    ::testing::Values(UrlCase{"RootItself", "r", XML_OK, ""}, UrlCase{"FirstChildByName", "r.item", XML_OK, "1"},
                      UrlCase{"IndexCountsSameNameOnly", "r.item.3", XML_OK, "3"},
                      UrlCase{"IndexOne", "r.item.1", XML_OK, "1"},
                      UrlCase{"IndexIncludesPrefixedTwin", "r.item.6", XML_OK, "6"},
                      UrlCase{"IndexTooLarge", "r.item.9", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"IndexZero", "r.item.0", XML_ERR_INDEX, ""},
                      UrlCase{"IndexAfterFirstComponent", "r.3", XML_ERR_INDEX, ""},
                      UrlCase{"IndexAfterIndex", "r.item.2.1", XML_ERR_INDEX, ""},
                      UrlCase{"TenDigitIndex", "r.item.0000000001", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"NineDigitIndex", "r.item.000000002", XML_OK, "2"},
                      UrlCase{"WrongFirstComponent", "x.item", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"MissingChild", "r.none", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"PrefixedName", "r.p:item", XML_OK, "6"},
                      UrlCase{"PrefixedNested", "r.box.x:leaf", XML_OK, "7"},
                      UrlCase{"LocalNameMatchesPrefixed", "r.box.leaf", XML_OK, "7"},
                      UrlCase{"WrongPrefix", "r.box.y:leaf", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"PrefixEqualsNameFirstOccurrenceWins", "r.box.n:n", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"PrefixedNameMatchesAtItsStart", "r.box.x:leafy", XML_OK, "7"},
                      UrlCase{"NameMustFollowTheColon", "r.box.leaf:x", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"EmptyComponentsSkipped", "..r..item..2..", XML_OK, "2"},
                      UrlCase{"OnlyDots", "...", XML_ERR_NOT_FOUND, ""},
                      UrlCase{"NameAfterIndex", "r.box.1.leaf", XML_OK, "7"}),
    xmltest::case_name<UrlCase>);

TEST(UrlLookupArguments, RequiredAndBounded)
{
    xmltest::Tree tree = xmltest::parse(kDoc);
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
