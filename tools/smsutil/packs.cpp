#include "packs.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "lost_character.hpp"
#include "smsutil/smsutil.h"
#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

constexpr size_t kMaxPacks = 4;
constexpr size_t kSingleUcs2Units = 70;
constexpr size_t kUcs2UnitsPerPart = 67;
constexpr size_t kSingleGsm7Codes = 160;
constexpr size_t kGsm7CodesPerPart = 153;
constexpr uint8_t kEscape = 0x1B;

Packs too_many_packs(size_t needed, const char *unit)
{
    Packs out;
    out.over_limit = true;
    out.error = "the text needs " + std::to_string(needed) + " parts of up to " + unit + ", more than the limit of " +
                std::to_string(kMaxPacks);
    return out;
}

// Parts the text takes when cut as the library cuts it; 0 when it cannot
// be counted (a character without a 7-bit code).
size_t parts_needed(const std::string &text, Coding coding, uint32_t language)
{
    if (coding == Coding::Ucs2) {
        const size_t characters = utf8_character_count(text);
        return characters <= kSingleUcs2Units ? 1 : (characters + kUcs2UnitsPerPart - 1) / kUcs2UnitsPerPart;
    }
    const auto codes = utf8_to_gsm7(text, language);
    if (!codes) return 0;
    if (codes->size() <= kSingleGsm7Codes) return 1;
    size_t parts = 0;
    for (size_t at = 0; at < codes->size(); ++parts) {
        const size_t left = codes->size() - at;
        // An escape pair stays in one part.
        at += left < kGsm7CodesPerPart                          ? left
              : (*codes)[at + kGsm7CodesPerPart - 1] == kEscape ? kGsm7CodesPerPart - 1
                                                                : kGsm7CodesPerPart;
    }
    return parts;
}

// The library cuts UCS-2 packs every 67 units, and a surrogate pair is two
// of them: a cut there would leave half a character at the end of one part
// and the other half at the start of the next, and neither phone could show
// it.  So texts with such characters are cut here, each part taking as
// many whole characters as fit in 67 units.
Packs split_keeping_pairs(const std::string &text)
{
    Packs out;
    if (ucs2_unit_count(text) <= kSingleUcs2Units) {
        out.texts.push_back(text);
        return out;
    }
    std::string pack;
    size_t units = 0;
    for (size_t pos = 0; pos < text.size();) {
        const Utf8Character c = utf8_character_at(text, pos);
        const size_t needed = c.code_point > 0xFFFF ? 2 : 1;
        if (units + needed > kUcs2UnitsPerPart) {
            out.texts.push_back(pack);
            pack.clear();
            units = 0;
        }
        pack.append(text, pos, c.length);
        units += needed;
        pos += c.length;
    }
    out.texts.push_back(pack);
    if (out.texts.size() > kMaxPacks) return too_many_packs(out.texts.size(), "67 UCS-2 units");
    return out;
}

}  // namespace

Packs split_packs(const std::string &text, Coding coding, uint32_t language)
{
    if (coding == Coding::Ucs2 && has_supplementary_character(text)) return split_keeping_pairs(text);
    Packs out;
    std::array<SmsPack, kMaxPacks> packs{};
    const int32_t pack_coding = coding == Coding::Gsm7 ? SMS_CONTENT_7BIT : SMS_CONTENT_UCS2;
    const int32_t count =
        sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding, language, packs.data());
    if (count < 1 || static_cast<size_t>(count) > kMaxPacks) {
        if (const size_t needed = parts_needed(text, coding, language); needed > kMaxPacks) {
            return too_many_packs(needed, coding == Coding::Gsm7 ? "153 GSM 7-bit codes" : "67 UCS-2 characters");
        }
        out.error = std::string("sms_util_split_pack refused the text as ") + coding_name(coding);
        return out;
    }
    std::string joined;
    for (int32_t i = 0; i < count; ++i) {
        const SmsPack &pack = packs[static_cast<size_t>(i)];
        const size_t length = std::min<size_t>(pack.length, strnlen(pack.content, sizeof pack.content));
        out.texts.emplace_back(pack.content, length);
        joined += out.texts.back();
    }
    if (joined != text) {
        out.texts.clear();
        out.error = std::string("verification failed: the ") + coding_name(coding) + " packs under language " +
                    language_name(language) + " do not add up to the text";
        if (auto lost = first_lost_character(text, joined)) out.error += ": " + describe(*lost) + ", would be lost";
    }
    return out;
}

}  // namespace smsutil::cli
