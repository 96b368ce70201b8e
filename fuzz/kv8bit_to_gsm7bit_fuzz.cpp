// kv8bit_to_gsm7bit on any 8-bit text and capacity.
#include "fuzz_input.hpp"
#include "smsutil/sms_charset.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint32_t capacity = in.word() % 1400;
    fuzzin::Block text(in.rest(), in.rest_size());
    fuzzin::Block out(capacity);
    uint32_t n = 0xFFFFFFFFu;
    const int32_t rc = kv8bit_to_gsm7bit(text.data(), static_cast<uint32_t>(text.size()), out.data(), capacity, &n);
    FUZZ_CHECK(rc == 0 || rc == -1);
    if (rc == 0) {
        FUZZ_CHECK(n <= capacity);
        for (uint32_t i = 0; i < n; ++i) FUZZ_CHECK(out.data()[i] < 0x80);
    }
    return 0;
}
