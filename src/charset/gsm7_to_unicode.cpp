// 7-bit codes of a received message to UCS-2, under the national language
// and shift kind its user data header announced.
#include <cstdint>

#include "charset/gsm7_tables.hpp"
#include "common/trace.hpp"
#include "smsutil/wms_ts.h"

namespace {

using namespace smsutil::charset;

constexpr const char *kName = "gsm7_to_unicode";

// Where the next unit goes: a capacity of 0 only counts, and a negative
// one behaves as a full buffer from the start.
struct UnitSink {
    UnitSink(std::uint16_t *buffer, std::int32_t capacity)
        : units(capacity > 0 ? buffer : nullptr),
          limit(capacity == 0  ? UINT32_MAX
                : capacity < 0 ? 0
                               : static_cast<std::uint32_t>(capacity))
    {}

    std::uint16_t *units;  // null when only counting
    std::uint32_t limit;
    std::uint32_t count = 0;

    bool full() const { return count >= limit; }
    void append(std::uint32_t value)
    {
        if (units != nullptr) units[count] = static_cast<std::uint16_t>(value);
        ++count;
    }
    void terminate()
    {
        if (units != nullptr) units[count] = 0;
    }
};

// A character of a main row.  Both shift kinds refuse a corrupt code, a
// code without a character and a full buffer alike.
bool append_main_row(UnitSink &out, const std::uint32_t (&row)[kCodeCount], std::uint8_t code)
{
    if (code > kHighestAcceptedCode) {
        SMS_TRACE_AS(kName, "pGSM_7Data[i] > 128\n\n");
        return false;
    }
    const std::uint32_t value = code < kCodeCount ? row[code] : kNoCharacter;
    if (value == kNoCharacter) {
        SMS_TRACE_AS(kName, "0xFFFF == wIndex\n\n");
        return false;
    }
    if (out.full()) {
        SMS_TRACE_AS(kName, "dwBufLen < ((dwCount + 1)\n\n");
        return false;
    }
    out.append(value);
    return true;
}

}  // namespace

extern "C" SMSUTIL_API int32_t gsm7_to_unicode(const uint8_t *pGSM_7Data, uint32_t dwInputLen, uint32_t coding,
                                               uint32_t lang_shift, uint16_t *pUnicodeData, int32_t dwBufLen,
                                               uint32_t *pdwOutputLen)
{
    if (pGSM_7Data == nullptr) {
        SMS_TRACE("NULL == pGSM_7Data\n\n");
        return -1;
    }
    if (dwBufLen > 0 && pUnicodeData == nullptr) {
        SMS_TRACE("NULL == pUnicodeData\n\n");
        return -1;
    }
    if (pdwOutputLen != nullptr) *pdwOutputLen = 0;

    UnitSink out(pUnicodeData, dwBufLen);
    if (lang_shift == WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT) {
        SMS_TRACE("WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT == lang_shift\n\n");
        // Only Turkish has a locking shift table.  The escape is not special
        // here: the locking row reads it as a space.
        if (coding != TURKISH_SMS) {
            SMS_TRACE("error,TURKISH_SMS != coding\n\n");
            return -1;
        }
        for (uint32_t i = 0; i < dwInputLen; ++i)
            if (!append_main_row(out, g_GSM_7BitTable[TURKISH_SMS], pGSM_7Data[i])) return -1;
    } else {
        // Single shift, also for a text without a national language element:
        // the default alphabet, with the language's table behind the escape.
        SMS_TRACE("WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT == lang_shift\n\n");
        SMS_TRACE("dwInputLen = [%d] \n\n", static_cast<int>(dwInputLen));
        for (uint32_t i = 0; i < dwInputLen; ++i) {
            if (pGSM_7Data[i] != kEscape) {
                if (!append_main_row(out, g_GSM_7BitTable[GSM7_CODING_DEFAULT], pGSM_7Data[i])) return -1;
                continue;
            }
            if (++i >= dwInputLen) {
                SMS_TRACE("++i = %d\n\n", static_cast<int>(i));
                SMS_TRACE(" dwInputLen = %d\n\n", static_cast<int>(dwInputLen));
                SMS_TRACE("++i >= dwInputLen\n\n");
                return -1;
            }
            const uint32_t value = gsm7_value(g_GSM_7BitExtTable, coding, pGSM_7Data[i]);
            if (value == kNoCharacter) {
                SMS_TRACE("find coding %d data %x error!\n\n", static_cast<int>(coding),
                          static_cast<unsigned>(pGSM_7Data[i]));
                return -1;
            }
            if (out.full()) return -1;
            out.append(value);
        }
    }
    out.terminate();
    if (pdwOutputLen != nullptr) *pdwOutputLen = out.count;
    return 0;
}
