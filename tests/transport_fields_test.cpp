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
using smsutil::common::OctetReader;
using smsutil::common::OctetWriter;

// Encoding is checked unless the row is kDecodeOnly, decoding unless it is
// kEncodeOnly; kRefused rows are octets the decoder refuses, leaving the record alone.
enum Way { kBoth, kEncodeOnly, kDecodeOnly, kRefused };

template <typename T>
std::string bytes_of(const T &r)
{
    return hex(reinterpret_cast<const uint8_t *>(&r), sizeof r);
}

wms_address bcd_address(const std::vector<uint8_t> &digits, uint8_t type = WMS_NUMBER_INTERNATIONAL, uint8_t plan = 1)
{
    wms_address a{};
    a.number_type = type, a.number_plan = plan;
    a.number_of_digits = static_cast<uint8_t>(digits.size());
    std::copy(digits.begin(), digits.end(), a.digits);
    // Decoding an odd count leaves the filler nibble after the last digit.
    if (digits.size() % 2 != 0) a.digits[digits.size()] = 0x0F;
    return a;
}

wms_address text_address(const std::string &text)
{
    wms_address a{};
    a.digit_mode = WMS_DIGIT_MODE_CHAR, a.number_type = WMS_NUMBER_ALPHANUMERIC;
    a.number_of_digits = static_cast<uint8_t>(text.size());
    std::memcpy(a.digits, text.data(), text.size());
    return a;
}

struct AddressCase {
    const char *name;
    wms_address address;
    std::string wire;
    Way way = kBoth;
};

class Address : public ::testing::TestWithParam<AddressCase> {};

TEST_P(Address, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    const Octets wire = bytes(c.wire);
    if (c.way == kBoth || c.way == kEncodeOnly) {
        Octets out(23, 0xEE);
        const uint8_t n = wms_ts_encode_address(&c.address, out.data());
        EXPECT_EQ(hex(out.data(), n), c.wire);
        EXPECT_EQ(out[n], 0xEE);  // nothing written past the field
    }
    if (c.way == kEncodeOnly) return;
    wms_address back;
    std::memset(&back, c.way == kRefused ? 0x5A : 0, sizeof back);
    const wms_address before = back;
    const uint8_t n = wms_ts_decode_address(wire.data(), &back);
    EXPECT_EQ(bytes_of(back), bytes_of(c.way == kRefused ? before : c.address));
    EXPECT_EQ(n, c.way == kRefused ? 0 : wire.size());
    if (c.way == kRefused) return;
    // The bounded decoder refuses the field one octet short.
    OctetReader cut(wire.data(), wire.size() - 1);
    EXPECT_EQ(smsutil::transport::decode_address(cut, back), 0u);
}

const AddressCase kAddresses[] = {
    {"odd_bcd", bcd_address({1, 2, 3, 4, 5}), "05912143F5"},
    {"even_bcd_national", bcd_address({0, 7, 9, 1}, WMS_NUMBER_NATIONAL, 1), "04A17019"},
    {"star_hash_letters", bcd_address({10, 11, 12, 13, 14}, WMS_NUMBER_UNKNOWN, 0), "0580BADCFE"},
    {"empty", bcd_address({}, WMS_NUMBER_UNKNOWN, 0), "0080"},
    {"twenty_digits", bcd_address(std::vector<uint8_t>(20, 9)), "1491" + std::string(20, '9')},
    {"twenty_one_digits", bcd_address(std::vector<uint8_t>(21, 9)), "", kEncodeOnly},
    {"twenty_one_digits_read", {}, "1591", kRefused},
    {"alphanumeric_eleven", text_address("ABCDEFGHIJK"), "14D041E19058341E9149E512"},
    // Twelve characters take 21 semi-octets, one more than a field may announce.
    {"alphanumeric_twelve", text_address("ABCDEFGHIJKL"), "15D041E19058341E9149E59209", kEncodeOnly},
    {"alphanumeric_twelve_read", {}, "15D041E19058341E9149E59209", kRefused},
};
INSTANTIATE_TEST_SUITE_P(Fields, Address, ::testing::ValuesIn(kAddresses), case_name<AddressCase>);

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
        EXPECT_EQ(bytes_of(dcs), bytes_of(c.dcs));
    }
    if (c.way != kDecodeOnly) {
        uint8_t octet = 0xEE;
        EXPECT_EQ(wms_ts_encode_dcs(&c.dcs, &octet), 1);
        EXPECT_EQ(octet, c.octet);
    }
}

const DcsCase kDcs[] = {
    {"general_7bit", 0x00, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}},
    {"general_ucs2", 0x08, {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0}},
    {"general_8bit_class_2", 0x16, {2, 0, WMS_ALPHABET_8BIT, WMS_DCS_GENERAL, 0, 0}},
    {"compressed_ucs2", 0x28, {4, 1, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0}, kEncodeOnly},
    {"reserved_alphabet_is_7bit", 0x0C, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, kDecodeOnly},
    {"automatic_deletion_defaults", 0x4C, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, kDecodeOnly},
    {"class_group_8bit_class_3", 0xF7, {3, 0, WMS_ALPHABET_8BIT, WMS_DCS_CLASS_GROUP, 0, 0}},
    {"class_group_7bit", 0xF1, {1, 0, WMS_ALPHABET_GSM7, WMS_DCS_CLASS_GROUP, 0, 0}},
    {"class_group_ucs2_as_7bit", 0xF1, {1, 0, WMS_ALPHABET_UCS2, WMS_DCS_CLASS_GROUP, 0, 0}, kEncodeOnly},
    {"discard_active_voicemail", 0xC8, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_DISCARD, 1, 0}},
    {"store_inactive_fax", 0xD1, {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_STORE, 0, 1}},
    {"store_ucs2_email", 0xEA, {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_MWI_STORE, 1, 2}},
    {"unknown_group", 0xE0, {4, 0, 0, 9, 2, 0}, kEncodeOnly},
};
INSTANTIATE_TEST_SUITE_P(Octets, Dcs, ::testing::ValuesIn(kDcs), case_name<DcsCase>);

TEST(DcsEdge, IndicationFieldsAreLeftAloneOutsideTheIndicationGroups)
{
    // Outside the indication groups the indication fields are left as they were.
    wms_gw_dcs dcs{4, 0, 0, 0, 1, 3};
    const uint8_t octet = 0xF4;
    wms_ts_decode_dcs(&octet, &dcs);
    EXPECT_EQ(dcs.mwi_active + dcs.mwi_kind, 4);
}

TEST(RelativeTime, EveryOctetSurvivesDecodeThenEncode)
{
    for (unsigned vp = 0; vp <= 255; ++vp) {
        wms_timestamp t;
        std::memset(&t, 0x5A, sizeof t);
        wms_ts_decode_relative_time(static_cast<uint8_t>(vp), &t);
        EXPECT_EQ(t.second + t.timezone, 0) << vp;
        EXPECT_EQ(wms_ts_encode_relative_time(&t), vp) << vp;
    }
}

struct ValidityCase {
    const char *name;
    uint8_t format;
    wms_timestamp time;
    const char *wire;
    Way way = kBoth;
};

class Validity : public ::testing::TestWithParam<ValidityCase> {};
constexpr uint8_t kAbs = WMS_VP_ABSOLUTE;

// Encoding writes the octets (only those before a bad field, for kRefused) and
// nothing more; decoding into a record holding
// 0x33 octets gives the row's record: a format without a field leaves it
// alone, except none, which clears it.
TEST_P(Validity, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    const wms_gw_validity v{c.format, c.time};
    Octets wire = bytes(c.wire);
    const std::size_t n = wire.size();
    if (c.way != kDecodeOnly) {
        Octets out(8, 0xEE);
        EXPECT_EQ(wms_ts_encode_gw_validity(&v, out.data()), c.way == kRefused ? 0 : n);
        EXPECT_EQ(hex(out.data(), n + 1), c.wire + std::string("EE"));  // nothing past the field
    }
    if (c.way == kEncodeOnly || c.way == kRefused) return;
    wire.resize(7);
    wms_gw_validity back;
    std::memset(&back, 0x33, sizeof back);
    back.format = c.format;
    EXPECT_EQ(wms_ts_decode_gw_validity(wire.data(), &back), n);
    EXPECT_EQ(bytes_of(back), bytes_of(v));
    // An absolute validity is the time codec's field.
    if (c.format == kAbs && c.way == kBoth) {
        std::array<uint8_t, 7> direct{};
        wms_timestamp t{};
        EXPECT_EQ(wms_ts_encode_timestamp(&c.time, direct.data()) + wms_ts_decode_timestamp(wire.data(), &t), 14);
        EXPECT_EQ(hex(direct.data(), 7) + bytes_of(t), c.wire + bytes_of(c.time));
    }
}

const wms_timestamp kUntouched{0x33, 0x33, 0x33, 0x33, 0x33, 0x33, 0x33};
constexpr uint8_t kRel = WMS_VP_RELATIVE;

// Relative durations (in BCD) round up to the next step of their range; decoding
// gives where a range starts.
const ValidityCase kValidities[] = {
    {"zero_is_longest", kRel, {0, 0, 0, 0, 0, 0, 0}, "FF", kEncodeOnly},
    {"five_minutes", kRel, {0, 0, 0, 0, 5, 0, 0}, "00"},
    {"six_minutes", kRel, {0, 0, 0, 0, 6, 0, 0}, "01", kEncodeOnly},
    {"twelve_hours", kRel, {0, 0, 0, 0x12, 0, 0, 0}, "8F"},
    {"twelve_hours_one_minute", kRel, {0, 0, 0, 0x12, 1, 0, 0}, "90", kEncodeOnly},
    {"twelve_and_a_half_hours", kRel, {0, 0, 0, 0x12, 0x30, 0, 0}, "90"},
    {"one_day", kRel, {0, 0, 1, 0, 0, 0, 0}, "A7"},
    {"thirty_days", kRel, {0, 0, 0x30, 0, 0, 0, 0}, "C4", kEncodeOnly},
    {"one_month", kRel, {0, 1, 0, 0, 0, 0, 0}, "C4"},
    {"thirty_one_days", kRel, {0, 0, 0x31, 0, 0, 0, 0}, "C5", kEncodeOnly},
    {"sixty_three_weeks", kRel, {1, 2, 0x16, 0, 0, 0, 0}, "FF"},
    {"past_sixty_three_weeks_wraps", kRel, {1, 3, 0, 0, 0, 0, 0}, "01", kEncodeOnly},
    {"bad_bcd_counts_as_zero", kRel, {0, 0, 0xAA, 0, 0x0F, 0, 0}, "FF", kEncodeOnly},
    {"absolute", kAbs, {0x26, 0x01, 0x15, 0x10, 0x30, 0x00, 4}, "62105101030040"},
    // Decoding replaces what is out of range; encoding stops at the first bad
    // field, keeping the octets before it.
    {"zone_minus_8", kAbs, {0x24, 0x12, 0x31, 0x23, 0x59, 0x58, -8}, "42211332958588"},
    {"zone_plus_8", kAbs, {0, 1, 1, 0, 0, 0, 8}, "00101000000080"},
    // 48: units 8 high, tens 4 low, sign bit
    {"widest_zone", kAbs, {0, 1, 1, 0, 0, 0, -48}, "0010100000008C"},
    {"minus_zero", kAbs, {0x02, 0x08, 0x26, 0x19, 0x37, 0x41, 0}, "20806291731408", kDecodeOnly},
    {"zone_49_becomes_0", kAbs, {0x24, 0x12, 0x31, 0x23, 0x59, 0x58, 0}, "42211332958594", kDecodeOnly},
    {"month_13_becomes_1", kAbs, {0x24, 0x01, 0x31, 0x23, 0x59, 0x58, 0}, "42311332958500", kDecodeOnly},
    {"all_bad", kAbs, {0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0}, "FF00004206A0FF", kDecodeOnly},
    {"year_not_bcd", kAbs, {0x1A, 1, 1, 0, 0, 0, 0}, "", kRefused},
    {"month_zero", kAbs, {0x24, 0x00, 1, 0, 0, 0, 0}, "42", kRefused},
    {"month_13", kAbs, {0x24, 0x13, 1, 0, 0, 0, 0}, "42", kRefused},
    {"day_32", kAbs, {0x24, 0x01, 0x32, 0, 0, 0, 0}, "4210", kRefused},
    {"hour_24", kAbs, {0x24, 0x01, 0x01, 0x24, 0, 0, 0}, "421010", kRefused},
    {"minute_60", kAbs, {0x24, 0x01, 0x01, 0x23, 0x60, 0, 0}, "42101032", kRefused},
    {"second_not_bcd", kAbs, {0x24, 0x01, 0x01, 0x23, 0x59, 0x5F, 0}, "4210103295", kRefused},
    {"zone_49", kAbs, {0x24, 0x01, 0x01, 0x23, 0x59, 0x59, 49}, "421010329595", kRefused},
    {"zone_minus_49", kAbs, {0x24, 0x01, 0x01, 0x23, 0x59, 0x59, -49}, "421010329595", kRefused},
    {"none_clears", WMS_VP_NONE, {}, ""},
    {"enhanced_unsupported", WMS_VP_ENHANCED, kUntouched, ""},
    {"unknown_format", 7, kUntouched, ""},
};
INSTANTIATE_TEST_SUITE_P(Formats, Validity, ::testing::ValuesIn(kValidities), case_name<ValidityCase>);

TEST(Bcd, OnlyDecimalNibblesAreRead)
{
    for (const auto [bcd, ok, value] :
         {std::array<uint8_t, 3>{0x00, 1, 0}, {0x99, 1, 99}, {0x42, 1, 42}, {0x9A, 0, 0}, {0xA0, 0, 0}}) {
        uint8_t v = 77;
        EXPECT_EQ(wms_ts_bcd_to_int(bcd, &v), ok) << +bcd;
        EXPECT_EQ(v, value) << +bcd;
    }
    EXPECT_EQ(wms_ts_int_to_bcd(100), 0xA0);  // not range checked
    const uint8_t values[6] = {0, 9, 12, 13, 14, 0x1F};
    char text[7] = "xxxxxx";
    wms_ts_bcd_to_ascii(values, 6, text);
    EXPECT_STREQ(text, "09abc ");
}

// Reads and writes are all or nothing, never past the end.
TEST(OctetBounds, ReaderAndWriterStopAtTheEnd)
{
    const std::array<std::uint8_t, 5> data{1, 2, 3, 4, 5};
    OctetReader r(data.data(), 3);
    std::uint8_t v = 0;
    std::array<std::uint8_t, 4> four{};
    std::span<const std::uint8_t> view;
    EXPECT_FALSE(r.read(four, 4) || r.take(4, view) || r.skip(4) || r.position() != 0);
    EXPECT_TRUE(r.read(v) && v == 1 && r.take(1, view) && view[0] == 2 && r.skip(0) && r.peek(v) && r.skip(1));
    EXPECT_TRUE(r.at_end() && r.remaining() == 0u);
    EXPECT_FALSE(r.read(v) || r.peek(v) || r.skip(1) || r.take(1, view) || OctetReader().take(1, view));

    OctetWriter w(four);
    EXPECT_TRUE(w.put(1) && w.put(std::span<const std::uint8_t>(data).first(2)));
    EXPECT_FALSE(w.put(std::span<const std::uint8_t>(data).first(2)));
    w.unwritten()[0] = 8;
    EXPECT_FALSE(w.advance(2));
    EXPECT_TRUE(w.position() == 3 && w.advance(1));
    EXPECT_FALSE(w.put(6));
    EXPECT_EQ(hex(w.written().data(), w.written().size()), "01010208");
}

}  // namespace
