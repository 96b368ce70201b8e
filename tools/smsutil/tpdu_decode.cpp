#include "tpdu_decode.hpp"

#include <algorithm>
#include <cstring>

namespace smsutil::cli {
namespace {

template <typename Record, typename Decoder>
void run_decoder(const wms_raw_tpdu &raw, Decoder decoder, DecodedTpdu &out)
{
    Record record;
    std::memset(&record, 0, sizeof record);
    out.status = decoder(&raw, &record);
    out.record = record;
}

}  // namespace

DecodedTpdu decode_tpdu(const std::vector<uint8_t> &tpdu, uint32_t state)
{
    DecodedTpdu out;
    if (tpdu.empty()) return out;
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    raw.len = static_cast<uint32_t>(std::min<size_t>(tpdu.size(), WMS_MAX_LEN));
    std::copy_n(tpdu.begin(), raw.len, raw.data);
    out.first_octet = tpdu[0];
    const unsigned mti = tpdu[0] & 3U;
    raw.tpdu_type = static_cast<uint8_t>(mti);
    if (mti == 3) return out;
    if (state == 2 || state == 3) {
        run_decoder<wms_gw_submit>(raw, wms_ts_decode_submit, out);
    } else if (mti == 0) {
        run_decoder<wms_gw_deliver>(raw, wms_ts_decode_deliver, out);
    } else if (mti == 2) {
        run_decoder<wms_gw_status_report>(raw, wms_ts_decode_status_report, out);
    }
    return out;
}

}  // namespace smsutil::cli
