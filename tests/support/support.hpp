// What the suite shares: hex text, the diagnostic log (with golden
// transcripts), a heap-allocation counter, and the XML library's counting
// memory hooks with the small tree helpers its tests use.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "smsutil/ndl_xml.h"
#include "smsutil/wms_ts.h"

namespace smsutil::test {

using Octets = std::vector<uint8_t>;

// "0A1b" -> {0x0A, 0x1B}; spaces are ignored.
Octets bytes(std::string_view hex);
// Upper-case hex of the octets.
std::string hex(const uint8_t *octets, std::size_t n);
inline std::string hex(const Octets &o) { return hex(o.data(), o.size()); }

inline wms_raw_tpdu raw_from_hex(std::string_view text)
{
    wms_raw_tpdu raw{};
    const Octets o = bytes(text);
    for (const uint8_t b : o) raw.data[raw.len++] = b;
    return raw;
}
inline std::string hex_of(const wms_raw_tpdu &raw) { return hex(raw.data, raw.len); }

// Readable names for table-driven suites whose rows have a `name`.
template <typename Case>
std::string case_name(const ::testing::TestParamInfo<Case> &info)
{
    return info.param.name;
}

// ---- Heap allocations (the codecs must never make one) ----

std::size_t allocation_count();

class AllocationScope {
public:
    AllocationScope() : start_(allocation_count()) {}
    std::size_t allocations() const { return allocation_count() - start_; }

private:
    std::size_t start_;
};

// ---- Diagnostic log ----

const char *log_path();
std::string read_file(const std::string &path);

// Empties the log before each case.
class LogTest : public ::testing::Test {
protected:
    void SetUp() override;
    std::string log_text() const;
    // Non-empty lines of the log.
    std::vector<std::string> log_lines() const;
    // True when some line ends with `message` after its "[function: line]:" prefix.
    bool logged(const std::string &message) const;
    // Compares the log with data/transcripts/<name>.log, the source line
    // numbers in the prefixes masked so that moving code does not break it.
    // SMSUTIL_UPDATE_TRANSCRIPTS=1 rewrites the file instead.
    void expect_transcript(const std::string &name) const;
};

}  // namespace smsutil::test

namespace xmltest {

using smsutil::test::case_name;

// Every test runs with counting hooks installed; a listener fails any test
// that ends with blocks still allocated through them.
struct HookCounters {
    long requests = 0;        // allocation requests seen
    long fail_at = 0;         // the request that fails; 0: none
    bool persistent = false;  // and, if set, every request after it
    long allocations = 0;
    long releases = 0;
};
extern HookCounters g_hooks;

void install_counting_hooks();

// Restarts the counters for its lifetime and makes request `fail_at` fail
// (and every later one with `persistent`).
class HookScope {
public:
    explicit HookScope(long fail_at = 0, bool persistent = false);
    ~HookScope();
    HookScope(const HookScope &) = delete;
    HookScope &operator=(const HookScope &) = delete;

    bool failure_hit() const { return g_hooks.fail_at != 0 && g_hooks.requests >= g_hooks.fail_at; }
    long requests() const { return g_hooks.requests; }
    long live() const { return g_hooks.allocations - g_hooks.releases; }

private:
    HookCounters saved_;
};

struct TreeDeleter {
    void operator()(XML_Node *node) const { XML_FreeNode(node); }
};
using Tree = std::unique_ptr<XML_Node, TreeDeleter>;

Tree parse(const char *text);
// A node and its subtree as prefix:name{attrs}(value)[children]; a wrong
// parent, prevSibling or lastChild link shows as "!".
std::string describe(const XML_Node *node);
// A top-level chain, joined by " + ".
std::string describe_chain(const XML_Node *node);
std::string serialize(XML_Node *node);

std::string work_path(const std::string &name);
std::string write_work_file(const std::string &name, const std::string &content);
std::string read_work_file(const std::string &path);

}  // namespace xmltest
