#include "support/support.hpp"

#include <cctype>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <regex>
#include <sstream>

#include "common/log_writer.hpp"

namespace smsutil::test {

Octets bytes(std::string_view text)
{
    Octets out;
    int high = -1;
    for (const char c : text) {
        if (c == ' ') continue;
        const int v = std::isdigit(static_cast<unsigned char>(c)) ? c - '0' : (std::toupper(c) - 'A' + 10);
        if (high < 0) {
            high = v;
        } else {
            out.push_back(static_cast<uint8_t>(high << 4 | v));
            high = -1;
        }
    }
    return out;
}

std::string hex(const uint8_t *octets, std::size_t n)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string s;
    for (std::size_t i = 0; i < n; ++i) {
        s += digits[octets[i] >> 4];
        s += digits[octets[i] & 0x0F];
    }
    return s;
}

const char *log_path() { return common::kLogPath; }

std::string read_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

void LogTest::SetUp()
{
    std::remove(log_path());
    common::log_reset_count();
}

std::string LogTest::log_text() const { return read_file(log_path()); }

std::vector<std::string> LogTest::log_lines() const
{
    std::vector<std::string> lines;
    std::istringstream in(log_text());
    std::string line;
    while (std::getline(in, line))
        if (!line.empty()) lines.push_back(line);
    return lines;
}

bool LogTest::logged(const std::string &message) const
{
    for (const auto &line : log_lines()) {
        const auto colon = line.find("]:");
        if (colon != std::string::npos && line.compare(colon + 2, std::string::npos, message) == 0) return true;
    }
    return false;
}

void LogTest::expect_transcript(const std::string &name) const
{
#if SMSUTIL_TRACE_ENABLED
    static const std::regex line_number(R"(^(\[ *[A-Za-z_0-9]+): +[0-9]+\]:)");
    std::string got;
    for (const auto &line : log_lines()) got += std::regex_replace(line, line_number, "$1: ####]:") + "\n";
    const std::string path = std::string(SMSUTIL_TEST_DATA_DIR) + "/transcripts/" + name + ".txt";
    if (std::getenv("SMSUTIL_UPDATE_TRANSCRIPTS") != nullptr) {
        std::ofstream(path, std::ios::binary) << got;
        return;
    }
    EXPECT_EQ(got, read_file(path)) << "transcript " << path;
#else
    (void)name;
#endif
}

}  // namespace smsutil::test

namespace xmltest {

HookCounters g_hooks;

namespace {
bool fail_now()
{
    ++g_hooks.requests;
    if (g_hooks.fail_at == 0) return false;
    return g_hooks.persistent ? g_hooks.requests >= g_hooks.fail_at : g_hooks.requests == g_hooks.fail_at;
}
void *counting_malloc(size_t n)
{
    if (fail_now()) return nullptr;
    void *p = std::malloc(n != 0 ? n : 1);
    if (p != nullptr) ++g_hooks.allocations;
    return p;
}
void *counting_calloc(size_t c, size_t n)
{
    if (fail_now()) return nullptr;
    void *p = std::calloc(c != 0 ? c : 1, n != 0 ? n : 1);
    if (p != nullptr) ++g_hooks.allocations;
    return p;
}
void counting_free(void *p)
{
    if (p != nullptr) ++g_hooks.releases;
    std::free(p);
}
void *counting_realloc(void *p, size_t n)
{
    if (fail_now()) return nullptr;
    void *q = std::realloc(p, n != 0 ? n : 1);
    if (q != nullptr && p == nullptr) ++g_hooks.allocations;
    return q;
}

// Fails the test that leaves blocks allocated through the XML hooks.
class LeakListener : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &) override
    {
        g_hooks = HookCounters{};
        install_counting_hooks();
    }
    void OnTestEnd(const ::testing::TestInfo &) override
    {
        EXPECT_EQ(g_hooks.allocations - g_hooks.releases, 0) << "blocks left allocated through the XML memory hooks";
    }
};
const bool g_listening = [] {
    ::testing::UnitTest::GetInstance()->listeners().Append(new LeakListener);
    return true;
}();
}  // namespace

void install_counting_hooks() { NDL_XML_RegMemFunc(counting_malloc, counting_calloc, counting_free, counting_realloc); }

// Counters restart inside the scope; what the scope saw is added back on
// leaving, so the listener still sees the whole test's balance.
HookScope::HookScope(long fail_at, bool persistent) : saved_(g_hooks)
{
    g_hooks = HookCounters{};
    g_hooks.fail_at = fail_at;
    g_hooks.persistent = persistent;
    install_counting_hooks();
}

HookScope::~HookScope()
{
    saved_.allocations += g_hooks.allocations;
    saved_.releases += g_hooks.releases;
    g_hooks = saved_;
    install_counting_hooks();
}

Tree parse(const char *text)
{
    XML_Node *root = nullptr;
    EXPECT_EQ(NDL_XML_Parse(text, &root), XML_OK) << text;
    return Tree(root);
}

std::string describe(const XML_Node *node)
{
    if (node == nullptr) return "null";
    std::string out;
    if (node->prefix != nullptr) out += std::string(node->prefix) + ":";
    out += node->name != nullptr ? node->name : "?";
    if (node->firstAttr != nullptr) {
        out += "{";
        for (const XML_Node *a = node->firstAttr; a != nullptr; a = a->nextSibling) {
            if (a != node->firstAttr) out += ",";
            if (a->parent != node || a->kind != XML_NODE_ATTR) out += "!";
            if (a->prefix != nullptr) out += std::string(a->prefix) + ":";
            out += a->name != nullptr ? a->name : "?";
            if (a->value != nullptr) out += "=" + std::string(a->value);
        }
        out += "}";
    }
    if (node->value != nullptr) out += "(" + std::string(node->value) + ")";
    if (node->firstChild != nullptr) {
        out += "[";
        const XML_Node *prev = nullptr;
        for (const XML_Node *c = node->firstChild; c != nullptr; c = c->nextSibling) {
            if (prev != nullptr) out += ",";
            if (c->parent != node || c->prevSibling != prev) out += "!";
            out += describe(c);
            prev = c;
        }
        if (node->lastChild != prev) out += "!";
        out += "]";
    }
    return out;
}

std::string describe_chain(const XML_Node *node)
{
    std::string out;
    for (; node != nullptr; node = node->nextSibling) out += (out.empty() ? "" : " + ") + describe(node);
    return out;
}

std::string serialize(XML_Node *node)
{
    char *text = nullptr;
    const uint32_t rc = NDL_XML_Transform(node, &text);
    std::string out = rc == XML_OK && text != nullptr ? text : "<error " + std::to_string(rc) + ">";
    NDL_XML_FreeMem(text);
    return out;
}

std::string work_path(const std::string &name) { return std::string(SMSUTIL_TEST_WORK_DIR) + "/" + name; }

std::string write_work_file(const std::string &name, const std::string &content)
{
    const std::string path = work_path(name);
    std::ofstream(path, std::ios::binary) << content;
    return path;
}

std::string read_work_file(const std::string &path)
{
    std::ifstream in(path, std::ios::binary);
    if (!in) return "<missing>";
    std::ostringstream out;
    out << in.rdbuf();
    return out.str();
}

}  // namespace xmltest
