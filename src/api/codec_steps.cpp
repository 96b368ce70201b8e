// The steps that hand a record to the transport codec and turn its status
// into the message interface's 0 / -1.
#include "api/extract_steps.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"

namespace {
// Only the low octet of a codec status carries the verdict.
bool codec_failed(uint32_t status) { return (status & 0xFFu) != 0; }

constexpr const char kMSDecodeDeliver[] = "MSDecodeDeliver";
constexpr const char kMSDecodeStatusReport[] = "MSDecodeStatusReport";
}  // namespace

int32_t smsutil::api::decode_deliver_step(const wms_raw_tpdu *raw, wms_gw_deliver *out,
                                          transport::Ucs2InPlace *in_place)
{
    if (raw == nullptr || out == nullptr || codec_failed(transport::decode_deliver(*raw, *out, in_place))) {
        SMS_TRACE_AS(kMSDecodeDeliver, "MSDecodeDeliver function run unsuccessfully!\n\n");
        return -1;
    }
    SMS_TRACE_AS(kMSDecodeDeliver, "MSDecodeDeliver function run successfully!\n\n");
    return 0;
}

int32_t smsutil::api::decode_status_report_step(const wms_raw_tpdu *raw, wms_gw_status_report *out, bool with_scts)
{
    if (raw == nullptr || out == nullptr || codec_failed(transport::decode_status_report(*raw, *out, with_scts))) {
        SMS_TRACE_AS(kMSDecodeStatusReport, "MSDecodeStatusReport function run unsuccessfully!\n\n");
        return -1;
    }
    SMS_TRACE_AS(kMSDecodeStatusReport, "MSDecodeStatusReport function run successfully!\n\n");
    return 0;
}

extern "C" {

SMSUTIL_API int32_t MSDecodeDeliver(const wms_raw_tpdu *raw, wms_gw_deliver *out)
{
    return smsutil::api::decode_deliver_step(raw, out, nullptr);
}

SMSUTIL_API int32_t MSDecodeSubmit(const wms_raw_tpdu *raw, wms_gw_submit *out)
{
    if (raw == nullptr || out == nullptr || codec_failed(wms_ts_decode_submit(raw, out))) {
        SMS_TRACE("MSDecodeSubmit function run unsuccessfully!\n\n");
        return -1;
    }
    SMS_TRACE("MSDecodeSubmit function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t MSDecodeStatusReport(const wms_raw_tpdu *raw, wms_gw_status_report *out)
{
    return smsutil::api::decode_status_report_step(raw, out, true);
}

SMSUTIL_API int32_t MSEncodeSubmit(const wms_gw_submit *submit, wms_raw_tpdu *raw)
{
    if (submit == nullptr || raw == nullptr || codec_failed(wms_ts_encode_submit(submit, raw))) {
        SMS_TRACE("MSEncodeSubmit function run unsuccessfully!\n\n");
        return -1;
    }
    SMS_TRACE("MSEncodeSubmit function run successfully!\n\n");
    return 0;
}

}  // extern "C"
