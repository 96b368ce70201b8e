// Bearer data decoded from any octets and encoded again decodes to the same
// subparameters and text; a second pass changes nothing at all.  (Bits past
// the last character of packed text are kept as read, so the first record
// may differ from the second in those bits only.)  IS-91 user data is left
// out: its payload is spread into other fields and the mask on decoding,
// and the encoder puts only some of them back, by design.  A record may not
// fit in 255 octets again (result 100, the encoder's only failure here): the
// encoder writes the alert twice, and a variable-length subparameter that was
// shorter than its fields is decoded with all of them (7-bit text takes its
// length from its count), so it is written back longer than it came.
#include "raw_tpdu.hpp"
#include "smsutil/wms_cdma.h"

namespace {

bool same_text(const wms_cdma_bearer_data &a, const wms_cdma_bearer_data &b)
{
    const wms_cdma_user_data &x = a.user_data;
    const wms_cdma_user_data &y = b.user_data;
    if (x.encoding != y.encoding || x.num_fields != y.num_fields || x.data_len != y.data_len) return false;
    if (x.encoding == WMS_ENCODING_ASCII || x.encoding == WMS_ENCODING_IA5) {
        char tx[256] = {}, ty[256] = {};
        const uint8_t nx = wms_ts_unpack_ascii(&x, 255, tx);
        const uint8_t ny = wms_ts_unpack_ascii(&y, 255, ty);
        return nx == ny && std::memcmp(tx, ty, nx) == 0;
    }
    return std::memcmp(x.data, y.data, x.data_len) == 0;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const wms_raw_tpdu raw = fuzzin::raw_tpdu(in);
    wms_cdma_bearer_data first{};
    if (wms_ts_decode_CDMA_bd(&raw, &first) != WMS_TS_STATUS_OK) return 0;
    if (first.user_data.encoding == WMS_ENCODING_IS91EP) return 0;
    wms_raw_tpdu once{};
    const wms_status_e_type rc = wms_ts_encode_CDMA_bd(&first, &once);
    if (rc == WMS_TS_STATUS_BAD_ADDRESS) return 0;
    FUZZ_CHECK(rc == WMS_TS_STATUS_OK);
    FUZZ_CHECK(once.len <= WMS_CDMA_BEARER_DATA_MAX);
    wms_cdma_bearer_data second{};
    FUZZ_CHECK(wms_ts_decode_CDMA_bd(&once, &second) == WMS_TS_STATUS_OK);
    FUZZ_CHECK(first.mask == second.mask);
    if ((first.mask & WMS_MASK_BD_USER_DATA) != 0) FUZZ_CHECK(same_text(first, second));

    wms_raw_tpdu twice{};
    FUZZ_CHECK(wms_ts_encode_CDMA_bd(&second, &twice) == WMS_TS_STATUS_OK);
    FUZZ_CHECK(twice.len == once.len && std::memcmp(twice.data, once.data, once.len) == 0);
    wms_cdma_bearer_data third{};
    FUZZ_CHECK(wms_ts_decode_CDMA_bd(&twice, &third) == WMS_TS_STATUS_OK);
    FUZZ_CHECK(std::memcmp(&second, &third, sizeof second) == 0);
    return 0;
}
