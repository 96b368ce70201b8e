#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <ostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include "smsutil/wms_cdma.h"

namespace {

// The reference: one bit at a time, most significant bit first.
void naive_pack(std::uint32_t value, std::uint8_t *buf, std::size_t pos, unsigned n)
{
    for (unsigned i = 0; i < n; ++i) {
        const std::size_t p = pos + i;
        const auto m = static_cast<std::uint8_t>(0x80u >> (p % 8));
        if ((value >> (n - 1 - i)) & 1u)
            buf[p / 8] |= m;
        else
            buf[p / 8] &= static_cast<std::uint8_t>(~m);
    }
}

std::uint32_t naive_unpack(const std::uint8_t *buf, std::size_t pos, unsigned n)
{
    std::uint32_t v = 0;
    for (unsigned i = 0; i < n; ++i) v = (v << 1) | ((buf[(pos + i) / 8] >> (7 - (pos + i) % 8)) & 1u);
    return v;
}

constexpr std::size_t kBufSize = 6;
constexpr unsigned kLastPosition = 24;  // every offset within three octets

using Buffer = std::array<std::uint8_t, kBufSize>;

Buffer random_buffer(std::mt19937 &rng)
{
    Buffer b{};
    for (auto &o : b) o = static_cast<std::uint8_t>(rng());
    return b;
}

// Packs random values over random backgrounds at every offset and width and
// compares the whole buffer with the model: bits outside the field, and
// octets outside it, must come through unchanged.
void expect_pack_matches_model(bool word, unsigned seed)
{
    std::mt19937 rng(seed);
    const unsigned max_width = word ? 16 : 8;
    for (unsigned pos = 0; pos <= kLastPosition; ++pos) {
        for (unsigned n = 1; n <= max_width; ++n) {
            for (int round = 0; round < 8; ++round) {
                const auto value = static_cast<std::uint16_t>(word ? rng() : rng() & 0xFF);
                Buffer got = random_buffer(rng);
                Buffer want = got;
                const auto p = static_cast<uint16_t>(pos);
                const auto w = static_cast<uint16_t>(n);
                if (word)
                    b_packw(value, got.data(), p, w);
                else
                    b_packb(static_cast<std::uint8_t>(value), got.data(), p, w);
                naive_pack(value & ((1u << n) - 1), want.data(), pos, n);
                ASSERT_EQ(got, want) << "pos " << pos << " n " << n << " value " << value;
            }
        }
    }
}

TEST(BitPacking, PackbMatchesBitByBitModelAtEveryOffsetAndWidth) { expect_pack_matches_model(false, 17); }

TEST(BitPacking, PackwMatchesBitByBitModelAtEveryOffsetAndWidth) { expect_pack_matches_model(true, 23); }

TEST(BitPacking, UnpackMatchesBitByBitModelAtEveryOffsetAndWidth)
{
    std::mt19937 rng(29);
    for (int round = 0; round < 16; ++round) {
        const Buffer src = random_buffer(rng);
        const Buffer before = src;
        for (unsigned pos = 0; pos <= kLastPosition; ++pos) {
            for (unsigned n = 1; n <= 16; ++n) {
                const auto p = static_cast<uint16_t>(pos);
                const auto w = static_cast<uint16_t>(n);
                ASSERT_EQ(b_unpackw(src.data(), p, w), naive_unpack(src.data(), pos, n)) << pos << "/" << n;
                if (n <= 8) {
                    ASSERT_EQ(b_unpackb(src.data(), p, w), naive_unpack(src.data(), pos, n)) << pos << "/" << n;
                }
            }
        }
        EXPECT_EQ(src, before);
    }
}

// A field that ends on the last octet of a buffer must not touch the octet
// after it; exact-size heap buffers let the address sanitizer see that.
TEST(BitPacking, FieldEndingAtTheBufferEndStaysInside)
{
    for (unsigned n = 1; n <= 16; ++n) {
        for (unsigned pos = 0; pos < 16; ++pos) {
            const std::size_t size = (pos + n + 7) / 8;
            auto buf = std::make_unique<std::uint8_t[]>(size);
            const auto p = static_cast<uint16_t>(pos);
            const auto w = static_cast<uint16_t>(n);
            b_packw(0xFFFF, buf.get(), p, w);
            EXPECT_EQ(b_unpackw(buf.get(), p, w), (1u << n) - 1) << pos << "/" << n;
            if (n <= 8) {
                b_packb(0, buf.get(), p, w);
                EXPECT_EQ(b_unpackb(buf.get(), p, w), 0) << pos << "/" << n;
            }
        }
    }
}

struct PackCase {
    const char *name;
    std::vector<std::uint8_t> before;
    std::uint16_t value;
    std::uint16_t pos;
    std::uint16_t n;
    bool word;
    std::vector<std::uint8_t> after;
};

void PrintTo(const PackCase &c, std::ostream *os) { *os << c.name; }

class BitPackingExamples : public ::testing::TestWithParam<PackCase> {};

TEST_P(BitPackingExamples, GiveTheseOctets)
{
    const PackCase &c = GetParam();
    std::vector<std::uint8_t> buf = c.before;
    if (c.word)
        b_packw(c.value, buf.data(), c.pos, c.n);
    else
        b_packb(static_cast<std::uint8_t>(c.value), buf.data(), c.pos, c.n);
    EXPECT_EQ(buf, c.after);
    const std::uint16_t field = c.value & static_cast<std::uint16_t>((1u << std::min<unsigned>(c.n, c.word ? 16 : 8)) - 1);
    if (c.word)
        EXPECT_EQ(b_unpackw(buf.data(), c.pos, c.n), field);
    else
        EXPECT_EQ(b_unpackb(buf.data(), c.pos, c.n), field);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, BitPackingExamples,
    ::testing::Values(
        PackCase{"nibble_in_third_octet", {0, 0, 0}, 0x0A, 16, 4, false, {0x00, 0x00, 0xA0}},
        PackCase{"zeros_keep_neighbouring_ones", {0xFF, 0xFF}, 0x00, 4, 7, false, {0xF0, 0x1F}},
        PackCase{"word_over_three_octets", {0, 0, 0, 0, 0}, 0x1234, 20, 16, true, {0, 0, 0x01, 0x23, 0x40}},
        PackCase{"high_value_bits_ignored", {0, 0}, 0xFF, 6, 3, false, {0x03, 0x80}},
        PackCase{"byte_count_above_eight_is_eight", {0, 0, 0}, 0xA5, 4, 12, false, {0x0A, 0x50, 0x00}},
        PackCase{"word_count_above_sixteen_is_sixteen", {0, 0, 0}, 0xBEEF, 0, 20, true, {0xBE, 0xEF, 0x00}},
        PackCase{"zero_count_touches_nothing", {0x5A}, 0xFF, 3, 0, false, {0x5A}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(BitPacking, UnpackExamples)
{
    const std::uint8_t src[] = {0xA1, 0xB2, 0xC3};
    EXPECT_EQ(b_unpackb(src, 0, 8), 0xA1);
    EXPECT_EQ(b_unpackb(src, 3, 8), 0x0D);  // low five bits of A1, high three of B2
    EXPECT_EQ(b_unpackw(src, 4, 16), 0x1B2C);
    EXPECT_EQ(b_unpackb(src, 5, 0), 0);
}

}  // namespace
