// wms_ts_decode_user_data_header on any header: the octets given are
// exactly the UDHL octet and the udhl octets it announces.
#include "fuzz_input.hpp"
#include "smsutil/wms_ts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    if (size == 0) return 0;
    const uint8_t udhl = data[0];
    fuzzin::Block header(1u + udhl);
    std::memcpy(header.data(), data, std::min<std::size_t>(size, header.size()));

    uint8_t count = 0xEE;
    wms_udh headers[WMS_UDH_MAX_IES] = {};
    const uint8_t consumed = wms_ts_decode_user_data_header(udhl, header.data(), &count, headers);
    if (consumed != 0) {
        FUZZ_CHECK(count <= WMS_UDH_MAX_IES);
        FUZZ_CHECK(consumed <= udhl + 1u);
    }
    return 0;
}
