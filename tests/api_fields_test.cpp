// The message interface's field helpers: receivers, numbers, service centres, times and hex text.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "common/log_writer.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

struct ReceiverCase {
    const char *name;
    const char *list;
    std::vector<std::string> numbers;
    const char *separator = ";";
};

class ParseReceiver : public ::testing::TestWithParam<ReceiverCase> {};

TEST_P(ParseReceiver, SplitsOnTheSeparator)
{
    SmsReceiver r[SMS_MAX_RECEIVERS + 1];
    std::memset(r, 0x7F, sizeof r);
    const int32_t n = sms_parse_receiver(GetParam().separator, GetParam().list, r);
    ASSERT_EQ(n, static_cast<int32_t>(GetParam().numbers.size()));
    for (int32_t i = 0; i < n; ++i) EXPECT_EQ(r[i].szNumber, GetParam().numbers[static_cast<std::size_t>(i)]);
    EXPECT_EQ(r[n].szNumber[0], 0x7F);  // entries after the count untouched
    EXPECT_EQ(r[0].dwUserData, 0x7F7F7F7Fu);
}

const std::string k30(30, '1');
const std::string k25 = [] {
    std::string s;
    for (int i = 0; i < 25; ++i) s += std::to_string(100 + i) + ";";
    return s;
}();

INSTANTIATE_TEST_SUITE_P(
    Lists, ParseReceiver,
    ::testing::Values(ReceiverCase{"last_refused", "123;+456;78a", {"123", "+456"}},
                      ReceiverCase{"trailing_separator", "123;456;", {"123", "456"}},
                      ReceiverCase{"two_empty", ";;", {"", ""}},
                      ReceiverCase{"single_number", "+8613800000000", {"+8613800000000"}},
                      ReceiverCase{"cut_to_23", k30.c_str(), {std::string(23, '1')}},
                      ReceiverCase{"empty_list", "", {}},
                      // ";34" fails the digit test
                      ReceiverCase{"longer_separator_leaves_its_tail", "12;;34", {"12"}, ";;"},
                      // An empty separator is found where the scan stands: each
                      // character ends an empty receiver and the scan moves on by one.
                      ReceiverCase{"empty_separator_matches_everywhere", "123", {"", "", ""}, ""},
                      ReceiverCase{"twenty_of_25", k25.c_str(), {"100", "101", "102", "103", "104", "105", "106",
                                                                 "107", "108", "109", "110", "111", "112", "113",
                                                                 "114", "115", "116", "117", "118", "119"}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(ParseReceiverNulls, GiveZero)
{
    SmsReceiver r[SMS_MAX_RECEIVERS];
    EXPECT_EQ(sms_parse_receiver(nullptr, "1", r), 0);
    EXPECT_EQ(sms_parse_receiver(";", nullptr, r), 0);
    EXPECT_EQ(sms_parse_receiver(";", "1", nullptr), 0);
}

struct StrNumCase {
    const char *text;
    int32_t expected;
};
class TestStrNum : public ::testing::TestWithParam<StrNumCase> {};
TEST_P(TestStrNum, DigitsAndPlusOnly) { EXPECT_EQ(sms_test_str_num(GetParam().text), GetParam().expected); }
INSTANTIATE_TEST_SUITE_P(Texts, TestStrNum,
                         ::testing::Values(StrNumCase{"+123", 0}, StrNumCase{"12+3", 0}, StrNumCase{"", -1},
                                           StrNumCase{"12 3", -1}, StrNumCase{nullptr, -1}, StrNumCase{"*1", -1}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(SafeCpy, AlwaysTerminatesWithinSize)
{
    char dst[8];
    std::memset(dst, 'x', sizeof dst);
    EXPECT_EQ(sms_safe_cpy(dst, "abcdef", 4), dst);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst[4], 'x');
    sms_safe_cpy(dst, "ab", 8);
    EXPECT_STREQ(dst, "ab");
    sms_safe_cpy(dst, nullptr, 8);
    EXPECT_EQ(dst[0], '\0');
    dst[0] = 'q';
    sms_safe_cpy(dst, "abc", 0);
    EXPECT_EQ(dst[0], '\0');
    EXPECT_EQ(sms_safe_cpy(nullptr, "abc", 4), nullptr);
}

std::string hex_of(const SmsOctetBuf &buf)
{
    char text[2 * SMS_OCTET_BUF_SIZE + 1];
    BcdToAscii(text, buf.data, buf.dwLen);
    return text;
}

struct ScCase {
    const char *name;
    const char *number;
    const char *octets;
    uint8_t ton;
};

class ComposeScAddress : public ::testing::TestWithParam<ScCase> {};

TEST_P(ComposeScAddress, GivesTheOctetsThatPrefixAPdu)
{
    SendOrWriteMsg work{};
    SmsOctetBuf buf{};
    ASSERT_EQ(ComposeSCAddrData(GetParam().number, &work, &buf), 0);
    EXPECT_EQ(hex_of(buf), GetParam().octets);
    EXPECT_EQ(work.byScTon, GetParam().ton);
    EXPECT_EQ(work.byScNpi, 1);
}

INSTANTIATE_TEST_SUITE_P(Numbers, ComposeScAddress,
                         ::testing::Values(ScCase{"international", "+8612345678901", "0891682143658709f1", 1},
                                           ScCase{"national_even", "1234",
                                                  "038121"
                                                  "43",
                                                  0},
                                           ScCase{"empty", "", "0181", 0},
                                           ScCase{"twenty_digits", "12345678901234567890",
                                                  "0b812143658709214365870"
                                                  "9",
                                                  0}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(ComposeScAddressRefusal, TooLongOrIllegal)
{
    SendOrWriteMsg work{};
    SmsOctetBuf buf{};
    EXPECT_EQ(ComposeSCAddrData("123456789012345678901", &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("+", &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData(nullptr, &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", nullptr, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", &work, nullptr), -1);
}

struct TransformCase {
    const char *text;
    int32_t ret;
    uint32_t value;
    const char *message;
};

class TransformSca : public LogTest, public ::testing::WithParamInterface<TransformCase> {};

TEST_P(TransformSca, ReadsTwoHexCharacters)
{
    uint32_t out = 99;
    EXPECT_EQ(TransformSCANum(GetParam().text, &out), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_EQ(out, GetParam().value);
    }
#if SMSUTIL_TRACE_ENABLED
    if (GetParam().message[0] != '\0') {
        EXPECT_TRUE(logged(GetParam().message)) << log_text();
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(Texts, TransformSca,
                         ::testing::Values(TransformCase{"08", 0, 8, ""}, TransformCase{"0a", 0, 10, ""},
                                           TransformCase{"0A", 0, 10, ""}, TransformCase{"FF", 0, 255, ""},
                                           TransformCase{"0G", -1, 0, "The CheckSCANum digit2 is incompatible!"},
                                           TransformCase{"G0", -1, 0, "The CheckSCANum digit1 is incompatible!"},
                                           TransformCase{"", -1, 0, "The CheckSCANum digit1 is incompatible!"},
                                           TransformCase{"0", -1, 0, "The CheckSCANum digit2 is incompatible!"}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

struct CentreCase {
    const char *src;
    int32_t ret;
    const char *number;
    const char *message = "";
};

class ParseCentreNum : public LogTest, public ::testing::WithParamInterface<CentreCase> {};

TEST_P(ParseCentreNum, SwapsDigitsAndAddsPlusOnlyFor86)
{
    char out[SMS_NUMBER_SIZE];
    std::memset(out, 'x', sizeof out);
    EXPECT_EQ(parse_centernum(SMS_NUMBER_SIZE, out, GetParam().src), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_STREQ(out, GetParam().number);
    }
#if SMSUTIL_TRACE_ENABLED
    if (GetParam().message[0] != '\0') {
        EXPECT_TRUE(logged(GetParam().message)) << log_text();
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(Addresses, ParseCentreNum,
                         ::testing::Values(CentreCase{"91682143658709F1", 0, "+8612345678901"},
                                           CentreCase{"914421436587F9", 0, "44123456789"},
                                           CentreCase{"81214365", 0, "123456"},
                                           CentreCase{"A1682143658709f1", 0, "8612345678901"},
                                           CentreCase{"81", -1, "", "src len is[0]"}, CentreCase{"8", -1, ""},
                                           // too long for a number: the log gives the whole length, not a cap
                                           CentreCase{"81"
                                                      "1234567890123456789012",
                                                      -1, "", "src len is[22]"},
                                           CentreCase{"", -1, ""}),
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(ParseCentreNumBounds, OutputThatWouldNotFitIsRefused)
{
    char small[8];
    EXPECT_EQ(parse_centernum(sizeof small, small, "91682143658709F1"), -1);
    char exact[15];  // "+8612345678901" and its terminator
    EXPECT_EQ(parse_centernum(sizeof exact, exact, "91682143658709F1"), 0);
    EXPECT_STREQ(exact, "+8612345678901");
    EXPECT_EQ(parse_centernum(21, nullptr, "91"), -1);
}

struct DialCase {
    const char *name;
    const char *number;
    int32_t expected;
    const char *message;  // the refusal's log text, or the success line
    uint32_t maximum = 20;
};

class DialNumber : public LogTest, public ::testing::WithParamInterface<DialCase> {};

TEST_P(DialNumber, ChecksCharactersAndLength)
{
    const DialCase &c = GetParam();
    EXPECT_EQ(EWCheckDialNum(c.number, c.maximum), c.expected);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged(c.message)) << log_text();
#endif
}

const std::string k20(20, '9');
const std::string k21(21, '9');

INSTANTIATE_TEST_SUITE_P(
    Numbers, DialNumber,
    ::testing::Values(
        DialCase{"plus_alone", "+", -1, "The EWCheckDialNum pszDialNum is only a '+'!"},
        DialCase{"plus_one", "+1", 0, "EWCheckDialNum function run successfully!"},
        DialCase{"plus_inside", "1+2", -1, "The EWCheckDialNum pszDialNum is illegal!"},
        DialCase{"service_code", "*100#", 0, "EWCheckDialNum function run successfully!"},
        DialCase{"twenty_digits", k20.c_str(), 0, "EWCheckDialNum function run successfully!"},
        DialCase{"twenty_one_digits", k21.c_str(), -1,
                 "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!"},
        DialCase{"empty", "", -1, "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!"},
        DialCase{"letter", "12a4", -1, "The EWCheckDialNum pszDialNum is illegal!"},
        DialCase{"space", "12 4", -1, "The EWCheckDialNum pszDialNum is illegal!"},
        // One past the largest maximum must not wrap to 0 where size_t has 32 bits.
        DialCase{"largest_maximum", "12345", 0, "EWCheckDialNum function run successfully!", UINT32_MAX},
        DialCase{"largest_maximum_empty", "", -1,
                 "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!", UINT32_MAX},
        DialCase{"maximum_zero", "1", -1, "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!", 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(DialNumberBounds, ReadsNoFurtherThanOnePastTheLimit)
{
    // An unterminated 21-byte field: the check must stop at byte 21.
    char field[21];
    std::memset(field, '5', sizeof field);
    EXPECT_EQ(EWCheckDialNum(field, 20), -1);
    EXPECT_EQ(EWCheckDialNum(nullptr, 20), -1);
}

class AddressData : public LogTest {};

TEST_F(AddressData, InternationalNumberBecomesTypeOneDigits)
{
    SendOrWriteMsg work{};
    wms_address a;
    std::memset(&a, 0xEE, sizeof a);
    ASSERT_EQ(ConstructAddressData("+86*1#", &work, &a), 0);
    EXPECT_EQ(a.number_type, WMS_NUMBER_INTERNATIONAL);
    EXPECT_EQ(a.number_plan, 1);
    EXPECT_EQ(a.digit_mode, 0);
    EXPECT_EQ(a.number_of_digits, 5);
    const uint8_t expected[5] = {8, 6, 10, 1, 11};
    EXPECT_EQ(std::memcmp(a.digits, expected, 5), 0);
    EXPECT_EQ(a.digits[5], 0);  // zeroed first
}

TEST_F(AddressData, EmptyNumberIsAnEmptyDestination)
{
    SendOrWriteMsg work{};
    wms_address a{};
    ASSERT_EQ(ConstructAddressData("", &work, &a), 0);
    EXPECT_EQ(a.number_type, 0);
    EXPECT_EQ(a.number_plan, 1);
    EXPECT_EQ(a.number_of_digits, 0);
}

TEST_F(AddressData, RefusesBadNumbersAndNulls)
{
    SendOrWriteMsg work{};
    wms_address a{};
    EXPECT_EQ(ConstructAddressData("12-3", &work, &a), -1);
    EXPECT_EQ(ConstructAddressData(nullptr, &work, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", nullptr, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", &work, nullptr), -1);
}

struct StatusCase {
    uint32_t tp_status;
    uint8_t state;
};
class SwitchStatus : public ::testing::TestWithParam<StatusCase> {};
TEST_P(SwitchStatus, MapsTpStatusGroups)
{
    uint8_t tag = 0xEE;
    ASSERT_EQ(SwitchReportStatus(GetParam().tp_status, &tag), 0);
    EXPECT_EQ(tag, GetParam().state);
}
INSTANTIATE_TEST_SUITE_P(Values, SwitchStatus,
                         ::testing::Values(StatusCase{0x00, SMS_STATUS_DELIVERED},
                                           StatusCase{0x01, SMS_STATUS_COMPLETED},
                                           StatusCase{0x02, SMS_STATUS_REPLACED},
                                           StatusCase{0x03, SMS_STATUS_COMPLETED},
                                           StatusCase{0x1F, SMS_STATUS_COMPLETED}, StatusCase{0x20, SMS_STATUS_PENDING},
                                           StatusCase{0x3F, SMS_STATUS_PENDING}, StatusCase{0x40, SMS_STATUS_FAILED},
                                           StatusCase{0x5F, SMS_STATUS_FAILED}, StatusCase{0x60, SMS_STATUS_STOPPED},
                                           StatusCase{0x7F, SMS_STATUS_STOPPED}, StatusCase{0xFF, SMS_STATUS_STOPPED},
                                           StatusCase{0x100, SMS_STATUS_STOPPED}),
                         [](const auto &info) { return "status_" + std::to_string(info.param.tp_status); });

struct TimeCase {
    const char *name;
    wms_timestamp ts;
    int32_t ret;
    uint16_t year;
    const char *message;
};

class DecomposeTime : public LogTest, public ::testing::WithParamInterface<TimeCase> {};
TEST_P(DecomposeTime, ChecksEachFieldInOrder)
{
    SmsMessageData msg{};
    EXPECT_EQ(DecomposeReadMsgTime(&GetParam().ts, &msg), GetParam().ret);
    if (GetParam().ret == 0) {
        EXPECT_EQ(msg.wYear, GetParam().year);
    }
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged(GetParam().message)) << log_text();
#endif
}
INSTANTIATE_TEST_SUITE_P(Stamps, DecomposeTime,
                         ::testing::Values(TimeCase{"year_95",
                                                    {0x95, 0x12, 0x31, 0x23, 0x59, 0x59, 0},
                                                    0,
                                                    2095,
                                                    "DecomposeReadMsgTime function run successfully!"},
                                           TimeCase{"year_00",
                                                    {0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0},
                                                    0,
                                                    2000,
                                                    "DecomposeReadMsgTime function run successfully!"},
                                           TimeCase{"year_99",
                                                    {0x99, 0x01, 0x01, 0x00, 0x00, 0x00, 0},
                                                    -1,
                                                    0,
                                                    "The year parsed in DecomposeReadMsgTime function is illegal!"},
                                           TimeCase{"bad_hour_first",
                                                    {0xAA, 0xAA, 0x01, 0x1A, 0xAA, 0xAA, 0},
                                                    -1,
                                                    0,
                                                    "DecomposeReadMsgTime function parses hour unsuccessfully!"},
                                           TimeCase{"bad_month_after_minute",
                                                    {0x24, 0x1F, 0x01, 0x01, 0x01, 0x01, 0},
                                                    -1,
                                                    0,
                                                    "DecomposeReadMsgTime function parses month unsuccessfully!"},
                                           TimeCase{"bad_day",
                                                    {0x24, 0x01, 0xF1, 0x01, 0x01, 0x01, 0},
                                                    -1,
                                                    0,
                                                    "DecomposeReadMsgTime function parses day unsuccessfully!"},
                                           TimeCase{"bad_second",
                                                    {0x24, 0x01, 0x01, 0x01, 0x01, 0x0B, 0},
                                                    -1,
                                                    0,
                                                    "DecomposeReadMsgTime function parses second unsuccessfully!"},
                                           TimeCase{"bad_year",
                                                    {0xB0, 0x01, 0x01, 0x01, 0x01, 0x01, 0},
                                                    -1,
                                                    0,
                                                    "DecomposeReadMsgTime function parses year unsuccessfully!"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(SwitchStatusNull, Refused) { EXPECT_EQ(SwitchReportStatus(0, nullptr), -1); }

struct DecodeCase {
    const char *name;
    wms_address address;
    uint32_t capacity;
    const char *text;
};
class DecodeAddressText : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(DecodeAddressText, StaysWithinTheCapacity)
{
    char text[SMS_NUMBER_SIZE];
    uint32_t len = GetParam().capacity;
    ASSERT_EQ(DecodeAddress(&GetParam().address, text, &len), 0);
    EXPECT_STREQ(text, GetParam().text);
    EXPECT_EQ(len, std::strlen(GetParam().text));
}

wms_address address(uint8_t mode, uint8_t type, const char *digits, uint8_t count = 0)
{
    wms_address a{};
    a.digit_mode = mode;
    a.number_type = type;
    a.number_of_digits = count ? count : static_cast<uint8_t>(std::strlen(digits));
    if (mode == WMS_DIGIT_MODE_CHAR)
        std::memcpy(a.digits, digits, std::strlen(digits));
    else
        wms_ts_ascii_to_bcd(digits, static_cast<uint8_t>(std::strlen(digits)), a.digits);
    return a;
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, DecodeAddressText,
    ::testing::Values(
        DecodeCase{"international_gets_plus", address(0, WMS_NUMBER_INTERNATIONAL, "12345678901234567890"),
                   SMS_NUMBER_SIZE, "+1234567890123456789"},
        DecodeCase{"national_specials", address(0, WMS_NUMBER_UNKNOWN, "*100#"), SMS_NUMBER_SIZE, "*100#"},
        DecodeCase{"alphanumeric", address(WMS_DIGIT_MODE_CHAR, WMS_NUMBER_ALPHANUMERIC, "Shop"), SMS_NUMBER_SIZE,
                   "Shop"},
        // A hostile digit count stays inside every buffer.
        DecodeCase{"hostile_count", address(0, WMS_NUMBER_UNKNOWN, "11111111111111111111", 255), 8, "1111111"}),
    [](const auto &info) { return std::string(info.param.name); });

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
    out[0] = 0xEE;
    AsciiToBcd(out, "123", 1);  // an odd count takes one character beyond
    EXPECT_EQ(out[0], 0x12);
    AsciiToBcd(out, "zG", 2);  // low four bits of each character
    EXPECT_EQ(out[0], static_cast<uint8_t>((('z' & 0x0F) << 4) | ('G' & 0x0F)));
}

class SmsLog : public LogTest {
protected:
    void SetUp() override
    {
        LogTest::SetUp();
        std::remove(path_.c_str());
    }
    void TearDown() override { std::remove(path_.c_str()); }
    std::string contents() const { return read_file(path_); }
    std::string path_ = std::string(log_path()) + ".smslog_test";
};

struct LogCase {
    const char *name;
    std::vector<std::string> texts;
    std::string file;
    int count;  // the byte budget used afterwards
};
class SmsLogText : public SmsLog, public ::testing::WithParamInterface<LogCase> {};

TEST_P(SmsLogText, WritesWholeLines)
{
    for (const std::string &t : GetParam().texts) _smslog(path_.c_str(), 1, "%s", t.c_str());
    EXPECT_EQ(contents(), GetParam().file);
    EXPECT_EQ(smsutil::common::log_byte_count(), GetParam().count);
}
INSTANTIATE_TEST_SUITE_P(
    Lines, SmsLogText,
    ::testing::Values(LogCase{"newline_only_when_missing",
                              {"no newline", "has newline\n", "double\n\n"},
                              "no newline\nhas newline\ndouble\n\n",
                              31},
                      LogCase{"full_line_of_2047", {std::string(2047, 'x')}, std::string(2047, 'x') + "\n", 2048},
                      LogCase{"longer_cut_at_2047", {std::string(3000, 'y')}, std::string(2047, 'y') + "\n", 2048},
                      LogCase{"empty_writes_nothing", {""}, "", 0},
                      LogCase{"arguments_not_interpreted_twice", {"100%s %d %n"}, "100%s %d %n\n", 12}),
    [](const auto &info) { return std::string(info.param.name); });

struct LevelCase {
    uint32_t level;
    bool written;
};
class SmsLogLevel : public SmsLog, public ::testing::WithParamInterface<LevelCase> {};

TEST_P(SmsLogLevel, FiltersAboveFive)
{
    _smslog(path_.c_str(), GetParam().level, "level %u", GetParam().level);
    EXPECT_EQ(contents().empty(), !GetParam().written);
}
INSTANTIATE_TEST_SUITE_P(Levels, SmsLogLevel,
                         ::testing::Values(LevelCase{0, true}, LevelCase{1, true}, LevelCase{5, true},
                                           LevelCase{6, false}, LevelCase{0xFFFFFFFFu, false}),
                         [](const auto &info) { return "level_" + std::to_string(info.param.level); });

TEST_F(SmsLog, MissingPathOrFormatIsIgnored)
{
    _smslog(nullptr, 1, "%s", "lost");
    _smslog(path_.c_str(), 1, nullptr);
    EXPECT_EQ(smsutil::common::log_byte_count(), 0);
    EXPECT_EQ(contents(), "");
}

TEST_F(SmsLog, UnwritablePathLosesLineSilently)
{
    _smslog("/nonexistent-dir/sub/sms.log", 1, "%s", "lost line");
    // Counted all the same: the budget is what was handed over.
    EXPECT_EQ(smsutil::common::log_byte_count(), 10);
}

// Fill the counter to `count` with whole lines of 1024 bytes plus a remainder.
void fill_to(const std::string &path, int count)
{
    while (count > 0) {
        int n = count > 1024 ? 1024 : count;
        std::string line(static_cast<std::size_t>(n - 1), 'a');
        _smslog(path.c_str(), 1, "%s", line.c_str());
        count -= n;
    }
}

TEST_F(SmsLog, ExactlyTheCapacityStillAppends)
{
    fill_to(path_, 32768);
    EXPECT_EQ(smsutil::common::log_byte_count(), 32768);
    EXPECT_EQ(contents().size(), 32768u);
}

TEST_F(SmsLog, LineOverCapacityEmptiesFileAndBecomesFirstLine)
{
    // The file held something before this process wrote: it is emptied too.
    {
        std::FILE *f = std::fopen(path_.c_str(), "w");
        std::fputs("old\n", f);
        std::fclose(f);
    }
    fill_to(path_, 32768);
    _smslog(path_.c_str(), 1, "%s", "overflow");
    EXPECT_EQ(contents(), "overflow\n");
    EXPECT_EQ(smsutil::common::log_byte_count(), 0);
    _smslog(path_.c_str(), 1, "%s", "next");
    EXPECT_EQ(contents(), "overflow\nnext\n");
    EXPECT_EQ(smsutil::common::log_byte_count(), 5);
}

TEST_F(SmsLog, ConcurrentWritersNeverTearLines)
{
    constexpr int kThreads = 4;
    constexpr int kLines = 2000;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < kLines; ++i)
                _smslog(path_.c_str(), 1, "thread %d line %05d %s", t, i, "abcdefghijklmnopqrstuvwxyz");
        });
    }
    for (auto &th : threads) th.join();
    std::string text = contents();
    ASSERT_FALSE(text.empty());
    ASSERT_EQ(text.back(), '\n');
    std::size_t start = 0;
    int lines = 0;
    while (start < text.size()) {
        std::size_t end = text.find('\n', start);
        std::string line = text.substr(start, end - start);
        int t = -1, i = -1;
        char tail[32] = {};
        ASSERT_EQ(std::sscanf(line.c_str(), "thread %d line %d %31s", &t, &i, tail), 3) << line;
        EXPECT_STREQ(tail, "abcdefghijklmnopqrstuvwxyz");
        EXPECT_EQ(line.size(), 46u) << line;
        ++lines;
        start = end + 1;
    }
    // Every line since the last emptying is there, whole.
    EXPECT_EQ(text.size() % 47, 0u);
    EXPECT_GT(lines, 0);
}

class TraceLine : public LogTest {};

int short_fn(int value)
{
    SMS_TRACE("The value is %d\n\n", value);
    return __LINE__ - 1;
}

int a_function_with_a_long_name()
{
    SMS_TRACE("%s", "long\n");
    return __LINE__ - 1;
}

TEST_F(TraceLine, PrefixRightAlignsNameAndLineAndTakesArgumentsLiterally)
{
    const int line = short_fn(7);
    const int long_line = a_function_with_a_long_name();
    SMS_TRACE_AS("ParseSms", "pdu %s\n", "%s%s%n");
#if SMSUTIL_TRACE_ENABLED
    char expected[256];
    std::snprintf(expected, sizeof expected,
                  "[        short_fn: %4d]:The value is 7\n\n[a_function_with_a_long_name: %4d]:long\n", line,
                  long_line);
    EXPECT_EQ(log_text().substr(0, std::strlen(expected)), expected);
    EXPECT_TRUE(logged("pdu %s%s%n"));
#else
    (void)line;
    (void)long_line;
    EXPECT_EQ(log_text(), "");
#endif
}

}  // namespace
