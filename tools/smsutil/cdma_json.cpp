#include "cdma_json.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <span>
#include <string>

#include "hex.hpp"

namespace smsutil::cli {
namespace {

// The records are packed: a field is copied out with unary + before it goes
// into JSON, whose constructors would bind a misaligned reference to it.

constexpr size_t kTimeOctets = 6;  // year .. second, BCD, no zone on the air

// Absolute times: ISO 8601 local time when every field is BCD, else the six
// octets in hex so that nothing is lost on the way back.
Json time_json(const wms_timestamp& t) {
    if (auto text = iso8601_without_zone(t)) return *text;
    const std::array<uint8_t, kTimeOctets> octets{t.year, t.month, t.day, t.hour, t.minute, t.second};
    return octets_to_hex(octets);
}

Json relative_json(const wms_timestamp& duration) {
    const auto period = iso8601_duration(duration);
    return {{"code", wms_ts_encode_relative_time(&duration)}, {"period", period ? Json(*period) : Json(nullptr)}};
}

Json user_data_json(const wms_cdma_user_data& ud) {
    Json out;
    out["encoding"] = +ud.encoding;
    if (ud.encoding == WMS_ENCODING_IS91EP) out["is91ep_type"] = +ud.is91ep_type;
    out["num_fields"] = +ud.num_fields;
    out["padding_bits"] = +ud.padding_bits;
    const size_t length = std::min<size_t>(ud.data_len, WMS_CDMA_USER_DATA_MAX);
    out["data"] = octets_to_hex(std::span<const uint8_t>(ud.data, length));
    // A readable form for the text encodings; the encoder reads "data".
    if (ud.encoding == WMS_ENCODING_ASCII || ud.encoding == WMS_ENCODING_IA5) {
        std::array<char, 256> text{};
        wms_ts_unpack_ascii(&ud, 255, text.data());
        out["text"] = text.data();
    } else if (ud.encoding == WMS_ENCODING_IS91EP && ud.is91ep_type != WMS_IS91EP_CLI_ORDER) {
        out["text"] = std::string(reinterpret_cast<const char*>(ud.data), length);
    }
    return out;
}

Json callback_json(const wms_address& cb) {
    Json out;
    out["digit_mode"] = +cb.digit_mode;
    if (cb.digit_mode != 0) {
        out["number_type"] = +cb.number_type;
        out["number_plan"] = +cb.number_plan;
    }
    const size_t count = std::min<size_t>(cb.number_of_digits, WMS_CDMA_CALLBACK_MAX_DIGITS);
    if (cb.digit_mode != 0) {
        out["digits"] = std::string(reinterpret_cast<const char*>(cb.digits), count);
        return out;
    }
    std::array<char, WMS_CDMA_CALLBACK_MAX_DIGITS> text{};
    if (wms_ts_dtmf2ascii(static_cast<uint8_t>(count), cb.digits, text.data()) == count) {
        out["digits"] = std::string(text.data(), count);
    } else {
        // A code without a digit: keep the codes themselves.
        out["codes"] = octets_to_hex(std::span<const uint8_t>(cb.digits, count));
    }
    return out;
}

// ---- JSON to record ----

[[noreturn]] void bad(const std::string& key, const std::string& why) { throw BadBearerJson(key + ": " + why); }

uint32_t unsigned_of(const Json& doc, const std::string& key, uint32_t max) {
    const Json& value = doc.at(key);
    if (!value.is_number_unsigned()) bad(key, "expected an unsigned number");
    const auto number = value.get<uint64_t>();
    if (number > max) bad(key, "above " + std::to_string(max));
    return static_cast<uint32_t>(number);
}

bool bool_of(const Json& doc, const std::string& key) {
    const Json& value = doc.at(key);
    if (!value.is_boolean()) bad(key, "expected true or false");
    return value.get<bool>();
}

std::string string_of(const Json& doc, const std::string& key) {
    const Json& value = doc.at(key);
    if (!value.is_string()) bad(key, "expected a string");
    return value.get<std::string>();
}

void only_keys(const Json& doc, const std::string& where, std::initializer_list<const char*> keys) {
    if (!doc.is_object()) bad(where, "expected an object");
    for (const auto& item : doc.items()) {
        bool known = false;
        for (const char* key : keys) known = known || item.key() == key;
        if (!known) bad(where.empty() ? item.key() : where + "." + item.key(), "unknown key");
    }
}

wms_timestamp time_from(const Json& doc, const std::string& key) {
    const std::string text = string_of(doc, key);
    wms_timestamp t{};
    if (auto octets = hex_to_octets(text); octets && octets->size() == kTimeOctets) {
        t = wms_timestamp{(*octets)[0], (*octets)[1], (*octets)[2], (*octets)[3], (*octets)[4], (*octets)[5], 0};
        return t;
    }
    unsigned year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%4u-%2u-%2uT%2u:%2u:%2u%c", &year, &month, &day, &hour, &minute, &second,
                    &tail) != 6 ||
        text.size() != 19 || year < 1996 || year > 2095 || month > 99 || day > 99 || hour > 99 || minute > 99 ||
        second > 99) {
        bad(key, "expected YYYY-MM-DDThh:mm:ss (1996-2095) or 12 hexadecimal digits");
    }
    const auto bcd = [](unsigned v) { return wms_ts_int_to_bcd(static_cast<uint8_t>(v)); };
    return wms_timestamp{bcd(year % 100), bcd(month), bcd(day), bcd(hour), bcd(minute), bcd(second), 0};
}

wms_timestamp relative_from(const Json& doc, const std::string& key) {
    const Json& value = doc.at(key);
    only_keys(value, key, {"code", "period"});
    if (!value.contains("code")) bad(key, "needs \"code\", the relative period octet");
    wms_timestamp duration{};
    wms_ts_decode_relative_time(static_cast<uint8_t>(unsigned_of(value, "code", 255)), &duration);
    return duration;
}

void user_data_from(const Json& doc, wms_cdma_user_data& ud) {
    only_keys(doc, "user_data", {"encoding", "is91ep_type", "num_fields", "padding_bits", "data", "text"});
    ud.encoding = unsigned_of(doc, "encoding", 31);
    if (ud.encoding == WMS_ENCODING_IS91EP) ud.is91ep_type = unsigned_of(doc, "is91ep_type", 255);
    ud.num_fields = static_cast<uint8_t>(unsigned_of(doc, "num_fields", 255));
    ud.padding_bits = doc.contains("padding_bits") ? static_cast<uint8_t>(unsigned_of(doc, "padding_bits", 7)) : 0;
    const auto data = hex_to_octets(string_of(doc, "data"));
    if (!data) bad("user_data.data", "expected hexadecimal octets");
    if (data->size() > WMS_CDMA_USER_DATA_MAX) bad("user_data.data", "more than 229 octets");
    std::copy(data->begin(), data->end(), ud.data);
    ud.data_len = static_cast<uint8_t>(data->size());
}

void callback_from(const Json& doc, wms_address& cb) {
    only_keys(doc, "callback", {"digit_mode", "number_type", "number_plan", "digits", "codes"});
    cb.digit_mode = static_cast<uint8_t>(unsigned_of(doc, "digit_mode", 1));
    if (cb.digit_mode != 0) {
        cb.number_type = static_cast<uint8_t>(unsigned_of(doc, "number_type", 7));
        cb.number_plan = static_cast<uint8_t>(unsigned_of(doc, "number_plan", 15));
    }
    if (doc.contains("codes")) {
        const auto codes = hex_to_octets(string_of(doc, "codes"));
        if (!codes || codes->size() > WMS_CDMA_CALLBACK_MAX_DIGITS) bad("callback.codes", "expected up to 32 octets");
        std::copy(codes->begin(), codes->end(), cb.digits);
        cb.number_of_digits = static_cast<uint8_t>(codes->size());
        return;
    }
    const std::string digits = string_of(doc, "digits");
    if (digits.size() > WMS_CDMA_CALLBACK_MAX_DIGITS) bad("callback.digits", "more than 32 digits");
    if (cb.digit_mode != 0) {
        std::copy(digits.begin(), digits.end(), cb.digits);
    } else if (!digits.empty() && wms_ts_ascii2dtmf(digits.c_str(), cb.digits) != digits.size()) {
        bad("callback.digits", "only 0-9, * and # travel as DTMF digits");
    }
    cb.number_of_digits = static_cast<uint8_t>(digits.size());
}

}  // namespace

Json bearer_data_json(const wms_cdma_bearer_data& bd) {
    Json out = Json::object();
    const auto has = [&bd](uint32_t bit) { return (bd.mask & bit) != 0; };
    if (has(WMS_MASK_BD_MSG_ID)) out["message_id"] = {{"type", +bd.message_id.type}, {"id", +bd.message_id.id_number}};
    // An IS-91 call-back payload travels in user data without its mask bit.
    const bool cli_order =
        bd.user_data.encoding == WMS_ENCODING_IS91EP && bd.user_data.is91ep_type == WMS_IS91EP_CLI_ORDER;
    if (has(WMS_MASK_BD_USER_DATA) || cli_order) out["user_data"] = user_data_json(bd.user_data);
    if (has(WMS_MASK_BD_USER_RESP)) out["user_response"] = +bd.user_response;
    if (has(WMS_MASK_BD_MC_TIME)) out["mc_time"] = time_json(bd.mc_time);
    if (has(WMS_MASK_BD_VALID_ABS)) out["validity_absolute"] = time_json(bd.validity_absolute);
    if (has(WMS_MASK_BD_VALID_REL)) out["validity_relative"] = relative_json(bd.validity_relative);
    if (has(WMS_MASK_BD_DEFER_ABS)) out["deferred_absolute"] = time_json(bd.deferred_absolute);
    if (has(WMS_MASK_BD_DEFER_REL)) out["deferred_relative"] = relative_json(bd.deferred_relative);
    if (has(WMS_MASK_BD_PRIORITY)) out["priority"] = +bd.priority;
    if (has(WMS_MASK_BD_PRIVACY)) out["privacy"] = +bd.privacy;
    if (has(WMS_MASK_BD_REPLY_OPTION)) {
        out["reply_option"] = {{"user_ack", bd.user_ack_requested != 0},
                               {"delivery_ack", bd.delivery_ack_requested != 0}};
    }
    if (has(WMS_MASK_BD_NUM_OF_MSGS)) out["num_messages"] = +bd.num_messages;
    if (has(WMS_MASK_BD_ALERT)) out["alert_on_delivery"] = true;
    if (has(WMS_MASK_BD_LANGUAGE)) out["language"] = +bd.language;
    if (has(WMS_MASK_BD_CALLBACK)) out["callback"] = callback_json(bd.callback);
    if (has(WMS_MASK_BD_DISPLAY_MODE)) out["display_mode"] = +bd.display_mode;
    return out;
}

wms_cdma_bearer_data bearer_data_from_json(const Json& doc) {
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    only_keys(doc, "", {"message_id", "user_data", "user_response", "mc_time", "validity_absolute",
                        "validity_relative", "deferred_absolute", "deferred_relative", "priority", "privacy",
                        "reply_option", "num_messages", "alert_on_delivery", "language", "callback",
                        "display_mode"});
    if (doc.contains("message_id")) {
        const Json& id = doc["message_id"];
        only_keys(id, "message_id", {"type", "id"});
        bd.message_id.type = unsigned_of(id, "type", 15);
        bd.message_id.id_number = unsigned_of(id, "id", 0xFFFF);
        bd.mask |= WMS_MASK_BD_MSG_ID;
    }
    if (doc.contains("user_data")) {
        user_data_from(doc["user_data"], bd.user_data);
        bd.mask |= WMS_MASK_BD_USER_DATA;
    }
    if (doc.contains("user_response")) {
        bd.user_response = static_cast<uint8_t>(unsigned_of(doc, "user_response", 255));
        bd.mask |= WMS_MASK_BD_USER_RESP;
    }
    struct TimeField {
        const char* key;
        wms_timestamp* field;
        uint32_t bit;
        bool relative;
    };
    const TimeField times[] = {{"mc_time", &bd.mc_time, WMS_MASK_BD_MC_TIME, false},
                               {"validity_absolute", &bd.validity_absolute, WMS_MASK_BD_VALID_ABS, false},
                               {"validity_relative", &bd.validity_relative, WMS_MASK_BD_VALID_REL, true},
                               {"deferred_absolute", &bd.deferred_absolute, WMS_MASK_BD_DEFER_ABS, false},
                               {"deferred_relative", &bd.deferred_relative, WMS_MASK_BD_DEFER_REL, true}};
    for (const auto& t : times) {
        if (!doc.contains(t.key)) continue;
        *t.field = t.relative ? relative_from(doc, t.key) : time_from(doc, t.key);
        bd.mask |= t.bit;
    }
    if (doc.contains("priority")) {
        bd.priority = unsigned_of(doc, "priority", 3);
        bd.mask |= WMS_MASK_BD_PRIORITY;
    }
    if (doc.contains("privacy")) {
        bd.privacy = unsigned_of(doc, "privacy", 3);
        bd.mask |= WMS_MASK_BD_PRIVACY;
    }
    if (doc.contains("reply_option")) {
        const Json& reply = doc["reply_option"];
        only_keys(reply, "reply_option", {"user_ack", "delivery_ack"});
        bd.user_ack_requested = bool_of(reply, "user_ack") ? 1 : 0;
        bd.delivery_ack_requested = bool_of(reply, "delivery_ack") ? 1 : 0;
        bd.mask |= WMS_MASK_BD_REPLY_OPTION;
    }
    if (doc.contains("num_messages")) {
        bd.num_messages = static_cast<uint8_t>(unsigned_of(doc, "num_messages", 99));
        bd.mask |= WMS_MASK_BD_NUM_OF_MSGS;
    }
    if (doc.contains("alert_on_delivery")) {
        if (!bool_of(doc, "alert_on_delivery")) bad("alert_on_delivery", "leave the key out instead of false");
        bd.alert_on_delivery = 1;
        bd.mask |= WMS_MASK_BD_ALERT;
    }
    if (doc.contains("language")) {
        bd.language = unsigned_of(doc, "language", 255);
        bd.mask |= WMS_MASK_BD_LANGUAGE;
    }
    if (doc.contains("callback")) {
        callback_from(doc["callback"], bd.callback);
        bd.mask |= WMS_MASK_BD_CALLBACK;
    }
    if (doc.contains("display_mode")) {
        bd.display_mode = unsigned_of(doc, "display_mode", 3);
        bd.mask |= WMS_MASK_BD_DISPLAY_MODE;
    }
    return bd;
}

}  // namespace smsutil::cli
