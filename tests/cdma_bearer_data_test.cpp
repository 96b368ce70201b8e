// Bearer data: every subparameter written from a record and read back, limits, and malformed input.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <algorithm>
#include <cstring>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include "smsutil/wms_cdma.h"
#include "support/support.hpp"

// The records cross the C boundary packed, in this order.
static_assert(sizeof(wms_cdma_user_data) == WMS_SIZEOF_CDMA_USER_DATA);
static_assert(sizeof(wms_cdma_bearer_data) == WMS_SIZEOF_CDMA_BEARER_DATA);
static_assert(offsetof(wms_cdma_bearer_data, user_data) == 12);
static_assert(offsetof(wms_cdma_bearer_data, callback) == 304);
static_assert(offsetof(wms_cdma_bearer_data, display_mode) == 341);

namespace {

using namespace smsutil::test;

// The records are packed: copy a multi-octet field out (std::uint32_t{raw.len})
// before anything takes a reference to it, or it may be misaligned.
inline wms_cdma_bearer_data empty_bearer_data()
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    return bd;
}

inline wms_raw_tpdu raw_of(const std::vector<std::uint8_t> &octets, std::uint32_t len)
{
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    if (!octets.empty()) std::memcpy(raw.data, octets.data(), std::min<std::size_t>(octets.size(), sizeof raw.data));
    raw.len = len;
    return raw;
}

inline wms_raw_tpdu raw_of(const std::vector<std::uint8_t> &octets)
{
    return raw_of(octets, static_cast<std::uint32_t>(octets.size()));
}

inline std::vector<std::uint8_t> octets_of(const wms_raw_tpdu &raw)
{
    return {raw.data, raw.data + std::min<std::size_t>(raw.len, sizeof raw.data)};
}

// Identifiers of the subparameters in the order they appear.
inline std::vector<std::uint8_t> subparameter_ids(const wms_raw_tpdu &raw)
{
    std::vector<std::uint8_t> ids;
    const std::size_t used = std::min<std::size_t>(raw.len, sizeof raw.data);
    for (std::size_t i = 0; i + 1 < used; i += 2u + raw.data[i + 1]) ids.push_back(raw.data[i]);
    return ids;
}

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
    AllocationScope scope;
    EXPECT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
}

using Octets = std::vector<std::uint8_t>;

struct DecodeCase {
    const char *name;
    Octets octets;
    wms_status_e_type status;
    std::uint32_t mask;
    std::function<void(const wms_cdma_bearer_data &)> check;
};

void PrintTo(const DecodeCase &c, std::ostream *os) { *os << c.name; }

class BearerDataDecode : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(BearerDataDecode, GivesThisRecord)
{
    const DecodeCase &c = GetParam();
    const wms_raw_tpdu raw = raw_of(c.octets);
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = 0xDEAD;
    ASSERT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), c.status);
    if (c.status != WMS_TS_STATUS_OK) return;
    EXPECT_EQ(bd.mask, c.mask);
    if (c.check) c.check(bd);
}

// Bearer data of a user data subparameter: octet encoding, `count` octets.
Octets octet_user_data(std::size_t count)
{
    const std::size_t content = (13 + 8 * count + 7) / 8;
    Octets o(2 + content, 0);
    o[0] = 1;
    o[1] = static_cast<std::uint8_t>(content);
    for (std::size_t i = 0; i < count; ++i) b_packb(static_cast<std::uint8_t>(i), o.data() + 2, static_cast<uint16_t>(13 + 8 * i), 8);
    return o;
}

// A call-back number in DTMF digits announcing `announced` and carrying `carried`.
Octets dtmf_callback(std::uint8_t announced, std::size_t carried)
{
    const std::size_t content = (9 + 4 * carried + 7) / 8;
    Octets o(2 + content, 0);
    o[0] = 14;
    o[1] = static_cast<std::uint8_t>(content);
    b_packb(announced, o.data() + 2, 1, 8);
    for (std::size_t i = 0; i < carried; ++i) b_packb(static_cast<std::uint8_t>(i % 10 + 1), o.data() + 2, static_cast<uint16_t>(9 + 4 * i), 4);
    return o;
}

INSTANTIATE_TEST_SUITE_P(
    Subparameters, BearerDataDecode,
    ::testing::Values(
        DecodeCase{"message_identifier", {0x00, 0x03, 0x21, 0x23, 0x40}, 0, WMS_MASK_BD_MSG_ID,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.message_id.type, 2u);
                       EXPECT_EQ(bd.message_id.id_number, 0x1234u);
                   }},
        DecodeCase{"repeated_identifier_keeps_the_first",
                   {0x00, 0x03, 0x21, 0x23, 0x40, 0x00, 0x03, 0x35, 0x67, 0x80}, 0, WMS_MASK_BD_MSG_ID,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.message_id.type, 2u);
                       EXPECT_EQ(bd.message_id.id_number, 0x1234u);
                   }},
        DecodeCase{"alert_twice", {0x0C, 0x00, 0x0C, 0x00}, 0, WMS_MASK_BD_ALERT,
                   [](const auto &bd) { EXPECT_EQ(bd.alert_on_delivery, 1); }},
        DecodeCase{"unknown_identifier_is_stepped_over", {0x20, 0x02, 0xFF, 0xFF, 0x02, 0x01, 0x33}, 0,
                   WMS_MASK_BD_USER_RESP, [](const auto &bd) { EXPECT_EQ(bd.user_response, 0x33); }},
        DecodeCase{"content_past_the_end_stops_the_walk", {0x02, 0x01, 0x33, 0x0D, 0x05, 0x01}, 0,
                   WMS_MASK_BD_USER_RESP, nullptr},
        DecodeCase{"lone_trailing_octet_is_ignored", {0x0D, 0x01, 0x09, 0x0F}, 0, WMS_MASK_BD_LANGUAGE,
                   [](const auto &bd) { EXPECT_EQ(bd.language, 9u); }},
        DecodeCase{"times_leave_the_time_zone",
                   {0x03, 0x06, 0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 0x07, 0x01, 167}, 0,
                   WMS_MASK_BD_MC_TIME | WMS_MASK_BD_DEFER_REL,
                   [](const auto &bd) {
                       const wms_timestamp sent{0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 0};
                       EXPECT_EQ(std::memcmp(&bd.mc_time, &sent, sizeof sent), 0);
                       EXPECT_EQ(bd.deferred_relative.day, 0x01);
                       EXPECT_EQ(bd.deferred_relative.hour, 0);
                   }},
        DecodeCase{"number_of_messages_non_digits_count_zero", {0x0B, 0x01, 0x9A}, 0, WMS_MASK_BD_NUM_OF_MSGS,
                   [](const auto &bd) { EXPECT_EQ(bd.num_messages, 90); }},
        DecodeCase{"priority_longer_than_needed", {0x08, 0x02, 0xC0, 0xFF, 0x0F, 0x01, 0x40}, 0,
                   WMS_MASK_BD_PRIORITY | WMS_MASK_BD_DISPLAY_MODE,
                   [](const auto &bd) { EXPECT_EQ(bd.priority, 3u); EXPECT_EQ(std::uint32_t{bd.display_mode}, 1u); }},
        DecodeCase{"reply_option", {0x0A, 0x01, 0x40}, 0, WMS_MASK_BD_REPLY_OPTION,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.user_ack_requested, 0);
                       EXPECT_EQ(bd.delivery_ack_requested, 1);
                   }},
        DecodeCase{"seven_bit_text_of_ten_characters",
                   // encoding 2, ten characters: 13 + 70 bits, 11 octets.
                   {0x01, 0x0B, 0x10, 0x50, 0, 0, 0, 0, 0, 0, 0, 0, 0}, 0, WMS_MASK_BD_USER_DATA,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.user_data.encoding, 2u);
                       EXPECT_EQ(bd.user_data.num_fields, 10);
                       EXPECT_EQ(bd.user_data.data_len, 9);
                       EXPECT_EQ(bd.user_data.padding_bits, 2);
                   }},
        DecodeCase{"octets_228_decode", octet_user_data(228), 0, WMS_MASK_BD_USER_DATA,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.user_data.data_len, 228);
                       EXPECT_EQ(bd.user_data.data[227], 227);
                   }},
        DecodeCase{"callback_of_40_digits_keeps_32", dtmf_callback(40, 40), 0, WMS_MASK_BD_CALLBACK,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.callback.number_of_digits, 32);
                       EXPECT_EQ(bd.callback.digits[31], 31 % 10 + 1);
                       EXPECT_EQ(bd.callback.digit_mode, WMS_DIGIT_MODE_BCD);
                   }},
        DecodeCase{"callback_characters", {0x0E, 0x04, 0x91, 0x02, 0x34, 0x35}, 0, WMS_MASK_BD_CALLBACK,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.callback.digit_mode, WMS_DIGIT_MODE_CHAR);
                       EXPECT_EQ(bd.callback.number_type, 1);
                       EXPECT_EQ(bd.callback.number_plan, 1);
                       EXPECT_EQ(bd.callback.number_of_digits, 2);
                       EXPECT_EQ(bd.callback.digits[1], '5');
                   }},
        DecodeCase{"voice_mail_keeps_the_identifier",
                   {0x00, 0x03, 0x21, 0x23, 0x40, 0x02, 0x01, 0x77, 0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60},
                   0, WMS_MASK_BD_MSG_ID | WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS | WMS_MASK_BD_PRIORITY | WMS_MASK_BD_USER_DATA,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.message_id.id_number, 0x1234u);
                       EXPECT_EQ(bd.num_messages, 7);
                       EXPECT_EQ(bd.priority, 2u);
                       EXPECT_EQ(bd.user_data.num_fields, 2);
                       EXPECT_EQ(bd.user_data.data[0], 'O');
                       EXPECT_EQ(bd.user_data.data[1], 'K');
                       EXPECT_EQ(bd.user_response, 0x77);  // decoded, but the payload's mask replaces it
                   }},
        DecodeCase{"callback_order", {0x01, 0x05, 0x0C, 0x20, 0x1A, 0xA8, 0x80}, 0,
                   WMS_MASK_BD_ALERT | WMS_MASK_BD_CALLBACK,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.callback.number_of_digits, 3);
                       EXPECT_EQ(bd.callback.digits[0], 5);
                       EXPECT_EQ(bd.callback.digits[2], 1);
                   }},
        // Fields that a variable-length subparameter is too short for are
        // read on from the octets after it, as zeros past the end; the walk
        // still moves on by the length octet.
        DecodeCase{"priority_of_nothing_reads_the_next_octet", {0x08, 0x00, 0xC0, 0x00}, 0, WMS_MASK_BD_PRIORITY,
                   [](const auto &bd) { EXPECT_EQ(bd.priority, 3u); }},
        DecodeCase{"reply_option_of_nothing_at_the_end", {0x0D, 0x01, 0x09, 0x0A, 0x00}, 0,
                   WMS_MASK_BD_LANGUAGE | WMS_MASK_BD_REPLY_OPTION,
                   [](const auto &bd) { EXPECT_EQ(bd.user_ack_requested + bd.delivery_ack_requested, 0); }},
        DecodeCase{"user_data_of_one_octet", {0x01, 0x01, 0x10, 0x0C, 0x00}, 0,
                   WMS_MASK_BD_USER_DATA | WMS_MASK_BD_ALERT,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.user_data.encoding, 2u);
                       EXPECT_EQ(bd.user_data.num_fields, 1);  // low bits from the alert's identifier
                       EXPECT_EQ(bd.user_data.data_len, 1);
                       EXPECT_EQ(bd.user_data.padding_bits, 1);
                   }},
        DecodeCase{"octet_user_data_without_a_unit", {0x01, 0x01, 0x00, 0x00}, 0, WMS_MASK_BD_USER_DATA,
                   [](const auto &bd) { EXPECT_EQ(bd.user_data.data_len, 0); }},
        DecodeCase{"callback_carrying_fewer_digits_than_announced", dtmf_callback(10, 3), 0, WMS_MASK_BD_CALLBACK,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.callback.number_of_digits, 10);
                       EXPECT_EQ(bd.callback.digits[2], 3);
                       EXPECT_EQ(bd.callback.digits[9], 0);
                   }},
        // 7-bit text announcing ten characters but carrying fewer: the count
        // gives the length, the missing units stay as they were.
        DecodeCase{"seven_bit_count_beyond_the_octets_carried", {0x01, 0x04, 0x10, 0x54, 0x8C, 0xBB}, 0,
                   WMS_MASK_BD_USER_DATA,
                   [](const auto &bd) {
                       EXPECT_EQ(bd.user_data.num_fields, 10);
                       EXPECT_EQ(bd.user_data.data_len, 9);
                       EXPECT_EQ(bd.user_data.padding_bits, 2);
                       EXPECT_EQ(bd.user_data.data[2], 0x60);
                       EXPECT_EQ(bd.user_data.data[3], 0);
                   }},
        DecodeCase{"empty", {}, 0, 0, nullptr},
        DecodeCase{"one_octet", {0x0C}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"user_response_of_two_octets", {0x02, 0x02, 0x01, 0x02}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"identifier_of_four_octets", {0x00, 0x04, 0x21, 0x23, 0x40, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"identifier_of_two_octets", {0x00, 0x02, 0x21, 0x23, 0x0C, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"time_of_five_octets", {0x03, 0x05, 1, 2, 3, 4, 5, 0x0C, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"relative_validity_of_two_octets", {0x05, 0x02, 1, 2}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"relative_deferral_of_nothing", {0x07, 0x00, 0x0C, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"number_of_messages_of_two_octets", {0x0B, 0x02, 0x11, 0x22}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"language_of_nothing", {0x0D, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"display_mode_of_two_octets", {0x0F, 0x02, 0xC0, 0x00}, WMS_TS_STATUS_BAD_ADDRESS, 0, nullptr},
        DecodeCase{"octets_229_are_too_many", octet_user_data(229), WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 0, nullptr},
        DecodeCase{"is91_count_beyond_the_units_carried", {0x01, 0x03, 0x0C, 0x28, 0x38},
                   WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 0, nullptr},
        DecodeCase{"is91_unknown_type", {0x01, 0x03, 0x0C, 0x80, 0x00}, WMS_TS_STATUS_BAD_IS91EP_TYPE, 0, nullptr}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(BearerDataDecodeLength, OnlyTheLowSixteenBitsDecideShortness)
{
    const Octets message_id{0x00, 0x03, 0x21, 0x23, 0x40};
    wms_cdma_bearer_data bd = empty_bearer_data();
    for (std::uint32_t len : {0x10000u, 0x10001u, 1u}) {
        const wms_raw_tpdu raw = raw_of(message_id, len);
        EXPECT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_BAD_ADDRESS) << len;
    }
    // Anything longer than the buffer is read as its 255 octets.
    Octets full(255, 0);
    std::copy(message_id.begin(), message_id.end(), full.begin());
    full[5] = 0x1F;  // an unknown subparameter that covers the rest
    full[6] = 255 - 7;
    const wms_raw_tpdu raw = raw_of(full, 0x10005u);
    ASSERT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(bd.mask, WMS_MASK_BD_MSG_ID);
}

TEST(BearerDataDecodeLength, NullArgumentsAreRefused)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    const wms_raw_tpdu raw = raw_of({0x0C, 0x00});
    EXPECT_NE(wms_ts_decode_CDMA_bd(nullptr, &bd), WMS_TS_STATUS_OK);
    EXPECT_NE(wms_ts_decode_CDMA_bd(&raw, nullptr), WMS_TS_STATUS_OK);
}


TEST(BearerDataDecodeUntrusted, TouchesNoHeap)
{
    const wms_raw_tpdu raw =
        raw_of({0x00, 0x03, 0x21, 0x23, 0x40, 0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60});
    wms_cdma_bearer_data bd = empty_bearer_data();
    AllocationScope scope;
    EXPECT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
