// The message interface: one stored PDU in, one SUBMIT PDU out, and the
// cutting of a long text into packs.
#include "bench_inputs.hpp"
#include "bench_loop.hpp"

namespace {

using namespace smsutil::bench;

void parse_sms(benchmark::State &state, SmsReadPdu (*make)())
{
    SmsReadPdu in = make();
    SmsMessage out;
    measure(state, "ParseSms refused its input", [&] { return ParseSms(&in, &out) == SMS_RESULT_OK; });
}
BENCHMARK_CAPTURE(parse_sms, gsm7_160_septets, read_gsm7_160);
BENCHMARK_CAPTURE(parse_sms, ucs2_70_chars, read_ucs2_70);
BENCHMARK_CAPTURE(parse_sms, concatenated_part, read_concat_part);
BENCHMARK_CAPTURE(parse_sms, status_report, read_status_report);

void compose_sms(benchmark::State &state, SmsMessage (*make)())
{
    const SmsMessage in = make();
    SmsSendPdu out;
    measure(state, "ComposeSms refused its input", [&] { return ComposeSms(&in, &out) == SMS_RESULT_OK; });
}
BENCHMARK_CAPTURE(compose_sms, gsm7_160_septets, compose_gsm7_160);
BENCHMARK_CAPTURE(compose_sms, ucs2_70_chars, compose_ucs2_70);

// `expected` packs, or -1 where the text cannot be cut into four.
void split_pack(benchmark::State &state, std::string (*make)(), int32_t pack_coding, int32_t expected)
{
    const std::string text = make();
    SmsPack packs[SMS_MAX_PACKS];
    measure(state, "sms_util_split_pack gave an unexpected pack count", [&] {
        return sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding, 0, packs) == expected;
    });
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * text.size()));
}
BENCHMARK_CAPTURE(split_pack, gsm7_600_chars, text_ascii_600, 1, 4);
// 600 characters need nine UCS-2 packs: refused after counting them.
BENCHMARK_CAPTURE(split_pack, ucs2_600_chars_refused, text_cjk_600, 0, -1);
BENCHMARK_CAPTURE(split_pack, ucs2_268_chars, text_cjk_268, 0, 4);

}  // namespace
