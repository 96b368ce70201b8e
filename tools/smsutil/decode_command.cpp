#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "json_format.hpp"
#include "option_values.hpp"
#include "parse_diagnosis.hpp"
#include "pdu_text.hpp"
#include "tpdu_decode.hpp"
#include "tpdu_json.hpp"

#include "hex.hpp"

namespace smsutil::cli {
namespace {

struct DecodeOptions {
    uint32_t state = 1;
    bool detail = false;
    bool raw = false;
    std::vector<std::string> pdus;
};

Json failure_json(std::string_view text, const ParseFailure& failure, std::optional<int> result) {
    Json out;
    out["pdu"] = std::string(text);
    // Without a result the library was not called: the text cannot be a PDU.
    std::string message =
        result ? "ParseSms returned " + std::to_string(*result) + ": " + failure.cause : failure.cause;
    if (failure.error_code) message += " (error code " + std::to_string(*failure.error_code) + ")";
    out["error"] = message;
    out["result"] = result ? Json(*result) : Json(nullptr);
    out["error_code"] = failure.error_code ? Json(*failure.error_code) : Json(nullptr);
    return out;
}

// One PDU in, one JSON line out; false when the PDU failed.
bool decode_one(std::string_view text, const DecodeOptions& options) {
    const PduText pdu = split_pdu_text(text);
    const DecodedTpdu tpdu = pdu.error.empty() ? decode_tpdu(pdu.tpdu, options.state) : DecodedTpdu{};
    // The library reads any character as a nibble and stops at 512: refuse
    // such texts here rather than print a message made of garbage.
    if (!hex_to_octets(text) || text.size() >= sizeof(SmsReadPdu::pdu)) {
        std::cout << to_line(failure_json(text, diagnose_parse_failure(text, pdu, options.state, tpdu), std::nullopt))
                  << '\n';
        return false;
    }
    SmsReadPdu input;
    std::memset(&input, 0, sizeof input);
    input.state = options.state;
    std::memcpy(input.pdu, text.data(), text.size());
    auto message = std::make_unique<SmsMessage>();
    const int result = ParseSms(&input, message.get());
    if (result != SMS_RESULT_OK) {
        std::cout << to_line(failure_json(text, diagnose_parse_failure(text, pdu, options.state, tpdu), result))
                  << '\n';
        return false;
    }
    Json out = message_json(*message, tpdu_coding(tpdu));
    if (options.raw) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(message->content);
        out["raw_text"] = octets_to_hex({bytes, strnlen(message->content, sizeof message->content)});
    }
    if (options.detail) out["detail"] = tpdu_detail(tpdu);
    std::cout << to_line(out) << '\n';
    return true;
}

void run_decode(const DecodeOptions& options, int& exit_status) {
    bool all_ok = true;
    if (!options.pdus.empty()) {
        for (const auto& pdu : options.pdus) all_ok = decode_one(trim(pdu), options) && all_ok;
    } else {
        std::string line;
        while (std::getline(std::cin, line)) {
            const std::string_view text = trim(line);
            if (text.empty() || text.front() == '#') continue;
            all_ok = decode_one(text, options) && all_ok;
        }
    }
    std::cout.flush();
    exit_status = all_ok ? 0 : 1;
}

}  // namespace

void add_decode_command(CLI::App& app, int& exit_status) {
    auto options = std::make_shared<DecodeOptions>();
    CLI::App* cmd = app.add_subcommand("decode", "Decode PDUs as a modem prints them, one JSON object per PDU");
    cmd->add_option("--state", options->state,
                    "Storage state: 0/1 received (DELIVER, STATUS-REPORT), 2/3 stored outgoing (SUBMIT)")
        ->each(whole_number_from("--state", 0, 3))
        ->capture_default_str();
    cmd->add_flag("--detail", options->detail, "Add the TPDU fields as the transport codec decodes them");
    cmd->add_flag("--raw", options->raw, "Add raw_text: the text's bytes exactly as the library returned them, in hex");
    cmd->add_option("PDU", options->pdus, "Hexadecimal PDUs; read one per line from standard input when none");
    cmd->footer(
        "Examples:\n"
        "  smsutil decode 0891683108200505F0040D91683167108325F40000422070314145000AE8329BFD4697D9EC37\n"
        "  smsutil decode --state 3 --detail < outbox.txt\n"
        "Lines that are empty or start with # are skipped.  Exit status 1 when any PDU fails.");
    cmd->callback([options, &exit_status] { run_decode(*options, exit_status); });
}

}  // namespace smsutil::cli
