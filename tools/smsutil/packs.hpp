// A long text cut into the packs of a concatenated series by the library.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "text_coding.hpp"

namespace smsutil::cli {

struct Packs {
    std::vector<std::string> texts;  // UTF-8 text of each pack
    std::string error;               // empty when the packs are usable
    bool over_limit = false;         // the text needs more packs than a message may have
};

// coding is Gsm7 or Ucs2, already resolved.  The packs must add up to the
// text: a 7-bit text whose codes do not convert back loses characters on
// the way, and sending those packs would send a different text.
Packs split_packs(const std::string &text, Coding coding, uint32_t language);

}  // namespace smsutil::cli
