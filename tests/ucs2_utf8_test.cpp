#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

class Ucs2Utf8 : public smsutil::test::LogTest {};

// Each fits in exactly its UTF-8 length with no terminator written; one
// byte less fails and leaves the destination untouched.
TEST_F(Ucs2Utf8, Ucs2ToUtf8AtEverySequenceBoundary)
{
    const std::pair<std::vector<uint16_t>, std::string> cases[] = {
        {{0x41, 0x7F, 0}, "A\x7F"},   {{0x80, 0}, "\xC2\x80"},         {{0x7FF, 0}, "\xDF\xBF"},
        {{0x800, 0}, "\xE0\xA0\x80"}, {{0x20AC, 0}, "\xE2\x82\xAC"}, {{0xD83D, 0}, "\xED\xA0\xBD"}};
    for (const auto &[units, utf8] : cases) {
        std::string out(utf8.size() + 1, '#');
        ASSERT_EQ(UCS2_TO_UTF8(units.data(), out.data(), int32_t(utf8.size())), 0);
        EXPECT_EQ(out, utf8 + "#");
        out.assign(utf8.size(), '#');
        EXPECT_EQ(UCS2_TO_UTF8(units.data(), out.data(), int32_t(utf8.size()) - 1), -1);
        EXPECT_EQ(out, std::string(utf8.size(), '#'));
    }
    char out[4];
    EXPECT_EQ(UCS2_TO_UTF8(nullptr, out, 4), -1);
    EXPECT_EQ(UCS2_TO_UTF8(cases[0].first.data(), nullptr, 4), -1);
    EXPECT_EQ(UCS2_TO_UTF8(cases[0].first.data(), out, -1), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Param error.\n\n"));
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Space is not enough!.[2][1]\n\n"));  // more units than bytes
    EXPECT_TRUE(logged_by("UCS2_TO_UTF8", "Space is not enough!.[1][2]\n\n"));  // a sequence that does not fit
#endif
}

// Counting and converting agree, also on texts that end in a cut-short
// sequence; units are written low byte first.
TEST_F(Ucs2Utf8, Utf8ToUcs2FollowsTheSequenceRule)
{
    const std::pair<const char *, std::vector<uint16_t>> cases[] = {
        {"", {}},          {"a\xC3\xA9\xE2\x82\xAC", {0x61, 0xE9, 0x20AC}}, {"a\xE4", {0x61}},
        {"a\xE4\xB8", {0x61}}, {"\xC3", {}}, {"\x80\x41\x42z", {0x42, 0x7A}},  // any other lead takes three
        {"\xF0\x9F\x98\x80", {0x07D8}},  {"\xED\xA0\xBD", {0xD83D}}};
    for (const auto &[utf8, units] : cases) {
        const auto n = int32_t(units.size());
        EXPECT_EQ(MultiByte_WideChar(utf8), n) << utf8;
        std::vector<uint8_t> out(2 * units.size() + 1, 0xAA), want;
        for (uint16_t u : units) want.insert(want.end(), {uint8_t(u & 0xFF), uint8_t(u >> 8)});
        want.push_back(0xAA);
        ASSERT_EQ(UTF8_TO_UCS2(utf8, out.data(), 2 * n), n);
        EXPECT_EQ(out, want) << utf8;
    }
    EXPECT_EQ(MultiByte_WideChar(nullptr), 0);
    EXPECT_EQ(sms_wcslen(cases[0].second.data()), 0);
}

// The capacity counts characters for the check and bytes for the writing.
TEST_F(Ucs2Utf8, Utf8ToUcs2ChecksCharactersButWritesBytes)
{
    std::vector<uint8_t> out(600, 0xAA);
    const std::string text(300, 'a');
    smsutil::test::AllocationScope heap;
    EXPECT_EQ(UTF8_TO_UCS2(text.c_str(), out.data(), 513), 300);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(out[511], 0);
    EXPECT_EQ(out[512], 0xAA);  // 256 units
    EXPECT_EQ(UTF8_TO_UCS2(std::string(513, 'a').c_str(), out.data(), 513), 513);
    EXPECT_EQ(UTF8_TO_UCS2(std::string(514, 'a').c_str(), out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2(nullptr, out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2("a", nullptr, 513), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The UCSlen is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The strlen of *pTempUTF8  is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "The UCSlen returned is 300\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "Space is not enough!.[514][513]\n\n"));
    EXPECT_TRUE(logged_by("UTF8_TO_UCS2", "Param error.\n\n"));
#endif
}

}  // namespace
