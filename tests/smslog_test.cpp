#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "common/log_writer.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "support/log_fixture.hpp"

namespace {

using smsutil::test::read_file;

class SmsLog : public smsutil::test::LogTest {
protected:
    void SetUp() override
    {
        LogTest::SetUp();
        std::remove(path_.c_str());
    }
    void TearDown() override { std::remove(path_.c_str()); }
    std::string contents() const { return read_file(path_); }
    std::string path_ = std::string(smsutil::test::log_path()) + ".smslog_test";
};

TEST_F(SmsLog, AppendsNewlineOnlyWhenMissing)
{
    _smslog(path_.c_str(), 1, "%s", "no newline");
    _smslog(path_.c_str(), 1, "%s", "has newline\n");
    _smslog(path_.c_str(), 1, "%s", "double\n\n");
    EXPECT_EQ(contents(), "no newline\nhas newline\ndouble\n\n");
}

TEST_F(SmsLog, FullLineOf2047CharactersGetsItsNewline)
{
    std::string text(2047, 'x');
    _smslog(path_.c_str(), 1, "%s", text.c_str());
    EXPECT_EQ(contents(), text + "\n");
    EXPECT_EQ(smsutil::common::log_byte_count(), 2048);
}

TEST_F(SmsLog, LongerTextIsCutAt2047)
{
    std::string text(3000, 'y');
    _smslog(path_.c_str(), 1, "%s", text.c_str());
    EXPECT_EQ(contents(), std::string(2047, 'y') + "\n");
}

TEST_F(SmsLog, EmptyTextWritesNothing)
{
    _smslog(path_.c_str(), 1, "%s", "");
    EXPECT_EQ(contents(), "");
    EXPECT_EQ(smsutil::common::log_byte_count(), 0);
}

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

TEST_F(SmsLog, ArgumentsAreNotInterpretedTwice)
{
    _smslog(path_.c_str(), 1, "%s", "100%s %d %n");
    EXPECT_EQ(contents(), "100%s %d %n\n");
}

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
    { std::FILE *f = std::fopen(path_.c_str(), "w"); std::fputs("old\n", f); std::fclose(f); }
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

class TraceLine : public smsutil::test::LogTest {};

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

TEST_F(TraceLine, PrefixRightAlignsNameAndLine)
{
    int line = short_fn(7);
    int long_line = a_function_with_a_long_name();
#if SMSUTIL_TRACE_ENABLED
    char expected[256];
    std::snprintf(expected, sizeof expected, "[        short_fn: %4d]:The value is 7\n\n[a_function_with_a_long_name: %4d]:long\n",
                  line, long_line);
    EXPECT_EQ(log_text(), expected);
#else
    (void)line;
    (void)long_line;
    EXPECT_EQ(log_text(), "");
#endif
}

TEST_F(TraceLine, PercentInArgumentsIsLiteral)
{
    SMS_TRACE_AS("ParseSms", "pdu %s\n", "%s%s%n");
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("ParseSms", "pdu %s%s%n"));
#endif
}

}  // namespace
