#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "support/log_fixture.hpp"
#include "transport_test_support.hpp"

namespace {

using smsutil::test::hex_of;
using smsutil::test::raw_from_hex;

// "hellohello" to +46708251358, relative validity of four days.
const char kKnownSubmit[] = "11000B916407281553F80000AA0AE8329BFD4697D9EC37";

wms_gw_submit known_record()
{
    wms_gw_submit msg{};
    msg.validity.format = WMS_VP_RELATIVE;
    wms_ts_decode_relative_time(0xAA, &msg.validity.time);
    msg.address.number_type = WMS_NUMBER_INTERNATIONAL;
    msg.address.number_plan = 1;
    msg.address.number_of_digits = 11;
    const uint8_t digits[] = {4, 6, 7, 0, 8, 2, 5, 1, 3, 5, 8};
    std::memcpy(msg.address.digits, digits, sizeof digits);
    msg.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    msg.user_data.sm_len = 10;
    std::memcpy(msg.user_data.sm_data, "hellohello", 10);
    return msg;
}

TEST(SubmitEncode, KnownTpdu)
{
    const wms_gw_submit msg = known_record();
    wms_raw_tpdu raw{};
    ASSERT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(hex_of(raw), kKnownSubmit);
    EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_SUBMIT);
}

TEST(SubmitEncode, ConcatenatedPartsPackBehindTheHeaderWithFillBits)
{
    wms_gw_submit msg = known_record();
    msg.user_data_header_present = 1;
    msg.user_data.num_headers = 1;
    msg.user_data.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    msg.user_data.headers[0].u.concat_8 = {0x12, 3, 1};
    msg.user_data.sm_len = 5;
    wms_raw_tpdu raw{};
    ASSERT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(hex_of(raw), "51000B916407281553F80000AA0C050003120301D06536FB0D");

    msg.user_data.headers[0].header_id = WMS_UDH_CONCAT_16BIT_REF;
    msg.user_data.headers[0].u.concat_16 = {0x1234, 2, 2};
    ASSERT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(hex_of(raw), "51000B916407281553F80000AA0D06080412340202E8329BFD06");
}

TEST(SubmitEncode, ResultCodes)
{
    wms_gw_submit msg = known_record();
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    msg.reject_duplicates = 1;
    msg.validity.format = 4;
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_BAD_VALIDITY_FORMAT);
    EXPECT_EQ(raw.data[0], 0x05);
    EXPECT_EQ(raw.data[1], 0x00);
    EXPECT_EQ(raw.tpdu_type, 0x77);

    msg = known_record();
    msg.validity.format = WMS_VP_ENHANCED;
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_BAD_TIME);
    msg.validity.format = WMS_VP_ABSOLUTE;
    msg.validity.time = wms_timestamp{0x24, 0x13, 1, 0, 0, 0, 0};
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_BAD_TIME);

    msg = known_record();
    msg.address.number_of_digits = 21;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[2], 0x00);  // nothing written after TP-MR

    msg = known_record();
    msg.dcs.alphabet = WMS_ALPHABET_UCS2;
    msg.user_data.sm_len = 140;
    std::memset(msg.user_data.sm_data, 0x41, 140);
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_OK);
    msg.user_data.sm_len = 142;
    EXPECT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(+raw.len, 13u + 1 + 142);
}

struct VpCase {
    const char *name;
    uint8_t first;
    uint8_t format;
    uint32_t result;
    uint32_t udl_at;  // offset of TP-UDL
};

class SubmitValidityFormats : public ::testing::TestWithParam<VpCase> {};

TEST_P(SubmitValidityFormats, ReadTheAnnouncedOctets)
{
    wms_raw_tpdu raw = raw_from_hex("0100048121430000AA62101241000004E8329B0D");
    raw.data[0] = GetParam().first;
    const uint32_t udl_at = GetParam().udl_at;
    raw.data[udl_at] = 0x01;  // one septet, 'h'
    raw.data[udl_at + 1] = 0x68;
    raw.len = udl_at + 2;
    wms_gw_submit msg{};
    ASSERT_EQ(wms_ts_decode_submit(&raw, &msg), GetParam().result);
    EXPECT_EQ(msg.validity.format, GetParam().format);
    if (GetParam().result == 0) {
        EXPECT_EQ(+msg.user_data.sm_len, 1);
        EXPECT_EQ(msg.user_data.sm_data[0], 0x68);
    }
}

INSTANTIATE_TEST_SUITE_P(Octets, SubmitValidityFormats,
                         ::testing::Values(VpCase{"none", 0x01, WMS_VP_NONE, 0, 8},
                                           VpCase{"relative", 0x11, WMS_VP_RELATIVE, 0, 9},
                                           VpCase{"absolute", 0x19, WMS_VP_ABSOLUTE, 0, 15},
                                           VpCase{"enhanced", 0x09, WMS_VP_ENHANCED, 102, 9}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(SubmitDecode, KnownTpdu)
{
    const wms_raw_tpdu raw = raw_from_hex(kKnownSubmit);
    wms_gw_submit msg{};
    ASSERT_EQ(wms_ts_decode_submit(&raw, &msg), WMS_TS_STATUS_OK);
    const wms_gw_submit expected = known_record();
    smsutil::test::expect_same_address(msg.address, expected.address);
    EXPECT_EQ(std::memcmp(&msg.validity, &expected.validity, sizeof msg.validity), 0);
    EXPECT_EQ(std::memcmp(&msg.user_data, &expected.user_data, sizeof msg.user_data), 0);
}

TEST(SubmitDecode, BoundedOnEveryPrefixAndRandomOctets)
{
    smsutil::test::expect_bounded_on_hostile_input<wms_gw_submit>(raw_from_hex(kKnownSubmit), wms_ts_decode_submit, 21);
    smsutil::test::expect_bounded_on_hostile_input<wms_gw_submit>(
        raw_from_hex("5919000B916407281553F80000624211032145000C050003120301D06536FB0D"), wms_ts_decode_submit, 22);
}

TEST(SubmitRoundTrip, SeededRandomRecords)
{
    smsutil::test::RecordGenerator gen(4242);
    for (int i = 0; i < 500; ++i) {
        wms_gw_submit msg{};
        msg.reject_duplicates = static_cast<uint8_t>(gen.below(2));
        msg.reply_path_present = static_cast<uint8_t>(gen.below(2));
        msg.status_report_request = static_cast<uint8_t>(gen.below(2));
        msg.message_reference = gen.octet();
        msg.address = gen.address();
        msg.pid = gen.octet();
        msg.dcs = gen.dcs();
        msg.validity = gen.validity();
        const bool any_kinds = gen.below(2) == 0;
        msg.user_data = gen.user_data(msg.dcs.alphabet, gen.below(2) == 0, any_kinds);
        msg.user_data_header_present = msg.user_data.num_headers != 0;

        wms_raw_tpdu raw{};
        smsutil::test::AllocationScope scope;
        ASSERT_EQ(wms_ts_encode_submit(&msg, &raw), WMS_TS_STATUS_OK) << i;
        wms_gw_submit back{};
        ASSERT_EQ(wms_ts_decode_submit(&raw, &back), WMS_TS_STATUS_OK) << hex_of(raw);
        EXPECT_EQ(scope.allocations(), 0u);

        EXPECT_EQ(back.reject_duplicates, msg.reject_duplicates);
        EXPECT_EQ(back.reply_path_present, msg.reply_path_present);
        EXPECT_EQ(back.status_report_request, msg.status_report_request);
        EXPECT_EQ(back.user_data_header_present, msg.user_data_header_present);
        EXPECT_EQ(+back.message_reference, +msg.message_reference);
        smsutil::test::expect_same_address(back.address, msg.address);
        EXPECT_EQ(back.pid, msg.pid);
        smsutil::test::expect_same_dcs(back.dcs, msg.dcs);
        EXPECT_EQ(std::memcmp(&back.validity, &msg.validity, sizeof msg.validity), 0) << i;
        smsutil::test::expect_same_user_data(msg.user_data, back.user_data, any_kinds);
        wms_raw_tpdu again{};
        ASSERT_EQ(wms_ts_encode_submit(&back, &again), WMS_TS_STATUS_OK);
        EXPECT_EQ(hex_of(again), hex_of(raw)) << i;
    }
}

class SubmitLog : public smsutil::test::LogTest {};

TEST_F(SubmitLog, TracesEncodingAndDecoding)
{
    const wms_gw_submit msg = known_record();
    wms_raw_tpdu raw{};
    wms_ts_encode_submit(&msg, &raw);
    wms_gw_submit back{};
    wms_ts_decode_submit(&raw, &back);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("wms_ts_encode_submit", "MTI is"));
    EXPECT_TRUE(logged_by("wms_ts_encode_submit", "11"));
    EXPECT_TRUE(logged_by("wms_ts_encode_submit", "DA is"));
    EXPECT_TRUE(logged_by("wms_ts_encode_submit", "The pid is 0"));
    EXPECT_TRUE(logged_by("wms_ts_encode_submit", "The string length is 23"));
    EXPECT_TRUE(logged_by("wms_ts_decode_submit", "The lenth is: 23"));
    EXPECT_TRUE(logged_by("wms_ts_decode_submit", "The decoded data before mr is: 11"));
    EXPECT_TRUE(logged_by("wms_ts_decode_submit", "The decoded mr is: 0"));
    EXPECT_TRUE(logged_by("wms_ts_decode_submit", "The value of pos is 13"));
    EXPECT_TRUE(logged_by("wms_ts_decode_submit", "The data before decoded is a"));
#endif
}

}  // namespace
