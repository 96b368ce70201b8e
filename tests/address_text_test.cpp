#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/sms_api.h"

namespace {

wms_address bcd_address(uint8_t type, const char *digits)
{
    wms_address a{};
    a.number_type = type;
    a.number_of_digits = static_cast<uint8_t>(std::strlen(digits));
    wms_ts_ascii_to_bcd(digits, a.number_of_digits, a.digits);
    return a;
}

TEST(DecodeAddress, InternationalGetsPlusWithinCapacity)
{
    const wms_address a = bcd_address(WMS_NUMBER_INTERNATIONAL, "12345678901234567890");
    char text[SMS_NUMBER_SIZE];
    uint32_t len = sizeof text;
    ASSERT_EQ(DecodeAddress(&a, text, &len), 0);
    EXPECT_STREQ(text, "+1234567890123456789");  // "+" and 19 digits
    EXPECT_EQ(len, 20u);
}

TEST(DecodeAddress, NationalDigitsAndSpecials)
{
    const wms_address a = bcd_address(WMS_NUMBER_UNKNOWN, "*100#");
    char text[SMS_NUMBER_SIZE];
    uint32_t len = sizeof text;
    ASSERT_EQ(DecodeAddress(&a, text, &len), 0);
    EXPECT_STREQ(text, "*100#");
    EXPECT_EQ(len, 5u);
}

TEST(DecodeAddress, AlphanumericCopiesCharacters)
{
    wms_address a{};
    a.digit_mode = WMS_DIGIT_MODE_CHAR;
    a.number_type = WMS_NUMBER_ALPHANUMERIC;
    a.number_of_digits = 4;
    std::memcpy(a.digits, "Shop", 4);
    char text[SMS_NUMBER_SIZE];
    uint32_t len = sizeof text;
    ASSERT_EQ(DecodeAddress(&a, text, &len), 0);
    EXPECT_STREQ(text, "Shop");
}

TEST(DecodeAddress, HostileDigitCountStaysInsideEveryBuffer)
{
    wms_address a{};
    a.number_of_digits = 255;
    std::memset(a.digits, 1, sizeof a.digits);
    char text[8];
    uint32_t len = sizeof text;
    ASSERT_EQ(DecodeAddress(&a, text, &len), 0);
    EXPECT_EQ(len, 7u);
    EXPECT_STREQ(text, "1111111");
    EXPECT_EQ(DecodeAddress(&a, nullptr, &len), -1);
}

TEST(HexText, OctetsToLowercaseAndBack)
{
    const uint8_t octets[] = {0x08, 0x91, 0xAB, 0xF1, 0x00};
    char text[2 * sizeof octets + 1];
    BcdToAscii(text, octets, sizeof octets);
    EXPECT_STREQ(text, "0891abf100");
    uint8_t back[sizeof octets] = {};
    AsciiToBcd(back, "0891ABf100", 10);
    EXPECT_EQ(std::memcmp(back, octets, sizeof octets), 0);
}

TEST(HexText, OddCountAndNonHexCharacters)
{
    uint8_t out[2] = {0xEE, 0xEE};
    AsciiToBcd(out, "123", 3);  // the last character pairs with the terminator
    EXPECT_EQ(out[0], 0x12);
    EXPECT_EQ(out[1], 0x30);
    AsciiToBcd(out, "123", 1);  // an odd count takes one character beyond
    EXPECT_EQ(out[0], 0x12);
    AsciiToBcd(out, "zG", 2);  // low four bits of each character
    EXPECT_EQ(out[0], static_cast<uint8_t>((('z' & 0x0F) << 4) | ('G' & 0x0F)));
}

}  // namespace
