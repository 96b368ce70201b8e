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
#include "pdu_json.hpp"
#include "pdu_text.hpp"
#include "tpdu_decode.hpp"
#include "tpdu_json.hpp"

#include "hex.hpp"

namespace smsutil::cli {
namespace {

struct DecodeOptions {
    uint32_t state = 1;
    bool state_given = false;
    bool gateway = false;
    bool compare = false;
    bool detail = false;
    bool raw = false;
    std::vector<std::string> pdus;
};

struct Decoded {
    Json json;
    bool ok = false;
};

Json failure_json(std::string_view text, const ParseFailure &failure, std::optional<int> result)
{
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

Decoded through_decoder(std::string_view text, const sms_pdu_record &record, int result)
{
    if (result == SMS_PDU_OK) return {pdu_record_json(record), true};
    Json out;
    out["pdu"] = shown_pdu(text);
    out["error"] = std::string("the decoder returned ") + std::to_string(result) + ": " + sms_pdu_result_text(result);
    out["result"] = result;
    return {out, false};
}

Decoded through_gateway(std::string_view text, const PduText &pdu, uint32_t state, const DecodeOptions &options)
{
    const DecodedTpdu tpdu = pdu.error.empty() ? decode_tpdu(pdu.tpdu, state) : DecodedTpdu{};
    SmsReadPdu read;
    std::memset(&read, 0, sizeof read);
    read.state = state;
    std::memcpy(read.pdu, text.data(), text.size());
    auto message = std::make_unique<SmsMessage>();
    const int result = ParseSms(&read, message.get());
    if (result != SMS_RESULT_OK) return {failure_json(text, diagnose_parse_failure(pdu, state, tpdu), result), false};
    Json out = message_json(*message, tpdu_coding(tpdu));
    if (options.raw) {
        const auto *bytes = reinterpret_cast<const uint8_t *>(message->content);
        out["raw_text"] = octets_to_hex({bytes, strnlen(message->content, sizeof message->content)});
    }
    if (options.detail) out["detail"] = tpdu_detail(tpdu);
    return {out, true};
}

// The fields both outputs name.  The gateway's time has no offset, so
// only the local time is compared; status differs in shape by design.
Json differences(const Decoded &decoder, const Decoded &gateway)
{
    if (!decoder.ok || !gateway.ok) return decoder.ok == gateway.ok ? Json::array() : Json::array({"error"});
    Json out = Json::array();
    for (const char *field : {"type", "sca", "address", "text", "coding", "timestamp", "concatenation"}) {
        Json a = decoder.json[field];
        Json b = gateway.json[field];
        if (a.is_string() && b.is_string() && std::string_view(field) == "timestamp") {
            a = a.get<std::string>().substr(0, 19);
        }
        if (a != b) out.push_back(field);
    }
    return out;
}

// The state ParseSms needs: a modem header's status, else --state, else
// what the PDU's own first octet says.
uint32_t gateway_state(const PduInput &input, const DecodeOptions &options, const sms_pdu_record &record, int result)
{
    if (options.state_given || input.header) return storage_state(input, options.state);
    return result == SMS_PDU_OK && record.kind == SMS_PDU_SUBMIT ? 2U : 1U;
}

// One PDU in, one JSON line out; false when the PDU failed.
bool decode_one(const PduInput &input, const DecodeOptions &options)
{
    const std::string_view text = input.pdu;
    const PduText pdu = split_pdu_text(text);
    const auto print = [&](Json fields, bool ok) {
        std::cout << to_line(with_header(input, pdu, std::move(fields), !ok)) << '\n';
        return ok;
    };
    if (!input.error.empty()) return print(failure_json(text, {input.error, std::nullopt}, std::nullopt), false);
    // Name a stray character or an overlong line before any decoder sees it.
    if (!hex_to_octets(text) || text.size() > kMaxPduLineCharacters) {
        return print(failure_json(text, diagnose_parse_failure(pdu, options.state, DecodedTpdu{}), std::nullopt),
                     false);
    }
    auto record = std::make_unique<sms_pdu_record>();
    const int result = sms_pdu_decode_hex(text.data(), text.size(), 0, record.get());
    Decoded decoder = through_decoder(text, *record, result);
    const uint32_t state = gateway_state(input, options, *record, result);
    if (!options.gateway && !options.compare) {
        if (options.detail && decoder.ok) decoder.json["detail"] = tpdu_detail(decode_tpdu(pdu.tpdu, state));
        return print(decoder.json, decoder.ok);
    }
    const Decoded gateway = through_gateway(text, pdu, state, options);
    if (options.gateway) return print(gateway.json, gateway.ok);
    Json out;
    out["decoder"] = decoder.json;
    out["gateway"] = gateway.json;
    out["differences"] = differences(decoder, gateway);
    return print(out, decoder.ok);
}

void run_decode(const DecodeOptions &options, int &exit_status)
{
    bool all_ok = true;
    if (!options.pdus.empty()) {
        for (const auto &pdu : options.pdus) all_ok = decode_one(pdu_argument(pdu), options) && all_ok;
    } else {
        ModemReader reader(std::cin);
        while (auto input = reader.next()) all_ok = decode_one(*input, options) && all_ok;
    }
    std::cout.flush();
    exit_status = all_ok ? 0 : 1;
}

}  // namespace

void add_decode_command(CLI::App &app, int &exit_status)
{
    auto options = std::make_shared<DecodeOptions>();
    CLI::App *cmd = app.add_subcommand("decode", "Decode PDUs as a modem prints them, one JSON object per PDU");
    auto *state = cmd->add_option("--state", options->state,
                                  "With --gateway or --compare: storage state ParseSms takes, 0/1 received "
                                  "(DELIVER, STATUS-REPORT), 2/3 stored outgoing (SUBMIT); a +CMGL or +CMGR "
                                  "header's status takes its place, and without either the PDU's kind decides")
                      ->each(whole_number_from("--state", 0, 3));
    cmd->add_flag("--gateway", options->gateway,
                  "Show what the gateway's message interface (ParseSms) makes of each PDU instead");
    cmd->add_flag("--compare", options->compare,
                  "Show both, as \"decoder\" and \"gateway\", and the fields where they differ");
    cmd->add_flag("--detail", options->detail, "Add the TPDU fields as the transport codec decodes them");
    cmd->add_flag("--raw", options->raw,
                  "Add raw_text, the text's bytes exactly as ParseSms returned them (implies --gateway unless "
                  "--compare)");
    cmd->add_option("PDU", options->pdus,
                    "Hexadecimal PDUs; when none, standard input: one PDU a line, or a modem's answer as pasted");
    cmd->footer(
        "Examples:\n"
        "  smsutil decode 0891683108200505F0040D91683167108325F40000422070314145000AE8329BFD4697D9EC37\n"
        "  smsutil decode --compare < outbox.txt\n"
        "  smsutil decode --gateway --state 3 --detail < outbox.txt\n"
        "  smsutil decode < cmgl-session.txt\n"
        "Standard input may hold what AT+CMGL, AT+CMGR, +CMT or +CDS printed: the header's index and\n"
        "status go into the output, the echo, OK, empty lines and lines starting with # are skipped.\n"
        "Fields: type, sca, address, text, coding, timestamp (with its offset), concatenation, status,\n"
        "class, pid, dcs, ports, national_language, user_data_hex (8-bit data), headers (id, data) and\n"
        "problems (code, offset of the octet, text) when the decoder found any.\n"
        "Exit status 1 when any PDU fails (with --compare: when the decoder fails).");
    cmd->callback([options, state, &exit_status] {
        options->state_given = state->count() > 0;
        // raw_text is by definition what ParseSms returned.
        if (options->raw && !options->compare) options->gateway = true;
        run_decode(*options, exit_status);
    });
}

}  // namespace smsutil::cli
