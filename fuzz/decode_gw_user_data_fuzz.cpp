// wms_ts_decode_gw_user_data on any data coding scheme, length and header
// flag; the block holds exactly the octets TP-UDL announces.
#include "fuzz_input.hpp"
#include "smsutil/wms_ts.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    uint8_t dcs_octet = in.byte();
    const uint8_t udl = in.byte();
    const uint8_t header_present = in.byte() & 1;
    wms_gw_dcs dcs{};
    wms_ts_decode_dcs(&dcs_octet, &dcs);
    const std::size_t octets = dcs.alphabet == WMS_ALPHABET_GSM7 ? (udl * 7u + 7u) / 8u : udl;
    fuzzin::Block ud(octets);
    std::memcpy(ud.data(), in.rest(), std::min(octets, in.rest_size()));

    wms_gw_user_data out{};  // the caller clears the record
    const uint8_t consumed = wms_ts_decode_gw_user_data(&dcs, udl, ud.data(), header_present, &out);
    // Under a header flag the count is UDHL + 1 plus the text, whatever UDHL
    // claims, as documented; the reads themselves stay in the block.
    if (header_present == 0) FUZZ_CHECK(consumed <= octets);
    if (consumed != 0) {
        FUZZ_CHECK(out.num_headers <= WMS_UDH_MAX_IES);
        FUZZ_CHECK(out.sm_len <= WMS_MAX_LEN);
    }
    return 0;
}
