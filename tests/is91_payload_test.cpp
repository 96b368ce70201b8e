#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <cstring>
#include <string>
#include <vector>

#include "cdma_records.hpp"
#include "smsutil/wms_cdma.h"

namespace {

using smsutil::test::empty_bearer_data;
using Values = std::vector<std::uint8_t>;

struct PayloadDecodeCase {
    const char *name;
    std::uint32_t type;
    Values values;
    std::uint32_t mask;
    std::uint8_t num_messages;
    std::uint32_t priority;
    std::string text;
    std::uint32_t is91ep_type;  // of the user data, when text is expected
};

void PrintTo(const PayloadDecodeCase &c, std::ostream *os) { *os << c.name; }

class Is91PayloadDecode : public ::testing::TestWithParam<PayloadDecodeCase> {};

TEST_P(Is91PayloadDecode, RebuildsTheRecord)
{
    const PayloadDecodeCase &c = GetParam();
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = 0xFFFF;
    bd.priority = 3;
    bd.language = 77;
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(c.type, static_cast<std::uint8_t>(c.values.size()), c.values.data(), &bd),
              WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.mask, c.mask);
    EXPECT_EQ(bd.alert_on_delivery, 1);
    EXPECT_EQ(bd.num_messages, c.num_messages);
    EXPECT_EQ(bd.priority, c.priority);
    EXPECT_EQ(bd.language, 77u);  // not carried, left alone
    if (bd.mask & WMS_MASK_BD_USER_DATA) {
        EXPECT_EQ(bd.user_data.encoding, WMS_ENCODING_IS91EP);
        EXPECT_EQ(bd.user_data.is91ep_type, c.is91ep_type);
        EXPECT_EQ(bd.user_data.num_fields, c.text.size());
        ASSERT_EQ(bd.user_data.data_len, c.text.size());
        EXPECT_EQ(std::string(reinterpret_cast<const char *>(bd.user_data.data), c.text.size()), c.text);
    }
}

constexpr std::uint32_t kAlertCount = WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS;

INSTANTIATE_TEST_SUITE_P(
    Payloads, Is91PayloadDecode,
    ::testing::Values(
        PayloadDecodeCase{"voice_mail_count_only", 130, {0x01, 0x02}, kAlertCount, 12, 3, "", 0},
        PayloadDecodeCase{"voice_mail_count_digits_use_low_nibble", 130, {0x31, 0x22}, kAlertCount, 12, 3, "", 0},
        PayloadDecodeCase{"voice_mail_too_short_counts_zero", 130, {0x04}, kAlertCount, 40, 3, "", 0},
        PayloadDecodeCase{"voice_mail_urgent", 130, {0x00, 0x05, 0x01}, kAlertCount | WMS_MASK_BD_PRIORITY, 5, 2, "", 0},
        PayloadDecodeCase{"voice_mail_normal", 130, {0x00, 0x05, 0x00}, kAlertCount | WMS_MASK_BD_PRIORITY, 5, 0, "", 0},
        PayloadDecodeCase{"voice_mail_text_without_marker", 130, {0x00, 0x05, 0x21, 0x28},
                          kAlertCount | WMS_MASK_BD_USER_DATA, 5, 3, "AH", 130},
        PayloadDecodeCase{"voice_mail_marker_then_text", 130, {0x00, 0x05, 0x01, 0x21},
                          kAlertCount | WMS_MASK_BD_PRIORITY | WMS_MASK_BD_USER_DATA, 5, 2, "A", 130},
        PayloadDecodeCase{"full_text_reads_as_short_message", 131, {0x28, 0x29},
                          WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3, "HI", 133},
        PayloadDecodeCase{"short_message", 133, {0x2F, 0x2B, 0x01}, WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3,
                          "OK!", 133},
        PayloadDecodeCase{"empty_short_message", 133, {}, WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA, 0, 3, "", 133}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Is91PayloadDecodeCallback, KeepsTheCountButCopies32Digits)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    std::memset(bd.callback.digits, 0xEE, sizeof bd.callback.digits);
    Values digits(40);
    for (std::size_t i = 0; i < digits.size(); ++i) digits[i] = static_cast<std::uint8_t>(i % 10);
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(132, 40, digits.data(), &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.mask, WMS_MASK_BD_ALERT | WMS_MASK_BD_CALLBACK);
    EXPECT_EQ(bd.callback.digit_mode, WMS_DIGIT_MODE_BCD);
    EXPECT_EQ(bd.callback.number_of_digits, 40);
    EXPECT_EQ(0, std::memcmp(bd.callback.digits, digits.data(), 32));
}

TEST(Is91PayloadDecodeLimits, UnknownTypesChangeNothing)
{
    const Values values{1, 2, 3};
    for (std::uint32_t type : {0u, 129u, 134u, 0x182u}) {
        wms_cdma_bearer_data bd = empty_bearer_data();
        bd.mask = 0x4;
        EXPECT_EQ(wms_ts_decode_IS91EP_payload(type, 3, values.data(), &bd), WMS_TS_STATUS_BAD_IS91EP_TYPE) << type;
        EXPECT_EQ(bd.mask, 0x4u);
        EXPECT_EQ(bd.alert_on_delivery, 0);
    }
}

TEST(Is91PayloadDecodeLimits, TextLongerThanTheRecordIsCut)
{
    Values values(255, 0x21);
    wms_cdma_bearer_data bd = empty_bearer_data();
    ASSERT_EQ(wms_ts_decode_IS91EP_payload(133, 255, values.data(), &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.user_data.data_len, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(bd.user_data.num_fields, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(bd.user_data.data[WMS_CDMA_USER_DATA_MAX - 1], 'A');
}

struct PayloadEncodeCase {
    const char *name;
    std::uint32_t type;
    std::uint32_t mask;
    std::uint8_t num_messages;
    std::string text;
    Values expected;
};

void PrintTo(const PayloadEncodeCase &c, std::ostream *os) { *os << c.name; }

class Is91PayloadEncode : public ::testing::TestWithParam<PayloadEncodeCase> {};

TEST_P(Is91PayloadEncode, GivesTheseValues)
{
    const PayloadEncodeCase &c = GetParam();
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = c.mask;
    bd.num_messages = c.num_messages;
    bd.user_data.is91ep_type = c.type;
    bd.user_data.num_fields = static_cast<std::uint8_t>(c.text.size());
    std::memcpy(bd.user_data.data, c.text.data(), c.text.size());
    wms_cdma_user_data out;
    std::memset(&out, 0xEE, sizeof out);
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.num_fields, c.expected.size());
    ASSERT_EQ(out.data_len, c.expected.size());
    EXPECT_EQ(Values(out.data, out.data + out.data_len), c.expected);
}

INSTANTIATE_TEST_SUITE_P(
    Payloads, Is91PayloadEncode,
    ::testing::Values(
        PayloadEncodeCase{"voice_mail_with_priority", 130, WMS_MASK_BD_PRIORITY, 7, "OK", {0, 7, 1, 0x2F, 0x2B}},
        PayloadEncodeCase{"voice_mail_without_priority", 130, 0, 42, "A", {4, 2, 0x21}},
        PayloadEncodeCase{"voice_mail_count_only", 130, 0, 0, "", {0, 0}},
        PayloadEncodeCase{"full_text", 131, 0, 0, " _", {0x00, 0x3F}},
        PayloadEncodeCase{"short_message", 133, 0, 0, "HI", {0x28, 0x29}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Is91PayloadEncodeCallback, CopiesAtMost32Digits)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.user_data.is91ep_type = 132;
    bd.callback.number_of_digits = 200;
    for (std::size_t i = 0; i < sizeof bd.callback.digits; ++i) bd.callback.digits[i] = static_cast<std::uint8_t>(i);
    wms_cdma_user_data out{};
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.data_len, 32);
    EXPECT_EQ(out.num_fields, 32);
    EXPECT_EQ(out.data[31], 31);
}

TEST(Is91PayloadEncodeLimits, UnknownTypeFillsNothing)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.user_data.is91ep_type = 134;
    bd.user_data.num_fields = 1;
    wms_cdma_user_data out;
    std::memset(&out, 0xEE, sizeof out);
    EXPECT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_BAD_IS91EP_TYPE);
    EXPECT_EQ(out.data_len, 0xEE);
    EXPECT_EQ(out.data[0], 0xEE);
}

TEST(Is91PayloadEncodeLimits, VoiceMailTextIsCutAtTheRecordsCapacity)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = WMS_MASK_BD_PRIORITY;
    bd.user_data.is91ep_type = 130;
    bd.user_data.num_fields = 255;  // more than data holds
    std::memset(bd.user_data.data, 'B', sizeof bd.user_data.data);
    wms_cdma_user_data out{};
    ASSERT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_OK);
    EXPECT_EQ(out.data_len, WMS_CDMA_USER_DATA_MAX);
    EXPECT_EQ(out.data[3], 'B' - 0x20);
    EXPECT_EQ(out.data[WMS_CDMA_USER_DATA_MAX - 1], 'B' - 0x20);
}

}  // namespace
