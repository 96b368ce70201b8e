// The long-message store: one 4-part message added and completed while
// other messages wait in the store, so the figure shows what a part costs
// and whether it grows with the number of messages pending.
#include <cstring>
#include <string>
#include <vector>

#include "bench_loop.hpp"
#include "smsutil/sms_reassembly.h"

namespace {

using namespace smsutil::bench;

void ignore_handover(void *, const sms_reasm_message *, int) {}

sms_reasm_part part_of(const std::string &sender, uint8_t number, const std::string &text)
{
    sms_reasm_part part;
    std::memset(&part, 0, sizeof part);
    part.concatenated = 1;
    part.reference_bits = 8;
    part.reference = 42;
    part.total = 4;
    part.number = number;
    std::memcpy(part.address, sender.c_str(), sender.size());
    part.text = text.data();
    part.text_length = static_cast<uint32_t>(text.size());
    return part;
}

// Argument: messages pending (each holding its first part) while the
// measured message passes through.
void reassembly_add_part(benchmark::State &state)
{
    const auto pending = static_cast<uint32_t>(state.range(0));
    const sms_reasm_config config{pending + 1, 4, 4 * 160, 0, ignore_handover, nullptr};
    std::vector<uint64_t> storage(sms_reasm_storage_size(&config) / 8 + 1);
    sms_reasm_store *store = nullptr;
    sms_reasm_init(&store, storage.data(), storage.size() * 8, &config);
    const std::string text(153, 'x');  // a full 7-bit part
    for (uint32_t k = 0; k < pending; ++k) {
        const sms_reasm_part first = part_of("+4670" + std::to_string(k), 1, text);
        sms_reasm_add(store, &first, 0, nullptr);
    }
    sms_reasm_part parts[4];
    for (uint8_t n = 0; n < 4; ++n) parts[n] = part_of("+4679999999", static_cast<uint8_t>(n + 1), text);
    std::vector<char> joined(4 * 160 + 1);
    sms_reasm_message out;
    out.text = joined.data();
    out.text_capacity = static_cast<uint32_t>(joined.size());
    // Parts in the order 2, 4, 1, 3: the last one completes the message.
    measure(state, "the message did not complete", [&] {
        return sms_reasm_add(store, &parts[1], 0, &out) == SMS_REASM_STORED &&
               sms_reasm_add(store, &parts[3], 0, &out) == SMS_REASM_STORED &&
               sms_reasm_add(store, &parts[0], 0, &out) == SMS_REASM_STORED &&
               sms_reasm_add(store, &parts[2], 0, &out) == SMS_REASM_COMPLETE;
    });
    state.counters["per_part"] =
        benchmark::Counter(4, benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert);
}
BENCHMARK(reassembly_add_part)->Arg(1)->Arg(64)->Arg(1024);

}  // namespace
