#include <gtest/gtest.h>

#include <cstdint>
#include <ostream>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <vector>

#include "cdma_records.hpp"
#include "smsutil/wms_cdma.h"
#include "support/alloc_counter.hpp"

namespace {

using smsutil::test::empty_bearer_data;
using smsutil::test::raw_of;
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
                       EXPECT_EQ(bd.mc_time.year, 0x26);
                       EXPECT_EQ(bd.mc_time.second, 0x01);
                       EXPECT_EQ(bd.mc_time.timezone, 0);
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

// ---- Round trips on seeded random records ----

enum class Payload { kOctets, kAscii, kIa5, kVoiceMail, kVoiceMailNoPriority, kIs91Full, kIs91Text, kCallbackOrder };

struct RoundTripCase {
    const char *name;
    Payload payload;
};

void PrintTo(const RoundTripCase &c, std::ostream *os) { *os << c.name; }

class BearerDataRoundTrip : public ::testing::TestWithParam<RoundTripCase> {
protected:
    std::mt19937 rng{static_cast<unsigned>(GetParam().payload) * 7919u + 1u};
    unsigned below(unsigned n) { return static_cast<unsigned>(rng() % n); }
    std::uint8_t octet() { return static_cast<std::uint8_t>(rng()); }

    wms_timestamp absolute_time()
    {
        wms_timestamp t{};
        t.year = octet();
        t.month = octet();
        t.day = octet();
        t.hour = octet();
        t.minute = octet();
        t.second = octet();
        return t;
    }
    wms_timestamp relative_time()
    {
        wms_timestamp t{};
        wms_ts_decode_relative_time(octet(), &t);
        return t;
    }

    // Every subparameter, with fields only as wide as they travel.
    wms_cdma_bearer_data random_record()
    {
        wms_cdma_bearer_data bd = empty_bearer_data();
        bd.mask = 0xFFFF;
        bd.message_id.type = below(16);
        bd.message_id.id_number = below(65536);
        bd.user_response = octet();
        bd.mc_time = absolute_time();
        bd.validity_absolute = absolute_time();
        bd.validity_relative = relative_time();
        bd.deferred_absolute = absolute_time();
        bd.deferred_relative = relative_time();
        bd.priority = below(4);
        bd.privacy = below(4);
        bd.user_ack_requested = static_cast<std::uint8_t>(below(2));
        bd.delivery_ack_requested = static_cast<std::uint8_t>(below(2));
        bd.num_messages = static_cast<std::uint8_t>(below(100));
        bd.alert_on_delivery = 1;
        bd.language = octet();
        bd.display_mode = below(4);
        wms_address &cb = bd.callback;
        cb.digit_mode = static_cast<std::uint8_t>(below(2));
        cb.number_of_digits = static_cast<std::uint8_t>(below(33));
        if (cb.digit_mode == WMS_DIGIT_MODE_CHAR) {
            cb.number_type = static_cast<std::uint8_t>(below(8));
            cb.number_plan = static_cast<std::uint8_t>(below(16));
        }
        for (std::size_t i = 0; i < cb.number_of_digits; ++i)
            cb.digits[i] = static_cast<std::uint8_t>(cb.digit_mode == WMS_DIGIT_MODE_CHAR ? octet() : below(16));
        return bd;
    }

    void random_text(wms_cdma_user_data &ud, unsigned max, unsigned first_char, unsigned chars)
    {
        ud.num_fields = static_cast<std::uint8_t>(below(max + 1));
        ud.data_len = ud.num_fields;
        for (std::size_t i = 0; i < ud.num_fields; ++i) ud.data[i] = static_cast<std::uint8_t>(first_char + below(chars));
    }
};

void expect_same_fixed_fields(const wms_cdma_bearer_data &got, const wms_cdma_bearer_data &want)
{
    EXPECT_EQ(got.message_id.type, want.message_id.type);
    EXPECT_EQ(got.message_id.id_number, want.message_id.id_number);
    EXPECT_EQ(got.user_response, want.user_response);
    EXPECT_EQ(0, std::memcmp(&got.mc_time, &want.mc_time, 6));
    EXPECT_EQ(0, std::memcmp(&got.validity_absolute, &want.validity_absolute, 6));
    EXPECT_EQ(0, std::memcmp(&got.deferred_absolute, &want.deferred_absolute, 6));
    EXPECT_EQ(0, std::memcmp(&got.validity_relative, &want.validity_relative, sizeof want.validity_relative));
    EXPECT_EQ(0, std::memcmp(&got.deferred_relative, &want.deferred_relative, sizeof want.deferred_relative));
    EXPECT_EQ(got.privacy, want.privacy);
    EXPECT_EQ(got.user_ack_requested, want.user_ack_requested);
    EXPECT_EQ(got.delivery_ack_requested, want.delivery_ack_requested);
    EXPECT_EQ(got.alert_on_delivery, 1);
    EXPECT_EQ(got.language, want.language);
    EXPECT_EQ(std::uint32_t{got.display_mode}, std::uint32_t{want.display_mode});
}

void expect_same_callback(const wms_address &got, const wms_address &want)
{
    EXPECT_EQ(got.digit_mode, want.digit_mode);
    EXPECT_EQ(got.number_type, want.number_type);
    EXPECT_EQ(got.number_plan, want.number_plan);
    ASSERT_EQ(got.number_of_digits, want.number_of_digits);
    EXPECT_EQ(0, std::memcmp(got.digits, want.digits, want.number_of_digits));
}

void expect_same_units(const wms_cdma_user_data &got, const wms_cdma_user_data &want)
{
    EXPECT_EQ(got.encoding, want.encoding);
    EXPECT_EQ(got.num_fields, want.num_fields);
    ASSERT_EQ(got.data_len, want.data_len);
    EXPECT_EQ(got.padding_bits, want.padding_bits);
    EXPECT_EQ(0, std::memcmp(got.data, want.data, want.data_len));
}

TEST_P(BearerDataRoundTrip, DecodeGivesTheRecordBack)
{
    for (int round = 0; round < 300; ++round) {
        SCOPED_TRACE(round);
        wms_cdma_bearer_data in = random_record();
        wms_cdma_user_data &ud = in.user_data;
        const Payload payload = GetParam().payload;
        std::uint32_t is91_mask = WMS_MASK_BD_ALERT | WMS_MASK_BD_MSG_ID;

        switch (payload) {
        case Payload::kOctets:
            ud.encoding = below(32);
            if (ud.encoding >= 1 && ud.encoding <= 3) ud.encoding += 4;
            ud.data_len = static_cast<std::uint8_t>(below(140));
            ud.num_fields = octet();
            for (std::size_t i = 0; i < ud.data_len; ++i) ud.data[i] = octet();
            break;
        case Payload::kAscii:
        case Payload::kIa5: {
            ud.encoding = payload == Payload::kAscii ? WMS_ENCODING_ASCII : WMS_ENCODING_IA5;
            char text[161] = {};
            const unsigned n = below(161);
            for (unsigned i = 0; i < n; ++i) text[i] = static_cast<char>(1 + below(127));
            ud.num_fields = wms_ts_pack_ascii(text, ud.data, &ud.data_len, &ud.padding_bits);
            break;
        }
        case Payload::kVoiceMail:
        case Payload::kVoiceMailNoPriority: {
            ud.encoding = WMS_ENCODING_IS91EP;
            ud.is91ep_type = WMS_IS91EP_VOICE_MAIL;
            const bool priority = payload == Payload::kVoiceMail;
            if (!priority) in.mask &= ~WMS_MASK_BD_PRIORITY;
            // Without a priority marker a first character of ' ' or '!' would
            // read as one (values 0 and 1): the format cannot tell them apart.
            random_text(ud, 150, priority ? 0x20 : 0x22, priority ? 0x40 : 0x3E);
            in.priority = 2;
            is91_mask |= WMS_MASK_BD_NUM_OF_MSGS | (priority ? WMS_MASK_BD_PRIORITY : 0u) |
                         (ud.num_fields > 0 ? WMS_MASK_BD_USER_DATA : 0u);
            break;
        }
        case Payload::kIs91Full:
        case Payload::kIs91Text:
            ud.encoding = WMS_ENCODING_IS91EP;
            ud.is91ep_type = payload == Payload::kIs91Full ? WMS_IS91EP_SHORT_MESSAGE_FULL : WMS_IS91EP_SHORT_MESSAGE;
            random_text(ud, 180, 0x20, 0x40);
            is91_mask |= WMS_MASK_BD_USER_DATA;
            break;
        case Payload::kCallbackOrder:
            ud.encoding = WMS_ENCODING_IS91EP;
            ud.is91ep_type = WMS_IS91EP_CLI_ORDER;
            if (below(2)) in.mask &= ~WMS_MASK_BD_USER_DATA;  // written all the same
            in.callback.digit_mode = WMS_DIGIT_MODE_BCD;
            in.callback.number_type = 0;
            in.callback.number_plan = 0;
            for (auto &d : in.callback.digits) d &= 0x0F;
            is91_mask |= WMS_MASK_BD_CALLBACK;
            break;
        }

        wms_raw_tpdu raw{};
        ASSERT_EQ(wms_ts_encode_CDMA_bd(&in, &raw), WMS_TS_STATUS_OK);
        wms_cdma_bearer_data out = empty_bearer_data();
        ASSERT_EQ(wms_ts_decode_CDMA_bd(&raw, &out), WMS_TS_STATUS_OK);

        if (ud.encoding != WMS_ENCODING_IS91EP) {
            EXPECT_EQ(out.mask, in.mask);
            expect_same_fixed_fields(out, in);
            EXPECT_EQ(out.priority, in.priority);
            EXPECT_EQ(out.num_messages, in.num_messages);
            expect_same_callback(out.callback, in.callback);
            expect_same_units(out.user_data, ud);
            if (payload != Payload::kOctets) {
                char a[256] = {};
                char b[256] = {};
                EXPECT_EQ(wms_ts_unpack_ascii(&out.user_data, 255, a), wms_ts_unpack_ascii(&ud, 255, b));
                EXPECT_STREQ(a, b);
            }
            continue;
        }

        // An IS-91 payload stands for the subparameters it carries.
        EXPECT_EQ(out.mask, is91_mask);
        EXPECT_EQ(out.message_id.id_number, in.message_id.id_number);
        EXPECT_EQ(out.alert_on_delivery, 1);
        switch (payload) {
        case Payload::kVoiceMail:
        case Payload::kVoiceMailNoPriority:
            EXPECT_EQ(out.num_messages, in.num_messages);
            if (in.mask & WMS_MASK_BD_PRIORITY) {
                EXPECT_EQ(out.priority, 2u);
            }
            if (ud.num_fields > 0) {
                EXPECT_EQ(out.user_data.is91ep_type, WMS_IS91EP_VOICE_MAIL);
                expect_same_units(out.user_data, ud);
            }
            break;
        case Payload::kCallbackOrder:
            expect_same_callback(out.callback, in.callback);
            break;
        default:
            EXPECT_EQ(out.user_data.is91ep_type, WMS_IS91EP_SHORT_MESSAGE);
            expect_same_units(out.user_data, ud);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    UserDataEncodings, BearerDataRoundTrip,
    ::testing::Values(RoundTripCase{"octets", Payload::kOctets}, RoundTripCase{"ascii_7bit", Payload::kAscii},
                      RoundTripCase{"ia5_7bit", Payload::kIa5},
                      RoundTripCase{"is91_voice_mail", Payload::kVoiceMail},
                      RoundTripCase{"is91_voice_mail_no_priority", Payload::kVoiceMailNoPriority},
                      RoundTripCase{"is91_131", Payload::kIs91Full}, RoundTripCase{"is91_133", Payload::kIs91Text},
                      RoundTripCase{"is91_132_callback", Payload::kCallbackOrder}),
    [](const auto &info) { return std::string(info.param.name); });

// ---- Untrusted input ----

// Octets beyond len must not influence the result: decode the same bearer
// data with two different tails and compare whole records.
void expect_tail_ignored(const wms_raw_tpdu &base)
{
    wms_raw_tpdu a = base;
    wms_raw_tpdu b = base;
    const std::size_t used = std::min<std::size_t>(base.len, WMS_MAX_LEN);
    std::memset(a.data + used, 0x00, WMS_MAX_LEN - used);
    std::memset(b.data + used, 0xFF, WMS_MAX_LEN - used);
    wms_cdma_bearer_data ra = empty_bearer_data();
    wms_cdma_bearer_data rb = empty_bearer_data();
    const wms_status_e_type sa = wms_ts_decode_CDMA_bd(&a, &ra);
    ASSERT_EQ(sa, wms_ts_decode_CDMA_bd(&b, &rb));
    ASSERT_TRUE(sa == 0 || sa == 4 || sa == 100 || sa == 101) << sa;
    ASSERT_EQ(0, std::memcmp(&ra, &rb, sizeof ra)) << "len " << base.len;
    if (sa == 0) {
        EXPECT_LE(ra.user_data.data_len, WMS_CDMA_USER_DATA_MAX);
        EXPECT_LE(ra.callback.number_of_digits, WMS_CDMA_CALLBACK_MAX_DIGITS);
    }
}

TEST(BearerDataDecodeUntrusted, RandomOctetsOfEveryLength)
{
    std::mt19937 rng(4242);
    for (int round = 0; round < 4000; ++round) {
        wms_raw_tpdu raw{};
        raw.len = rng() % 260;
        for (auto &o : raw.data) o = static_cast<std::uint8_t>(rng());
        // Mostly known identifiers with plausible lengths, so the walk goes deep.
        const std::size_t used = std::min<std::size_t>(raw.len, WMS_MAX_LEN);
        for (std::size_t i = 0; i + 1 < used && rng() % 8 != 0; i += 2u + raw.data[i + 1]) {
            raw.data[i] = static_cast<std::uint8_t>(rng() % 17);
            raw.data[i + 1] = static_cast<std::uint8_t>(rng() % 12);
        }
        expect_tail_ignored(raw);
    }
}

TEST(BearerDataDecodeUntrusted, EveryTruncationAndFlippedOctetOfValidBearerData)
{
    wms_cdma_bearer_data bd = empty_bearer_data();
    bd.mask = 0xFFFF;
    bd.user_data.encoding = WMS_ENCODING_ASCII;
    bd.user_data.num_fields = wms_ts_pack_ascii("Meet me at the corner at nine", bd.user_data.data,
                                                &bd.user_data.data_len, &bd.user_data.padding_bits);
    bd.callback.number_of_digits = 11;
    wms_raw_tpdu full{};
    ASSERT_EQ(wms_ts_encode_CDMA_bd(&bd, &full), WMS_TS_STATUS_OK);

    for (std::uint32_t len = 0; len <= full.len; ++len) {
        wms_raw_tpdu raw = full;
        raw.len = len;
        expect_tail_ignored(raw);
    }
    std::mt19937 rng(99);
    for (std::uint32_t i = 0; i < full.len; ++i) {
        for (int k = 0; k < 8; ++k) {
            wms_raw_tpdu raw = full;
            raw.data[i] = static_cast<std::uint8_t>(rng());
            expect_tail_ignored(raw);
        }
    }
}

TEST(BearerDataDecodeUntrusted, TouchesNoHeap)
{
    const wms_raw_tpdu raw =
        raw_of({0x00, 0x03, 0x21, 0x23, 0x40, 0x01, 0x07, 0x0C, 0x10, 0x28, 0x03, 0x83, 0x7D, 0x60});
    wms_cdma_bearer_data bd = empty_bearer_data();
    smsutil::test::AllocationScope scope;
    EXPECT_EQ(wms_ts_decode_CDMA_bd(&raw, &bd), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
}

}  // namespace
