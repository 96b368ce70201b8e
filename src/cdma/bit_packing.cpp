// The exported bit-field functions.  Counts outside a function's range are
// brought into it here so the shared core never sees them.
#include "smsutil/wms_cdma.h"

#include "cdma/bit_fields.hpp"

namespace {

unsigned clamp_width(uint16_t n, unsigned max) { return n > max ? max : n; }

}  // namespace

using smsutil::cdma::pack_bits;
using smsutil::cdma::unpack_bits;

extern "C" SMSUTIL_API void b_packb(uint8_t value, uint8_t *dest, uint16_t pos, uint16_t n)
{
    if (dest == nullptr) return;
    pack_bits(value, dest, pos, clamp_width(n, 8));
}

extern "C" SMSUTIL_API void b_packw(uint16_t value, uint8_t *dest, uint16_t pos, uint16_t n)
{
    if (dest == nullptr) return;
    pack_bits(value, dest, pos, clamp_width(n, 16));
}

extern "C" SMSUTIL_API uint8_t b_unpackb(const uint8_t *src, uint16_t pos, uint16_t n)
{
    if (src == nullptr) return 0;
    return static_cast<uint8_t>(unpack_bits(src, pos, clamp_width(n, 8)));
}

extern "C" SMSUTIL_API uint16_t b_unpackw(const uint8_t *src, uint16_t pos, uint16_t n)
{
    if (src == nullptr) return 0;
    return static_cast<uint16_t>(unpack_bits(src, pos, clamp_width(n, 16)));
}
