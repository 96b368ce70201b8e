// GSM 7-bit text: the tables, conversion to and from Unicode, UTF-8 and ASCII.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "charset/gsm7_inverse.hpp"
#include "pdu/national_tables.hpp"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using Bytes = std::vector<uint8_t>;
using Units = std::vector<uint16_t>;
constexpr uint32_t N = GSM7_NO_CHARACTER;
constexpr uint32_t kSingle = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
constexpr uint32_t kLocking = WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;

// The gateway's rows are the standard ones (checked against the table file
// elsewhere) with its own departures: line feed in place of form feed, no
// second carriage return, and a space at the escape position of every row
// but the default main row, which keeps the escape code itself.  The
// compile-time reverse table gives, for every unit, the first code of the
// main row that holds it, else the first of the extension row.
TEST(Gsm7Tables, AreTheStandardRowsAndTheirFirstMatchInverse)
{
    int mismatches = 0;
    for (uint32_t r = 0; r < GSM7_TABLE_ROWS; ++r) {
        for (uint32_t c = 0; c < GSM7_TABLE_CODES; ++c) {
            uint32_t main = smsutil::pdu::locking_row(r)[c], ext = smsutil::pdu::single_shift_row(r)[c];
            if (c == GSM7_ESCAPE) main = r == 0 ? GSM7_ESCAPE : 0x20, ext = 0x20;
            if (c == 0x0A || c == 0x0D) ext = c == 0x0A ? 0x0A : N;
            EXPECT_EQ(g_GSM_7BitTable[r][c], main) << "main row " << r << " code " << c;
            EXPECT_EQ(g_GSM_7BitExtTable[r][c], ext) << "extension row " << r << " code " << c;
        }
        for (uint32_t u = 0; u <= 0xFFFF; ++u) {
            int want = -1;
            for (int c = 255; c >= 0; --c)
                if ((c < 128 ? g_GSM_7BitTable : g_GSM_7BitExtTable)[r][c & 0x7F] == u) want = c;
            const auto got = smsutil::charset::find_gsm7_code(r, static_cast<uint16_t>(u));
            const int have = got.found ? (got.escaped ? 128 : 0) + got.code : -1;
            if (have != want && ++mismatches <= 10) ADD_FAILURE() << "row " << r << " unit " << u;
        }
    }
    EXPECT_FALSE(smsutil::charset::find_gsm7_code(GSM7_TABLE_ROWS, 0x41).found);
}

// Rows: codes, language, shift, capacity and the units expected (none: the
// conversion fails and reports no length).  A buffer exactly full succeeds
// with the zero unit at dwBufLen.
TEST(Gsm7ToUnicode, ConvertsOrFails)
{
    // Each row: codes, language, shift (S single, L locking, - no element),
    // capacity, units produced ("-": fails).  Spanish extension with the
    // default main row; an unknown language reads row 0; a locking shift is
    // Turkish only and does not escape.
    for (const char *row : {"480010 0 S 3 004800400394", "1B65 0 S 1 20AC", "1B0909 2 S 2 00E700C7",
                            "071B47 1 - 2 00EC011E", "1B28 9 S 1 007B", "07041B65 1 L 4 013120AC00200065", "41 2 L 4 -",
                            "4181 1 L 4 -", "4142 1 L 1 -", "FF 0 S 4 -", "4180 0 S 4 -", "411B 0 S 4 -",
                            "1B41 0 S 4 -", "1B90 2 S 4 -", "414243 0 S 2 -", "41421B65 0 S 2 -"}) {
        char text[16], shift, units[20];
        uint32_t coding = 0, len = 99;
        int32_t capacity = 0;
        ASSERT_EQ(std::sscanf(row, "%15s %u %c %d %19s", text, &coding, &shift, &capacity, units), 5);
        const Bytes codes = bytes(text);
        Units out(capacity + 2, 0xEEEE);
        const int32_t rc = gsm7_to_unicode(codes.data(), uint32_t(codes.size()), coding,
                                           shift == 'L'   ? kLocking
                                           : shift == 'S' ? kSingle
                                                          : 0,
                                           out.data(), capacity, &len);
        ASSERT_EQ(rc, *units == '-' ? -1 : 0) << row;
        Bytes got;  // the units written, high byte first, and the zero unit after them
        for (uint32_t i = 0; rc == 0 && i <= len; ++i) got.insert(got.end(), {uint8_t(out[i] >> 8), uint8_t(out[i])});
        EXPECT_EQ(rc == 0 ? hex(got) : "-", rc == 0 ? std::string(units) + "0000" : units) << row;
        EXPECT_EQ(len, rc == 0 ? std::strlen(units) / 4 : 0) << row;
    }
    // Capacity 0 counts only and may come without a buffer; a negative one
    // is full at once.
    const uint8_t codes[] = {0x41, 0x1B, 0x65};
    uint32_t len = 0;
    ASSERT_EQ(gsm7_to_unicode(codes, 3, 0, kSingle, nullptr, 0, &len), 0);
    EXPECT_EQ(len, 2u);
    EXPECT_EQ(gsm7_to_unicode(codes, 3, 0, kSingle, nullptr, -1, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(codes, 0, 0, kSingle, nullptr, -1, &len), 0);
    EXPECT_EQ(gsm7_to_unicode(nullptr, 1, 0, kSingle, nullptr, 0, &len), -1);
    EXPECT_EQ(gsm7_to_unicode(codes, 1, 0, kSingle, nullptr, 1, &len), -1);
}
// Each text fits in its length plus the terminator; one byte less fails
// and leaves the output empty.  Codes without a character are dropped.
TEST(Bit7ToUtf8, FitsWithItsTerminatorAndNotOneByteLess)
{
    const std::tuple<Bytes, uint32_t, std::string> cases[] = {
        {{0x48, 0x69, 0x00}, 0, "Hi@"},
        {{0x07, 0x1B, 0x67}, 1, "\xC4\xB1\xC4\x9F"},  // Turkish main row and extension
        {{0x41, 0x1B, 0x41, 0x80, 0x42}, 0, "AB"},
        {{0x41, 0x1B}, 0, "A"}};
    for (const auto &[codes, coding, utf8] : cases) {
        const auto size = int32_t(utf8.size() + 1);
        std::string out(utf8.size() + 1, '#');
        ASSERT_EQ(BIT7_TO_UTF8(codes.data(), int32_t(codes.size()), out.data(), size, coding), 0);
        EXPECT_EQ(std::string(out.c_str()), utf8);
        EXPECT_EQ(BIT7_TO_UTF8(codes.data(), int32_t(codes.size()), out.data(), size - 1, coding), -1);
        EXPECT_EQ(out[0], '\0');
    }
    const Bytes many(513, 0x41), bad{0x41, 0x81};
    std::vector<char> out(600);
    EXPECT_EQ(BIT7_TO_UTF8(many.data(), 512, out.data(), 600, 0), 0);
    EXPECT_EQ(std::strlen(out.data()), 512u);
    for (int32_t len : {513, -1}) EXPECT_EQ(BIT7_TO_UTF8(many.data(), len, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(bad.data(), 2, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(nullptr, 1, out.data(), 600, 0), -1);
    EXPECT_EQ(BIT7_TO_UTF8(many.data(), 1, out.data(), 0, 0), -1);
}

TEST(Bit7ToUtf8, HandleInputConvertsInPlaceWithinTheBuffer)
{
    Bytes text(513, 0x10);  // capital delta: two bytes each
    uint32_t len = 0;
    AllocationScope heap;
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 160, 0, 0, &len), 0);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(len, 320u);
    EXPECT_EQ(hex(text.data() + 318, 3), "CE9400");
    const uint8_t turkish[] = {0x07, 0x1B, 0x65};
    std::memcpy(text.data(), turkish, 3);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 3, 1, kLocking, &len), 0);
    EXPECT_STREQ(reinterpret_cast<char *>(text.data()), "\xC4\xB1 e");
    EXPECT_EQ(len, 4u);  // a locking shift takes the general path, which counts too
    text.assign(513, 0x41);
    ASSERT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 512, 0, 0, &len), 0);
    EXPECT_EQ(text[512], 0);  // a full text keeps its terminator
    text.assign(513, 0x41);
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 513, 0, 0, &len), -1);
    text[0] = 0x1B;
    EXPECT_EQ(handle_input_sms_7bit_to_utf8(text.data(), 1, 0, 0, &len), -1);
}

// Each text fits in exactly its number of codes, with no terminator; one
// less fails, also when only the second byte of an escape pair is missing.
TEST(Utf8To7Bit, FitsExactlyAndNotOneLess)
{
    const std::tuple<const char *, uint32_t, Bytes> cases[] = {
        {"Hi @$_\n", 0, {0x48, 0x69, 0x20, 0x00, 0x02, 0x11, 0x0A}},
        {"\xE2\x82\xAC{|", 0, {0x1B, 0x65, 0x1B, 0x28, 0x1B, 0x40}},
        {"\xC4\xB1\xC3\xA7\xE2\x82\xAC\xC4\xB0", 1, {0x07, 0x60, 0x04, 0x40}},  // Turkish main row
        {"\xC3\xA1\xC3\xA7", 2, {0x1B, 0x61, 0x1B, 0x09}},
        // A national row's escape position reads as a space and, being the
        // first match, is what a space is sent as.
        {"a b", 2, {0x61, 0x1B, 0x62}}};
    for (const auto &[utf8, coding, codes] : cases) {
        const auto n = int32_t(codes.size());
        Bytes out(codes.size() + 1, 0xAA);
        uint32_t len = 0;
        ASSERT_EQ(UTF8_TO_7BIT(utf8, out.data(), n, &len, coding), 0) << utf8;
        EXPECT_EQ(hex(out.data(), len + 1), hex(codes) + "AA") << utf8;
        EXPECT_EQ(UTF8_TO_7BIT(utf8, out.data(), n - 1, &len, coding), -1) << utf8;
    }
    // The UCS-2 step checks 4097 characters but its buffer holds 2048 units:
    // what lies beyond is silently not converted.
    Bytes out(5000, 0xAA);
    uint32_t len = 0;
    EXPECT_EQ(UTF8_TO_7BIT(std::string(3000, 'a').c_str(), out.data(), 5000, &len, 0), 0);
    EXPECT_EQ(hex(out.data() + 2047, 2), "61AA");
    EXPECT_EQ(len, 2048u);
    EXPECT_EQ(UTF8_TO_7BIT(std::string(4098, 'a').c_str(), out.data(), 5000, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT("a\xE4\xB8\xAD", out.data(), 8, &len, 0), -1);  // a CJK ideograph
    EXPECT_EQ(UTF8_TO_7BIT("\xC3\xA1", out.data(), 8, &len, 1), -1);       // a acute is Spanish only
    EXPECT_EQ(UTF8_TO_7BIT("a", out.data(), 8, &len, 3), -1);              // no table to send it with
    EXPECT_EQ(UTF8_TO_7BIT("a", out.data(), 0, &len, 0), -1);
    EXPECT_EQ(UTF8_TO_7BIT(nullptr, out.data(), 8, &len, 0), -1);
}

// Only row 0 of each table is used.  What has no single byte becomes a
// space; a byte is sent as its first code in the main row, else as the
// escape and its first code in the extension.
TEST(Gsm7Ascii, ConvertsBothWaysThroughRowZero)
{
    uint8_t out[8];
    uint32_t len = 0;
    const uint8_t wide[] = {0x10, 0x1B, 0x65};  // capital delta, euro sign
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, out, 7, &len), 0);
    EXPECT_EQ(hex(out, 3), "202000");
    ASSERT_EQ(sms_gsm7_to_ascii(wide, 3, nullptr, 0, &len), 0);  // counts only
    EXPECT_EQ(len, 2u);
    for (const char *bad : {"81", "80", "411B", "1B41", "1B95", "4141414141414141"}) {
        EXPECT_EQ(sms_gsm7_to_ascii(bytes(bad).data(), int32_t(bytes(bad).size()), out, 7, &len), -1) << bad;
        EXPECT_EQ(len, 0u);
    }
    EXPECT_EQ(sms_gsm7_to_ascii(nullptr, 1, out, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, -1, out, 7, &len), -1);
    EXPECT_EQ(sms_gsm7_to_ascii(wide, 3, nullptr, 1, &len), -1);  // room announced, no buffer

    const auto *text = reinterpret_cast<const uint8_t *>("a`\n @{");
    EXPECT_EQ(sms_ascii_to_gsm7(text, 2, out, 4, &len), -1);
    EXPECT_EQ(len, 1u);  // how far it got
    ASSERT_EQ(sms_ascii_to_gsm7(text + 2, 4, out, 5, &len), 0);
    EXPECT_EQ(hex(out, len), "0A20001B28");
    EXPECT_EQ(sms_ascii_to_gsm7(text + 4, 2, out, 2, &len), -1);
    EXPECT_EQ(len, 2u);  // the pair's second byte had no room
    len = 9;
    EXPECT_EQ(sms_ascii_to_gsm7(out, 2, out, 1, &len), -1);
    EXPECT_EQ(len, 9u);  // longer than the capacity: refused before anything
    EXPECT_EQ(sms_ascii_to_gsm7(out, 0, nullptr, 0, &len), 0);
    EXPECT_EQ(sms_ascii_to_gsm7(out, -1, out, 4, &len), -1);
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

// Each fits in exactly its UTF-8 length with no terminator written; one
// byte less fails and leaves the destination untouched.
TEST(Ucs2Utf8, Ucs2ToUtf8AtEverySequenceBoundary)
{
    const std::pair<Units, std::string> cases[] = {{{0x41, 0x7F, 0}, "A\x7F"},    {{0x80, 0}, "\xC2\x80"},
                                                   {{0x7FF, 0}, "\xDF\xBF"},      {{0x800, 0}, "\xE0\xA0\x80"},
                                                   {{0x20AC, 0}, "\xE2\x82\xAC"}, {{0xD83D, 0}, "\xED\xA0\xBD"}};
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
    EXPECT_EQ(UCS2_TO_UTF8(cases[0].first.data(), out, -1), -1);
}

// Counting and converting agree, also on texts that end in a cut-short
// sequence (any lead other than ASCII and 0xC0-0xDF takes three bytes);
// units are written low byte first.  The capacity counts
// characters for the check and bytes for the writing.
TEST(Ucs2Utf8, Utf8ToUcs2FollowsTheSequenceRule)
{
    const char *cases[][2] = {{"", ""},
                              {"a\xC3\xA9\xE2\x82\xAC", "6100E900AC20"},
                              {"a\xE4", "6100"},
                              {"a\xE4\xB8", "6100"},
                              {"\xC3", ""},
                              {"\x80\x41\x42z", "42007A00"},
                              {"\xF0\x9F\x98\x80", "D807"},
                              {"\xED\xA0\xBD", "3DD8"}};
    for (const auto &[utf8, units] : cases) {
        const auto n = int32_t(std::strlen(units) / 4);
        EXPECT_EQ(MultiByte_WideChar(utf8), n) << utf8;
        Bytes out(2 * n + 1, 0xAA);
        ASSERT_EQ(UTF8_TO_UCS2(utf8, out.data(), 2 * n), n);
        EXPECT_EQ(hex(out), std::string(units) + "AA") << utf8;
    }
    EXPECT_EQ(MultiByte_WideChar(nullptr), 0);
    const uint16_t none = 0;
    EXPECT_EQ(sms_wcslen(&none), 0);
    Bytes out(600, 0xAA);
    const std::string text(300, 'a');
    EXPECT_EQ(UTF8_TO_UCS2(text.c_str(), out.data(), 513), 300);
    EXPECT_EQ(hex(out.data() + 511, 2), "00AA");  // 256 units
    EXPECT_EQ(UTF8_TO_UCS2(std::string(513, 'a').c_str(), out.data(), 513), 513);
    EXPECT_EQ(UTF8_TO_UCS2(std::string(514, 'a').c_str(), out.data(), 513), -1);
    EXPECT_EQ(UTF8_TO_UCS2(nullptr, out.data(), 513), -1);
}

}  // namespace
