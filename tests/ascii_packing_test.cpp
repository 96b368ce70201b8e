#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "smsutil/wms_cdma.h"

namespace {

struct PackCase {
    const char *name;
    std::string text;
    std::vector<std::uint8_t> packed;
    std::uint8_t padding;
};

void PrintTo(const PackCase &c, std::ostream *os) { *os << c.name; }

class AsciiPack : public ::testing::TestWithParam<PackCase> {};

TEST_P(AsciiPack, GivesTheseOctets)
{
    const PackCase &c = GetParam();
    std::vector<std::uint8_t> out(c.packed.size() + 1, 0xEE);
    std::uint8_t octets = 0xEE;
    std::uint8_t padding = 0xEE;
    EXPECT_EQ(wms_ts_pack_ascii(c.text.c_str(), out.data(), &octets, &padding), c.text.size());
    EXPECT_EQ(octets, c.packed.size());
    EXPECT_EQ(padding, c.padding);
    EXPECT_EQ(std::vector<std::uint8_t>(out.begin(), out.end() - 1), c.packed);
    EXPECT_EQ(out.back(), 0xEE);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, AsciiPack,
    ::testing::Values(PackCase{"two_characters", "AB", {0x83, 0x08}, 2},
                      PackCase{"eight_characters_need_no_padding", "AAAAAAAA", {0x83, 0x06, 0x0C, 0x18, 0x30, 0x60, 0xC1}, 0},
                      PackCase{"high_bit_dropped", "\xC1", {0x82}, 1},
                      PackCase{"empty", "", {}, 0}),
    [](const auto &info) { return std::string(info.param.name); });

wms_cdma_user_data packed_text(const std::string &text)
{
    wms_cdma_user_data ud{};
    ud.num_fields = wms_ts_pack_ascii(text.c_str(), ud.data, &ud.data_len, &ud.padding_bits);
    return ud;
}

TEST(AsciiUnpack, RandomTextsSurvivePackingAtEveryLength)
{
    std::mt19937 rng(7);
    for (std::size_t n = 0; n <= 255; ++n) {
        std::string text(n, ' ');
        for (auto &ch : text) ch = static_cast<char>(1 + rng() % 127);
        const wms_cdma_user_data ud = packed_text(text);
        ASSERT_EQ(ud.num_fields, static_cast<std::uint8_t>(n));
        ASSERT_EQ(ud.data_len, (7 * n + 7) / 8);
        ASSERT_EQ((8 * ud.data_len - 7 * n) % 8, ud.padding_bits);
        if (ud.data_len > WMS_CDMA_USER_DATA_MAX) continue;  // longer than a record holds
        char out[257];
        ASSERT_EQ(wms_ts_unpack_ascii(&ud, 255, out), n);
        EXPECT_EQ(std::string(out), text);
    }
}

struct UnpackCase {
    const char *name;
    std::uint8_t max_count;
    std::uint8_t num_fields;
    std::uint8_t data_len;
    std::string expected;
};

void PrintTo(const UnpackCase &c, std::ostream *os) { *os << c.name; }

class AsciiUnpack : public ::testing::TestWithParam<UnpackCase> {};

TEST_P(AsciiUnpack, StopsAtTheFirstLimit)
{
    const UnpackCase &c = GetParam();
    wms_cdma_user_data ud = packed_text("HELLO WORLD");
    ud.num_fields = c.num_fields;
    ud.data_len = c.data_len;
    char out[64];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, c.max_count, out), c.expected.size());
    EXPECT_EQ(std::string(out), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Limits, AsciiUnpack,
    ::testing::Values(UnpackCase{"maximum_zero", 0, 11, 10, ""}, UnpackCase{"maximum_first", 5, 11, 10, "HELLO"},
                      UnpackCase{"num_fields_first", 20, 4, 10, "HELL"},
                      // Two octets hold two whole characters and the start of a
                      // third, which is taken whole from the array.
                      UnpackCase{"data_len_first", 20, 11, 2, "HEL"},
                      UnpackCase{"nothing_carried", 20, 11, 0, ""}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(AsciiUnpackLimits, DataLenBeyondTheArrayReadsOnlyTheArray)
{
    wms_cdma_user_data ud{};
    std::memset(ud.data, 0xFF, sizeof ud.data);
    ud.data_len = 255;
    ud.num_fields = 255;
    char out[256];
    // 229 octets hold 261 characters' worth of bits; 255 are asked for.
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, out), 255);
    EXPECT_EQ(out[254], 0x7F);
    // A character that starts inside data_len but ends past it is read on
    // from the array.
    ud.data_len = 8;
    ud.num_fields = 20;
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, out), 10);
    EXPECT_EQ(out[9], 0x7F);

}

}  // namespace
