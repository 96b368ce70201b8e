// The tool's pure helpers: hexadecimal text, PDU framing, ISO 8601 forms
// and number checks, at their boundaries.
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "hex.hpp"
#include "json_format.hpp"
#include "number_check.hpp"
#include "pdu_text.hpp"

namespace smsutil::cli {
namespace {

struct HexCase {
    const char *name;
    const char *text;
    std::optional<std::vector<uint8_t>> octets;
};

class HexToOctets : public ::testing::TestWithParam<HexCase> {};

TEST_P(HexToOctets, ReadsEitherCaseAndRefusesTheRest) { EXPECT_EQ(hex_to_octets(GetParam().text), GetParam().octets); }

INSTANTIATE_TEST_SUITE_P(Cases, HexToOctets,
                         ::testing::Values(HexCase{"Empty", "", std::vector<uint8_t>{}},
                                           HexCase{"Lower", "0aff", std::vector<uint8_t>{0x0A, 0xFF}},
                                           HexCase{"Upper", "0AFF", std::vector<uint8_t>{0x0A, 0xFF}},
                                           HexCase{"OddLength", "0a0", std::nullopt},
                                           HexCase{"LetterBeyondF", "0g", std::nullopt},
                                           HexCase{"InnerBlank", "0a 0b", std::nullopt},
                                           HexCase{"Sign", "-1", std::nullopt}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(OctetsToHex, WritesLowercasePairs)
{
    const std::vector<uint8_t> octets{0x00, 0x9A, 0xF1};
    EXPECT_EQ(octets_to_hex(octets), "009af1");
}

TEST(Trim, DropsBlanksAndLineEndsAtBothEnds)
{
    EXPECT_EQ(trim(" \t0891\r\n"), "0891");
    EXPECT_EQ(trim("\r\n"), "");
    EXPECT_EQ(trim("08 91"), "08 91");
}

struct FrameCase {
    const char *name;
    const char *text;
    size_t service_centre_octets;  // 0 when refused
    size_t tpdu_octets;
    const char *error_part;
};

class SplitPduText : public ::testing::TestWithParam<FrameCase> {};

TEST_P(SplitPduText, FramesServiceCentreAndTpdu)
{
    const auto &c = GetParam();
    const PduText pdu = split_pdu_text(c.text);
    EXPECT_EQ(pdu.service_centre.size(), c.service_centre_octets);
    EXPECT_EQ(pdu.tpdu.size(), c.tpdu_octets);
    if (c.error_part[0] == '\0') {
        EXPECT_TRUE(pdu.error.empty()) << pdu.error;
    } else {
        EXPECT_NE(pdu.error.find(c.error_part), std::string::npos) << pdu.error;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, SplitPduText,
                         ::testing::Values(FrameCase{"Whole", "0891683119320400F00400", 9, 2, ""},
                                           FrameCase{"NoServiceCentre", "0004", 1, 1, ""},
                                           FrameCase{"Empty", "", 0, 0, "empty"},
                                           FrameCase{"OddLength", "08916", 0, 0, "odd number"},
                                           FrameCase{"NotHex", "08ZZ", 0, 0, "not a hexadecimal"},
                                           FrameCase{"AddressCutShort", "08916831", 0, 0, "ends before"},
                                           FrameCase{"NothingAfterAddress", "0281F0", 0, 0, "no TPDU"}),
                         [](const auto &info) { return std::string(info.param.name); });

wms_timestamp time_of(uint8_t year, uint8_t month, uint8_t day, uint8_t hour, uint8_t minute, uint8_t second,
                      int8_t zone)
{
    return wms_timestamp{year, month, day, hour, minute, second, zone};
}

struct TimeCase {
    const char *name;
    wms_timestamp time;
    std::optional<std::string> text;
};

class Iso8601Timestamp : public ::testing::TestWithParam<TimeCase> {};

TEST_P(Iso8601Timestamp, CarriesTheQuarterHourZone) { EXPECT_EQ(iso8601_timestamp(GetParam().time), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(
    Cases, Iso8601Timestamp,
    ::testing::Values(
        TimeCase{"PlusOneHour", time_of(0x26, 0x11, 0x22, 0x23, 0x15, 0x42, 4), "2026-11-22T23:15:42+01:00"},
        TimeCase{"MinusFiveHours", time_of(0x26, 0x01, 0x02, 0x03, 0x04, 0x05, -20), "2026-01-02T03:04:05-05:00"},
        TimeCase{"HalfHour", time_of(0x24, 0x05, 0x06, 0x07, 0x08, 0x09, 2), "2024-05-06T07:08:09+00:30"},
        TimeCase{"LastYearOfCentury", time_of(0x95, 0x12, 0x31, 0x23, 0x59, 0x59, 0), "2095-12-31T23:59:59+00:00"},
        TimeCase{"YearReadAsPast", time_of(0x96, 0x01, 0x01, 0x00, 0x00, 0x00, 0), "1996-01-01T00:00:00+00:00"},
        TimeCase{"MonthNotBcd", time_of(0x26, 0x1A, 0x01, 0x00, 0x00, 0x00, 0), std::nullopt},
        TimeCase{"SecondNotBcd", time_of(0x26, 0x01, 0x01, 0x00, 0x00, 0xF0, 0), std::nullopt}),
    [](const auto &info) { return std::string(info.param.name); });

class Iso8601Duration : public ::testing::TestWithParam<TimeCase> {};

TEST_P(Iso8601Duration, NamesOnlyTheFieldsThatAreSet) { EXPECT_EQ(iso8601_duration(GetParam().time), GetParam().text); }

INSTANTIATE_TEST_SUITE_P(Cases, Iso8601Duration,
                         ::testing::Values(TimeCase{"Zero", time_of(0, 0, 0, 0, 0, 0, 0), "PT0S"},
                                           TimeCase{"FiveMinutes", time_of(0, 0, 0, 0, 0x05, 0, 0), "PT5M"},
                                           TimeCase{"TwelveHoursAndAHalf", time_of(0, 0, 0, 0x12, 0x30, 0, 0),
                                                    "PT12H30M"},
                                           TimeCase{"OneDay", time_of(0, 0, 0x01, 0, 0, 0, 0), "P1D"},
                                           TimeCase{"LongestPeriod", time_of(0x01, 0x02, 0x16, 0, 0, 0, 0), "P1Y2M16D"},
                                           TimeCase{"DayNotBcd", time_of(0, 0, 0x3C, 0, 0, 0, 0), std::nullopt}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(Iso8601Local, PadsEveryField) { EXPECT_EQ(iso8601_local(2024, 5, 6, 7, 8, 9), "2024-05-06T07:08:09"); }

TEST(DeliveryStateName, NamesEveryStateAndFlagsTheRest)
{
    const std::vector<std::string> names{"delivered", "completed", "replaced", "pending", "failed", "stopped"};
    for (uint32_t state = 0; state < names.size(); ++state) EXPECT_EQ(delivery_state_name(state), names[state]);
    EXPECT_STREQ(delivery_state_name(6), "unknown");
}

struct NumberCase {
    const char *name;
    const char *number;
    const char *problem_part;  // empty when accepted
};

class DialNumberProblem : public ::testing::TestWithParam<NumberCase> {};

TEST_P(DialNumberProblem, AcceptsWhatTheLibraryCanSend)
{
    const std::string problem = dial_number_problem(GetParam().number);
    if (GetParam().problem_part[0] == '\0') {
        EXPECT_EQ(problem, "");
    } else {
        EXPECT_NE(problem.find(GetParam().problem_part), std::string::npos) << problem;
    }
}

INSTANTIATE_TEST_SUITE_P(Cases, DialNumberProblem,
                         ::testing::Values(NumberCase{"International", "+8613912345678", ""},
                                           NumberCase{"PlusAndOneDigit", "+1", ""},
                                           NumberCase{"ServiceCode", "*100#", ""},
                                           NumberCase{"TwentyDigits", "12345678901234567890", ""},
                                           NumberCase{"TwentyOneDigits", "123456789012345678901", "longer than 20"},
                                           NumberCase{"Empty", "", "empty"}, NumberCase{"PlusAlone", "+", "no digits"},
                                           NumberCase{"InnerPlus", "1+2", "'+'"}, NumberCase{"Letter", "12a", "'a'"},
                                           NumberCase{"Blank", "12 3", "' '"}),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
}  // namespace smsutil::cli
