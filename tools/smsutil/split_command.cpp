#include <iostream>
#include <memory>
#include <string>

#include "commands.hpp"
#include "json_format.hpp"
#include "packs.hpp"
#include "text_coding.hpp"
#include "text_input.hpp"

namespace smsutil::cli {
namespace {

struct SplitOptions {
    TextOptions text_options;
    std::string text;
};

int run_split(const SplitOptions &options)
{
    Coding coding = resolve_coding(options.text_options, options.text);
    Packs packs = split_packs(options.text, coding, options.text_options.language);
    // As for encode: auto only keeps 7-bit packs that still spell the text.
    if (!packs.error.empty() && !packs.over_limit && options.text_options.coding == Coding::Auto &&
        coding == Coding::Gsm7) {
        coding = Coding::Ucs2;
        packs = split_packs(options.text, coding, options.text_options.language);
    }
    if (!packs.error.empty()) return print_error(packs.error);
    const size_t total = packs.texts.size();
    for (size_t i = 0; i < total; ++i) {
        Json out;
        out["pack"] = i + 1;
        out["total"] = total;
        out["coding"] = coding_name(coding);
        out["length"] = packs.texts[i].size();
        out["text"] = packs.texts[i];
        std::cout << to_line(out) << '\n';
    }
    return 0;
}

}  // namespace

void add_split_command(CLI::App &app, int &exit_status)
{
    auto options = std::make_shared<SplitOptions>();
    CLI::App *cmd = app.add_subcommand("split", "Show how a text is cut into the packs of a long message");
    add_text_options(*cmd, options->text_options);
    auto *text = cmd->add_option("TEXT", options->text, "UTF-8 text; - or nothing reads standard input");
    cmd->footer(
        "Example:\n"
        "  smsutil split --lang spanish - < examples/long_spanish.txt\n"
        "One JSON object per pack: pack, total, coding, length (bytes of UTF-8) and text.");
    cmd->callback([options, text, &exit_status] {
        options->text = text_from_argument(options->text, text->count() > 0);
        exit_status = run_split(*options);
    });
}

}  // namespace smsutil::cli
