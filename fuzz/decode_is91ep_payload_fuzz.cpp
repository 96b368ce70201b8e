// wms_ts_decode_IS91EP_payload for every message type, known or not, on a
// payload block of exactly the stated length.
#include "fuzz_input.hpp"
#include "smsutil/wms_cdma.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    // 128..135: the four known types and their neighbours.
    const uint32_t type = 128u + (in.byte() & 0x07);
    const std::size_t n = std::min<std::size_t>(in.rest_size(), 255);
    fuzzin::Block payload(in.rest(), n);
    wms_cdma_bearer_data bd{};
    const wms_status_e_type rc = wms_ts_decode_IS91EP_payload(type, static_cast<uint8_t>(n), payload.data(), &bd);
    const bool known = type >= WMS_IS91EP_VOICE_MAIL && type <= WMS_IS91EP_SHORT_MESSAGE;
    FUZZ_CHECK(known ? rc != WMS_TS_STATUS_BAD_IS91EP_TYPE : rc == WMS_TS_STATUS_BAD_IS91EP_TYPE);
    if (rc == WMS_TS_STATUS_OK) {
        FUZZ_CHECK(bd.user_data.data_len <= WMS_CDMA_USER_DATA_MAX);
    }
    return 0;
}
