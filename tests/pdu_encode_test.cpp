// Encoding texts into SUBMIT PDUs: the exact octets of a few hand-checked
// PDUs (the decoder's table reads the same octets back), the table choice
// and part count at every capacity boundary, and the refusals.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "smsutil/sms_pdu.h"
#include "support/support.hpp"

// Rows name only the options they set; the rest are zero.
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"

namespace {

constexpr unsigned T = SMS_PDU_LANG_TURKISH, S = SMS_PDU_LANG_SPANISH, P = SMS_PDU_LANG_PORTUGUESE;
constexpr std::uint32_t kAll = 1u << T | 1u << S | 1u << P;
constexpr std::uint8_t G7 = SMS_PDU_ALPHABET_GSM7, U2 = SMS_PDU_ALPHABET_UCS2;

std::string times(const std::string &s, std::size_t n)
{
    std::string out;
    for (std::size_t i = 0; i < n; ++i) out += s;
    return out;
}

struct Encoded {
    int result = -1;
    std::size_t count = 0;
    std::vector<sms_pdu_part> parts;
    std::size_t allocations = 0;
};

// Parts start filled with 0xAB, so that a refusal can be seen to leave them.  Rows leave the
// destination out unless it is what they test.
Encoded encode(const std::string &text, sms_pdu_encode_options o, std::size_t capacity = SMS_PDU_MAX_PARTS)
{
    if (o.destination == nullptr) o.destination = "0";
    Encoded e;
    e.parts.resize(capacity);
    for (sms_pdu_part &p : e.parts) std::memset(&p, 0xAB, sizeof p);
    smsutil::test::AllocationScope heap;
    e.result = sms_pdu_encode(text.data(), text.size(), &o, e.parts.data(), capacity, &e.count);
    e.allocations = heap.allocations();
    return e;
}

TEST(PduEncode, WritesTheOctetsOfHandCheckedPdus)
{
    // GSM 7-bit with an empty centre and a national destination; UCS-2 with a centre, relative validity and a
    // report; Turkish single shift with fill bits, class 1; absolute validity west of UTC; the second part
    // under a 16-bit reference; Turkish locking shift after concatenation.  The part checked is the last one.
    const sms_pdu_validity day{.format = SMS_PDU_VP_RELATIVE, .relative_seconds = 86400};
    const sms_pdu_validity leap{.format = SMS_PDU_VP_ABSOLUTE, .absolute = {24, 2, 29, 13, 45, 30, -20}};
    const sms_pdu_encode_options ucs2{
        .destination = "+4915", .service_centre = "+12345", .validity = day, .status_report_request = 1};
    const sms_pdu_encode_options ref16{.reference_16bit = 1, .reference = 0x1234};
    const sms_pdu_encode_options class1{.languages = 1u << T, .has_message_class = 1, .message_class = 1};
    const std::tuple<std::string, sms_pdu_encode_options, const char *> cases[] = {
        {"hi", {.destination = "12345"}, "00010005812143f5000002e834"},
        {"\xE4\xBD\xA0", ucs2, "04912143f53100049194510008a7024f60"},
        {"\xC5\x9F", class1, "0041000181f000110703240101d8cc01"},
        {"a", {.validity = leap}, "0019000181f000004220923154030a0161"},
        {times("a", 161), ref16, "0041000181f000001106080412340202e170381c0e87c361"},
        {times("\xC4\xB1", 156), {.languages = kAll}, "0041000181f0000012080003000202250101e070381c0e8703"}};
    for (const auto &[text, options, hex] : cases) {
        SCOPED_TRACE(hex);
        const Encoded e = encode(text, options);
        ASSERT_EQ(e.result, SMS_PDU_OK);
        const sms_pdu_part &last = e.parts[e.count - 1];
        EXPECT_STREQ(last.hex, hex);
        EXPECT_EQ(last.length * 2u, std::strlen(hex));
    }
}

TEST(PduEncode, ChoosesTablesAndCutsAtEveryBoundary)
{
    const std::string a = "a", euro = "\xE2\x82\xAC", han = "\xE4\xBD\xA0", smile = "\xF0\x9F\x98\x80";
    const std::string s_cedilla = "\xC5\x9F", dotless_i = "\xC4\xB1";
    // Text, tables allowed, 16-bit reference; parts, and of part 1 the alphabet, locking and single
    // shift tables, bytes of the text and TP-UDL.
    using Part1 = std::vector<std::size_t>;
    const std::tuple<std::string, std::uint32_t, bool, Part1> cases[] = {
        {"", 0, false, {1, G7, 0, 0, 0, 0}},
        {times(a, 160), 0, false, {1, G7, 0, 0, 160, 160}},
        {times(a, 161), 0, false, {2, G7, 0, 0, 153, 160}},
        {times(a, 304), 0, true, {2, G7, 0, 0, 152, 160}},
        {times(a, 305), 0, true, {3, G7, 0, 0, 152, 160}},
        {times(a, 153 * 255), 0, false, {255, G7, 0, 0, 153, 160}},
        {times(euro, 80), 0, false, {1, G7, 0, 0, 240, 160}},
        // An escape sequence that would straddle the boundary moves on whole.
        {times(a, 152) + euro + times(a, 151), 0, false, {2, G7, 0, 0, 152, 159}},
        // The default alphabet whenever it holds the text, even where a
        // locking shift would take fewer parts.
        {times(euro, 81), kAll, false, {2, G7, 0, 0, 228, 159}},
        {times(han, 70), 0, false, {1, U2, 0, 0, 210, 140}},
        {times(han, 71), 0, false, {2, U2, 0, 0, 201, 140}},
        {times(han, 133), 0, true, {3, U2, 0, 0, 198, 139}},
        {times(smile, 35), 0, false, {1, U2, 0, 0, 140, 140}},
        {times(han, 66) + smile + times(han, 5), 0, false, {2, U2, 0, 0, 198, 138}},
        // One shift element: 155 septets in a single part, 149 with concatenation.
        {s_cedilla + times(a, 153), 1u << T, false, {1, G7, 0, T, 155, 160}},
        {s_cedilla + times(a, 154), 1u << T, false, {1, G7, T, 0, 156, 160}},
        {s_cedilla + times(a, 155), 1u << T, false, {2, G7, 0, T, 149, 160}},
        {times(dotless_i, 298), 1u << T, false, {2, G7, T, 0, 298, 160}},
        {times(dotless_i, 299), 1u << T, false, {3, G7, T, 0, 298, 160}},
        {s_cedilla, 1u << S, false, {1, U2, 0, 0, 2, 2}},
        {"\xDF\xBF", 0, false, {1, U2, 0, 0, 2, 2}},  // the highest two-byte lead
        {"\302\277C\xC3\xB3mo est\xC3\xA1s, se\xC3\xB1or?", kAll, false, {1, G7, 0, S, 23, 26}},
        {"N\xC3\xA3o h\xC3\xA1 a\xC3\xA7\xC3\xA3o", kAll, false, {1, G7, 0, P, 15, 20}},
        {s_cedilla + " \xC3\xAA", kAll, false, {1, G7, T, P, 5, 12}}};
    for (const auto &[text, languages, reference_16bit, want] : cases) {
        SCOPED_TRACE(testing::Message() << "text of " << text.size() << " bytes: " << text.substr(0, 40));
        const Encoded e = encode(text, {.languages = languages, .reference_16bit = reference_16bit});
        ASSERT_EQ(e.result, SMS_PDU_OK);
        EXPECT_EQ(e.allocations, 0u);
        const sms_pdu_part &first = e.parts[0], &last = e.parts[e.count - 1];
        // TP-UDL follows 00, the first octet, TP-MR, 01 81 F0, TP-PID and TP-DCS.
        EXPECT_EQ(Part1({e.count, first.alphabet, first.locking_language, first.single_language, first.text_length,
                         first.octets[8]}),
                  want);
        EXPECT_EQ(last.text_offset + last.text_length, text.size());
    }
}

TEST(PduEncode, RefusesBadInputAndLeavesThePartsAlone)
{
    const sms_pdu_validity feb29{.format = SMS_PDU_VP_ABSOLUTE, .absolute = {23, 2, 29, 0, 0, 0, 0}};
    const sms_pdu_validity zone80{.format = SMS_PDU_VP_ABSOLUTE, .absolute = {24, 1, 1, 0, 0, 0, 80}};
    const sms_pdu_validity too_long{.format = SMS_PDU_VP_RELATIVE, .relative_seconds = 63u * 7 * 86400 + 1};
    // Text, options, part records, result and parts counted.
    const std::tuple<const char *, std::string, sms_pdu_encode_options, std::size_t, int, std::size_t> cases[] = {
        {"cut sequence", "a\xC3", {}, 4, SMS_PDU_ERR_BAD_UTF8, 0},
        {"overlong", "\xC0\x80", {}, 4, SMS_PDU_ERR_BAD_UTF8, 0},
        {"surrogate half", "\xED\xA0\x80", {}, 4, SMS_PDU_ERR_BAD_UTF8, 0},
        {"above U+10FFFF", "\xF4\x90\x80\x80", {}, 4, SMS_PDU_ERR_BAD_UTF8, 0},
        {"stray continuation", "a\x80", {}, 4, SMS_PDU_ERR_BAD_UTF8, 0},
        {"empty destination", "a", {.destination = ""}, 4, SMS_PDU_ERR_BAD_DESTINATION, 0},
        {"plus alone", "a", {.destination = "+"}, 4, SMS_PDU_ERR_BAD_DESTINATION, 0},
        {"letter", "a", {.destination = "12a"}, 4, SMS_PDU_ERR_BAD_DESTINATION, 0},
        {"21 digits", "a", {.destination = "+123456789012345678901"}, 4, SMS_PDU_ERR_BAD_DESTINATION, 0},
        {"bad centre", "a", {.service_centre = "+1-2"}, 4, SMS_PDU_ERR_BAD_SERVICE_CENTRE, 0},
        {"unknown language", "a", {.languages = 1u << 4}, 4, SMS_PDU_ERR_BAD_OPTIONS, 0},
        {"256 parts allowed", "a", {.max_parts = 256}, 4, SMS_PDU_ERR_BAD_OPTIONS, 0},
        {"class 4", "a", {.has_message_class = 1, .message_class = 4}, 4, SMS_PDU_ERR_BAD_OPTIONS, 0},
        {"validity format 4", "a", {.validity = {.format = 4}}, 4, SMS_PDU_ERR_BAD_VALIDITY, 0},
        {"beyond 63 weeks", "a", {.validity = too_long}, 4, SMS_PDU_ERR_BAD_VALIDITY, 0},
        {"29 Feb 2023", "a", {.validity = feb29}, 4, SMS_PDU_ERR_BAD_VALIDITY, 0},
        {"zone of 80 quarters", "a", {.validity = zone80}, 4, SMS_PDU_ERR_BAD_VALIDITY, 0},
        {"more than max_parts", times("a", 161), {.max_parts = 1}, 4, SMS_PDU_ERR_TOO_MANY_PARTS, 2},
        {"more than 255 parts", times("a", 153 * 255 + 1), {}, 4, SMS_PDU_ERR_TOO_MANY_PARTS, 256},
        {"fewer records than parts", times("a", 161), {}, 1, SMS_PDU_ERR_NO_ROOM, 2},
        {"counting only", times("\xC4\xB1", 300), {.languages = kAll}, 0, SMS_PDU_ERR_NO_ROOM, 3}};
    for (const auto &[name, text, options, capacity, result, count] : cases) {
        SCOPED_TRACE(name);
        const Encoded e = encode(text, options, capacity);
        EXPECT_EQ(e.result, result);
        EXPECT_EQ(e.count, count);
        for (const sms_pdu_part &p : e.parts) EXPECT_EQ(p.octets[0], 0xAB);
    }
    const sms_pdu_encode_options none{};
    const sms_pdu_encode_options some = {.destination = "0"};
    sms_pdu_part part{};
    std::size_t count = 1;
    EXPECT_EQ(sms_pdu_encode("a", 1, &none, &part, 1, &count), SMS_PDU_ERR_NULL);  // no destination
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(sms_pdu_encode("a", 1, nullptr, &part, 1, &count), SMS_PDU_ERR_NULL);
    EXPECT_EQ(sms_pdu_encode(nullptr, 1, &some, &part, 1, &count), SMS_PDU_ERR_NULL);
    EXPECT_EQ(sms_pdu_encode("a", 1, &some, nullptr, 1, &count), SMS_PDU_ERR_NULL);
    EXPECT_EQ(sms_pdu_encode("a", 1, &some, &part, 1, nullptr), SMS_PDU_ERR_NULL);
}

TEST(PduEncode, RoundsRelativeValidityUpToAValueThatCanBeSent)
{
    const std::pair<std::uint32_t, std::uint8_t> cases[] = {
        {0, 0},       {300, 0},     {301, 1},          {43200, 143},          {43201, 144},
        {86400, 167}, {86401, 168}, {30 * 86400, 196}, {30 * 86400 + 1, 197}, {63u * 7 * 86400, 255}};
    for (const auto &[seconds, vp] : cases) {
        const Encoded e = encode("a", {.validity = {.format = SMS_PDU_VP_RELATIVE, .relative_seconds = seconds}});
        ASSERT_EQ(e.result, SMS_PDU_OK);
        EXPECT_EQ(e.parts[0].octets[8], vp) << seconds;  // after 00, first octet, TP-MR, 01 81 F0, TP-PID, TP-DCS
    }
}

}  // namespace
