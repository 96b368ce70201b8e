#include "run.hpp"

#include <iostream>
#include <string>

#include <CLI/CLI.hpp>

#include "commands.hpp"
#include "json_format.hpp"
#include "usage_error.hpp"
#include "version.hpp"

namespace smsutil::cli {
namespace {

constexpr int kUsageStatus = 2;

// The commands read and write the standard streams; for one run they are
// pointed at the caller's.
class StreamSwap {
public:
    StreamSwap(std::ios &stream, std::ios &target) : stream_(stream), saved_(stream.rdbuf(target.rdbuf())) {}
    ~StreamSwap() { stream_.rdbuf(saved_); }
    StreamSwap(const StreamSwap &) = delete;
    StreamSwap &operator=(const StreamSwap &) = delete;

private:
    std::ios &stream_;
    std::streambuf *saved_;
};

}  // namespace

int run(int argc, const char *const *argv, std::istream &in, std::ostream &out, std::ostream &err)
{
    const StreamSwap swap_in(std::cin, in);
    const StreamSwap swap_out(std::cout, out);
    const StreamSwap swap_err(std::cerr, err);
    // Named here, so that usage lines say smsutil whatever path started it.
    CLI::App app{"SMS PDU tool: decode what a modem stores, compose what it sends", "smsutil"};
    app.set_version_flag("--version", std::string("smsutil ") + tool_version());
    app.require_subcommand(1, 1);
    app.footer("Run 'smsutil COMMAND --help' for a command's options and an example.");
    int exit_status = 0;
    add_decode_command(app, exit_status);
    add_encode_command(app, exit_status);
    add_split_command(app, exit_status);
    add_cdma_command(app, exit_status);
    add_xml_command(app, exit_status);
    add_join_command(app, exit_status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError &e) {
        // --help and --version end parsing through the same path, with status 0.
        if (e.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success)) return app.exit(e, std::cout, std::cerr);
        // A mistyped command reads as a missing one; name what was typed.
        if (app.get_subcommands().empty() && argc > 1 && argv[1][0] != '-') {
            return print_input_error(
                std::string("unknown command '") + argv[1] + "' (decode, encode, split, join, cdma, xml)",
                kUsageStatus);
        }
        return print_input_error(e.what(), kUsageStatus);
    } catch (const UsageError &e) {
        return print_input_error(e.what(), kUsageStatus);
    }
    std::cout.flush();
    return exit_status;
}

}  // namespace smsutil::cli
