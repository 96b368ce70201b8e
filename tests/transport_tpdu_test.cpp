// Whole TPDUs: known octets decoded and encoded, flags, result codes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

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
    ASSERT_EQ(msg.address.number_of_digits, expected.address.number_of_digits);
    EXPECT_EQ(std::memcmp(msg.address.digits, expected.address.digits, expected.address.number_of_digits), 0);
    EXPECT_EQ(std::memcmp(&msg.validity, &expected.validity, sizeof msg.validity), 0);
    EXPECT_EQ(std::memcmp(&msg.user_data, &expected.user_data, sizeof msg.user_data), 0);
}

// MR 0x45 for +31640100986, sent 02-08-26 19:37:41, discharged 19:37:42.
const char kReportHead[] = "06450B911346610089F6208062917314082080629173240800";

struct ReportCase {
    const char *name;
    std::string tail;  // after TP-ST
    uint32_t result;
    uint32_t pi;
    uint8_t pid;
    uint8_t alphabet;
    uint16_t sm_len;
};

class StatusReportDecode : public ::testing::TestWithParam<ReportCase> {};

TEST_P(StatusReportDecode, ReadsWhatTpPiAnnounces)
{
    const auto &c = GetParam();
    const wms_raw_tpdu raw = raw_from_hex(kReportHead + c.tail);
    wms_gw_status_report msg{};
    AllocationScope scope;
    ASSERT_EQ(wms_ts_decode_status_report(&raw, &msg), c.result);
    EXPECT_EQ(scope.allocations(), 0u);
    EXPECT_EQ(msg.more_msgs_to_send, 0);
    EXPECT_EQ(+msg.message_reference, 0x45u);
    EXPECT_EQ(msg.address.number_of_digits, 11);
    EXPECT_EQ(msg.timestamp.second, 0x41);
    EXPECT_EQ(msg.discharge_time.second, 0x42);
    EXPECT_EQ(msg.tp_status, 0);
    EXPECT_EQ(+msg.parameter_indicator, c.pi);
    EXPECT_EQ(msg.pid, c.pid);
    EXPECT_EQ(msg.dcs.alphabet, c.alphabet);
    EXPECT_EQ(+msg.user_data.sm_len, +c.sm_len);
}

INSTANTIATE_TEST_SUITE_P(
    Tails, StatusReportDecode,
    ::testing::Values(ReportCase{"ends_after_status", "", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pi_ff_means_none", "FF7F", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pi_zero", "00", 0, 0, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"pid_only", "0141", 0, 1, 0x41, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"all_three_ucs2", "07000804004100420", 0, 7, 0, WMS_ALPHABET_UCS2, 4},
                      ReportCase{"text_without_dcs_is_7bit", "0402E834", 0, 4, 0, WMS_ALPHABET_GSM7, 2},
                      ReportCase{"announced_pid_missing", "01", 101, 1, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"announced_dcs_missing", "03AA", 101, 3, 0xAA, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"announced_udl_missing", "04", 101, 4, 0, WMS_ALPHABET_GSM7, 0},
                      ReportCase{"text_short", "0403E834", 101, 4, 0, WMS_ALPHABET_GSM7, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(StatusReportDecodeEdge, ResultCodesForCutFixedFields)
{
    wms_raw_tpdu raw = raw_from_hex(kReportHead);
    wms_gw_status_report msg{};
    raw.len = 9;  // inside the address
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_ADDRESS);
    raw.len = 16;  // inside TP-SCTS
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_TIME);
    raw.len = 23;  // inside TP-DT
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_TIME);
    raw.len = 24;  // TP-ST missing
    EXPECT_EQ(wms_ts_decode_status_report(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
}

wms_gw_command known_command()
{
    wms_gw_command cmd{};
    cmd.status_report_request = 1;
    cmd.message_reference = 0x105;  // only the low octet travels
    cmd.pid = 0;
    cmd.command_type = 1;
    cmd.message_number = 3;
    cmd.address.number_type = WMS_NUMBER_INTERNATIONAL;
    cmd.address.number_plan = 1;
    cmd.address.number_of_digits = 4;
    const uint8_t digits[] = {1, 2, 3, 4};
    std::memcpy(cmd.address.digits, digits, 4);
    cmd.command_data_length = 2;
    cmd.command_data[0] = 0xAB;
    cmd.command_data[1] = 0xCD;
    return cmd;
}

TEST(CommandEncode, KnownTpdu)
{
    const wms_gw_command cmd = known_command();
    wms_raw_tpdu raw{};
    AllocationScope scope;
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(scope.allocations(), 0u);
    EXPECT_EQ(hex_of(raw), "22050001030491214302ABCD");
    EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_COMMAND);
}

TEST(CommandEncode, BadAddressStopsAfterTheFixedOctets)
{
    wms_gw_command cmd = known_command();
    cmd.address.number_of_digits = 21;
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[4], 0x03);
    EXPECT_EQ(raw.data[5], 0x00);
    EXPECT_EQ(+raw.len, 0x77777777u);
}

TEST(CommandEncode, CommandDataThatDoesNotFitIsRefused)
{
    wms_gw_command cmd = known_command();
    std::memset(cmd.command_data, 0x5A, sizeof cmd.command_data);
    wms_raw_tpdu raw{};
    cmd.command_data_length = 255 - 10;  // exactly fills the TPDU
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(+raw.len, 255u);
    cmd.command_data_length = 255 - 9;
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(raw.data[10], 0x00);  // nothing of it was copied
}

}  // namespace
