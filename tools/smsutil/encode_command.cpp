#include <iostream>
#include <memory>
#include <string>

#include "commands.hpp"
#include "compose_parts.hpp"
#include "json_format.hpp"
#include "number_check.hpp"
#include "option_values.hpp"
#include "submit_parts.hpp"
#include "text_coding.hpp"
#include "text_input.hpp"
#include "usage_error.hpp"

namespace smsutil::cli {
namespace {

// Relative validity periods are built with 30-day months and 360-day years
// but sent with 365-day years, so a period of 360 days or more would go out
// days longer than asked, and past 441 days wrap round to minutes.
constexpr uint32_t kMaxValiditySeconds = 360U * 86400U - 1U;
// Under one minute the library sends the longest period there is.
constexpr uint32_t kMinValiditySeconds = 60;

// --lang takes these names; auto lets the encoder choose among all three.
enum LanguageChoice : uint32_t { kAuto, kNone, kTurkish, kSpanish, kPortuguese };

struct EncodeOptions {
    ComposeRequest request;
    TextOptions text_options;
    uint32_t language = kAuto;
    uint16_t max_parts = SMS_PDU_MAX_PARTS;
    bool gateway = false;
    bool at_commands = false;
    std::string text;
};

void validate_numbers(const ComposeRequest &request)
{
    if (auto problem = dial_number_problem(request.to); !problem.empty()) throw UsageError("--to " + problem);
    if (request.smsc.empty()) return;
    if (auto problem = dial_number_problem(request.smsc); !problem.empty()) throw UsageError("--smsc " + problem);
}

void print_submit_parts(const std::vector<sms_pdu_part> &parts, bool at_commands)
{
    for (size_t i = 0; i < parts.size(); ++i) {
        const sms_pdu_part &part = parts[i];
        if (at_commands) {
            std::cout << "AT+CMGS=" << part.tpdu_length << '\n' << part.hex << '\n';
            continue;
        }
        Json out;
        out["part"] = i + 1;
        out["total"] = parts.size();
        out["coding"] = part.alphabet == SMS_PDU_ALPHABET_UCS2 ? "ucs2" : "gsm7";
        out["national_language"] = {{"locking", pdu_language_name(part.locking_language)},
                                    {"single", pdu_language_name(part.single_language)}};
        out["pdu"] = part.hex;
        out["tpdu_length"] = part.tpdu_length;
        std::cout << to_line(out) << '\n';
    }
}

int run_submit_encode(const EncodeOptions &options)
{
    const ComposeRequest &gateway = options.request;
    SubmitRequest request;
    request.to = gateway.to;
    request.smsc = gateway.smsc;
    constexpr uint32_t kAll =
        (1U << SMS_PDU_LANG_TURKISH) | (1U << SMS_PDU_LANG_SPANISH) | (1U << SMS_PDU_LANG_PORTUGUESE);
    request.languages = options.language == kAuto   ? kAll
                        : options.language == kNone ? 0U
                                                    : 1U << (options.language - 1);
    request.max_parts = options.max_parts;
    if (gateway.reference_given) request.reference = static_cast<uint16_t>(gateway.reference);
    request.status_report = gateway.status_report;
    if (gateway.has_validity) request.validity_seconds = gateway.validity_seconds;
    const SubmitOutcome outcome = encode_submit(request, options.text);
    if (!outcome.error.empty()) return print_error(outcome.error);
    print_submit_parts(outcome.parts, options.at_commands);
    return 0;
}

// The path through ComposeSms knows Turkish and Spanish only.  The
// encoder chooses the alphabet itself, so forcing one with --coding means
// the gateway's composer.
void check_gateway_options(EncodeOptions &options, const CLI::Option &coding, const CLI::Option &max_parts)
{
    if (coding.count() > 0) options.gateway = true;
    if (!options.gateway) return;
    if (options.language == kPortuguese) throw UsageError("--lang with --gateway must be none, turkish or spanish");
    if (max_parts.count() > 0) throw UsageError("--max-parts does not work with --gateway, which sends up to four");
    if (options.request.smsc.empty()) throw UsageError("--smsc is required with --gateway");
    options.text_options.language = options.language == kAuto ? 0 : options.language - 1;
}

void print_parts(const ComposeOutcome &outcome, Coding coding, bool at_commands)
{
    const size_t total = outcome.parts.size();
    for (size_t i = 0; i < total; ++i) {
        const ComposedPart &part = outcome.parts[i];
        if (at_commands) {
            std::cout << "AT+CMGS=" << part.tpdu_octets << '\n' << part.pdu << '\n';
            continue;
        }
        Json out;
        out["part"] = i + 1;
        out["total"] = total;
        out["coding"] = coding_name(coding);
        out["pdu"] = part.pdu;
        out["tpdu_length"] = part.tpdu_octets;
        std::cout << to_line(out) << '\n';
    }
}

int run_encode(const EncodeOptions &options)
{
    const TextOptions &text_options = options.text_options;
    Coding coding = resolve_coding(text_options, options.text);
    if (coding == Coding::Gsm7) {
        if (auto lost = first_character_without_gsm7_code(options.text, text_options.language)) {
            return print_error(std::string("the text has a character without a GSM 7-bit code under language ") +
                               language_name(text_options.language) + ": " + describe(*lost) +
                               ", would be lost; use --coding ucs2 or auto");
        }
    }
    ComposeOutcome outcome = compose_text(options.request, options.text, coding);
    // Auto promises a message that arrives as written: when the 7-bit form
    // does not read back (or does not fit), UCS-2 is the safe choice.
    if (!outcome.error.empty() && !outcome.over_limit && text_options.coding == Coding::Auto &&
        coding == Coding::Gsm7) {
        coding = Coding::Ucs2;
        outcome = compose_text(options.request, options.text, coding);
    }
    if (!outcome.error.empty()) return print_error(outcome.error);
    print_parts(outcome, coding, options.at_commands);
    return 0;
}

}  // namespace

void add_encode_command(CLI::App &app, int &exit_status)
{
    auto options = std::make_shared<EncodeOptions>();
    ComposeRequest &request = options->request;
    CLI::App *cmd = app.add_subcommand("encode", "Compose the SUBMIT PDUs that send a text");
    cmd->add_option("--to", request.to, "Destination number: digits, * and #, + in front")->required();
    cmd->add_option("--smsc", request.smsc,
                    "Service-centre number put in front of each PDU (default: none, the modem's own; "
                    "required with --gateway)");
    cmd->add_flag("--gateway", options->gateway,
                  "Compose through the gateway's message interface (ComposeSms), each part read back through "
                  "ParseSms");
    auto *coding = cmd->add_option("--coding", options->text_options.coding,
                                   "Compose through ComposeSms (as --gateway) in this coding: auto (GSM 7-bit when "
                                   "every character fits, else UCS-2), gsm7, ucs2")
                       ->transform(one_of("--coding", {"auto", "gsm7", "ucs2"}))
                       ->default_str("auto");
    cmd->add_option("--lang", options->language,
                    "National languages the encoder may use: auto (any of the three), none, turkish, spanish, "
                    "portuguese; with --gateway none (the default), turkish or spanish")
        ->transform(one_of("--lang", {"auto", "none", "turkish", "spanish", "portuguese"}))
        ->default_str("auto");
    auto *max_parts =
        cmd->add_option("--max-parts", options->max_parts, "Refuse a text that needs more parts, 1 to 255")
            ->each(whole_number_from("--max-parts", 1, SMS_PDU_MAX_PARTS))
            ->capture_default_str();
    auto *validity = cmd->add_option("--validity", request.validity_seconds,
                                     "Relative validity period in seconds, 60 to 31103999 (under 360 days)")
                         ->each(whole_number_from("--validity", kMinValiditySeconds, kMaxValiditySeconds));
    cmd->add_flag("--status-report", request.status_report, "Ask the service centre for a status report");
    auto *reference = cmd->add_option("--ref", request.reference,
                                      "Concatenation reference (with --gateway also the message reference), 0 to 255 "
                                      "(default: 0 for one part, "
                                      "a fresh reference for each message of several parts)")
                          ->each(whole_number_from("--ref", 0, 255));
    cmd->add_flag("--at", options->at_commands, "Print AT+CMGS=<n> lines, each followed by its PDU");
    auto *text = cmd->add_option("TEXT", options->text, "UTF-8 text; - or nothing reads standard input");
    cmd->footer(
        "Examples:\n"
        "  smsutil encode --to +8613912345678 --smsc +8613912340000 'See you at 8'\n"
        "  smsutil encode --to 5551234 --lang turkish --max-parts 3 --at - < message.txt\n"
        "  smsutil encode --gateway --to 5551234 --smsc +905320000000 --lang turkish 'Gazi'\n"
        "One JSON object per part: part, total, coding, national_language (locking, single), pdu and\n"
        "tpdu_length (the length AT+CMGS takes).  The encoder sends the default alphabet when it can,\n"
        "else the allowed language tables that take the fewest parts, else UCS-2.  With --gateway each\n"
        "PDU is read back through ParseSms before it is printed; exit status 1 when one does not read\n"
        "back as its text, or the text does not fit in four messages.  Without --ref each message of\n"
        "several parts gets a reference of its own.");
    cmd->callback([options, text, validity, reference, coding, max_parts, &exit_status] {
        options->request.has_validity = validity->count() > 0;
        options->request.reference_given = reference->count() > 0;
        check_gateway_options(*options, *coding, *max_parts);
        options->request.language = options->text_options.language;
        validate_numbers(options->request);
        options->text = text_from_argument(options->text, text->count() > 0);
        exit_status = options->gateway ? run_encode(*options) : run_submit_encode(*options);
    });
}

}  // namespace smsutil::cli
