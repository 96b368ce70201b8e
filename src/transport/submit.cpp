// SMS-SUBMIT: first octet, TP-MR, TP-DA, TP-PID, TP-DCS, TP-VP, TP-UDL, TP-UD.

#include "common/trace.hpp"
#include "transport/codec_internal.hpp"

namespace {

using smsutil::transport::OctetReader;
using smsutil::transport::OctetWriter;

}  // namespace

extern "C" {

SMSUTIL_API wms_status_e_type wms_ts_decode_submit(const wms_raw_tpdu *raw, wms_gw_submit *msg)
{
    using namespace smsutil::transport;
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    OctetReader in = tpdu_reader(*raw);
    SMS_TRACE("The lenth is: %d\n\n", static_cast<int>(raw->len));
    SMS_TRACE("The raw data is:\n\n");
    for (const uint8_t octet : in.rest()) SMS_TRACE("%x\n", octet);
    SMS_TRACE("\n\n");

    uint8_t first = 0;
    if (!in.read(first)) return WMS_TS_STATUS_BAD_ADDRESS;
    msg->reject_duplicates = (first >> 2) & 1;
    msg->validity.format = (first >> 3) & 0x03;
    msg->status_report_request = (first >> 5) & 1;
    msg->user_data_header_present = (first >> 6) & 1;
    msg->reply_path_present = (first >> 7) & 1;
    SMS_TRACE("The decoded data before mr is: %x\n\n", first);
    uint8_t mr = 0;
    if (!in.read(mr)) return WMS_TS_STATUS_BAD_ADDRESS;
    SMS_TRACE("The decoded mr is: %x\n\n", mr);
    msg->message_reference = mr;
    if (decode_address(in, msg->address) == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    uint8_t dcs = 0;
    if (!in.read(msg->pid) || !in.read(dcs)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    decode_dcs_octet(dcs, msg->dcs);
    if (decode_validity(in, msg->validity) == 0 && msg->validity.format != WMS_VP_NONE) return WMS_TS_STATUS_BAD_TIME;
    SMS_TRACE("The value of pos is %d\n\n", static_cast<int>(in.position()));
    uint8_t udl = 0;
    if (!in.read(udl)) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    SMS_TRACE("The data before decoded is %x\n\n", udl);
    return decode_tpdu_user_data(msg->dcs, udl, in.rest(), msg->user_data_header_present != 0, msg->user_data);
}

SMSUTIL_API wms_status_e_type wms_ts_encode_submit(const wms_gw_submit *msg, wms_raw_tpdu *raw)
{
    using namespace smsutil::transport;
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    OctetWriter out = cleared_tpdu_writer(*raw);
    uint8_t first = 0x01 | (msg->reject_duplicates != 0 ? 0x04 : 0);
    if (msg->validity.format > WMS_VP_ABSOLUTE) {
        raw->data[0] = first;
        return WMS_TS_STATUS_BAD_VALIDITY_FORMAT;
    }
    first = static_cast<uint8_t>(first | (msg->validity.format << 3) | (msg->status_report_request != 0 ? 0x20 : 0) |
                                 (msg->user_data_header_present != 0 ? 0x40 : 0) |
                                 (msg->reply_path_present != 0 ? 0x80 : 0));
    out.put(first);
    SMS_TRACE("MTI is\n\n");
    SMS_TRACE("%x\n", first);
    SMS_TRACE("\n\n");
    const auto mr = static_cast<uint8_t>(msg->message_reference & 0xFF);
    out.put(mr);
    SMS_TRACE("mr is\n\n");
    SMS_TRACE("%x\n", mr);
    SMS_TRACE("\n\n");
    const std::size_t address_at = out.position();
    const std::size_t address_size = encode_address(msg->address, out);
    SMS_TRACE("DA is\n\n");
    for (std::size_t i = 0; i < address_size; ++i) SMS_TRACE("%x\n", raw->data[address_at + i]);
    SMS_TRACE("\n\n");
    if (address_size == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    out.put(msg->pid);
    SMS_TRACE("The pid is %x\n\n", msg->pid);
    out.put(encode_dcs_octet(msg->dcs));
    if (encode_validity(msg->validity, out) == 0 && msg->validity.format != WMS_VP_NONE) return WMS_TS_STATUS_BAD_TIME;
    const wms_status_e_type status = encode_tpdu_user_data(msg->dcs, msg->user_data, out);
    raw->tpdu_type = WMS_TPDU_TYPE_SUBMIT;
    raw->len = static_cast<uint32_t>(out.position());
    SMS_TRACE("The string length is %d\n\n", static_cast<int>(raw->len));
    SMS_TRACE("The string encoded is\n\n");
    for (std::size_t i = 0; i < raw->len; ++i) SMS_TRACE("%x\n", raw->data[i]);
    SMS_TRACE("\n\n");
    return status;
}

}  // extern "C"
