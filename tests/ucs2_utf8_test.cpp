#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

struct EncodeCase {
    const char *name;
    std::vector<uint16_t> units;  // without the zero unit
    std::string utf8;
};

class Ucs2ToUtf8Encodes : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(Ucs2ToUtf8Encodes, FitsExactlyAndNotOneByteLess)
{
    const auto &c = GetParam();
    std::vector<uint16_t> units = c.units;
    units.push_back(0);
    const auto size = static_cast<int32_t>(c.utf8.size());
    std::vector<char> out(c.utf8.size() + 1, '\x7F');
    ASSERT_EQ(UCS2_TO_UTF8(units.data(), out.data(), size), 0);
    EXPECT_EQ(std::string(out.data(), c.utf8.size()), c.utf8);
    EXPECT_EQ(out[c.utf8.size()], '\x7F');  // no terminator written

    std::vector<char> small(c.utf8.size() + 1, '\x7F');
    EXPECT_EQ(UCS2_TO_UTF8(units.data(), small.data(), size - 1), -1);
    EXPECT_EQ(std::string(small.data(), small.size()), std::string(small.size(), '\x7F'));  // untouched
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Ucs2ToUtf8Encodes,
    ::testing::Values(EncodeCase{"Ascii", {0x41}, "A"}, EncodeCase{"LastOneByte", {0x7F}, "\x7F"},
                      EncodeCase{"FirstTwoByte", {0x80}, "\xC2\x80"},
                      EncodeCase{"EAcute", {0xE9}, "\xC3\xA9"}, EncodeCase{"LastTwoByte", {0x7FF}, "\xDF\xBF"},
                      EncodeCase{"FirstThreeByte", {0x800}, "\xE0\xA0\x80"},
                      EncodeCase{"Euro", {0x20AC}, "\xE2\x82\xAC"},
                      EncodeCase{"LoneSurrogate", {0xD83D}, "\xED\xA0\xBD"},
                      EncodeCase{"Mixed", {0x41, 0xE9, 0x20AC}, "A\xC3\xA9\xE2\x82\xAC"}),
    [](const auto &info) { return std::string(info.param.name); });

class Ucs2Utf8 : public smsutil::test::LogTest {};

TEST_F(Ucs2Utf8, Ucs2ToUtf8RefusesMissingPointersAndShortCapacity)
{
    const uint16_t euro[] = {0x20AC, 0x41, 0};
    char out[8] = {};
    EXPECT_EQ(UCS2_TO_UTF8(nullptr, out, 8), -1);
    EXPECT_EQ(UCS2_TO_UTF8(euro, nullptr, 8), -1);
    EXPECT_EQ(UCS2_TO_UTF8(euro, out, 3), -1);   // two units fit the count, not the bytes
    EXPECT_EQ(UCS2_TO_UTF8(euro, out, 1), -1);   // more units than the capacity
    EXPECT_EQ(UCS2_TO_UTF8(euro, out, -1), -1);
    const uint16_t empty[] = {0};
    EXPECT_EQ(UCS2_TO_UTF8(empty, out, 0), 0);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Param error.\n\n"));
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Space is not enough!.[2][3]\n\n"));
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Space is not enough!.[2][1]\n\n"));
#endif
}

struct CountCase {
    const char *name;
    const char *text;
    int32_t characters;
    std::vector<uint16_t> units;
};

class Utf8ToUcs2Converts : public ::testing::TestWithParam<CountCase> {};

TEST_P(Utf8ToUcs2Converts, CountsAndWritesLowByteFirst)
{
    const auto &c = GetParam();
    EXPECT_EQ(MultiByte_WideChar(c.text), c.characters);
    std::vector<uint8_t> out(64, 0xAA);
    ASSERT_EQ(UTF8_TO_UCS2(c.text, out.data(), 62), c.characters);
    for (std::size_t i = 0; i < c.units.size(); ++i) {
        EXPECT_EQ(out[2 * i], c.units[i] & 0xFF) << i;
        EXPECT_EQ(out[2 * i + 1], c.units[i] >> 8) << i;
    }
    EXPECT_EQ(out[2 * c.units.size()], 0xAA);  // nothing after the last unit
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Utf8ToUcs2Converts,
    ::testing::Values(CountCase{"Empty", "", 0, {}}, CountCase{"Ascii", "Hi", 2, {0x48, 0x69}},
                      CountCase{"TwoAndThreeBytes", "\xC3\xA9\xE2\x82\xAC", 2, {0xE9, 0x20AC}},
                      CountCase{"CutShortThreeByte", "a\xE4", 1, {0x61}},
                      CountCase{"CutShortAfterTwoOfThree", "a\xE4\xB8", 1, {0x61}},
                      CountCase{"CutShortTwoByte", "\xC3", 0, {}},
                      CountCase{"StrayContinuationLeadsThree", "\x80\x41\x42z", 2, {0x0042, 0x7A}},
                      CountCase{"FourByteLeadReadAsThree", "\xF0\x9F\x98\x80", 1, {0x07D8}},
                      CountCase{"SurrogateUnit", "\xED\xA0\xBD", 1, {0xD83D}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(Ucs2Utf8, Utf8ToUcs2ChecksCharactersButWritesBytes)
{
    const std::string text(300, 'a');
    std::vector<uint8_t> out(700, 0xAA);
    EXPECT_EQ(UTF8_TO_UCS2(text.c_str(), out.data(), 513), 300);
    EXPECT_EQ(out[510], 'a');
    EXPECT_EQ(out[511], 0);
    EXPECT_EQ(out[512], 0xAA);  // 256 units written, the 257th would pass 513 bytes

    const std::string exact(4, 'b');
    EXPECT_EQ(UTF8_TO_UCS2(exact.c_str(), out.data(), 4), 4);  // passes the check, writes 2 units
    EXPECT_EQ(out[4], 'a');
    EXPECT_EQ(UTF8_TO_UCS2(exact.c_str(), out.data(), 3), -1);
    EXPECT_EQ(UTF8_TO_UCS2(std::string(514, 'c').c_str(), out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2(nullptr, out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2(exact.c_str(), nullptr, 513), -1);
    EXPECT_EQ(MultiByte_WideChar(nullptr), 0);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The UCSlen is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The strlen of *pTempUTF8  is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The UCSlen returned is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "Space is not enough!.[4][3]\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "Space is not enough!.[514][513]\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "Param error.\n\n"));
#endif
}

TEST(Ucs2Utf8RoundTrip, EveryUnitComesBack)
{
    constexpr uint32_t kBlock = 256;
    for (uint32_t first = 0; first <= 0xFFFF; first += kBlock) {
        std::vector<uint16_t> units;
        for (uint32_t u = first; u < first + kBlock; ++u)
            if (u != 0) units.push_back(static_cast<uint16_t>(u));
        const auto count = static_cast<int32_t>(units.size());
        units.push_back(0);
        std::vector<char> utf8(3 * kBlock + 1, 0);
        ASSERT_EQ(UCS2_TO_UTF8(units.data(), utf8.data(), 3 * kBlock), 0);
        std::vector<uint8_t> back(2 * kBlock, 0);
        ASSERT_EQ(UTF8_TO_UCS2(utf8.data(), back.data(), 2 * kBlock), count);
        for (int32_t i = 0; i < count; ++i)
            ASSERT_EQ(back[2 * i] | (back[2 * i + 1] << 8), units[i]) << "unit " << units[i];
    }
}

TEST(Ucs2Utf8Lengths, WcslenCountsToTheZeroUnit)
{
    const uint16_t text[] = {0x41, 0xD800, 0xFFFF, 0, 0x42};
    EXPECT_EQ(sms_wcslen(text), 3);
    EXPECT_EQ(sms_wcslen(text + 3), 0);
    EXPECT_EQ(sms_wcslen(nullptr), 0);
}

TEST(Ucs2Utf8Heap, NeverAllocates)
{
    const uint16_t units[] = {0x41, 0x20AC, 0};
    char utf8[16] = {};
    uint8_t ucs2[16] = {};
    smsutil::test::AllocationScope scope;
    UCS2_TO_UTF8(units, utf8, 15);
    UTF8_TO_UCS2(utf8, ucs2, 16);
    MultiByte_WideChar(utf8);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
