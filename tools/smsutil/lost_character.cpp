#include "lost_character.hpp"

#include <array>
#include <cstdio>

#include "surrogate_text.hpp"

namespace smsutil::cli {

std::optional<LostCharacter> first_lost_character(std::string_view meant, std::string_view got)
{
    size_t position = 1;
    size_t at_got = 0;
    for (size_t at_meant = 0; at_meant < meant.size(); ++position) {
        const Utf8Character m = utf8_character_at(meant, at_meant);
        if (at_got >= got.size()) return LostCharacter{position, m.code_point};
        const Utf8Character g = utf8_character_at(got, at_got);
        if (m.code_point != g.code_point || meant.substr(at_meant, m.length) != got.substr(at_got, g.length)) {
            return LostCharacter{position, m.code_point};
        }
        at_meant += m.length;
        at_got += g.length;
    }
    return std::nullopt;
}

std::string quoted_character(uint32_t code_point)
{
    std::array<char, 16> code{};
    std::snprintf(code.data(), code.size(), "U+%04X", static_cast<unsigned>(code_point));
    if (code_point < 0x20 || code_point == 0x7F) return code.data();
    return "'" + utf8_of(code_point) + "' (" + code.data() + ")";
}

std::string describe(const LostCharacter &lost)
{
    return "character " + std::to_string(lost.position) + ", " + quoted_character(lost.code_point);
}

}  // namespace smsutil::cli
