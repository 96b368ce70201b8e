// A raw TPDU record filled from fuzz input.
#pragma once

#include <algorithm>
#include <cstring>

#include "fuzz_input.hpp"
#include "smsutil/wms_ts.h"

namespace fuzzin {

// One control octet: its low bits give the format and type fields (which
// the decoders must not trust), its top bit a length far beyond the data
// array.  Otherwise len is the payload's size, which may exceed the 255
// octets the array holds.
inline wms_raw_tpdu raw_tpdu(Input &in)
{
    wms_raw_tpdu raw{};
    const uint8_t control = in.byte();
    raw.format = control & 0x03;
    raw.tpdu_type = (control >> 2) & 0x07;
    const std::size_t n = std::min<std::size_t>(in.rest_size(), WMS_MAX_LEN);
    std::memcpy(raw.data, in.rest(), n);
    raw.len = (control & 0x80) != 0 ? 0xFFFFFF00u | control : static_cast<uint32_t>(in.rest_size());
    return raw;
}

// One TPDU decoder on one input: a defined result, and on success a record
// whose counts keep a caller's reads inside its arrays.
// The octets past len must not matter: decoding again with them set
// differently gives the same result and the same record.
template <typename Record, typename Decode>
void check_other_tail(const wms_raw_tpdu &raw, Decode decode, wms_status_e_type rc, const Record &first)
{
    if (raw.len >= WMS_MAX_LEN) return;
    wms_raw_tpdu other = raw;
    for (std::size_t i = raw.len; i < WMS_MAX_LEN; ++i) other.data[i] = static_cast<uint8_t>(~raw.data[i] ^ i);
    Record again;
    std::memset(&again, 0, sizeof again);
    FUZZ_CHECK(decode(&other, &again) == rc);
    FUZZ_CHECK(std::memcmp(&first, &again, sizeof first) == 0);
}

template <typename Record, typename Decode>
int decode_tpdu(const uint8_t *data, std::size_t size, Decode decode)
{
    Input in(data, size);
    const wms_raw_tpdu raw = raw_tpdu(in);
    Record msg;  // the caller clears the record
    std::memset(&msg, 0, sizeof msg);
    const wms_status_e_type rc = decode(&raw, &msg);
    check_other_tail(raw, decode, rc, msg);
    FUZZ_CHECK(rc == WMS_TS_STATUS_OK || rc == WMS_TS_STATUS_BAD_ADDRESS || rc == WMS_TS_STATUS_BAD_USER_DATA_LENGTH ||
               rc == WMS_TS_STATUS_BAD_TIME || rc == WMS_TS_STATUS_BAD_VALIDITY_FORMAT);
    if (rc == WMS_TS_STATUS_OK) {
        FUZZ_CHECK(msg.address.number_of_digits <= WMS_ADDRESS_DIGITS_SIZE);
        FUZZ_CHECK(msg.user_data.num_headers <= WMS_UDH_MAX_IES);
        FUZZ_CHECK(msg.user_data.sm_len <= WMS_MAX_LEN);
    }
    return 0;
}

}  // namespace fuzzin
