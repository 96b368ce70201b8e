// wms_ts_decode_submit on any octets and any stated length.
#include "raw_tpdu.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    return fuzzin::decode_tpdu<wms_gw_submit>(data, size, wms_ts_decode_submit);
}
