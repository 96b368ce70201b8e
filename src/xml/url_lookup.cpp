// URL-like paths: "root.child.item.3.p:leaf".  The first component names
// the start node itself; a number picks the n-th (from 1) of the siblings
// sharing the name just matched; "p:n" matches prefix p with name n.
#include <cstdlib>
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

constexpr std::size_t kUrlMax = 511;
constexpr std::size_t kIndexDigitsMax = 9;

bool url_name_match(const char *component, const XML_Node *node)
{
    if (std::strchr(component, ':') != nullptr && node->prefix != nullptr) {
        if (node->name == nullptr) return false;
        // First occurrences of both, the name starting right after the
        // ':' that follows the prefix.
        const char *prefix_at = std::strstr(component, node->prefix);
        const char *name_at = std::strstr(component, node->name);
        if (prefix_at == nullptr || name_at == nullptr) return false;
        const char *colon = prefix_at + std::strlen(node->prefix);
        return *colon == ':' && name_at == colon + 1;
    }
    return node->name != nullptr && std::strcmp(component, node->name) == 0;
}

bool all_digits(const char *text) { return text[std::strspn(text, "0123456789")] == '\0'; }

// Splits at dots in place; empty components are skipped.  Returns the
// next component or null at the end.
char *next_component(char *&cursor)
{
    while (*cursor == '.') ++cursor;
    if (*cursor == '\0') return nullptr;
    char *component = cursor;
    while (*cursor != '\0' && *cursor != '.') ++cursor;
    if (*cursor == '.') *cursor++ = '\0';
    return component;
}

}  // namespace

extern "C" SMSUTIL_API uint32_t NDL_XML_GetNodeByUrl(XML_Node *node, const char *url, XML_Node **outNode)
{
    if (node == nullptr || url == nullptr || outNode == nullptr || url[0] == '\0') return XML_ERR_PARAM;
    const std::size_t url_len = std::strlen(url);
    if (url_len > kUrlMax) return XML_ERR_PARAM;
    char copy[kUrlMax + 1];
    std::memcpy(copy, url, url_len + 1);
    char *cursor = copy;

    const char *component = next_component(cursor);
    if (component == nullptr || !url_name_match(component, node)) return XML_ERR_NOT_FOUND;
    XML_Node *current = node;
    const char *last_name = nullptr;  // the first component does not count
    while ((component = next_component(cursor)) != nullptr) {
        if (all_digits(component)) {
            if (last_name == nullptr) return XML_ERR_INDEX;
            if (std::strlen(component) > kIndexDigitsMax) return XML_ERR_NOT_FOUND;
            unsigned long wanted = std::strtoul(component, nullptr, 10);
            if (wanted == 0) return XML_ERR_INDEX;
            XML_Node *at = current;
            for (; at != nullptr; at = at->nextSibling)
                if (url_name_match(last_name, at) && --wanted == 0) break;
            if (at == nullptr) return XML_ERR_NOT_FOUND;
            current = at;
            last_name = nullptr;  // an index is no name: no second index after it
        } else {
            XML_Node *child = current->firstChild;
            while (child != nullptr && !url_name_match(component, child)) child = child->nextSibling;
            if (child == nullptr) return XML_ERR_NOT_FOUND;
            current = child;
            last_name = component;
        }
    }
    *outNode = current;
    return XML_OK;
}
