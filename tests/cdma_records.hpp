// Small builders shared by the CDMA codec tests.  The records are packed:
// copy a multi-octet field out (std::uint32_t{raw.len}) before anything
// takes a reference to it, or it may be misaligned.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "smsutil/wms_cdma.h"

namespace smsutil::test {

inline wms_cdma_bearer_data empty_bearer_data()
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    return bd;
}

inline wms_raw_tpdu raw_of(const std::vector<std::uint8_t> &octets, std::uint32_t len)
{
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    if (!octets.empty()) std::memcpy(raw.data, octets.data(), std::min<std::size_t>(octets.size(), sizeof raw.data));
    raw.len = len;
    return raw;
}

inline wms_raw_tpdu raw_of(const std::vector<std::uint8_t> &octets)
{
    return raw_of(octets, static_cast<std::uint32_t>(octets.size()));
}

inline std::vector<std::uint8_t> octets_of(const wms_raw_tpdu &raw)
{
    return {raw.data, raw.data + std::min<std::size_t>(raw.len, sizeof raw.data)};
}

// Identifiers of the subparameters in the order they appear.
inline std::vector<std::uint8_t> subparameter_ids(const wms_raw_tpdu &raw)
{
    std::vector<std::uint8_t> ids;
    const std::size_t used = std::min<std::size_t>(raw.len, sizeof raw.data);
    for (std::size_t i = 0; i + 1 < used; i += 2u + raw.data[i + 1]) ids.push_back(raw.data[i]);
    return ids;
}

}  // namespace smsutil::test
