// Hexadecimal text as modems print PDUs, and the small text helpers the
// commands share.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace smsutil::cli {

// Octets of an even-length hexadecimal text (either case); nullopt for an
// odd length or any other character.
std::optional<std::vector<uint8_t>> hex_to_octets(std::string_view text);

// "'z' (U+007A) at column 5 is not a hexadecimal digit" for the first
// such character; nullopt when there is none.
std::optional<std::string> non_hex_character(std::string_view text);

// Lowercase hexadecimal, two characters per octet.
std::string octets_to_hex(std::span<const uint8_t> octets);

// The text without leading and trailing blanks, tabs, CR and LF.
std::string_view trim(std::string_view text);

}  // namespace smsutil::cli
