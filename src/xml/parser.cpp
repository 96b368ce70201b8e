// A small, lenient, non-validating parser for configuration files:
// elements with attributes, text in elements without child elements,
// skipped comments, processing instructions, XML declaration and document
// type declaration, entities and character references, and namespace
// prefixes split off names.  One pass, no recursion over nesting depth.
#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
#include <cstring>
#include <new>

#include "xml/xml_internal.hpp"

namespace {

using smsutil::xml::copy_decoded;
using smsutil::xml::copy_plain;
using smsutil::xml::decode_into;
using smsutil::xml::kBadReference;
using smsutil::xml::node_flags;
using smsutil::xml::node_text_room;
using smsutil::xml::NodeChunk;

// The first node block holds about ten nodes with their values, so that a
// small document takes no more than a kilobyte; each further block is twice
// the one before, up to eight times that, so that a large document costs a
// request per seventy nodes or so while what is left unused at its end
// stays small.  Only a longer name takes a larger block.
constexpr std::size_t kChunkSize = 1000;
constexpr std::size_t kMaxChunkSize = 8 * kChunkSize;
constexpr std::size_t kChunkHeader =
    (sizeof(NodeChunk) + alignof(XML_Node) - 1) / alignof(XML_Node) * alignof(XML_Node);

enum Mode : uint32_t {
    kModeMarkup = 0,   // a tag is expected, text is not allowed
    kModeContent = 1,  // right after the ">" of a start tag: text allowed
    kModeAttrs = 2,    // inside a start tag, an attribute follows
};

struct ParseState {
    const char *input;
    const char *end;  // the text's terminating NUL
    const char *cursor;
    const char *tokenStart;
    bool tokenValid;
    bool inputBorrowed;
    std::size_t tokenLength;
    XML_Node *current;  // element most recently linked, or returned to by an end tag
    XML_Node *pending;  // made by a start tag, not linked yet
    bool currentOpen;
    uint32_t mode;
    XML_Node *root;    // first element linked: the caller's result
    NodeChunk *chunk;  // the block new nodes are carved from (the parser holds a reference)
    char *chunkNext;
    char *chunkEnd;
    // The block before chunk and what is left of it: an element's text
    // still goes there when the element's attributes started a new block.
    // The parser no longer holds it; the element that uses it does.
    NodeChunk *lastChunk;
    char *lastNext;
    char *lastEnd;
    std::size_t chunkSize;  // of the next block
};

enum class Step { kOk, kEnd, kFail };

// Byte classes, looked up once per byte while scanning.  A byte of class 0
// continues a name or value token.
enum ByteClass : uint8_t {
    kSpace = 1,       // whitespace: skipped between tokens
    kStop = 2,        // ends a token: the delimiters and the terminating NUL
    kMaybeClose = 4,  // ']', '-', '/': end a token only as "]]>", "-->", "/>"
};

constexpr auto kByteClass = [] {
    std::array<uint8_t, 256> table{};
    for (const unsigned char c : {'\n', '\t', '\r', ' '}) table[c] = kSpace | kStop;
    for (const unsigned char c : {'>', '<', '=', '"', '\'', '\0'}) table[c] = kStop;
    for (const unsigned char c : {']', '-', '/'}) table[c] = kMaybeClose;
    return table;
}();

uint8_t byte_class(char c) { return kByteClass[static_cast<unsigned char>(c)]; }

bool is_space(char c) { return (byte_class(c) & kSpace) != 0; }

void skip_space(ParseState &s)
{
    const char *p = s.cursor;
    while (is_space(*p)) ++p;
    s.cursor = p;
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

// At "]]>", "-->" or "/>".  Each byte is compared only after the one
// before it matched, so nothing past the text's NUL is read.
bool at_closing_sequence(const char *p)
{
    switch (*p) {
    case ']':
        return p[1] == ']' && p[2] == '>';
    case '-':
        return p[1] == '-' && p[2] == '>';
    case '/':
        return p[1] == '>';
    default:
        return false;
    }
}

bool is_delimiter(const char *p)
{
    const uint8_t cls = byte_class(*p);
    if ((cls & kMaybeClose) != 0) return at_closing_sequence(p);
    return (cls & kStop) != 0 && *p != '\0';
}

using Word = std::uintptr_t;
constexpr Word kLaneOnes = ~Word{0} / 0xFF;
constexpr Word kLaneHigh = kLaneOnes << 7;

// Lanes of word (one byte each) that may end a token: every byte below
// '0' (which holds the NUL, the whitespace, the quotes, '-' and '/'), '<',
// '=', '>' and ']'.  Bytes from 0x80 up never do.  A lane is flagged by
// its high bit; a few plain bytes ('.', '!', ...) are flagged too and are
// sorted out by the byte loop.
Word maybe_stop_lanes(Word word)
{
    const Word low7 = word & ~kLaneHigh;
    const Word below_digits = ~(low7 + kLaneOnes * (0x80 - '0'));
    const Word from_lt = low7 + kLaneOnes * (0x80 - '<');
    const Word below_qmark = ~(low7 + kLaneOnes * (0x80 - '?'));
    const Word bracket = low7 ^ (kLaneOnes * ']');
    const Word is_bracket = ~((bracket + kLaneOnes * 0x7F) | bracket);
    return (below_digits | (from_lt & below_qmark) | is_bracket) & ~word & kLaneHigh;
}

// End of the name or value token starting at p: the first delimiter or
// the text's NUL (at end).  Where a whole word of the text remains, a
// word at a time skips the bytes that cannot end the token.
const char *token_end(const char *p, const char *end)
{
    for (;;) {
        if constexpr (std::endian::native == std::endian::little) {
            while (static_cast<std::size_t>(end - p) >= sizeof(Word)) {
                Word word;
                std::memcpy(&word, p, sizeof word);
                const Word lanes = maybe_stop_lanes(word);
                if (lanes != 0) {
                    p += static_cast<unsigned>(std::countr_zero(lanes)) / 8;
                    break;
                }
                p += sizeof(Word);
            }
        }
        uint8_t cls;
        while ((cls = byte_class(*p)) == 0) ++p;
        if ((cls & kMaybeClose) == 0 || at_closing_sequence(p)) return p;
        ++p;
    }
}

// First c in [p, end), or null: for the short values, texts and names of a
// document an inline scan a word at a time beats the library's search,
// whose call and set-up cost more than the scan.
const char *find_byte(const char *p, const char *end, char c)
{
    if constexpr (std::endian::native == std::endian::little) {
        const Word pattern = kLaneOnes * static_cast<unsigned char>(c);
        while (static_cast<std::size_t>(end - p) >= sizeof(Word)) {
            Word word;
            std::memcpy(&word, p, sizeof word);
            const Word x = word ^ pattern;
            // The lowest flagged lane is always a true match.
            const Word hits = (x - kLaneOnes) & ~x & kLaneHigh;
            if (hits != 0) return p + static_cast<unsigned>(std::countr_zero(hits)) / 8;
            p += sizeof(Word);
        }
    }
    for (; p < end; ++p)
        if (*p == c) return p;
    return nullptr;
}

// Comments and processing instructions, each followed by whitespace.  A
// second XML declaration is an error.  Kept out of the flattened driver
// (as are the prolog and the start of a new node block): rare, and inlined
// they only crowd the hot loop.
[[gnu::noinline]] bool skip_misc(ParseState &s)
{
    for (;;) {
        const char *c = s.cursor;
        // Most positions start with neither "<!" nor "<?": the literal
        // comparisons below are skipped for them.
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
// which only text content accepts.  Comments and processing instructions
// are skipped only where the token would start; whitespace after them,
// and whitespace before anything else, is skipped as well.
bool next_token(ParseState &s)
{
    const char *c = s.cursor;
    std::size_t len = 0;
    // Most tokens are a name or value run, or a one-byte delimiter other
    // than '<', with nothing to skip before them: decided on one byte.
    const uint8_t cls = byte_class(*c);
    if (cls == 0) {
        len = static_cast<std::size_t>(token_end(c, s.end) - c);
    } else if (cls == kStop && *c != '<' && *c != '\0') {
        len = 1;
    } else {
        if (*c == '\0') return false;
        if (c[0] == '<' && (c[1] == '!' || c[1] == '?')) {
            if (!skip_misc(s)) return false;
            c = s.cursor;
        } else {
            while (is_space(*c)) ++c;
            s.cursor = c;
        }
        switch (*c) {
        case '\0':
            return false;
        case '"':
        case '\'':
        case '=':
        case '>':
            len = 1;
            break;
        case '<':
            len = c[1] == '/' ? 2 : 1;
            break;
        case '/':
            len = c[1] == '>' ? 2 : 0;
            break;
        default:
            // A lone "-->" or "]]>" is a token of length 0; anything else
            // runs to the next delimiter.
            if (!at_closing_sequence(c)) len = static_cast<std::size_t>(token_end(c, s.end) - c);
            break;
        }
    }
    s.tokenStart = c;
    s.tokenLength = len;
    s.tokenValid = true;
    s.cursor = c + len;
    return true;
}

template <std::size_t N>
bool token_is(const ParseState &s, const char (&literal)[N])
{
    return s.tokenLength == N - 1 && std::memcmp(s.tokenStart, literal, N - 1) == 0;
}

bool read_token(ParseState &s) { return next_token(s) && s.tokenLength > 0; }

// A name is a token that is not itself markup ("<>" or "< ='x'>" name nothing).
bool read_name(ParseState &s) { return read_token(s) && !is_delimiter(s.tokenStart); }

// Names this long or longer are compared without their stored length.
constexpr uint32_t kLongName = UINT32_MAX;

// Whether the current token is the whole name node was parsed with (only
// elements the parser made and has not split yet are compared).
bool token_equals_name(const ParseState &s, XML_Node *node)
{
    const uint32_t length = smsutil::xml::node_tail(node).parsedNameLength;
    if (length == kLongName) return smsutil::xml::name_equals(node->name, s.tokenStart, s.tokenLength);
    return length == s.tokenLength && smsutil::xml::same_bytes(node->name, s.tokenStart, s.tokenLength);
}

// Splits a raw attribute name of len bytes into decoded prefix and name,
// both kept in the attribute's block (len + 1 bytes of room: decoding never
// lengthens, and the colon's byte takes the prefix's terminator).
bool split_qname_copy(XML_Node *node, const char *raw, std::size_t len)
{
    char *room = node_text_room(node);
    bool has_colon = true;
    if (copy_plain(raw, len, room, &has_colon) && !has_colon) {
        // The usual name: no reference, no prefix, copied in one pass.
        room[len] = '\0';
        node->name = room;
        node_flags(node) |= smsutil::xml::kNameInBlock;
        return true;
    }
    const char *colon = find_byte(raw, raw + len, ':');
    if (colon == nullptr) {
        if (decode_into(raw, len, room) == kBadReference) return false;
        node->name = room;
        node_flags(node) |= smsutil::xml::kNameInBlock;
        return true;
    }
    const auto before = static_cast<std::size_t>(colon - raw);
    if (before == 0 || before == len - 1) return false;
    const std::size_t prefix_len = decode_into(raw, before, room);
    if (prefix_len == kBadReference) return false;
    char *local = room + prefix_len + 1;
    if (decode_into(colon + 1, len - before - 1, local) == kBadReference) return false;
    node->prefix = room;
    node->name = local;
    node_flags(node) |= smsutil::xml::kNameInBlock | smsutil::xml::kPrefixInBlock;
    return true;
}

// Splits an element's stored (already decoded) name once it is closed,
// after the end tag has been compared with the whole name.  The parser
// keeps element names in the node's block: the colon becomes the prefix's
// terminator.
bool split_qname_in_place(XML_Node *node)
{
    if (!smsutil::xml::node_tail(node).nameHasColon) return true;
    char *name = node->name;
    char *colon = name != nullptr ? std::strchr(name, ':') : nullptr;
    if (colon == nullptr) return true;
    if (colon == name || colon[1] == '\0') return false;
    *colon = '\0';
    smsutil::xml::drop_string(node, &node->prefix);
    node->prefix = name;
    node->name = colon + 1;
    node_flags(node) |= smsutil::xml::kPrefixInBlock;
    return true;
}

// Starts a new block of at least need bytes of nodes; the parser's hold on
// the previous one is given up.
[[gnu::noinline]] bool next_chunk(ParseState &s, std::size_t need)
{
    const std::size_t size = std::max(s.chunkSize, kChunkHeader + need);
    s.chunkSize = std::min(s.chunkSize * 2, kMaxChunkSize);
    void *block = XML_Malloc(size);
    if (block == nullptr) return false;
    if (s.chunk != nullptr) smsutil::xml::release_chunk(s.chunk);
    s.lastChunk = s.chunk;
    s.lastNext = s.chunkNext;
    s.lastEnd = s.chunkEnd;
    s.chunk = new (block) NodeChunk{};
    s.chunk->refs.store(1, std::memory_order_relaxed);
    s.chunkNext = static_cast<char *>(block) + kChunkHeader;
    s.chunkEnd = static_cast<char *>(block) + size;
    return true;
}

// Room for size bytes rounded up so that the next node stays aligned.
constexpr std::size_t carved_size(std::size_t size)
{
    constexpr std::size_t align = alignof(XML_Node);
    return (size + align - 1) / align * align;
}

// A zeroed node of the given kind with text_room bytes for its names.
XML_Node *carve_node(ParseState &s, uint32_t kind, std::size_t text_room)
{
    const std::size_t need = carved_size(smsutil::xml::kNodeBlockSize + text_room);
    if (static_cast<std::size_t>(s.chunkEnd - s.chunkNext) < need && !next_chunk(s, need)) return nullptr;
    XML_Node *node = smsutil::xml::init_node(s.chunkNext, kind, s.chunk);
    s.chunkNext += need;
    s.chunk->refs.fetch_add(1, std::memory_order_relaxed);
    return node;
}

// The element of a start tag, named by the current token (decoded, in the
// node's block), made pending.
bool make_pending(ParseState &s)
{
    s.pending = carve_node(s, XML_NODE_ELEMENT, s.tokenLength + 1);
    if (s.pending == nullptr) return false;
    char *room = node_text_room(s.pending);
    smsutil::xml::NodeTail &tail = smsutil::xml::node_tail(s.pending);
    std::size_t length = s.tokenLength;
    if (copy_plain(s.tokenStart, length, room, &tail.nameHasColon)) {
        room[length] = '\0';
    } else {
        length = smsutil::xml::decode_references(s.tokenStart, length, room);
        if (length == kBadReference) return false;
        tail.nameHasColon = std::memchr(room, ':', length) != nullptr;
    }
    tail.parsedNameLength = static_cast<uint32_t>(std::min<std::size_t>(length, kLongName));
    const char *last = s.tokenStart + s.tokenLength - 1;
    // A closing "-->", "]]>" or "/>" can only begin inside the name if its
    // last byte is '-', ']' or '/': after it comes what the text holds.
    tail.plainName = length == s.tokenLength && length < kLongName && (byte_class(*last) & kMaybeClose) == 0;
    s.pending->name = room;
    node_flags(s.pending) |= smsutil::xml::kNameInBlock;
    return true;
}

// Sets node's value to the decoded text[0, n) (null for n == 0).  Most
// values follow their node in the block it was just carved from: the
// value then costs no request of its own and goes back with the node.
// A value whose node lies in an older block, or that does not fit in what
// is left of the node's block, gets a block of its own.
bool store_value(ParseState &s, XML_Node *node, const char *text, std::size_t n)
{
    const NodeChunk *home = smsutil::xml::node_tail(node).chunk;
    char **next = home == s.chunk ? &s.chunkNext : home == s.lastChunk ? &s.lastNext : nullptr;
    const char *end = home == s.chunk ? s.chunkEnd : s.lastEnd;
    const std::size_t need = carved_size(n + 1);
    if (n == 0 || next == nullptr || static_cast<std::size_t>(end - *next) < need)
        return copy_decoded(text, n, &node->value);
    char *room = *next;
    const std::size_t len = decode_into(text, n, room);
    if (len == kBadReference) return false;
    // What decoding saved stays zero, as in a block of its own.
    if (len < n) std::memset(room + len, 0, n + 1 - len);
    *next += need;
    node->value = room;
    node_flags(node) |= smsutil::xml::kValueInBlock;
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

// Sets the current token to text[0, len) and moves the cursor past it.
void take_token(ParseState &s, const char *text, const char *end)
{
    s.tokenStart = text;
    s.tokenLength = static_cast<std::size_t>(end - text);
    s.tokenValid = true;
    s.cursor = end;
}

// Where the common markup after a name or a value starts: past any
// whitespace when a name, ">" or "/>" follows it, else null and the
// caller reads a token.  Whitespace before anything else may hide a
// comment that only the tokenizer skips.
const char *after_space(const char *p)
{
    const char *q = p;
    while (is_space(*q)) ++q;
    if (*q == '>' || (*q == '/' && q[1] == '>') || (q != p && byte_class(*q) == 0)) return q;
    return nullptr;
}

// After the element's name: "/>", ">" or the first attribute's name.
bool finish_start_tag(ParseState &s)
{
    const char *q = after_space(s.cursor);
    if (q != nullptr && byte_class(*q) == 0) {
        take_token(s, q, token_end(q, s.end));
    } else if (q != nullptr) {
        s.tokenStart = q;
        s.tokenLength = *q == '>' ? 1 : 2;
        s.cursor = q + s.tokenLength;
    } else if (!read_token(s)) {
        return false;
    }
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

// The name of a tag, read in place when it follows directly.
bool read_name_in_place(ParseState &s)
{
    const char *c = s.cursor;
    if (byte_class(*c) != 0) return read_name(s);
    take_token(s, c, token_end(c, s.end));
    return true;
}

bool parse_start_tag(ParseState &s) { return read_name_in_place(s) && make_pending(s) && finish_start_tag(s); }

// Two strings compare equal by str_cmp_null.
bool same_text(const char *a, const char *b)
{
    if (a == nullptr || b == nullptr) return a == b;
    for (; *a == *b; ++a, ++b)
        if (*a == '\0') return true;
    return false;
}

// XML_AddAttrNode for a fresh attribute, inlined: the duplicate check and
// the search for the list's end in one walk.
bool add_attr(XML_Node *attr, XML_Node *element)
{
    XML_Node **tail = &element->firstAttr;
    for (; *tail != nullptr; tail = &(*tail)->nextSibling)
        if (same_text((*tail)->prefix, attr->prefix) && same_text((*tail)->name, attr->name)) return false;
    *tail = attr;
    attr->parent = element;
    return true;
}

// One attribute: name, "=", quoted value; added to the current element.
bool parse_attribute(ParseState &s)
{
    const char *name = s.tokenStart;
    if (name == s.input || !is_space(name[-1]) || is_delimiter(name)) return false;
    XML_Node *attr = carve_node(s, XML_NODE_ATTR, s.tokenLength + 1);
    if (attr == nullptr) return false;
    bool ok = split_qname_copy(attr, name, s.tokenLength);
    const char *p = s.cursor;
    if (ok && p[0] == '=' && (p[1] == '"' || p[1] == '\'')) {
        // The usual name="value": the two tokens read in place.
        s.tokenStart = p + 1;
        s.cursor = p + 2;
    } else if (ok) {
        ok = read_token(s) && token_is(s, "=") && read_token(s) && (token_is(s, "\"") || token_is(s, "'"));
    }
    if (ok) {
        const char *value = s.cursor;
        const char *close = find_byte(value, s.end, *s.tokenStart);
        ok = close != nullptr && store_value(s, attr, value, static_cast<std::size_t>(close - value));
        if (ok) s.cursor = close + 1;
    }
    if (ok) ok = add_attr(attr, s.current);
    if (!ok) XML_FreeSingleNode(attr);
    return ok;
}

bool parse_attrs(ParseState &s)
{
    for (;;) {
        if (!parse_attribute(s)) return false;
        const char *q = after_space(s.cursor);
        if (q != nullptr && byte_class(*q) == 0) {
            take_token(s, q, token_end(q, s.end));
            continue;
        }
        if (q != nullptr) {
            s.tokenStart = q;
            s.tokenLength = *q == '>' ? 1 : 2;
            s.cursor = q + s.tokenLength;
        } else if (!read_token(s) || *s.tokenStart == '<') {
            return false;
        }
        if (!is_delimiter(s.tokenStart)) continue;  // the next attribute's name
        s.mode = kModeContent;
        if (token_is(s, ">")) return true;
        if (!token_is(s, "/>") || !split_qname_in_place(s.current)) return false;
        s.currentOpen = false;
        s.mode = kModeMarkup;
        return true;
    }
}

// The ">" of an end tag, after optional whitespace.
bool read_end_close(ParseState &s)
{
    const char *q = s.cursor;
    while (is_space(*q)) ++q;
    if (*q != '>') return read_token(s) && token_is(s, ">");
    s.cursor = q + 1;
    return true;
}

// With the cursor after "</": whether the end tag is element's name
// followed directly by ">", the usual form, which the tokenizer would
// read as the same name.  Moves the cursor past it if so.
bool end_tag_matches(ParseState &s, XML_Node *element)
{
    const smsutil::xml::NodeTail &tail = smsutil::xml::node_tail(element);
    const std::size_t length = tail.parsedNameLength;
    const char *c = s.cursor;
    if (!tail.plainName || static_cast<std::size_t>(s.end - c) <= length || c[length] != '>' ||
        !smsutil::xml::same_bytes(element->name, c, length))
        return false;
    s.cursor = c + length + 1;
    return true;
}

// With the cursor after "</".
bool parse_end_tag(ParseState &s)
{
    XML_Node *element = s.current != nullptr && !s.currentOpen ? s.current->parent : s.current;
    if (element != nullptr && end_tag_matches(s, element)) {
        s.current = element;
        s.currentOpen = false;
        return split_qname_in_place(element);
    }
    if (!read_name_in_place(s) || s.current == nullptr) return false;
    if (!s.currentOpen) {
        // The last element handled is closed: this end tag is its parent's.
        if (s.current->parent == nullptr) return false;
        s.current = s.current->parent;
    }
    s.currentOpen = false;
    if (!token_equals_name(s, s.current) || !split_qname_in_place(s.current)) return false;
    skip_space(s);
    return read_end_close(s);
}

// Text is kept only as the whole content of an element: it must be
// followed directly by the element's end tag.
bool parse_text(ParseState &s)
{
    XML_Node *element = s.current;
    if (element == nullptr || !s.currentOpen) return false;
    const char *start = s.tokenStart;
    while (start > s.input && start[-1] == ' ') --start;
    const char *end = find_byte(s.tokenStart, s.end, '<');
    if (end == nullptr || !store_value(s, element, start, static_cast<std::size_t>(end - start))) return false;
    if (end[1] == '/') {
        s.cursor = end + 2;
        if (end_tag_matches(s, element)) {
            if (!split_qname_in_place(element)) return false;
            s.currentOpen = false;
            s.mode = kModeMarkup;
            return true;
        }
    } else {
        s.cursor = end;
        if (!read_token(s) || !token_is(s, "</")) return false;
    }
    if (!read_name_in_place(s) || !token_equals_name(s, element) || !split_qname_in_place(element) ||
        !read_end_close(s))
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
    const char *c = s.cursor;
    // Text that starts with a plain byte is a token the dispatch below
    // would hand to parse_text, which reads only where it starts.
    if (s.mode == kModeContent && byte_class(*c) == 0) {
        s.tokenStart = c;
        return parse_text(s) ? Step::kOk : Step::kFail;
    }
    // So are "<" and "</" without a comment or processing instruction to
    // skip: the tags are read from here.
    if (c[0] == '<' && c[1] != '!' && c[1] != '?') {
        const bool end_tag = c[1] == '/';
        s.cursor = c + (end_tag ? 2 : 1);
        const bool ok = end_tag ? parse_end_tag(s) : parse_start_tag(s);
        return ok ? Step::kOk : Step::kFail;
    }
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

[[gnu::noinline]] bool parse_prolog(ParseState &s)
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

// Everything the driver calls in this file is inlined into it: the parse
// state then stays in registers across the steps of the hot loop.
[[gnu::flatten]] uint32_t parse_doc(ParseState &s, XML_Node **out)
{
    // The first block is taken before anything is read: running out of
    // memory there is reported as such, not as a syntax error.
    if (!next_chunk(s, 0)) return XML_ERR_NO_MEMORY;
    bool ok = parse_prolog(s) && *s.cursor != '\0';
    for (Step step = Step::kOk; ok && step != Step::kEnd;) {
        step = parse_step(s);
        ok = step != Step::kFail;
    }
    // Outer elements may stay open at the end; the last one handled may not.
    ok = ok && s.root != nullptr && !s.currentOpen;
    XML_FreeNode(s.pending);
    s.pending = nullptr;
    smsutil::xml::release_chunk(s.chunk);
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
    state->end = text + std::strlen(text);
    state->cursor = text;
    state->inputBorrowed = borrowed;
    state->chunkSize = kChunkSize;
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
