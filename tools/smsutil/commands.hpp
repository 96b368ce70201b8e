// Each command adds itself to the application; its callback runs during
// parsing and records the exit status (0 ok, 1 a PDU or text failed).
#pragma once

#include <CLI/CLI.hpp>

namespace smsutil::cli {

void add_decode_command(CLI::App &app, int &exit_status);
void add_encode_command(CLI::App &app, int &exit_status);
void add_split_command(CLI::App &app, int &exit_status);
void add_cdma_command(CLI::App &app, int &exit_status);
void add_xml_command(CLI::App &app, int &exit_status);
void add_join_command(CLI::App &app, int &exit_status);

}  // namespace smsutil::cli
