#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "transport_test_support.hpp"

namespace {

using smsutil::test::raw_from_hex;

// "How are you?" from +31640100986.
const char kKnownDeliver[] = "040B911346610089F60000208062917314080CC8F71D14969741F977FD07";

TEST(DeliverDecode, KnownTpdu)
{
    const wms_raw_tpdu raw = raw_from_hex(kKnownDeliver);
    wms_gw_deliver msg{};
    ASSERT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_OK);
    EXPECT_EQ(msg.more_msgs_to_send, 0);
    EXPECT_EQ(msg.user_data_header_present, 0);
    EXPECT_EQ(msg.address.number_of_digits, 11);
    EXPECT_EQ(msg.address.number_type, WMS_NUMBER_INTERNATIONAL);
    EXPECT_EQ(msg.address.digits[0], 3);
    EXPECT_EQ(msg.address.digits[10], 6);
    EXPECT_EQ(msg.timestamp.year, 0x02);
    EXPECT_EQ(msg.timestamp.month, 0x08);
    EXPECT_EQ(msg.timestamp.day, 0x26);
    EXPECT_EQ(msg.timestamp.second, 0x41);
    EXPECT_EQ(msg.dcs.alphabet, WMS_ALPHABET_GSM7);
    ASSERT_EQ(+msg.user_data.sm_len, 12);
    EXPECT_EQ(std::string(reinterpret_cast<const char *>(msg.user_data.sm_data), 12), "How are you?");
}

struct FlagCase {
    const char *name;
    uint8_t first;
    uint8_t more, sri, udhi, rp;
};

class DeliverFirstOctet : public ::testing::TestWithParam<FlagCase> {};

TEST_P(DeliverFirstOctet, GivesTheFlags)
{
    wms_raw_tpdu raw = raw_from_hex(kKnownDeliver);
    raw.data[0] = GetParam().first;
    wms_gw_deliver msg{};
    wms_ts_decode_deliver(&raw, &msg);
    EXPECT_EQ(msg.more_msgs_to_send, GetParam().more);
    EXPECT_EQ(msg.status_report_indication, GetParam().sri);
    EXPECT_EQ(msg.user_data_header_present, GetParam().udhi);
    EXPECT_EQ(msg.reply_path_present, GetParam().rp);
}

INSTANTIATE_TEST_SUITE_P(Octets, DeliverFirstOctet,
                         ::testing::Values(FlagCase{"mms_set", 0x04, 0, 0, 0, 0}, FlagCase{"mms_clear", 0x00, 1, 0, 0, 0},
                                           FlagCase{"sri", 0x24, 0, 1, 0, 0}, FlagCase{"reply_path", 0x84, 0, 0, 0, 1}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(DeliverDecode, ReturnCallPidMarksVoicemailWaiting)
{
    wms_raw_tpdu raw = raw_from_hex(kKnownDeliver);
    raw.data[9] = 0x5F;  // TP-PID after the first octet and 8 address octets
    wms_gw_deliver msg{};
    ASSERT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_OK);
    EXPECT_EQ(+msg.dcs.coding_group, WMS_DCS_MWI_STORE);
    EXPECT_EQ(msg.dcs.mwi_active, 1);
    EXPECT_EQ(msg.dcs.mwi_kind, WMS_MWI_VOICEMAIL);
    EXPECT_EQ(msg.dcs.alphabet, WMS_ALPHABET_GSM7);
}

// The store group has no 8-bit form, so an 8-bit return call comes back as
// UCS-2 store (0xE8) once encoded again; from then on it is stable.
TEST(DeliverDecode, ReturnCallWithEightBitDataSettlesOnTheUcs2StoreGroup)
{
    wms_raw_tpdu raw = raw_from_hex("04028121" "5F04" "32110121000000" "024142");
    wms_gw_deliver first{};
    ASSERT_EQ(wms_ts_decode_deliver(&raw, &first), WMS_TS_STATUS_OK);
    EXPECT_EQ(first.dcs.alphabet, WMS_ALPHABET_8BIT);
    ASSERT_EQ(wms_ts_encode_deliver(&first, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(raw.data[5], 0xE8);  // TP-DCS
    wms_gw_deliver second{};
    ASSERT_EQ(wms_ts_decode_deliver(&raw, &second), WMS_TS_STATUS_OK);
    EXPECT_EQ(second.dcs.alphabet, WMS_ALPHABET_UCS2);
    ASSERT_EQ(wms_ts_encode_deliver(&second, &raw), WMS_TS_STATUS_OK);
    wms_gw_deliver third{};
    ASSERT_EQ(wms_ts_decode_deliver(&raw, &third), WMS_TS_STATUS_OK);
    EXPECT_EQ(0, std::memcmp(&second, &third, sizeof third));
}

TEST(DeliverDecode, ResultCodesForBadFields)
{
    wms_raw_tpdu raw = raw_from_hex(kKnownDeliver);
    wms_gw_deliver msg{};
    raw.data[1] = 21;  // address length
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_ADDRESS);
    raw = raw_from_hex(kKnownDeliver);
    raw.len = 17;  // cut inside the time stamp
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_TIME);
    raw = raw_from_hex(kKnownDeliver);
    raw.len = 18;  // time stamp complete, TP-UDL missing
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    raw = raw_from_hex(kKnownDeliver);
    raw.len -= 1;  // text one octet short
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
}

TEST(DeliverDecode, LongUserDataIsFilledAndReported)
{
    wms_raw_tpdu raw = raw_from_hex("040B911346610089F60008208062917314088E");
    for (int i = 0; i < 142; ++i) raw.data[raw.len++] = 0x30;
    wms_gw_deliver msg{};
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(+msg.user_data.sm_len, 142);
}

TEST(DeliverDecode, BoundedOnEveryPrefixAndRandomOctets)
{
    smsutil::test::expect_bounded_on_hostile_input<wms_gw_deliver>(raw_from_hex(kKnownDeliver), wms_ts_decode_deliver,
                                                                   11);
    // A header in UCS-2 text as well.
    smsutil::test::expect_bounded_on_hostile_input<wms_gw_deliver>(
        raw_from_hex("440B911346610089F600082080629173140810050003120301004100420043"), wms_ts_decode_deliver, 12);
}

TEST(DeliverEncode, RefusesBadAddressAndTime)
{
    wms_gw_deliver msg{};
    msg.timestamp = wms_timestamp{0x24, 0x01, 0x01, 0, 0, 0, 0};
    msg.address.number_of_digits = 21;
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_deliver(&msg, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[0], 0x04);
    EXPECT_EQ(raw.data[1], 0x00);  // cleared, nothing after the first octet
    EXPECT_EQ(+raw.len, 0x77777777u);
    msg.address.number_of_digits = 2;
    msg.timestamp.month = 0;
    EXPECT_EQ(wms_ts_encode_deliver(&msg, &raw), WMS_TS_STATUS_BAD_TIME);
}

TEST(DeliverRoundTrip, SeededRandomRecords)
{
    smsutil::test::RecordGenerator gen(31337);
    for (int i = 0; i < 500; ++i) {
        wms_gw_deliver msg{};
        msg.more_msgs_to_send = static_cast<uint8_t>(gen.below(2));
        msg.reply_path_present = static_cast<uint8_t>(gen.below(2));
        msg.status_report_indication = static_cast<uint8_t>(gen.below(2));
        msg.address = gen.address();
        msg.pid = gen.octet();
        if (msg.pid == 0x5F) msg.pid = 0;
        msg.dcs = gen.dcs();
        msg.timestamp = gen.timestamp();
        const bool any_kinds = gen.below(2) == 0;
        msg.user_data = gen.user_data(msg.dcs.alphabet, gen.below(2) == 0, any_kinds);
        msg.user_data_header_present = msg.user_data.num_headers != 0;

        wms_raw_tpdu raw{};
        smsutil::test::AllocationScope scope;
        ASSERT_EQ(wms_ts_encode_deliver(&msg, &raw), WMS_TS_STATUS_OK) << i;
        EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_DELIVER);
        wms_gw_deliver back{};
        ASSERT_EQ(wms_ts_decode_deliver(&raw, &back), WMS_TS_STATUS_OK) << smsutil::test::hex_of(raw);
        EXPECT_EQ(scope.allocations(), 0u);

        EXPECT_EQ(back.more_msgs_to_send, msg.more_msgs_to_send);
        EXPECT_EQ(back.reply_path_present, msg.reply_path_present);
        EXPECT_EQ(back.status_report_indication, msg.status_report_indication);
        EXPECT_EQ(back.user_data_header_present, msg.user_data_header_present);
        smsutil::test::expect_same_address(back.address, msg.address);
        EXPECT_EQ(back.pid, msg.pid);
        smsutil::test::expect_same_dcs(back.dcs, msg.dcs);
        EXPECT_EQ(std::memcmp(&back.timestamp, &msg.timestamp, sizeof msg.timestamp), 0);
        smsutil::test::expect_same_user_data(msg.user_data, back.user_data, any_kinds);
        // Kinds kept raw come back as the same octets.
        wms_raw_tpdu again{};
        ASSERT_EQ(wms_ts_encode_deliver(&back, &again), WMS_TS_STATUS_OK);
        EXPECT_EQ(smsutil::test::hex_of(again), smsutil::test::hex_of(raw)) << i;
    }
}

}  // namespace
