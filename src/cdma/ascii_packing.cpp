// 7-bit characters packed back to back from the first bit of a buffer, as
// CDMA user data carries ASCII text.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "cdma/bit_fields.hpp"
#include "smsutil/wms_cdma.h"

namespace {

constexpr unsigned kCharBits = 7;

}  // namespace

using smsutil::cdma::BitReader;
using smsutil::cdma::BitWriter;

extern "C" SMSUTIL_API uint8_t wms_ts_pack_ascii(const char *text, uint8_t *packed, uint8_t *octets,
                                                 uint8_t *padding_bits)
{
    if (text == nullptr || packed == nullptr || octets == nullptr || padding_bits == nullptr) return 0;
    *padding_bits = 0;
    const auto count = static_cast<std::uint8_t>(std::strlen(text));
    const std::size_t bits = kCharBits * count;
    const std::size_t size = (bits + 7) / 8;
    std::memset(packed, 0, size);
    BitWriter out({packed, size});
    for (std::size_t i = 0; i < count; ++i) out.write(static_cast<std::uint8_t>(text[i]) & 0x7F, kCharBits);
    if (bits % 8 != 0) {
        *padding_bits = static_cast<std::uint8_t>(8 - bits % 8);
        out.pad_to_octet();
    }
    *octets = static_cast<std::uint8_t>(size);
    return count;
}

extern "C" SMSUTIL_API uint8_t wms_ts_unpack_ascii(const wms_cdma_user_data *ud, uint8_t max_count, char *text)
{
    if (ud == nullptr || text == nullptr) return 0;
    // A data_len beyond the array is malformed; never read past it.
    const std::size_t end = std::min<std::size_t>(ud->data_len, WMS_CDMA_USER_DATA_MAX) * 8;
    // A character that starts inside data_len is taken whole, reading on
    // into the array past data_len; only the array's own end limits it.
    BitReader in({ud->data, WMS_CDMA_USER_DATA_MAX});
    const std::size_t limit = std::min(max_count, ud->num_fields);
    std::size_t count = 0;
    while (count < limit && in.position() < end) text[count++] = static_cast<char>(in.read_zero_extended(kCharBits));
    text[count] = '\0';
    return static_cast<std::uint8_t>(count);
}
