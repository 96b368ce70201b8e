// Tree utilities for the XML fuzz targets.
#pragma once

#include <cstring>

#include "fuzz_input.hpp"
#include "smsutil/ndl_xml.h"

namespace fuzzin {

struct TreeOwner {
    XML_Node *root = nullptr;
    ~TreeOwner() { XML_FreeNode(root); }
};

inline bool same_text(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr) return a == b;
    return std::strcmp(a, b) == 0;
}

// Same names, prefixes, values, attributes and children, in order.
inline bool same_tree(const XML_Node *a, const XML_Node *b)
{
    if (a == nullptr || b == nullptr) return a == b;
    if (a->kind != b->kind || !same_text(a->name, b->name) || !same_text(a->prefix, b->prefix) ||
        !same_text(a->value, b->value))
        return false;
    const XML_Node *x = a->firstAttr;
    const XML_Node *y = b->firstAttr;
    for (; x != nullptr && y != nullptr; x = x->nextSibling, y = y->nextSibling) {
        if (!same_tree(x, y)) return false;
    }
    if (x != y) return false;
    x = a->firstChild;
    y = b->firstChild;
    for (; x != nullptr && y != nullptr; x = x->nextSibling, y = y->nextSibling) {
        if (!same_tree(x, y)) return false;
    }
    return x == y;
}

}  // namespace fuzzin
