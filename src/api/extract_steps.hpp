// ParseSms's own forms of its exported extraction steps.  The exported
// steps clear the whole record they hand back, since their callers see all
// of it; ParseSms reads only part of it and clears no more than it reads.
#pragma once

#include <cstddef>
#include <cstdint>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "transport/codec_internal.hpp"

namespace smsutil::api {

// MSDecodeDeliver; with `in_place`, UCS-2 text stays in the TPDU.
int32_t decode_deliver_step(const wms_raw_tpdu *raw, wms_gw_deliver *out, transport::Ucs2InPlace *in_place);

// MSDecodeStatusReport; without `with_scts`, out->timestamp is left as it
// was (the extraction step never reads it).
int32_t decode_status_report_step(const wms_raw_tpdu *raw, wms_gw_status_report *out, bool with_scts);

// ParseDeliverSms.  With `in_place`, UCS-2 text is located rather than
// copied, and msg->SmsData is then neither cleared nor filled.
int32_t extract_deliver(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode,
                        transport::Ucs2InPlace *in_place);

// ParseStatusReport.  Unless `whole_record`, msg is cleared only when the
// report carries text; otherwise only the fields a report without text
// gives are written (charset, status, time, byHasText and header fields).
// With `address_out` (SMS_NUMBER_SIZE bytes) the recipient's text goes
// there, ending in zeros, instead of to msg->szAddress.
int32_t extract_status_report(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode, bool whole_record,
                              char *address_out = nullptr);

// DecodeAddress into a buffer of `capacity` bytes (at least one): the
// text and its terminator; returns the text's length.
uint32_t address_text(const wms_address &address, char *out, uint32_t capacity);

// parse_centernum on a text of known length: `digits` (the characters after
// the type-of-address octet's two) into `out`, which holds `size` bytes and
// is already cleared.
int32_t centre_number(const char *digits, std::size_t len, bool international, char *out, std::size_t size);

// SwitchReportStatus's mapping of TP-Status, inline for the extraction step.
inline uint8_t report_status_tag(uint32_t status)
{
    uint8_t tag = SMS_STATUS_STOPPED;
    if (status == 0)
        tag = SMS_STATUS_DELIVERED;
    else if (status == 2)
        tag = SMS_STATUS_REPLACED;
    else if (status < 0x20)
        tag = SMS_STATUS_COMPLETED;
    else if (status < 0x40)
        tag = SMS_STATUS_PENDING;
    else if (status < 0x60)
        tag = SMS_STATUS_FAILED;
    SMS_TRACE_AS("SwitchReportStatus", "SwitchReportStatus function run successfully!\n\n");
    return tag;
}

}  // namespace smsutil::api
