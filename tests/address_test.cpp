#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "common/octets.hpp"
#include "smsutil/wms_ts.h"
#include "support/log_fixture.hpp"
#include "transport/codec_internal.hpp"

namespace {

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
        KnownAddress{"star_hash_letters", bcd_address({10, 11, 12, 13, 14}, WMS_NUMBER_UNKNOWN, 0),
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

class AddressLog : public smsutil::test::LogTest {};

TEST_F(AddressLog, TracesLengthAndDigits)
{
    const std::array<uint8_t, 4> octets{0x03, 0x81, 0x21, 0xF3};
    wms_address a{};
    wms_ts_decode_address(octets.data(), &a);
    const wms_address out_address = bcd_address({4, 2});
    std::array<uint8_t, 22> out{};
    wms_ts_encode_address(&out_address, out.data());
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("wms_ts_decode_address", "The len is:3"));
    EXPECT_TRUE(logged_by("wms_ts_decode_address", "The decoded DA num is: 3"));
    EXPECT_TRUE(logged_by("wms_ts_decode_address", "The decoded DA number digits are:"));
    EXPECT_TRUE(logged_by("wms_ts_encode_address", "The number digits are: 2"));
#endif
}

}  // namespace
