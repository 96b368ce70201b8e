#include "json_format.hpp"

#include <array>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "surrogate_text.hpp"

namespace smsutil::cli {
namespace {

// Year to second as numbers; nullopt when any of them is not BCD.
std::optional<std::array<unsigned, 6>> bcd_fields(const wms_timestamp &time)
{
    const std::array<uint8_t, 6> octets{time.year, time.month, time.day, time.hour, time.minute, time.second};
    std::array<unsigned, 6> values{};
    for (size_t i = 0; i < octets.size(); ++i) {
        uint8_t value = 0;
        if (wms_ts_bcd_to_int(octets[i], &value) == 0) return std::nullopt;
        values[i] = value;
    }
    return values;
}

std::string text_of(const char *field, size_t capacity) { return std::string(field, strnlen(field, capacity)); }

const char *message_type(const SmsMessage &message)
{
    if (message.state == 2 || message.state == 3) return "submit";
    return message.byStatusReport != 0 ? "status-report" : "deliver";
}

}  // namespace

std::string to_line(const Json &value)
{
    return value.dump(-1, ' ', false, nlohmann::detail::error_handler_t::replace);
}

int print_error(const std::string &message)
{
    Json out;
    out["error"] = message;
    std::cout << to_line(out) << '\n';
    return 1;
}

int print_input_error(const std::string &message, int status)
{
    std::string line = message;
    for (char &c : line) {
        if (c == '\n' || c == '\r') c = ' ';
    }
    std::cerr << "smsutil: " << line << '\n';
    return status;
}

std::string iso8601_local(unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute, unsigned second)
{
    std::array<char, 40> text{};
    std::snprintf(text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02u", year, month, day, hour, minute, second);
    return text.data();
}

std::optional<std::string> iso8601_without_zone(const wms_timestamp &time)
{
    const auto fields = bcd_fields(time);
    if (!fields) return std::nullopt;
    const auto [year, month, day, hour, minute, second] = *fields;
    // Two-digit years: the library reads 00..95 as 2000..2095.
    const unsigned full_year = year <= 95 ? 2000 + year : 1900 + year;
    return iso8601_local(full_year, month, day, hour, minute, second);
}

std::optional<std::string> iso8601_timestamp(const wms_timestamp &time)
{
    auto text = iso8601_without_zone(time);
    if (!text) return std::nullopt;
    return *text + utc_offset(time.timezone);
}

std::string utc_offset(int quarters)
{
    const unsigned offset_minutes = static_cast<unsigned>(quarters < 0 ? -quarters : quarters) * 15;
    std::array<char, 16> zone{};
    std::snprintf(zone.data(), zone.size(), "%c%02u:%02u", quarters < 0 ? '-' : '+', offset_minutes / 60,
                  offset_minutes % 60);
    return zone.data();
}

std::optional<std::string> iso8601_duration(const wms_timestamp &duration)
{
    const auto fields = bcd_fields(duration);
    if (!fields) return std::nullopt;
    // Durations leave the seconds at zero.
    const auto [years, months, days, hours, minutes, seconds] = *fields;
    std::string period = "P";
    if (years) period += std::to_string(years) + "Y";
    if (months) period += std::to_string(months) + "M";
    if (days) period += std::to_string(days) + "D";
    if (hours || minutes || seconds) {
        period += "T";
        if (hours) period += std::to_string(hours) + "H";
        if (minutes) period += std::to_string(minutes) + "M";
        if (seconds) period += std::to_string(seconds) + "S";
    }
    if (period == "P") period = "PT0S";
    return period;
}

const char *delivery_state_name(uint32_t state)
{
    switch (state) {
    case SMS_STATUS_DELIVERED:
        return "delivered";
    case SMS_STATUS_COMPLETED:
        return "completed";
    case SMS_STATUS_REPLACED:
        return "replaced";
    case SMS_STATUS_PENDING:
        return "pending";
    case SMS_STATUS_FAILED:
        return "failed";
    case SMS_STATUS_STOPPED:
        return "stopped";
    default:
        return "unknown";
    }
}

const char *alphabet_name(uint8_t alphabet)
{
    switch (alphabet) {
    case WMS_ALPHABET_GSM7:
        return "gsm7";
    case WMS_ALPHABET_8BIT:
        return "8bit";
    case WMS_ALPHABET_UCS2:
        return "ucs2";
    default:
        return "other";
    }
}

Json message_json(const SmsMessage &message, const Json &coding)
{
    Json out;
    out["type"] = message_type(message);
    out["sca"] = text_of(message.sca, sizeof message.sca);
    out["address"] = text_of(message.szAddress, sizeof message.szAddress);
    // The library writes each surrogate of an emoji as a character of its
    // own, which is not UTF-8: the reader gets the character that was sent.
    out["text"] = from_library_utf8(text_of(message.content, sizeof message.content));
    out["coding"] = coding;
    // A stored SUBMIT has no time stamp: ParseSms leaves the fields at zero.
    if (message.wYear == 0) {
        out["timestamp"] = nullptr;
    } else {
        out["timestamp"] = iso8601_local(message.wYear, message.byMonth, message.byDay, message.byHour,
                                         message.byMinute, message.bySecond);
    }
    if (message.sms_flag_type == 1) {
        out["concatenation"] = {{"reference", message.mr}, {"total", message.btTotalPack}, {"part", message.btPack}};
    } else {
        out["concatenation"] = nullptr;
    }
    if (message.byStatusReport != 0) {
        out["status"] = {{"state", message.dwReportStatus}, {"name", delivery_state_name(message.dwReportStatus)}};
    } else {
        out["status"] = nullptr;
    }
    return out;
}

}  // namespace smsutil::cli
