// sms_util_split_pack on any text, pack coding and national language.
#include <string>

#include "fuzz_input.hpp"
#include "smsutil/sms_api.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const int32_t pack_coding = in.byte() % 3;  // 2 is refused
    const uint32_t coding = in.byte() % 4;      // 3 names no table
    fuzzin::Block text = fuzzin::terminated(in.rest(), in.rest_size());
    const auto len = static_cast<int32_t>(text.size() - 1);

    SmsPack packs[SMS_MAX_PACKS];
    std::memset(packs, 0xA5, sizeof packs);
    const int32_t n = sms_util_split_pack(text.text(), len, pack_coding, coding, packs);
    FUZZ_CHECK(n == -1 || (n >= 1 && n <= SMS_MAX_PACKS));
    std::string joined;
    for (int32_t k = 0; k < n; ++k) {
        const void *nul = std::memchr(packs[k].content, 0, sizeof packs[k].content);
        FUZZ_CHECK(nul != nullptr);
        FUZZ_CHECK(packs[k].length == std::strlen(packs[k].content));
        joined += packs[k].content;
    }
    // Packs of UCS-2 text are cut on whole characters of the caller's text.
    if (n > 0 && pack_coding == 0) {
        FUZZ_CHECK(std::string(text.text()).compare(0, joined.size(), joined) == 0);
    }
    return 0;
}
