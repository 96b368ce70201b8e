#include <algorithm>
#include <array>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "cdma_json.hpp"
#include "commands.hpp"
#include "hex.hpp"
#include "modem_input.hpp"
#include "text_input.hpp"

namespace smsutil::cli {
namespace {

constexpr size_t kMaxBearerCharacters = 2 * WMS_CDMA_BEARER_DATA_MAX;

std::string cdma_status_text(wms_status_e_type status)
{
    switch (status) {
    case WMS_TS_STATUS_BAD_ADDRESS:
        return "malformed or oversized bearer data";
    case WMS_TS_STATUS_BAD_USER_DATA_LENGTH:
        return "user data of more than 229 units or inconsistent counts";
    case WMS_TS_STATUS_BAD_IS91EP_TYPE:
        return "IS-91 message type outside 130-133";
    default:
        return "failure";
    }
}

std::string subparameter_name(uint8_t id)
{
    static constexpr std::array<const char *, 16> kNames{
        "message_id",        "user_data",         "user_response",     "mc_time",
        "validity_absolute", "validity_relative", "deferred_absolute", "deferred_relative",
        "priority",          "privacy",           "reply_option",      "num_messages",
        "alert_on_delivery", "language",          "callback",          "display_mode"};
    return "subparameter " + std::to_string(id) + (id < kNames.size() ? std::string(" (") + kNames[id] + ")" : "");
}

// The decoder stops without a word at a subparameter that runs past the
// end; walking the subparameters as it does finds the one it dropped.
std::string cut_short_subparameter(const std::vector<uint8_t> &octets)
{
    constexpr size_t kMessageIdOctets = 3;  // the first is read whatever its length octet says
    bool message_id_seen = false;
    for (size_t at = 0; at < octets.size();) {
        const uint8_t id = octets[at];
        if (octets.size() - at < 2) return subparameter_name(id) + " has no length octet";
        const size_t length = octets[at + 1];
        const size_t left = octets.size() - at - 2;
        if (length > left) {
            return subparameter_name(id) + " announces " + std::to_string(length) + " octets, " + std::to_string(left) +
                   " remain";
        }
        at += 2 + (id == 0 && !message_id_seen ? kMessageIdOctets : length);
        message_id_seen = message_id_seen || id == 0;
    }
    return {};
}

Json error_json(const std::string &message, size_t line)
{
    Json out;
    if (line != 0) out["line"] = line;
    out["error"] = message;
    return out;
}

// One hexadecimal text in, one JSON line out; false when it failed.
bool decode_bearer_data(std::string_view hex, size_t line)
{
    const auto fail = [line](const std::string &message) {
        std::cout << to_line(error_json(message, line)) << '\n';
        return false;
    };
    if (auto stray = non_hex_character(hex)) return fail(*stray);
    if (hex.size() > kMaxBearerCharacters) return fail("bearer data longer than 255 octets");
    const auto octets = hex_to_octets(hex);
    if (!octets) return fail("odd number of hexadecimal characters");
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    raw.len = static_cast<uint32_t>(octets->size());
    std::copy(octets->begin(), octets->end(), raw.data);
    auto bd = std::make_unique<wms_cdma_bearer_data>();
    std::memset(bd.get(), 0, sizeof *bd);
    const wms_status_e_type status = wms_ts_decode_CDMA_bd(&raw, bd.get());
    if (status != WMS_TS_STATUS_OK) {
        return fail("wms_ts_decode_CDMA_bd returned " + std::to_string(status) + ": " + cdma_status_text(status));
    }
    Json out = bearer_data_json(*bd);
    if (const std::string cut = cut_short_subparameter(*octets); !cut.empty()) {
        if (out.empty()) return fail(cut);
        out["problems"] = Json::array({cut});
    }
    std::cout << to_line(out) << '\n';
    return true;
}

int run_cdma_decode(const std::string &hex, bool given)
{
    if (given && hex != "-") return decode_bearer_data(trim(hex), 0) ? 0 : 1;
    bool all_ok = true;
    LineReader lines(std::cin, kMaxBearerCharacters);
    while (auto line = lines.next()) {
        const std::string_view text = trim(line->text);
        if (text.empty() || text.front() == '#') continue;
        all_ok = decode_bearer_data(text, line->number) && all_ok;
    }
    return all_ok ? 0 : 1;
}

// The parser's own words, without its exception's name in front.
std::string parse_error_text(const Json::parse_error &e)
{
    const std::string what = e.what();
    const size_t end_of_name = what.find("] ");
    return end_of_name == std::string::npos ? what : what.substr(end_of_name + 2);
}

int run_cdma_encode(const std::string &text)
{
    Json doc;
    try {
        doc = Json::parse(text);
    } catch (const Json::parse_error &e) {
        return print_input_error("not JSON: " + parse_error_text(e));
    }
    wms_cdma_bearer_data bd;
    try {
        bd = bearer_data_from_json(doc);
    } catch (const BadBearerJson &e) {
        return print_input_error(e.what());
    }
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    const wms_status_e_type status = wms_ts_encode_CDMA_bd(&bd, &raw);
    if (status != WMS_TS_STATUS_OK) {
        return print_error("wms_ts_encode_CDMA_bd returned " + std::to_string(status) + ": " +
                           cdma_status_text(status));
    }
    const size_t length = std::min<size_t>(raw.len, WMS_CDMA_BEARER_DATA_MAX);
    Json out;
    out["bearer_data"] = octets_to_hex(std::span<const uint8_t>(raw.data, length));
    out["length"] = length;
    std::cout << to_line(out) << '\n';
    return 0;
}

}  // namespace

void add_cdma_command(CLI::App &app, int &exit_status)
{
    CLI::App *cdma = app.add_subcommand("cdma", "CDMA bearer data to JSON and back");
    cdma->require_subcommand(1, 1);
    cdma->footer("Run 'smsutil cdma decode --help' or 'smsutil cdma encode --help'.");

    auto hex = std::make_shared<std::string>();
    CLI::App *decode = cdma->add_subcommand("decode", "Decode bearer data octets into one JSON object");
    auto *hex_option = decode->add_option("HEX", *hex,
                                          "Bearer data as hexadecimal text; - or nothing reads one per line from "
                                          "standard input");
    decode->footer(
        "Example:\n"
        "  smsutil cdma decode 00032123400c00\n"
        "Each subparameter present becomes a key; 'cdma encode' reads the same object back.  A subparameter\n"
        "cut short by the end of the data is named in \"problems\" (exit status 1 when nothing else decodes).");
    decode->callback([hex, hex_option, &exit_status] { exit_status = run_cdma_decode(*hex, hex_option->count() > 0); });

    auto json = std::make_shared<std::string>();
    CLI::App *encode = cdma->add_subcommand("encode", "Encode a JSON object as 'cdma decode' prints it");
    auto *json_option = encode->add_option("JSON", *json, "The bearer data object; - or nothing reads standard input");
    encode->footer(
        "Example:\n"
        "  smsutil cdma encode '{\"message_id\":{\"type\":2,\"id\":4660},\"priority\":2}'\n"
        "Prints {\"bearer_data\": hex, \"length\": octets}.  Times are YYYY-MM-DDThh:mm:ss, relative\n"
        "periods take their \"code\", user data its \"data\" octets in hex.  A document that is not\n"
        "bearer data is named on standard error (the key at fault), exit status 1.");
    encode->callback([json, json_option, &exit_status] {
        exit_status = run_cdma_encode(text_from_argument(*json, json_option->count() > 0));
    });
}

}  // namespace smsutil::cli
