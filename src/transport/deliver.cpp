// SMS-DELIVER: first octet, TP-OA, TP-PID, TP-DCS, TP-SCTS, TP-UDL, TP-UD.
#include "transport/codec_internal.hpp"

namespace {

using smsutil::transport::OctetReader;
using smsutil::transport::OctetWriter;

// TP-PID of a return call message: the text only asks to call back.
constexpr uint8_t kReturnCallPid = 0x5F;

}  // namespace

namespace smsutil::transport {

wms_status_e_type decode_deliver(const wms_raw_tpdu &raw, wms_gw_deliver &msg, Ucs2InPlace *in_place)
{
    OctetReader in = tpdu_reader(raw);
    uint8_t first = 0;
    if (!in.read(first)) return WMS_TS_STATUS_BAD_ADDRESS;
    msg.more_msgs_to_send = (first & 0x04) == 0 ? 1 : 0;
    msg.status_report_indication = (first >> 5) & 1;
    msg.user_data_header_present = (first >> 6) & 1;
    msg.reply_path_present = (first >> 7) & 1;
    if (decode_address(in, msg.address) == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    uint8_t dcs = 0;
    if (!in.read(msg.pid) || !in.read(dcs)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    decode_dcs_octet(dcs, msg.dcs);
    if (msg.pid == kReturnCallPid) {
        msg.dcs.coding_group = WMS_DCS_MWI_STORE;
        msg.dcs.mwi_active = 1;
        msg.dcs.mwi_kind = WMS_MWI_VOICEMAIL;
    }
    if (!decode_timestamp(in, msg.timestamp)) return WMS_TS_STATUS_BAD_TIME;
    uint8_t udl = 0;
    if (!in.read(udl)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    return decode_tpdu_user_data(msg.dcs, udl, in.rest(), msg.user_data_header_present != 0, msg.user_data, in_place);
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API wms_status_e_type wms_ts_decode_deliver(const wms_raw_tpdu *raw, wms_gw_deliver *msg)
{
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    return smsutil::transport::decode_deliver(*raw, *msg, nullptr);
}

SMSUTIL_API wms_status_e_type wms_ts_encode_deliver(const wms_gw_deliver *msg, wms_raw_tpdu *raw)
{
    using namespace smsutil::transport;
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    OctetWriter out = cleared_tpdu_writer(*raw);
    out.put(static_cast<uint8_t>(
        (msg->more_msgs_to_send == 0 ? 0x04 : 0) | (msg->status_report_indication != 0 ? 0x20 : 0) |
        (msg->user_data_header_present != 0 ? 0x40 : 0) | (msg->reply_path_present != 0 ? 0x80 : 0)));
    if (encode_address(msg->address, out) == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    out.put(msg->pid);
    out.put(encode_dcs_octet(msg->dcs));
    if (encode_timestamp(msg->timestamp, out) == 0) return WMS_TS_STATUS_BAD_TIME;
    const wms_status_e_type status = encode_tpdu_user_data(msg->dcs, msg->user_data, out);
    raw->tpdu_type = WMS_TPDU_TYPE_DELIVER;
    raw->len = static_cast<uint32_t>(out.position() & 0xFF);
    return status;
}

}  // extern "C"
