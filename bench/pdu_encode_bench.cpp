// Encoding a text into SUBMIT PDUs, the choice among the national tables
// included: every combination of the three languages is weighed.
#include "bench_inputs.hpp"
#include "bench_loop.hpp"
#include "smsutil/sms_pdu.h"

namespace {

using namespace smsutil::bench;

void pdu_encode_turkish_3_parts(benchmark::State &state)
{
    const std::string text = text_turkish_382();
    sms_pdu_encode_options options{};
    options.languages = 1u << SMS_PDU_LANG_TURKISH | 1u << SMS_PDU_LANG_SPANISH | 1u << SMS_PDU_LANG_PORTUGUESE;
    options.destination = "+905321234567";
    sms_pdu_part parts[3];
    std::size_t count = 0;
    measure(state, "sms_pdu_encode refused its input", [&] {
        return sms_pdu_encode(text.data(), text.size(), &options, parts, 3, &count) == SMS_PDU_OK && count == 3;
    });
}
BENCHMARK(pdu_encode_turkish_3_parts);

}  // namespace
