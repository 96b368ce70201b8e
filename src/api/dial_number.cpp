// Dial numbers on their way out: validation and the destination address
// of a SUBMIT.
#include <array>
#include <cstring>
#include <limits>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"

namespace {
constexpr uint32_t kMaxDialNumber = 20;

// The characters of a dial number, '+' apart, as a table: one look-up per
// character.
constexpr std::array<bool, 256> kDialChars = [] {
    std::array<bool, 256> t{};
    for (unsigned c = '0'; c <= '9'; ++c) t[c] = true;
    t['*'] = t['#'] = true;
    return t;
}();

bool is_dial_char(char c) { return kDialChars[static_cast<unsigned char>(c)]; }
}  // namespace

extern "C" {

SMSUTIL_API int32_t EWCheckDialNum(const char *pszDialNum, uint32_t maxLen)
{
    SMS_RETURN_IF_NULL(pszDialNum);
    // Never look further than one byte past the allowed length: callers
    // pass fixed-size fields that a bad record may leave unterminated.  The
    // bound saturates, so the largest maximum cannot wrap it to 0 where
    // size_t is as narrow as the maximum.
    std::size_t bound = maxLen;
    if (bound != std::numeric_limits<std::size_t>::max()) ++bound;
    const std::size_t dwlen = strnlen(pszDialNum, bound);
    SMS_TRACE("The length of dwlen is %d\n\n", static_cast<int>(dwlen));
    if (dwlen == 0 || dwlen > maxLen) {
        SMS_TRACE("The EWCheckDialNum pszDialNum's length is 0 or out of the max length!\n\n");
        return -1;
    }
    if (dwlen == 1 && pszDialNum[0] == '+') {
        SMS_TRACE("The EWCheckDialNum pszDialNum is only a '+'!\n\n");
        return -1;
    }
    for (std::size_t i = 0; i < dwlen; ++i) {
        const char c = pszDialNum[i];
        if (!is_dial_char(c) && !(c == '+' && i == 0)) {
            SMS_TRACE("The EWCheckDialNum pszDialNum is illegal!\n\n");
            return -1;
        }
    }
    SMS_TRACE("EWCheckDialNum function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t ConstructAddressData(const char *pszAddress, SendOrWriteMsg *PstSendOrWriteMsg,
                                         wms_address *PstAddress)
{
    SMS_RETURN_IF_NULL(pszAddress);
    SMS_RETURN_IF_NULL(PstSendOrWriteMsg);
    SMS_RETURN_IF_NULL(PstAddress);
    std::memset(PstAddress, 0, sizeof *PstAddress);
    PstAddress->digit_mode = PstSendOrWriteMsg->byDigitMode;
    PstAddress->number_mode = PstSendOrWriteMsg->byNumberMode;

    if (pszAddress[0] == '\0') {
        PstAddress->number_type = WMS_NUMBER_UNKNOWN;
        PstAddress->number_plan = 1;
        SMS_TRACE("ConstructAddressData function run successfully!:dwLen==0\n\n");
        return 0;
    }
    // The check reads at most one byte past the 20 characters, so a field
    // that holds 21 without a terminator is refused, not cut.
    const int32_t check = EWCheckDialNum(pszAddress, kMaxDialNumber);
    if (check != 0) {
        SMS_TRACE("EWCheckDialNum in ConstructAddressData function run unsuccessfully!\n\n");
        return check;
    }
    const char *digits = pszAddress;
    if (digits[0] == '+') {
        PstAddress->number_type = WMS_NUMBER_INTERNATIONAL;
        ++digits;
    } else {
        PstAddress->number_type = WMS_NUMBER_UNKNOWN;
    }
    PstAddress->number_plan = 1;
    const uint8_t count = static_cast<uint8_t>(std::strlen(digits));  // at most 20 after the check
    PstAddress->number_of_digits = count;
    wms_ts_ascii_to_bcd(digits, count, PstAddress->digits);

    SMS_TRACE("The MSAsciito Bcd is:\n");
    SMS_TRACE("The BCD is:\n\n");
    for (uint8_t i = 0; i < count; ++i) SMS_TRACE("%d\n", PstAddress->digits[i]);
    SMS_TRACE("ConstructAddressData function run successfully!:dwLen>0\n\n");
    return 0;
}

}  // extern "C"
