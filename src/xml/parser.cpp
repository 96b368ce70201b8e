// A small, lenient, non-validating parser for configuration files:
// elements with attributes, text in elements without child elements,
// skipped comments, processing instructions, XML declaration and document
// type declaration, entities and character references, and namespace
// prefixes split off names.  One pass, no recursion over nesting depth.
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

using smsutil::xml::copy_decoded;

enum Mode : uint32_t {
    kModeMarkup = 0,   // a tag is expected, text is not allowed
    kModeContent = 1,  // right after the ">" of a start tag: text allowed
    kModeAttrs = 2,    // inside a start tag, an attribute follows
};

struct ParseState {
    const char *input;
    const char *cursor;
    const char *tokenStart;
    bool tokenValid;
    bool inputBorrowed;
    std::size_t tokenLength;
    XML_Node *current;  // element most recently linked, or returned to by an end tag
    XML_Node *pending;  // allocated ahead for the next start tag
    bool currentOpen;
    uint32_t mode;
    XML_Node *root;  // first element linked: the caller's result
};

enum class Step { kOk, kEnd, kFail };

bool is_space(char c) { return c == '\n' || c == '\t' || c == '\r' || c == ' '; }

void skip_space(ParseState &s)
{
    while (is_space(*s.cursor)) ++s.cursor;
}

bool starts_with(const char *text, const char *literal)
{
    return std::strncmp(text, literal, std::strlen(literal)) == 0;
}

char ascii_lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// Compares at most the literal's length, stopping at the text's NUL.
bool starts_with_nocase(const char *text, const char *literal)
{
    for (; *literal != '\0'; ++text, ++literal)
        if (*text == '\0' || ascii_lower(*text) != ascii_lower(*literal)) return false;
    return true;
}

bool is_delimiter(const char *p)
{
    switch (*p) {
    case '>':
    case '<':
    case '=':
    case '"':
    case '\'':
    case '\r':
    case ' ':
    case '\n':
    case '\t':
        return true;
    // The closing sequences are looked for only at their first character:
    // this runs for every character of every name and value.
    case ']':
        return starts_with(p, "]]>");
    case '-':
        return starts_with(p, "-->");
    case '/':
        return starts_with(p, "/>");
    default:
        return false;
    }
}

// Comments and processing instructions, each followed by whitespace.  A
// second XML declaration is an error.
bool skip_misc(ParseState &s)
{
    for (;;) {
        const char *c = s.cursor;
        // Called before every token: most tokens start with neither "<!"
        // nor "<?", so the literal comparisons below are skipped for them.
        if (c[0] != '<' || (c[1] != '!' && c[1] != '?')) {
            skip_space(s);
            return true;
        }
        if (starts_with_nocase(c, "<!--")) {
            const char *end = std::strstr(c, "-->");
            // "<!-->" and "<!--->" are no comments; "--->" ends none but "<!---->".
            if (end == nullptr || end - c < 4 || (end - c > 4 && end[-1] == '-')) return false;
            s.cursor = end + 3;
        } else if (starts_with_nocase(c, "<?xml ") || starts_with_nocase(c, "<?xml?")) {
            return false;
        } else if (starts_with(c, "<?")) {
            const char *end = std::strstr(c + 2, "?>");
            if (end == nullptr) return false;
            s.cursor = end + 2;
        } else {
            skip_space(s);
            return true;
        }
        skip_space(s);
    }
}

// Moves past the next token.  False when there is none (end of text or a
// failed skip); a token may have length 0 at a lone "/", "-->" or "]]>",
// which only text content accepts.
bool next_token(ParseState &s)
{
    if (*s.cursor == '\0' || !skip_misc(s) || *s.cursor == '\0') return false;
    const char *c = s.cursor;
    std::size_t len = 0;
    if (*c == '"' || *c == '\'' || *c == '=' || *c == '>' || (*c == '<' && c[1] != '/'))
        len = 1;
    else if (starts_with(c, "</") || starts_with(c, "/>"))
        len = 2;
    else if (*c == '/' || starts_with(c, "-->") || starts_with(c, "]]>"))
        len = 0;
    else
        while (c[len] != '\0' && !is_delimiter(c + len)) ++len;
    s.tokenStart = c;
    s.tokenLength = len;
    s.tokenValid = true;
    s.cursor = c + len;
    return true;
}

bool token_is(const ParseState &s, const char *literal)
{
    return s.tokenLength == std::strlen(literal) && std::memcmp(s.tokenStart, literal, s.tokenLength) == 0;
}

bool read_token(ParseState &s) { return next_token(s) && s.tokenLength > 0; }

// A name is a token that is not itself markup ("<>" or "< ='x'>" name nothing).
bool read_name(ParseState &s) { return read_token(s) && !is_delimiter(s.tokenStart); }

bool token_equals_name(const ParseState &s, const XML_Node *node)
{
    return smsutil::xml::name_equals(node->name, s.tokenStart, s.tokenLength);
}

// Splits a raw attribute name into decoded prefix and name.
bool split_qname_copy(XML_Node *node, const char *raw, std::size_t len)
{
    const auto *colon = static_cast<const char *>(std::memchr(raw, ':', len));
    if (colon == nullptr) return copy_decoded(raw, len, &node->name);
    const auto before = static_cast<std::size_t>(colon - raw);
    if (before == 0 || before == len - 1) return false;
    return copy_decoded(raw, before, &node->prefix) && copy_decoded(colon + 1, len - before - 1, &node->name);
}

// Splits an element's stored (already decoded) name once it is closed,
// after the end tag has been compared with the whole name.
bool split_qname_in_place(XML_Node *node)
{
    char *name = node->name;
    char *colon = name != nullptr ? std::strchr(name, ':') : nullptr;
    if (colon == nullptr) return true;
    const std::size_t len = std::strlen(name);
    if (colon == name || colon == name + len - 1) return false;
    char *prefix = smsutil::xml::copy_bytes(name, static_cast<std::size_t>(colon - name));
    if (prefix == nullptr) return false;
    XML_Free(node->prefix);
    node->prefix = prefix;
    std::memmove(name, colon + 1, std::strlen(colon + 1) + 1);
    return true;
}

void link_pending(ParseState &s, bool open)
{
    XML_Node *node = s.pending;
    if (s.current == nullptr) {
        s.root = node;
    } else if (s.currentOpen) {
        // An open element has no children yet: this is its first.
        node->parent = s.current;
        s.current->firstChild = node;
        s.current->lastChild = node;
    } else {
        node->parent = s.current->parent;
        node->prevSibling = s.current;
        s.current->nextSibling = node;
        if (node->parent != nullptr) node->parent->lastChild = node;
    }
    s.current = node;
    s.pending = nullptr;
    s.currentOpen = open;
}

bool parse_start_tag(ParseState &s)
{
    if (s.pending == nullptr || !read_name(s)) return false;
    if (!copy_decoded(s.tokenStart, s.tokenLength, &s.pending->name) || !read_token(s)) return false;
    if (token_is(s, "/>")) {
        if (!split_qname_in_place(s.pending)) return false;
        link_pending(s, false);
        s.mode = kModeMarkup;
    } else if (token_is(s, ">")) {
        link_pending(s, true);
        s.mode = kModeContent;
    } else {
        link_pending(s, true);  // the token is the first attribute's name
        s.mode = kModeAttrs;
    }
    return true;
}

// One attribute: name, "=", quoted value; added to the current element.
bool parse_attribute(ParseState &s)
{
    const char *name = s.tokenStart;
    if (name == s.input || !is_space(name[-1]) || is_delimiter(name)) return false;
    XML_Node *attr = XML_NewNode(XML_NODE_ATTR);
    if (attr == nullptr) return false;
    bool ok = split_qname_copy(attr, name, s.tokenLength) && read_token(s) && token_is(s, "=") && read_token(s) &&
              (token_is(s, "\"") || token_is(s, "'"));
    if (ok) {
        const char *value = s.cursor;
        const char *close = std::strchr(value, *s.tokenStart);
        ok = close != nullptr && copy_decoded(value, static_cast<std::size_t>(close - value), &attr->value);
        if (ok) s.cursor = close + 1;
    }
    if (ok) ok = XML_AddAttrNode(attr, s.current) == XML_OK;
    if (!ok) XML_FreeSingleNode(attr);
    return ok;
}

bool parse_attrs(ParseState &s)
{
    for (;;) {
        if (!parse_attribute(s)) return false;
        if (!read_token(s) || *s.tokenStart == '<') return false;
        if (!is_delimiter(s.tokenStart)) continue;  // the next attribute's name
        s.mode = kModeContent;
        if (token_is(s, ">")) return true;
        if (!token_is(s, "/>") || !split_qname_in_place(s.current)) return false;
        s.currentOpen = false;
        s.mode = kModeMarkup;
        return true;
    }
}

bool parse_end_tag(ParseState &s)
{
    if (!read_name(s) || s.current == nullptr) return false;
    if (!s.currentOpen) {
        // The last element handled is closed: this end tag is its parent's.
        if (s.current->parent == nullptr) return false;
        s.current = s.current->parent;
    }
    s.currentOpen = false;
    if (!token_equals_name(s, s.current) || !split_qname_in_place(s.current)) return false;
    skip_space(s);
    return read_token(s) && token_is(s, ">");
}

// Text is kept only as the whole content of an element: it must be
// followed directly by the element's end tag.
bool parse_text(ParseState &s)
{
    XML_Node *element = s.current;
    if (element == nullptr || !s.currentOpen) return false;
    const char *start = s.tokenStart;
    while (start > s.input && start[-1] == ' ') --start;
    const char *end = std::strchr(s.tokenStart, '<');
    if (end == nullptr || !copy_decoded(start, static_cast<std::size_t>(end - start), &element->value)) return false;
    s.cursor = end;
    if (!read_token(s) || !token_is(s, "</") || !read_name(s) || !token_equals_name(s, element) ||
        !split_qname_in_place(element) || !read_token(s) || !token_is(s, ">"))
        return false;
    s.currentOpen = false;
    s.mode = kModeMarkup;
    return true;
}

Step parse_step(ParseState &s)
{
    if (*s.cursor == '\0') return Step::kEnd;
    if (s.mode == kModeAttrs) return parse_attrs(s) ? Step::kOk : Step::kFail;
    skip_space(s);
    if (!next_token(s)) return *s.cursor == '\0' ? Step::kOk : Step::kFail;
    bool ok = false;
    if (token_is(s, ">"))
        ok = false;
    else if (token_is(s, "</"))
        ok = parse_end_tag(s);
    else if (token_is(s, "<"))
        ok = parse_start_tag(s);
    else if (token_is(s, "/>") || s.mode != kModeContent)
        ok = false;
    else
        ok = parse_text(s);
    return ok ? Step::kOk : Step::kFail;
}

// From '!' of "<!DOCTYPE": angle brackets nest, double-quoted strings are
// opaque.
bool skip_doctype(ParseState &s)
{
    int depth = 1;
    for (const char *p = s.cursor + 1; *p != '\0'; ++p) {
        if (*p == '<') {
            ++depth;
        } else if (*p == '>') {
            if (--depth == 0) {
                s.cursor = p + 1;
                return true;
            }
        } else if (*p == '"') {
            p = std::strchr(p + 1, '"');
            if (p == nullptr) return false;
        }
    }
    return false;
}

bool parse_prolog(ParseState &s)
{
    skip_space(s);
    if (starts_with(s.cursor, "\xEF\xBB\xBF")) s.cursor += 3;
    if (starts_with(s.cursor, "<?xml ")) {
        const char *end = std::strstr(s.cursor, "?>");
        if (end == nullptr) return false;
        s.cursor = end + 2;
        skip_space(s);
    }
    if (!skip_misc(s)) return false;
    if (starts_with(s.cursor, "<!DOCTYPE") && !skip_doctype(s)) return false;
    skip_space(s);
    return skip_misc(s);
}

uint32_t parse_doc(ParseState &s, XML_Node **out)
{
    s.pending = XML_NewNode(XML_NODE_ELEMENT);
    if (s.pending == nullptr) return XML_ERR_NO_MEMORY;
    bool ok = parse_prolog(s) && *s.cursor != '\0';
    while (ok) {
        const Step step = parse_step(s);
        if (step == Step::kEnd) break;
        if (step == Step::kFail) {
            ok = false;
        } else if (*s.cursor != '\0' && s.mode != kModeAttrs && s.pending == nullptr) {
            s.pending = XML_NewNode(XML_NODE_ELEMENT);
            ok = s.pending != nullptr;
        }
    }
    // Outer elements may stay open at the end; the last one handled may not.
    ok = ok && s.root != nullptr && !s.currentOpen;
    XML_FreeNode(s.pending);
    s.pending = nullptr;
    if (!ok) {
        XML_FreeNode(s.root);
        return XML_ERR_SYNTAX;
    }
    *out = s.root;
    return XML_OK;
}

}  // namespace

namespace smsutil::xml {

uint32_t parse_document(const char *text, bool borrowed, XML_Node **out)
{
    auto *state = static_cast<ParseState *>(alloc_zeroed(sizeof(ParseState)));
    if (state == nullptr) return XML_ERR_NO_MEMORY;
    state->input = text;
    state->cursor = text;
    state->inputBorrowed = borrowed;
    const uint32_t rc = parse_doc(*state, out);
    XML_Free(state);
    return rc;
}

}  // namespace smsutil::xml

extern "C" SMSUTIL_API uint32_t NDL_XML_Parse(const char *text, XML_Node **outRoot)
{
    if (text == nullptr || text[0] == '\0' || outRoot == nullptr) return XML_ERR_PARAM;
    *outRoot = nullptr;
    return smsutil::xml::parse_document(text, true, outRoot);
}
