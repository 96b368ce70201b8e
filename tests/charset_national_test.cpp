// National 8-bit codes, the message coding decision and the buffer dump.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <tuple>
#include <vector>

#include "charset/kv8bit_tables.hpp"
#include "smsutil/ndl_xml.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using smsutil::charset::kv8bit_ucs2_table;

// The compile-time inverse against the search it replaces, for every unit.
// The search compares the unit as a signed 16-bit value, so nothing from
// 0x8000 up matches (not even 0xFFFF, which marks "none").
TEST(Kv8bitTables, InverseGivesTheFirstMatchForEveryUnit)
{
    int mismatches = 0;
    for (uint32_t u = 0; u <= 0xFFFF; ++u) {
        const auto as_signed = static_cast<int32_t>(static_cast<int16_t>(u));
        int expected = -1;
        for (int b = 0; b < 256 && expected < 0; ++b)
            if (static_cast<uint32_t>(as_signed) == kv8bit_ucs2_table[b]) expected = b;
        const uint16_t unit = static_cast<uint16_t>(u);
        uint8_t out[2] = {0xEE, 0xEE};
        uint32_t len = 0;
        ASSERT_EQ(ucs2_to_kv8bit(&unit, 1, out, 1, &len), 0);
        const int got = out[0] == 0xEE ? -1 : out[0];
        if (got != expected && ++mismatches <= 10) ADD_FAILURE() << std::hex << "unit " << u << " got " << got;
    }
    EXPECT_EQ(mismatches, 0);
}

using Bytes = std::vector<uint8_t>;
constexpr const char *kKey = "configuration.FEATURE_SMS.lang_table";

std::string feature_document(const std::string &lang_table_element)
{
    return "<?xml version=\"1.0\"?>\n<configuration><FEATURE_SMS><enable>1</enable>" + lang_table_element +
           "</FEATURE_SMS></configuration>\n";
}

std::string setting_document(const std::string &value)
{
    return feature_document("<lang_table>" + value + "</lang_table>");
}

// Each case starts without a feature file and leaves none behind.
class National8bit : public LogTest {
protected:
    void SetUp() override
    {
        LogTest::SetUp();
        std::filesystem::remove(SMSUTIL_FEATURE_FILE);
    }
    void TearDown() override { std::filesystem::remove(SMSUTIL_FEATURE_FILE); }

    static void write_feature_file(const std::string &content)
    {
        const std::filesystem::path path(SMSUTIL_FEATURE_FILE);
        std::filesystem::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary) << content;
    }

    // Converts with the given capacity; the output is prefilled so that
    // stray writes past the reported length show.
    static int32_t convert(const Bytes &in, uint32_t capacity, Bytes &out, uint32_t &len)
    {
        static const uint8_t nothing = 0;
        out.assign(capacity + 4, 0xEE);
        len = 99;
        return kv8bit_to_gsm7bit(in.empty() ? &nothing : in.data(), static_cast<uint32_t>(in.size()), out.data(),
                                 capacity, &len);
    }
};

// With the setting 2 c cedilla (0xAC, first its Turkish byte) goes out
// under the Spanish extension code 0x09, otherwise under 0x63; the Spanish
// byte 0xC0 never depends on it.  The value reads as a decimal number
// (digits then text still count, out of range saturates rather than wraps)
// from a buffer of 31 characters.  The settings are walked in turn in one
// process: the file is read again at every call.
TEST_F(National8bit, SettingChoosesTheCodeOfCCedilla)
{
    const std::string k31(30, '0');
    const std::pair<std::optional<std::string>, uint8_t> cases[] = {
        {setting_document("2"), 0x09},        {std::nullopt, 0x63},
        {setting_document("2es"), 0x09},      {feature_document(""), 0x63},
        {setting_document(k31 + "2"), 0x09},  {setting_document("3"), 0x63},
        {setting_document("-2"), 0x63},       {setting_document("4294967298"), 0x63},
        {setting_document(k31 + "02"), 0x63}, {"lang_table=2\n", 0x63}};
    for (const auto &[file, cedilla] : cases) {
        if (file)
            write_feature_file(*file);
        else
            std::filesystem::remove(SMSUTIL_FEATURE_FILE);
        Bytes out;
        uint32_t len = 0;
        ASSERT_EQ(convert({0xAC, 0xC0, 0x41}, 8, out, len), 0);
        EXPECT_EQ(hex(out.data(), len), hex({0x1B, cedilla, 0x1B, 0x09, 0x41})) << file.value_or("no file");
    }
}

// ---- Conversion and its capacity ----

// Rows: input, capacity, codes ("-": fails, reporting no length).  Bytes up
// to 0x80 are codes already (0x80 is the commercial at), upper bytes become
// the escape and their extension code (0 for none).  An escape pair wants
// three bytes of room, not two; input left once the output is full is
// dropped quietly.  Nothing is written past the codes, not even a zero.
TEST_F(National8bit, ConvertsWithinTheCapacity)
{
    const std::tuple<const char *, uint32_t, const char *> cases[] = {{"418B80", 4, "411B6500"},
                                                                      {"7F1B01", 3, "7F1B01"},
                                                                      {"410042", 3, "410042"},
                                                                      {"81828A", 7, "1B0A1B141B40"},
                                                                      {"A9B0", 5, "1B471B73"},
                                                                      {"CAD2", 5, "1B411B75"},
                                                                      {"8CB1D3E0FF", 11, "1B001B001B001B001B00"},
                                                                      {"", 0, ""},
                                                                      {"41A1", 3, "-"},
                                                                      {"41A1", 4, "411B14"},
                                                                      {"A1", 2, "-"},
                                                                      {"A1A2", 4, "-"},
                                                                      {"A14142", 3, "1B1441"},
                                                                      {"41A14243", 4, "411B1442"}};
    for (const auto &[in, capacity, codes] : cases) {
        Bytes out;
        uint32_t len = 0;
        ASSERT_EQ(convert(bytes(in), capacity, out, len), *codes == '-' ? -1 : 0) << in;
        EXPECT_EQ(*codes == '-' ? "-" : hex(out.data(), len), codes) << in;
        EXPECT_EQ(hex(out.data() + (*codes == '-' ? capacity : len), 4), "EEEEEEEE") << in;
    }
    const uint8_t in[] = {0x41, 0x42};
    uint32_t len = 77;
    Bytes out(4, 0xEE);
    EXPECT_EQ(kv8bit_to_gsm7bit(nullptr, 1, out.data(), 4, &len), -1);
    EXPECT_EQ(kv8bit_to_gsm7bit(in, 1, out.data(), 4, nullptr), -1);
    EXPECT_EQ(kv8bit_to_gsm7bit(in, 2, out.data(), 1, &len), -1);
    EXPECT_EQ(len, 77u);
    EXPECT_EQ(out[0], 0xEE);
}

// The table is writable data that a gateway may patch; the conversion must
// see the patched value.
TEST_F(National8bit, ReadsThePatchedExtensionTable)
{
    const uint8_t saved = extern_code_table[0x0C];
    extern_code_table[0x0C] = 0x3C;
    Bytes out;
    uint32_t len = 0;
    const int32_t rc = convert({0x8C}, 3, out, len);
    extern_code_table[0x0C] = saved;
    ASSERT_EQ(rc, 0);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + len), (Bytes{0x1B, 0x3C}));
}

// Each unit becomes the lowest byte that stands for it; a unit without one
// leaves its byte as it was.  A zero follows the text.
TEST(Ucs2ToKv8bit, TakesTheLowestByteAndLeavesUnmappedBytesAlone)
{
    const uint16_t units[] = {0x0040, 0x20AC, 0x00E7, 0x000A, 0x0020, 0x011E, 0x00C1, 0x4E2D, 0xFFFF, 0x8000};
    uint8_t out[12];
    std::fill(std::begin(out), std::end(out), 0x5A);
    uint32_t len = 77;
    EXPECT_EQ(ucs2_to_kv8bit(nullptr, 1, out, 3, &len), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, 1, out, 3, nullptr), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, 2, out, 1, &len), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, -1, out, 3, &len), -1);
    EXPECT_EQ(len, 77u);
    ASSERT_EQ(ucs2_to_kv8bit(units, 10, out, 10, &len), 0);  // exactly full: the zero at the capacity
    EXPECT_EQ(len, 10u);
    EXPECT_EQ(hex(out, 12), "808BAC0A20A9CA5A5A5A005A");
    ASSERT_EQ(ucs2_to_kv8bit(units, 0, out, 0, &len), 0);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(out[0], 0x00);
}

// In place, in the 620-byte buffer: the whole buffer is replaced (the
// codes may hold zeros); no terminator means the whole buffer is the text;
// a failure leaves the caller's text as it was.
TEST_F(National8bit, InPlaceConversionReplacesTheWholeBuffer)
{
    uint8_t text[KV8BIT_TEXT_BUFFER_SIZE];
    std::fill(std::begin(text), std::end(text), 0xEE);
    std::copy_n(bytes("418B8000").begin(), 4, text);
    uint32_t len = 0;
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(hex(text, len), "411B6500");
    EXPECT_EQ(std::count(text + 4, std::end(text), 0), KV8BIT_TEXT_BUFFER_SIZE - 4);
    std::fill(std::begin(text), std::end(text), 0x41);
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(len, static_cast<uint32_t>(KV8BIT_TEXT_BUFFER_SIZE));
    EXPECT_EQ(std::count(std::begin(text), std::end(text), 0x41), KV8BIT_TEXT_BUFFER_SIZE);
    // 309 pairs fill 618 bytes; the 310th has two bytes of room and fails.
    std::fill(std::begin(text), std::end(text), 0);
    std::fill(text, text + 310, 0xA1);
    const Bytes before(std::begin(text), std::end(text));
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(text, &len), -1);
    EXPECT_EQ(Bytes(std::begin(text), std::end(text)), before);
    text[309] = 0;
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(len, 618u);
    EXPECT_EQ(hex(text + 616, 2), "1B14");
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(nullptr, &len), -1);
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(text, nullptr), -1);
    EXPECT_EQ(text[0], 0x1B);
}

// ---- Heap ----

// The conversions allocate nothing.  kv8bit_to_gsm7bit reads the setting
// through the XML library, which does allocate (for the file and the tree,
// and the C library's FILE); the conversion around it must add nothing to
// what that same lookup costs on its own.
TEST_F(National8bit, AllocatesNothingBeyondTheSettingLookup)
{
    write_feature_file(setting_document("2"));
    char value[32];
    Bytes in(200, 0xAC), out(1000);
    uint32_t len = 0;
    // Warm up lazily initialised parts of the C library.
    ASSERT_EQ(kv8bit_to_gsm7bit(in.data(), 200, out.data(), 1000, &len), 0);
    AllocationScope lookup_alone;
    ASSERT_EQ(NDL_XML_GetNodeOrAttrEx(SMSUTIL_FEATURE_FILE, kKey, value, sizeof value), 0);
    const std::size_t lookup_cost = lookup_alone.allocations();
    AllocationScope conversion;
    ASSERT_EQ(kv8bit_to_gsm7bit(in.data(), 200, out.data(), 1000, &len), 0);
    EXPECT_EQ(conversion.allocations(), lookup_cost);
    const uint16_t units[] = {0x0040, 0x20AC, 0x4E2D};
    AllocationScope rest;
    ASSERT_EQ(ucs2_to_kv8bit(units, 3, out.data(), 3, &len), 0);
    EXPECT_EQ(check_message_coding(in.data()), 1);
    DumpBuffer(in.data(), 200, "heap");
    EXPECT_EQ(rest.allocations(), 0u);
}

// The first byte of a national block decides; bytes past the terminator
// are never looked at.
TEST(MessageCoding, FirstDecisiveByteWins)
{
    EXPECT_EQ(check_message_coding(nullptr), 0);
    const std::pair<const char *, int32_t> cases[] = {{"", 0},   {"48692180", 0}, {"7F819F8B", 0}, {"41A0", 1},
                                                      {"BF", 1}, {"C0", 2},       {"DF", 2},       {"E0", 3},
                                                      {"FF", 3}, {"85C3", 2},     {"41B0C0", 1},   {"D2A1", 2}};
    for (const auto &[text, coding] : cases) {
        Bytes t = bytes(text);
        t.insert(t.end(), {0, 0xC0, 0});
        EXPECT_EQ(check_message_coding(t.data()), coding) << text;
    }
}

}  // namespace
