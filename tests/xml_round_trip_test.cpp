// Parse -> serialize -> parse gives the same tree, on seeded random trees.
#include <gtest/gtest.h>

#include <random>
#include <string>

#include "xml_test_support.hpp"

namespace {

class TreeGenerator {
public:
    explicit TreeGenerator(unsigned seed) : rng_(seed) {}

    XML_Node *tree(int depth)
    {
        XML_Node *node = nullptr;
        const std::string prefix = pick(4) == 0 ? name() : "";
        NDL_XML_CreateNode(0, prefix.c_str(), name().c_str(), nullptr, &node);
        const int attrs = pick(4);
        for (int i = 0; i < attrs; ++i) {
            const std::string attr_prefix = pick(3) == 0 ? "p" + std::to_string(i) : "";
            // Distinct names per element: a repeated attribute is refused.
            const std::string attr_name = name() + std::to_string(i);
            NDL_XML_AddAttr(node, attr_prefix.c_str(), attr_name.c_str(), text(false).c_str());
        }
        const int children = depth > 0 ? pick(4) : 0;
        if (children == 0) {
            if (pick(3) != 0) NDL_XML_SetNode(node, nullptr, nullptr, text(true).c_str());
        }
        for (int i = 0; i < children; ++i) NDL_XML_AppendChildNode(node, tree(depth - 1));
        return node;
    }

private:
    int pick(int n) { return std::uniform_int_distribution<int>(0, n - 1)(rng_); }

    std::string name()
    {
        static const char kFirst[] = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ_";
        static const char kRest[] = "abcdefghijklmnopqrstuvwxyz0123456789_.-";
        std::string out(1, kFirst[pick(sizeof kFirst - 1)]);
        for (int i = pick(8); i > 0; --i) out += kRest[pick(sizeof kRest - 1)];
        // "--" before the ">" of an end tag would read as a comment's end.
        if (out.back() == '-') out += '_';
        return out;
    }

    // Element text keeps its bytes when it does not start with whitespace
    // (leading line breaks are layout to the parser); attribute values keep
    // any bytes.
    std::string text(bool element_text)
    {
        static const char *const kPieces[] = {"x", "y z", "<", ">", "&", "'", "\"", " ", "\t", "\n", "\r", "-->",
                                              "]]>", "/", "=", "\xC3\xA9", "\xE2\x82\xAC", "&amp;", "<!--", "?>"};
        std::string out;
        for (int i = 1 + pick(6); i > 0; --i) out += kPieces[pick(sizeof kPieces / sizeof kPieces[0])];
        if (element_text && (out[0] == ' ' || out[0] == '\t' || out[0] == '\n' || out[0] == '\r')) out.insert(0, "k");
        return out;
    }

    std::mt19937 rng_;
};

class RoundTrip : public ::testing::TestWithParam<unsigned> {};

TEST_P(RoundTrip, SerializedTreeParsesBackEqual)
{
    TreeGenerator gen(GetParam());
    for (int i = 0; i < 25; ++i) {
        xmltest::Tree original(gen.tree(4));
        const std::string text = xmltest::serialize(original.get());
        XML_Node *parsed = nullptr;
        ASSERT_EQ(NDL_XML_Parse(text.c_str(), &parsed), XML_OK) << text;
        xmltest::Tree owned(parsed);
        ASSERT_EQ(xmltest::describe_chain(parsed), xmltest::describe(original.get())) << text;
        EXPECT_EQ(xmltest::serialize(parsed), text);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, RoundTrip, ::testing::Values(1u, 2u, 3u, 42u, 1234u, 987654u, 20261122u),
                         [](const ::testing::TestParamInfo<unsigned> &info) {
                             return "Seed" + std::to_string(info.param);
                         });

// Whitespace that came from references is written as it is, and the parser
// drops whitespace-only text and line breaks or tabs at the start of text:
// such values do not survive the way back.  Spaces before the text do.
struct WhitespaceCase {
    const char *name;
    const char *document;
    const char *parsed;     // the element's value after the first parse
    const char *read_back;  // after serializing and parsing again; null: none
};

class RoundTripWhitespace : public ::testing::TestWithParam<WhitespaceCase> {};

TEST_P(RoundTripWhitespace, ValueReadBack)
{
    const WhitespaceCase &c = GetParam();
    std::string text = c.document;
    XML_Node *first = nullptr;
    ASSERT_EQ(NDL_XML_Parse(text.data(), &first), XML_OK);
    xmltest::Tree owned_first(first);
    ASSERT_NE(first->value, nullptr);
    EXPECT_STREQ(first->value, c.parsed);
    std::string written = xmltest::serialize(first);
    XML_Node *second = nullptr;
    ASSERT_EQ(NDL_XML_Parse(written.data(), &second), XML_OK) << written;
    xmltest::Tree owned_second(second);
    if (c.read_back == nullptr) {
        EXPECT_EQ(second->value, nullptr) << written;
    } else {
        ASSERT_NE(second->value, nullptr) << written;
        EXPECT_STREQ(second->value, c.read_back);
    }
}

INSTANTIATE_TEST_SUITE_P(References, RoundTripWhitespace,
                         ::testing::Values(WhitespaceCase{"carriage_return_before_text", "<r>&#13;x</r>", "\rx", "x"},
                                           WhitespaceCase{"spaces_and_tab_only", "<r>  &#9;</r>", "  \t", nullptr},
                                           WhitespaceCase{"spaces_only", "<r> &#32;</r>", "  ", nullptr},
                                           WhitespaceCase{"space_before_and_line_feed_after_text", "<r>&#32;x &#10;</r>", " x \n", " x \n"}),
                         [](const ::testing::TestParamInfo<WhitespaceCase> &info) {
                             return std::string(info.param.name);
                         });

}  // namespace
