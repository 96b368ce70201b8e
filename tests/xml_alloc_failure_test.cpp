// Every XML entry point that allocates, run once with each of its
// allocation requests failing in turn: it reports the failure, leaves what
// it was working on as it was (or as documented), and keeps nothing it
// allocated.  The run in which no request fails must give the normal result.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <tuple>

#include "smsutil/ndl_xml.h"
#include "smsutil/sms_charset.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using xmltest::describe;
using Out = std::string;

const long kNoMemory = XML_ERR_NO_MEMORY;

// Holds 1024 bytes, which fill its first growth step, before each run.
XML_MemBuf g_buf;

// Length, where the first byte other than 'k' is, and those bytes.
std::string buffer_state()
{
    const std::string text = g_buf.data != nullptr ? std::string(g_buf.data, g_buf.length) : "";
    const std::size_t at = text.find_first_not_of('k');
    std::string others;
    for (const char ch : text) others += ch != 'k' && others.size() < 8 ? std::string(1, ch) : "";
    return std::to_string(text.size()) + ":" + (at == std::string::npos ? "-" : std::to_string(at)) + ":" + others;
}

const char kSettings[] =
    "<?xml version=\"1.0\"?>\n<configuration><FEATURE_SMS><lang_table>2</lang_table>"
    "<item id='7' name='seven'/></FEATURE_SMS></configuration>\n";
const uint32_t kSeven = 7;
const std::string kLong(3000, 'x');

struct SweepCase {
    const char *name;
    const char *doc;  // the tree the entry point works on; null: none
    // Runs inside the failing hooks and describes what the entry point
    // produced; whatever it made is released there too.
    long (*run)(XML_Node *tree, Out &out);
    long failure_rc;
    const char *failure_state;  // what every failing run leaves (output|tree)
    long success_rc;
    const char *success_state;
    // The buffer's growth retries once at the exact size, so a single
    // failing request may still end in success.
    bool may_recover = false;
    // Blocks of the tree that a failing run gives back as documented (a
    // typed write releases the old text before it allocates the new).
    // Text the parser stored lives in its node's block and goes back with
    // the node; text stored by the editing functions has a block of its own.
    long released = 0;
    // A parse that loses a request part-way may report the markup it could
    // not finish as a syntax error.
    long later_rc = 0;
    // Edits the parsed tree before the hooks fail; null: none.
    void (*prepare)(XML_Node *tree) = nullptr;
};

void PrintTo(const SweepCase &c, std::ostream *os) { *os << c.name; }

class AllocationFailureSweep : public ::testing::TestWithParam<std::tuple<SweepCase, bool>> {};

// With `persistent`, request k and every one after it fail: the buffer's
// exact-size retry is then refused too, and clean-up paths must not depend
// on allocating again.
TEST_P(AllocationFailureSweep, EveryRequestFailingInTurn)
{
    const auto &[c, persistent] = GetParam();
    long reported = 0;
    for (long k = 1; k < 1000; ++k) {
        xmltest::Tree tree = c.doc != nullptr ? xmltest::parse(c.doc) : nullptr;
        if (c.prepare != nullptr) c.prepare(tree.get());
        XML_MembufInit(&g_buf);
        ASSERT_EQ(XML_MemBufAssignStr(&g_buf, std::string(1024, 'k').c_str()), XML_OK);
        std::string state;
        long rc = 0;
        bool hit = false;
        long live = 0;
        {
            xmltest::HookScope hooks(k, persistent);
            rc = c.run(tree.get(), state);
            hit = hooks.failure_hit();
            live = hooks.live();
        }
        XML_MembufDestroy(&g_buf);
        if (c.doc != nullptr) state += "|" + describe(tree.get());
        if (!hit) {
            EXPECT_EQ(rc, c.success_rc);
            EXPECT_EQ(state, c.success_state);
            // Otherwise some request must have been reported as failing.
            if (persistent || !c.may_recover) {
                EXPECT_GE(reported, 1) << "no failing request was reported";
            }
            return;
        }
        if (c.may_recover && !persistent && rc == c.success_rc && state == c.success_state) continue;
        ++reported;
        EXPECT_TRUE(rc == c.failure_rc || (c.later_rc != 0 && rc == c.later_rc)) << "k=" << k << " rc=" << rc;
        EXPECT_EQ(state, c.failure_state) << "k=" << k;
        EXPECT_EQ(live, -c.released) << "k=" << k;
    }
    ADD_FAILURE() << "the entry point never completed";
}

long buffer_after(long rc, Out &out)
{
    out = buffer_state();
    return rc;
}

// Describes and releases what an entry point stored through its output.
long kept(XML_Node *&node, long rc, Out &out)
{
    out = xmltest::describe_chain(node);
    XML_FreeNode(node);
    return rc;
}

long create(XML_Node *, Out &out)
{
    XML_Node *n = nullptr;
    return kept(n, NDL_XML_CreateNode(0, "p", "n", "v", &n), out);
}

template <uint32_t (*Clone)(const XML_Node *, XML_Node **)>
long clone(XML_Node *t, Out &out)
{
    XML_Node *copy = nullptr;
    return kept(copy, Clone(t->firstChild, &copy), out);
}

long parse(XML_Node *, Out &out)
{
    XML_Node *root = nullptr;
    return kept(root, NDL_XML_Parse("<?xml version='1.0'?><p:r a='1' q:b='&lt;'><c>t&amp;</c><d/></p:r><s/>", &root),
                out);
}

long parse_file(XML_Node *, Out &out)
{
    XML_Node *root = nullptr;
    const std::string path = xmltest::write_work_file("sweep_parse.xml", "<r a='1'><c>t</c><d/></r>");
    return kept(root, NDL_XML_ParseFile(path.c_str(), &root), out);
}

long transform(XML_Node *t, Out &out)
{
    char *text = nullptr;
    const long rc = NDL_XML_Transform(t, &text);
    out = text != nullptr ? text : "null";
    NDL_XML_FreeMem(text);
    return rc;
}

// The text is built before the file is opened: a failure leaves it alone.
long transform_file(XML_Node *t, Out &out)
{
    const std::string path = xmltest::write_work_file("sweep_transform.xml", "old");
    const long rc = NDL_XML_TransformFile(t, path.c_str());
    out = xmltest::read_work_file(path);
    return rc;
}

long lookup_file(XML_Node *, Out &out)
{
    const std::string path = xmltest::write_work_file("sweep_lookup.xml", kSettings);
    char text[32] = "junk";
    const long rc = NDL_XML_GetNodeOrAttrEx(path.c_str(), "configuration.FEATURE_SMS.lang_table", text, sizeof text);
    out = text;
    return rc;
}

// The national 8-bit conversion reads its setting through the XML library:
// a failing allocation reads as a missing setting, never as a failure of
// the conversion.  With lang_table 2 the byte 0xAC takes the Spanish code 0x09.
long kv8bit_with_setting(XML_Node *, Out &out)
{
    const std::filesystem::path path(SMSUTIL_FEATURE_FILE);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << kSettings;
    const uint8_t in[] = {0xAC, 0x41};
    uint8_t codes[8] = {};
    uint32_t len = 0;
    const long rc = kv8bit_to_gsm7bit(in, sizeof in, codes, sizeof codes, &len);
    std::filesystem::remove(path);
    out = hex(codes, len < sizeof codes ? len : sizeof codes);
    return rc;
}

long set_node(XML_Node *t, Out &) { return NDL_XML_SetNode(t, "q", "m", "w"); }
long set_attr(XML_Node *t, Out &) { return NDL_XML_SetAttr(t, nullptr, "a", "new"); }
long add_attr(XML_Node *t, Out &) { return NDL_XML_AddAttr(t, "p", "name", "value"); }
long set_value_ex(XML_Node *t, Out &) { return NDL_XML_SetNodeValueEx(t, XML_VAL_UINT32, &kSeven); }
long set_attr_ex(XML_Node *t, Out &) { return NDL_XML_SetAttrValueEx(t, nullptr, "a", XML_VAL_UINT32, &kSeven); }
long new_attr_ex(XML_Node *t, Out &) { return NDL_XML_SetAttrValueEx(t, "p", "n", XML_VAL_UINT32, &kSeven); }
long buf_insert(XML_Node *, Out &out) { return buffer_after(XML_MemBufInsert(&g_buf, "ab", 2, 1000), out); }
long buf_assign(XML_Node *, Out &out) { return buffer_after(XML_MemBufAssign(&g_buf, kLong.c_str(), 3000), out); }

// Gives the element's text and its attribute a's value blocks of their own.
void set_own_values(XML_Node *t)
{
    ASSERT_EQ(NDL_XML_SetNode(t, nullptr, nullptr, "own"), XML_OK);
    ASSERT_EQ(NDL_XML_SetAttr(t, nullptr, "a", "own"), XML_OK);
}

const char kDoc[] = "<r a='1'>old</r>";
const char kNested[] = "<r a='1'><c x='2'><d>t</d></c></r>";
const char kEscaped[] = "<r a='&quot;'><c>t&amp;u</c><d/></r>";
const char kWritten[] = "<r a=\"&quot;\">\n<c>t&amp;u</c>\n<d/>\n</r>\n|r{a=\"}[c(t&u),d]";

const SweepCase kCases[] = {
    {"CreateNode", nullptr, create, kNoMemory, "", 0, "p:n(v)"},
    {"NdlSetNodeFields", "<p:n>v</p:n>", set_node, kNoMemory, "|p:n(v)", 0, "|q:m(w)"},
    {"SetAttr", kDoc, set_attr, kNoMemory, "|r{a=1}(old)", 0, "|r{a=new}(old)"},
    {"AddAttr", kDoc, add_attr, kNoMemory, "|r{a=1}(old)", 0, "|r{a=1,p:name=value}(old)"},
    // A typed write releases the old text first.
    {"SetNodeValueEx", kDoc, set_value_ex, kNoMemory, "|r{a=1}", 0, "|r{a=1}(7)"},
    {"SetAttrValueExExisting", kDoc, set_attr_ex, kNoMemory, "|r{a}(old)", 0, "|r{a=7}(old)"},
    {"SetNodeValueExOwnText", kDoc, set_value_ex, kNoMemory, "|r{a=own}", 0, "|r{a=own}(7)", false, 1, 0,
     set_own_values},
    {"SetAttrValueExOwnText", kDoc, set_attr_ex, kNoMemory, "|r{a}(own)", 0, "|r{a=7}(own)", false, 1, 0,
     set_own_values},
    {"SetAttrValueExNew", kDoc, new_attr_ex, kNoMemory, "|r{a=1}(old)", 0, "|r{a=1,p:n=7}(old)"},
    {"CloneNode", kNested, clone<NDL_XML_CloneNode>, kNoMemory, "|r{a=1}[c{x=2}[d(t)]]", 0,
     "c{x=2}[d(t)]|r{a=1}[c{x=2}[d(t)]]"},
    {"MemBufInsert", nullptr, buf_insert, kNoMemory, "1024:-:", 0, "1026:1000:ab", true},
    {"MemBufAssign", nullptr, buf_assign, kNoMemory, "1024:-:", 0, "3000:0:xxxxxxxx", true},
    {"Parse", nullptr, parse, kNoMemory, "", 0, "p:r{a=1,q:b=<}[c(t&),d] + s", false, 0, XML_ERR_SYNTAX},
    {"ParseFile", nullptr, parse_file, kNoMemory, "", 0, "r{a=1}[c(t),d]", false, 0, XML_ERR_SYNTAX},
    {"Transform", kEscaped, transform, kNoMemory, "null|r{a=\"}[c(t&u),d]", 0, kWritten, true},
    {"TransformFile", kEscaped, transform_file, kNoMemory, "old|r{a=\"}[c(t&u),d]", 0, kWritten, true},
    {"GetNodeOrAttrExFromFile", nullptr, lookup_file, -1, "", 0, "2"},
    {"National8bitSetting", nullptr, kv8bit_with_setting, 0, "1B6341", 0, "1B0941"},
};

INSTANTIATE_TEST_SUITE_P(EntryPoints, AllocationFailureSweep,
                         ::testing::Combine(::testing::ValuesIn(kCases), ::testing::Bool()),
                         [](const ::testing::TestParamInfo<std::tuple<SweepCase, bool>> &info) {
                             return std::string(std::get<0>(info.param).name) +
                                    (std::get<1>(info.param) ? "_FromThenOn" : "_Once");
                         });

}  // namespace
