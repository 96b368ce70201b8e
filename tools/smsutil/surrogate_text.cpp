#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

constexpr uint32_t kHighSurrogateFirst = 0xD800;
constexpr uint32_t kLowSurrogateFirst = 0xDC00;
constexpr uint32_t kLowSurrogateLast = 0xDFFF;
constexpr uint32_t kFirstSupplementary = 0x10000;
constexpr uint32_t kLastCodePoint = 0x10FFFF;

bool is_continuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

// A surrogate as the library writes it: ED A0..BF xx.  Zero when the three
// bytes at pos are something else.
uint32_t surrogate_at(std::string_view bytes, size_t pos)
{
    if (pos + 3 > bytes.size()) return 0;
    const auto b0 = static_cast<unsigned char>(bytes[pos]);
    const auto b1 = static_cast<unsigned char>(bytes[pos + 1]);
    const auto b2 = static_cast<unsigned char>(bytes[pos + 2]);
    if (b0 != 0xED || b1 < 0xA0 || b1 > 0xBF || !is_continuation(b2)) return 0;
    return 0xD000U | ((b1 & 0x3FU) << 6) | (b2 & 0x3FU);
}

bool is_high(uint32_t unit) { return unit >= kHighSurrogateFirst && unit < kLowSurrogateFirst; }
bool is_low(uint32_t unit) { return unit >= kLowSurrogateFirst && unit <= kLowSurrogateLast; }

}  // namespace

Utf8Character utf8_character_at(std::string_view text, size_t pos)
{
    const auto lead = static_cast<unsigned char>(text[pos]);
    if (lead < 0x80) return {lead, 1};
    struct Lead {
        size_t length;
        uint32_t value;
        uint32_t smallest;  // below it the sequence is an overlong form
    };
    Lead form{};
    if (lead >= 0xC2 && lead <= 0xDF) {
        form = {2, lead & 0x1FU, 0x80};
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        form = {3, lead & 0x0FU, 0x800};
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        form = {4, lead & 0x07U, kFirstSupplementary};
    } else {
        return {kReplacementCharacter, 1};
    }
    const size_t length = form.length;
    uint32_t value = form.value;
    const uint32_t smallest = form.smallest;
    if (pos + length > text.size()) return {kReplacementCharacter, 1};
    for (size_t i = 1; i < length; ++i) {
        const auto byte = static_cast<unsigned char>(text[pos + i]);
        if (!is_continuation(byte)) return {kReplacementCharacter, 1};
        value = (value << 6) | (byte & 0x3FU);
    }
    if (value < smallest || value > kLastCodePoint || (value >= kHighSurrogateFirst && value <= kLowSurrogateLast)) {
        return {kReplacementCharacter, 1};
    }
    return {value, length};
}

std::string utf8_of(uint32_t code_point)
{
    if (code_point > kLastCodePoint || (code_point >= kHighSurrogateFirst && code_point <= kLowSurrogateLast)) {
        code_point = kReplacementCharacter;
    }
    std::string out;
    if (code_point < 0x80) {
        out += static_cast<char>(code_point);
    } else if (code_point < 0x800) {
        out += static_cast<char>(0xC0U | (code_point >> 6));
        out += static_cast<char>(0x80U | (code_point & 0x3FU));
    } else if (code_point < kFirstSupplementary) {
        out += static_cast<char>(0xE0U | (code_point >> 12));
        out += static_cast<char>(0x80U | ((code_point >> 6) & 0x3FU));
        out += static_cast<char>(0x80U | (code_point & 0x3FU));
    } else {
        out += static_cast<char>(0xF0U | (code_point >> 18));
        out += static_cast<char>(0x80U | ((code_point >> 12) & 0x3FU));
        out += static_cast<char>(0x80U | ((code_point >> 6) & 0x3FU));
        out += static_cast<char>(0x80U | (code_point & 0x3FU));
    }
    return out;
}

size_t utf8_character_count(std::string_view text)
{
    size_t count = 0;
    for (size_t pos = 0; pos < text.size(); pos += utf8_character_at(text, pos).length) ++count;
    return count;
}

size_t ucs2_unit_count(std::string_view text)
{
    size_t units = 0;
    for (size_t pos = 0; pos < text.size();) {
        const Utf8Character c = utf8_character_at(text, pos);
        units += c.code_point >= kFirstSupplementary ? 2 : 1;
        pos += c.length;
    }
    return units;
}

bool has_supplementary_character(std::string_view text)
{
    for (size_t pos = 0; pos < text.size();) {
        const Utf8Character c = utf8_character_at(text, pos);
        if (c.code_point >= kFirstSupplementary) return true;
        pos += c.length;
    }
    return false;
}

std::string to_library_utf8(std::string_view text)
{
    std::string out;
    for (size_t pos = 0; pos < text.size();) {
        const Utf8Character c = utf8_character_at(text, pos);
        if (c.code_point >= kFirstSupplementary) {
            const uint32_t offset = c.code_point - kFirstSupplementary;
            // utf8_of refuses surrogates, so the two units are written by hand.
            for (uint32_t unit : {kHighSurrogateFirst | (offset >> 10), kLowSurrogateFirst | (offset & 0x3FFU)}) {
                out += static_cast<char>(0xE0U | (unit >> 12));
                out += static_cast<char>(0x80U | ((unit >> 6) & 0x3FU));
                out += static_cast<char>(0x80U | (unit & 0x3FU));
            }
        } else {
            out.append(text.substr(pos, c.length));
        }
        pos += c.length;
    }
    return out;
}

std::string from_library_utf8(std::string_view bytes)
{
    std::string out;
    for (size_t pos = 0; pos < bytes.size();) {
        const uint32_t unit = surrogate_at(bytes, pos);
        if (unit == 0) {
            out += bytes[pos++];
            continue;
        }
        const uint32_t next = is_high(unit) ? surrogate_at(bytes, pos + 3) : 0;
        if (is_low(next)) {
            out += utf8_of(kFirstSupplementary + ((unit - kHighSurrogateFirst) << 10) + (next - kLowSurrogateFirst));
            pos += 6;
        } else {
            out += utf8_of(kReplacementCharacter);
            pos += 3;
        }
    }
    return out;
}

}  // namespace smsutil::cli
