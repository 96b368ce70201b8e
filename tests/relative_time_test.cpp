#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"

namespace {

wms_timestamp duration(unsigned years, unsigned months, unsigned days, unsigned hours, unsigned minutes)
{
    wms_timestamp t{};
    t.year = wms_ts_int_to_bcd(static_cast<uint8_t>(years));
    t.month = wms_ts_int_to_bcd(static_cast<uint8_t>(months));
    t.day = wms_ts_int_to_bcd(static_cast<uint8_t>(days));
    t.hour = wms_ts_int_to_bcd(static_cast<uint8_t>(hours));
    t.minute = wms_ts_int_to_bcd(static_cast<uint8_t>(minutes));
    return t;
}

struct RelCase {
    const char *name;
    wms_timestamp in;
    uint8_t vp;
};

class RelativeTimeEncode : public ::testing::TestWithParam<RelCase> {};

TEST_P(RelativeTimeEncode, GivesTheRelativeOctet)
{
    EXPECT_EQ(wms_ts_encode_relative_time(&GetParam().in), GetParam().vp);
}

INSTANTIATE_TEST_SUITE_P(
    Durations, RelativeTimeEncode,
    ::testing::Values(RelCase{"zero_is_longest", duration(0, 0, 0, 0, 0), 255},
                      RelCase{"one_minute", duration(0, 0, 0, 0, 1), 0},
                      RelCase{"five_minutes", duration(0, 0, 0, 0, 5), 0},
                      RelCase{"six_minutes", duration(0, 0, 0, 0, 6), 1},
                      RelCase{"one_hour", duration(0, 0, 0, 1, 0), 11},
                      RelCase{"twelve_hours", duration(0, 0, 0, 12, 0), 143},
                      RelCase{"twelve_hours_one_minute", duration(0, 0, 0, 12, 1), 144},
                      RelCase{"twelve_and_a_half_hours", duration(0, 0, 0, 12, 30), 144},
                      RelCase{"twenty_four_hours", duration(0, 0, 0, 24, 0), 167},
                      RelCase{"one_day", duration(0, 0, 1, 0, 0), 167},
                      RelCase{"thirty_days", duration(0, 0, 30, 0, 0), 196},
                      RelCase{"one_month", duration(0, 1, 0, 0, 0), 196},
                      RelCase{"thirty_one_days", duration(0, 0, 31, 0, 0), 197},
                      RelCase{"sixty_three_weeks", duration(0, 14, 21, 0, 0), 255},
                      RelCase{"past_sixty_three_weeks_wraps", duration(1, 3, 0, 0, 0), 1},
                      RelCase{"bad_bcd_counts_as_zero", wms_timestamp{0, 0, 0xAA, 0, 0x0F, 0, 0}, 255}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(RelativeTime, EveryOctetSurvivesDecodeThenEncode)
{
    for (unsigned vp = 0; vp <= 255; ++vp) {
        wms_timestamp t;
        std::memset(&t, 0x5A, sizeof t);
        wms_ts_decode_relative_time(static_cast<uint8_t>(vp), &t);
        EXPECT_EQ(t.second, 0) << vp;
        EXPECT_EQ(t.timezone, 0) << vp;
        EXPECT_EQ(wms_ts_encode_relative_time(&t), vp) << vp;
    }
}

TEST(RelativeTime, DecodesEachRangeStart)
{
    wms_timestamp t;
    wms_ts_decode_relative_time(0, &t);
    EXPECT_EQ(t.hour, 0x00);
    EXPECT_EQ(t.minute, 0x05);
    wms_ts_decode_relative_time(144, &t);
    EXPECT_EQ(t.hour, 0x12);
    EXPECT_EQ(t.minute, 0x30);
    wms_ts_decode_relative_time(196, &t);
    EXPECT_EQ(t.month, 0x01);
    EXPECT_EQ(t.day, 0x00);
    wms_ts_decode_relative_time(255, &t);  // 441 days
    EXPECT_EQ(t.year, 0x01);
    EXPECT_EQ(t.month, 0x02);
    EXPECT_EQ(t.day, 0x16);
}

struct BcdCase {
    uint8_t bcd;
    uint8_t ok;
    uint8_t value;
};
class BcdToInt : public ::testing::TestWithParam<BcdCase> {};
TEST_P(BcdToInt, AcceptsOnlyDecimalNibbles)
{
    uint8_t v = 77;
    EXPECT_EQ(wms_ts_bcd_to_int(GetParam().bcd, &v), GetParam().ok);
    EXPECT_EQ(v, GetParam().value);
}
INSTANTIATE_TEST_SUITE_P(Octets, BcdToInt,
                         ::testing::Values(BcdCase{0x00, 1, 0}, BcdCase{0x99, 1, 99}, BcdCase{0x42, 1, 42},
                                           BcdCase{0x9A, 0, 0}, BcdCase{0xA0, 0, 0}, BcdCase{0xFF, 0, 0}));

TEST(Bcd, IntToBcdIsNotRangeChecked)
{
    EXPECT_EQ(wms_ts_int_to_bcd(0), 0x00);
    EXPECT_EQ(wms_ts_int_to_bcd(99), 0x99);
    EXPECT_EQ(wms_ts_int_to_bcd(100), 0xA0);
    EXPECT_EQ(wms_ts_int_to_bcd(255), 0x95);  // (25 << 4) + 5 = 405, cut to 8 bits
}

TEST(Bcd, AsciiDigitsBothWays)
{
    uint8_t digits[8] = {};
    wms_ts_ascii_to_bcd("12*#90", 6, digits);
    const uint8_t expected[6] = {1, 2, 10, 11, 9, 0};
    EXPECT_EQ(std::memcmp(digits, expected, 6), 0);
    const uint8_t values[6] = {0, 9, 12, 13, 14, 0x1F};
    char text[7] = "xxxxxx";
    wms_ts_bcd_to_ascii(values, 6, text);
    EXPECT_STREQ(text, "09abc ");
}

}  // namespace
