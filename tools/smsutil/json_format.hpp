// JSON shapes of what the tool prints; one object per output line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "smsutil/smsutil.h"

namespace smsutil::cli {

using Json = nlohmann::ordered_json;

// One output line.  Text that is not valid UTF-8 (8-bit data) is printed
// with replacement characters rather than aborting the whole run.
std::string to_line(const Json &value);

// Prints {"error": message} as one output line; returns exit status 1.
int print_error(const std::string &message);

// "smsutil: message" on standard error, on one line so that scripts can
// log it as it is; returns status.  For input the tool cannot start on.
int print_input_error(const std::string &message, int status = 1);

// "YYYY-MM-DDThh:mm:ss": the message record keeps no time zone, so the
// service centre's local time is printed without an offset.
std::string iso8601_local(unsigned year, unsigned month, unsigned day, unsigned hour, unsigned minute, unsigned second);

// A BCD time record without its zone, e.g. "2026-11-22T23:15:42"; nullopt
// when a field is not BCD.
std::optional<std::string> iso8601_without_zone(const wms_timestamp &time);

// A TP-SCTS / TP-DT / absolute TP-VP record (BCD fields, quarter-hour zone)
// with its offset, e.g. "2024-05-06T07:08:09+02:00"; nullopt when a field
// is not BCD.
std::optional<std::string> iso8601_timestamp(const wms_timestamp &time);

// "+05:30", "-05:00": an offset from UTC given in quarter hours.
std::string utc_offset(int quarters);

// A relative duration as an ISO 8601 period, e.g. "P1D", "PT12H30M".
std::optional<std::string> iso8601_duration(const wms_timestamp &duration);

// Name of a delivery state of a status report ("delivered", "pending", ...).
const char *delivery_state_name(uint32_t state);

// Name of a transport alphabet: "gsm7", "8bit", "ucs2".
const char *alphabet_name(uint8_t alphabet);

// The record ParseSms filled.  coding is the alphabet the TPDU announced
// (the record itself reports UTF-8 once the text is converted); null when
// the message carries no text.  text is valid UTF-8 whatever the library
// returned.
Json message_json(const SmsMessage &message, const Json &coding);

}  // namespace smsutil::cli
