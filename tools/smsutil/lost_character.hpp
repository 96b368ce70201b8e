// Naming the character a person would lose, so a refusal says what to
// change rather than only that something is wrong.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace smsutil::cli {

struct LostCharacter {
    size_t position = 0;  // 1-based, counted in characters
    uint32_t code_point = 0;
};

// The first character of meant that does not come back as itself in
// got; nullopt when got holds all of meant (and maybe more).
std::optional<LostCharacter> first_lost_character(std::string_view meant, std::string_view got);

// "'ı' (U+0131)"; control characters by their code alone.
std::string quoted_character(uint32_t code_point);

// "character 5, 'ı' (U+0131)".
std::string describe(const LostCharacter &lost);

}  // namespace smsutil::cli
