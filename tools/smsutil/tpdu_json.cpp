#include "tpdu_json.hpp"

#include <span>

#include "hex.hpp"

namespace smsutil::cli {
namespace {

// The records are packed: a field is copied out with unary + before it goes
// into JSON, whose constructors would bind a misaligned reference to it.

const char *coding_group_name(uint32_t group)
{
    switch (group) {
    case WMS_DCS_GENERAL:
        return "general";
    case WMS_DCS_MWI_DISCARD:
        return "mwi-discard";
    case WMS_DCS_MWI_STORE:
        return "mwi-store";
    case WMS_DCS_CLASS_GROUP:
        return "class";
    default:
        return "unknown";
    }
}

const char *mwi_kind_name(uint8_t kind)
{
    switch (kind) {
    case WMS_MWI_VOICEMAIL:
        return "voicemail";
    case WMS_MWI_FAX:
        return "fax";
    case WMS_MWI_EMAIL:
        return "email";
    default:
        return "other";
    }
}

Json dcs_json(const wms_gw_dcs &dcs)
{
    Json out;
    out["coding_group"] = coding_group_name(dcs.coding_group);
    out["alphabet"] = alphabet_name(dcs.alphabet);
    out["message_class"] = dcs.msg_class == WMS_MESSAGE_CLASS_NONE ? Json(nullptr) : Json(+dcs.msg_class);
    out["compressed"] = dcs.is_compressed != 0;
    if (dcs.coding_group == WMS_DCS_MWI_DISCARD || dcs.coding_group == WMS_DCS_MWI_STORE) {
        out["mwi"] = {{"active", dcs.mwi_active != 0}, {"kind", mwi_kind_name(dcs.mwi_kind)}};
    }
    return out;
}

Json address_json(const wms_address &address)
{
    Json out;
    out["type_of_number"] = +address.number_type;
    out["numbering_plan"] = +address.number_plan;
    const size_t count = std::min<size_t>(address.number_of_digits, WMS_ADDRESS_MAX_DIGITS);
    std::string digits;
    if (address.digit_mode == WMS_DIGIT_MODE_CHAR) {
        digits.assign(reinterpret_cast<const char *>(address.digits), count);
        out["alphanumeric"] = true;
    } else {
        digits.resize(count);
        wms_ts_bcd_to_ascii(address.digits, static_cast<uint8_t>(count), digits.data());
        out["alphanumeric"] = false;
    }
    out["digits"] = digits;
    return out;
}

Json timestamp_json(const wms_timestamp &time)
{
    const auto text = iso8601_timestamp(time);
    return text ? Json(*text) : Json(nullptr);
}

Json header_json(const wms_udh &header)
{
    Json out;
    out["id"] = +header.header_id;
    switch (header.header_id) {
    case WMS_UDH_CONCAT_8BIT_REF:
        out["name"] = "concat-8bit";
        out["reference"] = +header.u.concat_8.msg_ref;
        out["total"] = +header.u.concat_8.total_sm;
        out["part"] = +header.u.concat_8.seq_num;
        break;
    case WMS_UDH_CONCAT_16BIT_REF:
        out["name"] = "concat-16bit";
        out["reference"] = +header.u.concat_16.msg_ref;
        out["total"] = +header.u.concat_16.total_sm;
        out["part"] = +header.u.concat_16.seq_num;
        break;
    case WMS_UDH_SPECIAL_SM:
        out["name"] = "special-sms";
        out["store"] = header.u.special_sm.msg_waiting == WMS_DCS_MWI_STORE;
        out["kind"] = +header.u.special_sm.mwi_kind;
        out["count"] = +header.u.special_sm.message_count;
        break;
    case WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT:
    case WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT: {
        const wms_udh_nat_lang &lang =
            header.header_id == WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT ? header.u.nat_lang_ss : header.u.nat_lang_ls;
        out["name"] = header.header_id == WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT ? "national-language-single-shift"
                                                                                 : "national-language-locking-shift";
        out["language"] = +lang.national_language;
        break;
    }
    default: {
        out["name"] = "other";
        const auto &other = header.u.other;
        const size_t length = std::min<size_t>(other.header_length, WMS_UDH_OTHER_SIZE);
        out["data"] = octets_to_hex(std::span<const uint8_t>(other.data, length));
        break;
    }
    }
    return out;
}

Json user_data_json(const wms_gw_user_data &data, const wms_gw_dcs &dcs)
{
    Json out;
    out["length"] = +data.sm_len;
    Json headers = Json::array();
    const size_t count = std::min<size_t>(data.num_headers, WMS_UDH_MAX_IES);
    for (size_t i = 0; i < count; ++i) headers.push_back(header_json(data.headers[i]));
    out["headers"] = headers;
    // 8-bit data has no text form; show the octets as they travelled.
    if (dcs.alphabet == WMS_ALPHABET_8BIT) {
        const size_t length = std::min<size_t>(data.sm_len, WMS_MAX_LEN);
        out["data"] = octets_to_hex(std::span<const uint8_t>(data.sm_data, length));
    }
    return out;
}

Json validity_json(const wms_gw_validity &validity)
{
    switch (validity.format) {
    case WMS_VP_NONE:
        return nullptr;
    case WMS_VP_RELATIVE: {
        const auto period = iso8601_duration(validity.time);
        return {{"format", "relative"}, {"period", period ? Json(*period) : Json(nullptr)}};
    }
    case WMS_VP_ABSOLUTE:
        return {{"format", "absolute"}, {"time", timestamp_json(validity.time)}};
    default:
        return {{"format", "enhanced"}};
    }
}

// The fields every kind of TPDU opens with.
Json tpdu_head(const char *kind, uint8_t first_octet, Json flags)
{
    Json out;
    out["tpdu"] = kind;
    out["first_octet"] = first_octet;
    out["flags"] = std::move(flags);
    return out;
}

Json deliver_json(const wms_gw_deliver &msg, uint8_t first_octet)
{
    Json out = tpdu_head("deliver", first_octet,
                         {{"more_messages_to_send", msg.more_msgs_to_send != 0},
                          {"reply_path", msg.reply_path_present != 0},
                          {"user_data_header", msg.user_data_header_present != 0},
                          {"status_report_indication", msg.status_report_indication != 0}});
    out["originator"] = address_json(msg.address);
    out["pid"] = +msg.pid;
    out["dcs"] = dcs_json(msg.dcs);
    out["service_centre_time"] = timestamp_json(msg.timestamp);
    out["user_data"] = user_data_json(msg.user_data, msg.dcs);
    return out;
}

Json submit_json(const wms_gw_submit &msg, uint8_t first_octet)
{
    Json out = tpdu_head("submit", first_octet,
                         {{"reject_duplicates", msg.reject_duplicates != 0},
                          {"reply_path", msg.reply_path_present != 0},
                          {"user_data_header", msg.user_data_header_present != 0},
                          {"status_report_request", msg.status_report_request != 0}});
    out["message_reference"] = +msg.message_reference;
    out["destination"] = address_json(msg.address);
    out["pid"] = +msg.pid;
    out["dcs"] = dcs_json(msg.dcs);
    out["validity"] = validity_json(msg.validity);
    out["user_data"] = user_data_json(msg.user_data, msg.dcs);
    return out;
}

Json status_report_json(const wms_gw_status_report &msg, uint8_t first_octet)
{
    Json out = tpdu_head("status-report", first_octet,
                         {{"more_messages_to_send", msg.more_msgs_to_send != 0},
                          {"user_data_header", msg.user_data_header_present != 0},
                          {"status_report_qualifier", msg.status_report_qualifier != 0}});
    out["message_reference"] = +msg.message_reference;
    out["recipient"] = address_json(msg.address);
    out["service_centre_time"] = timestamp_json(msg.timestamp);
    out["discharge_time"] = timestamp_json(msg.discharge_time);
    out["tp_status"] = +msg.tp_status;
    out["parameter_indicator"] = +msg.parameter_indicator;
    out["pid"] = +msg.pid;
    // TP-PI says which of the optional fields travelled.
    if (msg.parameter_indicator & 2U) out["dcs"] = dcs_json(msg.dcs);
    if (msg.parameter_indicator & 4U) out["user_data"] = user_data_json(msg.user_data, msg.dcs);
    return out;
}

}  // namespace

Json tpdu_detail(const DecodedTpdu &tpdu)
{
    const uint8_t first = tpdu.first_octet;
    return std::visit(
        [first](const auto &record) -> Json {
            using Record = std::decay_t<decltype(record)>;
            if constexpr (std::is_same_v<Record, wms_gw_deliver>) return deliver_json(record, first);
            if constexpr (std::is_same_v<Record, wms_gw_submit>) return submit_json(record, first);
            if constexpr (std::is_same_v<Record, wms_gw_status_report>) return status_report_json(record, first);
            return nullptr;
        },
        tpdu.record);
}

Json tpdu_coding(const DecodedTpdu &tpdu)
{
    if (const auto *deliver = std::get_if<wms_gw_deliver>(&tpdu.record)) return alphabet_name(deliver->dcs.alphabet);
    if (const auto *submit = std::get_if<wms_gw_submit>(&tpdu.record)) return alphabet_name(submit->dcs.alphabet);
    if (const auto *report = std::get_if<wms_gw_status_report>(&tpdu.record)) {
        if ((report->parameter_indicator & 4U) == 0) return nullptr;
        return alphabet_name(report->dcs.alphabet);
    }
    return nullptr;
}

}  // namespace smsutil::cli
