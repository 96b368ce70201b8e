#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "smsutil/sms_charset.h"
#include "support/log_fixture.hpp"

namespace {

struct CodingCase {
    const char *name;
    std::vector<uint8_t> text;  // terminated by the test
    int32_t coding;
    const char *decided_by;  // "coding by 0x%x" text, nullptr when nothing decides
};

class MessageCoding : public smsutil::test::LogTest, public ::testing::WithParamInterface<CodingCase> {};

TEST_P(MessageCoding, FirstDecisiveByteWins)
{
    const CodingCase &c = GetParam();
    std::vector<uint8_t> text = c.text;
    text.push_back(0);
    text.push_back(0xC0);  // past the terminator: must not be looked at
    text.push_back(0);
    EXPECT_EQ(check_message_coding(text.data()), c.coding);
#if SMSUTIL_TRACE_ENABLED
    if (c.decided_by != nullptr)
        EXPECT_TRUE(logged_by("check_message_coding", std::string("coding by ") + c.decided_by + "\n\n"));
    else
        EXPECT_FALSE(logged("coding by"));
    EXPECT_TRUE(logged_by("check_message_coding", "ret is " + std::to_string(c.coding) + "\n\n"));
#endif
}

INSTANTIATE_TEST_SUITE_P(Blocks, MessageCoding,
                         ::testing::Values(CodingCase{"Empty", {}, 0, nullptr},
                                           CodingCase{"PlainAscii", {'H', 'i', '!'}, 0, nullptr},
                                           CodingCase{"CommercialAt", {0x80, 0x7F}, 0, nullptr},
                                           CodingCase{"DefaultExtensionOnly", {0x81, 0x8B, 0x9F}, 0, nullptr},
                                           CodingCase{"TurkishLow", {0x41, 0xA0}, 1, "0xa0"},
                                           CodingCase{"TurkishHigh", {0xBF}, 1, "0xbf"},
                                           CodingCase{"SpanishLow", {0xC0}, 2, "0xc0"},
                                           CodingCase{"SpanishHigh", {0xDF}, 2, "0xdf"},
                                           CodingCase{"EmptyBlockLow", {0xE0}, 3, "0xe0"},
                                           CodingCase{"EmptyBlockHigh", {0xFF}, 3, "0xff"},
                                           CodingCase{"ExtensionThenSpanish", {0x85, 0xC3}, 2, "0xc3"},
                                           CodingCase{"TurkishBeforeSpanish", {0x41, 0xB0, 0xC0}, 1, "0xb0"},
                                           CodingCase{"SpanishBeforeTurkish", {0xD2, 0xA1}, 2, "0xd2"}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(MessageCodingArguments, MissingTextNeedsNoLanguage)
{
    EXPECT_EQ(check_message_coding(nullptr), 0);
}

}  // namespace
