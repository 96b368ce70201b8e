// References for long messages sent without --ref.
#pragma once

#include <cstdint>

namespace smsutil::cli {

// A phone joins the parts of long messages from one sender by their
// reference: two messages with the same one interleave.  The references
// count on from a random start, so none repeats within 256 messages of
// one run and two runs seldom start at the same place.
uint8_t next_concatenation_reference();

}  // namespace smsutil::cli
