// The gateway's feature file, read in one place so that the text
// conversions themselves do no file I/O.
#pragma once

#include <cstddef>

namespace smsutil::common {

// Copies the national 8-bit code setting into `out` (terminated).  Read
// afresh at every call so that a changed file takes effect at once; a
// missing file or key, or a value that would not fit, leaves `out` empty.
void read_lang_table_setting(char *out, std::size_t size);

}  // namespace smsutil::common
