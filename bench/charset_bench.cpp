// Text conversion between UTF-8 and 7-bit codes.
#include "bench_inputs.hpp"
#include "bench_loop.hpp"

namespace {

using namespace smsutil::bench;

constexpr int32_t kCodeCapacity = 512;
constexpr int64_t kCharacters = 160;

void utf8_to_7bit(benchmark::State &state)
{
    const std::string text = text_mixed_160();
    uint8_t codes[kCodeCapacity + 1];
    uint32_t n = 0;
    measure(state, "UTF8_TO_7BIT refused its input",
            [&] { return UTF8_TO_7BIT(text.c_str(), codes, kCodeCapacity, &n, 0) == 0; });
    state.SetItemsProcessed(state.iterations() * kCharacters);
}
BENCHMARK(utf8_to_7bit);

void bit7_to_utf8(benchmark::State &state)
{
    uint8_t codes[kCodeCapacity + 1] = {};
    uint32_t n = 0;
    if (UTF8_TO_7BIT(text_mixed_160().c_str(), codes, kCodeCapacity, &n, 0) != 0) {
        state.SkipWithError("no 7-bit input");
        return;
    }
    char utf8[SMS_PDU_TEXT_SIZE];
    measure(state, "BIT7_TO_UTF8 refused its input",
            [&] { return BIT7_TO_UTF8(codes, static_cast<int32_t>(n), utf8, sizeof utf8, 0) == 0; });
    state.SetItemsProcessed(state.iterations() * kCharacters);
}
BENCHMARK(bit7_to_utf8);

}  // namespace
