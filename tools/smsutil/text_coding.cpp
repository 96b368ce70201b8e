#include "text_coding.hpp"

#include <cstdint>

#include "option_values.hpp"
#include "smsutil/smsutil.h"
#include "surrogate_text.hpp"

namespace smsutil::cli {

// The names stand in the order of the values they take.
void add_text_options(CLI::App &cmd, TextOptions &options)
{
    cmd.add_option("--coding", options.coding, "auto (GSM 7-bit when every character fits, else UCS-2), gsm7, ucs2")
        ->transform(one_of("--coding", {"auto", "gsm7", "ucs2"}))
        ->default_str("auto");
    cmd.add_option("--lang", options.language, "National language of the 7-bit text: none, turkish, spanish")
        ->transform(one_of("--lang", {"none", "turkish", "spanish"}))
        ->default_str("none");
}

const char *coding_name(Coding coding)
{
    switch (coding) {
    case Coding::Gsm7:
        return "gsm7";
    case Coding::Ucs2:
        return "ucs2";
    default:
        return "auto";
    }
}

const char *language_name(uint32_t language)
{
    switch (language) {
    case 0:
        return "none";
    case 1:
        return "turkish";
    case 2:
        return "spanish";
    default:
        return "unknown";
    }
}

std::optional<std::vector<uint8_t>> utf8_to_gsm7(const std::string &text, uint32_t language)
{
    // A character takes two codes at most (an escape pair).
    const size_t capacity = 2 * text.size() + 1;
    if (capacity > INT32_MAX) return std::nullopt;
    std::vector<uint8_t> codes(capacity, 0);
    uint32_t length = 0;
    if (UTF8_TO_7BIT(text.c_str(), codes.data(), static_cast<int32_t>(capacity), &length, language) != 0) {
        return std::nullopt;
    }
    codes.resize(length);
    return codes;
}

std::optional<LostCharacter> first_character_without_gsm7_code(const std::string &text, uint32_t language)
{
    size_t position = 1;
    for (size_t pos = 0; pos < text.size(); ++position) {
        const Utf8Character c = utf8_character_at(text, pos);
        if (c.code_point > 0xFFFF || !utf8_to_gsm7(text.substr(pos, c.length), language)) {
            return LostCharacter{position, c.code_point};
        }
        pos += c.length;
    }
    return std::nullopt;
}

Coding resolve_coding(const TextOptions &options, const std::string &text)
{
    if (options.coding != Coding::Auto) return options.coding;
    return first_character_without_gsm7_code(text, options.language) ? Coding::Ucs2 : Coding::Gsm7;
}

}  // namespace smsutil::cli
