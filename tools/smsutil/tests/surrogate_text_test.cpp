// Text between the library's unit-by-unit form of surrogate pairs and the
// UTF-8 people read, and the naming of characters a refusal reports.
#include <gtest/gtest.h>

#include <optional>
#include <string>

#include "lost_character.hpp"
#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

const std::string kGrinning = "\xF0\x9F\x98\x80";               // U+1F600
const std::string kGrinningUnits = "\xED\xA0\xBD\xED\xB8\x80";  // D83D DE00
const std::string kReplacement = "\xEF\xBF\xBD";

enum Direction { kBoth, kFromLibrary, kToLibrary };

struct LibraryTextCase {
    const char *name;
    std::string library;
    std::string readable;
    Direction direction = kBoth;
};

class LibraryUtf8 : public ::testing::TestWithParam<LibraryTextCase> {};

// Reading joins pairs and replaces lone halves; writing gives each
// four-byte character as two units, and reads back as written.
TEST_P(LibraryUtf8, ConvertsBothWays)
{
    const auto &c = GetParam();
    if (c.direction != kToLibrary) {
        EXPECT_EQ(from_library_utf8(c.library), c.readable);
    }
    if (c.direction != kFromLibrary) {
        EXPECT_EQ(to_library_utf8(c.readable), c.library);
        EXPECT_EQ(from_library_utf8(to_library_utf8(c.readable)), c.readable);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Cases, LibraryUtf8,
    ::testing::Values(
        LibraryTextCase{"PlainText", "a\xC3\xA9\xE2\x82\xAC", "a\xC3\xA9\xE2\x82\xAC"},
        LibraryTextCase{"PairBetweenLetters", "x" + kGrinningUnits + "\xC4\xB1", "x" + kGrinning + "\xC4\xB1"},
        LibraryTextCase{"LowestPair", "\xED\xA0\x80\xED\xB0\x80", "\xF0\x90\x80\x80"},
        LibraryTextCase{"HighestPair", "\xED\xAF\xBF\xED\xBF\xBF", "\xF4\x8F\xBF\xBF"},
        LibraryTextCase{"LoneHighAtTheEnd", "a\xED\xA0\xBD", "a" + kReplacement, kFromLibrary},
        LibraryTextCase{"LoneLow",
                        "\xED\xB8\x80"
                        "b",
                        kReplacement + "b", kFromLibrary},
        LibraryTextCase{"HighBeforeLetter",
                        "\xED\xA0\xBD"
                        "A",
                        kReplacement + "A", kFromLibrary},
        LibraryTextCase{"LowThenHigh", "\xED\xB8\x80\xED\xA0\xBD", kReplacement + kReplacement, kFromLibrary},
        LibraryTextCase{"TwoHighsThenLow", "\xED\xA0\xBD" + kGrinningUnits, kReplacement + kGrinning, kFromLibrary},
        // Not a surrogate: U+D7FF is an ordinary character.
        LibraryTextCase{"BelowSurrogates", "\xED\x9F\xBF", "\xED\x9F\xBF", kFromLibrary},
        LibraryTextCase{"CutShortSurrogateKept", "a\xED\xA0", "a\xED\xA0", kFromLibrary},
        // Bytes that are no character are left for the read-back to catch.
        LibraryTextCase{"CutShortSequence", "a\xF0\x9F\x98", "a\xF0\x9F\x98", kToLibrary},
        LibraryTextCase{"BeyondTheLastCodePoint", "\xF4\x90\x80\x80", "\xF4\x90\x80\x80", kToLibrary},
        LibraryTextCase{"OverlongFourBytes", "\xF0\x8F\xBF\xBF", "\xF0\x8F\xBF\xBF", kToLibrary}),
    [](const auto &info) { return std::string(info.param.name); });

struct CountCase {
    const char *name;
    std::string text;
    size_t characters;
    size_t units;
    bool supplementary;
};

class TextMeasures : public ::testing::TestWithParam<CountCase> {};

TEST_P(TextMeasures, CountCharactersAndUnits)
{
    EXPECT_EQ(utf8_character_count(GetParam().text), GetParam().characters);
    EXPECT_EQ(ucs2_unit_count(GetParam().text), GetParam().units);
    EXPECT_EQ(has_supplementary_character(GetParam().text), GetParam().supplementary);
}

INSTANTIATE_TEST_SUITE_P(Cases, TextMeasures,
                         ::testing::Values(CountCase{"Empty", "", 0, 0, false}, CountCase{"Ascii", "abc", 3, 3, false},
                                           CountCase{"TwoAndThreeBytes", "\xC3\xA7\xE2\x82\xAC", 2, 2, false},
                                           CountCase{"Emoji", "a" + kGrinning, 2, 3, true},
                                           CountCase{"StrayContinuationByte",
                                                     "\x80"
                                                     "a",
                                                     2, 2, false},
                                           CountCase{"EncodedSurrogateIsNoCharacter", "\xED\xA0\xBD", 3, 3, false},
                                           // Bytes that start no valid sequence count one each.
                                           CountCase{"OverlongNul", "\xC0\x80", 2, 2, false},
                                           CountCase{"CutShortEuro", "\xE2\x82", 2, 2, false},
                                           CountCase{"BeyondLastCodePoint", "\xF4\x90\x80\x80", 4, 4, false},
                                           CountCase{"HighestCodePoint", "\xF4\x8F\xBF\xBF", 1, 2, true}),
                         [](const auto &info) { return std::string(info.param.name); });

struct LostCase {
    const char *name;
    std::string meant;
    std::string got;
    std::optional<size_t> position;
    uint32_t code_point;
};

class FirstLostCharacter : public ::testing::TestWithParam<LostCase> {};

TEST_P(FirstLostCharacter, FindsTheFirstCharacterThatDoesNotComeBack)
{
    const auto lost = first_lost_character(GetParam().meant, GetParam().got);
    ASSERT_EQ(lost.has_value(), GetParam().position.has_value());
    if (!lost) return;
    EXPECT_EQ(lost->position, *GetParam().position);
    EXPECT_EQ(lost->code_point, GetParam().code_point);
}

INSTANTIATE_TEST_SUITE_P(
    Cases, FirstLostCharacter,
    ::testing::Values(LostCase{"Same", "a b", "a b", std::nullopt, 0}, LostCase{"BothEmpty", "", "", std::nullopt, 0},
                      LostCase{"ExtraAtTheEnd", "ab", "abc", std::nullopt, 0},
                      LostCase{"SpaceReplaced", "a b",
                               "a\xC3\xA4"
                               "b",
                               2, 0x20},
                      LostCase{"DotlessIReplaced", "\xC4\xB1\xC3\xA7", "\xC3\xAC\xC3\xA7", 1, 0x131},
                      LostCase{"CutShort", "abc", "ab", 3, 0x63}, LostCase{"NothingCameBack", "\xC3\xA7", "", 1, 0xE7},
                      LostCase{"EmojiAfterMultiByte", "\xC3\xA7" + kGrinning, "\xC3\xA7" + kReplacement, 2, 0x1F600}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(DescribeLostCharacter, ShowsTheCharacterAndItsCode)
{
    EXPECT_EQ(describe({3, 0x131}), "character 3, '\xC4\xB1' (U+0131)");
    EXPECT_EQ(describe({1, 0x1F600}), "character 1, '" + kGrinning + "' (U+1F600)");
    // A control character printed as itself would break the line.
    EXPECT_EQ(describe({2, 0x0A}), "character 2, U+000A");
}

}  // namespace
}  // namespace smsutil::cli
