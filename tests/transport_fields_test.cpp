// TPDU fields on their own: addresses, coding schemes, times, validity, BCD and the bounded octet reader and writer.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "common/octets.hpp"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"
#include "transport/codec_internal.hpp"

namespace {

using namespace smsutil::test;

wms_address bcd_address(const std::vector<uint8_t> &digits, uint8_t type = WMS_NUMBER_INTERNATIONAL, uint8_t plan = 1)
{
    wms_address a{};
    a.number_type = type;
    a.number_plan = plan;
    a.number_of_digits = static_cast<uint8_t>(digits.size());
    std::copy(digits.begin(), digits.end(), a.digits);
    return a;
}

wms_address text_address(const std::string &text)
{
    wms_address a{};
    a.digit_mode = WMS_DIGIT_MODE_CHAR;
    a.number_type = WMS_NUMBER_ALPHANUMERIC;
    a.number_of_digits = static_cast<uint8_t>(text.size());
    std::memcpy(a.digits, text.data(), text.size());
    return a;
}

struct KnownAddress {
    const char *name;
    wms_address address;
    std::vector<uint8_t> octets;
};

class AddressKnown : public ::testing::TestWithParam<KnownAddress> {};

TEST_P(AddressKnown, EncodesToTheOctetsAndDecodesBack)
{
    const auto &c = GetParam();
    std::array<uint8_t, 22> out{};
    ASSERT_EQ(wms_ts_encode_address(&c.address, out.data()), c.octets.size());
    EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + static_cast<long>(c.octets.size())), c.octets);
    wms_address back{};
    ASSERT_EQ(wms_ts_decode_address(c.octets.data(), &back), c.octets.size());
    EXPECT_EQ(back.digit_mode, c.address.digit_mode);
    EXPECT_EQ(back.number_type, c.address.number_type);
    EXPECT_EQ(back.number_plan, c.address.number_plan);
    ASSERT_EQ(back.number_of_digits, c.address.number_of_digits);
    EXPECT_EQ(std::memcmp(back.digits, c.address.digits, back.number_of_digits), 0);
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, AddressKnown,
    ::testing::Values(
        KnownAddress{"odd_bcd", bcd_address({1, 2, 3, 4, 5}), {0x05, 0x91, 0x21, 0x43, 0xF5}},
        KnownAddress{"even_bcd_national", bcd_address({0, 7, 9, 1}, WMS_NUMBER_NATIONAL, 1), {0x04, 0xA1, 0x70, 0x19}},
        KnownAddress{"star_hash_letters",
                     bcd_address({10, 11, 12, 13, 14}, WMS_NUMBER_UNKNOWN, 0),
                     {0x05, 0x80, 0xBA, 0xDC, 0xFE}},
        KnownAddress{"empty", bcd_address({}, WMS_NUMBER_UNKNOWN, 0), {0x00, 0x80}},
        KnownAddress{"alphanumeric", text_address("Alpha1"), {0x0B, 0xD0, 0x41, 0x36, 0x1C, 0x1D, 0x8E, 0x01}},
        KnownAddress{"alphanumeric_eleven",
                     text_address("ABCDEFGHIJK"),
                     {0x14, 0xD0, 0x41, 0xE1, 0x90, 0x58, 0x34, 0x1E, 0x91, 0x49, 0xE5, 0x12}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Address, OddLengthLeavesTheFillerAfterTheLastDigit)
{
    const std::array<uint8_t, 5> octets{0x05, 0x91, 0x21, 0x43, 0xF5};
    wms_address a{};
    wms_ts_decode_address(octets.data(), &a);
    EXPECT_EQ(a.digits[4], 5);
    EXPECT_EQ(a.digits[5], 0x0F);
}

TEST(Address, TwentyDigitsPassAndTwentyOneAreRefused)
{
    std::array<uint8_t, 22> out;
    out.fill(0xEE);
    wms_address a = bcd_address(std::vector<uint8_t>(20, 9));
    EXPECT_EQ(wms_ts_encode_address(&a, out.data()), 12);
    wms_address back{};
    EXPECT_EQ(wms_ts_decode_address(out.data(), &back), 12);
    EXPECT_EQ(back.number_of_digits, 20);

    out.fill(0xEE);
    a.number_of_digits = 21;
    EXPECT_EQ(wms_ts_encode_address(&a, out.data()), 0);
    EXPECT_EQ(out[0], 0xEE);  // nothing written

    const std::array<uint8_t, 2> long_field{21, 0x91};
    wms_address untouched;
    std::memset(&untouched, 0x5A, sizeof untouched);
    EXPECT_EQ(wms_ts_decode_address(long_field.data(), &untouched), 0);
    EXPECT_EQ(untouched.number_of_digits, 0x5A);
}

TEST(Address, TwelveCharactersEncodeToALengthTheDecoderRefuses)
{
    std::array<uint8_t, 22> out{};
    const wms_address a = text_address("ABCDEFGHIJKL");
    EXPECT_EQ(wms_ts_encode_address(&a, out.data()), 2 + 11);
    EXPECT_EQ(out[0], 21);
    wms_address back{};
    EXPECT_EQ(wms_ts_decode_address(out.data(), &back), 0);
}

TEST(Address, BoundedDecoderRefusesEveryCutField)
{
    const std::array<uint8_t, 8> field{0x0B, 0x91, 0x13, 0x46, 0x61, 0x00, 0x89, 0xF6};
    for (size_t len = 0; len < field.size(); ++len) {
        smsutil::common::OctetReader in(field.data(), len);
        wms_address a{};
        EXPECT_EQ(smsutil::transport::decode_address(in, a), 0u) << len;
    }
    smsutil::common::OctetReader in(field.data(), field.size());
    wms_address a{};
    EXPECT_EQ(smsutil::transport::decode_address(in, a), field.size());
    EXPECT_EQ(in.remaining(), 0u);
}

enum Way { kBoth, kEncodeOnly, kDecodeOnly };

struct DcsCase {
    const char *name;
    uint8_t octet;
    wms_gw_dcs dcs;  // class, compressed, alphabet, group, indication active, kind
    Way way = kBoth;
};

class Dcs : public ::testing::TestWithParam<DcsCase> {};

TEST_P(Dcs, OctetAndRecordMatch)
{
    const DcsCase &c = GetParam();
    if (c.way != kEncodeOnly) {
        wms_gw_dcs dcs{};
        EXPECT_EQ(wms_ts_decode_dcs(&c.octet, &dcs), 1);
        EXPECT_EQ(hex(reinterpret_cast<const uint8_t *>(&dcs), sizeof dcs),
                  hex(reinterpret_cast<const uint8_t *>(&c.dcs), sizeof dcs));
    }
    if (c.way != kDecodeOnly) {
        uint8_t octet = 0xEE;
        EXPECT_EQ(wms_ts_encode_dcs(&c.dcs, &octet), 1);
        EXPECT_EQ(octet, c.octet);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Octets, Dcs,
    ::testing::Values(
        DcsCase{"general_7bit", 0x00, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}},
        DcsCase{"general_ucs2", 0x08, {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0}},
        DcsCase{"general_8bit_class_2", 0x16, {2, 0, WMS_ALPHABET_8BIT, WMS_DCS_GENERAL, 0, 0}},
        DcsCase{"class_0_7bit", 0x10, {0, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}},
        DcsCase{"class_1_7bit", 0x11, {1, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}},
        DcsCase{"compressed_ucs2", 0x28, {4, 1, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0}, kEncodeOnly},
        DcsCase{"reserved_alphabet_is_7bit", 0x0C, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, kDecodeOnly},
        DcsCase{"automatic_deletion_defaults", 0x4C, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, kDecodeOnly},
        DcsCase{"class_group_8bit", 0xF6, {2, 0, WMS_ALPHABET_8BIT, WMS_DCS_CLASS_GROUP, 0, 0}},
        DcsCase{"class_group_8bit_class_3", 0xF7, {3, 0, WMS_ALPHABET_8BIT, WMS_DCS_CLASS_GROUP, 0, 0}},
        DcsCase{"class_group_7bit", 0xF1, {1, 0, WMS_ALPHABET_GSM7, WMS_DCS_CLASS_GROUP, 0, 0}},
        DcsCase{"class_group_ucs2_as_7bit", 0xF1, {1, 0, WMS_ALPHABET_UCS2, WMS_DCS_CLASS_GROUP, 0, 0}, kEncodeOnly},
        DcsCase{"discard_active_voicemail", 0xC8, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_DISCARD, 1, 0}},
        DcsCase{"discard_email", 0xCA, {4, 0, 0, WMS_DCS_MWI_DISCARD, 1, 2}},
        DcsCase{"store_inactive_fax", 0xD1, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_STORE, 0, 1}},
        DcsCase{"store_7bit_other", 0xD3, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_STORE, 0, 3}},
        DcsCase{"store_ucs2_email", 0xEA, {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_MWI_STORE, 1, 2}},
        DcsCase{"store_ucs2_fax", 0xE9, {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_MWI_STORE, 1, 1}},
        DcsCase{"unknown_group", 0xE0, {4, 0, 0, 9, 2, 0}, kEncodeOnly}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(DcsEdge, DecodeKeepsMwiFieldsOutsideTheMwiGroups)
{
    wms_gw_dcs dcs{};
    dcs.mwi_active = 1;
    dcs.mwi_kind = 3;
    const uint8_t octet = 0xF4;
    wms_ts_decode_dcs(&octet, &dcs);
    EXPECT_EQ(dcs.mwi_active, 1);
    EXPECT_EQ(dcs.mwi_kind, 3);
}

TEST(DcsEdge, EveryOctetDecodesToARecordThatEncodesToTheSameMeaning)
{
    for (unsigned o = 0; o <= 0xFF; ++o) {
        const auto octet = static_cast<uint8_t>(o);
        wms_gw_dcs first{};
        wms_ts_decode_dcs(&octet, &first);
        uint8_t again = 0;
        wms_ts_encode_dcs(&first, &again);
        wms_gw_dcs second{};
        wms_ts_decode_dcs(&again, &second);
        EXPECT_EQ(first.alphabet, second.alphabet) << o;
        EXPECT_EQ(first.msg_class, second.msg_class) << o;
        EXPECT_EQ(+first.coding_group, +second.coding_group) << o;
        EXPECT_EQ(first.mwi_active, second.mwi_active) << o;
        EXPECT_EQ(first.mwi_kind, second.mwi_kind) << o;
        EXPECT_EQ(first.is_compressed, second.is_compressed) << o;
    }
}

wms_timestamp stamp(uint8_t y, uint8_t mo, uint8_t d, uint8_t h, uint8_t mi, uint8_t s, int8_t tz)
{
    return wms_timestamp{y, mo, d, h, mi, s, tz};
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

INSTANTIATE_TEST_SUITE_P(Fields, TimestampRefuses,
                         ::testing::Values(BadField{"year_not_bcd", stamp(0x1A, 1, 1, 0, 0, 0, 0), 0},
                                           BadField{"month_zero", stamp(0x24, 0x00, 1, 0, 0, 0, 0), 1},
                                           BadField{"month_13", stamp(0x24, 0x13, 1, 0, 0, 0, 0), 1},
                                           BadField{"day_32", stamp(0x24, 0x01, 0x32, 0, 0, 0, 0), 2},
                                           BadField{"hour_24", stamp(0x24, 0x01, 0x01, 0x24, 0, 0, 0), 3},
                                           BadField{"minute_60", stamp(0x24, 0x01, 0x01, 0x23, 0x60, 0, 0), 4},
                                           BadField{"second_not_bcd", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x5F, 0), 5},
                                           BadField{"zone_49", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x59, 49), 6},
                                           BadField{"zone_minus_49", stamp(0x24, 0x01, 0x01, 0x23, 0x59, 0x59, -49),
                                                    6}),
                         [](const auto &info) { return std::string(info.param.name); });

struct StampCase {
    const char *name;
    std::array<uint8_t, 7> octets;
    wms_timestamp time;
    Way way = kBoth;
};

class Timestamp : public ::testing::TestWithParam<StampCase> {};

// Decoding replaces what is out of range; encoding swaps the semi-octets.
TEST_P(Timestamp, OctetsAndTimeMatch)
{
    const StampCase &c = GetParam();
    if (c.way != kEncodeOnly) {
        wms_timestamp t;
        std::memset(&t, 0x77, sizeof t);
        EXPECT_EQ(wms_ts_decode_timestamp(c.octets.data(), &t), 7);
        EXPECT_EQ(hex(reinterpret_cast<const uint8_t *>(&t), sizeof t),
                  hex(reinterpret_cast<const uint8_t *>(&c.time), sizeof t));
    }
    if (c.way != kDecodeOnly) {
        std::array<uint8_t, 7> out{};
        ASSERT_EQ(wms_ts_encode_timestamp(&c.time, out.data()), 7);
        EXPECT_EQ(out, c.octets);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Octets, Timestamp,
    ::testing::Values(
        StampCase{
            "zone_minus_8", {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x88}, stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, -8)},
        StampCase{"zone_plus_8", {0x00, 0x10, 0x10, 0x00, 0x00, 0x00, 0x80}, stamp(0, 1, 1, 0, 0, 0, 8)},
        // 48: units 8 high, tens 4 low, sign bit
        StampCase{"widest_zone", {0x00, 0x10, 0x10, 0x00, 0x00, 0x00, 0x8C}, stamp(0, 1, 1, 0, 0, 0, -48)},
        StampCase{"negative_zone",
                  {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x2B},
                  stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, -32)},
        StampCase{
            "positive_zone", {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x23}, stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, 32)},
        StampCase{"minus_zero",
                  {0x20, 0x80, 0x62, 0x91, 0x73, 0x14, 0x08},
                  stamp(0x02, 0x08, 0x26, 0x19, 0x37, 0x41, 0),
                  kDecodeOnly},
        StampCase{"zone_49_becomes_0",
                  {0x42, 0x21, 0x13, 0x32, 0x95, 0x85, 0x94},
                  stamp(0x24, 0x12, 0x31, 0x23, 0x59, 0x58, 0),
                  kDecodeOnly},
        StampCase{"month_13_becomes_1",
                  {0x42, 0x31, 0x13, 0x32, 0x95, 0x85, 0x00},
                  stamp(0x24, 0x01, 0x31, 0x23, 0x59, 0x58, 0),
                  kDecodeOnly},
        StampCase{"all_bad",
                  {0xFF, 0x00, 0x00, 0x42, 0x06, 0xA0, 0xFF},
                  stamp(0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0),
                  kDecodeOnly}),
    [](const auto &info) { return std::string(info.param.name); });

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
    ::testing::Values(
        RelCase{"zero_is_longest", duration(0, 0, 0, 0, 0), 255}, RelCase{"one_minute", duration(0, 0, 0, 0, 1), 0},
        RelCase{"five_minutes", duration(0, 0, 0, 0, 5), 0}, RelCase{"six_minutes", duration(0, 0, 0, 0, 6), 1},
        RelCase{"one_hour", duration(0, 0, 0, 1, 0), 11}, RelCase{"twelve_hours", duration(0, 0, 0, 12, 0), 143},
        RelCase{"twelve_hours_one_minute", duration(0, 0, 0, 12, 1), 144},
        RelCase{"twelve_and_a_half_hours", duration(0, 0, 0, 12, 30), 144},
        RelCase{"twenty_four_hours", duration(0, 0, 0, 24, 0), 167}, RelCase{"one_day", duration(0, 0, 1, 0, 0), 167},
        RelCase{"thirty_days", duration(0, 0, 30, 0, 0), 196}, RelCase{"one_month", duration(0, 1, 0, 0, 0), 196},
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

TEST(Validity, RelativeIsOneOctet)
{
    wms_gw_validity v{};
    v.format = WMS_VP_RELATIVE;
    v.time.day = 0x01;
    std::array<uint8_t, 7> out{};
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 1);
    EXPECT_EQ(out[0], 167);
    wms_gw_validity back{};
    back.format = WMS_VP_RELATIVE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &back), 1);
    EXPECT_EQ(back.time.day, 0x01);
}

TEST(Validity, AbsoluteIsASevenOctetStamp)
{
    wms_gw_validity v{};
    v.format = WMS_VP_ABSOLUTE;
    v.time = wms_timestamp{0x26, 0x01, 0x15, 0x10, 0x30, 0x00, 4};
    std::array<uint8_t, 7> out{};
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 7);
    EXPECT_EQ(out[0], 0x62);
    wms_gw_validity back{};
    back.format = WMS_VP_ABSOLUTE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &back), 7);
    EXPECT_EQ(std::memcmp(&back, &v, sizeof v), 0);
    v.time.month = 0x13;
    EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 0);
}

TEST(Validity, NoneAndEnhancedWriteNothing)
{
    std::array<uint8_t, 7> out;
    out.fill(0xEE);
    wms_gw_validity v{};
    v.time.day = 1;
    for (uint8_t format : {uint8_t{WMS_VP_NONE}, uint8_t{WMS_VP_ENHANCED}, uint8_t{7}}) {
        v.format = format;
        EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), 0);
        EXPECT_EQ(out[0], 0xEE);
    }
    wms_gw_validity decoded;
    std::memset(&decoded, 0x33, sizeof decoded);
    decoded.format = WMS_VP_ENHANCED;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &decoded), 0);
    EXPECT_EQ(decoded.time.day, 0x33);  // untouched
    decoded.format = WMS_VP_NONE;
    EXPECT_EQ(wms_ts_decode_gw_validity(out.data(), &decoded), 0);
    EXPECT_EQ(decoded.time.day, 0);  // cleared
}

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
