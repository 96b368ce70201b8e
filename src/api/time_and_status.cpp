// The two helpers the extraction steps share: the BCD time stamp and the
// TP-Status mapping.
#include "api/extract_steps.hpp"
#include "common/bcd_value.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"

using smsutil::common::bcd_value;

extern "C" {

SMSUTIL_API int32_t DecomposeReadMsgTime(const wms_timestamp *time, SmsMessageData *msg)
{
    if (time == nullptr || msg == nullptr) return -1;
    if (!bcd_value(time->day, msg->byDay)) {
        SMS_TRACE("DecomposeReadMsgTime function parses day unsuccessfully!\n\n");
        return -1;
    }
    if (!bcd_value(time->hour, msg->byHour)) {
        SMS_TRACE("DecomposeReadMsgTime function parses hour unsuccessfully!\n\n");
        return -1;
    }
    if (!bcd_value(time->minute, msg->byMinute)) {
        SMS_TRACE("DecomposeReadMsgTime function parses minute unsuccessfully!\n\n");
        return -1;
    }
    if (!bcd_value(time->month, msg->byMonth)) {
        SMS_TRACE("DecomposeReadMsgTime function parses month unsuccessfully!\n\n");
        return -1;
    }
    if (!bcd_value(time->second, msg->bySecond)) {
        SMS_TRACE("DecomposeReadMsgTime function parses second unsuccessfully!\n\n");
        return -1;
    }
    uint8_t year = 0;
    if (!bcd_value(time->year, year)) {
        SMS_TRACE("DecomposeReadMsgTime function parses year unsuccessfully!\n\n");
        return -1;
    }
    // Two-digit years 96..99 would be last century: not a time a network sends.
    if (year > 95) {
        SMS_TRACE("The year parsed in DecomposeReadMsgTime function is illegal!\n\n");
        return -1;
    }
    msg->wYear = static_cast<uint16_t>(2000 + year);
    SMS_TRACE("DecomposeReadMsgTime function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t SwitchReportStatus(uint32_t tpStatus, uint8_t *PbyTag)
{
    if (PbyTag == nullptr) {
        SMS_TRACE("The pointer PbyTag of SwitchReportStatus in ParseStatusReport function is NULL!\n\n");
        return -1;
    }
    *PbyTag = smsutil::api::report_status_tag(tpStatus);
    return 0;
}

}  // extern "C"
