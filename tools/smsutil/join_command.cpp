// `smsutil join`: PDUs in, one JSON line per long message put back
// together.  The parts go through the library's reassembly store, so the
// tool shows exactly what a gateway using the store would hand on.
#include <chrono>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "commands.hpp"
#include "gateway_part.hpp"
#include "hex.hpp"
#include "join_state.hpp"
#include "joined_json.hpp"
#include "modem_input.hpp"

namespace smsutil::cli {
namespace {

// Room for 256 messages of up to 255 parts and 16 KiB of text pending at
// once: about 4 MiB, far more than a modem's storage holds.
constexpr sms_reasm_config kBounds{256, 255, 16384, 0, nullptr, nullptr};

struct JoinOptions {
    uint32_t storage_state = 1;
    bool gateway = false;
    uint32_t timeout = 0;
    std::string state_file;
    std::vector<std::string> pdus;
};

void print_handed_over(void *, const sms_reasm_message *message, int reason)
{
    std::cout << to_line(joined_json(*message, false, reason)) << '\n';
}

uint64_t wall_clock()
{
    return static_cast<uint64_t>(
        std::chrono::duration_cast<std::chrono::seconds>(std::chrono::system_clock::now().time_since_epoch()).count());
}

class Joiner {
public:
    explicit Joiner(uint32_t timeout)
    {
        sms_reasm_config config = kBounds;
        config.timeout_seconds = timeout;
        config.handover = print_handed_over;
        storage_.resize(sms_reasm_storage_size(&config) / sizeof(uint64_t) + 1);
        sms_reasm_init(&store_, storage_.data(), storage_.size() * sizeof(uint64_t), &config);
        text_.resize(kBounds.max_text_bytes + 1);
    }
    sms_reasm_store *store() { return store_; }

    // One PDU line; false when it could not be parsed.
    bool add(const PduInput &input, const JoinOptions &options, uint64_t now)
    {
        const std::string_view text = input.pdu;
        JoinPart part;
        if (!input.error.empty()) {
            part.error = input.error;
        } else {
            part = options.gateway ? read_gateway_part(text, storage_state(input, options.storage_state))
                                   : read_decoder_part(text);
        }
        if (!part.error.empty()) {
            std::cout << to_line(Json{{"pdu", std::string(text)}, {"error", part.error}}) << '\n';
            return false;
        }
        auto joined = std::make_unique<sms_reasm_message>();
        joined->text = text_.data();
        joined->text_capacity = static_cast<uint32_t>(text_.size());
        switch (sms_reasm_add(store_, &part.part, now, joined.get())) {
        case SMS_REASM_COMPLETE:
            std::cout << to_line(joined_json(*joined, true, SMS_REASM_PENDING)) << '\n';
            return true;
        case SMS_REASM_STORED:
        case SMS_REASM_FULL:  // the evicted message has been printed
        case SMS_REASM_DUPLICATE:
            return true;
        default:
            std::cout << to_line(Json{{"pdu", std::string(text)},
                                      {"error", "part " + std::to_string(part.part.number) + " of " +
                                                    std::to_string(part.part.total) +
                                                    " refused: its number is outside 1 to the total, or its "
                                                    "message would hold more text than join keeps"}})
                      << '\n';
            return false;
        }
    }

private:
    std::vector<uint64_t> storage_;
    std::vector<char> text_;
    sms_reasm_store *store_ = nullptr;
};

void run_join(const JoinOptions &options, int &exit_status)
{
    const uint64_t now = wall_clock();
    Joiner joiner(options.timeout);
    if (!options.state_file.empty()) {
        const std::string error = load_state_file(joiner.store(), options.state_file, now);
        if (!error.empty()) {
            std::cerr << "smsutil: state file " << error << '\n';
            exit_status = 1;
            return;
        }
        sms_reasm_expire(joiner.store(), now);
    }
    bool all_ok = true;
    if (!options.pdus.empty()) {
        for (const auto &pdu : options.pdus) all_ok = joiner.add(pdu_argument(pdu), options, now) && all_ok;
    } else {
        ModemReader reader(std::cin);
        while (auto input = reader.next()) all_ok = joiner.add(*input, options, now) && all_ok;
    }
    sms_reasm_expire(joiner.store(), now);
    sms_reasm_visit(joiner.store());
    if (!options.state_file.empty()) {
        const std::string error = save_state_file(joiner.store(), options.state_file, now);
        if (!error.empty()) {
            std::cerr << "smsutil: state file " << error << '\n';
            all_ok = false;
        }
    }
    std::cout.flush();
    exit_status = all_ok ? 0 : 1;
}

}  // namespace

void add_join_command(CLI::App &app, int &exit_status)
{
    auto options = std::make_shared<JoinOptions>();
    CLI::App *cmd =
        app.add_subcommand("join", "Put the parts of long messages back together, one JSON object per message");
    cmd->add_option("--storage-state", options->storage_state,
                    "With --gateway: storage state of the PDUs, as decode's --state: 0/1 received, 2/3 stored "
                    "outgoing (SUBMIT); a +CMGL or +CMGR header's status takes its place")
        ->check(CLI::Range(0, 3))
        ->capture_default_str();
    cmd->add_flag("--gateway", options->gateway,
                  "Decode each PDU through ParseSms, as a gateway using the message interface does, instead of "
                  "the standards-true decoder");
    cmd->add_option("--state", options->state_file,
                    "Load pending parts from FILE before and save them after, so parts can arrive over several runs")
        ->type_name("FILE");
    cmd->add_option("--timeout", options->timeout,
                    "Hand over, incomplete, a message whose first part arrived SECONDS or more ago (0: never)")
        ->type_name("SECONDS")
        ->capture_default_str();
    cmd->add_option("PDU", options->pdus,
                    "Hexadecimal PDUs; when none, standard input: one PDU a line, or a modem's answer as pasted");
    cmd->footer(
        "Examples:\n"
        "  smsutil join < parts.txt\n"
        "  smsutil join --state pending.bin --timeout 86400 < new_parts.txt\n"
        "Each complete message is printed as its last part arrives; at the end every message still\n"
        "missing parts is printed with \"complete\": false and the numbers it lacks.  Exit status 1\n"
        "when any PDU fails.");
    cmd->callback([options, &exit_status] { run_join(*options, exit_status); });
}

}  // namespace smsutil::cli
