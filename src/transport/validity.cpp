// The TP-VP field as a whole: one relative octet or a seven-octet absolute
// time, chosen by the TP-VPF value the caller has already read.
#include <cstring>

#include "transport/codec_internal.hpp"

namespace smsutil::transport {

std::size_t encode_validity(const wms_gw_validity &validity, OctetWriter &out)
{
    switch (validity.format) {
    case WMS_VP_RELATIVE:
        return out.put(wms_ts_encode_relative_time(&validity.time)) ? 1 : 0;
    case WMS_VP_ABSOLUTE:
        return encode_timestamp(validity.time, out);
    default:  // none, and the enhanced format which is not supported
        return 0;
    }
}

std::size_t decode_validity(OctetReader &in, wms_gw_validity &validity)
{
    switch (validity.format) {
    case WMS_VP_RELATIVE: {
        std::uint8_t vp = 0;
        if (!in.read(vp)) return 0;
        wms_ts_decode_relative_time(vp, &validity.time);
        return 1;
    }
    case WMS_VP_ABSOLUTE:
        return decode_timestamp(in, validity.time) ? kTimestampSize : 0;
    case WMS_VP_NONE:
        std::memset(&validity, 0, sizeof validity);
        return 0;
    default:
        return 0;
    }
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_gw_validity(const wms_gw_validity *validity, uint8_t *out)
{
    if (validity == nullptr || out == nullptr) return 0;
    smsutil::transport::OctetWriter w(out, smsutil::transport::kTimestampSize);
    return static_cast<uint8_t>(smsutil::transport::encode_validity(*validity, w));
}

SMSUTIL_API uint8_t wms_ts_decode_gw_validity(const uint8_t *data, wms_gw_validity *validity)
{
    if (data == nullptr || validity == nullptr) return 0;
    // Only as many octets as the format announces are ever read.
    const std::size_t size = validity->format == WMS_VP_RELATIVE ? 1 : smsutil::transport::kTimestampSize;
    smsutil::transport::OctetReader r(data, size);
    return static_cast<uint8_t>(smsutil::transport::decode_validity(r, *validity));
}

}  // extern "C"
