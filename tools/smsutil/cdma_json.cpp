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
Json time_json(const wms_timestamp &t)
{
    if (auto text = iso8601_without_zone(t)) return *text;
    const std::array<uint8_t, kTimeOctets> octets{t.year, t.month, t.day, t.hour, t.minute, t.second};
    return octets_to_hex(octets);
}

Json relative_json(const wms_timestamp &duration)
{
    const auto period = iso8601_duration(duration);
    return {{"code", wms_ts_encode_relative_time(&duration)}, {"period", period ? Json(*period) : Json(nullptr)}};
}

Json user_data_json(const wms_cdma_user_data &ud)
{
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
        out["text"] = std::string(reinterpret_cast<const char *>(ud.data), length);
    }
    return out;
}

Json callback_json(const wms_address &cb)
{
    Json out;
    out["digit_mode"] = +cb.digit_mode;
    if (cb.digit_mode != 0) {
        out["number_type"] = +cb.number_type;
        out["number_plan"] = +cb.number_plan;
    }
    const size_t count = std::min<size_t>(cb.number_of_digits, WMS_CDMA_CALLBACK_MAX_DIGITS);
    if (cb.digit_mode != 0) {
        out["digits"] = std::string(reinterpret_cast<const char *>(cb.digits), count);
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

[[noreturn]] void bad(const std::string &key, const std::string &why) { throw BadBearerJson(key + ": " + why); }

// One object of the document and the dotted path that names its keys in
// messages ("message_id.id: missing").
class Fields {
public:
    Fields(const Json &doc, std::string path, std::initializer_list<const char *> keys)
        : doc_(doc), path_(std::move(path))
    {
        if (!doc.is_object()) bad(path_.empty() ? "the document" : path_, "expected an object");
        for (const auto &item : doc.items()) {
            bool known = false;
            for (const char *key : keys) known = known || item.key() == key;
            if (!known) bad(name(item.key()), "unknown key");
        }
    }

    bool has(const char *key) const { return doc_.contains(key); }

    std::string name(const std::string &key) const { return path_.empty() ? key : path_ + "." + key; }

    const Json &at(const char *key) const
    {
        const auto found = doc_.find(key);
        if (found == doc_.end()) bad(name(key), "missing");
        return *found;
    }

    uint32_t number(const char *key, uint32_t max) const
    {
        const Json &value = at(key);
        if (!value.is_number_unsigned()) bad(name(key), "expected an unsigned number");
        const auto number = value.get<uint64_t>();
        if (number > max) bad(name(key), "above " + std::to_string(max));
        return static_cast<uint32_t>(number);
    }

    bool flag(const char *key) const
    {
        const Json &value = at(key);
        if (!value.is_boolean()) bad(name(key), "expected true or false");
        return value.get<bool>();
    }

    std::string text(const char *key) const
    {
        const Json &value = at(key);
        if (!value.is_string()) bad(name(key), "expected a string");
        return value.get<std::string>();
    }

    Fields object(const char *key, std::initializer_list<const char *> keys) const
    {
        return Fields(at(key), name(key), keys);
    }

private:
    const Json &doc_;
    std::string path_;
};

wms_timestamp time_from(const Fields &doc, const char *key)
{
    const std::string text = doc.text(key);
    wms_timestamp t{};
    if (auto octets = hex_to_octets(text); octets && octets->size() == kTimeOctets) {
        t = wms_timestamp{(*octets)[0], (*octets)[1], (*octets)[2], (*octets)[3], (*octets)[4], (*octets)[5], 0};
        return t;
    }
    unsigned year = 0, month = 0, day = 0, hour = 0, minute = 0, second = 0;
    char tail = 0;
    if (std::sscanf(text.c_str(), "%4u-%2u-%2uT%2u:%2u:%2u%c", &year, &month, &day, &hour, &minute, &second, &tail) !=
            6 ||
        text.size() != 19 || year < 1996 || year > 2095 || month > 99 || day > 99 || hour > 99 || minute > 99 ||
        second > 99) {
        bad(key, "expected YYYY-MM-DDThh:mm:ss (1996-2095) or 12 hexadecimal digits");
    }
    const auto bcd = [](unsigned v) { return wms_ts_int_to_bcd(static_cast<uint8_t>(v)); };
    return wms_timestamp{bcd(year % 100), bcd(month), bcd(day), bcd(hour), bcd(minute), bcd(second), 0};
}

wms_timestamp relative_from(const Fields &doc, const char *key)
{
    const Fields period = doc.object(key, {"code", "period"});
    wms_timestamp duration{};
    wms_ts_decode_relative_time(static_cast<uint8_t>(period.number("code", 255)), &duration);
    return duration;
}

void user_data_from(const Fields &doc, wms_cdma_user_data &ud)
{
    // "text" is printed for people to read; the octets travel in "data".
    if (!doc.has("data") && doc.has("text")) bad(doc.name("data"), "missing (the octets in hex; \"text\" is not read)");
    ud.encoding = doc.number("encoding", 31);
    if (ud.encoding == WMS_ENCODING_IS91EP) ud.is91ep_type = doc.number("is91ep_type", 255);
    ud.num_fields = static_cast<uint8_t>(doc.number("num_fields", 255));
    ud.padding_bits = doc.has("padding_bits") ? static_cast<uint8_t>(doc.number("padding_bits", 7)) : 0;
    const auto data = hex_to_octets(doc.text("data"));
    if (!data) bad(doc.name("data"), "expected hexadecimal octets");
    if (data->size() > WMS_CDMA_USER_DATA_MAX) bad(doc.name("data"), "more than 229 octets");
    std::copy(data->begin(), data->end(), ud.data);
    ud.data_len = static_cast<uint8_t>(data->size());
}

void callback_from(const Fields &doc, wms_address &cb)
{
    cb.digit_mode = static_cast<uint8_t>(doc.number("digit_mode", 1));
    if (cb.digit_mode != 0) {
        cb.number_type = static_cast<uint8_t>(doc.number("number_type", 7));
        cb.number_plan = static_cast<uint8_t>(doc.number("number_plan", 15));
    }
    if (doc.has("codes")) {
        const auto codes = hex_to_octets(doc.text("codes"));
        if (!codes || codes->size() > WMS_CDMA_CALLBACK_MAX_DIGITS) bad(doc.name("codes"), "expected up to 32 octets");
        std::copy(codes->begin(), codes->end(), cb.digits);
        cb.number_of_digits = static_cast<uint8_t>(codes->size());
        return;
    }
    const std::string digits = doc.text("digits");
    if (digits.size() > WMS_CDMA_CALLBACK_MAX_DIGITS) bad(doc.name("digits"), "more than 32 digits");
    if (cb.digit_mode != 0) {
        std::copy(digits.begin(), digits.end(), cb.digits);
    } else if (!digits.empty() && wms_ts_ascii2dtmf(digits.c_str(), cb.digits) != digits.size()) {
        bad(doc.name("digits"), "only 0-9, * and # travel as DTMF digits");
    }
    cb.number_of_digits = static_cast<uint8_t>(digits.size());
}

}  // namespace

Json bearer_data_json(const wms_cdma_bearer_data &bd)
{
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

wms_cdma_bearer_data bearer_data_from_json(const Json &json)
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    const Fields doc(json, "",
                     {"message_id", "user_data", "user_response", "mc_time", "validity_absolute", "validity_relative",
                      "deferred_absolute", "deferred_relative", "priority", "privacy", "reply_option", "num_messages",
                      "alert_on_delivery", "language", "callback", "display_mode"});
    if (doc.has("message_id")) {
        const Fields id = doc.object("message_id", {"type", "id"});
        bd.message_id.type = id.number("type", 15);
        bd.message_id.id_number = id.number("id", 0xFFFF);
        bd.mask |= WMS_MASK_BD_MSG_ID;
    }
    if (doc.has("user_data")) {
        user_data_from(
            doc.object("user_data", {"encoding", "is91ep_type", "num_fields", "padding_bits", "data", "text"}),
            bd.user_data);
        bd.mask |= WMS_MASK_BD_USER_DATA;
    }
    if (doc.has("user_response")) {
        bd.user_response = static_cast<uint8_t>(doc.number("user_response", 255));
        bd.mask |= WMS_MASK_BD_USER_RESP;
    }
    struct TimeField {
        const char *key;
        wms_timestamp *field;
        uint32_t bit;
        bool relative;
    };
    const TimeField times[] = {{"mc_time", &bd.mc_time, WMS_MASK_BD_MC_TIME, false},
                               {"validity_absolute", &bd.validity_absolute, WMS_MASK_BD_VALID_ABS, false},
                               {"validity_relative", &bd.validity_relative, WMS_MASK_BD_VALID_REL, true},
                               {"deferred_absolute", &bd.deferred_absolute, WMS_MASK_BD_DEFER_ABS, false},
                               {"deferred_relative", &bd.deferred_relative, WMS_MASK_BD_DEFER_REL, true}};
    for (const auto &t : times) {
        if (!doc.has(t.key)) continue;
        *t.field = t.relative ? relative_from(doc, t.key) : time_from(doc, t.key);
        bd.mask |= t.bit;
    }
    if (doc.has("priority")) {
        bd.priority = doc.number("priority", 3);
        bd.mask |= WMS_MASK_BD_PRIORITY;
    }
    if (doc.has("privacy")) {
        bd.privacy = doc.number("privacy", 3);
        bd.mask |= WMS_MASK_BD_PRIVACY;
    }
    if (doc.has("reply_option")) {
        const Fields reply = doc.object("reply_option", {"user_ack", "delivery_ack"});
        bd.user_ack_requested = reply.flag("user_ack") ? 1 : 0;
        bd.delivery_ack_requested = reply.flag("delivery_ack") ? 1 : 0;
        bd.mask |= WMS_MASK_BD_REPLY_OPTION;
    }
    if (doc.has("num_messages")) {
        bd.num_messages = static_cast<uint8_t>(doc.number("num_messages", 99));
        bd.mask |= WMS_MASK_BD_NUM_OF_MSGS;
    }
    if (doc.has("alert_on_delivery")) {
        if (!doc.flag("alert_on_delivery")) bad("alert_on_delivery", "leave the key out instead of false");
        bd.alert_on_delivery = 1;
        bd.mask |= WMS_MASK_BD_ALERT;
    }
    if (doc.has("language")) {
        bd.language = doc.number("language", 255);
        bd.mask |= WMS_MASK_BD_LANGUAGE;
    }
    if (doc.has("callback")) {
        callback_from(doc.object("callback", {"digit_mode", "number_type", "number_plan", "digits", "codes"}),
                      bd.callback);
        bd.mask |= WMS_MASK_BD_CALLBACK;
    }
    if (doc.has("display_mode")) {
        bd.display_mode = doc.number("display_mode", 3);
        bd.mask |= WMS_MASK_BD_DISPLAY_MODE;
    }
    return bd;
}

}  // namespace smsutil::cli
