// The IS-91 payload builder shared by its exported wrapper and the
// bearer-data encoder, which also needs to know when a payload does not fit.
#pragma once

#include <cstddef>

#include "smsutil/wms_cdma.h"

namespace smsutil::cdma {

// Fills out.data/num_fields/data_len as wms_ts_encode_IS91EP_payload does;
// `needed` receives the number of values before they were capped to the
// 229 that out.data holds.
wms_status_e_type build_is91_payload(const wms_cdma_bearer_data &bd, wms_cdma_user_data &out, std::size_t &needed);

}  // namespace smsutil::cdma
