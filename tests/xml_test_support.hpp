// Shared helpers for the XML library's tests: memory hooks that count and
// fail on demand, a compact tree description, and scratch files.
#pragma once

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include "smsutil/ndl_xml.h"

namespace xmltest {

struct HookCounters {
    long requests = 0;     // allocation requests seen (malloc, calloc, realloc)
    long fail_at = 0;      // the request that fails; 0: none
    long allocations = 0;  // new blocks handed out
    long releases = 0;     // blocks given back
};
inline HookCounters g_hooks;

inline bool fail_now() { return ++g_hooks.requests == g_hooks.fail_at; }
inline void *test_malloc(size_t n)
{
    if (fail_now()) return nullptr;
    void *p = std::malloc(n != 0 ? n : 1);
    if (p != nullptr) ++g_hooks.allocations;
    return p;
}
inline void *test_calloc(size_t c, size_t n)
{
    if (fail_now()) return nullptr;
    void *p = std::calloc(c != 0 ? c : 1, n != 0 ? n : 1);
    if (p != nullptr) ++g_hooks.allocations;
    return p;
}
inline void test_free(void *p)
{
    if (p != nullptr) ++g_hooks.releases;
    std::free(p);
}
inline void *test_realloc(void *p, size_t n)
{
    if (fail_now()) return nullptr;
    void *q = std::realloc(p, n != 0 ? n : 1);
    if (q != nullptr && p == nullptr) ++g_hooks.allocations;
    return q;
}
inline void *plain_malloc(size_t n) { return std::malloc(n); }
inline void *plain_calloc(size_t c, size_t n) { return std::calloc(c, n); }
inline void plain_free(void *p) { std::free(p); }
inline void *plain_realloc(void *p, size_t n) { return std::realloc(p, n); }

// Installs the counting hooks for its lifetime; fail_at = k makes the k-th
// allocation request fail.  Blocks from either table come from the same
// C allocator, so trees may cross the scope's borders.
class HookScope {
public:
    explicit HookScope(long fail_at = 0)
    {
        g_hooks = HookCounters{};
        g_hooks.fail_at = fail_at;
        NDL_XML_RegMemFunc(test_malloc, test_calloc, test_free, test_realloc);
    }
    ~HookScope() { NDL_XML_RegMemFunc(plain_malloc, plain_calloc, plain_free, plain_realloc); }
    HookScope(const HookScope &) = delete;
    HookScope &operator=(const HookScope &) = delete;

    bool failure_hit() const { return g_hooks.fail_at != 0 && g_hooks.requests >= g_hooks.fail_at; }
    long requests() const { return g_hooks.requests; }
    long live() const { return g_hooks.allocations - g_hooks.releases; }
};

struct TreeDeleter {
    void operator()(XML_Node *node) const { XML_FreeNode(node); }
};
// Owns a whole top-level chain.
using Tree = std::unique_ptr<XML_Node, TreeDeleter>;

inline Tree parse(const char *text)
{
    XML_Node *root = nullptr;
    const uint32_t rc = NDL_XML_Parse(text, &root);
    EXPECT_EQ(rc, XML_OK) << text;
    return Tree(root);
}

// One node and its subtree as text: prefix:name{attrs}(value)[children].
// A child whose parent or prevSibling link is wrong is marked with "!".
inline std::string describe(const XML_Node *node)
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

// A top-level chain: each element described, joined by " + ".
inline std::string describe_chain(const XML_Node *node)
{
    std::string out;
    for (; node != nullptr; node = node->nextSibling) out += (out.empty() ? "" : " + ") + describe(node);
    return out;
}

inline std::string serialize(XML_Node *node)
{
    char *text = nullptr;
    const uint32_t rc = NDL_XML_Transform(node, &text);
    std::string out = rc == XML_OK && text != nullptr ? text : "<error " + std::to_string(rc) + ">";
    NDL_XML_FreeMem(text);
    return out;
}

inline std::string work_path(const std::string &name) { return std::string(SMSUTIL_TEST_WORK_DIR) + "/" + name; }

inline std::string write_work_file(const std::string &name, const std::string &content)
{
    const std::string path = work_path(name);
    std::FILE *f = std::fopen(path.c_str(), "wb");
    EXPECT_NE(f, nullptr) << path;
    if (f != nullptr) {
        std::fwrite(content.data(), 1, content.size(), f);
        std::fclose(f);
    }
    return path;
}

inline std::string read_work_file(const std::string &path)
{
    std::string out;
    std::FILE *f = std::fopen(path.c_str(), "rb");
    if (f == nullptr) return "<missing>";
    char buf[4096];
    std::size_t n;
    while ((n = std::fread(buf, 1, sizeof buf, f)) > 0) out.append(buf, n);
    std::fclose(f);
    return out;
}

// Readable parameter names for table-driven suites.
template <typename Case>
std::string case_name(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

}  // namespace xmltest
