// SMS-STATUS-REPORT: first octet, TP-MR, TP-RA, TP-SCTS, TP-DT, TP-ST, then
// TP-PI and the optional TP-PID, TP-DCS and TP-UDL with TP-UD it announces.

#include "transport/codec_internal.hpp"

namespace {

constexpr uint8_t kPidPresent = 0x01;
constexpr uint8_t kDcsPresent = 0x02;
constexpr uint8_t kUserDataPresent = 0x04;

}  // namespace

wms_status_e_type smsutil::transport::decode_status_report(const wms_raw_tpdu &raw, wms_gw_status_report &msg,
                                                           bool with_scts)
{
    OctetReader in = tpdu_reader(raw);
    uint8_t first = 0;
    uint8_t mr = 0;
    if (!in.read(first)) return WMS_TS_STATUS_BAD_ADDRESS;
    msg.more_msgs_to_send = (first & 0x04) == 0 ? 1 : 0;
    msg.status_report_qualifier = (first >> 5) & 1;
    msg.user_data_header_present = (first >> 6) & 1;
    if (!in.read(mr)) return WMS_TS_STATUS_BAD_ADDRESS;
    msg.message_reference = mr;
    if (decode_address(in, msg.address) == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    const bool scts = with_scts ? decode_timestamp(in, msg.timestamp) : in.skip(kTimestampSize);
    if (!scts || !decode_timestamp(in, msg.discharge_time)) return WMS_TS_STATUS_BAD_TIME;
    if (!in.read(msg.tp_status)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    // TP-PI is optional on the air: a report that ends here has none.
    uint8_t pi = 0;
    in.read(pi);
    msg.parameter_indicator = pi;
    msg.pid = 0;
    msg.user_data.sm_len = 0;
    if (pi == 0x00 || pi == 0xFF) {
        msg.parameter_indicator = 0;
        return WMS_TS_STATUS_OK;
    }
    if ((pi & kPidPresent) != 0 && !in.read(msg.pid)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    if ((pi & kDcsPresent) != 0) {
        uint8_t dcs = 0;
        if (!in.read(dcs)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
        decode_dcs_octet(dcs, msg.dcs);
    }
    if ((pi & kUserDataPresent) != 0) {
        uint8_t udl = 0;
        if (!in.read(udl)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
        return decode_tpdu_user_data(msg.dcs, udl, in.rest(), msg.user_data_header_present != 0, msg.user_data);
    }
    return WMS_TS_STATUS_OK;
}

extern "C" SMSUTIL_API wms_status_e_type wms_ts_decode_status_report(const wms_raw_tpdu *raw, wms_gw_status_report *msg)
{
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    return smsutil::transport::decode_status_report(*raw, *msg, true);
}
