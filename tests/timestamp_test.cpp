#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"

namespace {

wms_timestamp stamp(uint8_t y, uint8_t mo, uint8_t d, uint8_t h, uint8_t mi, uint8_t s, int8_t tz)
{
    return wms_timestamp{y, mo, d, h, mi, s, tz};
}

TEST(Timestamp, EncodesSwappedSemiOctetsAndZone)
{
    std::array<uint8_t, 7> out{};
    const wms_timestamp t = stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, -8);
    ASSERT_EQ(wms_ts_encode_timestamp(&t, out.data()), 7);
    EXPECT_EQ(out, (std::array<uint8_t, 7>{0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x88}));
    const wms_timestamp plus = stamp(0, 1, 1, 0, 0, 0, 8);
    ASSERT_EQ(wms_ts_encode_timestamp(&plus, out.data()), 7);
    EXPECT_EQ(out[6], 0x80);
    const wms_timestamp widest = stamp(0, 1, 1, 0, 0, 0, -48);
    ASSERT_EQ(wms_ts_encode_timestamp(&widest, out.data()), 7);
    EXPECT_EQ(out[6], 0x8C);  // 48: units 8 high, tens 4 low, sign bit
}

struct BadField {
    const char *name;
    wms_timestamp t;
    size_t written;  // octets that stay written before the failing field
};

class TimestampRefuses : public ::testing::TestWithParam<BadField> {};

TEST_P(TimestampRefuses, AtTheFirstBadFieldKeepingEarlierOctets)
{
    std::array<uint8_t, 7> out;
    out.fill(0xEE);
    EXPECT_EQ(wms_ts_encode_timestamp(&GetParam().t, out.data()), 0);
    for (size_t i = 0; i < out.size(); ++i) EXPECT_EQ(out[i] == 0xEE, i >= GetParam().written) << i;
}

INSTANTIATE_TEST_SUITE_P(
    Fields, TimestampRefuses,
    ::testing::Values(BadField{"year_not_bcd", stamp(0x1A, 1, 1, 0, 0, 0, 0), 0},
                      BadField{"month_zero", stamp(0x24, 0x00, 1, 0, 0, 0, 0), 1},
                      BadField{"month_13", stamp(0x24, 0x13, 1, 0, 0, 0, 0), 1},
                      BadField{"day_32", stamp(0x24, 0x01, 0x32, 0, 0, 0, 0), 2},
                      BadField{"hour_24", stamp(0x24, 0x01, 0x01, 0x24, 0, 0, 0), 3},
                      BadField{"minute_60", stamp(0x24, 0x01, 0x01, 0x23, 0x60, 0, 0), 4},
                      BadField{"second_not_bcd", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x5F, 0), 5},
                      BadField{"zone_49", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x59, 49), 6},
                      BadField{"zone_minus_49", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x59, -49), 6}),
    [](const auto &info) { return std::string(info.param.name); });

struct DecodeCase {
    const char *name;
    std::array<uint8_t, 7> octets;
    wms_timestamp expected;
};

class TimestampDecode : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(TimestampDecode, ReplacesWhatIsOutOfRange)
{
    wms_timestamp t;
    std::memset(&t, 0x77, sizeof t);
    EXPECT_EQ(wms_ts_decode_timestamp(GetParam().octets.data(), &t), 7);
    EXPECT_EQ(std::memcmp(&t, &GetParam().expected, sizeof t), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Octets, TimestampDecode,
    ::testing::Values(
        DecodeCase{"plain", {0x20, 0x80, 0x62, 0x91, 0x73, 0x14, 0x08}, stamp(0x02, 0x08, 0x26, 0x19, 0x37, 0x41, 0)},
        DecodeCase{"negative_zone", {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x2B}, stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, -32)},
        DecodeCase{"positive_zone", {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x23}, stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, 32)},
        DecodeCase{"zone_49_becomes_0", {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x94}, stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, 0)},
        DecodeCase{"month_13_becomes_1", {0x42, 0x31, 0x13, 0x32, 0x95, 0x85, 0x00}, stamp(0x24, 0x01, 0x31, 0x23, 0x59, 0x58, 0)},
        DecodeCase{"all_bad", {0xFF, 0x00, 0x00, 0x42, 0x06, 0xA0, 0xFF}, stamp(0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0)}),
    [](const auto &info) { return std::string(info.param.name); });

}  // namespace
