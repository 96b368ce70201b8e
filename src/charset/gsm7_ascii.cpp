// 7-bit codes to single-byte (ISO 8859-1) text and back, through the
// default alphabet only.  These conversions write no log lines.
#include <cstring>

#include "charset/gsm7_inverse.hpp"
#include "charset/gsm7_tables.hpp"
#include "common/octets.hpp"

namespace {

using namespace smsutil::charset;

constexpr std::int32_t kAsciiWorkSize = 513;
constexpr uint8_t kSpace = 0x20;

}  // namespace

extern "C" SMSUTIL_API int32_t sms_gsm7_to_ascii(const uint8_t *pGSM_7Data, int32_t iInputLen, uint8_t *pAscii,
                                                 int32_t iBufLen, uint32_t *pdwOutputLen)
{
    if (pGSM_7Data == nullptr || iInputLen < 0 || (iBufLen > 0 && pAscii == nullptr)) return -1;
    if (pdwOutputLen != nullptr) *pdwOutputLen = 0;

    int32_t count = 0;
    for (int32_t i = 0; i < iInputLen; ++i) {
        const uint8_t code = pGSM_7Data[i];
        if (code > kHighestAcceptedCode) return -1;
        uint32_t value = 0;
        if (code == kEscape) {
            if (++i >= iInputLen) return -1;
            // Whatever national language the text had, only the default
            // extension has single-byte counterparts worth keeping.
            value = gsm7_value(g_GSM_7BitExtTable, GSM7_CODING_DEFAULT, pGSM_7Data[i]);
        } else {
            value = gsm7_value(g_GSM_7BitTable, GSM7_CODING_DEFAULT, code);
        }
        if (value == kNoCharacter) return -1;
        if (iBufLen != 0 && count >= iBufLen) return -1;
        // Greek capitals and the euro sign have no single-byte form.
        if (iBufLen > 0) pAscii[count] = value <= 0xFF ? static_cast<uint8_t>(value) : kSpace;
        ++count;
    }
    if (iBufLen > 0) pAscii[count] = 0;
    if (pdwOutputLen != nullptr) *pdwOutputLen = static_cast<uint32_t>(count);
    return 0;
}

extern "C" SMSUTIL_API int32_t sms_ascii_to_gsm7(const uint8_t *pAscii, int32_t iInputLen, uint8_t *pGSM_7Data,
                                                 int32_t iBufLen, uint32_t *pdwOutputLen)
{
    if (pAscii == nullptr || iInputLen < 0 || (iBufLen > 0 && pGSM_7Data == nullptr) || iInputLen > iBufLen) return -1;
    if (pdwOutputLen != nullptr) *pdwOutputLen = 0;

    smsutil::common::OctetWriter out(pGSM_7Data, static_cast<std::size_t>(iBufLen));
    int32_t result = 0;
    for (int32_t i = 0; i < iInputLen && result == 0; ++i) {
        const Gsm7Code found = find_gsm7_code(GSM7_CODING_DEFAULT, pAscii[i]);
        if (!found.found || (found.escaped && !out.put(kEscape)) || !out.put(found.code)) result = -1;
    }
    // Also on failure, so the caller sees how far the text got.
    if (pdwOutputLen != nullptr) *pdwOutputLen = static_cast<uint32_t>(out.position());
    return result;
}

extern "C" SMSUTIL_API int32_t handle_input_sms_7bit_to_ascii(uint8_t *pText, int32_t iInputLen, uint32_t *pdwOutputLen)
{
    // Room for the converted text and its terminator.
    uint8_t work[kAsciiWorkSize + 1] = {};
    uint32_t length = 0;
    if (sms_gsm7_to_ascii(pText, iInputLen, work, kAsciiWorkSize, &length) != 0) {
        if (pdwOutputLen != nullptr) *pdwOutputLen = length;
        return -1;
    }
    std::memcpy(pText, work, length + 1);
    if (pdwOutputLen != nullptr) *pdwOutputLen = length;
    return 0;
}
