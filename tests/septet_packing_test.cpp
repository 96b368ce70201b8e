#include <gtest/gtest.h>

#include <array>
#include <random>
#include <string>
#include <vector>

#include "smsutil/wms_ts.h"

namespace {

std::vector<uint8_t> septets_of(const std::string &text) { return {text.begin(), text.end()}; }

struct PackCase {
    const char *name;
    std::string text;
    uint16_t fill;
    std::vector<uint8_t> packed;
};

class SeptetPackingKnown : public ::testing::TestWithParam<PackCase> {};

TEST_P(SeptetPackingKnown, PacksAndUnpacksKnownOctets)
{
    const auto &c = GetParam();
    const auto septets = septets_of(c.text);
    std::array<uint8_t, 32> out{};
    const uint16_t written = wms_ts_pack_gw_7_bit_chars(septets.data(), static_cast<uint16_t>(septets.size()), c.fill,
                                                        static_cast<uint16_t>(out.size()), out.data());
    ASSERT_EQ(written, c.packed.size());
    EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + written), c.packed);

    std::array<uint8_t, 32> back{};
    const uint16_t start_code = c.fill == 0 ? 0 : static_cast<uint16_t>(8 - c.fill);
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(c.packed.data(), static_cast<uint8_t>(septets.size()), 32, start_code,
                                           back.data()),
              c.packed.size());
    EXPECT_EQ(std::vector<uint8_t>(back.begin(), back.begin() + static_cast<long>(septets.size())), septets);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SeptetPackingKnown,
    ::testing::Values(PackCase{"hellohello", "hellohello", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}},
                      PackCase{"seven_chars", "hellohe", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0x01}},
                      PackCase{"eight_chars", "hellohel", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9}},
                      PackCase{"one_fill_bit", "hello", 1, {0xD0, 0x65, 0x36, 0xFB, 0x0D}},
                      PackCase{"six_fill_bits", "hello", 6, {0x00, 0xBA, 0xCC, 0x66, 0xBF, 0x01}},
                      PackCase{"fill_without_text", "", 3, {0x00}},
                      PackCase{"nothing", "", 0, {}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(SeptetPacking, FillBitsKeepWhatTheCallerLeftInTheFirstOctet)
{
    const auto septets = septets_of("Hi");
    std::array<uint8_t, 4> out{0x01, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(septets.data(), 2, 1, 4, out.data()), 2);
    EXPECT_EQ(out[0], 0x91);  // 0x90 packed, ORed onto the caller's low bit
    EXPECT_EQ(out[1], 0x69);
    EXPECT_EQ(out[2], 0xEE);
}

TEST(SeptetPacking, StopsAtTheCapacity)
{
    const auto septets = septets_of("hellohello");
    std::array<uint8_t, 9> out;
    out.fill(0xEE);
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(septets.data(), 10, 0, 4, out.data()), 4);
    EXPECT_EQ(out[3], 0xFD);
    EXPECT_EQ(out[4], 0xEE);

    std::array<uint8_t, 10> chars{};
    const std::array<uint8_t, 9> packed{0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 10, 3, 0, chars.data()), 3);
    EXPECT_EQ(chars[2], 'l');
    EXPECT_EQ(chars[3], 0);
}

TEST(SeptetPacking, CharacterInTheLastOctetsHighBitsIsStoredPastTheCount)
{
    // Seven characters leave seven spare bits; a sender padding with CR puts
    // a whole character there.
    const std::array<uint8_t, 7> packed{0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0x1B};
    std::array<uint8_t, 9> chars{};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 7, 9, 0, chars.data()), 7);
    EXPECT_EQ(chars[6], 'e');
    EXPECT_EQ(chars[7], 0x0D);
    EXPECT_EQ(chars[8], 0);
    std::array<uint8_t, 7> exact{};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 7, 7, 0, exact.data()), 7);
    EXPECT_EQ(exact[6], 'e');
}

TEST(SeptetPacking, RandomTextsRoundTripWithEveryFill)
{
    std::mt19937 rng(99);
    for (int i = 0; i < 500; ++i) {
        const auto count = static_cast<uint16_t>(rng() % 161);
        std::vector<uint8_t> text(count);
        for (auto &c : text) c = static_cast<uint8_t>(rng() % 128);
        for (uint16_t fill = 0; fill < 7; ++fill) {
            std::array<uint8_t, 160> packed{};
            const uint16_t written = wms_ts_pack_gw_7_bit_chars(text.data(), count, fill, 160, packed.data());
            ASSERT_EQ(written, (fill + 7 * count + 7) / 8);
            std::array<uint8_t, 161> back{};
            const uint16_t start_code = fill == 0 ? 0 : static_cast<uint16_t>(8 - fill);
            ASSERT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), static_cast<uint8_t>(count), 161, start_code,
                                                   back.data()),
                      written);
            ASSERT_TRUE(std::equal(text.begin(), text.end(), back.begin())) << i << " fill " << fill;
        }
    }
}

}  // namespace
