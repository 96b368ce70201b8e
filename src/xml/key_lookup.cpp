// Key lookup: a dotted path whose segments may select an element by an
// attribute ("a.b[id=7].c") and whose last bracket may name an attribute
// to read ("a.b[id]", "a.b[id=7][name]").  Segments, conditions and
// element names longer than their working limits are refused rather than
// cut, so a lookup never answers for a key it did not read whole.
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

using smsutil::xml::find_by_path;

constexpr std::size_t kSegmentMax = 255;
constexpr std::size_t kConditionMax = 127;
constexpr std::size_t kElementNameMax = 127;
constexpr int kFound = 0;
constexpr int kFailed = -1;

// Copies text (nothing for null) when it fits with its terminator.
int copy_out(const char *text, char *out, std::size_t out_size)
{
    if (text == nullptr) return kFound;
    const std::size_t len = std::strlen(text);
    if (len >= out_size) return kFailed;
    std::memcpy(out, text, len + 1);
    return kFound;
}

struct Condition {
    const char *attr = nullptr;  // attribute name, not terminated
    std::size_t attr_len = 0;
    const char *value = nullptr;  // value after "=", or null for any value
    std::size_t value_len = 0;
};

Condition split_condition(const char *text, std::size_t len, bool allow_value)
{
    Condition c;
    c.attr = text;
    c.attr_len = len;
    const auto *eq = allow_value ? static_cast<const char *>(std::memchr(text, '=', len)) : nullptr;
    if (eq != nullptr) {
        c.attr_len = static_cast<std::size_t>(eq - text);
        c.value = eq + 1;
        c.value_len = len - c.attr_len - 1;
    }
    return c;
}

// First node of the level from node on, named like node, carrying the
// condition's attribute (any prefix) with the condition's value.
const XML_Node *select_by_condition(const XML_Node *node, const Condition &c)
{
    char attr[kConditionMax + 1];
    char value[kConditionMax + 1];
    std::memcpy(attr, c.attr, c.attr_len);
    attr[c.attr_len] = '\0';
    if (c.value != nullptr) {
        std::memcpy(value, c.value, c.value_len);
        value[c.value_len] = '\0';
    }
    return NDL_XML_FindNodeByAttr(node, node->name, attr, c.value != nullptr ? value : nullptr);
}

// Keys with brackets; out has been emptied and is written only on success.
int lookup_bracketed(const XML_Node *root, const char *key, char *out, std::size_t out_size)
{
    const char *open = std::strchr(key, '[');
    const char *close = std::strchr(key, ']');
    if (close == nullptr || close < open) return kFailed;
    const char *segment = key;
    const XML_Node *search = root;
    const XML_Node *match = nullptr;
    Condition last;
    for (;;) {
        const auto segment_len = static_cast<std::size_t>(open - segment);
        const auto condition_len = static_cast<std::size_t>(close - open - 1);
        if (segment_len > kSegmentMax || condition_len > kConditionMax) return kFailed;
        const XML_Node *node = find_by_path(search, segment, segment_len);
        if (node == nullptr || std::strlen(node->name) > kElementNameMax) return kFailed;
        last = split_condition(open + 1, condition_len, true);
        match = select_by_condition(node, last);
        if (match == nullptr) return kFailed;

        const char *after = close + 1;
        if (*after == '\0') {
            segment = after;
            break;
        }
        if (*after == '.') {
            ++after;
        } else if (*after == '[' && std::strchr(after + 1, ']') != nullptr) {
            // "[cond][name]": the second bracket names an attribute of the
            // match; the rest of the key is not read.
            const char *name_end = std::strchr(after + 1, ']');
            const auto name_len = static_cast<std::size_t>(name_end - after - 1);
            if (name_len > kConditionMax) return kFailed;
            last = split_condition(after + 1, name_len, false);
            segment = "";
            break;
        }
        segment = after;
        open = std::strchr(segment, '[');
        if (open == nullptr) break;
        close = std::strchr(open, ']');
        if (close == nullptr) return kFailed;
        search = match->firstChild;
    }

    if (*segment != '\0') {
        const std::size_t rest_len = std::strlen(segment);
        if (rest_len > kSegmentMax) return kFailed;
        const XML_Node *node = find_by_path(match->firstChild, segment, rest_len);
        if (node == nullptr || node->value == nullptr) return kFailed;
        return copy_out(node->value, out, out_size);
    }
    if (last.value != nullptr) return copy_out(match->value, out, out_size);
    char attr_name[kConditionMax + 1];
    std::memcpy(attr_name, last.attr, last.attr_len);
    attr_name[last.attr_len] = '\0';
    const char *value = nullptr;
    if (NDL_XML_GetAttr(match, nullptr, attr_name, &value) != XML_OK) return kFailed;
    return copy_out(value, out, out_size);
}

int lookup(const XML_Node *root, const char *key, char *out, std::size_t out_size)
{
    if (key == nullptr || root == nullptr || out == nullptr || out_size == 0) return kFailed;
    out[0] = '\0';
    if (std::strchr(key, '[') == nullptr) {
        const std::size_t len = std::strlen(key);
        if (len > kSegmentMax) return kFailed;
        const XML_Node *node = find_by_path(root, key, len);
        if (node == nullptr) return kFailed;
        return copy_out(node->value, out, out_size);
    }
    const int rc = lookup_bracketed(root, key, out, out_size);
    if (rc != kFound) out[0] = '\0';
    return rc;
}

int lookup_file(const char *file, const char *key, char *out, std::size_t out_size)
{
    if (key == nullptr || file == nullptr || out == nullptr || out_size == 0) return kFailed;
    out[0] = '\0';
    XML_Node *root = nullptr;
    if (NDL_XML_ParseFile(file, &root) != XML_OK) return kFailed;
    const int rc = lookup(root, key, out, out_size);
    // The whole top-level chain: a file may hold more than one element.
    XML_FreeNode(root);
    return rc;
}

// The plain forms trust the caller's buffer to hold any value.
constexpr std::size_t kUnbounded = static_cast<std::size_t>(-1);

}  // namespace

extern "C" SMSUTIL_API int NDL_XML_GetNodeOrAttr_Node(const XML_Node *root, const char *key, char *outText)
{
    return lookup(root, key, outText, kUnbounded);
}

extern "C" SMSUTIL_API int NDL_XML_GetNodeOrAttr(const char *file, const char *key, char *outText)
{
    return lookup_file(file, key, outText, kUnbounded);
}

extern "C" SMSUTIL_API int NDL_XML_GetNodeOrAttr_NodeEx(const XML_Node *root, const char *key, char *outText,
                                                        size_t outSize)
{
    return lookup(root, key, outText, outSize);
}

extern "C" SMSUTIL_API int NDL_XML_GetNodeOrAttrEx(const char *file, const char *key, char *outText, size_t outSize)
{
    return lookup_file(file, key, outText, outSize);
}
