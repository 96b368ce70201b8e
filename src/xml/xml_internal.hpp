// Helpers shared by the units of the XML tree library.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "smsutil/ndl_xml.h"
#include "xml/plain_copy.hpp"

namespace smsutil::xml {

// Two nulls are equal, a null differs from every string, else strcmp.
inline int str_cmp_null(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr) return a == b ? 0 : (a == nullptr ? -1 : 1);
    return std::strcmp(a, b);
}

// A NUL-terminated string equal to the len bytes at text (which hold no
// NUL: a shorter name stops the loop at its terminator).
inline bool name_equals(const char *name, const char *text, std::size_t len)
{
    if (name == nullptr) return false;
    for (std::size_t i = 0; i < len; ++i)
        if (name[i] != text[i]) return false;
    return name[len] == '\0';
}

// First attribute of element whose (prefix, name) pair compares equal.
XML_Node *find_attr(const XML_Node *element, const char *prefix, const char *name);

// An allocated, zero-filled block (the hooks have no zeroing allocator of
// their own that the library may use).
void *alloc_zeroed(std::size_t size);

// Node records the parser creates are carved out of larger blocks, one
// allocation for many nodes.  A block counts the nodes still in it (and
// the parser's own hold while it carves): the last release gives it back
// to the free hook.  Atomic, because subtrees of one document may be
// detached and released by different threads.
struct NodeChunk {
    std::atomic<std::uint32_t> refs;
};

// What follows every node record the library makes: the block holding it
// (null when the record has a block of its own) and flags.  The parser
// also stores the node's name, and the prefix split off it, right after
// this, and most values further on in the same block; the flags tell the
// release and replacement paths not to hand those strings to the free
// hook.
enum NodeFlag : unsigned char { kNameInBlock = 1, kPrefixInBlock = 2, kValueInBlock = 4 };
struct NodeTail {
    NodeChunk *chunk;
    unsigned char flags;
    // Set by the parser only and read only while it parses: whether an
    // end tag may be compared with the stored name byte for byte (the
    // name had no reference, and no byte at its end whose meaning depends
    // on what follows), whether the name may hold a prefix's colon, and
    // the length of the whole name.
    bool plainName;
    bool nameHasColon;
    std::uint32_t parsedNameLength;
};
constexpr std::size_t kNodeBlockSize = sizeof(XML_Node) + sizeof(NodeTail);

inline NodeTail &node_tail(XML_Node *node) { return *reinterpret_cast<NodeTail *>(node + 1); }
inline unsigned char &node_flags(XML_Node *node) { return node_tail(node).flags; }
inline char *node_text_room(XML_Node *node) { return reinterpret_cast<char *>(node) + kNodeBlockSize; }

// Zeroes the record and the tail at block and sets kind.
inline XML_Node *init_node(void *block, uint32_t kind, NodeChunk *chunk)
{
    auto *node = ::new (block) XML_Node{};
    node->kind = kind;
    ::new (node + 1) NodeTail{chunk, 0, false, true, 0};
    return node;
}

// Drops one reference to chunk, releasing it with the last.
void release_chunk(NodeChunk *chunk);

// Releases *field of node (its name, value or prefix) unless it lives in
// the node's block, and sets it to null.  Every path that replaces or
// clears a node's string goes through here.
void drop_string(XML_Node *node, char **field);

// Allocated copy of len bytes plus a terminator; null for len 0 or when
// the allocation fails.
char *copy_bytes(const char *text, std::size_t len);

// Node named by the dotted path text[0, len) from the level of start:
// runs of dots are one separator, leading and trailing dots are ignored.
XML_Node *find_by_path(const XML_Node *start, const char *text, std::size_t len);

// Typed value text <-> caller's variable.
std::uint32_t parse_value(const XML_Node *node, std::uint32_t type, void *out);
std::uint32_t format_value(XML_Node *node, std::uint32_t type, const void *in);

// Serializes the subtree of node into an allocated string (null when
// nothing was written).
std::uint32_t tree_to_string(XML_Node *node, char **out_text, std::uint32_t *out_length);

// Reads a whole file into an allocated NUL-terminated buffer.
std::uint32_t read_file(const char *path, char **out_text);

}  // namespace smsutil::xml

namespace smsutil::xml {

// Decodes text[0, n) into out, which has room for n + 1 bytes (decoding
// never lengthens), and terminates it: the five predefined entities and
// numeric character references (written as UTF-8).  The decoded length,
// or kBadReference for a malformed or disallowed reference.
constexpr std::size_t kBadReference = ~std::size_t{0};
std::size_t decode_references(const char *text, std::size_t n, char *out);
inline std::size_t decode_into(const char *text, std::size_t n, char *out)
{
    if (!copy_plain(text, n, out)) return decode_references(text, n, out);
    out[n] = '\0';
    return n;
}

// Decoded copy of text[0, n) in a block of its own.  n == 0 stores null
// and succeeds; a malformed or disallowed reference fails with out
// untouched.  Inline: the parser makes one for nearly every value.
inline bool copy_decoded(const char *text, std::size_t n, char **out)
{
    if (n == 0) {
        *out = nullptr;
        return true;
    }
    auto *copy = static_cast<char *>(XML_Malloc(n + 1));
    if (copy == nullptr) return false;
    const std::size_t len = decode_into(text, n, copy);
    if (len == kBadReference) {
        XML_Free(copy);
        return false;
    }
    // What decoding saved stays zero, as in a block zeroed up front.
    if (len < n) std::memset(copy + len, 0, n + 1 - len);
    *out = copy;
    return true;
}

}  // namespace smsutil::xml

namespace smsutil::xml {

// Parses a NUL-terminated text into a tree (the first top-level element).
// XML_ERR_NO_MEMORY when the parse state or the first element cannot be
// allocated, XML_ERR_SYNTAX for everything that fails once parsing began.
// out is written only on success.
std::uint32_t parse_document(const char *text, bool borrowed, XML_Node **out);

}  // namespace smsutil::xml
