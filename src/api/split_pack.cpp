// Cutting a long UTF-8 text into the packs of a concatenated series.
#include <cstring>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"

namespace {

// The exported function its helpers report for.
constexpr const char kSplitPack[] = "sms_util_split_pack";

constexpr int32_t kUcs2Single = 70;
constexpr int32_t kUcs2PerPack = 67;
constexpr uint32_t k7BitSingle = 160;
constexpr uint32_t k7BitPerPack = 153;
constexpr int32_t k7BitWorkCapacity = 1408;
constexpr uint8_t kEscape = 0x1B;
constexpr std::size_t kMaxPackText = SMS_PACK_CONTENT_SIZE - 1;

// The whole text as the only pack; it must fit the pack as it is.
int32_t single_pack(const char *text, SmsPack *pRes)
{
    const std::size_t len = strnlen(text, kMaxPackText + 1);
    if (len > kMaxPackText) {
        SMS_TRACE_AS(kSplitPack, "The text does not fit one pack!\n\n");
        return -1;
    }
    std::memcpy(pRes[0].content, text, len);
    pRes[0].content[len] = '\0';
    pRes[0].length = static_cast<uint32_t>(len);
    SMS_TRACE_AS(kSplitPack, "ret = [%d]\n\n", 1);
    return 1;
}

int32_t split_ucs2(const char *text, SmsPack *pRes)
{
    const int32_t count = MultiByte_WideChar(text);
    if (count <= kUcs2Single) return single_pack(text, pRes);
    const int32_t packs = count / kUcs2PerPack + (count % kUcs2PerPack != 0 ? 1 : 0);
    if (packs > SMS_MAX_PACKS) return -1;
    const char *p = text;
    for (int32_t k = 0; k < packs; ++k) {
        // 67 characters of at most three bytes always fit a pack; the last
        // pack takes the rest, which is shorter.
        std::size_t bytes =
            k + 1 < packs ? static_cast<std::size_t>(find_utf8_count(kUcs2PerPack, p)) : strnlen(p, kMaxPackText);
        std::memcpy(pRes[k].content, p, bytes);
        pRes[k].content[bytes] = '\0';
        pRes[k].length = static_cast<uint32_t>(bytes);
        p += bytes;
    }
    SMS_TRACE_AS(kSplitPack, "ret = [%d]\n\n", packs);
    return packs;
}

// 7-bit codes back to UTF-8 into one pack.
bool fill_pack(const uint8_t *codes, uint32_t n, uint32_t coding, SmsPack &pack, int32_t k)
{
    if (BIT7_TO_UTF8(codes, static_cast<int32_t>(n), pack.content, SMS_PACK_CONTENT_SIZE, coding) != 0) {
        SMS_TRACE_AS(kSplitPack, "BIT7_TO_UTF8 function run unsuccessfully!\n\n");
        return false;
    }
    pack.length = static_cast<uint32_t>(strnlen(pack.content, sizeof pack.content));
    SMS_TRACE_AS(kSplitPack, "pRes[%d].length = [%d]\n\n", k, static_cast<int>(pack.length));
    return true;
}

int32_t split_7bit(const char *text, uint32_t coding, SmsPack *pRes)
{
    uint8_t codes[k7BitWorkCapacity + 1] = {};
    uint32_t n = 0;
    const int32_t ret = UTF8_TO_7BIT(text, codes, k7BitWorkCapacity, &n, coding);
    if (ret != 0) {
        SMS_TRACE_AS(kSplitPack, "UTF8_TO_7BIT function run unsuccessfully!\n\n");
        return ret;
    }
    SMS_TRACE_AS(kSplitPack, "sms_length = [%d]\n\n", static_cast<int>(n));
    if (n <= k7BitSingle) return single_pack(text, pRes);

    uint32_t pos = 0;
    int32_t k = 0;
    for (;;) {
        const uint32_t left = n - pos;
        if (left >= k7BitPerPack) {
            if (k == SMS_MAX_PACKS) {
                SMS_TRACE_AS(kSplitPack, "pack_i[%d] > max[%d]\n\n", SMS_MAX_PACKS, SMS_MAX_PACKS);
                return -1;
            }
            // An escape pair never straddles two packs.
            const uint32_t take = codes[pos + k7BitPerPack - 1] == kEscape ? k7BitPerPack - 1 : k7BitPerPack;
            if (!fill_pack(codes + pos, take, coding, pRes[k], k)) return -1;
            pos += take;
            ++k;
        } else if (left > 0) {
            if (k >= SMS_MAX_PACKS) {
                SMS_TRACE_AS(kSplitPack, "pack_i[%d] > max[%d]\n\n", k, SMS_MAX_PACKS);
                return -1;
            }
            if (!fill_pack(codes + pos, left, coding, pRes[k], k)) return -1;
            ++k;
            break;
        } else {
            break;
        }
    }
    SMS_TRACE_AS(kSplitPack, "ret = [%d]\n\n", k);
    return k;
}

}  // namespace

extern "C" SMSUTIL_API int32_t sms_util_split_pack(const char *text, int32_t len, int32_t packCoding, uint32_t coding,
                                                   SmsPack *pRes)
{
    if (pRes == nullptr || text == nullptr || len < 0) return -1;
    if (len == 0 || text[0] == '\0') {
        pRes[0].length = 0;
        pRes[0].content[0] = '\0';
        return 1;
    }
    if (packCoding == 0) return split_ucs2(text, pRes);
    if (packCoding == 1) return split_7bit(text, coding, pRes);
    return -1;
}
