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

// The library cuts UCS-2 packs every 67 units, and a surrogate pair is two
// of them: a cut there would leave half a character at the end of one part
// and the other half at the start of the next, and neither phone could show
// it.  So texts with such characters are cut here, each part taking as
// many whole characters as fit in 67 units.
Packs split_keeping_pairs(const std::string& text) {
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
    if (out.texts.size() > kMaxPacks) {
        out.texts.clear();
        out.error = "the text needs more than four parts of 67 UCS-2 units";
    }
    return out;
}

}  // namespace

Packs split_packs(const std::string& text, Coding coding, uint32_t language) {
    if (coding == Coding::Ucs2 && has_supplementary_character(text)) return split_keeping_pairs(text);
    Packs out;
    std::array<SmsPack, kMaxPacks> packs{};
    const int32_t pack_coding = coding == Coding::Gsm7 ? SMS_CONTENT_7BIT : SMS_CONTENT_UCS2;
    const int32_t count = sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding,
                                              language, packs.data());
    if (count < 1 || static_cast<size_t>(count) > kMaxPacks) {
        out.error = std::string("sms_util_split_pack refused the text as ") + coding_name(coding) +
                    ": more than four packs, or a character without a code";
        return out;
    }
    std::string joined;
    for (int32_t i = 0; i < count; ++i) {
        const SmsPack& pack = packs[static_cast<size_t>(i)];
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
