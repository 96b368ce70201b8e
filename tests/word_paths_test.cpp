// The codecs take whole words or whole texts at a time where they can and
// fall back to one character at a time at the edges.  These cases sit on
// those edges: both ways must give the same octets.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"

namespace {

struct HexCase {
    const char *text;
    std::vector<uint8_t> octets;
};

class HexWords : public ::testing::TestWithParam<HexCase> {};

// Every character outside 0-9, A-F and a-f counts as its low four bits.
TEST_P(HexWords, ReadLikeSingleCharacters)
{
    const HexCase &c = GetParam();
    std::vector<uint8_t> out(c.octets.size() + 1, 0xEE);
    AsciiToBcd(out.data(), c.text, static_cast<uint32_t>(2 * c.octets.size()));
    EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.end() - 1), c.octets);
    EXPECT_EQ(out.back(), 0xEE);
}

// One unusual character per word of eight, each next to plain digits.
INSTANTIATE_TEST_SUITE_P(
    Table, HexWords,
    ::testing::Values(HexCase{"0123cdEF4567", {0x01, 0x23, 0xCD, 0xEF, 0x45, 0x67}},
                      HexCase{"A0a0F0f0", {0xA0, 0xA0, 0xF0, 0xF0}}, HexCase{"@1234567", {0x01, 0x23, 0x45, 0x67}},
                      HexCase{"`1234567", {0x01, 0x23, 0x45, 0x67}}, HexCase{"G1234567", {0x71, 0x23, 0x45, 0x67}},
                      HexCase{"1234567g", {0x12, 0x34, 0x56, 0x77}}, HexCase{":;<=>?/ ", {0xAB, 0xCD, 0xEF, 0xF0}},
                      HexCase{"\xC1"
                              "1234567",
                              {0x11, 0x23, 0x45, 0x67}},
                      HexCase{"\xE6\x80\xBF"
                              "12345",
                              {0x60, 0xF1, 0x23, 0x45}},
                      HexCase{"0123456789abcdeZ", {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEA}}));

// Septet k of a stream at bit `fill`, bit by bit.
std::vector<uint8_t> reference_pack(const std::vector<uint8_t> &septets, unsigned fill)
{
    std::vector<uint8_t> out((fill + 7 * septets.size() + 7) / 8, 0);
    for (std::size_t k = 0; k < septets.size(); ++k)
        for (unsigned b = 0; b < 7; ++b)
            if ((septets[k] >> b) & 1) {
                const std::size_t bit = fill + 7 * k + b;
                out[bit / 8] |= static_cast<uint8_t>(1u << (bit % 8));
            }
    return out;
}

struct SeptetCase {
    unsigned count;
    unsigned capacity;  // octets of room for packing; 0: as many as needed
};

class SeptetGroups : public ::testing::TestWithParam<SeptetCase> {};

TEST_P(SeptetGroups, MatchBitByBitAtEveryFill)
{
    const SeptetCase &c = GetParam();
    std::vector<uint8_t> septets(c.count);
    for (unsigned k = 0; k < c.count; ++k) septets[k] = static_cast<uint8_t>((37 * k + 11) & 0x7F);
    for (unsigned fill = 0; fill < 7; ++fill) {
        SCOPED_TRACE(fill);
        const std::vector<uint8_t> ref = reference_pack(septets, fill);
        const unsigned capacity = c.capacity != 0 ? c.capacity : static_cast<unsigned>(ref.size());
        std::vector<uint8_t> packed(capacity + 1, 0);
        packed[capacity] = 0xEE;
        const uint16_t written =
            wms_ts_pack_gw_7_bit_chars(septets.data(), static_cast<uint16_t>(c.count), static_cast<uint16_t>(fill),
                                       static_cast<uint16_t>(capacity), packed.data());
        // Short of room, only the octets the fitting septets fill whole.
        const std::size_t fitting = std::min<std::size_t>(c.count, (8 * capacity + 7 - fill) / 7);
        const std::size_t expected =
            std::min<std::size_t>(fitting == c.count ? ref.size() : (fill + 7 * fitting) / 8, capacity);
        ASSERT_EQ(written, expected);
        EXPECT_TRUE(std::equal(packed.begin(), packed.begin() + written, ref.begin()));
        EXPECT_EQ(packed[capacity], 0xEE);
        if (c.capacity != 0) continue;

        std::vector<uint8_t> unpacked(c.count + 1, 0xEE);
        const uint16_t start_code = fill == 0 ? 0 : static_cast<uint16_t>(8 - fill);
        wms_ts_unpack_gw_7_bit_chars(ref.data(), static_cast<uint8_t>(c.count), static_cast<uint8_t>(c.count),
                                     start_code, unpacked.data());
        EXPECT_TRUE(std::equal(septets.begin(), septets.end(), unpacked.begin()));
        EXPECT_EQ(unpacked[c.count], 0xEE);
    }
}

INSTANTIATE_TEST_SUITE_P(Table, SeptetGroups,
                         ::testing::Values(SeptetCase{7, 0}, SeptetCase{8, 0}, SeptetCase{9, 0}, SeptetCase{16, 0},
                                           SeptetCase{23, 0}, SeptetCase{160, 0}, SeptetCase{9, 7},
                                           SeptetCase{24, 20}));

struct Utf8Case {
    int32_t capacity;
    int32_t result;
    std::string written;  // bytes written; the rest of the buffer untouched
};

class Utf8ToUcs2Room : public ::testing::TestWithParam<Utf8Case> {};

// "aé€": three characters in six bytes.  The character check passes a
// buffer of four or five bytes, which then holds only two units.
TEST_P(Utf8ToUcs2Room, WritesWholeUnitsOnly)
{
    const Utf8Case &c = GetParam();
    uint8_t out[12];
    std::memset(out, 0xEE, sizeof out);
    EXPECT_EQ(UTF8_TO_UCS2("a\xC3\xA9\xE2\x82\xAC", out, c.capacity), c.result);
    EXPECT_EQ(std::string(reinterpret_cast<char *>(out), c.written.size()), c.written);
    EXPECT_EQ(out[c.written.size()], 0xEE);
}

INSTANTIATE_TEST_SUITE_P(Table, Utf8ToUcs2Room,
                         ::testing::Values(Utf8Case{2, -1, ""}, Utf8Case{4, 3, std::string("a\0\xE9\0", 4)},
                                           Utf8Case{5, 3, std::string("a\0\xE9\0", 4)},
                                           Utf8Case{6, 3, std::string("a\0\xE9\0\xAC\x20", 6)}));

class Ucs2ToUtf8Room : public ::testing::TestWithParam<Utf8Case> {};

TEST_P(Ucs2ToUtf8Room, AllOrNothing)
{
    const Utf8Case &c = GetParam();
    const uint16_t units[] = {0x61, 0xE9, 0x20AC, 0};
    char out[12];
    std::memset(out, '#', sizeof out);
    EXPECT_EQ(UCS2_TO_UTF8(units, out, c.capacity), c.result);
    EXPECT_EQ(std::string(out, c.written.size()), c.written);
    EXPECT_EQ(out[c.written.size()], '#');
}

INSTANTIATE_TEST_SUITE_P(Table, Ucs2ToUtf8Room,
                         ::testing::Values(Utf8Case{5, -1, ""}, Utf8Case{6, 0, "a\xC3\xA9\xE2\x82\xAC"},
                                           Utf8Case{8, 0, "a\xC3\xA9\xE2\x82\xAC"},
                                           Utf8Case{9, 0, "a\xC3\xA9\xE2\x82\xAC"}));

struct ReceivedCase {
    std::vector<uint8_t> codes;
    std::string text;
};

class ReceivedText : public ::testing::TestWithParam<ReceivedCase> {};

// Short texts take the one-pass conversion, long ones the general one.
TEST_P(ReceivedText, SameTextEitherWay)
{
    const ReceivedCase &c = GetParam();
    uint8_t buffer[513] = {};
    std::memcpy(buffer, c.codes.data(), c.codes.size());
    uint32_t length = 0;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(buffer, static_cast<uint32_t>(c.codes.size()), 0, 0, &length), 0);
    EXPECT_EQ(length, c.text.size());
    EXPECT_EQ(std::string(reinterpret_cast<char *>(buffer)), c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Table, ReceivedText,
    ::testing::Values(ReceivedCase{{0x05, 0x1B, 0x28, 0x1B, 0x65, 0x41},
                                   "\xC3\xA9{\xE2\x82\xAC"
                                   "A"},
                      ReceivedCase{std::vector<uint8_t>(170, 0x10),
                                   [] {
                                       std::string s;
                                       for (int i = 0; i < 170; ++i) s += "\xCE\x94";
                                       return s;
                                   }()},
                      ReceivedCase{std::vector<uint8_t>(200, 0x41), std::string(200, 'A')},
                      // Words of eight with one code each at the edge of the
                      // ASCII ranges, and an escape closing a word.
                      ReceivedCase{{'a', 'b',  'c',  0x24, 'd',  'e',  'f',  'g',  0x40, 'b',  'c',  'd', 'e', 'f', 'g',
                                    'h', 'a',  0x5B, 'b',  'c',  'd',  'e',  'f',  'g',  'a',  'b',  'c', 'd', 'e', 'f',
                                    'g', 0x60, 'a',  'b',  'c',  0x7B, 'e',  'f',  'g',  'h',  0x1F, 'a', 'b', 'c', 'd',
                                    'e', 'f',  0x1B, 0x3C, 0x20, 0x7A, 0x5A, 0x41, 0x25, 0x23, 0x3F, 0x61},
                                   "abc\xC2\xA4"
                                   "defg\xC2\xA1"
                                   "bcdefgha\xC3\x84"
                                   "bcdefg"
                                   "abcdefg\xC2\xBF"
                                   "abc\xC3\xA4"
                                   "efgh\xC3\x89"
                                   "abcdef[ zZA%#?a"}));

}  // namespace
