// CDMA bearer data as JSON: one key per subparameter present, in a form
// that bearer_data_from_json reads back into the same record.
#pragma once

#include <stdexcept>

#include "json_format.hpp"
#include "smsutil/smsutil.h"

namespace smsutil::cli {

// A JSON document that does not describe bearer data; the message names
// the key at fault.
class BadBearerJson : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

Json bearer_data_json(const wms_cdma_bearer_data &bd);

// Throws BadBearerJson for unknown keys, wrong types and values out of range.
wms_cdma_bearer_data bearer_data_from_json(const Json &doc);

}  // namespace smsutil::cli
