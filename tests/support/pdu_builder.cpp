#include "support/pdu_builder.hpp"

#include <cstring>

namespace smsutil::test {

std::string hex(const uint8_t *octets, std::size_t n)
{
    std::string text(2 * n + 1, '\0');
    BcdToAscii(text.data(), octets, static_cast<uint32_t>(n));
    text.resize(2 * n);
    return text;
}

std::string deliver_pdu(const wms_gw_deliver &deliver)
{
    wms_raw_tpdu raw{};
    if (wms_ts_encode_deliver(&deliver, &raw) != WMS_TS_STATUS_OK) return "";
    return kScPrefix + hex(raw.data, raw.len);
}

std::string submit_pdu(const wms_gw_submit &submit)
{
    wms_raw_tpdu raw{};
    if (wms_ts_encode_submit(&submit, &raw) != WMS_TS_STATUS_OK) return "";
    return kScPrefix + hex(raw.data, raw.len);
}

wms_gw_deliver make_deliver(uint8_t alphabet)
{
    wms_gw_deliver d;
    std::memset(&d, 0, sizeof d);
    d.address.number_type = WMS_NUMBER_UNKNOWN;
    d.address.number_plan = 1;
    d.address.number_of_digits = 5;
    wms_ts_ascii_to_bcd("12345", 5, d.address.digits);
    d.dcs.alphabet = alphabet;
    d.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    d.timestamp = wms_timestamp{0x24, 0x05, 0x06, 0x07, 0x08, 0x09, 8};
    return d;
}

void set_septets(wms_gw_user_data &ud, const char *ascii)
{
    // Letters, digits and the space share their code with ASCII.
    const std::size_t n = std::strlen(ascii);
    std::memcpy(ud.sm_data, ascii, n);
    ud.sm_len = static_cast<uint16_t>(n);
}

}  // namespace smsutil::test
