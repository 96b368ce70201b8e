// wms_ts_decode_CDMA_bd on any octets and any stated length.
#include "raw_tpdu.hpp"
#include "smsutil/wms_cdma.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const wms_raw_tpdu raw = fuzzin::raw_tpdu(in);
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    const wms_status_e_type rc = wms_ts_decode_CDMA_bd(&raw, &bd);
    fuzzin::check_other_tail(raw, wms_ts_decode_CDMA_bd, rc, bd);
    FUZZ_CHECK(rc == WMS_TS_STATUS_OK || rc == WMS_TS_STATUS_BAD_ADDRESS || rc == WMS_TS_STATUS_BAD_USER_DATA_LENGTH ||
               rc == WMS_TS_STATUS_BAD_IS91EP_TYPE);
    if (rc == WMS_TS_STATUS_OK) {
        FUZZ_CHECK(bd.user_data.data_len <= WMS_CDMA_USER_DATA_MAX);
        // Only an IS-91 call-back payload keeps a length above the digits it
        // stores; readers stop at the array's end.
        const bool is91_callback =
            bd.user_data.encoding == WMS_ENCODING_IS91EP && bd.user_data.is91ep_type == WMS_IS91EP_CLI_ORDER;
        FUZZ_CHECK(bd.callback.number_of_digits <= WMS_CDMA_CALLBACK_MAX_DIGITS || is91_callback);
    }
    return 0;
}
