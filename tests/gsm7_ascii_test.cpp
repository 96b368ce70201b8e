#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"

namespace {

using Bytes = std::vector<uint8_t>;

TEST(Gsm7ToAscii, SpacesForWhatHasNoByteAndFailuresOnBadCodes)
{
    uint8_t out[8];
    uint32_t len = 0;
    const uint8_t wide[] = {0x10, 0x1B, 0x65};  // capital delta, euro sign
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, out, 7, &len), 0);
    EXPECT_EQ(Bytes(out, out + 3), (Bytes{0x20, 0x20, 0}));
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, nullptr, 0, &len), 0);  // counts only
    EXPECT_EQ(len, 2u);
    for (const Bytes &bad : {Bytes{0x81}, Bytes{0x80}, Bytes{0x41, 0x1B}, Bytes{0x1B, 0x41}, Bytes{0x1B, 0x95},
                             Bytes(8, 0x41)}) {
        EXPECT_EQ(sms_gsm7_to_ascii(bad.data(), int32_t(bad.size()), out, 7, &len), -1) << bad.size();
        EXPECT_EQ(len, 0u);
    }
    EXPECT_EQ(sms_gsm7_to_ascii(nullptr, 1, out, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, 1, nullptr, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, -1, out, 7, &len), -1);
}

TEST(AsciiToGsm7, FailsOnUnknownBytesAndShortCapacity)
{
    uint8_t out[4];
    uint32_t len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("a`"), 2, out, 4, &len), -1);
    EXPECT_EQ(len, 1u);  // how far it got
    ASSERT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("@{"), 2, out, 3, &len), 0);
    EXPECT_EQ(Bytes(out, out + len), (Bytes{0x00, 0x1B, 0x28}));
    EXPECT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("a{"), 2, out, 2, &len), -1);
    EXPECT_EQ(len, 2u);  // the pair's second byte had no room
    len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(out, 2, out, 1, &len), -1);
    EXPECT_EQ(len, 9u);  // longer than the capacity: refused before anything
    EXPECT_EQ(sms_ascii_to_gsm7(out, 0, nullptr, 0, &len), 0);
    EXPECT_EQ(sms_ascii_to_gsm7(out, -1, out, 4, &len), -1);
    EXPECT_EQ(sms_ascii_to_gsm7(out, 1, nullptr, 4, &len), -1);
}

// Every byte that converts comes back, except the escape character itself.
TEST(Gsm7Ascii, EveryConvertibleByteComesBack)
{
    std::vector<int> convertible, lost;
    for (int b = 0; b < 256; ++b) {
        const auto in = static_cast<uint8_t>(b);
        uint8_t codes[2], back[2] = {};
        uint32_t len = 0, back_len = 0;
        if (sms_ascii_to_gsm7(&in, 1, codes, 2, &len) != 0) continue;
        convertible.push_back(b);
        if (sms_gsm7_to_ascii(codes, int32_t(len), back, 1, &back_len) != 0 || back[0] != in) lost.push_back(b);
    }
    // The default alphabet less its ten Greek capitals, and eight
    // characters found only in the extension.
    EXPECT_EQ(convertible.size(), 128u - 10 + 8);
    EXPECT_EQ(lost, std::vector<int>{0x1B});
}

TEST(HandleInput7BitToAscii, ConvertsInPlaceOrLeavesTheBuffer)
{
    uint8_t text[514] = {0x48, 0x1B, 0x3C, 0x01};
    uint32_t len = 0;
    smsutil::test::AllocationScope heap;
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 4, &len), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_STREQ(reinterpret_cast<char *>(text), "H[\xA3");
    text[0] = 0x80;
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 2, &len), -1);
    EXPECT_EQ(text[1], '[');
    std::memset(text, 0x41, sizeof text);
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 513, &len), 0);  // the terminator takes byte 514
    EXPECT_EQ(text[513], 0);
    std::memset(text, 0x41, sizeof text);
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 514, &len), -1);
}

}  // namespace
