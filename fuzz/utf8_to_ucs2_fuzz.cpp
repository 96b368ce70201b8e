// UTF8_TO_UCS2 on any text into a zeroed destination of any capacity.
#include "fuzz_input.hpp"
#include "smsutil/sms_charset.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const int32_t capacity = in.word() % 1200;
    fuzzin::Block text = fuzzin::terminated(in.rest(), in.rest_size());
    fuzzin::Block out(static_cast<std::size_t>(capacity));
    const int32_t n = UTF8_TO_UCS2(text.text(), out.data(), capacity);
    FUZZ_CHECK(n == -1 || (n >= 0 && n <= capacity));
    if (n >= 0) FUZZ_CHECK(n == MultiByte_WideChar(text.text()));
    return 0;
}
