// XML text: parsing, entities, lookups by path, key and URL (the cases in
// data/xml_cases.txt), serializing and files.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <optional>
#include <string>

#include "support/support.hpp"
#include "xml/xml_internal.hpp"

namespace {

using namespace smsutil::test;

using xmltest::describe;
using xmltest::serialize;

std::string code_name(uint32_t rc)
{
    static const char *const kNames[] = {"OK",     "PARAM", "EXISTS", "NOT_FOUND", "NO_MEMORY",
                                         "SYNTAX", "INDEX", "OPEN",   "WRITE",     "READ"};
    return rc == XML_OK ? "OK" : rc - 0x1F000700u < 10 ? kNames[rc - 0x1F000700u] : std::to_string(rc);
}

std::string unescape(const std::string &in)
{
    std::string out;
    for (std::size_t i = 0; i < in.size(); ++i) {
        if (in[i] != '\\' || i + 1 == in.size()) {
            out += in[i];
            continue;
        }
        const char e = in[++i];
        if (e == 'x') {
            out += static_cast<char>(std::stoi(in.substr(i + 1, 2), nullptr, 16));
            i += 2;
        } else {
            out += e == 'n' ? '\n' : e == 'r' ? '\r' : e == 't' ? '\t' : e;
        }
    }
    return out;
}

// Top-level elements must be linked both ways and have no parent.
std::string parse_result(const std::string &text)
{
    XML_Node *root = reinterpret_cast<XML_Node *>(0x1);
    const uint32_t rc = NDL_XML_Parse(text.c_str(), &root);
    if (rc != XML_OK) return code_name(rc) + (root != nullptr ? "!" : "");
    std::string out = xmltest::describe_chain(root);
    for (const XML_Node *n = root; n != nullptr; n = n->nextSibling) {
        if (n->parent != nullptr || n->kind != XML_NODE_ELEMENT || (n->nextSibling && n->nextSibling->prevSibling != n))
            out += "!";
    }
    XML_FreeNode(root);
    return out;
}

// Both forms of the key lookup must agree; an unbounded one gets room.
std::string key_result(const XML_Node *root, const char *key)
{
    char out[64];
    char bounded[64];
    std::memset(out, 'x', sizeof out);
    std::memset(bounded, 'x', sizeof bounded);
    const int rc = NDL_XML_GetNodeOrAttr_Node(root, key, out);
    const std::string result = std::to_string(rc) + ":" + out;
    const int rc_bounded = NDL_XML_GetNodeOrAttr_NodeEx(root, key, bounded, sizeof bounded);
    return rc_bounded == rc && std::strcmp(out, bounded) == 0 ? result : result + " but bounded " + bounded;
}

std::string url_result(XML_Node *root, const char *url)
{
    XML_Node *found = nullptr;
    const uint32_t rc = NDL_XML_GetNodeByUrl(root, url, &found);
    if (rc != XML_OK) return code_name(rc) + (found != nullptr ? "!" : "");
    return "OK:" + std::string(found->value != nullptr ? found->value : "-");
}

// The variable is written at the type's width only, and only on success.  A
// value read is written back, to the text and to an attribute, from the same
// variable: the bytes beyond its width must not matter and the text must be
// the value's own.
std::string read_result(const std::string &type_name, const std::string &text)
{
    static const std::string kTypes[] = {"bool", "int32", "uint32", "int16", "uint16", "int8", "uint8"};
    const auto type = static_cast<uint32_t>(std::find(std::begin(kTypes), std::end(kTypes), type_name) - kTypes);
    xmltest::Tree node = xmltest::parse("<r/>");
    EXPECT_EQ(NDL_XML_SetNode(node.get(), nullptr, nullptr, text.c_str()), XML_OK);
    unsigned char raw[8];
    std::memset(raw, 0xA5, sizeof raw);
    const uint32_t rc = NDL_XML_GetNodeValueEx(node.get(), type, raw);
    const std::size_t width = rc != XML_OK ? 0 : type <= XML_VAL_UINT32 ? 4 : type <= XML_VAL_UINT16 ? 2 : 1;
    int64_t value = 0;
    std::memcpy(&value, raw, width);
    if (type % 2 == 1 && width > 0 && (raw[width - 1] & 0x80) != 0) value -= int64_t{1} << (8 * width);
    std::string result = rc == XML_OK ? std::to_string(value) : code_name(rc);
    for (std::size_t i = width; i < sizeof raw; ++i) result += raw[i] != 0xA5 ? "!" : "";
    if (rc != XML_OK) return result;
    const std::string own = type != XML_VAL_BOOL ? std::to_string(value) : value != 0 ? "true" : "false";
    EXPECT_EQ(NDL_XML_SetNodeValueEx(node.get(), type, raw), XML_OK);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(node.get(), "p", "a", type, raw), XML_OK);
    const std::string written = describe(node.get());
    return written == "r{p:a=" + own + "}(" + own + ")" ? result : result + " but written " + written;
}

TEST(XmlCases, EachLineGivesItsResult)
{
    std::ifstream in(std::string(SMSUTIL_TEST_DATA_DIR) + "/xml_cases.txt");
    ASSERT_TRUE(in.good());
    xmltest::Tree doc;
    std::string line;
    int cases = 0;
    for (int number = 1; std::getline(in, line); ++number) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t space = line.find(' ');
        const std::string op = line.substr(0, space);
        const std::string rest = line.substr(space + 1);
        if (op == "doc") {
            doc = xmltest::parse(rest.c_str());
            ASSERT_NE(doc, nullptr) << "line " << number;
            continue;
        }
        const std::size_t arrow = rest.rfind(" => ");
        ASSERT_NE(arrow, std::string::npos) << "line " << number;
        const std::string input = unescape(rest.substr(0, arrow));
        // Any other op names the type of a typed read.
        const std::string got = op == "parse"   ? parse_result(input)
                                : op == "path"  ? describe(NDL_XML_FindNodeByName(doc.get(), input.c_str()))
                                : op == "key"   ? key_result(doc.get(), input.c_str())
                                : op == "url"   ? url_result(doc.get(), input.c_str())
                                : op == "write" ? serialize(xmltest::parse(input.c_str()).get())
                                                : read_result(op, input);
        EXPECT_EQ(got, unescape(rest.substr(arrow + 4))) << "line " << number << ": " << rest.substr(0, arrow);
        ++cases;
    }
    EXPECT_GT(cases, 100);
}

TEST(Parser, RefusesMissingArguments)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_Parse(nullptr, &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Parse("", &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Parse("<a/>", nullptr), XML_ERR_PARAM);
}

// Nesting depth is bounded by memory only: neither parsing, copying nor
// freeing recurses per level.
TEST(Parser, DeepNesting)
{
    constexpr int kDepth = 200000;
    std::string text;
    for (int i = 0; i < kDepth; ++i) text += "<a>";
    text += "x";
    for (int i = 0; i < kDepth; ++i) text += "</a>";
    xmltest::Tree root = xmltest::parse(text.c_str());
    int depth = 0;
    const XML_Node *n = root.get();
    for (; n->firstChild != nullptr; n = n->firstChild) ++depth;
    EXPECT_EQ(depth, kDepth - 1);
    EXPECT_STREQ(n->value, "x");
    XML_Node *copy = nullptr;
    ASSERT_EQ(NDL_XML_CloneNode(root.get(), &copy), XML_OK);
    XML_FreeNode(copy);
}

// The range, not the terminator, bounds an entity, and a failed decode
// leaves the output alone.
TEST(EntityDecoderRange, EntityRunningPastTheRangeFails)
{
    const char text[] = "&amp;";
    char *out = reinterpret_cast<char *>(0x1);
    EXPECT_FALSE(smsutil::xml::copy_decoded(text, 4, &out));
    EXPECT_EQ(out, reinterpret_cast<char *>(0x1));
    EXPECT_TRUE(smsutil::xml::copy_decoded(text, 0, &out));
    EXPECT_EQ(out, nullptr);
}

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

// Attributes, escaped text, an empty element, text lost beside children and
// a nested closing run.
xmltest::Tree example_tree()
{
    XML_Node *r = element(nullptr, "r", "lost");
    NDL_XML_AddAttr(r, nullptr, "a", "1");
    NDL_XML_AddAttr(r, nullptr, "b", "x<y");
    child(r, "c", "t&u");
    child(r, "d");
    NDL_XML_AddAttr(child(child(r, "e"), "f"), nullptr, "z", "q");
    return xmltest::Tree(r);
}

constexpr const char *kExampleText = "<r a=\"1\" b=\"x&lt;y\">\n<c>t&amp;u</c>\n<d/>\n<e>\n<f z=\"q\"/>\n</e>\n</r>\n";

// A subtree is written alone and its outer links are restored.
TEST(Serializer, WritesTreesAndSubtrees)
{
    xmltest::Tree tree = example_tree();
    EXPECT_EQ(serialize(tree.get()), kExampleText);
    XML_Node *d = tree->firstChild->nextSibling;
    EXPECT_EQ(serialize(d), "<d/>\n");
    EXPECT_EQ(serialize(tree->lastChild), "<e>\n<f z=\"q\"/>\n</e>\n");
    EXPECT_EQ(describe(tree.get()), "r{a=1,b=x<y}(lost)[c(t&u),d,e[f{z=q}]]");
}

TEST(Serializer, NamelessNodeAnywhereIsRefused)
{
    xmltest::Tree tree = example_tree();
    child(tree->lastChild->firstChild, nullptr, "v");
    char *text = reinterpret_cast<char *>(0x1);
    EXPECT_EQ(NDL_XML_Transform(tree.get(), &text), XML_ERR_PARAM);
    EXPECT_EQ(text, reinterpret_cast<char *>(0x1));
    EXPECT_EQ(NDL_XML_Transform(nullptr, &text), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_Transform(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(tree->lastChild->parent, tree.get());
}

TEST(Files, TransformFileWritesOrReportsOpenFailure)
{
    xmltest::Tree tree = example_tree();
    const std::string path = xmltest::work_path("serializer_out.xml");
    ASSERT_EQ(NDL_XML_TransformFile(tree.get(), path.c_str()), XML_OK);
    EXPECT_EQ(xmltest::read_work_file(path), kExampleText);
    EXPECT_EQ(NDL_XML_TransformFile(tree.get(), xmltest::work_path("no_such_dir/out.xml").c_str()), XML_ERR_OPEN);
    EXPECT_EQ(NDL_XML_TransformFile(tree.get(), nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_TransformFile(nullptr, path.c_str()), XML_ERR_PARAM);
}

// A file is read up to its first NUL; failures leave the output alone.
TEST(Files, ParseFileResults)
{
    // File contents (none: no such file) and the tree, or the error's name ("!": the output was written).
    using namespace std::string_literals;
    const std::pair<std::optional<std::string>, std::string> cases[] = {{std::nullopt, "OPEN"},
                                                                        {""s, "SYNTAX"},
                                                                        {"<r>"s, "SYNTAX"},
                                                                        {"<r>\0</r>"s, "SYNTAX"},
                                                                        {"<r/>\0garbage<"s, "r"}};
    for (const auto &[file, result] : cases) {
        const std::string path =
            file ? xmltest::write_work_file("file_io.xml", *file) : xmltest::work_path("file_io_missing.xml");
        XML_Node *root = reinterpret_cast<XML_Node *>(0x1);
        const uint32_t rc = NDL_XML_ParseFile(path.c_str(), &root);
        EXPECT_EQ(rc == XML_OK ? xmltest::describe_chain(xmltest::Tree(root).get())
                               : code_name(rc) + (root != reinterpret_cast<XML_Node *>(0x1) ? "!" : ""),
                  result);
    }
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_ParseFile(nullptr, &root), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile("x", nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_ParseFile(SMSUTIL_TEST_WORK_DIR, &root), XML_ERR_READ);  // a directory
}

constexpr const char *kInput =
    "<?xml version='1.0'?>\n<!-- kept out -->\n<cfg><list><item>1</item></list></cfg>\n<second/>\n";

XML_Node *new_item()
{
    XML_Node *node = element(nullptr, "item", "2");
    EXPECT_EQ(NDL_XML_AddAttr(node, nullptr, "id", "2"), XML_OK);
    return node;
}

// Only the first top-level element is written back; the output may be the input.
TEST(AddNodeToFile, AppendsAndWritesTheFirstElement)
{
    const std::string in = xmltest::write_work_file("update_in.xml", kInput);
    const std::string out = xmltest::work_path("update_out.xml");
    XML_Node *node = new_item();
    ASSERT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg.list", &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
    EXPECT_EQ(xmltest::read_work_file(out),
              "<cfg>\n<list>\n<item>1</item>\n<item id=\"2\">2</item>\n</list>\n</cfg>\n");
    node = new_item();
    ASSERT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &node, in.c_str()), 0);
    EXPECT_EQ(xmltest::read_work_file(in), "<cfg>\n<list>\n<item>1</item>\n</list>\n<item id=\"2\">2</item>\n</cfg>\n");
}

TEST(AddNodeToFile, FailuresLeaveTheNodeWithTheCaller)
{
    const std::string in = xmltest::write_work_file("update_fail.xml", kInput);
    const std::string out = xmltest::work_path("update_fail_out.xml");
    std::remove(out.c_str());
    XML_Node *node = new_item();
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
    xmltest::Tree tree = xmltest::parse("<a><b/><c/></a>");  // a node still linked elsewhere
    XML_Node *linked = tree->firstChild;
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), "cfg", &linked, out.c_str()), -1);
    EXPECT_EQ(linked, tree->firstChild);
    // 255 bytes of path are read whole.
    EXPECT_EQ(NDL_XML_AddNodeToFile(in.c_str(), ("cfg" + std::string(252, '.')).c_str(), &node, out.c_str()), 0);
    EXPECT_EQ(node, nullptr);
}

}  // namespace
