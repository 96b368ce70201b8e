#include <gtest/gtest.h>

#include <cstring>

#include "xml_test_support.hpp"

namespace {

struct Read {
    const char *name;
    uint32_t type;
    const char *text;
    bool ok;
    int64_t expected;  // read back at the type's width and signedness
};

int64_t read_back(uint32_t type, const unsigned char *raw)
{
    switch (type) {
    case XML_VAL_INT32: { int32_t v; std::memcpy(&v, raw, 4); return v; }
    case XML_VAL_BOOL:
    case XML_VAL_UINT32: { uint32_t v; std::memcpy(&v, raw, 4); return v; }
    case XML_VAL_INT16: { int16_t v; std::memcpy(&v, raw, 2); return v; }
    case XML_VAL_UINT16: { uint16_t v; std::memcpy(&v, raw, 2); return v; }
    case XML_VAL_INT8: { int8_t v; std::memcpy(&v, raw, 1); return v; }
    default: return raw[0];
    }
}

std::size_t width(uint32_t type)
{
    return type <= XML_VAL_UINT32 ? 4 : type <= XML_VAL_UINT16 ? 2 : 1;
}

class TypedRead : public ::testing::TestWithParam<Read> {};

// The variable is written at the type's width only, and only on success.
TEST_P(TypedRead, ParsesWithinRange)
{
    const Read &c = GetParam();
    xmltest::Tree tree = xmltest::parse("<r/>");
    ASSERT_EQ(NDL_XML_SetNode(tree.get(), nullptr, nullptr, c.text), XML_OK);
    unsigned char raw[8];
    std::memset(raw, 0xA5, sizeof raw);
    const uint32_t rc = NDL_XML_GetNodeValueEx(tree.get(), c.type, raw);
    if (!c.ok) {
        EXPECT_EQ(rc, XML_ERR_PARAM);
        for (unsigned char b : raw) EXPECT_EQ(b, 0xA5);
        return;
    }
    ASSERT_EQ(rc, XML_OK);
    EXPECT_EQ(read_back(c.type, raw), c.expected);
    for (std::size_t i = width(c.type); i < sizeof raw; ++i) EXPECT_EQ(raw[i], 0xA5) << i;
}

INSTANTIATE_TEST_SUITE_P(
    Boundaries, TypedRead,
    ::testing::Values(
        Read{"BoolTrue", XML_VAL_BOOL, "true", true, 1}, Read{"BoolOne", XML_VAL_BOOL, "1", true, 1},
        Read{"BoolFalse", XML_VAL_BOOL, "false", true, 0}, Read{"BoolZero", XML_VAL_BOOL, "0", true, 0},
        Read{"BoolUpperCase", XML_VAL_BOOL, "TRUE", false, 0}, Read{"BoolTwo", XML_VAL_BOOL, "2", false, 0},
        Read{"BoolPadded", XML_VAL_BOOL, " 1", false, 0},
        Read{"Uint32Max", XML_VAL_UINT32, "4294967295", true, 4294967295LL},
        Read{"Uint32Over", XML_VAL_UINT32, "4294967296", false, 0},
        Read{"Uint32MiddleBelow", XML_VAL_UINT32, "4199999999", true, 4199999999LL},
        Read{"Uint32MiddleAbove", XML_VAL_UINT32, "4300000000", false, 0},
        Read{"Uint32Negative", XML_VAL_UINT32, "-1", false, 0}, Read{"Uint32Plus", XML_VAL_UINT32, "+1", false, 0},
        Read{"Int32Min", XML_VAL_INT32, "-2147483648", true, -2147483648LL},
        Read{"Int32Max", XML_VAL_INT32, "2147483647", true, 2147483647LL},
        Read{"Int32Over", XML_VAL_INT32, "2147483648", false, 0},
        Read{"Int32Under", XML_VAL_INT32, "-2147483649", false, 0},
        Read{"Int32Plus", XML_VAL_INT32, "+7", true, 7}, Read{"Int32LeadingZeros", XML_VAL_INT32, "007", true, 7},
        Read{"Int32MinusZero", XML_VAL_INT32, "-0", true, 0}, Read{"Int32AllZeros", XML_VAL_INT32, "000", true, 0},
        Read{"Int32Empty", XML_VAL_INT32, "", false, 0}, Read{"Int32LeadingSpace", XML_VAL_INT32, " 7", false, 0},
        Read{"Int32TrailingSpace", XML_VAL_INT32, "7 ", false, 0},
        Read{"Int32SignOnly", XML_VAL_INT32, "-", false, 0}, Read{"Int32TwoSigns", XML_VAL_INT32, "+-7", false, 0},
        Read{"Int32Hex", XML_VAL_INT32, "0x10", false, 0},
        Read{"Int16Max", XML_VAL_INT16, "32767", true, 32767}, Read{"Int16Min", XML_VAL_INT16, "-32768", true, -32768},
        Read{"Int16Over", XML_VAL_INT16, "32768", false, 0}, Read{"Int16Under", XML_VAL_INT16, "-32769", false, 0},
        Read{"Uint16Max", XML_VAL_UINT16, "65535", true, 65535}, Read{"Uint16Over", XML_VAL_UINT16, "65536", false, 0},
        Read{"Int8Min", XML_VAL_INT8, "-128", true, -128}, Read{"Int8Max", XML_VAL_INT8, "127", true, 127},
        Read{"Int8Over", XML_VAL_INT8, "128", false, 0}, Read{"Int8Under", XML_VAL_INT8, "-129", false, 0},
        Read{"Uint8Max", XML_VAL_UINT8, "255", true, 255}, Read{"Uint8Over", XML_VAL_UINT8, "256", false, 0},
        Read{"Uint8Negative", XML_VAL_UINT8, "-1", false, 0},
        Read{"TwentyFiveDigits", XML_VAL_UINT32, "1000000000000000000000000", false, 0},
        Read{"SeventeenSignificant", XML_VAL_UINT32, "10000000000000000", false, 0},
        Read{"SeventeenWithZeros", XML_VAL_UINT8, "00000000000000001", true, 1},
        Read{"ThirtyZerosThenOne", XML_VAL_INT8, "0000000000000000000000000000001", true, 1}),
    xmltest::case_name<Read>);

TEST(TypedValues, RefusedArguments)
{
    xmltest::Tree tree = xmltest::parse("<r a='5'>5</r>");
    uint32_t out = 0;
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(nullptr, XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    xmltest::Tree empty = xmltest::parse("<r/>");
    EXPECT_EQ(NDL_XML_GetNodeValueEx(empty.get(), XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), 7, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), XML_VAL_UINT32, nullptr), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "zz", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    EXPECT_EQ(NDL_XML_GetAttrValueEx(tree.get(), "", "a", XML_VAL_UINT32, &out), XML_ERR_NOT_FOUND);
    ASSERT_EQ(NDL_XML_GetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_UINT32, &out), XML_OK);
    EXPECT_EQ(out, 5u);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "", XML_VAL_UINT32, &out), XML_ERR_PARAM);
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "b", 9, &out), XML_ERR_PARAM);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=5}(5)");
}

struct Write {
    const char *name;
    uint32_t type;
    int64_t value;  // stored at the type's width
    const char *text;
};

class TypedWrite : public ::testing::TestWithParam<Write> {};

TEST_P(TypedWrite, FormatsAtTheTypesWidth)
{
    const Write &c = GetParam();
    unsigned char raw[8];
    std::memset(raw, 0x7F, sizeof raw);  // bytes beyond the width must not matter
    const uint64_t bits = static_cast<uint64_t>(c.value);
    std::memcpy(raw, &bits, width(c.type));
    xmltest::Tree tree = xmltest::parse("<r>old</r>");
    ASSERT_EQ(NDL_XML_SetNodeValueEx(tree.get(), c.type, raw), XML_OK);
    EXPECT_STREQ(tree->value, c.text);
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "p", "a", c.type, raw), XML_OK);
    EXPECT_STREQ(tree->firstAttr->value, c.text);
}

INSTANTIATE_TEST_SUITE_P(Formats, TypedWrite,
                         ::testing::Values(Write{"BoolNonZero", XML_VAL_BOOL, 0x100, "true"},
                                           Write{"BoolZero", XML_VAL_BOOL, 0, "false"},
                                           Write{"Int32Min", XML_VAL_INT32, INT32_MIN, "-2147483648"},
                                           Write{"Uint32Max", XML_VAL_UINT32, UINT32_MAX, "4294967295"},
                                           Write{"Int16Negative", XML_VAL_INT16, -300, "-300"},
                                           Write{"Uint16Max", XML_VAL_UINT16, 65535, "65535"},
                                           Write{"Int8Negative", XML_VAL_INT8, -5, "-5"},
                                           Write{"Uint8High", XML_VAL_UINT8, 251, "251"}),
                         xmltest::case_name<Write>);

TEST(TypedValues, SetAttrValueExAppendsOrUpdates)
{
    xmltest::Tree tree = xmltest::parse("<r a='1' b='2'/>");
    const int32_t v = 42;
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "a", XML_VAL_INT32, &v), XML_OK);
    ASSERT_EQ(NDL_XML_SetAttrValueEx(tree.get(), nullptr, "c", XML_VAL_INT32, &v), XML_OK);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=42,b=2,c=42}");
    // "" finds no unprefixed attribute, and the new one collides with it.
    EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "", "b", XML_VAL_INT32, &v), XML_ERR_EXISTS);
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=42,b=2,c=42}");
}

TEST(TypedValues, FailedWriteLeavesNoValue)
{
    xmltest::Tree tree = xmltest::parse("<r a='1'>old</r>");
    const uint32_t v = 7;
    xmltest::HookScope hooks(1);
    EXPECT_EQ(NDL_XML_SetNodeValueEx(tree.get(), XML_VAL_UINT32, &v), XML_ERR_NO_MEMORY);
    EXPECT_EQ(tree->value, nullptr);
    for (long k = 1; k <= 3; ++k) {
        xmltest::HookScope scope(k);
        EXPECT_EQ(NDL_XML_SetAttrValueEx(tree.get(), "p", "new", XML_VAL_UINT32, &v), XML_ERR_NO_MEMORY);
        EXPECT_EQ(scope.live(), 0);
    }
    EXPECT_EQ(xmltest::describe(tree.get()), "r{a=1}");
}

}  // namespace
