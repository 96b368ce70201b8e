// BIT7_TO_UTF8 on any codes (valid or not), size and national language:
// the destination always keeps its terminator.
#include "fuzz_input.hpp"
#include "smsutil/sms_charset.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint32_t coding = in.byte() % 4;
    const int32_t out_size = in.word() % 2000;
    fuzzin::Block codes(in.rest(), in.rest_size());
    fuzzin::Block out(static_cast<std::size_t>(out_size));
    const int32_t rc = BIT7_TO_UTF8(codes.data(), static_cast<int32_t>(codes.size()), out.text(), out_size, coding);
    FUZZ_CHECK(rc == 0 || rc == -1);
    if (rc == 0) FUZZ_CHECK(std::memchr(out.data(), 0, out.size()) != nullptr);
    return 0;
}
