// Writes a node and its descendants as compact XML text: no declaration,
// no indentation, a line feed after each start tag with children, each
// childless element and each end tag.
#include <cstdio>
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

uint32_t append_qname(XML_MemBuf *buf, const XML_Node *node)
{
    uint32_t rc = XML_OK;
    if (node->prefix != nullptr) {
        rc = XML_MemBufAppendStr(buf, node->prefix);
        if (rc == XML_OK) rc = XML_MemBufAppendStr(buf, ":");
    }
    if (rc == XML_OK) rc = XML_MemBufAppendStr(buf, node->name);
    return rc;
}

uint32_t append_escaped(XML_MemBuf *buf, const char *text)
{
    if (text == nullptr) return XML_OK;
    for (; *text != '\0'; ++text) {
        const char *entity = nullptr;
        switch (*text) {
        case '"':
            entity = "&quot;";
            break;
        case '&':
            entity = "&amp;";
            break;
        case '\'':
            entity = "&apos;";
            break;
        case '<':
            entity = "&lt;";
            break;
        case '>':
            entity = "&gt;";
            break;
        default:
            break;
        }
        const uint32_t rc = entity != nullptr ? XML_MemBufAppendStr(buf, entity) : XML_MemBufAppend(buf, text);
        if (rc != XML_OK) return rc;
    }
    return XML_OK;
}

// One attribute and every attribute after it in the list.
uint32_t append_attrs(XML_MemBuf *buf, const XML_Node *attr)
{
    for (; attr != nullptr; attr = attr->nextSibling) {
        if (attr->name == nullptr) return XML_ERR_PARAM;
        uint32_t rc = append_qname(buf, attr);
        if (rc == XML_OK) rc = XML_MemBufAppendStr(buf, "=\"");
        if (rc == XML_OK) rc = append_escaped(buf, attr->value);
        if (rc == XML_OK) rc = XML_MemBufAppendStr(buf, "\"");
        if (rc == XML_OK && attr->nextSibling != nullptr) rc = XML_MemBufAppendStr(buf, " ");
        if (rc != XML_OK) return rc;
    }
    return XML_OK;
}

uint32_t append_end_tag(XML_MemBuf *buf, const XML_Node *node)
{
    uint32_t rc = XML_MemBufAppendStr(buf, "</");
    if (rc == XML_OK) rc = append_qname(buf, node);
    if (rc == XML_OK) rc = XML_MemBufAppendStr(buf, ">\n");
    return rc;
}

uint32_t write_element(XML_MemBuf *buf, const XML_Node *node)
{
    uint32_t rc = XML_MemBufAppendStr(buf, "<");
    if (rc == XML_OK) rc = append_qname(buf, node);
    if (rc == XML_OK && node->firstAttr != nullptr) {
        rc = XML_MemBufAppendStr(buf, " ");
        if (rc == XML_OK) rc = append_attrs(buf, node->firstAttr);
    }
    if (rc != XML_OK) return rc;
    // Children follow through the document-order walk; the end tag comes
    // after the last descendant.
    if (node->firstChild != nullptr) return XML_MemBufAppendStr(buf, ">\n");
    if (node->value != nullptr) {
        rc = XML_MemBufAppendStr(buf, ">");
        if (rc == XML_OK) rc = append_escaped(buf, node->value);
        if (rc == XML_OK) rc = append_end_tag(buf, node);
    } else {
        rc = XML_MemBufAppendStr(buf, "/>\n");
    }
    // Close every ancestor this node finishes; the walk's top has no parent.
    for (const XML_Node *done = node; rc == XML_OK && done->parent != nullptr && done->parent->lastChild == done;
         done = done->parent)
        rc = append_end_tag(buf, done->parent);
    return rc;
}

uint32_t write_node(XML_MemBuf *buf, const XML_Node *node)
{
    if (node == nullptr) return XML_OK;
    if (node->name == nullptr) return XML_ERR_PARAM;
    if (node->kind == XML_NODE_ATTR) return append_attrs(buf, node);
    if (node->kind == XML_NODE_ELEMENT) return write_element(buf, node);
    return XML_OK;
}

}  // namespace

namespace smsutil::xml {

uint32_t tree_to_string(XML_Node *node, char **out_text, uint32_t *out_length)
{
    XML_MemBuf buf;
    XML_MembufInit(&buf);
    // Cut the outer links for the walk, so that it stays inside the subtree
    // and the closing of ancestors stops at the node.
    XML_Node *const saved[3] = {node->parent, node->prevSibling, node->nextSibling};
    node->parent = node->prevSibling = node->nextSibling = nullptr;
    uint32_t rc = XML_OK;
    for (const XML_Node *at = node; at != nullptr && rc == XML_OK; at = NDL_XML_Iterator(at)) rc = write_node(&buf, at);
    node->parent = saved[0];
    node->prevSibling = saved[1];
    node->nextSibling = saved[2];
    if (rc != XML_OK) {
        XML_MembufDestroy(&buf);
        return rc;
    }
    *out_text = buf.data;
    *out_length = buf.length;
    return XML_OK;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API uint32_t NDL_XML_Transform(XML_Node *node, char **outText)
{
    if (node == nullptr || outText == nullptr) return XML_ERR_PARAM;
    uint32_t length = 0;
    return smsutil::xml::tree_to_string(node, outText, &length);
}

extern "C" SMSUTIL_API uint32_t NDL_XML_TransformFile(XML_Node *node, const char *path)
{
    if (node == nullptr || path == nullptr) return XML_ERR_PARAM;
    char *text = nullptr;
    uint32_t length = 0;
    uint32_t rc = smsutil::xml::tree_to_string(node, &text, &length);
    if (rc != XML_OK) return rc;
    std::FILE *file = std::fopen(path, "w+");
    if (file == nullptr) {
        XML_Free(text);
        return XML_ERR_OPEN;
    }
    if (std::fwrite(text, length, 1, file) != 1) rc = XML_ERR_WRITE;
    // Buffered bytes reach the file only at close: a full disk shows there.
    if (std::fclose(file) != 0) rc = XML_ERR_WRITE;
    XML_Free(text);
    return rc;
}
