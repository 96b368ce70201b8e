// Random sequences of add, expire, save and load, visit on a small store
// (four messages of four parts, 64 text bytes each): nothing may be lost,
// counted twice, or read outside the store's buffer.
#include "fuzz_input.hpp"
#include "reassembly_driver.hpp"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    reassembly_driver::Driver driver(reassembly_driver::Bounds{});
    const std::string problem = driver.run(data, size);
    if (!problem.empty()) fuzzin::invariant_failed(problem.c_str());
    return 0;
}
