// National 8-bit codes, the message coding decision and the buffer dump.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "charset/kv8bit_tables.hpp"
#include "smsutil/ndl_xml.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

using smsutil::charset::kv8bit_block;
using smsutil::charset::kv8bit_ucs2_table;

TEST(Kv8bitTables, LowHalfIsTheDefaultAlphabet)
{
    EXPECT_EQ(kv8bit_ucs2_table[0], 0xFFFFu);
    for (int b = 1; b < 0x80; ++b) EXPECT_EQ(kv8bit_ucs2_table[b], g_GSM_7BitTable[0][b]) << std::hex << b;
    EXPECT_EQ(kv8bit_ucs2_table[0x80], g_GSM_7BitTable[0][0]);
    EXPECT_EQ(extern_code_table[0], 0x00);
}

// Every upper byte with a character carries the code under which its own
// block's extension row holds that character; the others carry none.
TEST(Kv8bitTables, ExtensionCodesLineUpWithTheCharacters)
{
    int characters = 0;
    for (int b = 0x81; b <= 0xFF; ++b) {
        const uint8_t code = extern_code_table[b & 0x7F];
        const uint32_t block = kv8bit_block(static_cast<uint8_t>(b));
        if (kv8bit_ucs2_table[b] == 0xFFFF) {
            EXPECT_EQ(code, KV8BIT_NO_EXTENSION_CODE) << std::hex << b;
            continue;
        }
        ++characters;
        ASSERT_LT(block, 3u) << std::hex << b;
        ASSERT_LT(code, 128) << std::hex << b;
        EXPECT_EQ(g_GSM_7BitExtTable[block][code], kv8bit_ucs2_table[b]) << std::hex << b;
    }
    EXPECT_EQ(characters, 11 + 17 + 19);
}

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

// Every character of the 8-bit code reaches 7-bit codes that decode back to
// it under the language of its block.  The escape character itself is the
// one exception: as a code it starts a pair.
TEST(Kv8bitTables, EveryCharacterRoundTripsThroughSevenBitCodes)
{
    std::filesystem::remove(SMSUTIL_FEATURE_FILE);  // the tables as they are
    int checked = 0;
    for (int b = 1; b < 256; ++b) {
        const uint32_t unit = kv8bit_ucs2_table[b];
        if (unit == 0xFFFF || unit == GSM7_ESCAPE) continue;
        const uint16_t u16 = static_cast<uint16_t>(unit);
        uint8_t byte[2] = {};
        uint32_t len = 0;
        ASSERT_EQ(ucs2_to_kv8bit(&u16, 1, byte, 1, &len), 0);
        if (byte[0] != b) continue;  // a lower byte already stands for it
        uint8_t codes[3] = {};
        ASSERT_EQ(kv8bit_to_gsm7bit(byte, 1, codes, 3, &len), 0) << std::hex << b;
        const uint32_t coding = b > 0x80 ? kv8bit_block(static_cast<uint8_t>(b)) : 0;
        uint16_t back[2] = {};
        ASSERT_EQ(gsm7_to_unicode(codes, len, coding, WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT, back, 1, &len), 0)
            << std::hex << b;
        EXPECT_EQ(back[0], unit) << std::hex << b;
        ++checked;
    }
    // 126 default-alphabet characters besides the escape, the commercial at,
    // and the upper characters not found lower down: 9 of the default
    // extension, 7 Turkish, 8 Spanish.
    EXPECT_EQ(checked, 126 + 1 + 9 + 7 + 8);
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

// ---- The feature-file setting ----

struct SettingCase {
    const char *name;
    std::optional<std::string> file;  // nullopt: no file at all
    const char *logged_text;          // what "bit7_code is %s" shows
    int value;                        // what "atoi(bit7_code) is %d" shows
    uint8_t cedilla_code;             // code after the escape for 0xAC
};

class FeatureSetting : public National8bit, public ::testing::WithParamInterface<SettingCase> {};

TEST_P(FeatureSetting, ChoosesTheCodeOfCCedilla)
{
    const SettingCase &c = GetParam();
    if (c.file) write_feature_file(*c.file);
    Bytes out;
    uint32_t len = 0;
    // 0xC0 is the Spanish c cedilla, which never depends on the setting.
    ASSERT_EQ(convert({0xAC, 0xC0, 0x41}, 8, out, len), 0);
    EXPECT_EQ(Bytes(out.begin(), out.begin() + len), (Bytes{0x1B, c.cedilla_code, 0x1B, 0x09, 0x41}));
}

const std::string k31(30, '0');
INSTANTIATE_TEST_SUITE_P(
    Values, FeatureSetting,
    ::testing::Values(
        SettingCase{"MissingFile", std::nullopt, "", 0, 0x63},
        SettingCase{"KeyAbsent", feature_document(""), "", 0, 0x63},
        SettingCase{"ElementWithoutText", feature_document("<lang_table/>"), "", 0, 0x63},
        SettingCase{"One", setting_document("1"), "1", 1, 0x63},
        SettingCase{"Two", setting_document("2"), "2", 2, 0x09},
        SettingCase{"Three", setting_document("3"), "3", 3, 0x63},
        SettingCase{"NonNumeric", setting_document("spanish"), "spanish", 0, 0x63},
        SettingCase{"DigitsThenText", setting_document("2es"), "2es", 2, 0x09},
        SettingCase{"Negative", setting_document("-2"), "-2", -2, 0x63},
        SettingCase{"Saturates", setting_document("99999999999999999999"), "99999999999999999999", 2147483647, 0x63},
        // The value buffer holds 31 characters and the terminator.
        SettingCase{"ThirtyOneCharacters", setting_document(k31 + "2"), "0000000000000000000000000000002", 2, 0x09},
        SettingCase{"ThirtyTwoCharactersDoNotFit", setting_document(k31 + "02"), "", 0, 0x63},
        SettingCase{"MismatchedEndTag", setting_document("2</lang_tab><lang_table>"), "", 0, 0x63},
        SettingCase{"CutOffInsideATag",
                    "<configuration><FEATURE_SMS><lang_table>2</lang_table></FEATURE_SMS></configuration", "", 0, 0x63},
        SettingCase{"NotXml", "lang_table=2\n", "", 0, 0x63},
        SettingCase{"OtherTopLevelElement", "<config><FEATURE_SMS><lang_table>2</lang_table></FEATURE_SMS></config>",
                    "", 0, 0x63}),
    [](const auto &info) { return std::string(info.param.name); });

// The file is read at every call: a change takes effect on the next one.
TEST_F(National8bit, ReadsTheSettingAtEveryCall)
{
    Bytes out;
    uint32_t len = 0;
    for (const char *value : {"2", "1", ""}) {
        if (*value)
            write_feature_file(setting_document(value));
        else
            std::filesystem::remove(SMSUTIL_FEATURE_FILE);
        ASSERT_EQ(convert({0xAC}, 2 + 1, out, len), 0);
        EXPECT_EQ(out[1], *value == '2' ? 0x09 : 0x63) << "setting '" << value << "'";
    }
}

// ---- Conversion and its capacity ----

struct ConvertCase {
    const char *name;
    Bytes in;
    uint32_t capacity;
    int32_t rc;
    Bytes out;  // expected codes on success
};

class Kv8bitToGsm7 : public National8bit, public ::testing::WithParamInterface<ConvertCase> {};

TEST_P(Kv8bitToGsm7, Converts)
{
    const ConvertCase &c = GetParam();
    Bytes out;
    uint32_t len = 0;
    ASSERT_EQ(convert(c.in, c.capacity, out, len), c.rc);
    if (c.rc == 0) {
        EXPECT_EQ(Bytes(out.begin(), out.begin() + len), c.out);
        EXPECT_EQ(out[len], 0xEE) << "no terminator is written";
    } else {
        EXPECT_EQ(len, 0u);
    }
    for (std::size_t i = c.capacity; i < out.size(); ++i) ASSERT_EQ(out[i], 0xEE) << "wrote past the capacity";
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Kv8bitToGsm7,
    ::testing::Values(ConvertCase{"PlainEuroAndAt", {0x41, 0x8B, 0x80}, 4, 0, {0x41, 0x1B, 0x65, 0x00}},
                      ConvertCase{"TopOfThePlainRange", {0x7F, 0x1B, 0x01}, 3, 0, {0x7F, 0x1B, 0x01}},
                      ConvertCase{"ZeroByteInsideTheLength", {0x41, 0x00, 0x42}, 3, 0, {0x41, 0x00, 0x42}},
                      ConvertCase{"DefaultExtension", {0x81, 0x82, 0x8A}, 7, 0, {0x1B, 0x0A, 0x1B, 0x14, 0x1B, 0x40}},
                      ConvertCase{"Turkish", {0xA9, 0xB0}, 5, 0, {0x1B, 0x47, 0x1B, 0x73}},
                      ConvertCase{"Spanish", {0xCA, 0xD2}, 5, 0, {0x1B, 0x41, 0x1B, 0x75}},
                      ConvertCase{"UnassignedBytesBecomeEscapeZero",
                                  {0x8C, 0xB1, 0xD3, 0xE0, 0xFF},
                                  11,
                                  0,
                                  {0x1B, 0, 0x1B, 0, 0x1B, 0, 0x1B, 0, 0x1B, 0}},
                      ConvertCase{"Empty", {}, 0, 0, {}},
                      // An escape pair wants three bytes of room, not two.
                      ConvertCase{"PairWithTwoBytesLeftFails", {0x41, 0xA1}, 3, -1, {}},
                      ConvertCase{"PairWithThreeBytesLeft", {0x41, 0xA1}, 4, 0, {0x41, 0x1B, 0x14}},
                      ConvertCase{"PairAloneCapacityTwo", {0xA1}, 2, -1, {}},
                      ConvertCase{"PairAloneCapacityOne", {0xA1}, 1, -1, {}},
                      ConvertCase{"PairAloneCapacityThree", {0xA1}, 3, 0, {0x1B, 0x14}},
                      ConvertCase{"PairThenPairFails", {0xA1, 0xA2}, 4, -1, {}},
                      ConvertCase{"ExactlyFullWithPlainBytes", {0x41, 0x42, 0x43}, 3, 0, {0x41, 0x42, 0x43}},
                      // Once the output is full the rest of the input is dropped quietly.
                      ConvertCase{"RestDroppedWhenFull", {0xA1, 0x41, 0x42}, 3, 0, {0x1B, 0x14, 0x41}},
                      ConvertCase{"RestDroppedAfterPair", {0x41, 0xA1, 0x42, 0x43}, 4, 0, {0x41, 0x1B, 0x14, 0x42}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST_F(National8bit, RefusesMissingBuffersAndInputLongerThanTheCapacity)
{
    const uint8_t in[] = {0x41, 0x42};
    uint8_t out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    uint32_t len = 77;
    EXPECT_EQ(kv8bit_to_gsm7bit(nullptr, 1, out, 4, &len), -1);
    EXPECT_EQ(kv8bit_to_gsm7bit(in, 1, nullptr, 4, &len), -1);
    EXPECT_EQ(kv8bit_to_gsm7bit(in, 1, out, 4, nullptr), -1);
    EXPECT_EQ(kv8bit_to_gsm7bit(in, 2, out, 1, &len), -1);
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

// ---- UCS-2 to the 8-bit code ----

TEST(Ucs2ToKv8bit, TakesTheLowestByteAndLeavesUnmappedBytesAlone)
{
    const uint16_t units[] = {0x0040, 0x20AC, 0x00E7, 0x000A, 0x0020, 0x011E, 0x00C1, 0x4E2D, 0xFFFF, 0x8000};
    uint8_t out[12];
    std::fill(std::begin(out), std::end(out), 0x5A);
    uint32_t len = 0;
    ASSERT_EQ(ucs2_to_kv8bit(units, 10, out, 10, &len), 0);
    EXPECT_EQ(len, 10u);
    EXPECT_EQ(Bytes(out, out + 11), (Bytes{0x80, 0x8B, 0xAC, 0x0A, 0x20, 0xA9, 0xCA, 0x5A, 0x5A, 0x5A, 0x00}));
    EXPECT_EQ(out[11], 0x5A);
}

TEST(Ucs2ToKv8bit, RefusesBadArguments)
{
    const uint16_t units[] = {0x41, 0x42};
    uint8_t out[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    uint32_t len = 77;
    EXPECT_EQ(ucs2_to_kv8bit(nullptr, 1, out, 3, &len), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, 1, nullptr, 3, &len), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, 1, out, 3, nullptr), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, 2, out, 1, &len), -1);
    EXPECT_EQ(ucs2_to_kv8bit(units, -1, out, 3, &len), -1);
    EXPECT_EQ(len, 77u);
    EXPECT_EQ(out[0], 0xEE);
    ASSERT_EQ(ucs2_to_kv8bit(units, 2, out, 2, &len), 0);  // exactly full: terminator at the capacity
    EXPECT_EQ(Bytes(out, out + 4), (Bytes{0x41, 0x42, 0x00, 0xEE}));
    ASSERT_EQ(ucs2_to_kv8bit(units, 0, out, 0, &len), 0);
    EXPECT_EQ(len, 0u);
    EXPECT_EQ(out[0], 0x00);
}

// ---- In place, in the 620-byte buffer ----

TEST_F(National8bit, InPlaceConversionReplacesTheWholeBuffer)
{
    uint8_t text[KV8BIT_TEXT_BUFFER_SIZE];
    std::fill(std::begin(text), std::end(text), 0xEE);
    const uint8_t start[] = {0x41, 0x8B, 0x80, 0x00};
    std::copy(std::begin(start), std::end(start), text);
    uint32_t len = 0;
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(len, 4u);
    EXPECT_EQ(Bytes(text, text + 4), (Bytes{0x41, 0x1B, 0x65, 0x00}));
    EXPECT_EQ(std::count(text + 4, std::end(text), 0), KV8BIT_TEXT_BUFFER_SIZE - 4);
}

TEST_F(National8bit, InPlaceConversionAtTheBufferSize)
{
    uint8_t text[KV8BIT_TEXT_BUFFER_SIZE];
    uint32_t len = 0;
    // No terminator anywhere: the whole buffer is the text.
    std::fill(std::begin(text), std::end(text), 0x41);
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(len, static_cast<uint32_t>(KV8BIT_TEXT_BUFFER_SIZE));
    EXPECT_EQ(std::count(std::begin(text), std::end(text), 0x41), KV8BIT_TEXT_BUFFER_SIZE);

    // 309 pairs fill 618 bytes; the 310th has two bytes of room and fails,
    // leaving the caller's text as it was.
    std::fill(std::begin(text), std::end(text), 0);
    std::fill(text, text + 310, 0xA1);
    const Bytes before(std::begin(text), std::end(text));
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(text, &len), -1);
    EXPECT_EQ(Bytes(std::begin(text), std::end(text)), before);
    text[309] = 0;
    ASSERT_EQ(handle_input_sms_ascii_to_7bit(text, &len), 0);
    EXPECT_EQ(len, 618u);
    EXPECT_EQ(text[616], 0x1B);
    EXPECT_EQ(text[617], 0x14);
}

TEST_F(National8bit, InPlaceConversionRefusesMissingArguments)
{
    uint8_t text[KV8BIT_TEXT_BUFFER_SIZE] = {0x41};
    uint32_t len = 0;
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(nullptr, &len), -1);
    EXPECT_EQ(handle_input_sms_ascii_to_7bit(text, nullptr), -1);
    EXPECT_EQ(text[0], 0x41);
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
    Bytes in(200, 0xAC);
    in[0] = 0x41;
    Bytes out(1000);
    uint32_t len = 0;
    // Warm up lazily initialised parts of the C library.
    ASSERT_EQ(NDL_XML_GetNodeOrAttrEx(SMSUTIL_FEATURE_FILE, kKey, value, sizeof value), 0);
    ASSERT_EQ(kv8bit_to_gsm7bit(in.data(), 200, out.data(), 1000, &len), 0);

    AllocationScope lookup_alone;
    ASSERT_EQ(NDL_XML_GetNodeOrAttrEx(SMSUTIL_FEATURE_FILE, kKey, value, sizeof value), 0);
    const std::size_t lookup_cost = lookup_alone.allocations();
    EXPECT_GT(lookup_cost, 0u);

    AllocationScope conversion;
    ASSERT_EQ(kv8bit_to_gsm7bit(in.data(), 200, out.data(), 1000, &len), 0);
    EXPECT_EQ(conversion.allocations(), lookup_cost);
    EXPECT_EQ(len, 399u);

    const uint16_t units[] = {0x0040, 0x20AC, 0x4E2D};
    uint8_t bytes[4] = {};
    const uint8_t coded[] = {0x41, 0xC3, 0x00};
    AllocationScope rest;
    ASSERT_EQ(ucs2_to_kv8bit(units, 3, bytes, 3, &len), 0);
    EXPECT_EQ(check_message_coding(coded), 2);
    DumpBuffer(in.data(), 200, "heap");
    EXPECT_EQ(rest.allocations(), 0u);
}

struct CodingCase {
    const char *name;
    std::vector<uint8_t> text;  // terminated by the test
    int32_t coding;
    const char *decided_by;  // "coding by 0x%x" text, nullptr when nothing decides
};

class MessageCoding : public LogTest, public ::testing::WithParamInterface<CodingCase> {};

TEST_P(MessageCoding, FirstDecisiveByteWins)
{
    const CodingCase &c = GetParam();
    std::vector<uint8_t> text = c.text;
    text.push_back(0);
    text.push_back(0xC0);  // past the terminator: must not be looked at
    text.push_back(0);
    EXPECT_EQ(check_message_coding(text.data()), c.coding);
}

INSTANTIATE_TEST_SUITE_P(
    Blocks, MessageCoding,
    ::testing::Values(CodingCase{"Empty", {}, 0, nullptr}, CodingCase{"PlainAscii", {'H', 'i', '!'}, 0, nullptr},
                      CodingCase{"CommercialAt", {0x80, 0x7F}, 0, nullptr},
                      CodingCase{"DefaultExtensionOnly", {0x81, 0x8B, 0x9F}, 0, nullptr},
                      CodingCase{"TurkishLow", {0x41, 0xA0}, 1, "0xa0"}, CodingCase{"TurkishHigh", {0xBF}, 1, "0xbf"},
                      CodingCase{"SpanishLow", {0xC0}, 2, "0xc0"}, CodingCase{"SpanishHigh", {0xDF}, 2, "0xdf"},
                      CodingCase{"EmptyBlockLow", {0xE0}, 3, "0xe0"}, CodingCase{"EmptyBlockHigh", {0xFF}, 3, "0xff"},
                      CodingCase{"ExtensionThenSpanish", {0x85, 0xC3}, 2, "0xc3"},
                      CodingCase{"TurkishBeforeSpanish", {0x41, 0xB0, 0xC0}, 1, "0xb0"},
                      CodingCase{"SpanishBeforeTurkish", {0xD2, 0xA1}, 2, "0xd2"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(MessageCodingArguments, MissingTextNeedsNoLanguage) { EXPECT_EQ(check_message_coding(nullptr), 0); }

}  // namespace
