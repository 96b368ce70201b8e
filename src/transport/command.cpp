// SMS-COMMAND: first octet, TP-MR, TP-PID, TP-CT, TP-MN, TP-DA, TP-CDL, TP-CD.

#include "transport/codec_internal.hpp"

extern "C" {

SMSUTIL_API wms_status_e_type wms_ts_encode_command(const wms_gw_command *msg, wms_raw_tpdu *raw)
{
    using namespace smsutil::transport;
    if (raw == nullptr || msg == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    OctetWriter out = cleared_tpdu_writer(*raw);
    out.put(static_cast<uint8_t>(0x02 | (msg->status_report_request != 0 ? 0x20 : 0) |
                                 (msg->user_data_header_present != 0 ? 0x40 : 0)));
    out.put(static_cast<uint8_t>(msg->message_reference & 0xFF));
    out.put(static_cast<uint8_t>(msg->pid & 0xFF));
    out.put(msg->command_type);
    out.put(static_cast<uint8_t>(msg->message_number & 0xFF));
    if (encode_address(msg->address, out) == 0) return WMS_TS_STATUS_BAD_ADDRESS;
    out.put(msg->command_data_length);
    // Command data that would run past the TPDU is refused, not cut.
    if (!out.put(std::span<const uint8_t>(msg->command_data, msg->command_data_length)))
        return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    raw->tpdu_type = WMS_TPDU_TYPE_COMMAND;
    raw->len = static_cast<uint32_t>(out.position());
    return WMS_TS_STATUS_OK;
}

}  // extern "C"
