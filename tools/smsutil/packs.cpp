#include "packs.hpp"

#include <algorithm>
#include <array>
#include <cstring>

#include "smsutil/smsutil.h"

namespace smsutil::cli {
namespace {

constexpr size_t kMaxPacks = 4;

}  // namespace

Packs split_packs(const std::string& text, Coding coding, uint32_t language) {
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
    }
    return out;
}

}  // namespace smsutil::cli
