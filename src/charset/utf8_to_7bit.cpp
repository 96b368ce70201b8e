// UTF-8 text to the 7-bit codes of a national language, for sending.
#include "charset/gsm7_inverse.hpp"
#include "common/octets.hpp"
#include "common/trace.hpp"

namespace {

// Working storage of the UCS-2 step: 2048 units and a zero unit.  The
// capacity handed to that step is one byte short of the buffer, so the
// last two bytes always stay zero and end the text.
constexpr int32_t kUcs2WorkBytes = 4098;
constexpr int32_t kUcs2WorkCapacity = kUcs2WorkBytes - 1;

}  // namespace

extern "C" SMSUTIL_API int32_t UTF8_TO_7BIT(const char *pUTF8, uint8_t *p7Bit, int32_t iBufLen, uint32_t *pdw7BitLen,
                                            uint32_t coding)
{
    // An unknown language is refused rather than read through the default
    // row: the receiver would decode it with a table we do not have.
    if (pUTF8 == nullptr || p7Bit == nullptr || pdw7BitLen == nullptr || iBufLen < 1 ||
        coding >= smsutil::charset::kRowCount) {
        SMS_TRACE("Param error!\n\n");
        return -1;
    }
    uint8_t ucs2[kUcs2WorkBytes] = {};
    if (UTF8_TO_UCS2(pUTF8, ucs2, kUcs2WorkCapacity) < 0) {
        SMS_TRACE("UTF8_TO_UCS2 function run unsuccessfully!\n\n");
        return -1;
    }

    smsutil::common::OctetWriter out(p7Bit, static_cast<std::size_t>(iBufLen));
    for (std::size_t i = 0; i + 1 < sizeof ucs2; i += 2) {
        const auto unit = static_cast<uint16_t>(ucs2[i] | (ucs2[i + 1] << 8));
        if (unit == 0) break;
        if (out.remaining() == 0) {
            SMS_TRACE("Space is not enough!\n\n");
            return -1;
        }
        const smsutil::charset::Gsm7Code found = smsutil::charset::find_gsm7_code(coding, unit);
        if (!found.found) {
            SMS_TRACE("Not found!\n\n");
            return -1;
        }
        if ((found.escaped && !out.put(smsutil::charset::kEscape)) || !out.put(found.code)) {
            SMS_TRACE("Space is not enough!\n\n");
            return -1;
        }
    }
    *pdw7BitLen = static_cast<uint32_t>(out.position());
    SMS_TRACE("7bit length = [%d]\n\n", static_cast<int>(out.position()));
    return 0;
}
