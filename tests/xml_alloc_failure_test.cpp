// Every XML entry point that allocates, run once with each of its
// allocation requests failing in turn: it reports the failure, leaves what
// it was working on as it was (or as documented), and keeps nothing it
// allocated.  The run in which no request fails must give the normal result.
#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <tuple>

#include "smsutil/ndl_xml.h"
#include "smsutil/sms_charset.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using xmltest::describe;

// What one run left behind: the result code and the observable state.
struct Outcome {
    long rc;
    std::string state;
};

// With `persistent` set, request k and every one after it fail: the
// buffer's growth retries at the exact size, which a single failure never
// stops, and clean-up paths must not depend on allocating again.
bool g_persistent = false;

// One attempt with allocation request k failing.  The operation runs inside
// the failing hooks; building the fixture and describing it do not.
struct Attempt {
    long rc = 0;
    bool failure_hit = false;
    long live = 0;  // blocks allocated less blocks released by the operation
};
template <typename Op>
Attempt attempt(long k, Op op)
{
    xmltest::HookScope hooks(k, g_persistent);
    Attempt a;
    a.rc = static_cast<long>(op());
    a.failure_hit = hooks.failure_hit();
    a.live = hooks.live();
    return a;
}

struct SweepCase {
    const char *name;
    // Builds a fresh fixture, runs the entry point with request k failing,
    // describes the fixture and releases it.
    std::function<Outcome(long k, Attempt &)> run;
    Outcome on_failure;  // what every failing run must leave
    Outcome on_success;  // what the run without a failure gives
    // The buffer's growth retries once at the exact size, so a single
    // failing request may still end in success.
    bool may_recover = false;
    // Blocks of the fixture that a failing run gives back as documented (a
    // typed write releases the old text before it allocates the new).
    long released = 0;
    // A parse that loses a request part-way reports the markup it could not
    // finish as a syntax error.
    long later_rc = 0;
};

void PrintTo(const SweepCase &c, std::ostream *os) { *os << c.name; }

class AllocationFailureSweep : public ::testing::TestWithParam<std::tuple<SweepCase, bool>> {
protected:
    void TearDown() override { g_persistent = false; }
};

TEST_P(AllocationFailureSweep, EveryRequestFailingInTurn)
{
    const auto &[c, persistent] = GetParam();
    g_persistent = persistent;
    long reported = 0;
    for (long k = 1; k < 1000; ++k) {
        Attempt a;
        const Outcome o = c.run(k, a);
        if (!a.failure_hit) {
            EXPECT_EQ(o.rc, c.on_success.rc);
            EXPECT_EQ(o.state, c.on_success.state);
            // A single failure of a retried growth is absorbed; otherwise
            // some request must have been reported as failing.
            if (persistent || !c.may_recover) {
                EXPECT_GE(reported, 1) << "no failing request was reported";
            }
            return;
        }
        if (c.may_recover && !persistent && o.rc == c.on_success.rc && o.state == c.on_success.state) continue;
        ++reported;
        EXPECT_TRUE(o.rc == c.on_failure.rc || (c.later_rc != 0 && o.rc == c.later_rc)) << "k=" << k << " rc=" << o.rc;
        EXPECT_EQ(o.state, c.on_failure.state) << "k=" << k;
        EXPECT_EQ(a.live, -c.released) << "k=" << k;
    }
    ADD_FAILURE() << "the entry point never completed";
}

const long kNoMemory = XML_ERR_NO_MEMORY;

// ---- Nodes ----

Outcome new_node(long k, Attempt &a)
{
    XML_Node *node = nullptr;
    a = attempt(k, [&] {
        node = XML_NewNode(XML_NODE_ATTR);
        return node != nullptr ? XML_OK : XML_ERR_NO_MEMORY;
    });
    const std::string state = node == nullptr ? "null" : node->kind == XML_NODE_ATTR ? "attr" : "?";
    XML_FreeSingleNode(node);
    return {a.rc, state};
}

Outcome strdup_text(long k, Attempt &a)
{
    char *copy = nullptr;
    a = attempt(k, [&] {
        copy = XML_Strdup("text");
        return copy != nullptr ? XML_OK : XML_ERR_NO_MEMORY;
    });
    const std::string state = copy != nullptr ? copy : "null";
    XML_Free(copy);
    return {a.rc, state};
}

// A node p:n(v) whose three fields an operation replaces.
template <typename Op>
Outcome on_node(long k, Attempt &a, Op op)
{
    XML_Node *node = nullptr;
    EXPECT_EQ(NDL_XML_CreateNode(0, "p", "n", "v", &node), XML_OK);
    a = attempt(k, [&] { return op(node); });
    const std::string state = describe(node);
    NDL_XML_FreeNode(node);
    return {a.rc, state};
}

Outcome create_node(long k, Attempt &a)
{
    XML_Node *node = nullptr;
    a = attempt(k, [&] { return NDL_XML_CreateNode(0, "p", "n", "v", &node); });
    const std::string state = describe(node);
    NDL_XML_FreeNode(node);
    return {a.rc, state};
}

// ---- Attributes and typed values, on <r a='1'>old</r> ----

template <typename Op>
Outcome on_tree(long k, Attempt &a, Op op)
{
    xmltest::Tree tree = xmltest::parse("<r a='1'>old</r>");
    a = attempt(k, [&] { return op(tree.get()); });
    return {a.rc, describe(tree.get())};
}

const uint32_t kSeven = 7;

// ---- Text buffer: 1024 bytes that fill its first growth step ----

template <typename Op>
Outcome on_buffer(long k, Attempt &a, Op op)
{
    XML_MemBuf buf;
    XML_MembufInit(&buf);
    const std::string full(1024, 'k');
    EXPECT_EQ(XML_MemBufAssignStr(&buf, full.c_str()), XML_OK);
    EXPECT_EQ(buf.capacity, buf.length);
    a = attempt(k, [&] { return op(&buf); });
    // Length, where the first byte other than 'k' is, and those bytes.
    const std::string text = buf.data != nullptr ? std::string(buf.data, buf.length) : "";
    std::string others;
    for (const char ch : text) {
        if (ch != 'k') others += ch;
    }
    const std::size_t at = text.find_first_not_of('k');
    const std::string where = at == std::string::npos ? "-" : std::to_string(at);
    XML_MembufDestroy(&buf);
    return {a.rc, std::to_string(text.size()) + ":" + where + ":" + others.substr(0, 8)};
}

const std::string kLong(3000, 'x');

// ---- Files ----

std::string sweep_file(const std::string &name, const std::string &content)
{
    return xmltest::write_work_file(name, content);
}

Outcome transform_file(long k, Attempt &a)
{
    const std::string path = sweep_file("sweep_transform.xml", "old");
    xmltest::Tree tree = xmltest::parse("<r a='&quot;'><c>t&amp;u</c><d/></r>");
    a = attempt(k, [&] { return NDL_XML_TransformFile(tree.get(), path.c_str()); });
    return {a.rc, xmltest::read_work_file(path)};
}

const char kSettings[] =
    "<?xml version=\"1.0\"?>\n<configuration><FEATURE_SMS><lang_table>2</lang_table>"
    "<item id='7' name='seven'/></FEATURE_SMS></configuration>\n";

template <typename Op>
Outcome lookup_file(long k, Attempt &a, Op op)
{
    const std::string path = sweep_file("sweep_lookup.xml", kSettings);
    char out[32] = "junk";
    a = attempt(k, [&] { return op(path.c_str(), out); });
    return {a.rc, out};
}

// The national 8-bit conversion reads its setting through the XML library:
// a failing allocation reads as a missing setting, never as a failure of
// the conversion.  With lang_table 2 the byte 0xAC takes the Spanish code 0x09.
Outcome kv8bit_with_setting(long k, Attempt &a)
{
    const std::filesystem::path path(SMSUTIL_FEATURE_FILE);
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << kSettings;
    const uint8_t in[] = {0xAC, 0x41};
    uint8_t out[8] = {};
    uint32_t len = 0;
    a = attempt(k, [&] { return kv8bit_to_gsm7bit(in, sizeof in, out, sizeof out, &len); });
    std::filesystem::remove(path);
    std::string codes;
    for (uint32_t i = 0; i < len && i < sizeof out; ++i) {
        char hex[4];
        std::snprintf(hex, sizeof hex, "%02x", out[i]);
        codes += hex;
    }
    return {a.rc, codes};
}

Outcome parse_text(long k, Attempt &a)
{
    XML_Node *root = nullptr;
    a = attempt(k, [&] {
        return NDL_XML_Parse("<?xml version='1.0'?><p:r a='1' q:b='&lt;'><c>t&amp;</c><d/></p:r><s/>", &root);
    });
    const std::string state = xmltest::describe_chain(root);
    XML_FreeNode(root);
    return {a.rc, state};
}

Outcome parse_file(long k, Attempt &a)
{
    const std::string path = sweep_file("sweep_parse.xml", "<r a='1'><c>t</c><d/></r>");
    XML_Node *root = nullptr;
    a = attempt(k, [&] { return NDL_XML_ParseFile(path.c_str(), &root); });
    const std::string state = xmltest::describe_chain(root);
    XML_FreeNode(root);
    return {a.rc, state};
}

Outcome transform(long k, Attempt &a)
{
    xmltest::Tree tree = xmltest::parse("<r a='&quot;'><c>t&amp;u</c><d/></r>");
    char *text = nullptr;
    a = attempt(k, [&] { return NDL_XML_Transform(tree.get(), &text); });
    const std::string state = text != nullptr ? text : "null";
    NDL_XML_FreeMem(text);
    return {a.rc, state + "|" + describe(tree.get())};
}

template <uint32_t (*Clone)(const XML_Node *, XML_Node **)>
Outcome clone(long k, Attempt &a)
{
    xmltest::Tree tree = xmltest::parse("<r a='1'><c x='2'><d>t</d></c></r>");
    XML_Node *copy = nullptr;
    a = attempt(k, [&] { return Clone(tree->firstChild, &copy); });
    const std::string state = describe(copy) + "|" + describe(tree.get());
    NDL_XML_FreeNode(copy);
    return {a.rc, state};
}

INSTANTIATE_TEST_SUITE_P(
    EntryPoints, AllocationFailureSweep,
    ::testing::Combine(::testing::Values(
        SweepCase{"NewNode", new_node, {kNoMemory, "null"}, {0, "attr"}},
        SweepCase{"Strdup", strdup_text, {kNoMemory, "null"}, {0, "text"}},
        SweepCase{"CreateNode", create_node, {kNoMemory, "null"}, {0, "p:n(v)"}},
        SweepCase{"NdlSetNodeFields",
                  [](long k, Attempt &a) {
                      return on_node(k, a, [](XML_Node *n) { return NDL_XML_SetNode(n, "q", "m", "w"); });
                  },
                  {kNoMemory, "p:n(v)"},
                  {0, "q:m(w)"}},
        SweepCase{"SetAttr",
                  [](long k, Attempt &a) {
                      return on_tree(k, a, [](XML_Node *r) { return NDL_XML_SetAttr(r, nullptr, "a", "new"); });
                  },
                  {kNoMemory, "r{a=1}(old)"},
                  {0, "r{a=new}(old)"}},
        // A typed write releases the old text first, as documented.
        SweepCase{"SetNodeValueEx",
                  [](long k, Attempt &a) {
                      return on_tree(k, a, [](XML_Node *r) { return NDL_XML_SetNodeValueEx(r, XML_VAL_UINT32, &kSeven); });
                  },
                  {kNoMemory, "r{a=1}"},
                  {0, "r{a=1}(7)"},
                  false,
                  1},
        SweepCase{"SetAttrValueExExisting",
                  [](long k, Attempt &a) {
                      return on_tree(k, a, [](XML_Node *r) {
                          return NDL_XML_SetAttrValueEx(r, nullptr, "a", XML_VAL_UINT32, &kSeven);
                      });
                  },
                  {kNoMemory, "r{a}(old)"},
                  {0, "r{a=7}(old)"},
                  false,
                  1},
        SweepCase{"SetAttrValueExNew",
                  [](long k, Attempt &a) {
                      return on_tree(k, a, [](XML_Node *r) {
                          return NDL_XML_SetAttrValueEx(r, "p", "n", XML_VAL_UINT32, &kSeven);
                      });
                  },
                  {kNoMemory, "r{a=1}(old)"},
                  {0, "r{a=1,p:n=7}(old)"}},
        SweepCase{"MemBufInsert",
                  [](long k, Attempt &a) {
                      return on_buffer(k, a, [](XML_MemBuf *b) { return XML_MemBufInsert(b, "ab", 2, 1000); });
                  },
                  {kNoMemory, "1024:-:"},
                  {0, "1026:1000:ab"},
                  true},
        SweepCase{"MemBufAppendStr",
                  [](long k, Attempt &a) {
                      return on_buffer(k, a, [](XML_MemBuf *b) { return XML_MemBufAppendStr(b, "end"); });
                  },
                  {kNoMemory, "1024:-:"},
                  {0, "1027:1024:end"},
                  true},
        SweepCase{"MemBufAssign",
                  [](long k, Attempt &a) {
                      return on_buffer(k, a, [](XML_MemBuf *b) { return XML_MemBufAssign(b, kLong.c_str(), 3000); });
                  },
                  {kNoMemory, "1024:-:"},
                  {0, "3000:0:xxxxxxxx"},
                  true},
        // The text is built before the file is opened: a failure leaves it alone.
        SweepCase{"TransformFile", transform_file, {kNoMemory, "old"},
                  {0, "<r a=\"&quot;\">\n<c>t&amp;u</c>\n<d/>\n</r>\n"},
                  true},
        SweepCase{"GetNodeOrAttrExFromFile",
                  [](long k, Attempt &a) {
                      return lookup_file(k, a, [](const char *f, char *out) {
                          return NDL_XML_GetNodeOrAttrEx(f, "configuration.FEATURE_SMS.lang_table", out, 32);
                      });
                  },
                  {-1, ""},
                  {0, "2"}},
        SweepCase{"Parse", parse_text, {kNoMemory, ""}, {0, "p:r{a=1,q:b=<}[c(t&),d] + s"}, false, 0, XML_ERR_SYNTAX},
        SweepCase{"ParseFile", parse_file, {kNoMemory, ""}, {0, "r{a=1}[c(t),d]"}, false, 0, XML_ERR_SYNTAX},
        SweepCase{"Transform", transform, {kNoMemory, "null|r{a=\"}[c(t&u),d]"},
                  {0, "<r a=\"&quot;\">\n<c>t&amp;u</c>\n<d/>\n</r>\n|r{a=\"}[c(t&u),d]"}, true},
        SweepCase{"AddAttr",
                  [](long k, Attempt &a) {
                      return on_tree(k, a, [](XML_Node *r) { return NDL_XML_AddAttr(r, "p", "name", "value"); });
                  },
                  {kNoMemory, "r{a=1}(old)"},
                  {0, "r{a=1,p:name=value}(old)"}},
        SweepCase{"CloneNode", clone<NDL_XML_CloneNode>, {kNoMemory, "null|r{a=1}[c{x=2}[d(t)]]"},
                  {0, "c{x=2}[d(t)]|r{a=1}[c{x=2}[d(t)]]"}},
        SweepCase{"CloneNodeSelf", clone<NDL_XML_CloneNodeSelf>, {kNoMemory, "null|r{a=1}[c{x=2}[d(t)]]"},
                  {0, "c{x=2}|r{a=1}[c{x=2}[d(t)]]"}},
        SweepCase{"National8bitSetting", kv8bit_with_setting, {0, "1b6341"}, {0, "1b0941"}}),
    ::testing::Bool()),
    [](const ::testing::TestParamInfo<std::tuple<SweepCase, bool>> &info) {
        return std::string(std::get<0>(info.param).name) + (std::get<1>(info.param) ? "_FromThenOn" : "_Once");
    });

}  // namespace
