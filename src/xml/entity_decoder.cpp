// Entity and character-reference decoding for names, text and attribute
// values.  Decoding never lengthens the text, so the copy is sized by the
// raw range.
#include <cstring>

#include "xml/xml_internal.hpp"

namespace {

constexpr uint32_t kMaxCodePoint = 0x10FFFF;

struct NamedEntity {
    const char *text;
    std::size_t length;
    char replacement;
};

constexpr NamedEntity kNamedEntities[] = {
    {"&amp;", 5, '&'}, {"&lt;", 4, '<'}, {"&gt;", 4, '>'}, {"&apos;", 6, '\''}, {"&quot;", 6, '"'},
};

bool is_xml_char(uint32_t c)
{
    return c == 0x9 || c == 0xA || c == 0xD || (c >= 0x20 && c <= 0xD7FF) || (c >= 0xE000 && c <= 0xFFFD) ||
           (c >= 0x10000 && c <= kMaxCodePoint);
}

int hex_digit(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

std::size_t encode_utf8(uint32_t c, char *out)
{
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    if (c < 0x10000) {
        out[0] = static_cast<char>(0xE0 | (c >> 12));
        out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        out[2] = static_cast<char>(0x80 | (c & 0x3F));
        return 3;
    }
    out[0] = static_cast<char>(0xF0 | (c >> 18));
    out[1] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
    out[2] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[3] = static_cast<char>(0x80 | (c & 0x3F));
    return 4;
}

// "&#" decimal or "&#x" hexadecimal digits up to ";", within [at, end).
// Returns the bytes consumed, 0 when the reference is malformed.
std::size_t decode_char_ref(const char *at, const char *end, uint32_t &code)
{
    const char *p = at + 2;
    const bool hex = p < end && *p == 'x';
    if (hex) ++p;
    const uint32_t base = hex ? 16 : 10;
    code = 0;
    for (; p < end && *p != ';'; ++p) {
        const int digit = hex ? hex_digit(*p) : (*p >= '0' && *p <= '9' ? *p - '0' : -1);
        if (digit < 0) return 0;
        code = code * base + static_cast<uint32_t>(digit);
        if (code > kMaxCodePoint) return 0;
    }
    if (p == end || !is_xml_char(code)) return 0;
    return static_cast<std::size_t>(p - at) + 1;
}

}  // namespace

namespace smsutil::xml {

std::size_t decode_references(const char *text, std::size_t n, char *out)
{
    const char *end = text + n;
    char *w = out;
    for (const char *p = text; p < end;) {
        if (*p != '&') {
            *w++ = *p++;
            continue;
        }
        std::size_t used = 0;
        for (const NamedEntity &e : kNamedEntities) {
            if (static_cast<std::size_t>(end - p) >= e.length && std::memcmp(p, e.text, e.length) == 0) {
                *w++ = e.replacement;
                used = e.length;
                break;
            }
        }
        if (used == 0 && end - p >= 2 && p[1] == '#') {
            uint32_t code = 0;
            used = decode_char_ref(p, end, code);
            if (used != 0) w += encode_utf8(code, w);
        }
        if (used == 0) return kBadReference;
        p += used;
    }
    *w = '\0';
    return static_cast<std::size_t>(w - out);
}

}  // namespace smsutil::xml
