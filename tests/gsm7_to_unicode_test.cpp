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

struct Case {
    const char *name;
    std::vector<uint8_t> codes;
    uint32_t coding, shift;
    int32_t capacity;
    std::vector<uint16_t> units;  // expected on success
    const char *last_line;        // expected last log line on failure, nullptr on success
};

class Gsm7ToUnicode : public smsutil::test::LogTest, public ::testing::WithParamInterface<Case> {};

TEST_P(Gsm7ToUnicode, Converts)
{
    const auto &c = GetParam();
    std::vector<uint16_t> out(c.capacity + 2, 0xEEEE);
    uint32_t len = 99;
    const int32_t rc = gsm7_to_unicode(c.codes.data(), static_cast<uint32_t>(c.codes.size()), c.coding, c.shift,
                                       out.data(), c.capacity, &len);
    if (c.last_line == nullptr) {
        ASSERT_EQ(rc, 0);
        EXPECT_EQ(std::vector<uint16_t>(out.begin(), out.begin() + len), c.units);
        EXPECT_EQ(out[len], 0);  // exactly full: the zero unit lands at dwBufLen
        return;
    }
    EXPECT_EQ(rc, -1);
    EXPECT_EQ(len, 0u);
#if SMSUTIL_TRACE_ENABLED
    const auto lines = log_lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(logged_by("gsm7_to_unicode", c.last_line));
    EXPECT_EQ(lines.back().substr(lines.back().find("]:") + 2), c.last_line);
#endif
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Gsm7ToUnicode,
    ::testing::Values(
        Case{"Default", {0x48, 0x00, 0x10}, 0, kSingle, 3, {0x48, 0x40, 0x394}, nullptr},
        Case{"EscapedEuro", {0x1B, 0x65}, 0, kSingle, 1, {0x20AC}, nullptr},
        Case{"SpanishCedillas", {0x1B, 0x09, 0x09}, 2, kSingle, 2, {0xE7, 0xC7}, nullptr},
        Case{"SingleShiftKeepsDefaultMainRow", {0x07, 0x1B, 0x47}, 1, 0, 2, {0xEC, 0x11E}, nullptr},
        Case{"UnknownLanguageReadsRowZero", {0x1B, 0x28}, 9, kSingle, 1, {0x7B}, nullptr},
        Case{"TurkishLocking", {0x07, 0x04, 0x1B, 0x65}, 1, kLocking, 4, {0x131, 0x20AC, 0x20, 0x65}, nullptr},
        Case{"LockingNotTurkish", {0x41}, 2, kLocking, 4, {}, "error,TURKISH_SMS != coding"},
        Case{"LockingAbove128", {0x41, 0x81}, 1, kLocking, 4, {}, "pGSM_7Data[i] > 128"},
        Case{"LockingFull", {0x41, 0x42}, 1, kLocking, 1, {}, "dwBufLen < ((dwCount + 1)"},
        Case{"Above128", {0xFF}, 0, kSingle, 4, {}, "pGSM_7Data[i] > 128"},
        Case{"Code128", {0x41, 0x80}, 0, kSingle, 4, {}, "0xFFFF == wIndex"},
        Case{"EscapeLast", {0x41, 0x1B}, 0, kSingle, 4, {}, "++i >= dwInputLen"},
        Case{"EscapedNoCharacter", {0x1B, 0x41}, 0, kSingle, 4, {}, "find coding 0 data 41 error!"},
        Case{"EscapedAbove127", {0x1B, 0x90}, 2, kSingle, 4, {}, "find coding 2 data 90 error!"},
        Case{"FullOnMainRow", {0x41, 0x42, 0x43}, 0, kSingle, 2, {}, "dwBufLen < ((dwCount + 1)"},
        // A full buffer on an escape pair is reported by the result alone.
        Case{"FullOnEscapePair", {0x41, 0x42, 0x1B, 0x65}, 0, kSingle, 2, {}, "dwInputLen = [4] "}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(Gsm7ToUnicode, CountsWithoutBufferAndRefusesMissingPointers)
{
    const uint8_t codes[] = {0x41, 0x1B, 0x65, 0x1B};
    uint16_t out[2] = {0xEEEE, 0xEEEE};
    uint32_t len = 0;
    smsutil::test::AllocationScope heap;
    ASSERT_EQ(gsm7_to_unicode(codes, 3, 0, kSingle, out, 0, &len), 0);
    EXPECT_EQ(len, 2u);
    EXPECT_EQ(out[0], 0xEEEE);
    EXPECT_EQ(gsm7_to_unicode(codes, 3, 0, kSingle, nullptr, 0, &len), 0);
    EXPECT_EQ(gsm7_to_unicode(codes, 3, 0, kSingle, nullptr, -1, &len), -1);  // negative: full at once
    EXPECT_EQ(gsm7_to_unicode(codes, 0, 0, kSingle, nullptr, -1, &len), 0);
    EXPECT_EQ(gsm7_to_unicode(codes, 4, 0, kSingle, nullptr, 0, &len), -1);  // escape last
    EXPECT_EQ(gsm7_to_unicode(nullptr, 1, 0, kSingle, out, 1, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(codes, 1, 0, kSingle, nullptr, 1, &len), -1);
    EXPECT_EQ(heap.allocations(), 0u);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "++i = 4\n\n"));
    EXPECT_TRUE(logged_by("gsm7_to_unicode", " dwInputLen = 4\n\n"));
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "NULL == pGSM_7Data\n\n"));
    EXPECT_TRUE(logged_by("gsm7_to_unicode", "NULL == pUnicodeData\n\n"));
#endif
}

}  // namespace
