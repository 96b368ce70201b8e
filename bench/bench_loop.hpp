// The timing loop every benchmark shares: `call` does one operation and
// says whether the library accepted it; a refusal stops the benchmark with
// `refusal` as its error, since a figure for a failing call means nothing.
#pragma once

#include <benchmark/benchmark.h>

namespace smsutil::bench {

template <class Call>
void measure(benchmark::State &state, const char *refusal, Call call)
{
    for (auto _ : state) {
        if (!call()) {
            state.SkipWithError(refusal);
            break;
        }
        // The results live in the caller's buffers: keep them observable.
        benchmark::ClobberMemory();
    }
}

}  // namespace smsutil::bench
