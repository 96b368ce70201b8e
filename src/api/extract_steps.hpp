// ParseSms's own forms of its exported extraction steps.  The exported
// steps clear the whole record they hand back, since their callers see all
// of it; ParseSms reads only part of it and clears no more than it reads.
#pragma once

#include <cstddef>
#include <cstdint>

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
// gives are written (address, charset, status, time, byHasText and header
// fields).
// The length of the address text goes to `address_len` when it is given.
int32_t extract_status_report(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode, bool whole_record,
                              uint32_t *address_len = nullptr);

// DecodeAddress into a buffer of `capacity` bytes (at least one): the
// text and its terminator; returns the text's length.
uint32_t address_text(const wms_address &address, char *out, uint32_t capacity);

// parse_centernum on a text of known length: `digits` (the characters after
// the type-of-address octet's two) into `out`, which holds `size` bytes and
// is already cleared.
int32_t centre_number(const char *digits, std::size_t len, bool international, char *out, std::size_t size);

}  // namespace smsutil::api
