// Hexadecimal and character dump of a buffer into the diagnostic log, so a
// conversion's input and output can be read back from the field.
#include <cstddef>

#include "common/trace.hpp"
#include "smsutil/sms_charset.h"

namespace {

constexpr int kBytesPerRow = 16;
constexpr std::size_t kHexCell = 3;  // "XX "

char printable(std::uint8_t byte) { return byte >= 0x20 && byte <= 0x7E ? static_cast<char>(byte) : '.'; }

}  // namespace

extern "C" SMSUTIL_API void DumpBuffer(const uint8_t *pData, int32_t iLength, const char *pszDescription)
{
    static constexpr char kRule[] = "+++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++++";
    SMS_TRACE("%s\n\n", kRule);
    SMS_TRACE("Description:%s  Length :%d \n\n", pszDescription != nullptr ? pszDescription : "", iLength);
    SMS_TRACE("Offset                   Data                               ASCII        \n\n");
    SMS_TRACE("--------------------------------------------------------------------------\n\n");

    // A missing buffer or a negative length has no rows to show.
    const int32_t length = pData != nullptr && iLength > 0 ? iLength : 0;
    static constexpr char kHexDigits[] = "0123456789ABCDEF";
    for (int32_t row = 0; row < length; row += kBytesPerRow) {
        // Fixed-width columns: positions past the end are blank, so every
        // row lines up under the heading.
        char hex[kBytesPerRow * kHexCell + 1];
        char text[kBytesPerRow + 1];
        for (int col = 0; col < kBytesPerRow; ++col) {
            char *cell = hex + col * kHexCell;
            if (row + col < length) {
                const std::uint8_t byte = pData[row + col];
                cell[0] = kHexDigits[byte >> 4];
                cell[1] = kHexDigits[byte & 0x0F];
                text[col] = printable(byte);
            } else {
                cell[0] = ' ';
                cell[1] = ' ';
                text[col] = ' ';
            }
            cell[2] = ' ';
        }
        hex[sizeof hex - 1] = '\0';
        text[sizeof text - 1] = '\0';
        SMS_TRACE("%4.4X    %s   %s\n\n", static_cast<unsigned>(row), hex, text);
    }
    SMS_TRACE("%s\n\n", kRule);
}
