// Joins the texts of a message's parts into one UTF-8 text.  The message
// interface writes each UCS-2 unit as its own UTF-8 sequence, so a
// character beyond the Basic Multilingual Plane arrives as two three-byte
// surrogate sequences, and a long message may cut the pair between two
// parts.  The joiner sees the parts as one stream: a high half followed by
// a low half becomes the four-byte character, a half without its partner
// (at a missing part, at 8-bit data, at the end) becomes U+FFFD.
#pragma once

#include <cstdint>
#include <span>

namespace smsutil::reassembly {

class TextJoiner {
public:
    // out may be null: the joiner then only counts the bytes it would write.
    TextJoiner(char *out, uint32_t capacity) : out_(out), capacity_(capacity) {}

    void append_text(std::span<const uint8_t> text);
    // 8-bit data: copied as it is, no half carried across it.
    void append_data(std::span<const uint8_t> data);
    // A part that is missing: a waiting high half has no partner.
    void gap() { flush_high(); }
    // Bytes of the whole text; the output is NUL-terminated when it fits.
    uint32_t finish();

private:
    void flush_high();
    void put(const uint8_t *bytes, uint32_t n);
    void put_code_point(uint32_t cp);

    char *out_;
    uint32_t capacity_;
    uint32_t length_ = 0;
    uint32_t high_ = 0;  // a high surrogate waiting for its low half; 0 when none
};

}  // namespace smsutil::reassembly
