#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <string>
#include <vector>

#include "smsutil/wms_cdma.h"

namespace {

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

}  // namespace
