#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/sms_api.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

std::string repeat(const char *s, std::size_t n)
{
    std::string out;
    for (std::size_t i = 0; i < n; ++i) out += s;
    return out;
}

class SplitPack : public smsutil::test::LogTest {
protected:
    int32_t split(const std::string &text, int32_t pack_coding, uint32_t coding = 0)
    {
        std::memset(packs_, 0x5A, sizeof packs_);
        return sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), pack_coding, coding, packs_);
    }
    SmsPack packs_[SMS_MAX_PACKS]{};
};

struct CountCase {
    const char *name;
    int32_t pack_coding;
    const char *unit;
    std::size_t count;
    int32_t packs;
};

class SplitPackCount : public SplitPack, public ::testing::WithParamInterface<CountCase> {};

TEST_P(SplitPackCount, PacksAtTheBoundaries)
{
    const CountCase &c = GetParam();
    const std::string text = repeat(c.unit, c.count);
    EXPECT_EQ(split(text, c.pack_coding), c.packs);
    if (c.packs < 1) return;
    std::string joined;
    for (int32_t k = 0; k < c.packs; ++k) {
        EXPECT_EQ(packs_[k].length, std::strlen(packs_[k].content));
        joined += packs_[k].content;
    }
    EXPECT_EQ(joined, text);  // nothing lost, nothing doubled
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, SplitPackCount,
    ::testing::Values(CountCase{"ucs2_70", 0, "\xE4\xBD\xA0", 70, 1}, CountCase{"ucs2_71", 0, "\xE4\xBD\xA0", 71, 2},
                      CountCase{"ucs2_268", 0, "a", 268, 4}, CountCase{"ucs2_269", 0, "a", 269, -1},
                      CountCase{"gsm_160", 1, "a", 160, 1}, CountCase{"gsm_161", 1, "a", 161, 2},
                      CountCase{"gsm_612", 1, "a", 612, 4}, CountCase{"gsm_613", 1, "a", 613, -1},
                      CountCase{"gsm_escape_pairs_300", 1, "{", 300, 4}, CountCase{"gsm_escape_pairs_306", 1, "{", 306, -1}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(SplitPack, Ucs2PackSizes)
{
    ASSERT_EQ(split(repeat("\xC3\xA9", 71), 0), 2);
    EXPECT_EQ(packs_[0].length, 134u);  // 67 two-byte characters
    EXPECT_EQ(packs_[1].length, 8u);
}

TEST_F(SplitPack, SevenBitPackSizesAndLog)
{
    ASSERT_EQ(split(repeat("b", 161), 1), 2);
    EXPECT_EQ(packs_[0].length, 153u);
    EXPECT_EQ(packs_[1].length, 8u);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("sms_util_split_pack", "sms_length = [161]"));
    EXPECT_TRUE(logged_by("sms_util_split_pack", "pRes[1].length = [8]"));
    EXPECT_TRUE(logged_by("sms_util_split_pack", "ret = [2]"));
#endif
}

TEST_F(SplitPack, EscapePairNeverStraddlesPacks)
{
    // 152 plain codes, then the euro sign's pair at codes 153 and 154.
    const std::string text = repeat("x", 152) + "\xE2\x82\xAC" + repeat("y", 20);
    ASSERT_EQ(split(text, 1), 2);
    EXPECT_EQ(packs_[0].length, 152u);
    EXPECT_EQ(std::string(packs_[1].content).substr(0, 3), "\xE2\x82\xAC");
}

TEST_F(SplitPack, TooManySevenBitPacksIsLogged)
{
    EXPECT_EQ(split(repeat("a", 613), 1), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("pack_i[4] > max[4]"));
#endif
}

TEST_F(SplitPack, UnconvertibleCharacterFails)
{
    EXPECT_EQ(split("abc\xE4\xBD\xA0", 1), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("sms_util_split_pack", "UTF8_TO_7BIT function run unsuccessfully!"));
#endif
}

TEST_F(SplitPack, SinglePackThatDoesNotFitIsRefused)
{
    // 118 Turkish euro signs (one code each) are 354 bytes of UTF-8.
    EXPECT_EQ(split(repeat("\xE2\x82\xAC", 118), 1, 1), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged("The text does not fit one pack!"));
#endif
    EXPECT_EQ(split(repeat("\xE2\x82\xAC", 117), 1, 1), 1);
    EXPECT_EQ(packs_[0].length, 351u);
}

TEST_F(SplitPack, EmptyTextAndBadArguments)
{
    EXPECT_EQ(split("", 0), 1);
    EXPECT_EQ(packs_[0].length, 0u);
    EXPECT_STREQ(packs_[0].content, "");
    EXPECT_EQ(sms_util_split_pack("abc", 0, 1, 0, packs_), 1);
    EXPECT_EQ(sms_util_split_pack("abc", -1, 1, 0, packs_), -1);
    EXPECT_EQ(sms_util_split_pack(nullptr, 3, 1, 0, packs_), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 1, 0, nullptr), -1);
    EXPECT_EQ(sms_util_split_pack("abc", 3, 2, 0, packs_), -1);
}

TEST_F(SplitPack, NoHeap)
{
    const std::string gsm = repeat("a", 600);
    const std::string ucs = repeat("\xE4\xBD\xA0", 200);
    smsutil::test::AllocationScope scope;
    EXPECT_EQ(sms_util_split_pack(gsm.c_str(), 600, 1, 0, packs_), 4);
    EXPECT_EQ(sms_util_split_pack(ucs.c_str(), 600, 0, 0, packs_), 3);
    EXPECT_EQ(scope.allocations(), 0u);
}

struct Utf8CountCase {
    int32_t n;
    const char *text;
    int32_t bytes;
};
class FindUtf8Count : public ::testing::TestWithParam<Utf8CountCase> {};
TEST_P(FindUtf8Count, BytesOfTheFirstCharacters)
{
    EXPECT_EQ(find_utf8_count(GetParam().n, GetParam().text), GetParam().bytes);
}
INSTANTIATE_TEST_SUITE_P(Texts, FindUtf8Count,
                         ::testing::Values(Utf8CountCase{3, "a\xC3\xA9\xE2\x82\xAC" "b", 6},
                                           Utf8CountCase{0, "abc", 0}, Utf8CountCase{10, "abc", 3},
                                           Utf8CountCase{2, "a\xE2\x82", 1},  // cut-short sequence
                                           Utf8CountCase{1, "\xF0\x9F\x98\x80", 3}),  // 0xF0 reads as a 3-byte lead
                         [](const auto &info) { return "case_" + std::to_string(info.index); });

TEST(FindUtf8CountNull, Refused) { EXPECT_EQ(find_utf8_count(3, nullptr), -1); }

}  // namespace
