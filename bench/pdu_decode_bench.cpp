// The standards-true decoder on the same stored PDUs ParseSms is measured
// with, so that the two figures compare directly.
#include <cstring>

#include "bench_inputs.hpp"
#include "bench_loop.hpp"
#include "smsutil/sms_pdu.h"

namespace {

using namespace smsutil::bench;

void pdu_decode_hex(benchmark::State &state, SmsReadPdu (*make)())
{
    const SmsReadPdu in = make();
    const std::size_t len = std::strlen(in.pdu);
    sms_pdu_record out;
    measure(state, "sms_pdu_decode_hex refused its input",
            [&] { return sms_pdu_decode_hex(in.pdu, len, 0, &out) == SMS_PDU_OK; });
}
BENCHMARK_CAPTURE(pdu_decode_hex, gsm7_160_septets, read_gsm7_160);
BENCHMARK_CAPTURE(pdu_decode_hex, ucs2_70_chars, read_ucs2_70);

}  // namespace
