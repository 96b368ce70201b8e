// A DELIVER or SUBMIT decoded from any octets, encoded again, decodes to
// the same record: the encoder writes back everything the decoder took in.
#include <type_traits>

#include "raw_tpdu.hpp"

namespace {

// Two documented readings cannot be written back as they were read: a
// header flag whose header decoded to nothing (the data then start after
// the UDHL octet), and 8-bit or UCS-2 data whose header does not end in a
// concatenation element (the data then include the header octets).
bool writes_back(uint8_t header_flag, const wms_gw_dcs &dcs, const wms_gw_user_data &ud)
{
    if (header_flag == 0) return true;
    if (ud.num_headers == 0) return false;
    const uint16_t last = ud.headers[ud.num_headers - 1].header_id;
    return dcs.alphabet == WMS_ALPHABET_GSM7 || last == WMS_UDH_CONCAT_8BIT_REF || last == WMS_UDH_CONCAT_16BIT_REF;
}

// Address digits past number_of_digits (the filler nibble) and text past
// sm_len are not part of the record's value.
template <typename Record>
Record &comparable(Record &r)
{
    const std::size_t n = std::min<std::size_t>(r.address.number_of_digits, WMS_ADDRESS_DIGITS_SIZE);
    std::memset(r.address.digits + n, 0, WMS_ADDRESS_DIGITS_SIZE - n);
    const std::size_t len = std::min<std::size_t>(r.user_data.sm_len, WMS_MAX_LEN);
    std::memset(r.user_data.sm_data + len, 0, WMS_MAX_LEN - len);
    return r;
}

template <typename Record, typename Decode, typename Encode>
Record encode_and_decode(const Record &record, Decode decode, Encode encode)
{
    wms_raw_tpdu raw{};
    FUZZ_CHECK(encode(&record, &raw) == WMS_TS_STATUS_OK);
    FUZZ_CHECK(raw.len <= WMS_MAX_LEN);
    Record back{};
    FUZZ_CHECK(decode(&raw, &back) == WMS_TS_STATUS_OK);
    return back;
}

// A return-call DELIVER (TP-PID 0x5F) is read as a voice-mail indication to
// store, whatever its TP-DCS said; the alphabet may then be written under
// another DCS and the text read differently.  Such a record must be stable
// from its first rewrite on.
template <typename Record>
bool dcs_replaced_on_reading(const Record &r)
{
    if constexpr (std::is_same_v<Record, wms_gw_deliver>) return r.pid == 0x5F;
    return false;
}

template <typename Record, typename Decode, typename Encode>
void round_trip(const wms_raw_tpdu &raw, Decode decode, Encode encode)
{
    Record first{};
    if (decode(&raw, &first) != WMS_TS_STATUS_OK) return;
    if (!writes_back(first.user_data_header_present, first.dcs, first.user_data)) return;
    Record second = encode_and_decode(first, decode, encode);
    if (dcs_replaced_on_reading(first)) {
        first = second;
        if (!writes_back(first.user_data_header_present, first.dcs, first.user_data)) return;
        second = encode_and_decode(first, decode, encode);
    }
    FUZZ_CHECK(std::memcmp(&comparable(first), &comparable(second), sizeof first) == 0);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const bool submit = (in.byte() & 1) != 0;
    const wms_raw_tpdu raw = fuzzin::raw_tpdu(in);
    if (submit) {
        round_trip<wms_gw_submit>(raw, wms_ts_decode_submit, wms_ts_encode_submit);
    } else {
        round_trip<wms_gw_deliver>(raw, wms_ts_decode_deliver, wms_ts_encode_deliver);
    }
    return 0;
}
