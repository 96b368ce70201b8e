#include <cstring>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "json_format.hpp"
#include "modem_input.hpp"
#include "modem_json.hpp"
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
    out["pdu"] = shown_pdu(text);
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
bool decode_one(const PduInput& input, const DecodeOptions& options) {
    const std::string_view text = input.pdu;
    const uint32_t state = storage_state(input, options.state);
    const PduText pdu = split_pdu_text(text);
    const auto fail = [&](const ParseFailure& failure, std::optional<int> result) {
        std::cout << to_line(with_header(input, pdu, failure_json(text, failure, result), true)) << '\n';
        return false;
    };
    if (!input.error.empty()) return fail({input.error, std::nullopt}, std::nullopt);
    const DecodedTpdu tpdu = pdu.error.empty() ? decode_tpdu(pdu.tpdu, state) : DecodedTpdu{};
    // The library reads any character as a nibble: refuse such texts here
    // rather than print a message made of garbage.
    if (!hex_to_octets(text) || text.size() > kMaxPduLineCharacters) {
        return fail(diagnose_parse_failure(pdu, state, tpdu), std::nullopt);
    }
    SmsReadPdu read;
    std::memset(&read, 0, sizeof read);
    read.state = state;
    std::memcpy(read.pdu, text.data(), text.size());
    auto message = std::make_unique<SmsMessage>();
    const int result = ParseSms(&read, message.get());
    if (result != SMS_RESULT_OK) return fail(diagnose_parse_failure(pdu, state, tpdu), result);
    Json out = message_json(*message, tpdu_coding(tpdu));
    if (options.raw) {
        const auto* bytes = reinterpret_cast<const uint8_t*>(message->content);
        out["raw_text"] = octets_to_hex({bytes, strnlen(message->content, sizeof message->content)});
    }
    if (options.detail) out["detail"] = tpdu_detail(tpdu);
    std::cout << to_line(with_header(input, pdu, std::move(out), false)) << '\n';
    return true;
}

void run_decode(const DecodeOptions& options, int& exit_status) {
    bool all_ok = true;
    if (!options.pdus.empty()) {
        for (const auto& pdu : options.pdus) all_ok = decode_one(pdu_argument(pdu), options) && all_ok;
    } else {
        ModemReader reader(std::cin);
        while (auto input = reader.next()) all_ok = decode_one(*input, options) && all_ok;
    }
    std::cout.flush();
    exit_status = all_ok ? 0 : 1;
}

}  // namespace

void add_decode_command(CLI::App& app, int& exit_status) {
    auto options = std::make_shared<DecodeOptions>();
    CLI::App* cmd = app.add_subcommand("decode", "Decode PDUs as a modem prints them, one JSON object per PDU");
    cmd->add_option("--state", options->state,
                    "Storage state: 0/1 received (DELIVER, STATUS-REPORT), 2/3 stored outgoing (SUBMIT); "
                    "a +CMGL or +CMGR header's status takes its place")
        ->each(whole_number_from("--state", 0, 3))
        ->capture_default_str();
    cmd->add_flag("--detail", options->detail, "Add the TPDU fields as the transport codec decodes them");
    cmd->add_flag("--raw", options->raw, "Add raw_text: the text's bytes exactly as the library returned them, in hex");
    cmd->add_option("PDU", options->pdus,
                    "Hexadecimal PDUs; when none, standard input: one PDU a line, or a modem's answer as pasted");
    cmd->footer(
        "Examples:\n"
        "  smsutil decode 0891683108200505F0040D91683167108325F40000422070314145000AE8329BFD4697D9EC37\n"
        "  smsutil decode --state 3 --detail < outbox.txt\n"
        "  smsutil decode < cmgl-session.txt\n"
        "Standard input may hold what AT+CMGL, AT+CMGR, +CMT or +CDS printed: the header's index and\n"
        "status go into the output, the echo, OK, empty lines and lines starting with # are skipped.\n"
        "Exit status 1 when any PDU fails.");
    cmd->callback([options, &exit_status] { run_decode(*options, exit_status); });
}

}  // namespace smsutil::cli
