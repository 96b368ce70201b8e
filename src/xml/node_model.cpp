// Node records: creation, filling, release, inspection and document-order
// navigation.
#include <cstddef>
#include <cstring>

#include "xml/xml_internal.hpp"

// C callers see the same layout: pointers and one 32-bit kind, naturally
// aligned.
static_assert(offsetof(XML_Node, value) == sizeof(void *));
static_assert(offsetof(XML_Node, kind) == 2 * sizeof(void *));
static_assert(offsetof(XML_Node, prefix) == 3 * sizeof(void *));
static_assert(offsetof(XML_Node, firstAttr) == 9 * sizeof(void *));
static_assert(sizeof(XML_Node) == 10 * sizeof(void *));

namespace smsutil::xml {

void release_chunk(NodeChunk *chunk)
{
    if (chunk->refs.fetch_sub(1, std::memory_order_acq_rel) == 1) XML_Free(chunk);
}

void drop_string(XML_Node *node, char **field)
{
    const unsigned char in_block = field == &node->name     ? kNameInBlock
                                   : field == &node->prefix ? kPrefixInBlock
                                                            : kValueInBlock;
    unsigned char &flags = node_flags(node);
    if ((flags & in_block) == 0) XML_Free(*field);
    flags = static_cast<unsigned char>(flags & ~in_block);
    *field = nullptr;
}

}  // namespace smsutil::xml

namespace {

using smsutil::xml::drop_string;

// A non-null empty argument clears its field.
void clear_if_empty(XML_Node *node, char **field, const char *arg)
{
    if (arg != nullptr && arg[0] == '\0') drop_string(node, field);
}

bool present(const char *text) { return text != nullptr && text[0] != '\0'; }

}  // namespace

extern "C" SMSUTIL_API XML_Node *XML_NewNode(uint32_t kind)
{
    void *block = XML_Malloc(smsutil::xml::kNodeBlockSize);
    return block != nullptr ? smsutil::xml::init_node(block, kind, nullptr) : nullptr;
}

extern "C" SMSUTIL_API char *XML_Strdup(const char *text)
{
    return text != nullptr ? smsutil::xml::copy_bytes(text, std::strlen(text)) : nullptr;
}

extern "C" SMSUTIL_API uint32_t XML_SetNode(XML_Node *node, const char *prefix, const char *name, const char *value)
{
    if (node == nullptr) return XML_ERR_PARAM;
    const char *sources[3] = {prefix, name, value};
    char *copies[3] = {nullptr, nullptr, nullptr};
    for (int i = 0; i < 3; ++i) {
        if (!present(sources[i])) continue;
        copies[i] = XML_Strdup(sources[i]);
        if (copies[i] == nullptr) {
            for (int j = 0; j < i; ++j) XML_Free(copies[j]);
            return XML_ERR_NO_MEMORY;
        }
    }
    char **fields[3] = {&node->prefix, &node->name, &node->value};
    for (int i = 0; i < 3; ++i) {
        if (copies[i] == nullptr) continue;
        drop_string(node, fields[i]);
        *fields[i] = copies[i];
    }
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_CreateNode(uint32_t reserved, const char *prefix, const char *name,
                                                   const char *value, XML_Node **outNode)
{
    if (reserved != 0 || outNode == nullptr) return XML_ERR_PARAM;
    XML_Node *node = XML_NewNode(XML_NODE_ELEMENT);
    if (node == nullptr) return XML_ERR_NO_MEMORY;
    const uint32_t rc = XML_SetNode(node, prefix, name, value);
    if (rc != XML_OK) {
        XML_FreeSingleNode(node);
        return rc;
    }
    *outNode = node;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_SetNode(XML_Node *node, const char *prefix, const char *name, const char *value)
{
    if (node == nullptr) return XML_ERR_PARAM;
    clear_if_empty(node, &node->prefix, prefix);
    clear_if_empty(node, &node->name, name);
    clear_if_empty(node, &node->value, value);
    return XML_SetNode(node, prefix, name, value);
}

namespace {

// The node's own strings and record; inlined into the tree walk below.
inline void release_single(XML_Node *node)
{
    // Most strings of a parsed tree are absent or live in the node's block:
    // those are tested here rather than by a call that ignores them.
    const smsutil::xml::NodeTail &tail = smsutil::xml::node_tail(node);
    if ((tail.flags & smsutil::xml::kNameInBlock) == 0 && node->name != nullptr) XML_Free(node->name);
    if ((tail.flags & smsutil::xml::kValueInBlock) == 0 && node->value != nullptr) XML_Free(node->value);
    if ((tail.flags & smsutil::xml::kPrefixInBlock) == 0 && node->prefix != nullptr) XML_Free(node->prefix);
    if (tail.chunk != nullptr)
        smsutil::xml::release_chunk(tail.chunk);
    else
        XML_Free(node);
}

}  // namespace

extern "C" SMSUTIL_API void XML_FreeSingleNode(XML_Node *node)
{
    if (node != nullptr) release_single(node);
}

// Walks the chain without recursion so that a deeply nested document
// cannot exhaust the stack: each node's children and attributes are
// spliced into the chain right after it before the node itself goes.
namespace {

// Puts the list from head into the chain right after node.
void splice_after(XML_Node *node, XML_Node *head)
{
    if (head == nullptr) return;
    XML_Node *tail = head;
    while (tail->nextSibling != nullptr) tail = tail->nextSibling;
    tail->nextSibling = node->nextSibling;
    node->nextSibling = head;
}

}  // namespace

extern "C" SMSUTIL_API void XML_FreeNode(XML_Node *node)
{
    while (node != nullptr) {
        splice_after(node, node->firstChild);
        // Attributes are released here rather than spliced: they carry no
        // lists of their own unless a caller hung some on them.
        for (XML_Node *attr = node->firstAttr; attr != nullptr;) {
            XML_Node *next = attr->nextSibling;
            splice_after(node, attr->firstChild);
            splice_after(node, attr->firstAttr);
            release_single(attr);
            attr = next;
        }
        XML_Node *next = node->nextSibling;
        release_single(node);
        node = next;
    }
}

extern "C" SMSUTIL_API void NDL_XML_FreeNode(XML_Node *node)
{
    if (node == nullptr) return;
    (void)NDL_XML_RemoveNode(node);
    XML_FreeNode(node);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_GetNodeValue(const XML_Node *node, uint32_t *outKind, const char **outPrefix,
                                                     const char **outName, const char **outValue)
{
    if (node == nullptr) return XML_ERR_PARAM;
    if (outKind != nullptr) *outKind = node->kind;
    if (outPrefix != nullptr) *outPrefix = node->prefix;
    if (outName != nullptr) *outName = node->name;
    if (outValue != nullptr) *outValue = node->value;
    return XML_OK;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_GetNodeParent(const XML_Node *node)
{
    return node != nullptr ? node->parent : nullptr;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_GetNodeFirstChild(const XML_Node *node)
{
    return node != nullptr ? node->firstChild : nullptr;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_GetNodeLastChild(const XML_Node *node)
{
    return node != nullptr ? node->lastChild : nullptr;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_GetNodeNextSibling(const XML_Node *node)
{
    return node != nullptr ? node->nextSibling : nullptr;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_GetNodePrevSibling(const XML_Node *node)
{
    return node != nullptr ? node->prevSibling : nullptr;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_GetNodeChildNum(const XML_Node *node, uint32_t *outCount)
{
    if (node == nullptr || outCount == nullptr) return XML_ERR_PARAM;
    *outCount = 0;
    for (const XML_Node *child = node->firstChild; child != nullptr; child = child->nextSibling) ++*outCount;
    return XML_OK;
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_Iterator(const XML_Node *node)
{
    if (node == nullptr) return nullptr;
    if (node->firstChild != nullptr) return node->firstChild;
    for (; node != nullptr; node = node->parent)
        if (node->nextSibling != nullptr) return node->nextSibling;
    return nullptr;
}
