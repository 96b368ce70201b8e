#include "reassembly/text_join.hpp"

#include <cstring>

namespace smsutil::reassembly {
namespace {

constexpr uint32_t kReplacement = 0xFFFD;

// The 16-bit unit of a three-byte sequence ED A0..BF 80..BF, or 0 when the
// bytes at pos are not one.
uint32_t surrogate_at(std::span<const uint8_t> text, std::size_t pos)
{
    if (pos + 3 > text.size()) return 0;
    const uint8_t b0 = text[pos], b1 = text[pos + 1], b2 = text[pos + 2];
    if (b0 != 0xED || (b1 & 0xE0) != 0xA0 || (b2 & 0xC0) != 0x80) return 0;
    return 0xD000U | ((b1 & 0x3FU) << 6) | (b2 & 0x3FU);
}

bool is_high(uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }

}  // namespace

void TextJoiner::put(const uint8_t *bytes, uint32_t n)
{
    // One byte stays free for the NUL; past the capacity only the count grows.
    if (out_ != nullptr && length_ + 1 < capacity_) {
        const uint32_t room = capacity_ - 1 - length_;
        std::memcpy(out_ + length_, bytes, n < room ? n : room);
    }
    length_ += n;
}

void TextJoiner::put_code_point(uint32_t cp)
{
    uint8_t bytes[4];
    if (cp < 0x10000) {
        bytes[0] = static_cast<uint8_t>(0xE0 | (cp >> 12));
        bytes[1] = static_cast<uint8_t>(0x80 | ((cp >> 6) & 0x3F));
        bytes[2] = static_cast<uint8_t>(0x80 | (cp & 0x3F));
        put(bytes, 3);
        return;
    }
    bytes[0] = static_cast<uint8_t>(0xF0 | (cp >> 18));
    bytes[1] = static_cast<uint8_t>(0x80 | ((cp >> 12) & 0x3F));
    bytes[2] = static_cast<uint8_t>(0x80 | ((cp >> 6) & 0x3F));
    bytes[3] = static_cast<uint8_t>(0x80 | (cp & 0x3F));
    put(bytes, 4);
}

void TextJoiner::flush_high()
{
    if (high_ == 0) return;
    high_ = 0;
    put_code_point(kReplacement);
}

void TextJoiner::append_text(std::span<const uint8_t> text)
{
    std::size_t pos = 0;
    while (pos < text.size()) {
        // Surrogates are the only sequences that start with 0xED below
        // U+E000: everything before the next one is copied in one go.
        const void *lead = std::memchr(text.data() + pos, 0xED, text.size() - pos);
        const std::size_t end =
            lead != nullptr ? static_cast<std::size_t>(static_cast<const uint8_t *>(lead) - text.data()) : text.size();
        if (end > pos) {
            flush_high();
            put(text.data() + pos, static_cast<uint32_t>(end - pos));
            pos = end;
            continue;
        }
        const uint32_t unit = surrogate_at(text, pos);
        if (unit == 0) {
            flush_high();
            put(&text[pos], 1);
            ++pos;
            continue;
        }
        pos += 3;
        if (is_high(unit)) {
            flush_high();
            high_ = unit;
        } else if (high_ != 0) {
            put_code_point(0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
            high_ = 0;
        } else {
            put_code_point(kReplacement);
        }
    }
}

void TextJoiner::append_data(std::span<const uint8_t> data)
{
    flush_high();
    put(data.data(), static_cast<uint32_t>(data.size()));
}

uint32_t TextJoiner::finish()
{
    flush_high();
    if (out_ != nullptr && capacity_ > 0) out_[length_ < capacity_ ? length_ : capacity_ - 1] = '\0';
    return length_;
}

}  // namespace smsutil::reassembly
