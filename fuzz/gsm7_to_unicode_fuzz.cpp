// gsm7_to_unicode on any codes, language, shift kind and capacity; the
// output block holds exactly the capacity plus the terminator's unit.
#include "fuzz_input.hpp"
#include "smsutil/sms_charset.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint32_t coding = in.byte() % 4;
    const uint32_t lang_shift = in.byte();
    // Negative capacities included: they must fail, not write.
    const int32_t capacity = static_cast<int16_t>(in.word()) % 700;
    fuzzin::Block codes(in.rest(), in.rest_size());
    fuzzin::Block out((static_cast<std::size_t>(capacity > 0 ? capacity : 0) + 1) * sizeof(uint16_t));
    uint32_t n = 0xFFFFFFFFu;
    const int32_t rc = gsm7_to_unicode(codes.data(), static_cast<uint32_t>(codes.size()), coding, lang_shift,
                                       reinterpret_cast<uint16_t *>(out.data()), capacity, &n);
    FUZZ_CHECK(rc == 0 || rc == -1);
    if (rc == 0 && capacity > 0) FUZZ_CHECK(n <= static_cast<uint32_t>(capacity));
    return 0;
}
