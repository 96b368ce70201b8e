#include "pdu_json.hpp"

#include <array>
#include <span>

#include "hex.hpp"

namespace smsutil::cli {
namespace {

const char *pdu_alphabet_name(uint8_t alphabet)
{
    switch (alphabet) {
    case SMS_PDU_ALPHABET_GSM7:
        return "gsm7";
    case SMS_PDU_ALPHABET_8BIT:
        return "8bit";
    default:
        return "ucs2";
    }
}

// A language the library has tables for by name, any other by its identifier.
Json language_json(bool present, uint8_t id)
{
    static constexpr std::array<const char *, 4> kNames{"none", "turkish", "spanish", "portuguese"};
    if (!present) return nullptr;
    if (id < kNames.size()) return kNames[id];
    return id;
}

const char *status_category_name(int category)
{
    static constexpr std::array<const char *, 5> kNames{"completed", "trying", "permanent error", "gave up",
                                                        "reserved"};
    return kNames[static_cast<size_t>(category) % kNames.size()];
}

// A status report carries TP-PID, TP-DCS and user data only when its
// parameter indicator says so.
bool has_pid(const sms_pdu_record &r)
{
    if (r.kind == SMS_PDU_STATUS_REPORT) return r.has_parameter_indicator && (r.parameter_indicator & 0x01U);
    return true;
}
bool has_dcs(const sms_pdu_record &r)
{
    if (r.kind == SMS_PDU_STATUS_REPORT) return r.has_parameter_indicator && (r.parameter_indicator & 0x02U);
    return r.kind != SMS_PDU_COMMAND;
}

Json dcs_json(const sms_pdu_dcs &dcs)
{
    Json out{{"octet", dcs.octet}, {"compressed", dcs.compressed != 0}, {"auto_delete", dcs.auto_delete != 0}};
    if (dcs.mwi_group != SMS_PDU_MWI_NONE) {
        static constexpr std::array<const char *, 4> kTypes{"voicemail", "fax", "email", "other"};
        out["message_waiting"] = {{"type", kTypes[dcs.mwi_type & 3U]},
                                  {"active", dcs.mwi_active != 0},
                                  {"store", dcs.mwi_group == SMS_PDU_MWI_STORE}};
    }
    return out;
}

Json headers_json(const sms_pdu_record &r)
{
    Json out = Json::array();
    for (size_t i = 0; i < r.element_count; ++i) {
        const sms_pdu_element &e = r.elements[i];
        out.push_back({{"id", e.id}, {"data", octets_to_hex(std::span(r.user_data).subspan(e.offset, e.length))}});
    }
    return out;
}

Json problems_json(const sms_pdu_record &r)
{
    Json out = Json::array();
    for (size_t i = 0; i < r.problem_count; ++i) {
        const sms_pdu_problem &p = r.problems[i];
        out.push_back({{"code", p.code}, {"offset", p.offset}, {"text", sms_pdu_problem_text(p.code)}});
    }
    if (r.problems_dropped) out.push_back({{"more", r.problems_dropped}});
    return out;
}

}  // namespace

const char *pdu_kind_name(uint8_t kind)
{
    static constexpr std::array<const char *, 4> kNames{"deliver", "submit", "status-report", "command"};
    return kNames[kind & 3U];
}

std::string pdu_time_iso8601(const sms_pdu_time &t)
{
    const unsigned year = t.year + (t.year < 96 ? 2000U : 1900U);
    return iso8601_local(year, t.month, t.day, t.hour, t.minute, t.second) + utc_offset(t.timezone);
}

Json pdu_record_json(const sms_pdu_record &r)
{
    const bool timed = r.kind == SMS_PDU_DELIVER || r.kind == SMS_PDU_STATUS_REPORT;
    const bool eight_bit = r.dcs.alphabet == SMS_PDU_ALPHABET_8BIT || r.dcs.compressed;
    Json out;
    out["type"] = pdu_kind_name(r.kind);
    out["sca"] = r.sca.text;
    out["address"] = r.address.text;
    out["text"] = std::string(r.text, r.text_length);
    out["coding"] = has_dcs(r) ? Json(pdu_alphabet_name(r.dcs.alphabet)) : Json(nullptr);
    out["timestamp"] = timed ? Json(pdu_time_iso8601(r.timestamp)) : Json(nullptr);
    out["concatenation"] = r.has_concatenation ? Json{{"reference", r.concatenation_reference},
                                                      {"total", r.concatenation_total},
                                                      {"part", r.concatenation_part}}
                                               : Json(nullptr);
    out["status"] = nullptr;
    if (r.kind == SMS_PDU_STATUS_REPORT) {
        out["status"] = {{"code", r.status},
                         {"category", status_category_name(r.status_category)},
                         {"name", sms_pdu_status_text(r.status)}};
        out["discharge_time"] = pdu_time_iso8601(r.discharge_time);
    }
    if (r.kind == SMS_PDU_SUBMIT || r.kind == SMS_PDU_STATUS_REPORT || r.kind == SMS_PDU_COMMAND) {
        out["message_reference"] = r.message_reference;
    }
    out["class"] = has_dcs(r) && r.dcs.message_class != SMS_PDU_CLASS_NONE ? Json(r.dcs.message_class) : Json(nullptr);
    out["pid"] = has_pid(r) ? Json(r.pid) : Json(nullptr);
    out["dcs"] = has_dcs(r) ? dcs_json(r.dcs) : Json(nullptr);
    out["ports"] = r.has_ports ? Json{{"source", r.source_port}, {"destination", r.destination_port}} : Json(nullptr);
    out["national_language"] = r.has_locking_shift || r.has_single_shift
                                   ? Json{{"locking", language_json(r.has_locking_shift, r.locking_language)},
                                          {"single", language_json(r.has_single_shift, r.single_language)}}
                                   : Json(nullptr);
    if (eight_bit && has_dcs(r)) {
        const size_t start = r.header_length < r.user_data_length ? r.header_length : r.user_data_length;
        out["user_data_hex"] = octets_to_hex(std::span(r.user_data).subspan(start, r.user_data_length - start));
    }
    out["headers"] = headers_json(r);
    if (r.problem_count) out["problems"] = problems_json(r);
    return out;
}

}  // namespace smsutil::cli
