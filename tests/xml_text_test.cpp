// XML text: parsing, entities, serializing, files, and text that survives a round trip.
#include <gtest/gtest.h>

#include <string>

#include "support/support.hpp"
#include "xml/xml_internal.hpp"

namespace {

using namespace smsutil::test;

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
        Accepted{"LoneEmptyElement", "<a/>", "a"}, Accepted{"ChildrenWithText", "<r><a>x</a><b/></r>", "r[a(x),b]"},
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
        Accepted{"Prefixes", "<p:r q:a='1'/>", "p:r{q:a=1}"}, Accepted{"PrefixSplitAtFirstColon", "<a:b:c/>", "a:b:c"},
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
        Refused{"UnclosedLastElement", "<r>"}, Refused{"UnclosedText", "<r>text"}, Refused{"NulCharRef", "<r>&#0;</r>"},
        Refused{"SurrogateCharRef", "<r>&#xD800;</r>"}, Refused{"UnknownEntity", "<r>&foo;</r>"},
        Refused{"BareAmpersand", "<r>a & b</r>"}, Refused{"CharRefAboveRange", "<r>&#x110000;</r>"},
        Refused{"UpperCaseHexMarker", "<r>&#X41;</r>"}, Refused{"EntityInAttribute", "<r a='&bad;'/>"},
        Refused{"LeadingColon", "<:r/>"}, Refused{"TrailingColon", "<r:/>"},
        Refused{"AttributeTrailingColon", "<r a:='1'/>"}, Refused{"LateDeclaration", "<r/><?xml version='1.0'?>"},
        Refused{"UpperCaseDeclaration", "<?XML version='1.0'?><r/>"}, Refused{"BareDeclaration", "<?xml?><r/>"},
        Refused{"SpaceBetweenBomAndDeclaration", "\xEF\xBB\xBF <?xml version='1.0'?><r/>"},
        Refused{"CommentBeforeDeclaration", "<!-- c --><?xml version='1.0'?><r/>"},
        Refused{"CommentEndingInThreeDashes", "<!-- a ---><r/>"}, Refused{"ShortComment", "<!--><r/>"},
        Refused{"ShortCommentDash", "<!---><r/>"}, Refused{"UnterminatedComment", "<r/><!-- x"},
        Refused{"UnterminatedInstruction", "<?pi <r/>"}, Refused{"UnterminatedDeclaration", "<?xml version='1.0'"},
        Refused{"UnterminatedDoctype", "<!DOCTYPE r [ <!ELEMENT r ANY> <r/>"},
        Refused{"UnmatchedQuoteInDoctype", "<!DOCTYPE r \"><r/>"},
        Refused{"NoWhitespaceBeforeAttribute", "<a x='1'y='2'/>"}, Refused{"RepeatedAttribute", "<a x='1' x='2'/>"},
        Refused{"AttributeWithoutValue", "<a x/>"}, Refused{"UnquotedValue", "<a x=1/>"},
        Refused{"UnterminatedValue", "<a x='1/>"}, Refused{"TagInAttributeList", "<a x='1' <b/>"},
        Refused{"StrayGreaterThan", "<r>></r>"}, Refused{"EndTagAtTop", "</r>"},
        Refused{"EndTagBeyondRoot", "<r/></r>"}, Refused{"EmptyTagName", "<>"}, Refused{"TextAtTop", "hello"},
        Refused{"TextAfterRoot", "<r/>x"}, Refused{"OnlyComment", "<!-- c -->"}, Refused{"OnlyWhitespace", " \n\t"},
        Refused{"CdataNotRecognised", "<r><![CDATA[x]]></r>"}, Refused{"SlashInMarkup", "<r/>/"},
        Refused{"EmptyTagEndAlone", "<r>/></r>"}),
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

struct Decode {
    const char *name;
    const char *raw;
    bool ok;
    const char *decoded;
};

class EntityDecoder : public ::testing::TestWithParam<Decode> {};

TEST_P(EntityDecoder, DecodesWithinTheRange)
{
    const Decode &c = GetParam();
    const std::string raw = c.raw;
    char *out = reinterpret_cast<char *>(0x1);
    ASSERT_EQ(smsutil::xml::copy_decoded(raw.data(), raw.size(), &out), c.ok) << raw;
    if (c.ok) {
        EXPECT_EQ(std::string(out), c.decoded);
        XML_Free(out);
    } else {
        EXPECT_EQ(out, reinterpret_cast<char *>(0x1));
    }
}

INSTANTIATE_TEST_SUITE_P(
    References, EntityDecoder,
    ::testing::Values(Decode{"Plain", "abc", true, "abc"}, Decode{"Named", "&amp;&lt;&gt;&apos;&quot;", true, "&<>'\""},
                      Decode{"Decimal", "&#65;&#0066;", true, "AB"}, Decode{"HexBothCases", "&#x4a;&#x4A;", true, "JJ"},
                      Decode{"TwoBytes", "&#xE9;", true, "\xC3\xA9"},
                      Decode{"ThreeBytes", "&#xFFFD;", true, "\xEF\xBF\xBD"},
                      Decode{"FourBytes", "&#x10FFFF;", true, "\xF4\x8F\xBF\xBF"},
                      Decode{"AllowedControls", "&#9;&#10;&#13;", true, "\t\n\r"}, Decode{"Zero", "&#0;", false, ""},
                      Decode{"Empty", "&#;", false, ""}, Decode{"OtherControl", "&#1;", false, ""},
                      Decode{"Surrogate", "&#xDFFF;", false, ""}, Decode{"NonCharacter", "&#xFFFE;", false, ""},
                      Decode{"AboveRange", "&#x110000;", false, ""},
                      Decode{"HugeDecimal", "&#99999999999999999999;", false, ""},
                      Decode{"UpperX", "&#X41;", false, ""}, Decode{"BadDigit", "&#6a;", false, ""},
                      Decode{"Unterminated", "&#65", false, ""}, Decode{"UnknownName", "&nbsp;", false, ""},
                      Decode{"LoneAmpersand", "a&b", false, ""}, Decode{"CutNamed", "&amp", false, ""}),
    xmltest::case_name<Decode>);

// The range, not the terminator, bounds an entity.
TEST(EntityDecoderRange, EntityRunningPastTheRangeFails)
{
    const char text[] = "&amp;";
    char *out = nullptr;
    EXPECT_FALSE(smsutil::xml::copy_decoded(text, 4, &out));
    EXPECT_TRUE(smsutil::xml::copy_decoded(text, 0, &out));
    EXPECT_EQ(out, nullptr);
}

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

INSTANTIATE_TEST_SUITE_P(Lines, SerializerLone,
                         ::testing::Values(Lone{"Empty", nullptr, nullptr, nullptr, nullptr, nullptr, "<r/>\n"},
                                           Lone{"Text", nullptr, "x", nullptr, nullptr, nullptr, "<r>x</r>\n"},
                                           Lone{"Prefixes", "p", nullptr, "q", "a", "1", "<p:r q:a=\"1\"/>\n"},
                                           Lone{"AttributeWithoutValue", nullptr, nullptr, nullptr, "a", nullptr,
                                                "<r a=\"\"/>\n"},
                                           Lone{"SpecialCharacters", nullptr, "\"&'<>", nullptr, "a", "<\"'&>",
                                                "<r a=\"&lt;&quot;&apos;&amp;&gt;\">&quot;&amp;&apos;&lt;&gt;</r>\n"},
                                           Lone{"Utf8AndControlBytes", nullptr, "\xC3\xA9\t\x01", nullptr, nullptr,
                                                nullptr, "<r>\xC3\xA9\t\x01</r>\n"}),
                         xmltest::case_name<Lone>);

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

INSTANTIATE_TEST_SUITE_P(
    References, RoundTripWhitespace,
    ::testing::Values(WhitespaceCase{"carriage_return_before_text", "<r>&#13;x</r>", "\rx", "x"},
                      WhitespaceCase{"spaces_and_tab_only", "<r>  &#9;</r>", "  \t", nullptr},
                      WhitespaceCase{"spaces_only", "<r> &#32;</r>", "  ", nullptr},
                      WhitespaceCase{"space_before_and_line_feed_after_text", "<r>&#32;x &#10;</r>", " x \n", " x \n"}),
    [](const ::testing::TestParamInfo<WhitespaceCase> &info) { return std::string(info.param.name); });

struct FileCase {
    const char *name;
    const char *file;  // null: the file does not exist
    std::size_t size;  // bytes of file to write (NULs included)
    uint32_t rc;
};

class ParseFileFails : public ::testing::TestWithParam<FileCase> {};

TEST_P(ParseFileFails, LeavesTheOutputAlone)
{
    const FileCase &c = GetParam();
    const std::string path =
        c.file != nullptr ? xmltest::write_work_file(std::string("file_io_") + c.name, std::string(c.file, c.size))
                          : xmltest::work_path("file_io_missing.xml");
    XML_Node *keep = reinterpret_cast<XML_Node *>(0x1);
    EXPECT_EQ(NDL_XML_ParseFile(path.c_str(), &keep), c.rc);
    EXPECT_EQ(keep, reinterpret_cast<XML_Node *>(0x1));
}

INSTANTIATE_TEST_SUITE_P(Errors, ParseFileFails,
                         ::testing::Values(FileCase{"Missing", nullptr, 0, XML_ERR_OPEN},
                                           FileCase{"Empty", "", 0, XML_ERR_SYNTAX},
                                           FileCase{"Malformed", "<r>", 3, XML_ERR_SYNTAX},
                                           FileCase{"NulEndsText", "<r>\0</r>", 8, XML_ERR_SYNTAX},
                                           FileCase{"OnlyNul", "\0", 1, XML_ERR_SYNTAX}),
                         xmltest::case_name<FileCase>);

TEST(ParseFile, TextAfterNulIsIgnored)
{
    const std::string path = xmltest::write_work_file("file_io_nul.xml", std::string("<r/>\0garbage<", 13));
    XML_Node *root = nullptr;
    ASSERT_EQ(NDL_XML_ParseFile(path.c_str(), &root), XML_OK);
    EXPECT_EQ(xmltest::describe_chain(root), "r");
    XML_FreeNode(root);
}

TEST(ParseFile, Arguments)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_ParseFile(nullptr, &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile("x", nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile(SMSUTIL_TEST_WORK_DIR, &root), XML_ERR_READ);  // a directory
}

constexpr const char *kInput =
    "<?xml version='1.0'?>\n<!-- kept out -->\n<cfg><list><item>1</item></list></cfg>\n<second/>\n";

XML_Node *new_item(const char *value)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, nullptr, "item", value, &node), XML_OK);
    EXPECT_EQ(NDL_XML_AddAttr(node, nullptr, "id", "2"), XML_OK);
    return node;
}

TEST(AddNodeToFile, AppendsAndWritesTheFirstElement)
{
    const std::string in = xmltest::write_work_file("update_in.xml", kInput);
    const std::string out = xmltest::work_path("update_out.xml");
    XML_Node *node = new_item("2");
    ASSERT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg.list", &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(xmltest::read_work_file(out),
              "<cfg>\n<list>\n<item>1</item>\n<item id=\"2\">2</item>\n</list>\n</cfg>\n");
}

TEST(AddNodeToFile, OutputMayBeTheInput)
{
    const std::string path = xmltest::write_work_file("update_same.xml", kInput);
    XML_Node *node = new_item("2");
    ASSERT_EQ(NDL_XML_AddNodeToFile(path.c_str(), "cfg", &node, path.c_str()), 0);
    EXPECT_EQ(xmltest::read_work_file(path),
              "<cfg>\n<list>\n<item>1</item>\n</list>\n<item id=\"2\">2</item>\n</cfg>\n");
}

TEST(AddNodeToFile, FailuresLeaveTheNodeWithTheCaller)
{
    const std::string in = xmltest::write_work_file("update_fail.xml", kInput);
    const std::string out = xmltest::work_path("update_fail_out.xml");
    std::remove(out.c_str());
    XML_Node *node = new_item("2");
    XML_Node *const held = node;
    XML_Node *null_node = nullptr;
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg.none", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(xmltest::work_path("absent.xml").c_str(), "cfg", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), ("cfg" + std::string(253, '.')).c_str(), &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &null_node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", nullptr, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(nullptr, "cfg", &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), nullptr, &node, out.c_str()), -1);
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &node, nullptr), -1);
    EXPECT_EQ(node, held);
    EXPECT_EQ(xmltest::read_work_file(out), "<missing>");
    // A node still linked elsewhere is refused as well.
    xmltest::Tree tree = xmltest::parse("<a><b/><c/></a>");
    XML_Node *linked = tree->firstChild;
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &linked, out.c_str()), -1);
    EXPECT_EQ(linked, tree->firstChild);
    // 255 bytes of path are read whole.
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), ("cfg" + std::string(252, '.')).c_str(), &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
}

}  // namespace
