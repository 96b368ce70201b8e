#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <optional>

#include "cdma/bit_fields.hpp"

namespace {

using smsutil::cdma::BitReader;
using smsutil::cdma::BitWriter;

TEST(BitWriter, RefusesAFieldPastTheEndAndWritesNothing)
{
    std::array<std::uint8_t, 2> buf{};
    BitWriter w(buf);
    ASSERT_TRUE(w.write(0x7F, 7));
    ASSERT_TRUE(w.write(0xFF, 8));
    EXPECT_FALSE(w.write(0x3, 2));
    EXPECT_EQ(w.position(), 15u);
    EXPECT_EQ(buf[1], 0xFE);
    EXPECT_TRUE(w.write(1, 1));
    EXPECT_FALSE(w.write(1, 1));
    EXPECT_EQ(buf, (std::array<std::uint8_t, 2>{0xFF, 0xFF}));
}

TEST(BitWriter, RetractClearsTheBitsAndStopsAtItsFloor)
{
    std::array<std::uint8_t, 3> buf{};
    BitWriter w(buf);
    w.write(0xFFFF, 16);
    w.retract(3, 10);
    EXPECT_EQ(w.position(), 13u);
    EXPECT_EQ(buf[1], 0xF8);
    w.retract(100, 10);
    EXPECT_EQ(w.position(), 10u);
    EXPECT_EQ(buf[1], 0xC0);
    w.pad_to_octet();
    EXPECT_EQ(w.position(), 16u);
    EXPECT_EQ(buf[1], 0xC0);
}

TEST(BitWriter, PatchOnlyRewritesWhatWasWritten)
{
    std::array<std::uint8_t, 3> buf{};
    BitWriter w(buf);
    w.write(0, 16);
    EXPECT_TRUE(w.patch(8, 0xAB, 8));
    EXPECT_FALSE(w.patch(12, 0xFF, 8));
    EXPECT_EQ(buf, (std::array<std::uint8_t, 3>{0x00, 0xAB, 0x00}));
}

TEST(BitReader, FailsPastTheEndAndZeroExtendsOnRequest)
{
    const std::array<std::uint8_t, 2> buf{0xA5, 0xFF};
    BitReader r(buf);
    EXPECT_EQ(r.read(12), 0xA5Fu);
    EXPECT_EQ(r.read(5), std::nullopt);
    EXPECT_EQ(r.position(), 12u);
    // Four bits remain; an eight-bit unit takes them as its top half.
    EXPECT_EQ(r.read_zero_extended(8), 0xF0u);
    EXPECT_TRUE(r.at_end());
    EXPECT_EQ(r.read_zero_extended(6), 0u);
}

}  // namespace
