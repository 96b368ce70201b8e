// wms_ts_decode_CDMA_bd on any octets and any stated length.
#include "raw_tpdu.hpp"
#include "smsutil/wms_cdma.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const wms_raw_tpdu raw = fuzzin::raw_tpdu(in);
    wms_cdma_bearer_data bd{};
    const wms_status_e_type rc = wms_ts_decode_CDMA_bd(&raw, &bd);
    FUZZ_CHECK(rc == WMS_TS_STATUS_OK || rc == WMS_TS_STATUS_BAD_ADDRESS ||
               rc == WMS_TS_STATUS_BAD_USER_DATA_LENGTH || rc == WMS_TS_STATUS_BAD_IS91EP_TYPE);
    if (rc == WMS_TS_STATUS_OK) {
        FUZZ_CHECK(bd.user_data.data_len <= WMS_CDMA_USER_DATA_MAX);
    }
    return 0;
}
