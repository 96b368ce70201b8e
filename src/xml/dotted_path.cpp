// Dotted element paths ("a.b.c") and the search by attribute.  A level is
// a sibling chain searched from a given node onward.  The path is split
// without process-wide state, so callers' own tokenizing loops and other
// threads are unaffected.
#include <cstring>

#include "xml/xml_internal.hpp"

namespace smsutil::xml {

XML_Node *find_by_path(const XML_Node *start, const char *text, std::size_t len)
{
    const char *end = text + len;
    const XML_Node *level = start;
    const XML_Node *found = nullptr;
    bool any_component = false;
    for (const char *p = text; p < end;) {
        if (*p == '.') {  // runs of dots are one separator
            ++p;
            continue;
        }
        const char *dot = static_cast<const char *>(std::memchr(p, '.', static_cast<std::size_t>(end - p)));
        const char *stop = dot != nullptr ? dot : end;
        any_component = true;
        if (level == nullptr) return nullptr;
        found = level;
        while (found != nullptr && !name_equals(found->name, p, static_cast<std::size_t>(stop - p)))
            found = found->nextSibling;
        level = found != nullptr ? found->firstChild : nullptr;
        p = stop;
    }
    return any_component ? const_cast<XML_Node *>(found) : nullptr;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API XML_Node *NDL_XML_FindNodeByName(const XML_Node *start, const char *path)
{
    if (start == nullptr || path == nullptr) return nullptr;
    return smsutil::xml::find_by_path(start, path, std::strlen(path));
}

extern "C" SMSUTIL_API XML_Node *NDL_XML_FindNodeByAttr(const XML_Node *start, const char *nodeName,
                                                        const char *attrName, const char *attrValue)
{
    if (start == nullptr || nodeName == nullptr || attrName == nullptr) return nullptr;
    for (const XML_Node *node = start; node != nullptr; node = node->nextSibling) {
        if (node->name == nullptr || std::strcmp(node->name, nodeName) != 0) continue;
        for (const XML_Node *attr = node->firstAttr; attr != nullptr; attr = attr->nextSibling) {
            if (attr->name == nullptr || std::strcmp(attr->name, attrName) != 0) continue;
            // An attribute without value compares as the empty string.
            if (attrValue == nullptr || std::strcmp(attr->value != nullptr ? attr->value : "", attrValue) == 0)
                return const_cast<XML_Node *>(node);
        }
    }
    return nullptr;
}
