#include "joined_json.hpp"

#include <cstring>
#include <string>

#include "gateway_part.hpp"

namespace smsutil::cli {

Json joined_json(const sms_reasm_message &message, bool complete, int reason)
{
    Json out;
    out["complete"] = complete;
    if (!complete) {
        static const char *const reasons[] = {"pending", "expired", "evicted"};
        out["reason"] = reasons[reason];
    }
    out["text"] = std::string(message.text, message.text_length);
    out["kind"] = message.kind == SMS_REASM_STORED_OUTGOING ? "stored" : "received";
    out["address"] = std::string(message.address, strnlen(message.address, sizeof message.address));
    out["sca"] = std::string(message.service_centre, strnlen(message.service_centre, sizeof message.service_centre));
    const sms_reasm_time &t = message.time;
    if (t.year == 0) {
        out["timestamp"] = nullptr;
    } else {
        out["timestamp"] = iso8601_local(t.year, t.month, t.day, t.hour, t.minute, t.second) +
                           (t.has_zone != 0 ? utc_offset(t.zone_quarters) : std::string());
    }
    out["reference"] = message.concatenated != 0 ? Json(message.reference) : Json(nullptr);
    out["total"] = message.total;
    Json parts = Json::array();
    for (unsigned n = 1; n <= message.total; ++n) {
        const sms_reasm_part_info &info = message.parts[n - 1];
        if (info.present != 0) parts.push_back({{"part", n}, {"coding", content_coding_name(info.coding)}});
    }
    out["parts"] = parts;
    if (!complete) out["missing"] = std::vector<unsigned>(message.missing, message.missing + message.missing_count);
    return out;
}

}  // namespace smsutil::cli
