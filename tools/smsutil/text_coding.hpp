// How a text goes on the air: GSM 7-bit under a national language, or UCS-2.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "lost_character.hpp"

namespace smsutil::cli {

enum class Coding { Auto, Gsm7, Ucs2 };

struct TextOptions {
    Coding coding = Coding::Auto;
    uint32_t language = 0;  // 0 none, 1 Turkish, 2 Spanish
};

// --coding auto|gsm7|ucs2 and --lang none|turkish|spanish.
void add_text_options(CLI::App &cmd, TextOptions &options);

const char *coding_name(Coding coding);
const char *language_name(uint32_t language);

// 7-bit codes of the text under the language (an escape pair for the
// characters of the shift table); nullopt when a character has no code.
std::optional<std::vector<uint8_t>> utf8_to_gsm7(const std::string &text, uint32_t language);

// The first character with no 7-bit code under the language; nullopt when
// every one has a code.  A character beyond the Basic Multilingual Plane
// never has one: the library would read its four bytes as other characters.
std::optional<LostCharacter> first_character_without_gsm7_code(const std::string &text, uint32_t language);

// Auto becomes GSM 7-bit when every character has a code under the
// language, else UCS-2; the other choices stay as they are.
Coding resolve_coding(const TextOptions &options, const std::string &text);

}  // namespace smsutil::cli
