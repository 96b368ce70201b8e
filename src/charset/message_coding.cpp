// Which national language an 8-bit text needs, told by the block of its
// first upper byte outside the default extension.
#include "charset/kv8bit_tables.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_charset.h"

extern "C" SMSUTIL_API int32_t check_message_coding(const uint8_t *p8BitData)
{
    using smsutil::charset::kKv8bitAt;
    using smsutil::charset::kv8bit_block;
    // A missing text needs no national language, like one without upper bytes.
    for (const uint8_t *p = p8BitData; p != nullptr && *p != 0; ++p) {
        const uint32_t block = kv8bit_block(*p);
        // Default-extension bytes fit any language, so they decide nothing.
        if (*p > kKv8bitAt && block != 0) {
            SMS_TRACE("coding by 0x%x\n\n", static_cast<unsigned>(*p));
            SMS_TRACE("ret is %d\n\n", static_cast<int>(block));
            return static_cast<int32_t>(block);
        }
    }
    SMS_TRACE("ret is %d\n\n", 0);
    return 0;
}
