// Whole TPDUs: real octets decoded field by field and encoded again, flags, result codes.
#include <gtest/gtest.h>

#include <cstring>
#include <sstream>
#include <string>
#include <type_traits>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

// The fields of a record in one line, as data/real_tpdus.txt states them.
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
    return std::to_string(m.more_msgs_to_send) + std::to_string(m.status_report_qualifier) +
           std::to_string(m.user_data_header_present) + " mr " + std::to_string(m.message_reference) + " " +
           address_of(m.address) + " " + time_of(m.timestamp) + " " + time_of(m.discharge_time) + " st " +
           std::to_string(m.tp_status) + " pi " + std::to_string(m.parameter_indicator) + " pid " +
           std::to_string(m.pid) + " " + dcs_of(m.dcs) + " " + user_data_of(m.user_data);
}

struct Pdu {
    std::string kind, name, hex, fields, again;
};

std::vector<Pdu> real_tpdus()
{
    std::vector<Pdu> rows;
    std::istringstream in(read_file(SMSUTIL_TEST_DATA_DIR "/real_tpdus.txt"));
    for (std::string line; std::getline(in, line);) {
        if (line.empty() || line[0] == '#') continue;
        const std::size_t at = line.find(" | ") + 3, again = line.find(" | ", at);
        Pdu &p = rows.emplace_back();
        std::istringstream(line) >> p.kind >> p.name >> p.hex;
        p.fields = line.substr(at, again - at);
        p.again = again == std::string::npos ? p.hex : line.substr(again + 3);
    }
    return rows;
}

template <typename Record>
void check(const Pdu &c, wms_status_e_type (*decode)(const wms_raw_tpdu *, Record *),
           std::type_identity_t<wms_status_e_type (*)(const Record *, wms_raw_tpdu *)> encode, uint8_t type)
{
    const wms_raw_tpdu raw = raw_from_hex(c.hex);
    Record m;
    // A report leaves what TP-PI does not announce as it was, and reads
    // text without a TP-DCS in the coding it finds.
    std::memset(&m, std::is_same_v<Record, wms_gw_status_report> ? 0 : 0x5A, sizeof m);
    m.dcs.mwi_active = m.dcs.mwi_kind = 0;  // kept as they were outside the indication groups
    wms_raw_tpdu out;
    std::memset(&out, 0x77, sizeof out);
    AllocationScope heap;
    const wms_status_e_type status = decode(&raw, &m);
    const bool encoded = status == WMS_TS_STATUS_OK && encode && encode(&m, &out) == WMS_TS_STATUS_OK;
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(status == WMS_TS_STATUS_OK ? fields(m) : "status " + std::to_string(status), c.fields);
    if (status == WMS_TS_STATUS_OK && encode) {
        EXPECT_TRUE(encoded);
        EXPECT_EQ(std::to_string(out.tpdu_type) + " " + hex_of(out), std::to_string(type) + " " + c.again);
    }
}

class RealPdu : public ::testing::TestWithParam<Pdu> {};

TEST_P(RealPdu, DecodesToItsFieldsAndEncodesBack)
{
    const Pdu &c = GetParam();
    if (c.kind == "deliver") check(c, wms_ts_decode_deliver, wms_ts_encode_deliver, 0);
    if (c.kind == "submit") check(c, wms_ts_decode_submit, wms_ts_encode_submit, 3);
    if (c.kind == "report") check(c, wms_ts_decode_status_report, nullptr, 0);
}

INSTANTIATE_TEST_SUITE_P(Tpdus, RealPdu, ::testing::ValuesIn(real_tpdus()), case_name<Pdu>);

TEST(DeliverDecode, LongUserDataIsFilledAndReported)
{
    wms_raw_tpdu raw = raw_from_hex("040B911346610089F60008208062917314088E");
    for (int i = 0; i < 142; ++i) raw.data[raw.len++] = 0x30;
    wms_gw_deliver msg{};
    EXPECT_EQ(wms_ts_decode_deliver(&raw, &msg), WMS_TS_STATUS_BAD_USER_DATA_LENGTH);
    EXPECT_EQ(+msg.user_data.sm_len, 142);
}

// Either pointer missing is refused before anything is read or written.
TEST(TpduCodec, NullArgumentsAreRefused)
{
    const wms_raw_tpdu raw = raw_from_hex("11000B916407281553F80000AA0AE8329BFD4697D9EC37");
    wms_raw_tpdu out{};
    wms_gw_submit s{};
    wms_gw_deliver d{};
    wms_gw_status_report r{};
    for (const auto status :
         {wms_ts_decode_submit(nullptr, &s), wms_ts_decode_submit(&raw, nullptr), wms_ts_decode_deliver(nullptr, &d),
          wms_ts_decode_deliver(&raw, nullptr), wms_ts_decode_status_report(nullptr, &r),
          wms_ts_decode_status_report(&raw, nullptr), wms_ts_encode_submit(nullptr, &out),
          wms_ts_encode_submit(&s, nullptr), wms_ts_encode_deliver(nullptr, &out), wms_ts_encode_deliver(&d, nullptr)})
        EXPECT_NE(status, WMS_TS_STATUS_OK);
    // The time stamp codecs answer with the octets they took: none.
    wms_timestamp t{};
    EXPECT_EQ(wms_ts_decode_timestamp(nullptr, &t) + wms_ts_decode_timestamp(raw.data, nullptr), 0);
}

// A refused record leaves the octets before the bad field written, the rest
// cleared, and the length and type untouched.
TEST(TpduEncode, RefusalsStopAtTheBadField)
{
    wms_gw_deliver d{};
    d.timestamp = wms_timestamp{0x24, 0x01, 0x01, 0, 0, 0, 0};
    d.address.number_of_digits = 21;
    wms_raw_tpdu raw;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_deliver(&d, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(hex(raw.data, 2), "0400");
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
    EXPECT_EQ(hex(raw.data, 2), "0500");
    EXPECT_EQ(raw.tpdu_type, 0x77);
    s.validity.format = WMS_VP_ENHANCED;
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_TIME);
    s = good;
    s.address.number_of_digits = 21;
    std::memset(&raw, 0x77, sizeof raw);
    EXPECT_EQ(wms_ts_encode_submit(&s, &raw), WMS_TS_STATUS_BAD_ADDRESS);
    EXPECT_EQ(hex(raw.data, 3), "110000");  // nothing written after TP-MR
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
    std::memcpy(cmd.command_data, "\xAB\xCD", 2);
    wms_raw_tpdu raw{};
    AllocationScope heap;
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(heap.allocations(), 0u);
    EXPECT_EQ(hex_of(raw), "22050001030491214302ABCD");
    EXPECT_EQ(raw.tpdu_type, WMS_TPDU_TYPE_COMMAND);
    cmd.user_data_header_present = 1;
    ASSERT_EQ(wms_ts_encode_command(&cmd, &raw), WMS_TS_STATUS_OK);
    EXPECT_EQ(hex_of(raw).substr(0, 2), "62");
    cmd.user_data_header_present = 0;

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
    EXPECT_EQ(hex(raw.data, 6), "220500010300");
    EXPECT_EQ(+raw.len, 0x77777777u);
}

}  // namespace
