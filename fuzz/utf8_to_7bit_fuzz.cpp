// UTF8_TO_7BIT on any text, capacity and national language; whatever it
// accepts converts back to the same codes.
#include "fuzz_input.hpp"
#include "smsutil/sms_charset.h"

namespace {

// Two units convert but cannot come back: U+001B, which the default row
// holds at the escape position, and U+FFFF, the tables' marker for a code
// without a character, which the search finds like any other value.
bool has_unreadable_unit(const char *utf8)
{
    fuzzin::Block units(2 * 2049);
    UTF8_TO_UCS2(utf8, units.data(), static_cast<int32_t>(units.size()) - 2);
    for (std::size_t i = 0; i + 1 < units.size(); i += 2) {
        const unsigned u = units.data()[i] | (units.data()[i + 1] << 8);
        if (u == 0) break;
        if (u == 0x001B || u == 0xFFFF) return true;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint32_t coding = in.byte() % 4;
    const int32_t capacity = in.word() % 1500;
    fuzzin::Block text = fuzzin::terminated(in.rest(), in.rest_size());
    fuzzin::Block codes(static_cast<std::size_t>(capacity));
    uint32_t n = 0xFFFFFFFFu;
    const int32_t rc = UTF8_TO_7BIT(text.text(), codes.data(), capacity, &n, coding);
    FUZZ_CHECK(rc == 0 || rc == -1);
    if (rc != 0) return 0;
    FUZZ_CHECK(n <= static_cast<uint32_t>(capacity));
    for (uint32_t i = 0; i < n; ++i) FUZZ_CHECK(codes.data()[i] < 0x80);
    if (coding == GSM7_CODING_DEFAULT && n <= 512 && !has_unreadable_unit(text.text())) {
        // The default row reads back what it wrote: codes -> text -> codes.
        fuzzin::Block back(4 * n + 1);
        FUZZ_CHECK(BIT7_TO_UTF8(codes.data(), static_cast<int32_t>(n), back.text(), static_cast<int32_t>(back.size()),
                                coding) == 0);
        fuzzin::Block again(n + 1);
        uint32_t m = 0;
        FUZZ_CHECK(UTF8_TO_7BIT(back.text(), again.data(), static_cast<int32_t>(again.size()), &m, coding) == 0);
        FUZZ_CHECK(m == n && std::memcmp(again.data(), codes.data(), n) == 0);
    }
    return 0;
}
