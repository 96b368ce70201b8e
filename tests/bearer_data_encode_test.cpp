#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <functional>
#include <string>
#include <vector>

#include "cdma_records.hpp"
#include "smsutil/wms_cdma.h"
#include "support/alloc_counter.hpp"

// The records cross the C boundary packed, in this order.
static_assert(sizeof(wms_cdma_user_data) == WMS_SIZEOF_CDMA_USER_DATA);
static_assert(sizeof(wms_cdma_bearer_data) == WMS_SIZEOF_CDMA_BEARER_DATA);
static_assert(offsetof(wms_cdma_user_data, data_len) == 8);
static_assert(offsetof(wms_cdma_user_data, data) == 10);
static_assert(offsetof(wms_cdma_user_data, num_fields) == 239);
static_assert(offsetof(wms_cdma_bearer_data, message_id) == 4);
static_assert(offsetof(wms_cdma_bearer_data, user_data) == 12);
static_assert(offsetof(wms_cdma_bearer_data, user_response) == 252);
static_assert(offsetof(wms_cdma_bearer_data, mc_time) == 253);
static_assert(offsetof(wms_cdma_bearer_data, deferred_relative) == 281);
static_assert(offsetof(wms_cdma_bearer_data, priority) == 288);
static_assert(offsetof(wms_cdma_bearer_data, user_ack_requested) == 296);
static_assert(offsetof(wms_cdma_bearer_data, language) == 300);
static_assert(offsetof(wms_cdma_bearer_data, callback) == 304);
static_assert(offsetof(wms_cdma_bearer_data, display_mode) == 341);

namespace {

using smsutil::test::empty_bearer_data;
using smsutil::test::octets_of;
using smsutil::test::subparameter_ids;
using Octets = std::vector<std::uint8_t>;

struct EncodeCase {
    const char *name;
    std::function<void(wms_cdma_bearer_data &)> fill;
    Octets expected;
};

void PrintTo(const EncodeCase &c, std::ostream *os) { *os << c.name; }

class BearerDataEncode : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(BearerDataEncode, WritesTheseOctets)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    GetParam().fill(bd);
    wms_raw_tpdu raw;
    std::memset(&raw, 0x5A, sizeof raw);
    ASSERT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(raw.format, 0);
    EXPECT_EQ(octets_of(raw), GetParam().expected);
    for (std::size_t i = raw.len; i < sizeof raw.data; ++i) ASSERT_EQ(raw.data[i], 0) << i;
}

void text_7bit_ab(wms_cdma_bearer_data &bd)
{
    bd.mask = WMS_MASK_BD_USER_DATA;
    bd.user_data.encoding = WMS_ENCODING_ASCII;
    bd.user_data.num_fields = 2;
    bd.user_data.data_len = 2;
    bd.user_data.padding_bits = 2;
    bd.user_data.data[0] = 0x83;
    bd.user_data.data[1] = 0x08;
}

void is91(wms_cdma_bearer_data &bd, std::uint32_t type, const char *text)
{
    bd.mask |= WMS_MASK_BD_USER_DATA;
    bd.user_data.encoding = WMS_ENCODING_IS91EP;
    bd.user_data.is91ep_type = type;
    const auto n = static_cast<std::uint8_t>(std::strlen(text));
    std::memcpy(bd.user_data.data, text, n);
    bd.user_data.num_fields = n;
    bd.user_data.data_len = n;
}

INSTANTIATE_TEST_SUITE_P(
    Subparameters, BearerDataEncode,
    ::testing::Values(
        EncodeCase{"empty_mask_writes_nothing", [](auto &) {}, {}},
        EncodeCase{"message_identifier",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_MSG_ID;
                       bd.message_id.type = 2;
                       bd.message_id.id_number = 0x1234;
                   },
                   {0x00, 0x03, 0x21, 0x23, 0x40}},
        EncodeCase{"identifier_fields_cut_to_width",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_MSG_ID;
                       bd.message_id.type = 0x12;
                       bd.message_id.id_number = 0xABCDE;
                   },
                   {0x00, 0x03, 0x2B, 0xCD, 0xE0}},
        EncodeCase{"alert_written_twice", [](auto &bd) { bd.mask = WMS_MASK_BD_ALERT; },
                   {0x0C, 0x00, 0x0C, 0x00}},
        EncodeCase{"display_mode_top_bits",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_DISPLAY_MODE; bd.display_mode = 3; },
                   {0x0F, 0x01, 0xC0}},
        EncodeCase{"priority_and_privacy",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_PRIORITY | WMS_MASK_BD_PRIVACY;
                       bd.priority = 2;
                       bd.privacy = 1;
                   },
                   {0x08, 0x01, 0x80, 0x09, 0x01, 0x40}},
        EncodeCase{"reply_option_user_ack_only",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_REPLY_OPTION; bd.user_ack_requested = 1; },
                   {0x0A, 0x01, 0x80}},
        EncodeCase{"number_of_messages_as_two_digits",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_NUM_OF_MSGS; bd.num_messages = 42; },
                   {0x0B, 0x01, 0x42}},
        EncodeCase{"language_low_octet",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_LANGUAGE; bd.language = 0x1FF; },
                   {0x0D, 0x01, 0xFF}},
        EncodeCase{"user_response",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_USER_RESP; bd.user_response = 0x7E; },
                   {0x02, 0x01, 0x7E}},
        EncodeCase{"absolute_times_six_octets",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_MC_TIME | WMS_MASK_BD_DEFER_ABS;
                       bd.mc_time = wms_timestamp{0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 8};
                       bd.deferred_absolute = wms_timestamp{0x27, 0x01, 0x02, 0x03, 0x04, 0x05, 0};
                   },
                   {0x03, 0x06, 0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 0x06, 0x06, 0x27, 0x01, 0x02, 0x03, 0x04, 0x05}},
        EncodeCase{"relative_validity_one_day",
                   [](auto &bd) { bd.mask = WMS_MASK_BD_VALID_REL; bd.validity_relative.day = 0x01; },
                   {0x05, 0x01, 167}},
        EncodeCase{"octet_user_data",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_USER_DATA;
                       bd.user_data.num_fields = 2;
                       bd.user_data.data_len = 2;
                       bd.user_data.data[0] = 'H';
                       bd.user_data.data[1] = 'i';
                   },
                   {0x01, 0x04, 0x00, 0x12, 0x43, 0x48}},
        EncodeCase{"packed_7bit_user_data_drops_padding", text_7bit_ab, {0x01, 0x04, 0x10, 0x14, 0x18, 0x40}},
        EncodeCase{"padding_never_reaches_back_into_the_header",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_USER_DATA;
                       bd.user_data.num_fields = 0xFF;
                       bd.user_data.padding_bits = 200;
                   },
                   {0x01, 0x02, 0x07, 0xF8}},
        EncodeCase{"is91_text", [](auto &bd) { is91(bd, WMS_IS91EP_SHORT_MESSAGE, "OK"); },
                   {0x01, 0x05, 0x0C, 0x28, 0x15, 0xF5, 0x80}},
        EncodeCase{"is91_voice_mail_carries_priority_and_count",
                   [](auto &bd) {
                       is91(bd, WMS_IS91EP_VOICE_MAIL, "OK");
                       bd.mask |= WMS_MASK_BD_PRIORITY | WMS_MASK_BD_NUM_OF_MSGS;
                       bd.num_messages = 7;
                       bd.priority = 2;
                   },
                   {0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60}},
        EncodeCase{"is91_callback_order_without_user_data_bit",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_CALLBACK;
                       bd.user_data.encoding = WMS_ENCODING_IS91EP;
                       bd.user_data.is91ep_type = WMS_IS91EP_CLI_ORDER;
                       bd.callback.number_of_digits = 3;
                       bd.callback.digits[0] = 5;
                       bd.callback.digits[1] = 5;
                       bd.callback.digits[2] = 1;
                   },
                   {0x01, 0x05, 0x0C, 0x20, 0x1A, 0xA8, 0x80}},
        EncodeCase{"callback_dtmf_digits",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_CALLBACK;
                       bd.callback.number_of_digits = 3;
                       bd.callback.digits[0] = 1;
                       bd.callback.digits[1] = 2;
                       bd.callback.digits[2] = 3;
                   },
                   {0x0E, 0x03, 0x01, 0x89, 0x18}},
        EncodeCase{"callback_characters",
                   [](auto &bd) {
                       bd.mask = WMS_MASK_BD_CALLBACK;
                       bd.callback.digit_mode = WMS_DIGIT_MODE_CHAR;
                       bd.callback.number_type = 1;
                       bd.callback.number_plan = 1;
                       bd.callback.number_of_digits = 2;
                       bd.callback.digits[0] = '4';
                       bd.callback.digits[1] = '5';
                   },
                   {0x0E, 0x04, 0x91, 0x02, 0x34, 0x35}}),
    [](const auto &info) { return std::string(info.param.name); });

struct OrderCase {
    const char *name;
    std::uint32_t is91_type;  // 0: no IS-91 payload
    Octets ids;
};

void PrintTo(const OrderCase &c, std::ostream *os) { *os << c.name; }

class BearerDataEncodeOrder : public ::testing::TestWithParam<OrderCase> {};

// With every mask bit set, each subparameter appears once in its place,
// except those an IS-91 payload stands for.
TEST_P(BearerDataEncodeOrder, WritesTheseSubparameters)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    if (GetParam().is91_type != 0) is91(bd, GetParam().is91_type, "");
    bd.mask = 0xFFFF;
    wms_raw_tpdu raw{};
    ASSERT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(subparameter_ids(raw), GetParam().ids);
}

INSTANTIATE_TEST_SUITE_P(
    FullMask, BearerDataEncodeOrder,
    ::testing::Values(
        OrderCase{"every_subparameter", 0, {0, 12, 15, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14}},
        OrderCase{"voice_mail_leaves_out_priority_and_count", WMS_IS91EP_VOICE_MAIL,
                  {0, 12, 15, 1, 2, 3, 4, 5, 6, 7, 9, 10, 12, 13, 14}},
        OrderCase{"callback_order_ends_before_the_callback", WMS_IS91EP_CLI_ORDER,
                  {0, 12, 15, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(BearerDataEncodeLimits, CallbackNeverWritesMoreThan32Digits)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = WMS_MASK_BD_CALLBACK;
    bd.callback.number_of_digits = 40;
    for (auto &d : bd.callback.digits) d = 9;
    wms_raw_tpdu raw{};
    ASSERT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    // 1 + 8 + 32 x 4 bits: 137 bits, 18 octets.
    ASSERT_EQ(std::uint32_t{raw.len}, 20u);
    EXPECT_EQ(raw.data[1], 18);
    EXPECT_EQ(b_unpackb(raw.data, 16 + 1, 8), 32);
}

struct FailCase {
    const char *name;
    std::function<void(wms_cdma_bearer_data &)> fill;
    wms_status_e_type status;
    std::uint32_t len;  // on failure: octets of the subparameters before the failing one
};

void PrintTo(const FailCase &c, std::ostream *os) { *os << c.name; }

class BearerDataEncodeFailure : public ::testing::TestWithParam<FailCase> {};

TEST_P(BearerDataEncodeFailure, StopsWithThisResult)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    GetParam().fill(bd);
    wms_raw_tpdu raw{};
    EXPECT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), GetParam().status);
    EXPECT_EQ(std::uint32_t{raw.len}, GetParam().len);
    for (std::size_t i = raw.len; i < sizeof raw.data; ++i) ASSERT_EQ(raw.data[i], 0) << i;
}

void with_id(wms_cdma_bearer_data &bd) { bd.mask |= WMS_MASK_BD_MSG_ID; }

INSTANTIATE_TEST_SUITE_P(
    Limits, BearerDataEncodeFailure,
    ::testing::Values(
        FailCase{"largest_octet_user_data_fits",
                 [](auto &bd) { bd.mask = WMS_MASK_BD_USER_DATA; bd.user_data.data_len = 229; },
                 WMS_TS_STATUS_OK, 2 + 231},
        FailCase{"is91_counts_disagree",
                 [](auto &bd) {
                     with_id(bd);
                     is91(bd, WMS_IS91EP_SHORT_MESSAGE, "HELLO");
                     bd.user_data.num_fields = 4;
                 },
                 WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        FailCase{"is91_unknown_type",
                 [](auto &bd) { with_id(bd); is91(bd, 134, "A"); },
                 WMS_TS_STATUS_BAD_IS91EP_TYPE, 5},
        FailCase{"is91_voice_mail_past_229_values",
                 [](auto &bd) {
                     with_id(bd);
                     is91(bd, WMS_IS91EP_VOICE_MAIL, "");
                     bd.user_data.num_fields = 228;
                     bd.user_data.data_len = 228;
                 },
                 WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        FailCase{"octets_past_229_units",
                 [](auto &bd) { with_id(bd); bd.mask |= WMS_MASK_BD_USER_DATA; bd.user_data.data_len = 230; },
                 WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        FailCase{"bearer_data_past_255_octets",
                 [](auto &bd) {
                     // 5 + 233 + 3 + 8 octets fit; the validity period does not.
                     bd.mask = WMS_MASK_BD_MSG_ID | WMS_MASK_BD_USER_DATA | WMS_MASK_BD_USER_RESP |
                               WMS_MASK_BD_MC_TIME | WMS_MASK_BD_VALID_ABS;
                     bd.user_data.data_len = 229;
                     for (auto &o : bd.user_data.data) o = 0xFF;
                 },
                 WMS_TS_STATUS_BAD_ADDRESS, 249},
        FailCase{"repeated_alert_past_255_octets",
                 [](auto &bd) {
                     // 255 octets with the alert once: bearer data that
                     // decode fine but cannot be written back.
                     bd.mask = WMS_MASK_BD_MSG_ID | WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA | WMS_MASK_BD_USER_RESP |
                               WMS_MASK_BD_PRIORITY | WMS_MASK_BD_PRIVACY | WMS_MASK_BD_REPLY_OPTION |
                               WMS_MASK_BD_NUM_OF_MSGS;
                     bd.user_data.data_len = 229;
                 },
                 WMS_TS_STATUS_BAD_ADDRESS, 255}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(BearerDataEncodeLimits, NullArgumentsAreRefused)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    wms_raw_tpdu raw{};
    raw.len = 9;
    EXPECT_NE(wms_ts_encode_CDMA_bd(nullptr, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(std::uint32_t{raw.len}, 0u);
    EXPECT_NE(wms_ts_encode_CDMA_bd(&bd, nullptr), WMS_TS_STATUS_OK);
}

TEST(BearerDataEncodeLimits, TouchesNoHeap)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    is91(bd, WMS_IS91EP_VOICE_MAIL, "CALL ME");
    bd.mask = 0xFFFF;
    wms_raw_tpdu raw{};
    smsutil::test::AllocationScope scope;
    EXPECT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
