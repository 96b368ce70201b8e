// Detached copies of a node alone or of its whole subtree.
#include "xml/xml_internal.hpp"

namespace {

// The node with copies of its strings and attributes; null when an
// allocation fails (nothing is left behind then).
XML_Node *copy_self(const XML_Node *source)
{
    XML_Node *copy = XML_NewNode(source->kind);
    if (copy == nullptr) return nullptr;
    if (XML_SetNode(copy, source->prefix, source->name, source->value) != XML_OK) {
        XML_FreeSingleNode(copy);
        return nullptr;
    }
    XML_Node **tail = &copy->firstAttr;
    for (const XML_Node *attr = source->firstAttr; attr != nullptr; attr = attr->nextSibling) {
        XML_Node *attr_copy = XML_NewNode(attr->kind);
        if (attr_copy == nullptr) {
            XML_FreeNode(copy);
            return nullptr;
        }
        *tail = attr_copy;
        tail = &attr_copy->nextSibling;
        attr_copy->parent = copy;
        if (XML_SetNode(attr_copy, attr->prefix, attr->name, attr->value) != XML_OK) {
            XML_FreeNode(copy);
            return nullptr;
        }
    }
    return copy;
}

void append_copy(XML_Node *parent, XML_Node *child)
{
    child->parent = parent;
    child->prevSibling = parent->lastChild;
    if (parent->lastChild != nullptr)
        parent->lastChild->nextSibling = child;
    else
        parent->firstChild = child;
    parent->lastChild = child;
}

}  // namespace

extern "C" SMSUTIL_API uint32_t NDL_XML_CloneNodeSelf(const XML_Node *source, XML_Node **outNode)
{
    if (source == nullptr || outNode == nullptr) return XML_ERR_PARAM;
    XML_Node *copy = copy_self(source);
    if (copy == nullptr) return XML_ERR_NO_MEMORY;
    *outNode = copy;
    return XML_OK;
}

// Walks the source subtree in document order without recursion, keeping
// the copy's cursor in step with the source's.
extern "C" SMSUTIL_API uint32_t NDL_XML_CloneNode(const XML_Node *source, XML_Node **outNode)
{
    if (source == nullptr || outNode == nullptr) return XML_ERR_PARAM;
    XML_Node *root = copy_self(source);
    if (root == nullptr) return XML_ERR_NO_MEMORY;
    const XML_Node *src = source;
    XML_Node *dst = root;
    for (;;) {
        const XML_Node *next = nullptr;
        XML_Node *dst_parent = nullptr;
        if (src->firstChild != nullptr) {
            next = src->firstChild;
            dst_parent = dst;
        } else {
            while (src != source && src->nextSibling == nullptr) {
                src = src->parent;
                dst = dst->parent;
            }
            if (src == source) break;
            next = src->nextSibling;
            dst_parent = dst->parent;
        }
        XML_Node *copy = copy_self(next);
        if (copy == nullptr) {
            XML_FreeNode(root);
            return XML_ERR_NO_MEMORY;
        }
        append_copy(dst_parent, copy);
        src = next;
        dst = copy;
    }
    *outNode = root;
    return XML_OK;
}
