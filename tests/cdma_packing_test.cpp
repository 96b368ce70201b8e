// Bit and character packing under the bearer data: bit fields, 7-bit ASCII and DTMF digits.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <tuple>
#include <vector>

#include "cdma/bit_fields.hpp"
#include "smsutil/wms_cdma.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using smsutil::cdma::BitReader;
using smsutil::cdma::BitWriter;

// A field that would pass the end fails and writes nothing; retract clears
// what it takes back and stops at its floor; patch only rewrites what was
// written.
TEST(BitWriter, StaysInsideWhatItWasGiven)
{
    std::array<std::uint8_t, 3> buf{};
    BitWriter w(std::span(buf.data(), 2));
    ASSERT_TRUE(w.write(0x7F, 7) && w.write(0xFF, 8));
    EXPECT_FALSE(w.write(0x3, 2));
    EXPECT_EQ(buf[1], 0xFE);
    EXPECT_TRUE(w.write(1, 1));
    EXPECT_FALSE(w.write(1, 1));
    EXPECT_TRUE(w.patch(8, 0xAB, 8));
    EXPECT_FALSE(w.patch(12, 0xFF, 8));
    w.retract(3, 10);
    EXPECT_EQ(w.position(), 13u);
    EXPECT_EQ(buf, (std::array<std::uint8_t, 3>{0xFF, 0xA8, 0}));
    w.retract(100, 10);
    EXPECT_EQ(w.position(), 10u);
    w.pad_to_octet();
    EXPECT_EQ(w.position(), 16u);
    EXPECT_EQ(buf, (std::array<std::uint8_t, 3>{0xFF, 0x80, 0}));
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

// A field ending on the last octet of an exact-size heap buffer must not
// touch the octet after it (the address sanitizer sees that).
TEST(BitPacking, FieldEndingAtTheBufferEndStaysInside)
{
    for (std::uint16_t n = 1; n <= 16; ++n)
        for (std::uint16_t pos = 0; pos < 16; ++pos) {
            auto buf = std::make_unique<std::uint8_t[]>((pos + n + 7) / 8);
            b_packw(0xFFFF, buf.get(), pos, n);
            EXPECT_EQ(b_unpackw(buf.get(), pos, n), (1u << n) - 1) << pos << "/" << n;
            if (n > 8) continue;
            b_packb(0, buf.get(), pos, n);
            EXPECT_EQ(b_unpackb(buf.get(), pos, n), 0) << pos << "/" << n;
        }
}

struct PackCase {
    const char *name;
    Octets before;
    std::uint16_t value, pos, n;
    bool word;
    Octets after;
};

class BitPackingExamples : public ::testing::TestWithParam<PackCase> {};

TEST_P(BitPackingExamples, GiveTheseOctets)
{
    const PackCase &c = GetParam();
    Octets buf = c.before;
    const auto field = static_cast<std::uint16_t>(c.value & ((1u << std::min<unsigned>(c.n, c.word ? 16 : 8)) - 1));
    if (c.word) {
        b_packw(c.value, buf.data(), c.pos, c.n);
        EXPECT_EQ(b_unpackw(buf.data(), c.pos, c.n), field);
    } else {
        b_packb(static_cast<std::uint8_t>(c.value), buf.data(), c.pos, c.n);
        EXPECT_EQ(b_unpackb(buf.data(), c.pos, c.n), field);
    }
    EXPECT_EQ(buf, c.after);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, BitPackingExamples,
    ::testing::Values(PackCase{"zeros_keep_neighbouring_ones", {0xFF, 0xFF}, 0x00, 4, 7, false, {0xF0, 0x1F}},
                      PackCase{"word_over_three_octets", {0, 0, 0, 0, 0}, 0x1234, 20, 16, true, {0, 0, 1, 0x23, 0x40}},
                      PackCase{"high_value_bits_ignored", {0, 0}, 0xFF, 6, 3, false, {0x03, 0x80}},
                      PackCase{"byte_count_above_eight_is_eight", {0, 0, 0}, 0xA5, 4, 12, false, {0x0A, 0x50, 0}},
                      PackCase{"word_count_above_sixteen_is_sixteen", {0, 0, 0}, 0xBEEF, 0, 20, true, {0xBE, 0xEF, 0}},
                      PackCase{"zero_count_touches_nothing", {0x5A}, 0xFF, 3, 0, false, {0x5A}}),
    case_name<PackCase>);

// Packing gives these octets and padding, unpacking gives the text back.
TEST(Ascii, PacksAndUnpacks)
{
    const std::tuple<std::string, Octets, std::uint8_t> cases[] = {
        {"AB", {0x83, 0x08}, 2}, {"AAAAAAAA", {0x83, 0x06, 0x0C, 0x18, 0x30, 0x60, 0xC1}, 0}, {"", {}, 0}};
    for (const auto &[text, packed, padding] : cases) {
        wms_cdma_user_data ud;
        std::memset(&ud, 0xEE, sizeof ud);
        ud.num_fields = wms_ts_pack_ascii(text.c_str(), ud.data, &ud.data_len, &ud.padding_bits);
        EXPECT_EQ(ud.num_fields, text.size());
        EXPECT_EQ(ud.padding_bits, padding) << text;
        EXPECT_EQ(hex(ud.data, ud.data_len + 1u), hex(packed) + "EE");
        char back[16];
        EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, back), text.size());
        EXPECT_EQ(back, text);
    }
    std::uint8_t out[2], octets = 0, padding = 0;
    EXPECT_EQ(wms_ts_pack_ascii("\xC1", out, &octets, &padding), 1);  // the high bit is dropped
    EXPECT_EQ(out[0], 0x82);
}

// Unpacking stops at the first of: the maximum asked for, the count, and
// the characters the octets hold (a character begun inside data_len is
// taken whole from the array, never past it).
TEST(Ascii, UnpackStopsAtTheFirstLimit)
{
    const std::tuple<std::uint8_t, std::uint8_t, std::uint8_t, std::string> cases[] = {
        {0, 11, 10, ""}, {5, 11, 10, "HELLO"}, {20, 4, 10, "HELL"}, {20, 11, 2, "HEL"}, {20, 11, 0, ""}};
    wms_cdma_user_data ud{};
    wms_ts_pack_ascii("HELLO WORLD", ud.data, &ud.data_len, &ud.padding_bits);
    char out[256];
    for (const auto &[max_count, fields, len, text] : cases) {
        ud.num_fields = fields, ud.data_len = len;
        std::memset(out, 'x', sizeof out);
        EXPECT_EQ(wms_ts_unpack_ascii(&ud, max_count, out), text.size());
        EXPECT_EQ(std::string(out), text);
    }
    // 229 octets hold 261 characters' worth of bits; 255 are asked for.
    std::memset(ud.data, 0xFF, sizeof ud.data);
    ud.data_len = ud.num_fields = 255;
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, out), 255);
    EXPECT_EQ(out[254], 0x7F);
    EXPECT_EQ(wms_ts_unpack_ascii(nullptr, 255, out), 0);
    EXPECT_EQ(wms_ts_unpack_ascii(&ud, 255, nullptr), 0);
}

// Codes 1-12 and the dialled characters; anything else ends the conversion
// with 0, what came before already written.
TEST(Dtmf, ConvertsBothWaysAndStopsAtTheFirstStranger)
{
    const Octets every{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
    std::string text(13, '.');
    EXPECT_EQ(wms_ts_dtmf2ascii(12, every.data(), text.data()), 12);
    EXPECT_EQ(text, "1234567890*#.");
    Octets codes(13, 0xEE);
    EXPECT_EQ(wms_ts_ascii2dtmf(text.substr(0, 12).c_str(), codes.data()), 12);
    EXPECT_EQ(hex(codes), hex(every) + "EE");
    for (const Octets &bad : {Octets{1, 13, 2}, Octets{0}}) {
        text.assign(4, '.');
        EXPECT_EQ(wms_ts_dtmf2ascii(static_cast<std::uint8_t>(bad.size()), bad.data(), text.data()), 0);
        EXPECT_EQ(text, bad[0] == 1 ? "1..." : "....");
    }
    for (const char *bad : {"12a", " 1"}) {
        codes.assign(3, 0xEE);
        EXPECT_EQ(wms_ts_ascii2dtmf(bad, codes.data()), 0);
        EXPECT_EQ(hex(codes), *bad == '1' ? "0102EE" : "EEEEEE");
    }
    // The count is eight bits: 258 characters convert as 2.
    codes.assign(258, 0xEE);
    EXPECT_EQ(wms_ts_ascii2dtmf(std::string(258, '5').c_str(), codes.data()), 2);
    EXPECT_EQ(hex(codes.data(), 3), "0505EE");
}

}  // namespace
