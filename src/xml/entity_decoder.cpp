// Entity and character-reference decoding for names, text and attribute
// values.  Decoding never lengthens the text, so the copy is sized by the
// raw range.
#include <cstdint>
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

// Whether any byte of word is '&' (the classic zero-byte test on the word
// xor'ed with copies of '&').
template <typename Word>
bool has_ampersand(Word word)
{
    constexpr Word kOnes = static_cast<Word>(~Word{0}) / 0xFF;
    const Word x = word ^ static_cast<Word>(kOnes * '&');
    return static_cast<Word>((x - kOnes) & ~x & (kOnes << 7)) != 0;
}

template <typename Word>
Word load(const char *p)
{
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

template <typename Word>
void store(char *p, Word word)
{
    std::memcpy(p, &word, sizeof word);
}

// Copies text[0, n) to out when it holds no '&', a word at a time; the
// last word overlaps the one before it.  False (out partly written) when
// there is a reference to decode.  Names and values are mostly shorter
// than sixteen bytes, so this beats both a byte loop and the call
// overhead of a library search and copy.
bool copy_plain(const char *text, std::size_t n, char *out)
{
    if (n >= 8) {
        std::size_t i = 0;
        for (; i + 8 < n; i += 8) {
            const auto word = load<std::uint64_t>(text + i);
            if (has_ampersand(word)) return false;
            store(out + i, word);
        }
        const auto last = load<std::uint64_t>(text + n - 8);
        if (has_ampersand(last)) return false;
        store(out + n - 8, last);
        return true;
    }
    if (n >= 4) {
        const auto first = load<std::uint32_t>(text);
        const auto last = load<std::uint32_t>(text + n - 4);
        if (has_ampersand(first) || has_ampersand(last)) return false;
        store(out, first);
        store(out + n - 4, last);
        return true;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (text[i] == '&') return false;
        out[i] = text[i];
    }
    return true;
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

std::size_t decode_into(const char *text, std::size_t n, char *out)
{
    const char *end = text + n;
    char *w = out;
    if (copy_plain(text, n, out)) {
        out[n] = '\0';
        return n;
    }
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

bool copy_decoded(const char *text, std::size_t n, char **out)
{
    if (n == 0) {
        *out = nullptr;
        return true;
    }
    auto *copy = static_cast<char *>(XML_Malloc(n + 1));
    if (copy == nullptr) return false;
    const std::size_t len = decode_into(text, n, copy);
    if (len == kBadReference) {
        XML_Free(copy);
        return false;
    }
    // What decoding saved stays zero, as in a block zeroed up front.
    if (len < n) std::memset(copy + len, 0, n + 1 - len);
    *out = copy;
    return true;
}

}  // namespace smsutil::xml
