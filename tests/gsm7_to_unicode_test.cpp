#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"

namespace {

constexpr uint32_t kSingle = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
constexpr uint32_t kLocking = WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;

struct DecodeCase {
    const char *name;
    std::vector<uint8_t> codes;
    uint32_t coding;
    uint32_t shift;
    std::vector<uint16_t> units;
};

class Gsm7ToUnicodeDecodes : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(Gsm7ToUnicodeDecodes, ProducesTheUnitsAndATerminator)
{
    const auto &c = GetParam();
    std::vector<uint16_t> out(c.units.size() + 2, 0xEEEE);
    uint32_t len = 99;
    ASSERT_EQ(gsm7_to_unicode(c.codes.data(), static_cast<uint32_t>(c.codes.size()), c.coding, c.shift, out.data(),
                              static_cast<int32_t>(c.units.size()), &len),
              0);
    ASSERT_EQ(len, c.units.size());
    EXPECT_EQ(std::vector<uint16_t>(out.begin(), out.begin() + len), c.units);
    EXPECT_EQ(out[len], 0);  // the buffer is exactly full: the zero lands at dwBufLen
    EXPECT_EQ(out[len + 1], 0xEEEE);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Gsm7ToUnicodeDecodes,
    ::testing::Values(
        DecodeCase{"PlainDefault", {0x48, 0x00, 0x01, 0x10}, 0, kSingle, {0x48, 0x40, 0xA3, 0x394}},
        DecodeCase{"EscapedEuro", {0x1B, 0x65}, 0, kSingle, {0x20AC}},
        DecodeCase{"SpanishEscapedCedilla", {0x1B, 0x09, 0x09}, 2, kSingle, {0xE7, 0xC7}},
        DecodeCase{"TurkishSingleShiftKeepsDefaultMainRow", {0x07, 0x1B, 0x47}, 1, kSingle, {0xEC, 0x11E}},
        DecodeCase{"NoElementIsSingleShift", {0x1B, 0x49}, 1, 0, {0x130}},
        DecodeCase{"UnknownLanguageReadsDefaultExtension", {0x1B, 0x65, 0x1B, 0x28}, 9, kSingle, {0x20AC, 0x7B}},
        DecodeCase{"TurkishLocking", {0x07, 0x04, 0x60}, 1, kLocking, {0x131, 0x20AC, 0xE7}},
        DecodeCase{"LockingEscapeIsASpace", {0x1B, 0x65}, 1, kLocking, {0x20, 0x65}}),
    [](const auto &info) { return std::string(info.param.name); });

struct FailCase {
    const char *name;
    std::vector<uint8_t> codes;
    uint32_t coding;
    uint32_t shift;
    std::vector<std::string> lines;  // the log lines that must appear, in order
};

class Gsm7ToUnicodeFails : public smsutil::test::LogTest, public ::testing::WithParamInterface<FailCase> {};

TEST_P(Gsm7ToUnicodeFails, ReturnsMinusOneWithItsLogLines)
{
    const auto &c = GetParam();
    uint16_t out[16] = {};
    uint32_t len = 99;
    EXPECT_EQ(gsm7_to_unicode(c.codes.data(), static_cast<uint32_t>(c.codes.size()), c.coding, c.shift, out, 15,
                              &len),
              -1);
    EXPECT_EQ(len, 0u);
#if SMSUTIL_TRACE_ENABLED
    const auto lines = log_lines();
    std::size_t at = 0;
    for (const auto &want : c.lines) {
        EXPECT_TRUE(logged_by("gsm7_to_unicode", want)) << want;
        while (at < lines.size() && lines[at].substr(lines[at].find("]:") + 2) != want) ++at;
        EXPECT_LT(at, lines.size()) << "out of order: " << want;
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Gsm7ToUnicodeFails,
    ::testing::Values(
        FailCase{"LockingNotTurkish", {0x41}, 2, kLocking,
                 {"WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT == lang_shift", "error,TURKISH_SMS != coding"}},
        FailCase{"LockingCodeAbove128", {0x41, 0x81}, 1, kLocking, {"pGSM_7Data[i] > 128"}},
        FailCase{"LockingCode128", {0x80}, 1, kLocking, {"0xFFFF == wIndex"}},
        FailCase{"SingleCodeAbove128", {0xFF}, 0, kSingle,
                 {"WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT == lang_shift", "dwInputLen = [1] ",
                  "pGSM_7Data[i] > 128"}},
        FailCase{"SingleCode128", {0x41, 0x80}, 0, kSingle, {"0xFFFF == wIndex"}},
        FailCase{"EscapeAtTheEnd", {0x41, 0x1B}, 0, kSingle, {"++i = 2", " dwInputLen = 2", "++i >= dwInputLen"}},
        FailCase{"EscapedCodeWithoutCharacter", {0x1B, 0x41}, 0, kSingle, {"find coding 0 data 41 error!"}},
        FailCase{"EscapedCodeAbove127", {0x1B, 0x90}, 2, kSingle, {"find coding 2 data 90 error!"}}),
    [](const auto &info) { return std::string(info.param.name); });

class Gsm7ToUnicode : public smsutil::test::LogTest {};

TEST_F(Gsm7ToUnicode, MissingPointersAreRefused)
{
    const uint8_t codes[] = {0x41};
    uint32_t len = 7;
    EXPECT_EQ(gsm7_to_unicode(nullptr, 1, 0, kSingle, nullptr, 0, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(codes, 1, 0, kSingle, nullptr, 4, &len), -1);
    EXPECT_EQ(len, 7u);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "NULL == pGSM_7Data\n\n"));
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "NULL == pUnicodeData\n\n"));
#endif
}

TEST_F(Gsm7ToUnicode, ZeroCapacityOnlyCounts)
{
    const uint8_t codes[] = {0x41, 0x1B, 0x65, 0x42};
    uint16_t out[4] = {0xEEEE, 0xEEEE, 0xEEEE, 0xEEEE};
    uint32_t len = 0;
    ASSERT_EQ(gsm7_to_unicode(codes, 4, 0, kSingle, out, 0, &len), 0);
    EXPECT_EQ(len, 3u);
    EXPECT_EQ(out[0], 0xEEEE);
    ASSERT_EQ(gsm7_to_unicode(codes, 4, 0, kSingle, nullptr, 0, &len), 0);
    EXPECT_EQ(len, 3u);
}

TEST_F(Gsm7ToUnicode, OneUnitPastTheCapacityFails)
{
    const uint8_t plain[] = {0x41, 0x42, 0x43};
    const uint8_t escaped[] = {0x41, 0x42, 0x1B, 0x65};
    uint16_t out[4] = {};
    uint32_t len = 0;
    EXPECT_EQ(gsm7_to_unicode(plain, 3, 0, kSingle, out, 2, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(plain, 3, 1, kLocking, out, 2, &len), -1);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "dwBufLen < ((dwCount + 1)\n\n"));
    const auto before = log_lines().size();
    EXPECT_EQ(gsm7_to_unicode(escaped, 4, 0, kSingle, out, 2, &len), -1);
    // A full buffer on an escape pair is reported by nothing but the result.
    EXPECT_EQ(log_lines().size(), before + 2);
#endif
}

TEST_F(Gsm7ToUnicode, NegativeCapacityBehavesAsFull)
{
    const uint8_t codes[] = {0x41};
    uint32_t len = 5;
    EXPECT_EQ(gsm7_to_unicode(codes, 1, 0, kSingle, nullptr, -1, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(codes, 0, 0, kSingle, nullptr, -1, &len), 0);
    EXPECT_EQ(len, 0u);
}

TEST(Gsm7ToUnicodeHeap, NeverAllocates)
{
    const uint8_t codes[] = {0x41, 0x1B, 0x65, 0x1B};
    uint16_t out[8];
    uint32_t len = 0;
    smsutil::test::AllocationScope scope;
    gsm7_to_unicode(codes, 3, 0, kSingle, out, 7, &len);
    gsm7_to_unicode(codes, 4, 0, kSingle, out, 7, &len);
    gsm7_to_unicode(codes, 4, 1, kLocking, out, 7, &len);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
