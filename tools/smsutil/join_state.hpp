// The state file of `smsutil join --state`: the pending parts between runs.
#pragma once

#include <cstdint>
#include <string>

#include "smsutil/smsutil.h"

namespace smsutil::cli {

// Loads the file into the empty store; a missing file is an empty state.
// Returns "" or why the file was refused.
std::string load_state_file(sms_reasm_store *store, const std::string &path, uint64_t now);

// Writes a temporary file beside path and renames it over path, so a crash
// leaves either the old state or the new one, never a damaged one.
std::string save_state_file(const sms_reasm_store *store, const std::string &path, uint64_t now);

}  // namespace smsutil::cli
