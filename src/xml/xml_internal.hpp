// Helpers shared by the units of the XML tree library.
#pragma once

#include <cstddef>
#include <cstdint>

#include "smsutil/ndl_xml.h"

namespace smsutil::xml {

// Two nulls are equal, a null differs from every string, else strcmp.
int str_cmp_null(const char *a, const char *b);

// A NUL-terminated string equal to the len bytes at text.
bool name_equals(const char *name, const char *text, std::size_t len);

// First attribute of element whose (prefix, name) pair compares equal.
XML_Node *find_attr(const XML_Node *element, const char *prefix, const char *name);

// An allocated, zero-filled block (the hooks have no zeroing allocator of
// their own that the library may use).
void *alloc_zeroed(std::size_t size);

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

// Decoded copy of text[0, n): the five predefined entities and numeric
// character references (written as UTF-8).  n == 0 stores null and
// succeeds; a malformed or disallowed reference fails with out untouched.
bool copy_decoded(const char *text, std::size_t n, char **out);

}  // namespace smsutil::xml

namespace smsutil::xml {

// Parses a NUL-terminated text into a tree (the first top-level element).
// XML_ERR_NO_MEMORY when the parse state or the first element cannot be
// allocated, XML_ERR_SYNTAX for everything that fails once parsing began.
// out is written only on success.
std::uint32_t parse_document(const char *text, bool borrowed, XML_Node **out);

}  // namespace smsutil::xml
