#include <iostream>
#include <memory>
#include <string>

#include "commands.hpp"
#include "compose_parts.hpp"
#include "json_format.hpp"
#include "number_check.hpp"
#include "option_values.hpp"
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

struct EncodeOptions {
    ComposeRequest request;
    TextOptions text_options;
    bool at_commands = false;
    std::string text;
};

void validate_numbers(const ComposeRequest& request) {
    if (auto problem = dial_number_problem(request.to); !problem.empty()) throw UsageError("--to " + problem);
    if (auto problem = dial_number_problem(request.smsc); !problem.empty()) throw UsageError("--smsc " + problem);
}

void print_parts(const ComposeOutcome& outcome, Coding coding, bool at_commands) {
    const size_t total = outcome.parts.size();
    for (size_t i = 0; i < total; ++i) {
        const ComposedPart& part = outcome.parts[i];
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

int run_encode(const EncodeOptions& options) {
    const TextOptions& text_options = options.text_options;
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

void add_encode_command(CLI::App& app, int& exit_status) {
    auto options = std::make_shared<EncodeOptions>();
    ComposeRequest& request = options->request;
    CLI::App* cmd = app.add_subcommand("encode", "Compose the SUBMIT PDUs that send a text");
    cmd->add_option("--to", request.to, "Destination number: digits, * and #, + in front")->required();
    cmd->add_option("--smsc", request.smsc, "Service-centre number put in front of each PDU")->required();
    add_text_options(*cmd, options->text_options);
    auto* validity = cmd->add_option("--validity", request.validity_seconds,
                                     "Relative validity period in seconds, 60 to 31103999 (under 360 days)")
                         ->each(whole_number_from("--validity", kMinValiditySeconds, kMaxValiditySeconds));
    cmd->add_flag("--status-report", request.status_report, "Ask the service centre for a status report");
    auto* reference =
        cmd->add_option("--ref", request.reference,
                        "Message reference and concatenation reference, 0 to 255 (default: 0 for one part, "
                        "a fresh reference for each message of several parts)")
            ->each(whole_number_from("--ref", 0, 255));
    cmd->add_flag("--at", options->at_commands, "Print AT+CMGS=<n> lines, each followed by its PDU");
    auto* text = cmd->add_option("TEXT", options->text, "UTF-8 text; - or nothing reads standard input");
    cmd->footer(
        "Examples:\n"
        "  smsutil encode --to +8613912345678 --smsc +8613912340000 'See you at 8'\n"
        "  smsutil encode --to 5551234 --smsc +905320000000 --lang turkish --at - < message.txt\n"
        "One JSON object per part: part, total, coding, pdu and tpdu_length (the length AT+CMGS takes).\n"
        "Each PDU is read back through the library before it is printed; exit status 1 when one does\n"
        "not read back as its text, or the text does not fit in four messages.  Without --ref each\n"
        "message of several parts gets a reference of its own.");
    cmd->callback([options, text, validity, reference, &exit_status] {
        options->request.has_validity = validity->count() > 0;
        options->request.reference_given = reference->count() > 0;
        options->request.language = options->text_options.language;
        validate_numbers(options->request);
        options->text = text_from_argument(options->text, text->count() > 0);
        exit_status = run_encode(*options);
    });
}

}  // namespace smsutil::cli
