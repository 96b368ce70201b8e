// `smsutil encode` and `split` run as processes: texts go out and come back
// through `decode`, and every usage error ends with status 2 on one line.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

#include "run_tool.hpp"
#include "version.hpp"

namespace smsutil::cli::test {
namespace {

using nlohmann::json;

const std::string kTo = "+8613912345678";
const std::string kSmsc = "+8613912340000";
constexpr size_t kSmscOctets = 9;  // 08 91 and seven digit octets

struct RoundTripCase {
    const char *name;
    std::string text;
    const char *coding;
    const char *lang;
    const char *sent_as;
    size_t parts;
};

class EncodeRoundTrip : public ::testing::TestWithParam<RoundTripCase> {};

TEST_P(EncodeRoundTrip, DecodesBackToTheSameText)
{
    const auto &c = GetParam();
    const ToolRun encoded = run_tool({"encode", "--gateway", "--to", kTo, "--smsc", kSmsc, "--coding", c.coding,
                                      "--lang", c.lang, "--ref", "7", c.text});
    ASSERT_EQ(encoded.status, 0) << encoded.out << encoded.err;
    const auto parts = json_lines(encoded.out);
    ASSERT_EQ(parts.size(), c.parts) << encoded.out;
    std::vector<std::string> decode_args{"decode", "--gateway", "--state", "3"};
    for (size_t i = 0; i < parts.size(); ++i) {
        EXPECT_EQ(parts[i]["part"], i + 1);
        EXPECT_EQ(parts[i]["total"], c.parts);
        EXPECT_EQ(parts[i]["coding"], c.sent_as);
        const std::string pdu = parts[i]["pdu"];
        EXPECT_EQ(parts[i]["tpdu_length"], pdu.size() / 2 - kSmscOctets);
        decode_args.push_back(pdu);
    }
    const ToolRun decoded = run_tool(decode_args);
    ASSERT_EQ(decoded.status, 0) << decoded.out;
    const auto messages = json_lines(decoded.out);
    ASSERT_EQ(messages.size(), c.parts);
    std::string text;
    for (size_t i = 0; i < messages.size(); ++i) {
        const json &m = messages[i];
        EXPECT_EQ(m["type"], "submit");
        EXPECT_EQ(m["address"], kTo);
        EXPECT_EQ(m["sca"], kSmsc);
        EXPECT_EQ(m["coding"], c.sent_as);
        if (c.parts == 1) {
            EXPECT_TRUE(m["concatenation"].is_null());
        } else {
            EXPECT_EQ(m["concatenation"], (json{{"reference", 7}, {"total", c.parts}, {"part", i + 1}}));
        }
        text += m["text"].get<std::string>();
    }
    EXPECT_EQ(text, c.text);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, EncodeRoundTrip,
    ::testing::Values(
        RoundTripCase{"Short", "Hello, world", "auto", "none", "gsm7", 1},
        RoundTripCase{"ExtensionCharacters", "Price: 5\u20AC {a|b} [c] ~ \\ ^", "auto", "none", "gsm7", 1},
        RoundTripCase{"Exactly160Codes", repeat("a", 160), "auto", "none", "gsm7", 1},
        RoundTripCase{"Over160Codes", repeat("a", 161), "gsm7", "none", "gsm7", 2},
        RoundTripCase{"EscapePairAtTheCut", repeat("a", 152) + "\u20AC" + repeat("b", 10), "auto", "none", "gsm7", 2},
        RoundTripCase{"FourParts", repeat("x", 612), "auto", "none", "gsm7", 4},
        RoundTripCase{"ChineseAuto", "\u4F60\u597D\uFF0C\u4E16\u754C", "auto", "none", "ucs2", 1},
        RoundTripCase{"Exactly70Characters", repeat("\u0436", 70), "auto", "none", "ucs2", 1},
        RoundTripCase{"Over70Characters", repeat("\u0436", 71), "ucs2", "none", "ucs2", 2},
        RoundTripCase{"AsciiForcedToUcs2", "Hello", "ucs2", "none", "ucs2", 1},
        RoundTripCase{"SpanishShiftTable", "\u00BFQu\u00E9tal?Ma\u00F1ana:\u00E1,\u00ED,\u00F3,\u00FA,\u00E7.", "auto",
                      "spanish", "gsm7", 1},
        RoundTripCase{"SpanishWithoutLanguage", "ma\u00F1ana \u00E1", "auto", "none", "ucs2", 1},
        RoundTripCase{"TurkishWithoutNationalLetters", "Gunaydin,saat8{ok}", "auto", "turkish", "gsm7", 1},
        // Under a national table the space converts to the escape code and
        // the Turkish letters to locking-shift codes, while the message
        // announces a single shift: such 7-bit parts do not read back, so
        // auto sends UCS-2.
        RoundTripCase{"SpanishWithSpacesFallsBack", "Qu\u00E9 tal", "auto", "spanish", "ucs2", 1},
        RoundTripCase{"TurkishLettersFallBack", "G\u00FCnayd\u0131n,\u00E7a\u011Fr\u0131\u015Fimdi", "auto", "turkish",
                      "ucs2", 1},
        // A full 153-code part leaves no room for the language element.
        RoundTripCase{"SpanishLongFallsBack", repeat("Canci\u00F3n-de-la-ma\u00F1ana.", 9), "auto", "spanish", "ucs2",
                      3},
        RoundTripCase{"TurkishLong", repeat("\u0130stanbul'da g\u00FCne\u015Fli bir g\u00FCn. ", 6), "auto", "turkish",
                      "ucs2", 3}),
    [](const auto &info) { return std::string(info.param.name); });

// The default encoder: the coding and tables it reports, and each part
// decoded back by the default decoder.
struct SubmitCase {
    const char *name;
    std::vector<std::string> options;
    std::string text;
    size_t parts;
    const char *coding;
    const char *single;
};

class EncodeSubmit : public ::testing::TestWithParam<SubmitCase> {};

TEST_P(EncodeSubmit, ReportsTheChoiceAndDecodesBack)
{
    const auto &c = GetParam();
    std::vector<std::string> args{"encode", "--to", kTo, "--ref", "7"};
    args.insert(args.end(), c.options.begin(), c.options.end());
    args.push_back(c.text);
    const ToolRun encoded = run_in_process(args);
    ASSERT_EQ(encoded.status, 0) << encoded.out << encoded.err;
    const auto parts = json_lines(encoded.out);
    ASSERT_EQ(parts.size(), c.parts) << encoded.out;
    std::string text;
    for (const json &part : parts) {
        EXPECT_EQ(part["coding"], c.coding);
        EXPECT_EQ(part["national_language"], (json{{"locking", "none"}, {"single", c.single}}));
        const std::string pdu = part["pdu"];
        EXPECT_EQ(part["tpdu_length"], pdu.size() / 2 - 1);  // after the empty service centre, 00
        const auto decoded = json_lines(run_in_process({"decode", pdu}).out);
        ASSERT_EQ(decoded.size(), 1U);
        EXPECT_EQ(decoded[0]["sca"], "");
        if (c.parts > 1) {
            EXPECT_EQ(decoded[0]["concatenation"]["reference"], 7);
        }
        text += decoded[0]["text"].get<std::string>();
    }
    EXPECT_EQ(text, c.text);
}

const std::string kTurkish = repeat("\u0130stanbul'da g\u00FCne\u015Fli bir g\u00FCn. ", 6);

INSTANTIATE_TEST_SUITE_P(
    Texts, EncodeSubmit,
    ::testing::Values(
        SubmitCase{"Plain", {}, "Hello, world", 1, "gsm7", "none"},
        SubmitCase{"TurkishTakesFewerParts", {}, kTurkish, 2, "gsm7", "turkish"},
        SubmitCase{"TurkishChosen", {"--lang", "turkish"}, kTurkish, 2, "gsm7", "turkish"},
        SubmitCase{"TurkishWithoutLanguages", {"--lang", "none"}, kTurkish, 3, "ucs2", "none"},
        SubmitCase{"OtherLanguageOnly", {"--lang", "spanish"}, kTurkish, 3, "ucs2", "none"},
        SubmitCase{"Portuguese", {"--lang", "portuguese"}, "N\u00E3o h\u00E1 a\u00E7\u00E3o", 1, "gsm7", "portuguese"},
        SubmitCase{"AtTheLimit", {"--max-parts", "2"}, kTurkish, 2, "gsm7", "turkish"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Encode, MoreThanMaxPartsNamesTheLimitAndTheNeed)
{
    const ToolRun run = run_in_process({"encode", "--to", kTo, "--max-parts", "1", kTurkish});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(run.out.find("needs 2 parts, more than the limit of 1"), std::string::npos) << run.out;
}

struct RefusedTextCase {
    const char *name;
    std::string text;
    const char *coding;
    const char *lang;
    const char *error_part;
};

class EncodeRefusedText : public ::testing::TestWithParam<RefusedTextCase> {};

TEST_P(EncodeRefusedText, PrintsAnErrorAndExitsWithOne)
{
    const auto &c = GetParam();
    const ToolRun run =
        run_tool({"encode", "--gateway", "--to", kTo, "--smsc", kSmsc, "--coding", c.coding, "--lang", c.lang, c.text});
    EXPECT_EQ(run.status, 1);
    const auto lines = json_lines(run.out);
    ASSERT_EQ(lines.size(), 1U);
    EXPECT_NE(lines[0]["error"].get<std::string>().find(c.error_part), std::string::npos) << lines[0];
}

INSTANTIATE_TEST_SUITE_P(
    Cases, EncodeRefusedText,
    ::testing::Values(
        RefusedTextCase{"Over612Codes", repeat("x", 613), "gsm7", "none",
                        "the text needs 5 parts of up to 153 GSM 7-bit codes, more than the limit of 4"},
        // Auto does not fall back to UCS-2, which would need even more parts.
        RefusedTextCase{"AutoOver612Codes", repeat("x", 613), "auto", "none", "5 parts of up to 153 GSM 7-bit codes"},
        // An escape pair is not cut: 76 pairs a part, the fifth part starts at pair 305.
        RefusedTextCase{"EscapePairsKeptWhole", repeat("{", 305), "gsm7", "none", "needs 5 parts"},
        RefusedTextCase{"Over268Characters", repeat("\u0436", 269), "auto", "none",
                        "the text needs 5 parts of up to 67 UCS-2 characters, more than the limit of 4"},
        RefusedTextCase{"NoSevenBitCode", "\u4F60", "gsm7", "none", "without a GSM 7-bit code"},
        RefusedTextCase{"NoSpanishCode", "\u011F", "gsm7", "spanish", "under language spanish"},
        RefusedTextCase{"TurkishLetterAsGsm7", "\u0131", "gsm7", "turkish", "verification failed for part 1 of 1"},
        RefusedTextCase{"SpaceUnderSpanishAsGsm7", "a b", "gsm7", "spanish", "verification failed"},
        RefusedTextCase{"FullSpanishPartAsGsm7", repeat("Canci\u00F3n-de-la-ma\u00F1ana.", 9), "gsm7", "spanish",
                        "ComposeSms refused part 1 of 2: its 153 codes and its header need 164 septets"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Encode, AtCommandsCountTheTpduWithoutTheServiceCentre)
{
    const ToolRun run = run_tool({"encode", "--to", kTo, "--smsc", kSmsc, "--at", repeat("z", 200)});
    ASSERT_EQ(run.status, 0);
    const auto lines = lines_of(run.out);
    ASSERT_EQ(lines.size(), 4U);
    for (size_t i = 0; i < lines.size(); i += 2) {
        const std::string &pdu = lines[i + 1];
        EXPECT_EQ(lines[i], "AT+CMGS=" + std::to_string(pdu.size() / 2 - kSmscOctets));
    }
}

TEST(Encode, ReadsTheTextFromStandardInputWithoutItsLineEnd)
{
    const ToolRun piped = run_tool({"encode", "--to", kTo, "--smsc", kSmsc, "-"}, "Hello\n");
    const ToolRun given = run_tool({"encode", "--to", kTo, "--smsc", kSmsc, "Hello"});
    EXPECT_EQ(piped.status, 0);
    EXPECT_EQ(piped.out, given.out);
}

struct SettingCase {
    const char *name;
    std::vector<std::string> options;
    const char *pointer;  // JSON pointer into the decoded detail
    json expected;
};

class EncodeSetting : public ::testing::TestWithParam<SettingCase> {};

TEST_P(EncodeSetting, ReachesTheTpdu)
{
    std::vector<std::string> args{"encode", "--gateway", "--to", kTo, "--smsc", kSmsc};
    args.insert(args.end(), GetParam().options.begin(), GetParam().options.end());
    args.push_back("Hi");
    const auto parts = json_lines(run_tool(args).out);
    ASSERT_EQ(parts.size(), 1U);
    const auto decoded = json_lines(run_tool({"decode", "--gateway", "--state", "3", "--detail", parts[0]["pdu"]}).out);
    ASSERT_EQ(decoded.size(), 1U);
    EXPECT_EQ(decoded[0]["detail"].at(json::json_pointer(GetParam().pointer)), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, EncodeSetting,
    ::testing::Values(SettingCase{"NoValidityIsTheLongest", {}, "/validity/period", "P1Y2M16D"},
                      SettingCase{"OneMinuteRoundsUpToFive", {"--validity", "60"}, "/validity/period", "PT5M"},
                      SettingCase{"OneHour", {"--validity", "3600"}, "/validity/period", "PT1H"},
                      SettingCase{"OneDay", {"--validity", "86400"}, "/validity/period", "P1D"},
                      SettingCase{"LongestAccepted", {"--validity", "31103999"}, "/validity/period", "P12M4D"},
                      SettingCase{"NoStatusReport", {}, "/flags/status_report_request", false},
                      SettingCase{"StatusReport", {"--status-report"}, "/flags/status_report_request", true},
                      SettingCase{"Reference", {"--ref", "255"}, "/message_reference", 255},
                      SettingCase{"InternationalDestination", {}, "/destination/type_of_number", 1}),
    [](const auto &info) { return std::string(info.param.name); });

struct UsageCase {
    const char *name;
    std::vector<std::string> args;
    const char *message_part;
};

class UsageErrors : public ::testing::TestWithParam<UsageCase> {};

TEST_P(UsageErrors, ExitsWithTwoAndOneLineOnStandardError)
{
    const ToolRun run = run_tool(GetParam().args);
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run.out, "");
    const auto lines = lines_of(run.err);
    ASSERT_EQ(lines.size(), 1U) << run.err;
    EXPECT_EQ(lines[0].rfind("smsutil: ", 0), 0U) << lines[0];
    EXPECT_NE(lines[0].find(GetParam().message_part), std::string::npos) << lines[0];
}

const std::vector<std::string> kEncode{"encode", "--to", "123", "--smsc", "456"};

std::vector<std::string> encode_with(std::vector<std::string> extra)
{
    std::vector<std::string> args = kEncode;
    args.insert(args.end(), extra.begin(), extra.end());
    return args;
}

INSTANTIATE_TEST_SUITE_P(
    Cases, UsageErrors,
    ::testing::Values(
        UsageCase{"NoCommand", {}, "subcommand"},
        UsageCase{"UnknownCommand", {"frobnicate"}, "unknown command 'frobnicate'"},
        UsageCase{"UnknownOption", {"decode", "--colour"}, "--colour"},
        UsageCase{"StateAboveThree", {"decode", "--state", "4", "00"}, "--state must be a whole number from 0 to 3"},
        UsageCase{"StateNotANumber", {"decode", "--state", "x", "00"}, "--state must be a whole number from 0 to 3"},
        UsageCase{"StateWithSign", {"decode", "--state", "+1", "00"}, "--state must be a whole number from 0 to 3"},
        UsageCase{"MissingDestination", {"encode", "--smsc", "456", "Hi"}, "--to"},
        UsageCase{"MissingServiceCentre", {"encode", "--gateway", "--to", "123", "Hi"}, "--smsc is required"},
        UsageCase{"DestinationWithLetter", {"encode", "--to", "12a", "--smsc", "456", "Hi"}, "--to"},
        UsageCase{"ServiceCentrePlusAlone", {"encode", "--to", "123", "--smsc", "+", "Hi"}, "--smsc"},
        UsageCase{"DestinationTooLong", {"encode", "--to", "123456789012345678901", "--smsc", "4", "Hi"}, "--to"},
        UsageCase{"UnknownCoding", encode_with({"--coding", "latin1", "Hi"}),
                  "smsutil: --coding must be auto, gsm7 or ucs2"},
        UsageCase{"CodingByNumber", encode_with({"--coding", "1", "Hi"}), "--coding must be auto, gsm7 or ucs2"},
        UsageCase{"UnknownLanguage", encode_with({"--lang", "klingon", "Hi"}),
                  "--lang must be auto, none, turkish, spanish or portuguese"},
        UsageCase{"ValidityUnderAMinute", encode_with({"--validity", "59", "Hi"}),
                  "--validity must be a whole number from 60 to 31103999"},
        UsageCase{"ValidityOf360Days", encode_with({"--validity", "31104000", "Hi"}), "--validity must be"},
        UsageCase{"ValidityHuge", encode_with({"--validity", "99999999999", "Hi"}), "--validity must be"},
        UsageCase{"ReferenceAbove255", encode_with({"--ref", "256", "Hi"}),
                  "--ref must be a whole number from 0 to 255"},
        UsageCase{"ReferenceEmpty", encode_with({"--ref", "", "Hi"}), "--ref must be"},
        UsageCase{"TwoTexts", encode_with({"Hi", "there"}), "there"},
        UsageCase{"CodingMeansGateway", {"encode", "--to", "1", "--coding", "ucs2", "Hi"}, "--smsc is required"},
        UsageCase{"PortugueseThroughGateway", encode_with({"--gateway", "--lang", "portuguese", "Hi"}),
                  "--lang with --gateway"},
        UsageCase{"MaxPartsThroughGateway", encode_with({"--gateway", "--max-parts", "2", "Hi"}),
                  "--max-parts does not work"},
        UsageCase{"MaxPartsZero", encode_with({"--max-parts", "0", "Hi"}),
                  "--max-parts must be a whole number from 1 to 255"},
        UsageCase{"SplitUnknownCoding", {"split", "--coding", "x", "Hi"}, "--coding must be auto, gsm7 or ucs2"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Split, ListsThePacksWithTheirByteLengths)
{
    const std::string text = repeat("\u00E1", 100) + repeat("b", 100);
    const ToolRun run = run_tool({"split", "--lang", "spanish", text});
    ASSERT_EQ(run.status, 0) << run.err;
    const auto packs = json_lines(run.out);
    ASSERT_EQ(packs.size(), 2U);
    // Each a-acute is an escape pair; the 153rd code is an escape, so the
    // first pack stops at 152 codes to keep the pair whole.
    EXPECT_EQ(
        packs[0],
        (json{{"pack", 1}, {"total", 2}, {"coding", "gsm7"}, {"length", 76 * 2}, {"text", repeat("\u00E1", 76)}}));
    EXPECT_EQ(packs[1]["text"], repeat("\u00E1", 24) + repeat("b", 100));
    EXPECT_EQ(packs[1]["length"], 24 * 2 + 100);
}

TEST(Split, AutoKeepsOnlySevenBitPacksThatSpellTheText)
{
    const ToolRun run = run_tool({"split", "--lang", "spanish", repeat("Qu\u00E9 tal ", 30)});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_EQ(json_lines(run.out).at(0)["coding"], "ucs2");
}

TEST(Split, SevenBitPacksThatLoseCharactersAreAnError)
{
    const ToolRun run = run_tool({"split", "--coding", "gsm7", "--lang", "turkish", repeat("a b ", 50)});
    EXPECT_EQ(run.status, 1);
    EXPECT_NE(json_lines(run.out).at(0)["error"].get<std::string>().find("do not add up"), std::string::npos);
}

TEST(Help, EveryCommandShowsAnExampleAndExitsWithZero)
{
    const std::vector<std::vector<std::string>> commands{{"decode"},         {"encode"},         {"split"},
                                                         {"cdma", "decode"}, {"cdma", "encode"}, {"xml", "get"},
                                                         {"xml", "url"},     {"xml", "fmt"}};
    for (auto args : commands) {
        const std::string example = "smsutil " + args[0] + (args.size() > 1 ? " " + args[1] : "");
        args.push_back("--help");
        const ToolRun run = run_tool(args);
        EXPECT_EQ(run.status, 0) << example;
        EXPECT_NE(run.out.find("Example"), std::string::npos) << example;
        EXPECT_NE(run.out.find(example), std::string::npos) << example;
    }
}

TEST(Help, UsageNamesTheToolNotItsPathAndExamplesExist)
{
    const ToolRun run = run_tool({"split", "--help"});
    EXPECT_NE(run.out.find("Usage: smsutil split"), std::string::npos) << run.out;
    const size_t at = run.out.find("examples/");
    ASSERT_NE(at, std::string::npos);
    const std::string path = run.out.substr(at, run.out.find_first_of(" \n", at) - at);
    EXPECT_FALSE(read_file(std::string(SMSUTIL_EXAMPLES_DIR) + "/../" + path).empty()) << path;
}

// Without --ref each long message of a run takes a reference of its own,
// and all its parts share it.
TEST(Encode, LongMessagesWithoutReferenceDoNotShareOne)
{
    std::vector<json> references;
    for (const char *text : {"first", "second", "third"}) {
        const ToolRun sent = run_in_process({"encode", "--to", kTo, "--smsc", kSmsc, "--at", repeat(text, 40)});
        ASSERT_EQ(sent.status, 0) << sent.out;
        std::vector<std::string> pdus;
        for (const auto &line : lines_of(sent.out)) {
            if (line.rfind("AT", 0) != 0) pdus.push_back(line);
        }
        pdus.insert(pdus.begin(), {"decode", "--state", "2"});
        const auto parts = json_lines(run_in_process(pdus).out);
        ASSERT_EQ(parts.size(), 2U);
        EXPECT_EQ(parts[0]["concatenation"]["reference"], parts[1]["concatenation"]["reference"]);
        references.push_back(parts[0]["concatenation"]["reference"]);
    }
    EXPECT_NE(references[0], references[1]);
    EXPECT_NE(references[1], references[2]);
    EXPECT_NE(references[0], references[2]);
}

TEST(Version, PrintsTheProjectVersion)
{
    const ToolRun run = run_tool({"--version"});
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.out, std::string("smsutil ") + tool_version() + "\n");
}

}  // namespace
}  // namespace smsutil::cli::test
