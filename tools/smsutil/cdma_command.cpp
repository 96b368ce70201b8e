#include <algorithm>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

#include "cdma_json.hpp"
#include "commands.hpp"
#include "hex.hpp"
#include "text_input.hpp"

namespace smsutil::cli {
namespace {

std::string cdma_status_text(wms_status_e_type status) {
    switch (status) {
    case WMS_TS_STATUS_BAD_ADDRESS: return "malformed or oversized bearer data";
    case WMS_TS_STATUS_BAD_USER_DATA_LENGTH: return "user data of more than 229 units or inconsistent counts";
    case WMS_TS_STATUS_BAD_IS91EP_TYPE: return "IS-91 message type outside 130-133";
    default: return "failure";
    }
}

int run_cdma_decode(const std::string& hex) {
    const auto octets = hex_to_octets(trim(hex));
    if (!octets) return print_error("not a hexadecimal text of whole octets");
    if (octets->size() > WMS_CDMA_BEARER_DATA_MAX) return print_error("bearer data longer than 255 octets");
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    raw.len = static_cast<uint32_t>(octets->size());
    std::copy(octets->begin(), octets->end(), raw.data);
    auto bd = std::make_unique<wms_cdma_bearer_data>();
    std::memset(bd.get(), 0, sizeof *bd);
    const wms_status_e_type status = wms_ts_decode_CDMA_bd(&raw, bd.get());
    if (status != WMS_TS_STATUS_OK) {
        return print_error("wms_ts_decode_CDMA_bd returned " + std::to_string(status) + ": " +
                           cdma_status_text(status));
    }
    std::cout << to_line(bearer_data_json(*bd)) << '\n';
    return 0;
}

int run_cdma_encode(const std::string& text) {
    Json doc;
    try {
        doc = Json::parse(text);
    } catch (const Json::parse_error& e) {
        return print_error(std::string("not JSON: ") + e.what());
    }
    wms_cdma_bearer_data bd;
    try {
        bd = bearer_data_from_json(doc);
    } catch (const BadBearerJson& e) {
        return print_error(e.what());
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

void add_cdma_command(CLI::App& app, int& exit_status) {
    CLI::App* cdma = app.add_subcommand("cdma", "CDMA bearer data to JSON and back");
    cdma->require_subcommand(1, 1);
    cdma->footer("Run 'smsutil cdma decode --help' or 'smsutil cdma encode --help'.");

    auto hex = std::make_shared<std::string>();
    CLI::App* decode = cdma->add_subcommand("decode", "Decode bearer data octets into one JSON object");
    decode->add_option("HEX", *hex, "Bearer data as hexadecimal text")->required();
    decode->footer(
        "Example:\n"
        "  smsutil cdma decode 00032123400c00\n"
        "Each subparameter present becomes a key; 'cdma encode' reads the same object back.");
    decode->callback([hex, &exit_status] { exit_status = run_cdma_decode(*hex); });

    auto json = std::make_shared<std::string>();
    CLI::App* encode = cdma->add_subcommand("encode", "Encode a JSON object as 'cdma decode' prints it");
    auto* json_option = encode->add_option("JSON", *json, "The bearer data object; - or nothing reads standard input");
    encode->footer(
        "Example:\n"
        "  smsutil cdma encode '{\"message_id\":{\"type\":2,\"id\":4660},\"priority\":2}'\n"
        "Prints {\"bearer_data\": hex, \"length\": octets}.  Times are YYYY-MM-DDThh:mm:ss, relative\n"
        "periods take their \"code\", user data its \"data\" octets in hex.");
    encode->callback([json, json_option, &exit_status] {
        exit_status = run_cdma_encode(text_from_argument(*json, json_option->count() > 0));
    });
}

}  // namespace smsutil::cli
