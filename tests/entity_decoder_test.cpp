#include <gtest/gtest.h>

#include <string>

#include "xml/xml_internal.hpp"
#include "xml_test_support.hpp"

namespace {

struct Decode {
    const char *name;
    const char *raw;
    bool ok;
    const char *decoded;
};

class EntityDecoder : public ::testing::TestWithParam<Decode> {};

TEST_P(EntityDecoder, DecodesWithinTheRange)
{
    const Decode &c = GetParam();
    const std::string raw = c.raw;
    char *out = reinterpret_cast<char *>(0x1);
    xmltest::HookScope hooks;
    ASSERT_EQ(smsutil::xml::copy_decoded(raw.data(), raw.size(), &out), c.ok) << raw;
    if (c.ok) {
        EXPECT_EQ(std::string(out), c.decoded);
        XML_Free(out);
    } else {
        EXPECT_EQ(out, reinterpret_cast<char *>(0x1));
    }
    EXPECT_EQ(hooks.live(), 0);
}

INSTANTIATE_TEST_SUITE_P(
    References, EntityDecoder,
    ::testing::Values(Decode{"Plain", "abc", true, "abc"}, Decode{"Named", "&amp;&lt;&gt;&apos;&quot;", true, "&<>'\""},
                      Decode{"Decimal", "&#65;&#0066;", true, "AB"}, Decode{"HexBothCases", "&#x4a;&#x4A;", true, "JJ"},
                      Decode{"TwoBytes", "&#xE9;", true, "\xC3\xA9"}, Decode{"ThreeBytes", "&#xFFFD;", true, "\xEF\xBF\xBD"},
                      Decode{"FourBytes", "&#x10FFFF;", true, "\xF4\x8F\xBF\xBF"},
                      Decode{"AllowedControls", "&#9;&#10;&#13;", true, "\t\n\r"},
                      Decode{"Zero", "&#0;", false, ""}, Decode{"Empty", "&#;", false, ""},
                      Decode{"OtherControl", "&#1;", false, ""}, Decode{"Surrogate", "&#xDFFF;", false, ""},
                      Decode{"NonCharacter", "&#xFFFE;", false, ""}, Decode{"AboveRange", "&#x110000;", false, ""},
                      Decode{"HugeDecimal", "&#99999999999999999999;", false, ""},
                      Decode{"UpperX", "&#X41;", false, ""}, Decode{"BadDigit", "&#6a;", false, ""},
                      Decode{"Unterminated", "&#65", false, ""}, Decode{"UnknownName", "&nbsp;", false, ""},
                      Decode{"LoneAmpersand", "a&b", false, ""}, Decode{"CutNamed", "&amp", false, ""}),
    xmltest::case_name<Decode>);

// The range, not the terminator, bounds an entity.
TEST(EntityDecoderRange, EntityRunningPastTheRangeFails)
{
    const char text[] = "&amp;";
    char *out = nullptr;
    EXPECT_FALSE(smsutil::xml::copy_decoded(text, 4, &out));
    EXPECT_TRUE(smsutil::xml::copy_decoded(text, 0, &out));
    EXPECT_EQ(out, nullptr);
}

}  // namespace
