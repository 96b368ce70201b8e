// Texts that the library alone would not carry as written, sent through
// `smsutil encode` and read back through `smsutil decode`: emoji around
// the part boundaries, national languages, mixed alphabets.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "run_tool.hpp"
#include "surrogate_text.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

const std::string kTo = "+905321234567";
const std::string kSmsc = "+8613912340000";
const std::string kGrinning = "\xF0\x9F\x98\x80";  // U+1F600
const std::string kThumbsUp = "\xF0\x9F\x91\x8D";  // U+1F44D
constexpr size_t kUnitsPerPart = 67;

struct Sent {
    std::vector<json> parts;     // what encode printed
    std::vector<json> messages;  // what decode made of each PDU
};

// Encodes, checks the exit status, and decodes every PDU on its own.
Sent send_and_read_back(const std::string &text, const std::vector<std::string> &options)
{
    std::vector<std::string> args{"encode", "--to", kTo, "--smsc", kSmsc, "--ref", "9"};
    args.insert(args.end(), options.begin(), options.end());
    args.push_back(text);
    const ToolRun encoded = run_tool(args);
    EXPECT_EQ(encoded.status, 0) << encoded.out << encoded.err;
    Sent sent;
    sent.parts = json_lines(encoded.out);
    std::vector<std::string> decode_args{"decode", "--state", "2"};
    for (const auto &part : sent.parts) decode_args.push_back(part.value("pdu", ""));
    const ToolRun decoded = run_tool(decode_args);
    EXPECT_EQ(decoded.status, 0) << decoded.out;
    sent.messages = json_lines(decoded.out);
    EXPECT_EQ(sent.messages.size(), sent.parts.size());
    return sent;
}

std::string joined_text(const Sent &sent)
{
    std::string text;
    for (const auto &m : sent.messages) text += m["text"].get<std::string>();
    return text;
}

// An emoji after `before` letters, with letters after it so the text
// always needs two or more parts: every cut near the 67th unit.
class EmojiAtTheBoundary : public ::testing::TestWithParam<size_t> {};

TEST_P(EmojiAtTheBoundary, ArrivesWholeInOnePart)
{
    const size_t before = GetParam();
    const std::string text = repeat("a", before) + kGrinning + repeat("b", 140 - before);
    const Sent sent = send_and_read_back(text, {});
    ASSERT_EQ(sent.parts.size(), 3U);
    for (size_t i = 0; i < sent.messages.size(); ++i) {
        EXPECT_EQ(sent.parts[i]["coding"], "ucs2");
        const std::string part = sent.messages[i]["text"];
        EXPECT_LE(ucs2_unit_count(part), kUnitsPerPart) << "part " << i + 1;
        EXPECT_EQ(part.find("\xEF\xBF\xBD"), std::string::npos) << "part " << i + 1 << " holds half a pair";
        EXPECT_EQ(sent.messages[i]["concatenation"], (json{{"reference", 9}, {"total", 3}, {"part", i + 1}}));
    }
    EXPECT_EQ(joined_text(sent), text);
}

INSTANTIATE_TEST_SUITE_P(Positions, EmojiAtTheBoundary, ::testing::Values<size_t>(65, 66, 67),
                         [](const auto &info) { return "After" + std::to_string(info.param) + "Letters"; });

struct EmojiTextCase {
    const char *name;
    std::string text;
    size_t parts;
};

class EmojiTexts : public ::testing::TestWithParam<EmojiTextCase> {};

TEST_P(EmojiTexts, RoundTripAsUcs2WithinTheUnitLimit)
{
    const Sent sent = send_and_read_back(GetParam().text, {});
    ASSERT_EQ(sent.parts.size(), GetParam().parts);
    for (const auto &m : sent.messages) {
        EXPECT_EQ(m["coding"], "ucs2");
        EXPECT_LE(ucs2_unit_count(m["text"].get<std::string>()), sent.parts.size() == 1 ? 70U : kUnitsPerPart);
    }
    EXPECT_EQ(joined_text(sent), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Cases, EmojiTexts,
                         ::testing::Values(
                             // 68 letters and a pair are 70 units: still one message.
                             EmojiTextCase{"SeventyUnitsInOneMessage", repeat("a", 68) + kGrinning, 1},
                             EmojiTextCase{"SeventyOneUnits", repeat("a", 69) + kGrinning, 2},
                             // 33 pairs fill 66 units; the 34th goes to the next part.
                             EmojiTextCase{"OnlyEmoji", repeat(kThumbsUp, 40), 2},
                             // 4 parts of 66 units hold 132 pairs.
                             EmojiTextCase{"FourPartsOfPairs", repeat(kGrinning, 132), 4}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(EmojiTexts, MoreThanFourGatewayPartsIsAnError)
{
    const ToolRun run = run_tool({"encode", "--gateway", "--to", kTo, "--smsc", kSmsc, repeat(kGrinning, 133)});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("needs 5 parts of up to 67 UCS-2 units, more than the limit of 4"), std::string::npos)
        << run.out;
}

TEST(EmojiTexts, SplitCutsWhereEncodeCuts)
{
    const std::string text = repeat("a", 66) + kGrinning + "bbbbb";
    const ToolRun run = run_tool({"split", text});
    ASSERT_EQ(run.status, 0) << run.out;
    const auto packs = json_lines(run.out);
    ASSERT_EQ(packs.size(), 2U);
    EXPECT_EQ(packs[0]["text"], repeat("a", 66));
    EXPECT_EQ(packs[1]["text"], kGrinning + "bbbbb");
}

// National-language and mixed texts: whatever the tool picks, the text
// comes back as written.
struct LanguageCase {
    const char *name;
    std::string text;
    const char *lang;
    const char *coding;
    const char *sent_as;
};

class LanguageRoundTrip : public ::testing::TestWithParam<LanguageCase> {};

TEST_P(LanguageRoundTrip, ComesBackAsWritten)
{
    const auto &c = GetParam();
    const Sent sent = send_and_read_back(c.text, {"--lang", c.lang, "--coding", c.coding});
    ASSERT_FALSE(sent.parts.empty());
    for (const auto &part : sent.parts) EXPECT_EQ(part["coding"], c.sent_as);
    EXPECT_EQ(joined_text(sent), c.text);
}

const std::string kTurkish =
    "K\xC4\xB1rm\xC4\xB1z\xC4\xB1 \xC3\xA7i\xC3\xA7"
    "ek ve \xC4\xB1l\xC4\xB1k \xC3\xA7"
    "ay";

INSTANTIATE_TEST_SUITE_P(Cases, LanguageRoundTrip,
                         ::testing::Values(LanguageCase{"TurkishAuto", kTurkish, "turkish", "auto", "ucs2"},
                                           LanguageCase{"CapitalCCedillaDefaultTable",
                                                        "\xC3\x87"
                                                        "a va",
                                                        "none", "gsm7", "gsm7"},
                                           LanguageCase{"SpanishWithoutSpacesStaysGsm7",
                                                        "\xC2\xBFQu\xC3\xA9?\xC3\xB1"
                                                        "o\xC3\xB1o",
                                                        "spanish", "auto", "gsm7"},
                                           LanguageCase{"GsmAndEmoji", "See you at 8 " + kThumbsUp, "none", "auto",
                                                        "ucs2"}),
                         [](const auto &info) { return std::string(info.param.name); });

// An explicit --coding gsm7 that would not arrive as written is refused,
// naming the first character that would be lost.
struct LossCase {
    const char *name;
    std::string text;
    const char *lang;
    std::string message_part;
};

class Gsm7Loss : public ::testing::TestWithParam<LossCase> {};

TEST_P(Gsm7Loss, ExitsWithOneNamingTheCharacter)
{
    const auto &c = GetParam();
    const ToolRun run =
        run_tool({"encode", "--to", kTo, "--smsc", kSmsc, "--coding", "gsm7", "--lang", c.lang, c.text});
    EXPECT_EQ(run.status, 1);
    const auto lines = json_lines(run.out);
    ASSERT_EQ(lines.size(), 1U) << run.out;
    EXPECT_NE(lines[0]["error"].get<std::string>().find(c.message_part), std::string::npos) << lines[0];
}

INSTANTIATE_TEST_SUITE_P(
    Cases, Gsm7Loss,
    ::testing::Values(LossCase{"Emoji", "ok " + kGrinning, "none",
                               "character 4, '" + kGrinning + "' (U+1F600), would be lost"},
                      LossCase{"DotlessIWithoutLanguage", "\xC4\xB1", "none", "character 1, '\xC4\xB1' (U+0131)"},
                      LossCase{"SpaceUnderSpanish", "a b", "spanish", "character 2, ' ' (U+0020), would be lost"},
                      LossCase{"SpaceInTheSecondPack", repeat("x", 170) + " y", "spanish",
                               "character 171, ' ' (U+0020), would be lost"}),
    [](const auto &info) { return std::string(info.param.name); });

// decode: the library's bytes for a surrogate are not UTF-8; the text is.
struct DecodeCase {
    const char *name;
    std::string units;  // put in place of D83D DE00 in the PDU of an emoji
    std::string text;
    const char *raw;
};

class DecodeSurrogates : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(DecodeSurrogates, TextIsUtf8AndRawKeepsTheLibraryBytes)
{
    const auto &c = GetParam();
    const ToolRun encoded = run_tool({"encode", "--to", kTo, "--smsc", kSmsc, kGrinning});
    ASSERT_EQ(encoded.status, 0);
    std::string pdu = json_lines(encoded.out).at(0)["pdu"];
    ASSERT_EQ(pdu.substr(pdu.size() - 8), "d83dde00");
    pdu.replace(pdu.size() - 8, 8, c.units);
    const ToolRun decoded = run_tool({"decode", "--state", "2", "--raw", pdu});
    ASSERT_EQ(decoded.status, 0) << decoded.out;
    const auto m = json_lines(decoded.out).at(0);
    EXPECT_EQ(m["text"], c.text);
    EXPECT_EQ(m["raw_text"], c.raw);
}

INSTANTIATE_TEST_SUITE_P(Cases, DecodeSurrogates,
                         ::testing::Values(DecodeCase{"Pair", "d83dde00", kGrinning, "eda0bdedb880"},
                                           DecodeCase{"LoneHigh", "d83d0041",
                                                      "\xEF\xBF\xBD"
                                                      "A",
                                                      "eda0bd41"},
                                           DecodeCase{"LoneLow", "0041de00", "A\xEF\xBF\xBD", "41edb880"},
                                           DecodeCase{"LowBeforeHigh", "de00d83d", "\xEF\xBF\xBD\xEF\xBF\xBD",
                                                      "edb880eda0bd"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(DecodeSurrogates, RawIsLeftOutUnlessAskedFor)
{
    const ToolRun run = run_tool(
        {"decode", "--state", "2",
         json_lines(run_tool({"encode", "--to", kTo, "--smsc", kSmsc, "Hi"}).out).at(0)["pdu"].get<std::string>()});
    ASSERT_EQ(run.status, 0);
    EXPECT_FALSE(json_lines(run.out).at(0).contains("raw_text"));
}

}  // namespace
}  // namespace smsutil::cli::test
