#include <gtest/gtest.h>

#include "xml_test_support.hpp"

namespace {

using xmltest::describe_chain;

struct Accepted {
    const char *name;
    const char *text;
    const char *tree;
};

class ParserAccepts : public ::testing::TestWithParam<Accepted> {};

TEST_P(ParserAccepts, BuildsTheTree)
{
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_Parse(GetParam().text, &root), XML_OK) << GetParam().text;
    EXPECT_EQ(describe_chain(root), GetParam().tree);
    XML_FreeNode(root);
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, ParserAccepts,
    ::testing::Values(
        Accepted{"LoneEmptyElement", "<a/>", "a"},
        Accepted{"ChildrenWithText", "<r><a>x</a><b/></r>", "r[a(x),b]"},
        Accepted{"AttributesInOrder", "<r><a x='1' y=\"2\">t</a></r>", "r[a{x=1,y=2}(t)]"},
        Accepted{"OtherQuoteInsideValue", "<a x=\"it's\" y='say \"hi\"'/>", "a{x=it's,y=say \"hi\"}"},
        Accepted{"MarkupInsideValue", "<a x='<b>'/>", "a{x=<b>}"},
        Accepted{"EmptyValueStoresNothing", "<a x=''/>", "a{x}"},
        Accepted{"SpacesAroundText", "<r>  hi  </r>", "r(  hi  )"},
        Accepted{"LineFeedBeforeTextDropped", "<r>\n  hi</r>", "r(  hi)"},
        Accepted{"WhitespaceOnlyContentDropped", "<r> \n\t </r>", "r"},
        Accepted{"TextBeginsWithSlash", "<r>/x</r>", "r(/x)"},
        Accepted{"TextBeginsWithCommentEnd", "<r>-->x</r>", "r(-->x)"},
        Accepted{"TextBeginsWithQuote", "<r>'q' = 1</r>", "r('q' = 1)"},
        Accepted{"Entities", "<r>&lt;&#65;&#x42;&amp;&gt;&apos;&quot;</r>", "r(<AB&>'\")"},
        Accepted{"CharRefToUtf8", "<r>&#xe9;&#x20AC;&#x1F600;</r>", "r(\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80)"},
        Accepted{"Utf8PassesThrough", "<r a='\xC3\xA9'>\xE2\x82\xAC</r>", "r{a=\xC3\xA9}(\xE2\x82\xAC)"},
        Accepted{"Prefixes", "<p:r q:a='1'/>", "p:r{q:a=1}"},
        Accepted{"PrefixSplitAtFirstColon", "<a:b:c/>", "a:b:c"},
        Accepted{"PrefixedWithEndTag", "<p:r><p:c>t</p:c></p:r>", "p:r[p:c(t)]"},
        Accepted{"SameNameDifferentPrefix", "<a x='1' p:x='2'/>", "a{x=1,p:x=2}"},
        Accepted{"Declaration", "<?xml version='1.0'?><r/>", "r"},
        Accepted{"ByteOrderMarkThenDeclaration", "\xEF\xBB\xBF<?xml version='1.0'?>\n<r/>", "r"},
        Accepted{"CommentsAndInstructions", "<!-- c --><?pi x?>\n<r><!-- in --><?p?><a/><!-- -- --></r><!--end-->",
                 "r[a]"},
        Accepted{"CommentAroundText", "<r><!-- c -->t<!-- d --></r>", "r(t)"},
        Accepted{"EmptyComment", "<!----><r/>", "r"},
        Accepted{"DoctypeWithInternalSubset",
                 "<?xml version=\"1.0\"?>\n<!DOCTYPE r [\n<!ELEMENT r ANY>\n<!ENTITY e \"a>b\">\n]>\n<r/>", "r"},
        Accepted{"OuterElementsLeftOpen", "<r><a/>", "r[a]"},
        Accepted{"OuterLeftOpenAfterEndTag", "<r><a></a>", "r[a]"},
        Accepted{"TwoTopLevelElements", "<a/><b>t</b>", "a + b(t)"},
        Accepted{"WhitespaceInsideTags", "< r  x = '1' ></ r >", "r{x=1}"},
        Accepted{"WhitespaceBeforeEmptyTagEnd", "<r x='1' />", "r{x=1}"},
        Accepted{"NestedDeeply", "<a><b><c><d>x</d></c></b><e/></a>", "a[b[c[d(x)]],e]"},
        Accepted{"ConfigurationFile",
                 "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\r\n<configuration>\r\n  <FEATURE_SMS>\r\n"
                 "    <lang_table>2</lang_table>\r\n  </FEATURE_SMS>\r\n</configuration>\r\n",
                 "configuration[FEATURE_SMS[lang_table(2)]]"}),
    xmltest::case_name<Accepted>);

struct Refused {
    const char *name;
    const char *text;
};

class ParserRefuses : public ::testing::TestWithParam<Refused> {};

TEST_P(ParserRefuses, WithSyntaxErrorAndNoTree)
{
    XML_Node *root = reinterpret_cast<XML_Node *>(0x1);
    EXPECT_EQ(NDL_XML_Parse(GetParam().text, &root), XML_ERR_SYNTAX) << GetParam().text;
    EXPECT_EQ(root, nullptr);
}

INSTANTIATE_TEST_SUITE_P(
    Grammar, ParserRefuses,
    ::testing::Values(
        Refused{"EndTagLonger", "<r><a>x</ab></r>"}, Refused{"EndTagOther", "<r><a>x</b></r>"},
        Refused{"EndTagShorter", "<r><ab>x</a></r>"}, Refused{"EmptyEndTagMismatch", "<r><a></b></r>"},
        Refused{"TextBeforeChild", "<r>t<a/></r>"}, Refused{"TextAfterChild", "<r><a/>t</r>"},
        Refused{"TextAfterEndTag", "<r><a></a>t</r>"}, Refused{"TextInMiddleOfComment", "<r>a<!-- c -->b</r>"},
        Refused{"UnclosedLastElement", "<r>"}, Refused{"UnclosedText", "<r>text"},
        Refused{"NulCharRef", "<r>&#0;</r>"}, Refused{"SurrogateCharRef", "<r>&#xD800;</r>"},
        Refused{"UnknownEntity", "<r>&foo;</r>"}, Refused{"BareAmpersand", "<r>a & b</r>"},
        Refused{"CharRefAboveRange", "<r>&#x110000;</r>"}, Refused{"UpperCaseHexMarker", "<r>&#X41;</r>"},
        Refused{"EntityInAttribute", "<r a='&bad;'/>"}, Refused{"LeadingColon", "<:r/>"},
        Refused{"TrailingColon", "<r:/>"}, Refused{"AttributeTrailingColon", "<r a:='1'/>"},
        Refused{"LateDeclaration", "<r/><?xml version='1.0'?>"}, Refused{"UpperCaseDeclaration", "<?XML version='1.0'?><r/>"},
        Refused{"BareDeclaration", "<?xml?><r/>"}, Refused{"SpaceBetweenBomAndDeclaration", "\xEF\xBB\xBF <?xml version='1.0'?><r/>"},
        Refused{"CommentBeforeDeclaration", "<!-- c --><?xml version='1.0'?><r/>"},
        Refused{"CommentEndingInThreeDashes", "<!-- a ---><r/>"}, Refused{"ShortComment", "<!--><r/>"},
        Refused{"ShortCommentDash", "<!---><r/>"}, Refused{"UnterminatedComment", "<r/><!-- x"},
        Refused{"UnterminatedInstruction", "<?pi <r/>"}, Refused{"UnterminatedDeclaration", "<?xml version='1.0'"},
        Refused{"UnterminatedDoctype", "<!DOCTYPE r [ <!ELEMENT r ANY> <r/>"},
        Refused{"UnmatchedQuoteInDoctype", "<!DOCTYPE r \"><r/>"}, Refused{"NoWhitespaceBeforeAttribute", "<a x='1'y='2'/>"},
        Refused{"RepeatedAttribute", "<a x='1' x='2'/>"}, Refused{"AttributeWithoutValue", "<a x/>"},
        Refused{"UnquotedValue", "<a x=1/>"}, Refused{"UnterminatedValue", "<a x='1/>"},
        Refused{"TagInAttributeList", "<a x='1' <b/>"}, Refused{"StrayGreaterThan", "<r>></r>"},
        Refused{"EndTagAtTop", "</r>"}, Refused{"EndTagBeyondRoot", "<r/></r>"}, Refused{"EmptyTagName", "<>"},
        Refused{"TextAtTop", "hello"}, Refused{"TextAfterRoot", "<r/>x"}, Refused{"OnlyComment", "<!-- c -->"},
        Refused{"OnlyWhitespace", " \n\t"}, Refused{"CdataNotRecognised", "<r><![CDATA[x]]></r>"},
        Refused{"SlashInMarkup", "<r/>/"}, Refused{"EmptyTagEndAlone", "<r>/></r>"}),
    xmltest::case_name<Refused>);

TEST(Parser, RefusesMissingArguments)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_Parse(nullptr, &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Parse("", &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Parse("<a/>", nullptr), XML_ERR_PARAM);
}

TEST(Parser, LinksTopLevelChainAndLeavesTextUntouched)
{
    const char text[] = "<a x='&amp;'>t&lt;</a><b/>";
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_Parse(text, &root), XML_OK);
    ASSERT_NE(root->nextSibling, nullptr);
    EXPECT_EQ(root->nextSibling->prevSibling, root);
    EXPECT_EQ(root->parent, nullptr);
    EXPECT_EQ(root->nextSibling->parent, nullptr);
    EXPECT_EQ(root->kind, XML_NODE_ELEMENT);
    EXPECT_EQ(root->firstAttr->kind, XML_NODE_ATTR);
    EXPECT_STREQ(text, "<a x='&amp;'>t&lt;</a><b/>");
    XML_FreeNode(root);
}

// Nesting depth is bounded by memory only: neither parsing nor freeing
// recurses per level.
TEST(Parser, DeepNesting)
{
    constexpr int kDepth = 200000;
    std::string text;
    for (int i = 0; i < kDepth; ++i) text += "<a>";
    text += "x";
    for (int i = 0; i < kDepth; ++i) text += "</a>";
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_Parse(text.c_str(), &root), XML_OK);
    int depth = 0;
    const XML_Node *n = root;
    for (; n->firstChild != nullptr; n = n->firstChild) ++depth;
    EXPECT_EQ(depth, kDepth - 1);
    EXPECT_STREQ(n->value, "x");
    XML_Node *copy = nullptr;
    ASSERT_EQ(NDL_XML_CloneNode(root, &copy), XML_OK);
    XML_FreeNode(copy);
    XML_FreeNode(root);
}

// Every allocation of a parse failing in turn: the state and the first
// element give "no memory", everything later a syntax error; nothing leaks.
TEST(Parser, AllocationFailureSweep)
{
    const char *text = "<?xml version='1.0'?><p:r a='1' q:b='&lt;'><c>t&amp;</c><d/><e><f z='q'/></e></p:r><s/>";
    const std::string expected = xmltest::describe_chain(xmltest::parse(text).get());
    for (long k = 1;; ++k) {
        xmltest::HookScope hooks(k);
        XML_Node *root = nullptr;
        const uint32_t rc = NDL_XML_Parse(text, &root);
        if (!hooks.failure_hit()) {
            ASSERT_EQ(rc, XML_OK);
            EXPECT_EQ(xmltest::describe_chain(root), expected);
            XML_FreeNode(root);
            EXPECT_EQ(hooks.live(), 0);
            EXPECT_GT(k, 10);
            break;
        }
        EXPECT_EQ(rc, k <= 2 ? XML_ERR_NO_MEMORY : XML_ERR_SYNTAX) << "k=" << k;
        EXPECT_EQ(root, nullptr);
        EXPECT_EQ(hooks.live(), 0) << "k=" << k;
    }
}

}  // namespace
