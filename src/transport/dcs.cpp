// The data coding scheme octet (TP-DCS) and its coding groups.
#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

std::uint8_t mwi_bits(const wms_gw_dcs &dcs)
{
    return static_cast<std::uint8_t>((dcs.mwi_active == 1 ? 0x08 : 0) | (dcs.mwi_kind & 0x03));
}

}  // namespace

std::uint8_t encode_dcs_octet(const wms_gw_dcs &dcs)
{
    switch (dcs.coding_group) {
    case WMS_DCS_GENERAL:
        return static_cast<std::uint8_t>((dcs.is_compressed != 0 ? 0x20 : 0) |
                                         (dcs.msg_class != WMS_MESSAGE_CLASS_NONE ? 0x10 : 0) | (dcs.alphabet << 2) |
                                         (dcs.msg_class & 0x03));
    case WMS_DCS_CLASS_GROUP:
        return static_cast<std::uint8_t>((dcs.alphabet == WMS_ALPHABET_8BIT ? 0xF4 : 0xF0) | (dcs.msg_class & 0x03));
    case WMS_DCS_MWI_DISCARD:
        return static_cast<std::uint8_t>(0xC0 | mwi_bits(dcs));
    case WMS_DCS_MWI_STORE:
        if (dcs.alphabet == WMS_ALPHABET_GSM7) return static_cast<std::uint8_t>(0xD0 | mwi_bits(dcs));
        [[fallthrough]];
    default:
        return static_cast<std::uint8_t>(0xE0 | mwi_bits(dcs));
    }
}

void decode_dcs_octet(std::uint8_t o, wms_gw_dcs &dcs)
{
    dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    dcs.is_compressed = 0;
    dcs.alphabet = WMS_ALPHABET_GSM7;
    dcs.coding_group = WMS_DCS_GENERAL;
    if (o <= 0x3F) {
        dcs.is_compressed = o & 0x20;
        dcs.msg_class = (o & 0x10) != 0 ? (o & 0x03) : WMS_MESSAGE_CLASS_NONE;
        dcs.alphabet = (o >> 2) & 0x03;
    } else if (o >= 0xC0 && o <= 0xEF) {
        // The automatic-deletion group 01xx is read as the defaults above.
        dcs.coding_group = o <= 0xCF ? WMS_DCS_MWI_DISCARD : WMS_DCS_MWI_STORE;
        dcs.alphabet = o >= 0xE0 ? WMS_ALPHABET_UCS2 : WMS_ALPHABET_GSM7;
        dcs.mwi_active = (o & 0x08) != 0 ? 1 : 0;
        dcs.mwi_kind = o & 0x03;
    } else if (o >= 0xF0) {
        dcs.coding_group = WMS_DCS_CLASS_GROUP;
        dcs.alphabet = (o & 0x04) != 0 ? WMS_ALPHABET_8BIT : WMS_ALPHABET_GSM7;
        dcs.msg_class = o & 0x03;
    }
    // The reserved alphabet value of the general group reads as 7-bit.
    if (dcs.alphabet > WMS_ALPHABET_UCS2) dcs.alphabet = WMS_ALPHABET_GSM7;
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_dcs(const wms_gw_dcs *dcs, uint8_t *out)
{
    if (dcs == nullptr || out == nullptr) return 0;
    *out = smsutil::transport::encode_dcs_octet(*dcs);
    return 1;
}

SMSUTIL_API uint8_t wms_ts_decode_dcs(const uint8_t *data, wms_gw_dcs *dcs)
{
    if (data == nullptr || dcs == nullptr) return 0;
    smsutil::transport::decode_dcs_octet(*data, *dcs);
    return 1;
}

}  // extern "C"
