#include <gtest/gtest.h>

#include <array>

#include "common/octets.hpp"

namespace {

using smsutil::common::OctetReader;
using smsutil::common::OctetWriter;

TEST(OctetReader, NeverReadsPastTheEnd)
{
    const std::array<std::uint8_t, 3> data{1, 2, 3};
    OctetReader r(data);
    std::uint8_t v = 0;
    std::array<std::uint8_t, 4> out{};
    EXPECT_FALSE(r.read(out, 4));  // all or nothing
    EXPECT_EQ(r.position(), 0u);
    EXPECT_TRUE(r.read(v));
    EXPECT_EQ(v, 1);
    EXPECT_TRUE(r.read(out, 2));
    EXPECT_EQ(out[1], 3);
    EXPECT_TRUE(r.at_end());
    EXPECT_FALSE(r.read(v));
    EXPECT_FALSE(r.peek(v));
    EXPECT_FALSE(r.skip(1));
    EXPECT_TRUE(r.skip(0));
}

TEST(OctetReader, TakeAndSkipRespectRemaining)
{
    const std::array<std::uint8_t, 5> data{9, 8, 7, 6, 5};
    OctetReader r(data.data(), data.size());
    std::span<const std::uint8_t> view;
    EXPECT_TRUE(r.skip(1));
    EXPECT_FALSE(r.take(5, view));
    EXPECT_TRUE(r.take(4, view));
    EXPECT_EQ(view.size(), 4u);
    EXPECT_EQ(view[0], 8);
    EXPECT_EQ(r.remaining(), 0u);
    OctetReader empty;
    EXPECT_FALSE(empty.take(1, view));
}

TEST(OctetWriter, StopsAtCapacity)
{
    std::array<std::uint8_t, 3> buf{};
    OctetWriter w(buf);
    const std::array<std::uint8_t, 2> two{4, 5};
    EXPECT_TRUE(w.put(1));
    EXPECT_TRUE(w.put(two));
    EXPECT_FALSE(w.put(6));
    EXPECT_FALSE(w.put(std::span<const std::uint8_t>(two)));
    EXPECT_EQ(w.position(), 3u);
    EXPECT_EQ(buf[2], 5);
    EXPECT_EQ(w.written().size(), 3u);
}

TEST(OctetWriter, FillsInPlaceWithinItsRoom)
{
    std::array<std::uint8_t, 4> buf{};
    OctetWriter w(buf);
    EXPECT_TRUE(w.put(7));
    auto room = w.unwritten();
    ASSERT_EQ(room.size(), 3u);
    room[0] = 8;
    room[1] = 9;
    EXPECT_FALSE(w.advance(4));  // more than the room: nothing committed
    EXPECT_EQ(w.position(), 1u);
    EXPECT_TRUE(w.advance(2));
    EXPECT_EQ(w.written().size(), 3u);
    EXPECT_EQ(buf[2], 9);
    EXPECT_TRUE(w.unwritten().size() == 1u);
}

}  // namespace
