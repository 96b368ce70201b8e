// The attribute list of an element: find, read, iterate, add, change,
// remove.  An attribute is identified by its (prefix, name) pair, a null
// prefix being a value of its own.
#include "xml/xml_internal.hpp"

namespace smsutil::xml {

namespace {

bool same_key(const XML_Node *attr, const char *prefix, const char *name)
{
    return str_cmp_null(attr->prefix, prefix) == 0 && str_cmp_null(attr->name, name) == 0;
}

}  // namespace

XML_Node *find_attr(const XML_Node *element, const char *prefix, const char *name)
{
    for (XML_Node *attr = element->firstAttr; attr != nullptr; attr = attr->nextSibling)
        if (same_key(attr, prefix, name)) return attr;
    return nullptr;
}

}  // namespace smsutil::xml

namespace {

using smsutil::xml::find_attr;
using smsutil::xml::same_key;

// Stored prefixes are never empty, so a caller's "" means "no prefix".
const char *null_if_empty(const char *prefix) { return prefix != nullptr && prefix[0] == '\0' ? nullptr : prefix; }

void store_attr(const XML_Node *attr, const char **outPrefix, const char **outName, const char **outValue)
{
    *outPrefix = attr->prefix;
    *outName = attr->name;
    *outValue = attr->value;
}

}  // namespace

extern "C" SMSUTIL_API uint32_t NDL_XML_GetAttr(const XML_Node *element, const char *prefix, const char *name,
                                                const char **outValue)
{
    if (element == nullptr || name == nullptr || outValue == nullptr) return XML_ERR_PARAM;
    const XML_Node *attr = find_attr(element, prefix, name);
    if (attr == nullptr) return XML_ERR_NOT_FOUND;
    *outValue = attr->value;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_GetFirstAttr(const XML_Node *element, const char **outPrefix,
                                                     const char **outName, const char **outValue)
{
    if (element == nullptr || outPrefix == nullptr || outName == nullptr || outValue == nullptr) return XML_ERR_PARAM;
    if (element->firstAttr == nullptr) return XML_ERR_NOT_FOUND;
    store_attr(element->firstAttr, outPrefix, outName, outValue);
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_GetNextSiblingAttr(const XML_Node *element, const char *prefix,
                                                           const char *name, const char **outPrefix,
                                                           const char **outName, const char **outValue)
{
    if (element == nullptr || name == nullptr || outPrefix == nullptr || outName == nullptr || outValue == nullptr)
        return XML_ERR_PARAM;
    const XML_Node *attr = find_attr(element, prefix, name);
    if (attr == nullptr || attr->nextSibling == nullptr) return XML_ERR_NOT_FOUND;
    store_attr(attr->nextSibling, outPrefix, outName, outValue);
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t XML_AddAttrNode(XML_Node *attribute, XML_Node *element)
{
    if (attribute == nullptr || element == nullptr) return XML_ERR_PARAM;
    // One walk both looks for a duplicate and finds the end of the list.
    XML_Node **tail = &element->firstAttr;
    for (; *tail != nullptr; tail = &(*tail)->nextSibling)
        if (same_key(*tail, attribute->prefix, attribute->name)) return XML_ERR_EXISTS;
    *tail = attribute;
    attribute->parent = element;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_AddAttr(XML_Node *element, const char *prefix, const char *name,
                                                const char *value)
{
    if (element == nullptr || name == nullptr || name[0] == '\0') return XML_ERR_PARAM;
    XML_Node *attr = XML_NewNode(XML_NODE_ATTR);
    if (attr == nullptr) return XML_ERR_NO_MEMORY;
    uint32_t rc = XML_SetNode(attr, prefix, name, value);
    if (rc == XML_OK) rc = XML_AddAttrNode(attr, element);
    if (rc != XML_OK) XML_FreeSingleNode(attr);
    return rc;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_SetAttr(XML_Node *element, const char *prefix, const char *name,
                                                const char *value)
{
    if (element == nullptr || name == nullptr) return XML_ERR_PARAM;
    XML_Node *attr = find_attr(element, null_if_empty(prefix), name);
    if (attr == nullptr) return XML_ERR_NOT_FOUND;
    char *copy = nullptr;
    if (value != nullptr && value[0] != '\0') {
        copy = XML_Strdup(value);
        if (copy == nullptr) return XML_ERR_NO_MEMORY;
    }
    smsutil::xml::drop_string(attr, &attr->value);
    attr->value = copy;
    return XML_OK;
}

extern "C" SMSUTIL_API uint32_t NDL_XML_RemoveAttr(XML_Node *element, const char *prefix, const char *name)
{
    if (element == nullptr || name == nullptr) return XML_ERR_PARAM;
    prefix = null_if_empty(prefix);
    for (XML_Node **link = &element->firstAttr; *link != nullptr; link = &(*link)->nextSibling) {
        XML_Node *attr = *link;
        if (same_key(attr, prefix, name)) {
            *link = attr->nextSibling;
            XML_FreeSingleNode(attr);
            return XML_OK;
        }
    }
    return XML_ERR_NOT_FOUND;
}
