// Bit and character packing under the bearer data: bit fields, 7-bit ASCII and DTMF digits.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "cdma/bit_fields.hpp"
#include "smsutil/wms_cdma.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

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

constexpr std::size_t kBufSize = 6;

using Buffer = std::array<std::uint8_t, kBufSize>;

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
    const std::uint16_t field =
        c.value & static_cast<std::uint16_t>((1u << std::min<unsigned>(c.n, c.word ? 16 : 8)) - 1);
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

struct AsciiPackCase {
    const char *name;
    std::string text;
    std::vector<std::uint8_t> packed;
    std::uint8_t padding;
};

class AsciiPack : public ::testing::TestWithParam<AsciiPackCase> {};

TEST_P(AsciiPack, GivesTheseOctets)
{
    const AsciiPackCase &c = GetParam();
    std::vector<std::uint8_t> out(c.packed.size() + 1, 0xEE);
    std::uint8_t octets = 0xEE;
    std::uint8_t padding = 0xEE;
    EXPECT_EQ(wms_ts_pack_ascii(c.text.c_str(), out.data(), &octets, &padding), c.text.size());
    EXPECT_EQ(octets, c.packed.size());
    EXPECT_EQ(padding, c.padding);
    EXPECT_EQ(std::vector<std::uint8_t>(out.begin(), out.end() - 1), c.packed);
    EXPECT_EQ(out.back(), 0xEE);
}

INSTANTIATE_TEST_SUITE_P(Texts, AsciiPack,
                         ::testing::Values(AsciiPackCase{"two_characters", "AB", {0x83, 0x08}, 2},
                                           AsciiPackCase{"eight_characters_need_no_padding",
                                                         "AAAAAAAA",
                                                         {0x83, 0x06, 0x0C, 0x18, 0x30, 0x60, 0xC1},
                                                         0},
                                           AsciiPackCase{"high_bit_dropped", "\xC1", {0x82}, 1},
                                           AsciiPackCase{"empty", "", {}, 0}),
                         [](const auto &info) { return std::string(info.param.name); });

wms_cdma_user_data packed_text(const std::string &text)
{
    wms_cdma_user_data ud{};
    ud.num_fields = wms_ts_pack_ascii(text.c_str(), ud.data, &ud.data_len, &ud.padding_bits);
    return ud;
}

struct UnpackCase {
    const char *name;
    std::uint8_t max_count;
    std::uint8_t num_fields;
    std::uint8_t data_len;
    std::string expected;
};

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

INSTANTIATE_TEST_SUITE_P(Limits, AsciiUnpack,
                         ::testing::Values(UnpackCase{"maximum_zero", 0, 11, 10, ""},
                                           UnpackCase{"maximum_first", 5, 11, 10, "HELLO"},
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
    EXPECT_EQ(wms_ts_unpack_ascii(nullptr, 255, out), 0);
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, nullptr), 0);
}

struct ToTextCase {
    const char *name;
    std::vector<std::uint8_t> codes;
    std::uint8_t result;
    std::string written;  // the text buffer afterwards, '.' where untouched
};

class DtmfToText : public ::testing::TestWithParam<ToTextCase> {};

TEST_P(DtmfToText, Converts)
{
    const ToTextCase &c = GetParam();
    std::string text(c.written.size(), '.');
    EXPECT_EQ(wms_ts_dtmf2ascii(static_cast<std::uint8_t>(c.codes.size()), c.codes.data(), text.data()), c.result);
    EXPECT_EQ(text, c.written);
}

INSTANTIATE_TEST_SUITE_P(
    Codes, DtmfToText,
    ::testing::Values(ToTextCase{"every_code", {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}, 12, "1234567890*#."},
                      ToTextCase{"stops_at_a_code_without_digit", {1, 13, 2}, 0, "1..."},
                      ToTextCase{"zero_is_no_digit", {0}, 0, ".."},
                      ToTextCase{"fifteen_is_no_digit", {9, 15}, 0, "9.."},
                      ToTextCase{"nothing_to_convert", {}, 0, "."}),
    [](const auto &info) { return std::string(info.param.name); });

struct ToCodesCase {
    const char *name;
    std::string text;
    std::uint8_t result;
    std::vector<std::uint8_t> codes;  // the codes buffer afterwards (0xEE untouched)
};

class DtmfFromText : public ::testing::TestWithParam<ToCodesCase> {};

TEST_P(DtmfFromText, Converts)
{
    const ToCodesCase &c = GetParam();
    std::vector<std::uint8_t> codes(c.codes.size(), 0xEE);
    EXPECT_EQ(wms_ts_ascii2dtmf(c.text.c_str(), codes.data()), c.result);
    EXPECT_EQ(codes, c.codes);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, DtmfFromText,
    ::testing::Values(ToCodesCase{"every_character", "1234567890*#", 12, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 0xEE}},
                      ToCodesCase{"letter_ends_it", "12a", 0, {1, 2, 0xEE, 0xEE}},
                      ToCodesCase{"space_ends_it", " 1", 0, {0xEE, 0xEE}}, ToCodesCase{"empty", "", 0, {0xEE}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Dtmf, CountOfLongTextWrapsAt256)
{
    const std::string text(258, '5');
    std::vector<std::uint8_t> codes(258, 0xEE);
    EXPECT_EQ(wms_ts_ascii2dtmf(text.c_str(), codes.data()), 2);
    EXPECT_EQ(codes[1], 5);
    EXPECT_EQ(codes[2], 0xEE);
}

}  // namespace
