// GSM 7-bit text: the tables, conversion to and from Unicode, UTF-8 and ASCII.
#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include "charset/gsm7_inverse.hpp"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using smsutil::charset::Gsm7Code;

constexpr uint32_t N = GSM7_NO_CHARACTER;

// The extension rows as receivers expect them; every code not listed has
// no character in any row.
struct Listed {
    uint8_t code;
    uint32_t row[3];
};
constexpr Listed kExtension[] = {{0x09, {N, N, 0xE7}},       {0x0A, {0x0A, 0x0A, 0x0A}},
                                 {0x14, {0x5E, 0x5E, 0x5E}}, {0x1B, {0x20, 0x20, 0x20}},
                                 {0x28, {0x7B, 0x7B, 0x7B}}, {0x29, {0x7D, 0x7D, 0x7D}},
                                 {0x2F, {0x5C, 0x5C, 0x5C}}, {0x3C, {0x5B, 0x5B, 0x5B}},
                                 {0x3D, {0x7E, 0x7E, 0x7E}}, {0x3E, {0x5D, 0x5D, 0x5D}},
                                 {0x40, {0x7C, 0x7C, 0x7C}}, {0x41, {N, N, 0xC1}},
                                 {0x47, {N, 0x11E, N}},      {0x49, {N, 0x130, 0xCD}},
                                 {0x4F, {N, N, 0xD3}},       {0x53, {N, 0x15E, N}},
                                 {0x55, {N, N, 0xDA}},       {0x61, {N, N, 0xE1}},
                                 {0x63, {N, 0xE7, N}},       {0x65, {0x20AC, 0x20AC, 0x20AC}},
                                 {0x67, {N, 0x11F, N}},      {0x69, {N, 0x131, 0xED}},
                                 {0x6F, {N, N, 0xF3}},       {0x73, {N, 0x15F, N}},
                                 {0x75, {N, N, 0xFA}}};

// Where the main rows leave ASCII, and every Turkish departure from row 0.
constexpr Listed kMain[] = {{0x00, {0x40, 0x40, 0x40}},    {0x01, {0xA3, 0xA3, 0xA3}},  {0x04, {0xE8, 0x20AC, 0xE8}},
                            {0x07, {0xEC, 0x131, 0xEC}},   {0x0B, {0xD8, 0x11E, 0xD8}}, {0x0C, {0xF8, 0x11F, 0xF8}},
                            {0x10, {0x394, 0x394, 0x394}}, {0x1B, {0x1B, 0x20, 0x20}},  {0x1C, {0xC6, 0x15E, 0xC6}},
                            {0x1D, {0xE6, 0x15F, 0xE6}},   {0x24, {0xA4, 0xA4, 0xA4}},  {0x40, {0xA1, 0x130, 0xA1}},
                            {0x60, {0xBF, 0xE7, 0xBF}},    {0x7F, {0xE0, 0xE0, 0xE0}}};

TEST(Gsm7Tables, HoldTheListedCharacters)
{
    for (uint32_t code = 0; code < GSM7_TABLE_CODES; ++code)
        for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r) {
            uint32_t want = N;
            for (const auto &e : kExtension)
                if (e.code == code) want = e.row[r];
            EXPECT_EQ(g_GSM_7BitExtTable[r][code], want) << "extension row " << r << " code " << code;
        }
    for (const auto &m : kMain)
        for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r)
            EXPECT_EQ(g_GSM_7BitTable[r][m.code], m.row[r]) << "main row " << r << " code " << int(m.code);
}

// The plain search that the compile-time reverse table stands in for.
Gsm7Code linear_search(uint32_t row, uint32_t unit)
{
    for (uint8_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitTable[row][c] == unit) return {true, false, c};
    for (uint8_t c = 0; c < GSM7_TABLE_CODES; ++c)
        if (g_GSM_7BitExtTable[row][c] == unit) return {true, true, c};
    return {false, false, 0};
}

TEST(Gsm7Inverse, EqualsFirstMatchSearchForEveryUnitOfEveryRow)
{
    int mismatches = 0;
    for (uint32_t row = 0; row < GSM7_TABLE_ROWS; ++row)
        for (uint32_t u = 0; u <= 0xFFFF; ++u) {
            const Gsm7Code fast = smsutil::charset::find_gsm7_code(row, static_cast<uint16_t>(u));
            const Gsm7Code slow = linear_search(row, u);
            if (fast.found != slow.found || fast.escaped != slow.escaped || fast.code != slow.code)
                if (++mismatches <= 10) ADD_FAILURE() << "row " << row << " unit " << u;
        }
    EXPECT_EQ(mismatches, 0);
    EXPECT_FALSE(smsutil::charset::find_gsm7_code(GSM7_TABLE_ROWS, 0x41).found);
}

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

class Gsm7ToUnicode : public LogTest, public ::testing::WithParamInterface<Case> {};

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
    AllocationScope heap;
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
}

class Bit7ToUtf8 : public LogTest {};

struct Bit7Case {
    std::vector<uint8_t> codes;
    uint32_t coding;
    std::string utf8;
};

// Each text fits in its length plus the terminator; one byte less fails.
// Codes without a character are logged and dropped, not fatal.
TEST_F(Bit7ToUtf8, FitsWithItsTerminatorAndNotOneByteLess)
{
    const Bit7Case cases[] = {{{0x48, 0x69, 0x00}, 0, "Hi@"},
                              {{0x07, 0x1B, 0x67}, 1, "\xC4\xB1\xC4\x9F"},  // Turkish main row and extension
                              {{0x1B, 0x09, 0x09}, 2, "\xC3\xA7\xC3\x87"},
                              {{0x07, 0x1B, 0x65}, 7, "\xC3\xAC\xE2\x82\xAC"},  // unknown language: row 0
                              {{0x41, 0x1B, 0x41, 0x80, 0x42}, 0, "AB"},
                              {{0x41, 0x1B}, 0, "A"}};
    for (const auto &c : cases) {
        const auto size = int32_t(c.utf8.size() + 1);
        std::string out(c.utf8.size() + 1, '#');
        ASSERT_EQ(BIT7_TO_UTF8(c.codes.data(), int32_t(c.codes.size()), out.data(), size, c.coding), 0);
        EXPECT_EQ(std::string(out.c_str()), c.utf8);
        EXPECT_EQ(BIT7_TO_UTF8(c.codes.data(), int32_t(c.codes.size()), out.data(), size - 1, c.coding), -1);
        EXPECT_EQ(out[0], '\0');  // emptied, still terminated
    }
}

TEST_F(Bit7ToUtf8, FailsOnCorruptCodesTooManyCharactersAndBadParameters)
{
    std::vector<uint8_t> codes(513, 0x41);
    std::vector<char> out(600);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 512, out.data(), 600, 0), 0);
    EXPECT_EQ(std::strlen(out.data()), 512u);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 513, out.data(), 600, 0), -1);
    codes[1] = 0x81;
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 2, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), -1, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(nullptr, 1, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 1, nullptr, 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(codes.data(), 1, out.data(), 0, 0), -1);
}

// Every character of every row survives UTF-8 -> 7-bit -> UTF-8 under its
// own language, except the one at the escape position of the main row: it
// is sent as the escape code itself.
TEST(Gsm7RoundTrip, EveryCharacterOfEveryRowComesBack)
{
    for (uint32_t coding = 0; coding < GSM7_TABLE_ROWS; ++coding) {
        std::set<uint32_t> lost;
        for (const auto *table : {&g_GSM_7BitTable, &g_GSM_7BitExtTable})
            for (uint32_t value : (*table)[coding]) {
                if (value == GSM7_NO_CHARACTER) continue;
                const uint16_t unit[] = {uint16_t(value), 0};
                char utf8[4] = {}, back[8];
                uint8_t codes[2];
                uint32_t len = 0;
                ASSERT_EQ(UCS2_TO_UTF8(unit, utf8, 3), 0);
                ASSERT_EQ(UTF8_TO_7BIT(utf8, codes, 2, &len, coding), 0) << value;
                ASSERT_EQ(BIT7_TO_UTF8(codes, int32_t(len), back, 8, coding), 0);
                if (std::string(back) != utf8) lost.insert(value);
            }
        EXPECT_EQ(lost, std::set<uint32_t>{g_GSM_7BitTable[coding][GSM7_ESCAPE]}) << "coding " << coding;
    }
}

TEST_F(Bit7ToUtf8, HandleInputConvertsInPlaceWithinTheBuffer)
{
    std::vector<uint8_t> text(513, 0x10);  // capital delta: two bytes each
    uint32_t len = 0;
    AllocationScope heap;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 160, 0, 0, &len), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(len, 320u);
    EXPECT_EQ(text[0], 0xCE);
    EXPECT_EQ(text[320], 0);
    const uint8_t turkish[] = {0x07, 0x1B, 0x65};
    std::memcpy(text.data(), turkish, 3);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 3, 1, WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT, &len), 0);
    EXPECT_STREQ(reinterpret_cast<char *>(text.data()), "\xC4\xB1 e");
    text.assign(513, 0x41);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 512, 0, 0, &len), 0);
    EXPECT_EQ(text[512], 0);  // a full text keeps its terminator
    text.assign(513, 0x41);
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 513, 0, 0, &len), -1);
    text[0] = 0x1B;
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 1, 0, 0, &len), -1);
}

class Utf8To7Bit : public LogTest {};

struct SeptetCase {
    const char *utf8;
    uint32_t coding;
    std::vector<uint8_t> codes;
};

// Each text fits in exactly its number of codes, with no terminator; one
// less fails, also when only the second byte of an escape pair is missing.
TEST_F(Utf8To7Bit, FitsExactlyAndNotOneLess)
{
    const SeptetCase cases[] = {
        {"Hi @$_\n", 0, {0x48, 0x69, 0x20, 0x00, 0x02, 0x11, 0x0A}},
        {"\xE2\x82\xAC{|", 0, {0x1B, 0x65, 0x1B, 0x28, 0x1B, 0x40}},
        {"\xC4\xB1\xC3\xA7\xE2\x82\xAC\xC4\xB0", 1, {0x07, 0x60, 0x04, 0x40}},  // Turkish main row
        {"\xC3\xA1\xC3\xA7", 2, {0x1B, 0x61, 0x1B, 0x09}},
        // A national row's escape position reads as a space and, being the
        // first match, is what a space is sent as.
        {"a b", 2, {0x61, 0x1B, 0x62}}};
    for (const auto &c : cases) {
        const auto n = int32_t(c.codes.size());
        std::vector<uint8_t> out(c.codes.size() + 1, 0xAA);
        uint32_t len = 0;
        ASSERT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n, &len, c.coding), 0) << c.utf8;
        EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + len), c.codes) << c.utf8;
        EXPECT_EQ(out[len], 0xAA);
        EXPECT_EQ(UTF8_TO_7BIT(c.utf8, out.data(), n - 1, &len, c.coding), -1) << c.utf8;
    }
}

TEST_F(Utf8To7Bit, RefusesBadParametersAndUnknownCharacters)
{
    uint8_t out[8];
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(nullptr, out, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", nullptr, 8, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, nullptr, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 0, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a", out, 8, &len, 3), -1);  // no table to send it with
    AllocationScope heap;
    EXPECT_EQ(UTF8_TO_7BIT("a\xE4\xB8\xAD", out, 8, &len, 0), -1);  // a CJK ideograph
    EXPECT_EQ(UTF8_TO_7BIT("\xC3\xA1", out, 8, &len, 1), -1);       // a acute is Spanish only
    EXPECT_EQ(heap.allocations(), 0u);
}

// The UCS-2 step checks 4097 characters but its buffer holds 2048 units:
// what lies beyond is silently not converted.
TEST_F(Utf8To7Bit, WorkingBufferBoundsTheText)
{
    std::vector<uint8_t> out(5000, 0xAA);
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(std::string(3000, 'a').c_str(), out.data(), 5000, &len, 0), 0);
    EXPECT_EQ(len, 2048u);
    EXPECT_EQ(out[2048], 0xAA);
    EXPECT_EQ(UTF8_TO_7BIT(std::string(4098, 'a').c_str(), out.data(), 5000, &len, 0), -1);
}

using Bytes = std::vector<uint8_t>;

TEST(Gsm7ToAscii, SpacesForWhatHasNoByteAndFailuresOnBadCodes)
{
    uint8_t out[8];
    uint32_t len = 0;
    const uint8_t wide[] = {0x10, 0x1B, 0x65};  // capital delta, euro sign
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, out, 7, &len), 0);
    EXPECT_EQ(Bytes(out, out + 3), (Bytes{0x20, 0x20, 0}));
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, nullptr, 0, &len), 0);  // counts only
    EXPECT_EQ(len, 2u);
    for (const Bytes &bad :
         {Bytes{0x81}, Bytes{0x80}, Bytes{0x41, 0x1B}, Bytes{0x1B, 0x41}, Bytes{0x1B, 0x95}, Bytes(8, 0x41)}) {
        EXPECT_EQ(sms_gsm7_to_ascii(bad.data(), int32_t(bad.size()), out, 7, &len), -1) << bad.size();
        EXPECT_EQ(len, 0u);
    }
    EXPECT_EQ(sms_gsm7_to_ascii(nullptr, 1, out, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, 1, nullptr, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, -1, out, 7, &len), -1);
}

TEST(AsciiToGsm7, FailsOnUnknownBytesAndShortCapacity)
{
    uint8_t out[4];
    uint32_t len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("a`"), 2, out, 4, &len), -1);
    EXPECT_EQ(len, 1u);  // how far it got
    ASSERT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("@{"), 2, out, 3, &len), 0);
    EXPECT_EQ(Bytes(out, out + len), (Bytes{0x00, 0x1B, 0x28}));
    EXPECT_EQ(sms_ascii_to_gsm7(reinterpret_cast<const uint8_t *>("a{"), 2, out, 2, &len), -1);
    EXPECT_EQ(len, 2u);  // the pair's second byte had no room
    len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(out, 2, out, 1, &len), -1);
    EXPECT_EQ(len, 9u);  // longer than the capacity: refused before anything
    EXPECT_EQ(sms_ascii_to_gsm7(out, 0, nullptr, 0, &len), 0);
    EXPECT_EQ(sms_ascii_to_gsm7(out, -1, out, 4, &len), -1);
    EXPECT_EQ(sms_ascii_to_gsm7(out, 1, nullptr, 4, &len), -1);
}

// Every byte that converts comes back, except the escape character itself.
TEST(Gsm7Ascii, EveryConvertibleByteComesBack)
{
    std::vector<int> convertible, lost;
    for (int b = 0; b < 256; ++b) {
        const auto in = static_cast<uint8_t>(b);
        uint8_t codes[2], back[2] = {};
        uint32_t len = 0, back_len = 0;
        if (sms_ascii_to_gsm7(&in, 1, codes, 2, &len) != 0) continue;
        convertible.push_back(b);
        if (sms_gsm7_to_ascii(codes, int32_t(len), back, 1, &back_len) != 0 || back[0] != in) lost.push_back(b);
    }
    // The default alphabet less its ten Greek capitals, and eight
    // characters found only in the extension.
    EXPECT_EQ(convertible.size(), 128u - 10 + 8);
    EXPECT_EQ(lost, std::vector<int>{0x1B});
}

TEST(HandleInput7BitToAscii, ConvertsInPlaceOrLeavesTheBuffer)
{
    uint8_t text[514] = {0x48, 0x1B, 0x3C, 0x01};
    uint32_t len = 0;
    AllocationScope heap;
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 4, &len), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_STREQ(reinterpret_cast<char *>(text), "H[\xA3");
    text[0] = 0x80;
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 2, &len), -1);
    EXPECT_EQ(text[1], '[');
    std::memset(text, 0x41, sizeof text);
    ASSERT_EQ(handle_input_sms_7bit_to_ascii(text, 513, &len), 0);  // the terminator takes byte 514
    EXPECT_EQ(text[513], 0);
    std::memset(text, 0x41, sizeof text);
    EXPECT_EQ(handle_input_sms_7bit_to_ascii(text, 514, &len), -1);
}

class Ucs2Utf8 : public LogTest {};

// Each fits in exactly its UTF-8 length with no terminator written; one
// byte less fails and leaves the destination untouched.
TEST_F(Ucs2Utf8, Ucs2ToUtf8AtEverySequenceBoundary)
{
    const std::pair<std::vector<uint16_t>, std::string> cases[] = {
        {{0x41, 0x7F, 0}, "A\x7F"},   {{0x80, 0}, "\xC2\x80"},       {{0x7FF, 0}, "\xDF\xBF"},
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
}

// Counting and converting agree, also on texts that end in a cut-short
// sequence; units are written low byte first.
TEST_F(Ucs2Utf8, Utf8ToUcs2FollowsTheSequenceRule)
{
    const std::pair<const char *, std::vector<uint16_t>> cases[] = {
        {"", {}},
        {"a\xC3\xA9\xE2\x82\xAC", {0x61, 0xE9, 0x20AC}},
        {"a\xE4", {0x61}},
        {"a\xE4\xB8", {0x61}},
        {"\xC3", {}},
        {"\x80\x41\x42z", {0x42, 0x7A}},  // any other lead takes three
        {"\xF0\x9F\x98\x80", {0x07D8}},
        {"\xED\xA0\xBD", {0xD83D}}};
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
    AllocationScope heap;
    EXPECT_EQ(UTF8_TO_UCS2(text.c_str(), out.data(), 513), 300);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(out[511], 0);
    EXPECT_EQ(out[512], 0xAA);  // 256 units
    EXPECT_EQ(UTF8_TO_UCS2(std::string(513, 'a').c_str(), out.data(), 513), 513);
    EXPECT_EQ(UTF8_TO_UCS2(std::string(514, 'a').c_str(), out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2(nullptr, out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2("a", nullptr, 513), -1);
}

}  // namespace
