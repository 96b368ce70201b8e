// The service-centre address in front of every PDU: built for sending,
// read back from received PDU text.
#include <array>
#include <cstring>

#include "api/extract_steps.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"

namespace {

constexpr uint32_t kMaxScNumber = 20;
constexpr std::size_t kLongestNumber = SMS_NUMBER_SIZE - 1;
constexpr std::size_t kPduTextBound = SMS_PDU_TEXT_SIZE;

// Value of every hexadecimal character, -1 for any other.
constexpr auto kHexValues = [] {
    std::array<int8_t, 256> t{};
    for (unsigned c = 0; c < t.size(); ++c)
        t[c] = static_cast<int8_t>(c >= '0' && c <= '9'   ? c - '0'
                                   : c >= 'A' && c <= 'F' ? c - 'A' + 10
                                   : c >= 'a' && c <= 'f' ? c - 'a' + 10
                                                          : -1);
    return t;
}();

int hex_value(char c) { return kHexValues[static_cast<unsigned char>(c)]; }

}  // namespace

extern "C" {

SMSUTIL_API int32_t ComposeSCAddrData(const char *pszAddr, SendOrWriteMsg *PstSendOrWriteMsg, SmsOctetBuf *PstBuf)
{
    SMS_RETURN_IF_NULL(pszAddr);
    SMS_RETURN_IF_NULL(PstSendOrWriteMsg);
    SMS_RETURN_IF_NULL(PstBuf);
    PstSendOrWriteMsg->byDigitMode = 0;
    const std::size_t dwlen = strnlen(pszAddr, kMaxScNumber + 1);
    SMS_TRACE("The dwlen is %d\n\n", static_cast<int>(dwlen));
    SMS_TRACE("The sc num is %.*s\n\n", static_cast<int>(dwlen), pszAddr);

    const char *digits = pszAddr;
    PstSendOrWriteMsg->byScTon = 0;
    PstSendOrWriteMsg->byScNpi = 1;
    if (dwlen > 0) {
        const int32_t check = EWCheckDialNum(pszAddr, kMaxScNumber);
        if (check != 0) {
            SMS_TRACE("EWCheckDialNum in ComposeSCAddrData function run unsuccessfully!\n\n");
            return check;
        }
        if (digits[0] == '+') {
            PstSendOrWriteMsg->byScTon = 1;
            ++digits;
        }
    }
    const uint8_t count = static_cast<uint8_t>(dwlen - static_cast<std::size_t>(digits - pszAddr));

    wms_address address{};
    wms_ts_ascii_to_bcd(digits, count, PstBuf->data);
    std::memcpy(address.digits, PstBuf->data, count);
    address.number_type = PstSendOrWriteMsg->byScTon;
    address.number_plan = PstSendOrWriteMsg->byScNpi;
    address.number_of_digits = count;

    uint8_t encoded[WMS_MAX_LEN];  // only the octets encoded are read
    const uint8_t octets = wms_ts_encode_address(&address, encoded);
    if (octets == 0) return -1;  // cannot happen after the length check
    std::memcpy(PstBuf->data, encoded, octets);
    PstBuf->dwLen = octets;
    // The TP address counts digits; the service-centre form counts octets.
    PstBuf->data[0] = static_cast<uint8_t>(octets - 1);

    SMS_TRACE("The len of digits is %d\n\n", count);
    SMS_TRACE("The sc len is:\n\n");
    for (uint8_t i = 0; i < octets; ++i) SMS_TRACE("%x\n", PstBuf->data[i]);
    SMS_TRACE("ComposeSCAddrData function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t TransformSCANum(const char *pSctemp, uint32_t *out)
{
    if (out != nullptr) *out = 0;
    if (pSctemp == nullptr) {
        SMS_TRACE("The CheckSCANum pSctemp pointer is NULL!\n\n");
        return -1;
    }
    if (out == nullptr) return -1;
    SMS_TRACE("The pSctemp of  is %s\n\n", pSctemp);
    const char digit1 = pSctemp[0];
    const int high = hex_value(digit1);
    if (high < 0) {
        SMS_TRACE("The CheckSCANum digit1 is incompatible!\n\n");
        return -1;
    }
    if (digit1 >= '0' && digit1 <= '9') {
        SMS_TRACE("The pScnum of  is %d\n\n", static_cast<int>(*out));
        SMS_TRACE("The digit1 of  is %c\n\n", digit1);
        SMS_TRACE("The int digit1 of  is %d\n\n", high);
    }
    *out += static_cast<uint32_t>(high) * 16;
    const int low = hex_value(pSctemp[1]);  // digit1 was not NUL, so [1] is in the string
    if (low < 0) {
        SMS_TRACE("The CheckSCANum digit2 is incompatible!\n\n");
        return -1;
    }
    *out += static_cast<uint32_t>(low);
    return 0;
}

SMSUTIL_API int32_t parse_centernum(int32_t dwSize, char *out, const char *src)
{
    if (out == nullptr || src == nullptr) return -1;
    if (dwSize > 0) std::memset(out, 0, static_cast<std::size_t>(dwSize));
    // The digits follow the two characters of the type-of-address octet.
    const std::size_t toa_len = strnlen(src, 2);
    // The text lies in a PDU field of 513 bytes: its length is counted up to
    // that bound, so the log tells how long a refused text really was.
    const std::size_t len = toa_len < 2 ? 0 : strnlen(src + toa_len, kPduTextBound - toa_len);
    if (dwSize <= 0) {
        SMS_TRACE("src len is[%d]\n\n", static_cast<int>(len));
        return -1;
    }
    return smsutil::api::centre_number(src + toa_len, len, src[0] == '9', out, static_cast<std::size_t>(dwSize));
}

}  // extern "C"

int32_t smsutil::api::centre_number(const char *digits, std::size_t len, bool international, char *out,
                                    std::size_t size)
{
    if (len == 0 || len > size || len > kLongestNumber) {
        SMS_TRACE_AS("parse_centernum", "src len is[%d]\n\n", static_cast<int>(len));
        return -1;
    }
    // Digits come in swapped pairs; an odd last one stands alone, and an 'F'
    // that ends up last only pads an odd count.
    const char last = len % 2 != 0 ? digits[len - 1] : digits[len - 2];
    const std::size_t n = last == 'f' || last == 'F' ? len - 1 : len;
    const bool plus = international && n >= 2 && digits[1] == '8' && digits[0] == '6';
    // The text and its terminator must fit the caller's buffer.
    if (n + (plus ? 1 : 0) >= size) {
        SMS_TRACE_AS("parse_centernum", "src len is[%d]\n\n", static_cast<int>(len));
        return -1;
    }
    char *p = out;
    if (plus) *p++ = '+';
    std::size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t pairs;
        std::memcpy(&pairs, digits + i, sizeof pairs);
        pairs = (pairs & 0x00FF00FF00FF00FFu) << 8 | (pairs >> 8 & 0x00FF00FF00FF00FFu);
        std::memcpy(p + i, &pairs, sizeof pairs);
    }
    for (; i + 1 < n; i += 2) {
        // Swapping the two bytes of a pair is the same on any byte order.
        uint16_t pair;
        std::memcpy(&pair, digits + i, sizeof pair);
        pair = static_cast<uint16_t>(pair << 8 | pair >> 8);
        std::memcpy(p + i, &pair, sizeof pair);
    }
    if (i < n) p[i] = i + 1 < len ? digits[i + 1] : digits[i];
    return 0;
}
