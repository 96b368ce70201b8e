// Bit and character packing under the bearer data: bit fields, 7-bit ASCII, DTMF digits and IS-91 payloads.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <optional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "cdma/bit_fields.hpp"
#include "smsutil/wms_cdma.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

wms_cdma_bearer_data empty_bearer_data()
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    return bd;
}

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

struct AsciiPackCase {
    const char *name;
    std::string text;
    std::vector<std::uint8_t> packed;
    std::uint8_t padding;
};

void PrintTo(const AsciiPackCase &c, std::ostream *os) { *os << c.name; }

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

INSTANTIATE_TEST_SUITE_P(
    Texts, AsciiPack,
    ::testing::Values(AsciiPackCase{"two_characters", "AB", {0x83, 0x08}, 2},
                      AsciiPackCase{"eight_characters_need_no_padding", "AAAAAAAA", {0x83, 0x06, 0x0C, 0x18, 0x30, 0x60, 0xC1}, 0},
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

void PrintTo(const UnpackCase &c, std::ostream *os) { *os << c.name; }

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

INSTANTIATE_TEST_SUITE_P(
    Limits, AsciiUnpack,
    ::testing::Values(UnpackCase{"maximum_zero", 0, 11, 10, ""}, UnpackCase{"maximum_first", 5, 11, 10, "HELLO"},
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
}

TEST(Dtmf, EveryCodeHasItsCharacterAndBack)
{
    const std::string all = "1234567890*#";
    std::vector<std::uint8_t> codes(all.size());
    ASSERT_EQ(wms_ts_ascii2dtmf(all.c_str(), codes.data()), all.size());
    for (std::size_t i = 0; i < codes.size(); ++i) EXPECT_EQ(codes[i], i + 1);
    std::string back(all.size(), '?');
    ASSERT_EQ(wms_ts_dtmf2ascii(static_cast<std::uint8_t>(codes.size()), codes.data(), back.data()), all.size());
    EXPECT_EQ(back, all);
}

struct ToTextCase {
    const char *name;
    std::vector<std::uint8_t> codes;
    std::uint8_t result;
    std::string written;  // the text buffer afterwards, '.' where untouched
};

void PrintTo(const ToTextCase &c, std::ostream *os) { *os << c.name; }

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
    ::testing::Values(ToTextCase{"digits_and_signs", {1, 10, 11, 12}, 4, "10*#."},
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

void PrintTo(const ToCodesCase &c, std::ostream *os) { *os << c.name; }

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
    ::testing::Values(ToCodesCase{"star_zero_hash", "*0#", 3, {11, 10, 12, 0xEE}},
                      ToCodesCase{"letter_ends_it", "12a", 0, {1, 2, 0xEE, 0xEE}},
                      ToCodesCase{"space_ends_it", " 1", 0, {0xEE, 0xEE}},
                      ToCodesCase{"empty", "", 0, {0xEE}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Dtmf, CountOfLongTextWrapsAt256)
{
    const std::string text(258, '5');
    std::vector<std::uint8_t> codes(258, 0xEE);
    EXPECT_EQ(wms_ts_ascii2dtmf(text.c_str(), codes.data()), 2);
    EXPECT_EQ(codes[1], 5);
    EXPECT_EQ(codes[2], 0xEE);
}

using Values = std::vector<std::uint8_t>;

struct PayloadDecodeCase {
    const char *name;
    std::uint32_t type;
    Values values;
    std::uint32_t mask;
    std::uint8_t num_messages;
    std::uint32_t priority;
    std::string text;
    std::uint32_t is91ep_type;  // of the user data, when text is expected
};

void PrintTo(const PayloadDecodeCase &c, std::ostream *os) { *os << c.name; }

class Is91PayloadDecode : public ::testing::TestWithParam<PayloadDecodeCase> {};

TEST_P(Is91PayloadDecode, RebuildsTheRecord)
{
    const PayloadDecodeCase &c = GetParam();
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = 0xFFFF;
    bd.priority = 3;
    bd.language = 77;
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(c.type, static_cast<std::uint8_t>(c.values.size()), c.values.data(), &bd),
              WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.mask, c.mask);
    EXPECT_EQ(bd.alert_on_delivery, 1);
    EXPECT_EQ(bd.num_messages, c.num_messages);
    EXPECT_EQ(bd.priority, c.priority);
    EXPECT_EQ(bd.language, 77u);  // not carried, left alone
    if (bd.mask & WMS_MASK_BD_USER_DATA) {
        EXPECT_EQ(bd.user_data.encoding, WMS_ENCODING_IS91EP);
        EXPECT_EQ(bd.user_data.is91ep_type, c.is91ep_type);
        EXPECT_EQ(bd.user_data.num_fields, c.text.size());
        ASSERT_EQ(bd.user_data.data_len, c.text.size());
        EXPECT_EQ(std::string(reinterpret_cast<const char *>(bd.user_data.data), c.text.size()), c.text);
    }
}

constexpr std::uint32_t kAlertCount = WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS;

INSTANTIATE_TEST_SUITE_P(
    Payloads, Is91PayloadDecode,
    ::testing::Values(
        PayloadDecodeCase{"voice_mail_count_only", 130, {0x01, 0x02}, kAlertCount, 12, 3, "", 0},
        PayloadDecodeCase{"voice_mail_count_digits_use_low_nibble", 130, {0x31, 0x22}, kAlertCount, 12, 3, "", 0},
        PayloadDecodeCase{"voice_mail_too_short_counts_zero", 130, {0x04}, kAlertCount, 40, 3, "", 0},
        PayloadDecodeCase{"voice_mail_urgent", 130, {0x00, 0x05, 0x01}, kAlertCount | WMS_MASK_BD_PRIORITY, 5, 2, "", 0},
        PayloadDecodeCase{"voice_mail_normal", 130, {0x00, 0x05, 0x00}, kAlertCount | WMS_MASK_BD_PRIORITY, 5, 0, "", 0},
        PayloadDecodeCase{"voice_mail_text_without_marker", 130, {0x00, 0x05, 0x21, 0x28},
                          kAlertCount | WMS_MASK_BD_USER_DATA, 5, 3, "AH", 130},
        PayloadDecodeCase{"voice_mail_marker_then_text", 130, {0x00, 0x05, 0x01, 0x21},
                          kAlertCount | WMS_MASK_BD_PRIORITY | WMS_MASK_BD_USER_DATA, 5, 2, "A", 130},
        PayloadDecodeCase{"full_text_reads_as_short_message", 131, {0x28, 0x29},
                          WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3, "HI", 133},
        PayloadDecodeCase{"short_message", 133, {0x2F, 0x2B, 0x01}, WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3,
                          "OK!", 133},
        PayloadDecodeCase{"empty_short_message", 133, {}, WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3, "", 133}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Is91PayloadDecodeCallback, KeepsTheCountButCopies32Digits)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    std::memset(bd.callback.digits, 0xEE, sizeof bd.callback.digits);
    Values digits(40);
    for (std::size_t i = 0; i < digits.size(); ++i) digits[i] = static_cast<std::uint8_t>(i % 10);
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(132, 40, digits.data(), &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.mask, WMS_MASK_BD_ALERT | WMS_MASK_BD_CALLBACK);
    EXPECT_EQ(bd.callback.digit_mode, WMS_DIGIT_MODE_BCD);
    EXPECT_EQ(bd.callback.number_of_digits, 40);
    EXPECT_EQ(0, std::memcmp(bd.callback.digits, digits.data(), 32));
}

TEST(Is91PayloadDecodeLimits, UnknownTypesChangeNothing)
{
    const Values values{1, 2, 3};
    for (std::uint32_t type : {0u, 129u, 134u, 0x182u}) {
        wms_cdma_bearer_data bd = empty_bearer_data();
        bd.mask = 0x4;
        EXPECT_EQ(wms_ts_decode_IS91EP_payload(type, 3, values.data(), &bd), WMS_TS_STATUS_BAD_IS91EP_TYPE) << type;
        EXPECT_EQ(bd.mask, 0x4u);
        EXPECT_EQ(bd.alert_on_delivery, 0);
    }
}

TEST(Is91PayloadDecodeLimits, TextLongerThanTheRecordIsCut)
{
    Values values(255, 0x21);
    wms_cdma_bearer_data bd = empty_bearer_data();
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(133, 255, values.data(), &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.user_data.data_len, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(bd.user_data.num_fields, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(bd.user_data.data[WMS_CDMA_USER_DATA_MAX - 1], 'A');
}

struct PayloadEncodeCase {
    const char *name;
    std::uint32_t type;
    std::uint32_t mask;
    std::uint8_t num_messages;
    std::string text;
    Values expected;
};

void PrintTo(const PayloadEncodeCase &c, std::ostream *os) { *os << c.name; }

class Is91PayloadEncode : public ::testing::TestWithParam<PayloadEncodeCase> {};

TEST_P(Is91PayloadEncode, GivesTheseValues)
{
    const PayloadEncodeCase &c = GetParam();
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = c.mask;
    bd.num_messages = c.num_messages;
    bd.user_data.is91ep_type = c.type;
    bd.user_data.num_fields = static_cast<std::uint8_t>(c.text.size());
    std::memcpy(bd.user_data.data, c.text.data(), c.text.size());
    wms_cdma_user_data out;
    std::memset(&out, 0xEE, sizeof out);
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.num_fields, c.expected.size());
    ASSERT_EQ(out.data_len, c.expected.size());
    EXPECT_EQ(Values(out.data, out.data + out.data_len), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Payloads, Is91PayloadEncode,
    ::testing::Values(
        PayloadEncodeCase{"voice_mail_with_priority", 130, WMS_MASK_BD_PRIORITY, 7, "OK", {0, 7, 1, 0x2F, 0x2B}},
        PayloadEncodeCase{"voice_mail_without_priority", 130, 0, 42, "A", {4, 2, 0x21}},
        PayloadEncodeCase{"voice_mail_count_only", 130, 0, 0, "", {0, 0}},
        PayloadEncodeCase{"full_text", 131, 0, 0, " _", {0x00, 0x3F}},
        PayloadEncodeCase{"short_message", 133, 0, 0, "HI", {0x28, 0x29}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Is91PayloadEncodeCallback, CopiesAtMost32Digits)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.user_data.is91ep_type = 132;
    bd.callback.number_of_digits = 200;
    for (std::size_t i = 0; i < sizeof bd.callback.digits; ++i) bd.callback.digits[i] = static_cast<std::uint8_t>(i);
    wms_cdma_user_data out{};
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.data_len, 32);
    EXPECT_EQ(out.num_fields, 32);
    EXPECT_EQ(out.data[31], 31);
}

TEST(Is91PayloadEncodeLimits, UnknownTypeFillsNothing)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.user_data.is91ep_type = 134;
    bd.user_data.num_fields = 1;
    wms_cdma_user_data out;
    std::memset(&out, 0xEE, sizeof out);
    EXPECT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_BAD_IS91EP_TYPE);
    EXPECT_EQ(out.data_len, 0xEE);
    EXPECT_EQ(out.data[0], 0xEE);
}

TEST(Is91PayloadEncodeLimits, VoiceMailTextIsCutAtTheRecordsCapacity)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = WMS_MASK_BD_PRIORITY;
    bd.user_data.is91ep_type = 130;
    bd.user_data.num_fields = 255;  // more than data holds
    std::memset(bd.user_data.data, 'B', sizeof bd.user_data.data);
    wms_cdma_user_data out{};
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.data_len, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(out.data[3], 'B' - 0x20);
    EXPECT_EQ(out.data[WMS_CDMA_USER_DATA_MAX - 1], 'B' - 0x20);
}

}  // namespace
