// The message interface's field helpers: receivers, numbers, service centres, times and hex text.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include "common/log_writer.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

class FieldLog : public LogTest {
protected:
    void clear_log() { LogTest::SetUp(); }
    // A row's log line is part of what it states; without tracing there is none to check.
    void expect_logged(const char *message) const
    {
#if SMSUTIL_TRACE_ENABLED
        EXPECT_TRUE(message[0] == '\0' || logged(message)) << message << "\n" << log_text();
#else
        (void)message;
#endif
    }
};

TEST(ParseReceiver, SplitsOnTheSeparator)
{
    const std::string k30(30, '1');
    std::string k25;
    std::vector<std::string> first20;
    for (int i = 100; i < 125; ++i) k25 += std::to_string(i) + ";";
    for (int i = 100; i < 120; ++i) first20.push_back(std::to_string(i));
    const std::tuple<const char *, std::vector<std::string>, const char *> cases[] = {
        {"123;+456;78a", {"123", "+456"}, ";"},  // the last is refused
        {"123;456;", {"123", "456"}, ";"},
        {";;", {"", ""}, ";"},
        {k30.c_str(), {std::string(23, '1')}, ";"},
        {"", {}, ";"},
        {"12;;34", {"12"}, ";;"},  // ";34" fails the digit test
        // An empty separator is found where the scan stands: each character
        // ends an empty receiver and the scan moves on by one.
        {"123", {"", "", ""}, ""},
        {k25.c_str(), first20, ";"}};
    SmsReceiver r[SMS_MAX_RECEIVERS + 1];
    for (const auto &[list, numbers, separator] : cases) {
        std::memset(r, 0x7F, sizeof r);
        const int32_t n = sms_parse_receiver(separator, list, r);
        ASSERT_EQ(n, static_cast<int32_t>(numbers.size())) << list;
        for (int32_t i = 0; i < n; ++i) EXPECT_EQ(r[i].szNumber, numbers[static_cast<std::size_t>(i)]);
        EXPECT_EQ(r[n].szNumber[0], 0x7F);  // entries after the count untouched
        EXPECT_EQ(r[0].dwUserData, 0x7F7F7F7Fu);
    }
    EXPECT_EQ(sms_parse_receiver(nullptr, "1", r), 0);
    EXPECT_EQ(sms_parse_receiver(";", nullptr, r), 0);
    EXPECT_EQ(sms_parse_receiver(";", "1", nullptr), 0);
}

TEST(TestStrNum, DigitsAndPlusOnly)
{
    const std::pair<const char *, int32_t> cases[] = {{"+123", 0},  {"12+3", 0},   {"", -1},
                                                      {"12 3", -1}, {nullptr, -1}, {"*1", -1}};
    for (const auto &[text, expected] : cases) EXPECT_EQ(sms_test_str_num(text), expected) << (text ? text : "null");
}

TEST(SafeCpy, AlwaysTerminatesWithinSize)
{
    char dst[8] = "xxxxxxx";
    EXPECT_EQ(sms_safe_cpy(dst, "abcdef", 4), dst);
    EXPECT_STREQ(dst, "abc");
    EXPECT_EQ(dst[4], 'x');
    EXPECT_EQ(sms_safe_cpy(dst, nullptr, 8)[0], '\0');
    dst[0] = 'q';
    EXPECT_EQ(sms_safe_cpy(dst, "abc", 0)[0], '\0');
    EXPECT_EQ(sms_safe_cpy(nullptr, "abc", 4), nullptr);
}

TEST(ComposeScAddress, GivesTheOctetsThatPrefixAPdu)
{
    const std::tuple<const char *, int32_t, const char *, uint8_t> cases[] = {
        {"+8612345678901", 0, "0891682143658709f1", 1},
        {"", 0, "0181", 0},
        {"12345678901234567890", 0, "0b8121436587092143658709", 0},
        {"123456789012345678901", -1, "", 0},
        {"+", -1, "", 0}};
    SendOrWriteMsg work{};
    SmsOctetBuf buf{};
    for (const auto &[number, ret, octets, ton] : cases) {
        ASSERT_EQ(ComposeSCAddrData(number, &work, &buf), ret) << number;
        if (ret != 0) continue;
        char text[2 * SMS_OCTET_BUF_SIZE + 1];
        BcdToAscii(text, buf.data, buf.dwLen);
        EXPECT_STREQ(text, octets);
        EXPECT_EQ(work.byScTon, ton);
        EXPECT_EQ(work.byScNpi, 1);
    }
    EXPECT_EQ(ComposeSCAddrData(nullptr, &work, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", nullptr, &buf), -1);
    EXPECT_EQ(ComposeSCAddrData("1", &work, nullptr), -1);
}

TEST_F(FieldLog, TransformScaReadsTwoHexCharacters)
{
    const char kDigit1[] = "The CheckSCANum digit1 is incompatible!";
    const char kDigit2[] = "The CheckSCANum digit2 is incompatible!";
    const std::tuple<const char *, int32_t, uint32_t, const char *> cases[] = {
        {"0a", 0, 10, ""},      {"Ff", 0, 255, ""},   {"0G", -1, 0, kDigit2},
        {"G0", -1, 0, kDigit1}, {"", -1, 0, kDigit1}, {"0", -1, 0, kDigit2}};
    for (const auto &[text, ret, value, message] : cases) {
        clear_log();
        uint32_t out = 99;
        EXPECT_EQ(TransformSCANum(text, &out), ret) << text;
        EXPECT_EQ(ret == 0 ? out : value, value) << text;
        expect_logged(message);
    }
}

TEST_F(FieldLog, ParseCentreNumSwapsDigitsAndAddsPlusOnlyFor86)
{
    // Too long for a number: the log gives the whole length, not a cap.
    const std::tuple<const char *, int32_t, const char *, const char *> cases[] = {
        {"914421436587F9", 0, "44123456789", ""},
        {"81214365", 0, "123456", ""},
        {"9168", 0, "+86", ""},
        {"811234567", 0, "2143657", ""},
        {"81123456F", 0, "214365", ""},
        {"81123456789", 0, "214365879", ""},
        {"8112345678901234567890", 0, "21436587092143658709", ""},
        {"81123456789012345678901", -1, "", "src len is[21]"},
        {"A1682143658709f1", 0, "8612345678901", ""},
        {"81", -1, "", "src len is[0]"},
        {"8", -1, "", ""},
        {"811234567890123456789012", -1, "", "src len is[22]"}};
    for (const auto &[src, ret, number, message] : cases) {
        clear_log();
        char out[SMS_NUMBER_SIZE] = "";
        EXPECT_EQ(parse_centernum(SMS_NUMBER_SIZE, out, src), ret) << src;
        EXPECT_STREQ(out, number);
        expect_logged(message);
    }
    char small[14];  // one short
    EXPECT_EQ(parse_centernum(sizeof small, small, "91682143658709F1"), -1);
    char exact[15];  // "+8612345678901" and its terminator
    EXPECT_EQ(parse_centernum(sizeof exact, exact, "91682143658709F1"), 0);
    EXPECT_STREQ(exact, "+8612345678901");
    EXPECT_EQ(parse_centernum(21, nullptr, "91"), -1);
}

TEST_F(FieldLog, DialNumberChecksCharactersAndLength)
{
    const char kIllegal[] = "The EWCheckDialNum pszDialNum is illegal!";
    const char kLength[] = "The EWCheckDialNum pszDialNum's length is 0 or out of the max length!";
    const std::string k20(20, '9'), k21(21, '9');
    // One past the largest maximum must not wrap to 0 where size_t has 32 bits.
    const std::tuple<const char *, uint32_t, int32_t, const char *> cases[] = {
        {"+", 20, -1, "The EWCheckDialNum pszDialNum is only a '+'!"},
        {"+1", 20, 0, ""},
        {"1+2", 20, -1, kIllegal},
        {k20.c_str(), 20, 0, ""},
        {k21.c_str(), 20, -1, kLength},
        {"", 20, -1, kLength},
        {"12a4", 20, -1, kIllegal},
        {"1", 0, -1, kLength},
        {"12345", UINT32_MAX, 0, ""}};
    for (const auto &[number, maximum, expected, message] : cases) {
        clear_log();
        EXPECT_EQ(EWCheckDialNum(number, maximum), expected) << number;
        expect_logged(message);
    }
    // An unterminated 21-byte field: the check must stop at byte 21.
    char field[21];
    std::memset(field, '5', sizeof field);
    EXPECT_EQ(EWCheckDialNum(field, 20), -1);
    EXPECT_EQ(EWCheckDialNum(nullptr, 20), -1);
}

TEST(AddressData, DigitsTypeAndRefusals)
{
    SendOrWriteMsg work{};
    wms_address a;
    std::memset(&a, 0xEE, sizeof a);
    ASSERT_EQ(ConstructAddressData("+86*1#", &work, &a), 0);
    const uint8_t expected[6] = {8, 6, 10, 1, 11, 0};  // zeroed past the digits
    EXPECT_EQ(std::memcmp(a.digits, expected, sizeof expected), 0);
    EXPECT_EQ(std::vector<int>({a.number_type, a.number_plan, a.digit_mode, a.number_of_digits}),
              std::vector<int>({WMS_NUMBER_INTERNATIONAL, 1, 0, 5}));
    EXPECT_EQ(ConstructAddressData(nullptr, &work, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", nullptr, &a), -1);
    EXPECT_EQ(ConstructAddressData("1", &work, nullptr), -1);
}

TEST(SwitchStatus, MapsTpStatusGroups)
{
    const std::pair<uint32_t, uint8_t> cases[] = {
        {0x00, SMS_STATUS_DELIVERED}, {0x01, SMS_STATUS_COMPLETED}, {0x02, SMS_STATUS_REPLACED},
        {0x03, SMS_STATUS_COMPLETED}, {0x1F, SMS_STATUS_COMPLETED}, {0x20, SMS_STATUS_PENDING},
        {0x3F, SMS_STATUS_PENDING},   {0x40, SMS_STATUS_FAILED},    {0x5F, SMS_STATUS_FAILED},
        {0x60, SMS_STATUS_STOPPED},   {0x100, SMS_STATUS_STOPPED}};
    for (const auto &[tp_status, state] : cases) {
        uint8_t tag = 0xEE;
        ASSERT_EQ(SwitchReportStatus(tp_status, &tag), 0);
        EXPECT_EQ(tag, state) << tp_status;
    }
    EXPECT_EQ(SwitchReportStatus(0, nullptr), -1);
}

TEST_F(FieldLog, DecomposeTimeChecksEachFieldInOrder)
{
    const char kYear[] = "The year parsed in DecomposeReadMsgTime function is illegal!";
    const std::tuple<wms_timestamp, int32_t, uint16_t, const char *> cases[] = {
        {{0x95, 0x12, 0x31, 0x23, 0x59, 0x59, 0}, 0, 2095, ""},
        {{0x00, 0x01, 0x01, 0x00, 0x00, 0x00, 0}, 0, 2000, ""},
        {{0x99, 0x01, 0x01, 0x00, 0x00, 0x00, 0}, -1, 0, kYear},
        {{0xAA, 0xAA, 0x01, 0x1A, 0xAA, 0xAA, 0}, -1, 0, "DecomposeReadMsgTime function parses hour unsuccessfully!"},
        {{0x24, 0x1F, 0x01, 0x01, 0x01, 0x01, 0}, -1, 0, "DecomposeReadMsgTime function parses month unsuccessfully!"},
        {{0x24, 0x01, 0xF1, 0x01, 0x01, 0x01, 0}, -1, 0, "DecomposeReadMsgTime function parses day unsuccessfully!"},
        {{0x24, 0x01, 0x01, 0x01, 0x01, 0x0B, 0}, -1, 0, "DecomposeReadMsgTime function parses second unsuccessfully!"},
        {{0xB0, 0x01, 0x01, 0x01, 0x01, 0x01, 0}, -1, 0, "DecomposeReadMsgTime function parses year unsuccessfully!"}};
    for (const auto &[ts, ret, year, message] : cases) {
        clear_log();
        SmsMessageData msg{};
        EXPECT_EQ(DecomposeReadMsgTime(&ts, &msg), ret) << message;
        EXPECT_EQ(msg.wYear, year);
        expect_logged(message);
    }
    const wms_timestamp ts{};
    SmsMessageData msg{};
    EXPECT_EQ(DecomposeReadMsgTime(nullptr, &msg), -1);
    EXPECT_EQ(DecomposeReadMsgTime(&ts, nullptr), -1);
}

// The exported steps of ParseSms on their own: a TPDU cut inside its first
// field is refused with the decode code, and null records with -1.
TEST(ParseSteps, CutTpdusAndNullRecordsAreRefused)
{
    const wms_raw_tpdu cut = smsutil::test::raw_from_hex("04");
    SmsMessageData msg{};
    for (const auto step : {ParseDeliverSms, ParseSubmitSms, ParseStatusReport}) {
        uint32_t err = 0;
        EXPECT_EQ(step(&cut, &msg, &err), -1);
        EXPECT_EQ(err, SMS_ERR_DECODE);
        EXPECT_EQ(step(nullptr, &msg, &err), -1);
        EXPECT_EQ(step(&cut, nullptr, &err), -1);
    }
}

TEST(DecodeAddressText, StaysWithinTheCapacity)
{
    // The field as sent, a digit count forced over it (0: none), the capacity and the text.
    const std::tuple<const char *, uint8_t, uint32_t, const char *> cases[] = {
        {"14912143658709214365870921", 0, SMS_NUMBER_SIZE, "+1234567890123456789"},
        {"05811A00FB", 0, SMS_NUMBER_SIZE, "*100#"},
        {"07D053F41B0E", 0, SMS_NUMBER_SIZE, "Shop"},
        // A hostile digit count stays inside every buffer.
        {"14811111111111111111111111", 255, 8, "1111111"}};
    for (const auto &[wire, count, capacity, want] : cases) {
        wms_address address{};
        ASSERT_NE(wms_ts_decode_address(bytes(wire).data(), &address), 0) << wire;
        if (count != 0) address.number_of_digits = count;
        char text[SMS_NUMBER_SIZE];
        uint32_t len = capacity;
        ASSERT_EQ(DecodeAddress(&address, text, &len), 0);
        EXPECT_STREQ(text, want);
        EXPECT_EQ(len, std::strlen(want));
    }
}

// Both directions are run by composing and parsing messages; an odd count
// takes the character beyond, here the terminator.
TEST(HexText, OddCountTakesTheCharacterBeyond)
{
    uint8_t octets[2] = {};
    AsciiToBcd(octets, "123", 3);
    EXPECT_EQ(octets[0] << 8 | octets[1], 0x1230);
}

class SmsLog : public LogTest {
protected:
    void reset()
    {
        LogTest::SetUp();
        std::remove(path_.c_str());
    }
    void SetUp() override { reset(); }
    void TearDown() override { std::remove(path_.c_str()); }
    std::string contents() const { return read_file(path_); }
    void write(const std::string &text, uint32_t level = 1) { _smslog(path_.c_str(), level, "%s", text.c_str()); }
    std::string path_ = std::string(log_path()) + ".smslog_test";
};

TEST_F(SmsLog, WritesWholeLinesAtLevelsUpToFive)
{
    // Texts written at a level, the file and the byte budget used afterwards.
    const std::tuple<std::vector<std::string>, uint32_t, std::string, int> cases[] = {
        {{"no newline", "has newline\n", "double\n\n"}, 1, "no newline\nhas newline\ndouble\n\n", 31},
        {{std::string(2047, 'x')}, 1, std::string(2047, 'x') + "\n", 2048},
        {{std::string(3000, 'y')}, 1, std::string(2047, 'y') + "\n", 2048},
        {{""}, 1, "", 0},
        {{"100%s %d %n"}, 1, "100%s %d %n\n", 12},
        {{"level 5"}, 5, "level 5\n", 8},
        {{"level 6"}, 6, "", 0},
        {{"top"}, 0xFFFFFFFFu, "", 0}};
    for (const auto &[texts, level, file, count] : cases) {
        reset();
        for (const std::string &t : texts) write(t, level);
        EXPECT_EQ(contents(), file);
        EXPECT_EQ(smsutil::common::log_byte_count(), count);
    }
    _smslog(nullptr, 1, "%s", "lost");
    _smslog(path_.c_str(), 1, nullptr);
    EXPECT_EQ(smsutil::common::log_byte_count(), 0);
    EXPECT_EQ(contents(), "");
    // An unwritable path loses the line but counts it: the budget is what was handed over.
    _smslog("/nonexistent-dir/sub/sms.log", 1, "%s", "lost line");
    EXPECT_EQ(smsutil::common::log_byte_count(), 10);
}

TEST_F(SmsLog, LineOverCapacityEmptiesFileAndBecomesFirstLine)
{
    // The file held something before this process wrote: it is emptied too.
    std::ofstream(path_) << "old\n";
    for (int k = 0; k < 32; ++k) write(std::string(1023, 'a'));  // exactly the capacity still appends
    EXPECT_EQ(smsutil::common::log_byte_count(), 32768);
    EXPECT_EQ(contents().size(), 32768u + 4);
    write("overflow");
    EXPECT_EQ(smsutil::common::log_byte_count(), 0);
    write("next");
    EXPECT_EQ(contents(), "overflow\nnext\n");
    EXPECT_EQ(smsutil::common::log_byte_count(), 5);
}

TEST_F(SmsLog, ConcurrentWritersNeverTearLines)
{
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([this, t] {
            for (int i = 0; i < 2000; ++i) _smslog(path_.c_str(), 1, "thread %d line %05d %s", t, i, "abcdefghijklm");
        });
    }
    for (auto &th : threads) th.join();
    const std::string text = contents();
    ASSERT_FALSE(text.empty());
    // Every line since the last emptying is there, whole: "thread 0 line 00000 abcdefghijklm\n".
    for (std::size_t at = 0; at < text.size(); at += 34)
        ASSERT_EQ(text.compare(at, 7, "thread ") | text.compare(at + 20, 14, "abcdefghijklm\n"), 0)
            << text.substr(at, 40);
    EXPECT_EQ(text.size() % 34, 0u);
}

// The transcripts mask line numbers and never pass a directive as an argument.
TEST_F(FieldLog, TraceLineNumberAndArgumentsTakenLiterally)
{
    SMS_TRACE_AS("ParseSms", "pdu %s\n", "%s%s%n");
    char expected[64] = "";
#if SMSUTIL_TRACE_ENABLED
    std::snprintf(expected, sizeof expected, "[        ParseSms: %4d]:pdu %%s%%s%%n\n", __LINE__ - 3);
#endif
    EXPECT_EQ(log_text(), expected);
}

}  // namespace
