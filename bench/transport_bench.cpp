// The GSM/UMTS transport codec and the CDMA bearer-data decoder.  Callers
// clear a record before decoding into it, so the clearing is timed too.
#include <cstring>

#include "bench_inputs.hpp"
#include "bench_loop.hpp"

namespace {

using namespace smsutil::bench;

void decode_deliver(benchmark::State &state)
{
    const wms_raw_tpdu raw = raw_deliver_gsm7_160();
    wms_gw_deliver msg;
    measure(state, "wms_ts_decode_deliver refused its input", [&] {
        std::memset(&msg, 0, sizeof msg);
        return wms_ts_decode_deliver(&raw, &msg) == WMS_TS_STATUS_OK;
    });
}
BENCHMARK(decode_deliver);

void encode_submit(benchmark::State &state)
{
    const wms_gw_submit msg = submit_gsm7_160();
    wms_raw_tpdu raw;
    measure(state, "wms_ts_encode_submit refused its input",
            [&] { return wms_ts_encode_submit(&msg, &raw) == WMS_TS_STATUS_OK; });
}
BENCHMARK(encode_submit);

void decode_cdma_bd(benchmark::State &state)
{
    const wms_raw_tpdu raw = raw_cdma_bearer_data();
    wms_cdma_bearer_data bd;
    measure(state, "wms_ts_decode_CDMA_bd refused its input", [&] {
        std::memset(&bd, 0, sizeof bd);
        return wms_ts_decode_CDMA_bd(&raw, &bd) == WMS_TS_STATUS_OK;
    });
}
BENCHMARK(decode_cdma_bd);

}  // namespace
