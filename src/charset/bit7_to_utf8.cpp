// 7-bit codes to UTF-8: the lenient conversion used when long texts are
// cut into packs, and the in-place conversion of a received text.
#include <cstring>

#include "charset/gsm7_tables.hpp"
#include "charset/utf8_sequence.hpp"
#include "common/le_words.hpp"
#include "common/octets.hpp"
#include "common/trace.hpp"
#include "smsutil/wms_ts.h"

namespace {

using namespace smsutil::charset;

// 512 units and a zero unit.
constexpr int32_t kUcs2WorkUnits = 513;
constexpr uint32_t kMaxUnits = kUcs2WorkUnits - 1;
// The in-place buffer of a received text.
constexpr uint32_t kTextBufferSize = 513;

// The top bit of each byte of w (all below 0x80) that lies in the range;
// no byte carries into the next.
uint64_t within(uint64_t w, CodeRange r)
{
    using smsutil::common::each_octet;
    return (w + each_octet(static_cast<uint8_t>(0x80 - r.low))) &
           ~(w + each_octet(static_cast<uint8_t>(0x7F - r.high)));
}

bool all_plain_ascii(uint64_t w)
{
    const uint64_t top = smsutil::common::each_octet(0x80);
    if ((w & top) != 0) return false;
    uint64_t plain = within(w, kAsciiCodes);
    for (const CodeRange &r : kNotAscii) plain &= ~within(w, r);
    return (plain & top) == top;
}

// The usual received text in one pass: codes of the default alphabet (and
// the language's table behind an escape) straight to UTF-8, without the
// UCS-2 step.  Anything out of the ordinary (a code without a character, a
// dangling escape, a locking shift, a text longer than the buffer) returns
// false and is left to the general conversion, which reports it.
bool direct_to_utf8(const uint8_t *codes, uint32_t count, uint32_t coding, uint32_t lang_shift,
                    smsutil::common::OctetWriter &out)
{
    if (lang_shift == WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT) return false;
    // A code gives at most three bytes (an escaped pair as well), and a
    // plain code is copied as four: with this much room no character needs
    // a check of its own.
    if (out.remaining() < 3 * static_cast<std::size_t>(count) + 1) return false;
    uint8_t *const start = out.unwritten().data();
    uint8_t *p = start;
    const uint8_t *code = codes;
    const uint8_t *const end = codes + count;
    while (code < end) {
        // A word of eight codes is copied whole when all are plain ASCII;
        // otherwise its codes go one by one through the table.
        const bool whole_word = end - code >= 8;
        if (whole_word) {
            const uint64_t w = smsutil::common::load_le64(code);
            if (all_plain_ascii(w)) {
                smsutil::common::store_le64(p, w, 8);
                p += 8;
                code += 8;
                continue;
            }
        }
        for (const uint8_t *const stop = whole_word ? code + 8 : end; code < stop; ++code) {
            const Utf8Code &utf8 = kDefaultRowUtf8[*code];
            if (utf8.length != 0) {
                std::memcpy(p, &utf8, sizeof utf8);
                p += utf8.length;
                continue;
            }
            if (*code != kEscape || ++code == end) return false;
            const uint32_t value = gsm7_value(g_GSM_7BitExtTable, coding, *code);
            // A zero unit would end the text early; the general path keeps that.
            if (value == 0 || value >= kNoCharacter) return false;
            p = put_utf8_unchecked(p, static_cast<uint16_t>(value));
        }
    }
    return out.advance(static_cast<std::size_t>(p - start));
}

}  // namespace

extern "C" SMSUTIL_API int32_t BIT7_TO_UTF8(const uint8_t *p7Bit, int32_t iInputLen, char *pUTF8, int32_t iBufSize,
                                            uint32_t coding)
{
    SMS_TRACE("iInputLen = [%d]\n", iInputLen);
    if (iInputLen < 0 || p7Bit == nullptr || pUTF8 == nullptr || iBufSize < 1) {
        SMS_TRACE("Param error!\n\n");
        return -1;
    }

    uint16_t ucs2[kUcs2WorkUnits] = {};
    uint32_t count = 0;
    for (int32_t i = 0; i < iInputLen; ++i) {
        const uint8_t code = p7Bit[i];
        if (code > kHighestAcceptedCode) {
            SMS_TRACE("7Bit code error.[%d][%d]\n\n", i, code);
            return -1;
        }
        uint32_t value = 0;
        if (code == kEscape) {
            // An escape with nothing after it is dropped: a pack boundary
            // never splits a pair, so it can only be noise at the end.
            if (++i >= iInputLen) break;
            value = gsm7_value(g_GSM_7BitExtTable, coding, p7Bit[i]);
        } else {
            value = gsm7_value(g_GSM_7BitTable, coding, code);
        }
        // Unlike a received text, a text being cut into packs keeps going
        // past a code it cannot show.
        if (value == kNoCharacter) {
            SMS_TRACE("7Bit code error.[%d][%d]\n\n", i, p7Bit[i]);
            continue;
        }
        if (count >= kMaxUnits) {
            SMS_TRACE("UCS2 buffer is not enough.[%d][%d]\n\n", i, static_cast<int>(count));
            return -1;
        }
        ucs2[count++] = static_cast<uint16_t>(value);
    }

    std::memset(pUTF8, 0, static_cast<std::size_t>(iBufSize));
    if (UCS2_TO_UTF8(ucs2, pUTF8, iBufSize - 1) != 0) {
        SMS_TRACE("UCS2_TO_UTF8 function run unsuccessfully!\n\n");
        return -1;
    }
    return 0;
}

extern "C" SMSUTIL_API int32_t handle_input_sms_7bit_to_utf8(uint8_t *pText, uint32_t dwInputLen, uint32_t coding,
                                                             uint32_t lang_shift, uint32_t *pdwOutputLen)
{
    uint8_t direct[kTextBufferSize - 1];
    smsutil::common::OctetWriter writer(direct, sizeof direct);
    if (direct_to_utf8(pText, dwInputLen, coding, lang_shift, writer)) {
        // What the general conversion reports on its way to the same text.
        SMS_TRACE_AS("gsm7_to_unicode", "WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT == lang_shift\n\n");
        SMS_TRACE_AS("gsm7_to_unicode", "dwInputLen = [%d] \n\n", static_cast<int>(dwInputLen));
        std::memset(pText, 0, kTextBufferSize);
        std::memcpy(pText, direct, writer.position());
        if (pdwOutputLen != nullptr) *pdwOutputLen = static_cast<uint32_t>(writer.position());
        return 0;
    }
    // Not cleared: the conversion terminates what it wrote, and nothing
    // past that is read.
    uint16_t ucs2[kUcs2WorkUnits + 1];
    uint32_t units = 0;
    if (gsm7_to_unicode(pText, dwInputLen, coding, lang_shift, ucs2, kUcs2WorkUnits, &units) != 0) {
        SMS_TRACE("gsm7_to_unicode() failed\n\n");
        return -1;
    }
    // The UTF-8 text replaces the codes and keeps its terminator.
    std::memset(pText, 0, kTextBufferSize);
    if (UCS2_TO_UTF8(ucs2, reinterpret_cast<char *>(pText), kTextBufferSize - 1) != 0) {
        SMS_TRACE("UCS2_TO_UTF8() failed\n\n");
        return -1;
    }
    if (pdwOutputLen != nullptr) *pdwOutputLen = static_cast<uint32_t>(std::strlen(reinterpret_cast<char *>(pText)));
    return 0;
}
