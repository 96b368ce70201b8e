#include <gtest/gtest.h>

#include <string>

#include "xml_test_support.hpp"

namespace {

class MemBuf : public ::testing::Test {
protected:
    void SetUp() override { XML_MembufInit(&buf_); }
    void TearDown() override { XML_MembufDestroy(&buf_); }
    std::string text() const { return buf_.data != nullptr ? std::string(buf_.data, buf_.length) : ""; }
    XML_MemBuf buf_{};
};

TEST_F(MemBuf, InitialisedEmpty)
{
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(buf_.length, 0u);
    EXPECT_EQ(buf_.capacity, 0u);
    EXPECT_EQ(buf_.growBy, 1024u);
}

TEST_F(MemBuf, GrowsInSteps)
{
    const char byte = 'x';
    ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u);
    for (int i = 1; i < 1024; ++i) ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u);
    ASSERT_EQ(XML_MemBufAppend(&buf_, &byte), XML_OK);
    EXPECT_EQ(buf_.capacity, 2048u);
    EXPECT_EQ(buf_.length, 1025u);
    EXPECT_EQ(buf_.data[1025], '\0');
}

TEST_F(MemBuf, LargeInsertionGrowsByItsOwnSize)
{
    const std::string big(3000, 'b');
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, "a"), XML_OK);
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
    EXPECT_EQ(buf_.capacity, 1024u + 3000u);
    EXPECT_EQ(text(), "a" + big);
}

struct Assign {
    const char *name;
    uint32_t fill;      // bytes held before the assignment
    uint32_t capacity;  // capacity before
    uint32_t assigned;
    uint32_t expected_capacity;
};

class MemBufAssign : public MemBuf, public ::testing::WithParamInterface<Assign> {};

TEST_P(MemBufAssign, ShrinksOnlyBeyondOneStep)
{
    const Assign &c = GetParam();
    XML_MemBuf &buf = buf_;
    const std::string fill(c.fill, 'f');
    ASSERT_EQ(XML_MemBufAppendStr(&buf, std::string(c.capacity, 'c').c_str()), XML_OK);
    ASSERT_EQ(buf.capacity, c.capacity);
    ASSERT_EQ(XML_MemBufAssignStr(&buf, fill.c_str()), XML_OK);
    ASSERT_EQ(buf.capacity, c.capacity);
    const std::string value(c.assigned, 'v');
    ASSERT_EQ(XML_MemBufAssign(&buf, value.c_str(), c.assigned), XML_OK);
    EXPECT_EQ(buf.capacity, c.expected_capacity);
    EXPECT_EQ(buf.length, c.assigned);
    EXPECT_EQ(std::string(buf.data), value);
}

INSTANTIATE_TEST_SUITE_P(Capacity, MemBufAssign,
                         ::testing::Values(Assign{"ShrinksLargeBuffer", 4000, 4096, 10, 1034},
                                           Assign{"KeepsWithinOneStep", 1030, 1030, 10, 1030},
                                           Assign{"GrowsByTheLargerOfStepAndExtra", 10, 1030, 2000, 3020},
                                           Assign{"SameLengthUnchanged", 4000, 4096, 4000, 4096}),
                         xmltest::case_name<Assign>);

TEST_F(MemBuf, InsertAtPositions)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "bc"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, "a", 1, 0), XML_OK);
    EXPECT_EQ(text(), "abc");
    ASSERT_EQ(XML_MemBufInsert(&buf_, "XY", 2, 2), XML_OK);
    EXPECT_EQ(text(), "abXYc");
    ASSERT_EQ(XML_MemBufInsert(&buf_, "!", 1, 5), XML_OK);
    EXPECT_EQ(text(), "abXYc!");
    EXPECT_EQ(XML_MemBufInsert(&buf_, "z", 1, 7), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufInsert(&buf_, nullptr, 1, 0), XML_OK);
    EXPECT_EQ(XML_MemBufInsert(&buf_, "z", 0, 0), XML_OK);
    EXPECT_EQ(text(), "abXYc!");
    EXPECT_EQ(XML_MemBufInsert(nullptr, "z", 1, 0), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAppend(nullptr, "z"), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAppendStr(nullptr, "z"), XML_ERR_PARAM);
    EXPECT_EQ(XML_MemBufAssign(nullptr, "z", 1), XML_ERR_PARAM);
}

// Inserting or assigning a part of the buffer itself, also across a
// reallocation that moves the bytes.
TEST_F(MemBuf, SourceInsideTheBuffer)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abcdef"), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data + 1, 4, 3), XML_OK);
    EXPECT_EQ(text(), "abcbcdedef");
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data, 10, 0), XML_OK);
    EXPECT_EQ(text(), "abcbcdedefabcbcdedef");
    const std::string big(2000, 'z');
    ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
    ASSERT_EQ(XML_MemBufInsert(&buf_, buf_.data + 20, 2000, 0), XML_OK);
    EXPECT_EQ(text(), big + "abcbcdedefabcbcdedef" + big);
    ASSERT_EQ(XML_MemBufAssign(&buf_, buf_.data + 2000, 10), XML_OK);
    EXPECT_EQ(text(), "abcbcdedef");
}

TEST_F(MemBuf, NullSourceAssignEmpties)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "abc"), XML_OK);
    ASSERT_EQ(XML_MemBufAssign(&buf_, nullptr, 3), XML_OK);
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(buf_.length, 0u);
    EXPECT_EQ(buf_.capacity, 0u);
}

TEST_F(MemBuf, ZeroBytesToNeverGrownBufferAllocatesNothing)
{
    xmltest::HookScope hooks;
    ASSERT_EQ(XML_MemBufAssign(&buf_, "abc", 0), XML_OK);
    EXPECT_EQ(buf_.data, nullptr);
    EXPECT_EQ(buf_.length, 0u);
    EXPECT_EQ(hooks.requests(), 0);
}

void *realloc_never(void *, size_t) { return nullptr; }

TEST_F(MemBuf, GrowthFallsBackToExactSizeThenFails)
{
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "keep"), XML_OK);
    const std::string big(5000, 'b');
    {
        xmltest::HookScope hooks(1);  // the step fails, the exact-size retry not
        ASSERT_EQ(XML_MemBufAppendStr(&buf_, big.c_str()), XML_OK);
        EXPECT_EQ(buf_.capacity, 5004u);
        EXPECT_EQ(hooks.requests(), 2);
    }
    ASSERT_EQ(XML_MemBufAssignStr(&buf_, "keep"), XML_OK);
    xmltest::HookScope hooks;
    NDL_XML_RegMemFunc(xmltest::test_malloc, xmltest::test_calloc, xmltest::test_free, realloc_never);
    const std::string huge(9000, 'h');
    EXPECT_EQ(XML_MemBufAppendStr(&buf_, huge.c_str()), XML_ERR_NO_MEMORY);
    EXPECT_EQ(text(), "keep");
    EXPECT_EQ(XML_MemBufInsert(&buf_, huge.c_str(), 9000, 2), XML_ERR_NO_MEMORY);
    EXPECT_EQ(XML_MemBufAssign(&buf_, huge.c_str(), 9000), XML_ERR_NO_MEMORY);
    EXPECT_EQ(text(), "keep");
    EXPECT_EQ(buf_.data[4], '\0');
}

}  // namespace
