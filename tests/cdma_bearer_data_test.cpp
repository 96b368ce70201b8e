// Bearer data: one table of subparameters, each row written from its record and read back, then limits and malformed
// input.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
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
using Fill = std::function<void(wms_cdma_bearer_data &)>;

// The records are packed: copy a multi-octet field out (std::uint32_t{raw.len})
// before anything takes a reference to it, or it may be misaligned.
wms_cdma_bearer_data record(const Fill &fill)
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    if (fill) fill(bd);
    return bd;
}

wms_raw_tpdu raw_of(const Octets &octets, std::uint32_t len)
{
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    std::copy_n(octets.begin(), std::min(octets.size(), sizeof raw.data), raw.data);
    raw.len = len;
    return raw;
}
wms_raw_tpdu raw_of(const Octets &octets) { return raw_of(octets, static_cast<std::uint32_t>(octets.size())); }

// Offsets at which two records differ, for a readable failure.  User data
// octets beyond data_len are scratch and not compared.
std::string differences(wms_cdma_bearer_data got, wms_cdma_bearer_data want)
{
    for (wms_cdma_bearer_data *r : {&got, &want})
        std::fill(std::begin(r->user_data.data) + std::min<std::size_t>(r->user_data.data_len, WMS_CDMA_USER_DATA_MAX),
                  std::end(r->user_data.data), 0);
    std::string out;
    const auto *g = reinterpret_cast<const std::uint8_t *>(&got);
    const auto *w = reinterpret_cast<const std::uint8_t *>(&want);
    for (std::size_t i = 0; i < sizeof got; ++i)
        if (g[i] != w[i]) out += " @" + std::to_string(i) + ":" + std::to_string(g[i]) + "!=" + std::to_string(w[i]);
    return out;
}

void user_data(wms_cdma_bearer_data &bd, std::uint32_t encoding, std::uint8_t fields, const Octets &data,
               std::uint8_t padding = 0)
{
    bd.mask |= WMS_MASK_BD_USER_DATA;
    bd.user_data.encoding = encoding;
    bd.user_data.num_fields = fields;
    bd.user_data.data_len = static_cast<std::uint8_t>(data.size());
    bd.user_data.padding_bits = padding;
    std::copy(data.begin(), data.end(), bd.user_data.data);
}

void is91(wms_cdma_bearer_data &bd, std::uint32_t type, const char *text)
{
    const auto n = std::strlen(text);
    user_data(bd, WMS_ENCODING_IS91EP, static_cast<std::uint8_t>(n), Octets(text, text + n));
    bd.user_data.is91ep_type = type;
}

void callback(wms_cdma_bearer_data &bd, std::uint8_t announced, const Octets &digits)
{
    bd.mask |= WMS_MASK_BD_CALLBACK;
    bd.callback.number_of_digits = announced;
    std::copy(digits.begin(), digits.end(), bd.callback.digits);
}

// A user data subparameter in octet encoding carrying `count` octets.
Octets octet_user_data(std::size_t count)
{
    const std::size_t content = (13 + 8 * count + 7) / 8;
    Octets o(2 + content, 0);
    o[0] = 1;
    o[1] = static_cast<std::uint8_t>(content);
    for (std::size_t i = 0; i < count; ++i)
        b_packb(static_cast<std::uint8_t>(i), o.data() + 2, static_cast<std::uint16_t>(13 + 8 * i), 8);
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
    for (std::size_t i = 0; i < carried; ++i)
        b_packb(static_cast<std::uint8_t>(i % 10 + 1), o.data() + 2, static_cast<std::uint16_t>(9 + 4 * i), 4);
    return o;
}
// n octets counting from `first` and wrapping at `mod`.
Octets series(std::size_t n, unsigned mod = 256, unsigned first = 0)
{
    Octets o(n);
    for (std::size_t i = 0; i < n; ++i) o[i] = static_cast<std::uint8_t>(i % mod + first);
    return o;
}

enum Direction { kBoth, kEncodeOnly, kDecodeOnly };

struct WireCase {
    const char *name;
    Fill fill;
    Octets octets;
    Direction direction = kBoth;
};

class BearerData : public ::testing::TestWithParam<WireCase> {};

// Encoding the record gives the octets (and zeros after them); decoding the
// octets gives the record, every field of it.
TEST_P(BearerData, RecordAndOctetsCorrespond)
{
    const WireCase &c = GetParam();
    const wms_cdma_bearer_data want = record(c.fill);
    if (c.direction != kDecodeOnly) {
        wms_raw_tpdu raw;
        std::memset(&raw, 0x5A, sizeof raw);
        ASSERT_EQ(wms_ts_encode_CDMA_bd(&want, &raw), WMS_TS_STATUS_OK);
        EXPECT_EQ(raw.format, 0);
        EXPECT_EQ(hex(raw.data, std::min<std::size_t>(raw.len, sizeof raw.data)), hex(c.octets));
        for (std::size_t i = raw.len; i < sizeof raw.data; ++i) ASSERT_EQ(raw.data[i], 0) << i;
    }
    if (c.direction != kEncodeOnly) {
        const wms_raw_tpdu raw = raw_of(c.octets);
        wms_cdma_bearer_data got = record(nullptr);
        got.mask = 0xDEAD;
        ASSERT_EQ(wms_ts_decode_CDMA_bd(&raw, &got), WMS_TS_STATUS_OK);
        EXPECT_EQ(differences(got, want), "");
    }
}

constexpr wms_timestamp kSent{0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 0};

INSTANTIATE_TEST_SUITE_P(
    Subparameters, BearerData,
    ::testing::Values(
        WireCase{"empty", nullptr, {}},
        WireCase{"message_identifier", [](auto &bd) { bd.mask = WMS_MASK_BD_MSG_ID, bd.message_id.type = 2, bd.message_id.id_number = 0x1234; }, {0x00, 0x03, 0x21, 0x23, 0x40}},
        WireCase{"identifier_fields_cut_to_width", [](auto &bd) { bd.mask = WMS_MASK_BD_MSG_ID, bd.message_id.type = 0x12, bd.message_id.id_number = 0xABCDE; }, {0x00, 0x03, 0x2B, 0xCD, 0xE0}, kEncodeOnly},
        WireCase{"repeated_identifier_keeps_the_first", [](auto &bd) { bd.mask = WMS_MASK_BD_MSG_ID, bd.message_id.type = 2, bd.message_id.id_number = 0x1234; }, {0x00, 0x03, 0x21, 0x23, 0x40, 0x00, 0x03, 0x35, 0x67, 0x80}, kDecodeOnly},
        WireCase{"alert_written_twice", [](auto &bd) { bd.mask = WMS_MASK_BD_ALERT, bd.alert_on_delivery = 1; }, {0x0C, 0x00, 0x0C, 0x00}},
        WireCase{"display_mode_top_bits", [](auto &bd) { bd.mask = WMS_MASK_BD_DISPLAY_MODE, bd.display_mode = 3; }, {0x0F, 0x01, 0xC0}},
        WireCase{"priority_privacy_and_delivery_ack", [](auto &bd) { bd.mask = WMS_MASK_BD_PRIORITY | WMS_MASK_BD_PRIVACY | WMS_MASK_BD_REPLY_OPTION, bd.priority = 2, bd.privacy = 1, bd.delivery_ack_requested = 1; }, {0x08, 0x01, 0x80, 0x09, 0x01, 0x40, 0x0A, 0x01, 0x40}},
        WireCase{"priority_longer_than_needed", [](auto &bd) { bd.mask = WMS_MASK_BD_PRIORITY | WMS_MASK_BD_DISPLAY_MODE, bd.priority = 3, bd.display_mode = 1; }, {0x08, 0x02, 0xC0, 0xFF, 0x0F, 0x01, 0x40}, kDecodeOnly},
        // Fields that a variable-length subparameter is too short for are
        // read on from the octets after it, as zeros past the end; the walk
        // still moves on by the length octet.
        WireCase{"priority_of_nothing_reads_the_next_octet", [](auto &bd) { bd.mask = WMS_MASK_BD_PRIORITY, bd.priority = 3; }, {0x08, 0x00, 0xC0, 0x00}, kDecodeOnly},
        WireCase{"reply_option_user_ack", [](auto &bd) { bd.mask = WMS_MASK_BD_REPLY_OPTION, bd.user_ack_requested = 1; }, {0x0A, 0x01, 0x80}},
        WireCase{"number_of_messages_as_two_digits", [](auto &bd) { bd.mask = WMS_MASK_BD_NUM_OF_MSGS, bd.num_messages = 42; }, {0x0B, 0x01, 0x42}},
        WireCase{"number_of_messages_non_digits_count_zero", [](auto &bd) { bd.mask = WMS_MASK_BD_NUM_OF_MSGS, bd.num_messages = 90; }, {0x0B, 0x01, 0x9A}, kDecodeOnly},
        WireCase{"language_low_octet", [](auto &bd) { bd.mask = WMS_MASK_BD_LANGUAGE, bd.language = 0x1FF; }, {0x0D, 0x01, 0xFF}, kEncodeOnly},
        WireCase{"language_then_a_lone_trailing_octet", [](auto &bd) { bd.mask = WMS_MASK_BD_LANGUAGE, bd.language = 9; }, {0x0D, 0x01, 0x09, 0x0F}, kDecodeOnly},
        WireCase{"user_response", [](auto &bd) { bd.mask = WMS_MASK_BD_USER_RESP, bd.user_response = 0x7E; }, {0x02, 0x01, 0x7E}},
        WireCase{"unknown_identifier_is_stepped_over", [](auto &bd) { bd.mask = WMS_MASK_BD_USER_RESP, bd.user_response = 0x33; }, {0x20, 0x02, 0xFF, 0xFF, 0x02, 0x01, 0x33}, kDecodeOnly},
        WireCase{"content_past_the_end_stops_the_walk", [](auto &bd) { bd.mask = WMS_MASK_BD_USER_RESP, bd.user_response = 0x33; }, {0x02, 0x01, 0x33, 0x0D, 0x05, 0x01}, kDecodeOnly},
        WireCase{"absolute_times_six_octets", [](auto &bd) { bd.mask = WMS_MASK_BD_MC_TIME | WMS_MASK_BD_DEFER_ABS, bd.mc_time = kSent, bd.deferred_absolute = wms_timestamp{0x27, 0x01, 0x02, 0x03, 0x04, 0x05, 0}; }, {0x03, 0x06, 0x26, 0x11, 0x22, 0x23, 0x59, 0x01, 0x06, 0x06, 0x27, 0x01, 0x02, 0x03, 0x04, 0x05}},
        // The time zone is not carried.
        WireCase{"time_zone_left_out", [](auto &bd) { bd.mask = WMS_MASK_BD_VALID_ABS, bd.validity_absolute = kSent, bd.validity_absolute.timezone = 8; }, {0x04, 0x06, 0x26, 0x11, 0x22, 0x23, 0x59, 0x01}, kEncodeOnly},
        WireCase{"relative_times_one_day", [](auto &bd) { bd.mask = WMS_MASK_BD_VALID_REL | WMS_MASK_BD_DEFER_REL, bd.validity_relative.day = 1, bd.deferred_relative.day = 1; }, {0x05, 0x01, 167, 0x07, 0x01, 167}},
        WireCase{"octet_user_data", [](auto &bd) { user_data(bd, 0, 2, {'H', 'i'}); }, {0x01, 0x04, 0x00, 0x12, 0x43, 0x48}},
        WireCase{"octet_user_data_without_a_unit", [](auto &bd) { user_data(bd, 0, 0, {}); }, {0x01, 0x01, 0x00, 0x00}, kDecodeOnly},
        WireCase{"octets_228", [](auto &bd) { user_data(bd, 0, 0, series(228)); }, octet_user_data(228), kDecodeOnly},
        WireCase{"packed_7bit_user_data_drops_padding", [](auto &bd) { user_data(bd, WMS_ENCODING_ASCII, 2, {0x83, 0x08}, 2); }, {0x01, 0x04, 0x10, 0x14, 0x18, 0x40}},
        WireCase{"padding_never_reaches_back_into_the_header", [](auto &bd) { user_data(bd, 0, 0xFF, {}, 200); }, {0x01, 0x02, 0x07, 0xF8}, kEncodeOnly},
        WireCase{"seven_bit_text_of_ten_characters", [](auto &bd) { user_data(bd, WMS_ENCODING_ASCII, 10, Octets(9, 0), 2); }, {0x01, 0x0B, 0x10, 0x50, 0, 0, 0, 0, 0, 0, 0, 0, 0}, kDecodeOnly},
        // Seven-bit text announcing ten characters but carrying fewer: the
        // count gives the length, the missing units stay as they were.
        WireCase{"seven_bit_count_beyond_the_octets_carried", [](auto &bd) { user_data(bd, WMS_ENCODING_ASCII, 10, {0x91, 0x97, 0x60, 0, 0, 0, 0, 0, 0}, 2); }, {0x01, 0x04, 0x10, 0x54, 0x8C, 0xBB}, kDecodeOnly},
        // The count's low bits are the alert's identifier.
        WireCase{"user_data_of_one_octet", [](auto &bd) { user_data(bd, WMS_ENCODING_ASCII, 1, {0}, 1), bd.mask |= WMS_MASK_BD_ALERT, bd.alert_on_delivery = 1; }, {0x01, 0x01, 0x10, 0x0C, 0x00}, kDecodeOnly},
        WireCase{"callback_dtmf_digits", [](auto &bd) { callback(bd, 3, {1, 2, 3}); }, {0x0E, 0x03, 0x01, 0x89, 0x18}},
        WireCase{"callback_characters", [](auto &bd) { callback(bd, 2, {'4', '5'}), bd.callback.digit_mode = WMS_DIGIT_MODE_CHAR, bd.callback.number_type = 1, bd.callback.number_plan = 1; }, {0x0E, 0x04, 0x91, 0x02, 0x34, 0x35}},
        WireCase{"callback_of_40_digits_keeps_32", [](auto &bd) { callback(bd, 32, series(32, 10, 1)); }, dtmf_callback(40, 40), kDecodeOnly},
        WireCase{"callback_carrying_fewer_digits_than_announced", [](auto &bd) { callback(bd, 10, {1, 2, 3}); }, dtmf_callback(10, 3), kDecodeOnly},
        WireCase{"is91_text", [](auto &bd) { is91(bd, WMS_IS91EP_SHORT_MESSAGE, "OK"); }, {0x01, 0x05, 0x0C, 0x28, 0x15, 0xF5, 0x80}, kEncodeOnly},
        // The voice mail payload's urgent marker followed by text, written and (below) read.
        WireCase{"is91_voice_mail_carries_priority_and_count", [](auto &bd) { is91(bd, WMS_IS91EP_VOICE_MAIL, "OK"), bd.mask |= WMS_MASK_BD_PRIORITY | WMS_MASK_BD_NUM_OF_MSGS, bd.num_messages = 7, bd.priority = 2; }, {0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60}, kEncodeOnly},
        // The payload's mask replaces the user response read before it.
        WireCase{"is91_voice_mail_keeps_the_identifier", [](auto &bd) { bd.mask = WMS_MASK_BD_MSG_ID | WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS | WMS_MASK_BD_PRIORITY, bd.message_id.type = 2, bd.message_id.id_number = 0x1234, bd.user_response = 0x77, bd.alert_on_delivery = 1, bd.num_messages = 7, bd.priority = 2, is91(bd, WMS_IS91EP_VOICE_MAIL, "OK"); }, {0x00, 0x03, 0x21, 0x23, 0x40, 0x02, 0x01, 0x77, 0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60}, kDecodeOnly},
        WireCase{"is91_callback_order_without_user_data_bit", [](auto &bd) { callback(bd, 3, {5, 5, 1}), bd.user_data.encoding = WMS_ENCODING_IS91EP, bd.user_data.is91ep_type = WMS_IS91EP_CLI_ORDER; }, {0x01, 0x05, 0x0C, 0x20, 0x1A, 0xA8, 0x80}, kEncodeOnly},
        // The user data keep the payload as read; the mask names the call-back instead.
        WireCase{"is91_callback_order_read", [](auto &bd) { user_data(bd, WMS_ENCODING_IS91EP, 3, {5, 5, 1}), bd.user_data.is91ep_type = WMS_IS91EP_CLI_ORDER, bd.mask = WMS_MASK_BD_ALERT, callback(bd, 3, {5, 5, 1}), bd.alert_on_delivery = 1; }, {0x01, 0x05, 0x0C, 0x20, 0x1A, 0xA8, 0x80}, kDecodeOnly}),
    case_name<WireCase>);

struct EncodeLimit {
    const char *name;
    Fill fill;
    wms_status_e_type status;
    std::uint32_t len;  // on failure: octets of the subparameters before the failing one
};

class BearerDataEncodeLimits : public ::testing::TestWithParam<EncodeLimit> {};

TEST_P(BearerDataEncodeLimits, StopsWithThisResult)
{
    const wms_cdma_bearer_data bd = record(GetParam().fill);
    wms_raw_tpdu raw{};
    EXPECT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), GetParam().status);
    EXPECT_EQ(std::uint32_t{raw.len}, GetParam().len);
    for (std::size_t i = raw.len; i < sizeof raw.data; ++i) ASSERT_EQ(raw.data[i], 0) << i;
}

void with_id(wms_cdma_bearer_data &bd) { bd.mask |= WMS_MASK_BD_MSG_ID; }
void octets(wms_cdma_bearer_data &bd, std::uint8_t n) { bd.mask |= WMS_MASK_BD_USER_DATA, bd.user_data.data_len = n; }

constexpr std::uint32_t kBig = WMS_MASK_BD_MSG_ID | WMS_MASK_BD_USER_RESP;
constexpr std::uint32_t kFixed = WMS_MASK_BD_PRIORITY | WMS_MASK_BD_PRIVACY | WMS_MASK_BD_REPLY_OPTION;

INSTANTIATE_TEST_SUITE_P(
    Limits, BearerDataEncodeLimits,
    ::testing::Values(
        // 1 + 8 + 32 x 4 bits: 137 bits, 18 octets.
        EncodeLimit{"callback_never_writes_more_than_32_digits", [](auto &bd) { callback(bd, 40, Octets(32, 9)); },
                    WMS_TS_STATUS_OK, 20},
        EncodeLimit{"largest_octet_user_data_fits", [](auto &bd) { octets(bd, 229); }, WMS_TS_STATUS_OK, 2 + 231},
        EncodeLimit{"is91_counts_disagree",
                    [](auto &bd) { with_id(bd), is91(bd, 133, "HELLO"), bd.user_data.num_fields = 4; },
                    WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        EncodeLimit{"is91_unknown_type", [](auto &bd) { with_id(bd), is91(bd, 134, "A"); },
                    WMS_TS_STATUS_BAD_IS91EP_TYPE, 5},
        EncodeLimit{"is91_voice_mail_past_229_values",
                    [](auto &bd) { with_id(bd), is91(bd, 130, ""), octets(bd, 228), bd.user_data.num_fields = 228; },
                    WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        EncodeLimit{"octets_past_229_units", [](auto &bd) { with_id(bd), octets(bd, 230); },
                    WMS_TS_STATUS_BAD_USER_DATA_LENGTH, 5},
        // 5 + 233 + 3 + 8 octets fit; the validity period does not.
        EncodeLimit{"bearer_data_past_255_octets",
                    [](auto &bd) {
                        octets(bd, 229), std::memset(bd.user_data.data, 0xFF, 229),
                            bd.mask |= kBig | WMS_MASK_BD_MC_TIME | WMS_MASK_BD_VALID_ABS;
                    },
                    WMS_TS_STATUS_BAD_ADDRESS, 249},
        // 255 octets with the alert once: bearer data that decode fine but cannot be written back.
        EncodeLimit{
            "repeated_alert_past_255_octets",
            [](auto &bd) { octets(bd, 229), bd.mask |= kBig | kFixed | WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS; },
            WMS_TS_STATUS_BAD_ADDRESS, 255}),
    case_name<EncodeLimit>);

struct Malformed {
    const char *name;
    Octets octets;
    wms_status_e_type status;
};

class BearerDataMalformed : public ::testing::TestWithParam<Malformed> {};

TEST_P(BearerDataMalformed, IsRefused)
{
    const wms_raw_tpdu raw = raw_of(GetParam().octets);
    wms_cdma_bearer_data bd = record(nullptr);
    EXPECT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), GetParam().status);
}

INSTANTIATE_TEST_SUITE_P(
    Subparameters, BearerDataMalformed,
    ::testing::Values(
        Malformed{"one_octet", {0x0C}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"user_response_of_two_octets", {0x02, 0x02, 0x01, 0x02}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"identifier_of_four_octets", {0x00, 0x04, 0x21, 0x23, 0x40, 0x00}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"time_of_five_octets", {0x03, 0x05, 1, 2, 3, 4, 5, 0x0C, 0x00}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"relative_validity_of_two_octets", {0x05, 0x02, 1, 2}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"relative_deferral_of_nothing", {0x07, 0x00, 0x0C, 0x00}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"number_of_messages_of_two_octets", {0x0B, 0x02, 0x11, 0x22}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"language_of_nothing", {0x0D, 0x00}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"display_mode_of_two_octets", {0x0F, 0x02, 0xC0, 0x00}, WMS_TS_STATUS_BAD_ADDRESS},
        Malformed{"octets_229_are_too_many", octet_user_data(229), WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Malformed{
            "is91_count_beyond_the_units_carried", {0x01, 0x03, 0x0C, 0x28, 0x38}, WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Malformed{"is91_unknown_type", {0x01, 0x03, 0x0C, 0x80, 0x00}, WMS_TS_STATUS_BAD_IS91EP_TYPE}),
    case_name<Malformed>);

TEST(BearerDataLength, OnlyTheLowSixteenBitsDecideShortness)
{
    const Octets message_id{0x00, 0x03, 0x21, 0x23, 0x40};
    wms_cdma_bearer_data bd = record(nullptr);
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

// A subparameter too short for its fields reads on only up to len: the
// octets after it in the buffer count as zeros.
TEST(BearerDataLength, OctetsPastLenReadAsZeros)
{
    const wms_raw_tpdu raw = raw_of({0x08, 0x00, 0xC0}, 2);
    wms_cdma_bearer_data bd = record(nullptr);
    ASSERT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(differences(bd, record([](auto &r) { r.mask = WMS_MASK_BD_PRIORITY; })), "");
}

TEST(BearerDataLength, NullArgumentsAreRefused)
{
    wms_cdma_bearer_data bd = record(nullptr);
    wms_raw_tpdu raw = raw_of({0x0C, 0x00});
    EXPECT_NE(wms_ts_decode_CDMA_bd(nullptr, &bd), WMS_TS_STATUS_OK);
    EXPECT_NE(wms_ts_decode_CDMA_bd(&raw, nullptr), WMS_TS_STATUS_OK);
    raw.len = 9;
    EXPECT_NE(wms_ts_encode_CDMA_bd(nullptr, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(std::uint32_t{raw.len}, 0u);
    EXPECT_NE(wms_ts_encode_CDMA_bd(&bd, nullptr), WMS_TS_STATUS_OK);
}

TEST(BearerDataLength, TouchesNoHeap)
{
    wms_cdma_bearer_data bd = record([](auto &r) { is91(r, WMS_IS91EP_VOICE_MAIL, "CALL ME"), r.mask = 0xFFFF; });
    wms_raw_tpdu raw{};
    AllocationScope scope;
    EXPECT_EQ(wms_ts_encode_CDMA_bd(&bd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
}

// ---- IS-91 payloads: the values a record's payload gives, and back ----

// A record as a payload of `type` leaves it, on top of fields it never
// touches (priority 3, language 77): the alert, and what the type carries.
Fill payload(std::uint32_t type, std::uint32_t mask, std::uint8_t count, const char *text, std::uint32_t priority = 3)
{
    return [=](wms_cdma_bearer_data &bd) {
        bd.language = 77;
        bd.priority = priority;
        if (mask & WMS_MASK_BD_USER_DATA) is91(bd, type, text);
        bd.user_data.is91ep_type = type;  // the encoder's input; decoding sets it only with text
        bd.mask = WMS_MASK_BD_ALERT | mask;
        bd.alert_on_delivery = 1;
        bd.num_messages = count;
    };
}

struct PayloadCase {
    const char *name;
    std::uint32_t type;
    Fill fill;
    Octets values;
    Direction direction = kBoth;
};

class Is91Payload : public ::testing::TestWithParam<PayloadCase> {};

TEST_P(Is91Payload, RecordAndValuesCorrespond)
{
    const PayloadCase &c = GetParam();
    const wms_cdma_bearer_data want = record(c.fill);
    if (c.direction != kDecodeOnly) {
        wms_cdma_user_data out;
        std::memset(&out, 0xEE, sizeof out);
        ASSERT_EQ(wms_ts_encode_IS91EP_payload(&want, &out), WMS_TS_STATUS_OK);
        EXPECT_EQ(out.num_fields, c.values.size());
        ASSERT_EQ(out.data_len, c.values.size());
        EXPECT_EQ(hex(out.data, out.data_len), hex(c.values));
    }
    if (c.direction != kEncodeOnly) {
        wms_cdma_bearer_data got = record(payload(0, 0, 0, ""));
        got.mask = 0xFFFF;
        got.alert_on_delivery = 0;
        got.user_data.is91ep_type = c.type;
        ASSERT_EQ(
            wms_ts_decode_IS91EP_payload(c.type, static_cast<std::uint8_t>(c.values.size()), c.values.data(), &got),
            WMS_TS_STATUS_OK);
        EXPECT_EQ(differences(got, want), "");
    }
}

constexpr std::uint32_t kCount = WMS_MASK_BD_NUM_OF_MSGS;
constexpr std::uint32_t kText = WMS_MASK_BD_USER_DATA;
constexpr std::uint32_t kUrgent = WMS_MASK_BD_PRIORITY;

Fill callback_payload(std::uint8_t announced)
{
    return [=](wms_cdma_bearer_data &bd) {
        payload(WMS_IS91EP_CLI_ORDER, WMS_MASK_BD_CALLBACK, 0, "")(bd);
        callback(bd, announced, series(32, 10));
    };
}

Octets voice_mail_text_past_the_record()
{
    Octets v{0, 0, 1};
    v.insert(v.end(), WMS_CDMA_USER_DATA_MAX - 3, 'B' - 0x20);
    return v;
}

INSTANTIATE_TEST_SUITE_P(
    Payloads, Is91Payload,
    ::testing::Values(
        PayloadCase{"voice_mail_count_only", 130, payload(130, kCount, 12, ""), {0x01, 0x02}},
        PayloadCase{
            "voice_mail_count_digits_use_low_nibble", 130, payload(130, kCount, 12, ""), {0x31, 0x22}, kDecodeOnly},
        PayloadCase{"voice_mail_too_short_counts_zero", 130, payload(130, kCount, 40, ""), {0x04}, kDecodeOnly},
        PayloadCase{"voice_mail_urgent", 130, payload(130, kCount | kUrgent, 5, "", 2), {0x00, 0x05, 0x01}},
        PayloadCase{
            "voice_mail_normal", 130, payload(130, kCount | kUrgent, 5, "", 0), {0x00, 0x05, 0x00}, kDecodeOnly},
        PayloadCase{"voice_mail_text_without_marker", 130, payload(130, kCount | kText, 42, "AH"), {4, 2, 0x21, 0x28}},
        PayloadCase{"voice_mail_text_cut_at_the_records_capacity", 130,
                    [](auto &bd) {
                        payload(130, kCount | kUrgent | kText, 0, "")(bd),
                            std::memset(bd.user_data.data, 'B', sizeof bd.user_data.data),
                            bd.user_data.num_fields = 255;
                    },
                    voice_mail_text_past_the_record(), kEncodeOnly},
        PayloadCase{"full_text", 131, payload(131, kText, 0, " _"), {0x00, 0x3F}, kEncodeOnly},
        PayloadCase{"full_text_reads_as_short_message", 131, payload(133, kText, 0, "HI"), {0x28, 0x29}, kDecodeOnly},
        PayloadCase{"short_message", 133, payload(133, kText, 0, "OK!"), {0x2F, 0x2B, 0x01}},
        PayloadCase{"empty_short_message", 133, payload(133, kText, 0, ""), {}},
        PayloadCase{"short_message_longer_than_the_record_is_cut", 133,
                    [](auto &bd) {
                        payload(133, kText, 0, "")(bd), user_data(bd, WMS_ENCODING_IS91EP, WMS_CDMA_USER_DATA_MAX,
                                                                  Octets(WMS_CDMA_USER_DATA_MAX, 'A'));
                    },
                    Octets(255, 0x21), kDecodeOnly},
        PayloadCase{"callback_of_32_digits", 132, callback_payload(32), series(32, 10)},
        PayloadCase{"callback_keeps_the_count_but_copies_32_digits", 132, callback_payload(40), series(40, 10),
                    kDecodeOnly},
        PayloadCase{"callback_writes_at_most_32_digits", 132, callback_payload(200), series(32, 10), kEncodeOnly}),
    case_name<PayloadCase>);

TEST(Is91PayloadLimits, UnknownTypesChangeNothing)
{
    for (std::uint32_t type : {0u, 129u, 134u, 0x182u}) {
        wms_cdma_bearer_data bd = record([](auto &r) { r.mask = 0x4; });
        EXPECT_EQ(wms_ts_decode_IS91EP_payload(type, 1, bd.user_data.data, &bd), WMS_TS_STATUS_BAD_IS91EP_TYPE) << type;
        EXPECT_EQ(differences(bd, record([](auto &r) { r.mask = 0x4; })), "");
    }
    const wms_cdma_bearer_data bd = record([](auto &r) { is91(r, 134, "A"); });
    wms_cdma_user_data out;
    std::memset(&out, 0xEE, sizeof out);
    EXPECT_EQ(wms_ts_encode_IS91EP_payload(&bd, &out), WMS_TS_STATUS_BAD_IS91EP_TYPE);
    EXPECT_EQ(out.data_len, 0xEE);
    EXPECT_EQ(out.data[0], 0xEE);
}

}  // namespace
