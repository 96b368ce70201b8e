// Copying names and values that need no decoding: inlined where the
// parser copies them, a word at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace smsutil::xml {

// Whether any byte of word is byte (the classic zero-byte test on the
// word xor'ed with copies of byte).
template <typename Word>
inline bool has_byte(Word word, unsigned char byte)
{
    constexpr Word kOnes = static_cast<Word>(~Word{0}) / 0xFF;
    const Word x = word ^ static_cast<Word>(kOnes * byte);
    return static_cast<Word>((x - kOnes) & ~x & (kOnes << 7)) != 0;
}

template <typename Word>
inline bool has_ampersand(Word word)
{
    return has_byte(word, '&');
}

template <typename Word>
inline Word load_word(const char *p)
{
    Word word;
    std::memcpy(&word, p, sizeof word);
    return word;
}

template <typename Word>
inline void store_word(char *p, Word word)
{
    std::memcpy(p, &word, sizeof word);
}

// Copies text[0, n) to out when it holds no '&', a word at a time; the
// last word overlaps the one before it.  False (out partly written) when
// there is a reference to decode.  With colon, also notes in *colon
// whether a ':' was copied (a name's prefix is split at it).  Names and
// values are mostly shorter than sixteen bytes, so this beats both a byte
// loop and the call overhead of a library search and copy.
inline bool copy_plain(const char *text, std::size_t n, char *out, bool *colon = nullptr)
{
    bool seen = false;
    if (n >= 8) {
        std::size_t i = 0;
        for (; i + 8 < n; i += 8) {
            const auto word = load_word<std::uint64_t>(text + i);
            if (has_ampersand(word)) return false;
            if (colon != nullptr) seen = seen || has_byte(word, ':');
            store_word(out + i, word);
        }
        const auto last = load_word<std::uint64_t>(text + n - 8);
        if (has_ampersand(last)) return false;
        if (colon != nullptr) *colon = seen || has_byte(last, ':');
        store_word(out + n - 8, last);
        return true;
    }
    if (n >= 4) {
        const auto first = load_word<std::uint32_t>(text);
        const auto last = load_word<std::uint32_t>(text + n - 4);
        if (has_ampersand(first) || has_ampersand(last)) return false;
        if (colon != nullptr) *colon = has_byte(first, ':') || has_byte(last, ':');
        store_word(out, first);
        store_word(out + n - 4, last);
        return true;
    }
    for (std::size_t i = 0; i < n; ++i) {
        if (text[i] == '&') return false;
        seen = seen || text[i] == ':';
        out[i] = text[i];
    }
    if (colon != nullptr) *colon = seen;
    return true;
}

// Whether a[0, n) and b[0, n) hold the same bytes, compared like
// copy_plain copies: a word at a time, the last word overlapping.
inline bool same_bytes(const char *a, const char *b, std::size_t n)
{
    if (n >= 8) {
        for (std::size_t i = 0; i + 8 < n; i += 8)
            if (load_word<std::uint64_t>(a + i) != load_word<std::uint64_t>(b + i)) return false;
        return load_word<std::uint64_t>(a + n - 8) == load_word<std::uint64_t>(b + n - 8);
    }
    if (n >= 4)
        return load_word<std::uint32_t>(a) == load_word<std::uint32_t>(b) &&
               load_word<std::uint32_t>(a + n - 4) == load_word<std::uint32_t>(b + n - 4);
    for (std::size_t i = 0; i < n; ++i)
        if (a[i] != b[i]) return false;
    return true;
}

}  // namespace smsutil::xml
