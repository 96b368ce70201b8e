#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/log_fixture.hpp"

namespace {

#if SMSUTIL_TRACE_ENABLED

// Printable and unprintable bytes, 0x7F and 0x80 at the edges, a zero
// inside the data.
const uint8_t kData[20] = {'H',  'e',  'l', 'l', 'o', ',', ' ', 'W', 'o', 'r',
                           'l',  'd',  '!', 0x01, 0x7F, 0x80, 'A', 'B', 0x00, '~'};

const std::string kPlus(75, '+');
const std::string kHeading[] = {
    "Offset                   Data                               ASCII        ",
    std::string(74, '-'),
};

struct DumpCase {
    const char *name;
    int32_t length;
    std::vector<std::string> rows;
};

class DumpBufferLayout : public smsutil::test::LogTest, public ::testing::WithParamInterface<DumpCase> {};

TEST_P(DumpBufferLayout, WritesTheLinesInOrder)
{
    const DumpCase &c = GetParam();
    DumpBuffer(kData, c.length, "demo");
    std::vector<std::string> expected = {kPlus, "Description:demo  Length :" + std::to_string(c.length) + " ",
                                         kHeading[0], kHeading[1]};
    expected.insert(expected.end(), c.rows.begin(), c.rows.end());
    expected.push_back(kPlus);

    const std::vector<std::string> lines = log_lines();
    ASSERT_EQ(lines.size(), expected.size()) << log_text();
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(lines[i].rfind("[      DumpBuffer: ", 0), 0u) << lines[i];
        const auto colon = lines[i].find("]:");
        ASSERT_NE(colon, std::string::npos);
        EXPECT_EQ(lines[i].substr(colon + 2), expected[i]) << "line " << i;
        if (i >= 4 && i + 1 < lines.size()) {
            EXPECT_EQ(expected[i].size(), 4u + 4 + 48 + 3 + 16);
        }
    }
}

// Offset, four spaces, 48 columns of bytes, three spaces, 16 characters.
INSTANTIATE_TEST_SUITE_P(
    Lengths, DumpBufferLayout,
    ::testing::Values(
        DumpCase{"Empty", 0, {}},
        DumpCase{"Fifteen",
                 15,
                 {"0000    "
                  "48 65 6C 6C 6F 2C 20 57 6F 72 6C 64 21 01 7F "
                  "   "
                  "   "
                  "Hello, World!.. "}},
        DumpCase{"Sixteen",
                 16,
                 {"0000    "
                  "48 65 6C 6C 6F 2C 20 57 6F 72 6C 64 21 01 7F 80 "
                  "   "
                  "Hello, World!..."}},
        DumpCase{"Seventeen",
                 17,
                 {"0000    "
                  "48 65 6C 6C 6F 2C 20 57 6F 72 6C 64 21 01 7F 80 "
                  "   "
                  "Hello, World!...",
                  "0010    "
                  "41 "
                  "                                             "
                  "   "
                  "A               "}},
        DumpCase{"Twenty",
                 20,
                 {"0000    "
                  "48 65 6C 6C 6F 2C 20 57 6F 72 6C 64 21 01 7F 80 "
                  "   "
                  "Hello, World!...",
                  "0010    "
                  "41 42 00 7E "
                  "                                    "
                  "   "
                  "AB.~            "}}),
    [](const auto &info) { return std::string(info.param.name); });

class DumpBufferArguments : public smsutil::test::LogTest {};

// Nothing to show still gives the frame, and never a row.
TEST_F(DumpBufferArguments, MissingDataOrNegativeLengthWritesOnlyTheFrame)
{
    DumpBuffer(nullptr, 5, nullptr);
    DumpBuffer(kData, -3, "neg");
    const std::vector<std::string> lines = log_lines();
    ASSERT_EQ(lines.size(), 10u);
    EXPECT_TRUE(logged("Description:  Length :5 "));
    EXPECT_TRUE(logged("Description:neg  Length :-3 "));
    EXPECT_TRUE(lines[4].ends_with(kPlus));
}

#endif  // SMSUTIL_TRACE_ENABLED

}  // namespace
