// smsutil: decode modem PDUs, compose the PDUs of a text, show how a text
// is split.  Exit status: 0 ok, 1 a PDU or text failed, 2 usage error.
#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "commands.hpp"
#include "usage_error.hpp"
#include "version.hpp"

namespace {

constexpr int kUsageStatus = 2;

// Usage errors fit on one line so that scripts can log them as they are.
int report_usage_error(const std::string& message) {
    std::string line = message;
    for (char& c : line) {
        if (c == '\n' || c == '\r') c = ' ';
    }
    std::cerr << "smsutil: " << line << '\n';
    return kUsageStatus;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app{"SMS PDU tool: decode what a modem stores, compose what it sends"};
    app.set_version_flag("--version", std::string("smsutil ") + smsutil::cli::tool_version());
    app.require_subcommand(1, 1);
    app.footer("Run 'smsutil COMMAND --help' for a command's options and an example.");
    int exit_status = 0;
    smsutil::cli::add_decode_command(app, exit_status);
    smsutil::cli::add_encode_command(app, exit_status);
    smsutil::cli::add_split_command(app, exit_status);
    smsutil::cli::add_cdma_command(app, exit_status);
    smsutil::cli::add_xml_command(app, exit_status);
    smsutil::cli::add_join_command(app, exit_status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // --help and --version end parsing through the same path, with status 0.
        if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(e);
        // A mistyped command reads as a missing one; name what was typed.
        if (app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-') {
            return report_usage_error(std::string("unknown command '") + argv[1] +
                                      "' (decode, encode, split, join, cdma, xml)");
        }
        return report_usage_error(e.what());
    } catch (const smsutil::cli::UsageError& e) {
        return report_usage_error(e.what());
    }
    return exit_status;
}
