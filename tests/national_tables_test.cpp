#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "pdu/national_tables.hpp"

namespace {

using namespace smsutil::pdu;

const std::string kTableFile = std::string(SMSUTIL_TABLE_DATA_DIR) + "/gsm7-national-tables.json";

// The 128 entries of `section`/`name` in the table file, kNoCharacter for
// null; empty when the list is not there or not 128 entries long.  The
// file's layout is fixed and simple enough that a scan for the key and the
// bracketed list after it reads it.
std::vector<std::uint16_t> file_row(const std::string &text, const std::string &section, const std::string &name)
{
    std::vector<std::uint16_t> out;
    const std::size_t s = text.find('"' + section + '"');
    const std::size_t k = s == std::string::npos ? s : text.find('"' + name + '"', s);
    const std::size_t open = k == std::string::npos ? k : text.find('[', k);
    const std::size_t close = open == std::string::npos ? open : text.find(']', open);
    if (close == std::string::npos) return out;
    std::istringstream list(text.substr(open + 1, close - open - 1));
    std::string item;
    while (std::getline(list, item, ',')) {
        unsigned v = 0;
        if (item.find("null") != std::string::npos)
            out.push_back(kNoCharacter);
        else if (std::sscanf(item.c_str(), " \"U+%x\"", &v) == 1)
            out.push_back(static_cast<std::uint16_t>(v));
        else
            return {};
    }
    return out.size() == 128 ? out : std::vector<std::uint16_t>{};
}

struct TableCase {
    const char *section;
    const char *name;
    const Row &row;
};

TEST(NationalTables, EveryEntryMatchesTheTableFile)
{
    std::ifstream file(kTableFile);
    if (!file) GTEST_SKIP() << "no table file at " << kTableFile;
    std::stringstream buf;
    buf << file.rdbuf();
    const std::string text = buf.str();
    const TableCase cases[] = {
        {"locking_shift", "default", locking_row(kDefaultLanguage)},
        {"locking_shift", "turkish", locking_row(kTurkish)},
        {"locking_shift", "portuguese", locking_row(kPortuguese)},
        {"single_shift", "default", single_shift_row(kDefaultLanguage)},
        {"single_shift", "turkish", single_shift_row(kTurkish)},
        {"single_shift", "spanish", single_shift_row(kSpanish)},
        {"single_shift", "portuguese", single_shift_row(kPortuguese)},
    };
    for (const TableCase &c : cases) {
        const std::vector<std::uint16_t> want = file_row(text, c.section, c.name);
        ASSERT_EQ(want.size(), 128u) << c.section << "/" << c.name;
        for (std::size_t code = 0; code < 128; ++code)
            EXPECT_EQ(c.row[code], want[code]) << c.section << "/" << c.name << " code " << code;
    }
}

// Languages without a table of a kind fall back to the default one.
TEST(NationalTables, LanguagesWithoutATableUseTheDefault)
{
    EXPECT_EQ(&locking_row(kSpanish), &locking_row(kDefaultLanguage));
    EXPECT_EQ(&locking_row(4), &locking_row(kDefaultLanguage));
    EXPECT_EQ(&single_shift_row(4), &single_shift_row(kDefaultLanguage));
    EXPECT_NE(&locking_row(kPortuguese), &locking_row(kTurkish));
    EXPECT_NE(&single_shift_row(kSpanish), &single_shift_row(kDefaultLanguage));
}

// Every character of every table is found again at its code.
TEST(NationalTables, InverseGivesEveryCodeBack)
{
    for (unsigned id = 0; id < kLanguageCount + 1; ++id)
        for (std::uint8_t code = 0; code < 128; ++code) {
            if (const std::uint16_t v = locking_row(id)[code]; v != kNoCharacter) {
                EXPECT_EQ(locking_code(id, v), code) << "locking " << id << " code " << int(code);
            }
            if (const std::uint16_t v = single_shift_row(id)[code]; v != kNoCharacter) {
                EXPECT_EQ(single_shift_code(id, v), code) << "single " << id << " code " << int(code);
            }
        }
}

TEST(NationalTables, InverseFindsNothingOutsideATable)
{
    struct Case {
        char32_t code_point;
        unsigned id;
        bool single;
        std::uint8_t want;
    };
    const Case cases[] = {
        {U'`', kDefaultLanguage, false, kNoCode},
        {U'`', kPortuguese, false, 0x7D},
        {U'\u20AC', kDefaultLanguage, false, kNoCode},
        {U'\u20AC', kDefaultLanguage, true, 0x65},
        {U'\u0131', kTurkish, false, 0x07},
        {U'\u0131', kSpanish, true, kNoCode},
        {U'\u221E', kPortuguese, false, 0x15},
        {U'\u221E', kTurkish, false, kNoCode},
        {U'\u0132', kTurkish, true, kNoCode},
        {U'\uFFFF', kDefaultLanguage, false, kNoCode},
        {U'\U0001F600', kDefaultLanguage, false, kNoCode},
        {U'\x1B', kDefaultLanguage, false, kNoCode},
        {U'\f', kDefaultLanguage, true, 0x0A},
        {U'A', 9, false, 0x41},
    };
    for (const Case &c : cases)
        EXPECT_EQ(c.single ? single_shift_code(c.id, c.code_point) : locking_code(c.id, c.code_point), c.want)
            << std::hex << static_cast<std::uint32_t>(c.code_point) << " in " << c.id << (c.single ? " single" : "");
}

}  // namespace
