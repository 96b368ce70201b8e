// Linking elements into trees and unlinking them.  Only detached nodes are
// inserted, and never into their own subtree, so a tree stays a tree.
#include "xml/xml_internal.hpp"

namespace {

bool detached(const XML_Node *node)
{
    return node->parent == nullptr && node->prevSibling == nullptr && node->nextSibling == nullptr;
}

// True when inserting node next to or under receiver would put node inside
// its own subtree: the receiver's topmost ancestor is node itself.
bool inside_own_subtree(const XML_Node *receiver, const XML_Node *node)
{
    const XML_Node *top = receiver;
    while (top->parent != nullptr) top = top->parent;
    return top == node;
}

uint32_t check_child_insert(const XML_Node *parent, const XML_Node *child)
{
    if (parent == nullptr || child == nullptr || !detached(child) || parent->kind != XML_NODE_ELEMENT ||
        inside_own_subtree(parent, child))
        return XML_ERR_PARAM;
    return XML_OK;
}

uint32_t check_sibling_insert(const XML_Node *reference, const XML_Node *node)
{
    if (reference == nullptr || node == nullptr || reference == node || detached(reference) ||
        inside_own_subtree(reference, node) || !detached(node))
        return XML_ERR_PARAM;
    return XML_OK;
}

// An attribute lives in its element's attribute list, not among the
// children: unlinking it there keeps the element's list intact.
void unlink_attribute(XML_Node *attr)
{
    XML_Node **link = &attr->parent->firstAttr;
    while (*link != nullptr && *link != attr) link = &(*link)->nextSibling;
    if (*link == attr) *link = attr->nextSibling;
}

}  // namespace

extern "C" SMSUTIL_API uint32_t NDL_XML_RemoveNode(XML_Node *node)
{
    if (node == nullptr || detached(node)) return XML_ERR_PARAM;
    if (node->kind == XML_NODE_ATTR && node->parent != nullptr) {
        unlink_attribute(node);
    } else {
        if (node->prevSibling != nullptr) node->prevSibling->nextSibling = node->nextSibling;
        if (node->nextSibling != nullptr) node->nextSibling->prevSibling = node->prevSibling;
        if (node->parent != nullptr) {
            if (node->parent->firstChild == node) node->parent->firstChild = node->nextSibling;
            if (node->parent->lastChild == node) node->parent->lastChild = node->prevSibling;
        }
    }
    node->parent = nullptr;
    node->prevSibling = nullptr;
    node->nextSibling = nullptr;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_AddFirstChildNode(XML_Node *parent, XML_Node *child)
{
    const uint32_t rc = check_child_insert(parent, child);
    if (rc != XML_OK) return rc;
    child->parent = parent;
    child->nextSibling = parent->firstChild;
    if (parent->firstChild != nullptr) parent->firstChild->prevSibling = child;
    parent->firstChild = child;
    if (parent->lastChild == nullptr) parent->lastChild = child;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_AppendChildNode(XML_Node *parent, XML_Node *child)
{
    const uint32_t rc = check_child_insert(parent, child);
    if (rc != XML_OK) return rc;
    child->parent = parent;
    if (parent->lastChild == nullptr) {
        parent->firstChild = child;
    } else {
        parent->lastChild->nextSibling = child;
        child->prevSibling = parent->lastChild;
    }
    parent->lastChild = child;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_AddNextSiblingNode(XML_Node *reference, XML_Node *node)
{
    const uint32_t rc = check_sibling_insert(reference, node);
    if (rc != XML_OK) return rc;
    node->parent = reference->parent;
    node->prevSibling = reference;
    node->nextSibling = reference->nextSibling;
    if (reference->nextSibling != nullptr) reference->nextSibling->prevSibling = node;
    reference->nextSibling = node;
    if (node->parent != nullptr && node->parent->lastChild == reference) node->parent->lastChild = node;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_AddPrevSiblingNode(XML_Node *reference, XML_Node *node)
{
    const uint32_t rc = check_sibling_insert(reference, node);
    if (rc != XML_OK) return rc;
    node->parent = reference->parent;
    node->nextSibling = reference;
    node->prevSibling = reference->prevSibling;
    if (reference->prevSibling != nullptr) reference->prevSibling->nextSibling = node;
    reference->prevSibling = node;
    if (node->parent != nullptr && node->parent->firstChild == reference) node->parent->firstChild = node;
    return XML_OK;
}
