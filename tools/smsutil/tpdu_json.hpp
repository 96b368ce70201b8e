// The "detail" object of `decode --detail`: the TPDU as the transport codec
// decodes it, field by field.
#pragma once

#include "json_format.hpp"
#include "tpdu_decode.hpp"

namespace smsutil::cli {

// null when no decoder applies to the TPDU.
Json tpdu_detail(const DecodedTpdu &tpdu);

// The alphabet the TPDU's data coding scheme announces; null when it
// carries no text (a status report without user data, or no decoder).
Json tpdu_coding(const DecodedTpdu &tpdu);

}  // namespace smsutil::cli
