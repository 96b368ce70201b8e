#include "hex.hpp"

#include "lost_character.hpp"
#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

int nibble_of(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

std::optional<std::vector<uint8_t>> hex_to_octets(std::string_view text)
{
    if (text.size() % 2 != 0) return std::nullopt;
    std::vector<uint8_t> octets;
    octets.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size(); i += 2) {
        const int high = nibble_of(text[i]);
        const int low = nibble_of(text[i + 1]);
        if (high < 0 || low < 0) return std::nullopt;
        octets.push_back(static_cast<uint8_t>(high << 4 | low));
    }
    return octets;
}

std::optional<std::string> non_hex_character(std::string_view text)
{
    // Every character before the first stray one is a digit, one byte
    // each: the byte's place is the column.
    for (size_t pos = 0; pos < text.size(); ++pos) {
        if (nibble_of(text[pos]) >= 0) continue;
        return quoted_character(utf8_character_at(text, pos).code_point) + " at column " + std::to_string(pos + 1) +
               " is not a hexadecimal digit";
    }
    return std::nullopt;
}

std::string octets_to_hex(std::span<const uint8_t> octets)
{
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(octets.size() * 2);
    for (uint8_t o : octets) {
        text.push_back(kDigits[o >> 4]);
        text.push_back(kDigits[o & 0x0F]);
    }
    return text;
}

std::string_view trim(std::string_view text)
{
    constexpr std::string_view kBlanks = " \t\r\n";
    const size_t first = text.find_first_not_of(kBlanks);
    if (first == std::string_view::npos) return {};
    const size_t last = text.find_last_not_of(kBlanks);
    return text.substr(first, last - first + 1);
}

}  // namespace smsutil::cli
