// Whole TPDUs: real octets decoded field by field and encoded again, flags, result codes.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <type_traits>

#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

// The fields a row states, in one line: "type/plan:digits".
std::string address_of(const wms_address &a)
{
    std::string s = std::to_string(a.number_type) + "/" + std::to_string(a.number_plan) + ":";
    for (int i = 0; i < a.number_of_digits && i < WMS_ADDRESS_DIGITS_SIZE; ++i)
        s += "0123456789*#abcf"[a.digits[i] & 0x0F];
    return s;
}
std::string time_of(const wms_timestamp &t)
{
    const uint8_t o[6] = {t.year, t.month, t.day, t.hour, t.minute, t.second};
    return hex(o, 6) + (t.timezone < 0 ? "" : "+") + std::to_string(t.timezone);
}
std::string dcs_of(const wms_gw_dcs &d)
{
    return "dcs " + std::to_string(d.alphabet) + "/" + std::to_string(d.msg_class) + "/" +
           std::to_string(d.coding_group) + "/" + std::to_string(d.mwi_active) + std::to_string(d.mwi_kind);
}
std::string user_data_of(const wms_gw_user_data &u)
{
    std::string s = "ud";
    for (int i = 0; i < u.num_headers && i < WMS_UDH_MAX_IES; ++i) s += " h" + std::to_string(u.headers[i].header_id);
    return s + " " + hex(u.sm_data, u.sm_len);
}

std::string fields(const wms_gw_deliver &m)
{
    return std::to_string(m.more_msgs_to_send) + std::to_string(m.status_report_indication) +
           std::to_string(m.user_data_header_present) + std::to_string(m.reply_path_present) + " " +
           address_of(m.address) + " pid " + std::to_string(m.pid) + " " + dcs_of(m.dcs) + " " + time_of(m.timestamp) +
           " " + user_data_of(m.user_data);
}
std::string fields(const wms_gw_submit &m)
{
    return std::to_string(m.reject_duplicates) + std::to_string(m.status_report_request) +
           std::to_string(m.user_data_header_present) + std::to_string(m.reply_path_present) + " mr " +
           std::to_string(m.message_reference) + " " + address_of(m.address) + " " + dcs_of(m.dcs) + " vp " +
           std::to_string(m.validity.format) + " " + time_of(m.validity.time) + " " + user_data_of(m.user_data);
}
std::string fields(const wms_gw_status_report &m)
{
    return std::to_string(m.more_msgs_to_send) + " mr " + std::to_string(m.message_reference) + " " +
           address_of(m.address) + " " + time_of(m.timestamp) + " " + time_of(m.discharge_time) + " st " +
           std::to_string(m.tp_status) + " pi " + std::to_string(m.parameter_indicator) + " pid " +
           std::to_string(m.pid) + " " + dcs_of(m.dcs) + " " + user_data_of(m.user_data);
}

enum Kind { kDeliver, kSubmit, kReport };

struct Pdu {
    const char *name;
    Kind kind;
    const char *hex;
    const char *fields;
    const char *again = nullptr;  // what encoding the record gives, when not the same octets; "" for no encoder
};

class RealPdu : public ::testing::TestWithParam<Pdu> {};

template <typename Record, typename Decode, typename Encode>
void check(const Pdu &c, Decode decode, Encode encode)
{
    const wms_raw_tpdu raw = raw_from_hex(c.hex);
    Record m;
    // A report leaves what TP-PI does not announce as it was, and reads
    // text without a TP-DCS in the coding it finds.
    std::memset(&m, std::is_same_v<Record, wms_gw_status_report> ? 0 : 0x5A, sizeof m);
    m.dcs.mwi_active = m.dcs.mwi_kind = 0;  // kept as they were outside the indication groups
    AllocationScope heap;
    ASSERT_EQ(decode(&raw, &m), WMS_TS_STATUS_OK);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(fields(m), c.fields);
    if constexpr (!std::is_same_v<Encode, std::nullptr_t>) {
        wms_raw_tpdu out{};
        ASSERT_EQ(encode(&m, &out), WMS_TS_STATUS_OK);
        EXPECT_EQ(hex_of(out), c.again ? c.again : c.hex);
    }
}

TEST_P(RealPdu, DecodesToItsFieldsAndEncodesBack)
{
    const Pdu &c = GetParam();
    if (c.kind == kDeliver) check<wms_gw_deliver>(c, wms_ts_decode_deliver, wms_ts_encode_deliver);
    if (c.kind == kSubmit) check<wms_gw_submit>(c, wms_ts_decode_submit, wms_ts_encode_submit);
    if (c.kind == kReport) check<wms_gw_status_report>(c, wms_ts_decode_status_report, nullptr);
}

// "How are you?" from +31641600986; "hellohello" to +46708251358 with four
// days' validity; a report on message 0x45 sent 02-08-26 19:37:41.
#define HOW_ADDR "0B911346610089F6"
#define HOW_TAIL "0000208062917314400CC8F71D14969741F977FD07"
#define HOW_FIELDS "1/1:31641600986 pid 0 dcs 0/4/0/00 020826193741+4 ud 486F772061726520796F753F"
#define REPORT "06450B911346610089F6208062917314082080629173240800"
#define REPORT_FIELDS "0 mr 69 1/1:31641600986 020826193741+0 020826193742+0 st 0 pi "

INSTANTIATE_TEST_SUITE_P(
    Tpdus, RealPdu,
    ::testing::Values(Pdu{"deliver", kDeliver, "04" HOW_ADDR HOW_TAIL, "0000 " HOW_FIELDS},
                      Pdu{"deliver_more_to_send", kDeliver, "00" HOW_ADDR HOW_TAIL, "1000 " HOW_FIELDS},
                      Pdu{"deliver_sri", kDeliver, "24" HOW_ADDR HOW_TAIL, "0100 " HOW_FIELDS},
                      Pdu{"deliver_reply_path", kDeliver, "84" HOW_ADDR HOW_TAIL, "0001 " HOW_FIELDS},
                      // A return-call PID marks voicemail waiting; it goes out again in the store group.
                      Pdu{"deliver_return_call", kDeliver, "04" HOW_ADDR "5F00208062917314400CC8F71D14969741F977FD07",
                          "0000 1/1:31641600986 pid 95 dcs 0/4/2/10 020826193741+4 ud 486F772061726520796F753F",
                          "04" HOW_ADDR "5FD8208062917314400CC8F71D14969741F977FD07"},
                      // The store group has no 8-bit form: 8-bit return call data settles on UCS-2 store.
                      Pdu{"deliver_return_call_8bit", kDeliver,
                          "040281215F04321101210000000"
                          "24142",
                          "0000 0/1:12 pid 95 dcs 1/4/2/10 231110120000+0 ud 4241",
                          "040281215FE83211012100000002"
                          "4142"},
                      Pdu{"deliver_ucs2_store", kDeliver,
                          "040281215FE8321101210000000"
                          "24142",
                          "0000 0/1:12 pid 95 dcs 2/4/2/10 231110120000+0 ud 4241"},
                      Pdu{"submit", kSubmit, "11000B916407281553F80000AA0AE8329BFD4697D9EC37",
                          "0000 mr 0 1/1:46708251358 dcs 0/4/0/00 vp 2 000004000000+0 ud 68656C6C6F68656C6C6F"},
                      Pdu{"submit_concat_8bit", kSubmit, "51000B916407281553F80000AA0C050003120301D06536FB0D",
                          "0010 mr 0 1/1:46708251358 dcs 0/4/0/00 vp 2 000004000000+0 ud h0 68656C6C6F"},
                      Pdu{"submit_concat_16bit", kSubmit, "51000B916407281553F80000AA0D06080412340202E8329BFD06",
                          "0010 mr 0 1/1:46708251358 dcs 0/4/0/00 vp 2 000004000000+0 ud h8 68656C6C6F"},
                      Pdu{"submit_no_validity", kSubmit,
                          "0100048121430000"
                          "0168",
                          "0000 mr 0 0/1:1234 dcs 0/4/0/00 vp 0 000000000000+0 ud 68"},
                      Pdu{"submit_absolute_validity", kSubmit,
                          "1900048121430000"
                          "62101241000004"
                          "0168",
                          "0000 mr 0 0/1:1234 dcs 0/4/0/00 vp 3 260121140000+40 ud 68"},
                      Pdu{"report_ends_after_status", kReport, REPORT, REPORT_FIELDS "0 pid 0 dcs 0/0/0/00 ud "},
                      Pdu{"report_pi_ff_means_none", kReport, REPORT "FF7F", REPORT_FIELDS "0 pid 0 dcs 0/0/0/00 ud "},
                      Pdu{"report_pid_only", kReport, REPORT "0141", REPORT_FIELDS "1 pid 65 dcs 0/0/0/00 ud "},
                      Pdu{"report_all_three_ucs2", kReport, REPORT "070008040041004200",
                          REPORT_FIELDS "7 pid 0 dcs 2/4/0/00 ud 41004200"},
                      Pdu{"report_text_without_dcs_is_7bit", kReport, REPORT "0402E834",
                          REPORT_FIELDS "4 pid 0 dcs 0/0/0/00 ud 6869"}),
    [](const auto &info) { return std::string(info.param.name); });

struct Refusal {
    const char *name;
    Kind kind;
    const char *hex;
    wms_status_e_type status;
};

class RefusedPdu : public ::testing::TestWithParam<Refusal> {};

TEST_P(RefusedPdu, GivesTheResultCodeOfTheFirstBadField)
{
    const Refusal &c = GetParam();
    const wms_raw_tpdu raw = raw_from_hex(c.hex);
    wms_gw_deliver d{};
    wms_gw_submit s{};
    wms_gw_status_report r{};
    const wms_status_e_type got = c.kind == kDeliver  ? wms_ts_decode_deliver(&raw, &d)
                                  : c.kind == kSubmit ? wms_ts_decode_submit(&raw, &s)
                                                      : wms_ts_decode_status_report(&raw, &r);
    EXPECT_EQ(got, c.status);
}

INSTANTIATE_TEST_SUITE_P(
    Tpdus, RefusedPdu,
    ::testing::Values(
        Refusal{"deliver_address_of_21", kDeliver, "0415911346610089F6" HOW_TAIL, WMS_TS_STATUS_BAD_ADDRESS},
        Refusal{"deliver_cut_in_time", kDeliver, "04" HOW_ADDR "000020806291", WMS_TS_STATUS_BAD_TIME},
        Refusal{"deliver_no_udl", kDeliver,
                "04" HOW_ADDR "00002080629173140"
                "8",
                WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"deliver_text_short", kDeliver, "04" HOW_ADDR "0000208062917314080CC8F71D14969741F977FD",
                WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"submit_enhanced_validity", kSubmit,
                "0900048121430000AA62101241000001"
                "68",
                WMS_TS_STATUS_BAD_TIME},
        Refusal{"report_cut_in_address", kReport, "06450B9113466100", WMS_TS_STATUS_BAD_ADDRESS},
        Refusal{"report_cut_in_scts", kReport, "06450B911346610089F620806291", WMS_TS_STATUS_BAD_TIME},
        Refusal{"report_cut_in_dt", kReport, "06450B911346610089F6208062917314082080629173", WMS_TS_STATUS_BAD_TIME},
        Refusal{"report_no_status", kReport, "06450B911346610089F62080629173140820806291732408",
                WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"report_pid_missing", kReport, REPORT "01", WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"report_dcs_missing", kReport, REPORT "03AA", WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"report_udl_missing", kReport, REPORT "04", WMS_TS_STATUS_BAD_USER_DATA_LENGTH},
        Refusal{"report_text_short", kReport, REPORT "0403E834", WMS_TS_STATUS_BAD_USER_DATA_LENGTH}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(DeliverDecode, LongUserDataIsFilledAndReported)
{
    wms_raw_tpdu raw = raw_from_hex("040B911346610089F60008208062917314088E");
    for (int i = 0; i < 142; ++i) raw.data[raw.len++] = 0x30;
    wms_gw_deliver msg{};
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(+msg.user_data.sm_len, 142);
}

// A refused record leaves the first octet written, the rest cleared and
// the length untouched.
TEST(TpduEncode, RefusalsStopAtTheBadField)
{
    wms_gw_deliver d{};
    d.timestamp = wms_timestamp{0x24, 0x01, 0x01, 0, 0, 0, 0};
    d.address.number_of_digits = 21;
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_deliver(&d, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[0], 0x04);
    EXPECT_EQ(raw.data[1], 0x00);
    EXPECT_EQ(+raw.len, 0x77777777u);
    d.address.number_of_digits = 2;
    d.timestamp.month = 0;
    EXPECT_EQ(wms_ts_encode_deliver(&d, &raw), WMS_TS_STATUS_BAD_TIME);

    wms_gw_submit s{};
    const wms_raw_tpdu known = raw_from_hex("11000B916407281553F80000AA0AE8329BFD4697D9EC37");
    ASSERT_EQ(wms_ts_decode_submit(&known, &s), WMS_TS_STATUS_OK);
    const wms_gw_submit good = s;
    std::memset(&raw, 0x77, sizeof raw);
    s.reject_duplicates = 1;
    s.validity.format = 4;
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_VALIDITY_FORMAT);
    EXPECT_EQ(raw.data[0], 0x05);
    EXPECT_EQ(raw.data[1], 0x00);
    EXPECT_EQ(raw.tpdu_type, 0x77);
    s = good;
    s.validity.format = WMS_VP_ENHANCED;
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_TIME);
    s.validity.format = WMS_VP_ABSOLUTE;
    s.validity.time = wms_timestamp{0x24, 0x13, 1, 0, 0, 0, 0};
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_TIME);
    s = good;
    s.address.number_of_digits = 21;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[2], 0x00);  // nothing written after TP-MR
    s = good;
    s.dcs.alphabet = WMS_ALPHABET_UCS2;
    s.user_data.sm_len = 140;
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_OK);
    s.user_data.sm_len = 142;
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(+raw.len, 13u + 1 + 142);
}

TEST(CommandEncode, KnownTpduAndItsLimits)
{
    wms_gw_command cmd{};
    cmd.status_report_request = 1;
    cmd.message_reference = 0x105;  // only the low octet travels
    cmd.command_type = 1;
    cmd.message_number = 3;
    cmd.address = wms_address{0, 0, WMS_NUMBER_INTERNATIONAL, 1, 4, {1, 2, 3, 4}};
    cmd.command_data_length = 2;
    cmd.command_data[0] = 0xAB;
    cmd.command_data[1] = 0xCD;
    wms_raw_tpdu raw{};
    AllocationScope heap;
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(hex_of(raw), "22050001030491214302ABCD");
    EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_COMMAND);

    std::memset(cmd.command_data, 0x5A, sizeof cmd.command_data);
    cmd.command_data_length = 255 - 10;  // exactly fills the TPDU
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(+raw.len, 255u);
    cmd.command_data_length = 255 - 9;
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(raw.data[10], 0x00);  // nothing of it was copied

    cmd.command_data_length = 2;
    cmd.address.number_of_digits = 21;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(raw.data[4], 0x03);
    EXPECT_EQ(raw.data[5], 0x00);
    EXPECT_EQ(+raw.len, 0x77777777u);
}

}  // namespace
