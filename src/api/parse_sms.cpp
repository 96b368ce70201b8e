// ParseSms: one stored PDU from the modem into a message record.
#include <cstring>

#include "api/extract_steps.hpp"
#include "api/message_text.hpp"
#include "common/hex_text.hpp"
#include "common/trace.hpp"
#include "smsutil/sms_api.h"

namespace {

// The exported function its helpers report for.
constexpr const char kParseSms[] = "ParseSms";

constexpr std::size_t kMaxPduText = SMS_PDU_TEXT_SIZE - 1;
constexpr uint32_t kMaxScOctets = 9;

void copy_concatenation(const SmsMessageData &msg, SmsMessage *out)
{
    out->sms_flag_type = msg.dwLongSms;
    SMS_TRACE_AS(kParseSms, "The long sms signal is %d\n\n", static_cast<int>(out->sms_flag_type));
    if (out->sms_flag_type != 1) return;
    out->mr = static_cast<uint16_t>(msg.dwMr);
    SMS_TRACE_AS(kParseSms, "The sms mr is %d\n\n", out->mr);
    out->btTotalPack = msg.byTotalSM;
    SMS_TRACE_AS(kParseSms, "The sms TotalSM is %d\n\n", out->btTotalPack);
    out->btPack = msg.bySeqNum;
    SMS_TRACE_AS(kParseSms, "The sms SeqNum is %d\n\n", out->btPack);
}

void copy_time(const SmsMessageData &msg, SmsMessage *out)
{
    out->byDay = msg.byDay;
    SMS_TRACE_AS(kParseSms, "The day is %d\n\n", out->byDay);
    out->byHour = msg.byHour;
    SMS_TRACE_AS(kParseSms, "The hour is %d\n\n", out->byHour);
    out->byMinute = msg.byMinute;
    SMS_TRACE_AS(kParseSms, "The minute is %d\n\n", out->byMinute);
    out->byMonth = msg.byMonth;
    SMS_TRACE_AS(kParseSms, "The month is %d\n\n", out->byMonth);
    out->bySecond = msg.bySecond;
    SMS_TRACE_AS(kParseSms, "The second is %d\n\n", out->bySecond);
    out->wYear = msg.wYear;
    SMS_TRACE_AS(kParseSms, "The year is %d\n\n", out->wYear);
}

void copy_address(const SmsMessageData &msg, SmsMessage *out, std::size_t len)
{
    if (len > sizeof out->szAddress - 1) len = sizeof out->szAddress - 1;
    std::memcpy(out->szAddress, msg.szAddress, len);
    out->szAddress[len] = '\0';
}

int32_t submit_path(const wms_raw_tpdu &raw, SmsMessageData &msg, SmsMessage *out)
{
    uint32_t err = 0;
    const int32_t ret = ParseSubmitSms(&raw, &msg, &err);
    if (ret != 0) {
        SMS_TRACE_AS(kParseSms, "The ParseSubmitSms function's false status is %d\n\n", static_cast<int>(err));
        return ret;
    }
    copy_address(msg, out, msg.dwAddressLen);
    out->sms_content_code = msg.byCharset;
    SMS_TRACE_AS(kParseSms, "The content mode is %d\n\n", static_cast<int>(out->sms_content_code));
    if (smsutil::api::convert_text(msg, out, "ParseSms") != 0) return -1;
    copy_concatenation(msg, out);
    SMS_TRACE_AS(kParseSms, "ParseSms function run successfully:state 2 or 3!\n\n");
    return 0;
}

int32_t deliver_path(const wms_raw_tpdu &raw, SmsMessageData &msg, SmsMessage *out)
{
    uint32_t err = 0;
    smsutil::transport::Ucs2InPlace ucs2;
    const int32_t ret = smsutil::api::extract_deliver(&raw, &msg, &err, &ucs2);
    if (ret != 0) {
        SMS_TRACE_AS(kParseSms, "The ParseDeliverSms function's false status is %d\n\n", static_cast<int>(err));
        return ret;
    }
    copy_address(msg, out, strnlen(msg.szAddress, sizeof msg.szAddress));
    SMS_TRACE_AS(kParseSms, "The src address is: %s\n\n", out->szAddress);
    out->sms_content_code = msg.byCharset;
    SMS_TRACE_AS(kParseSms, "The text mode is %d\n\n", static_cast<int>(out->sms_content_code));
    if (ucs2.found)
        smsutil::api::convert_ucs2_in_place(ucs2, msg.dwLength, out);
    else if (out->sms_content_code == SMS_CONTENT_8BIT)
        smsutil::api::copy_8bit_text(msg, out);
    else if (smsutil::api::convert_text(msg, out, "ParseSms") != 0)
        return -1;
    SMS_TRACE_AS(kParseSms, "The stMessage.dwLength is: %d\n\n", static_cast<int>(msg.dwLength));
    copy_concatenation(msg, out);
    copy_time(msg, out);
    SMS_TRACE_AS(kParseSms, "ParseSms function run successfully:state 0 or 1!\n\n");
    return 0;
}

int32_t status_report_path(const wms_raw_tpdu &raw, SmsMessageData &msg, SmsMessage *out)
{
    out->byStatusReport = 1;
    uint32_t err = 0;
    // The recipient's text goes straight into the caller's record, which
    // was cleared, so a refusal leaves it as cleared as ever.
    const int32_t ret = smsutil::api::extract_status_report(&raw, &msg, &err, false, out->szAddress);
    if (ret != 0) {
        SMS_TRACE_AS(kParseSms, "The ParseStatusReport function's false status is %d\n\n", static_cast<int>(err));
        return ret;
    }
    SMS_TRACE_AS(kParseSms, "The src address is: %s\n\n", out->szAddress);
    out->sms_content_code = msg.byCharset;
    SMS_TRACE_AS(kParseSms, "The text mode is %d\n\n", static_cast<int>(out->sms_content_code));
    out->dwReportStatus = msg.byReportState;
    SMS_TRACE_AS(kParseSms, "The status report  is %d\n\n", static_cast<int>(out->dwReportStatus));
    if (msg.byHasText == 1) {
        if (smsutil::api::convert_text(msg, out, "ParseSms") != 0) return -1;
        SMS_TRACE_AS(kParseSms, "The stMessage.dwLength is: %d\n\n", static_cast<int>(msg.dwLength));
    }
    copy_time(msg, out);
    SMS_TRACE_AS(kParseSms, "ParseSms function run successfully:sms status report!\n\n");
    return 0;
}

}  // namespace

extern "C" SMSUTIL_API int32_t ParseSms(SmsReadPdu *pInputSms, SmsMessage *pOutputSms)
{
    SMS_RETURN_IF_NULL(pInputSms);
    SMS_RETURN_IF_NULL(pOutputSms);
    std::memset(pOutputSms, 0, sizeof *pOutputSms);
    pOutputSms->index = pInputSms->index;
    pOutputSms->state = pInputSms->state;
    pOutputSms->byStatusReport = 0;

    // A record without a terminator reads as one character too many.
    const std::size_t length = strnlen(pInputSms->pdu, sizeof pInputSms->pdu);
    pInputSms->length = static_cast<uint32_t>(length);
    if (length > kMaxPduText) {
        SMS_TRACE("The ParseSms unparsed pdu size is out of range!\n\n");
        return -1;
    }

    char sc_len_text[3] = {pInputSms->pdu[0], length > 1 ? pInputSms->pdu[1] : '\0', '\0'};
    uint32_t sc_octets = 0;
    const int32_t sc_ret = TransformSCANum(sc_len_text, &sc_octets);
    if (sc_ret != 0) return sc_ret;
    if (sc_octets > kMaxScOctets) {
        SMS_TRACE("SCANum length parsed is out of the range!\n\n");
        return -1;
    }
    SMS_TRACE("The pInputSms -pdu is %s\n\n", pInputSms->pdu);
    SMS_TRACE("The length of sc num is %d\n\n", static_cast<int>(sc_octets));
    SMS_TRACE("The length of pInputSms is %d\n\n", static_cast<int>(length));

    const std::size_t sc_chars = 2 * sc_octets + 2;
    if (length < sc_chars) {
        SMS_TRACE("The ParseSms pdu is shorter than its sc address!\n\n");
        return -1;
    }
    // The service-centre field is logged straight from the text, which has
    // no terminator before `length`.
    SMS_TRACE("srcbuf is [%.*s] \n\n", static_cast<int>(sc_chars), pInputSms->pdu);

    // parse_centernum on the field's digits, whose length is known.
    char sca[SMS_NUMBER_SIZE] = {};
    const std::size_t sc_digits = sc_chars < 4 ? 0 : sc_chars - 4;
    const int32_t centre_ret = smsutil::api::centre_number(pInputSms->pdu + 4, sc_digits,
                                                           sc_chars >= 4 && pInputSms->pdu[2] == '9', sca, sizeof sca);
    if (centre_ret != 0) {
        SMS_TRACE("parse_centernum run unsuccessfully!\n\n");
        return centre_ret;
    }
    SMS_TRACE("tosca is [%.*s] \n\n", static_cast<int>(sc_chars < 4 ? sc_chars - 2 : 2), pInputSms->pdu + 2);
    SMS_TRACE("sca is [%s] \n\n", sca);
    std::memcpy(pOutputSms->sca, sca, sizeof pOutputSms->sca);

    const char *tpdu_text = pInputSms->pdu + sc_chars;
    const std::size_t tpdu_chars = length - sc_chars;
    // Only the octets the hexadecimal text gives are ever read; the type
    // octet is read even when there are none.
    wms_raw_tpdu raw;
    raw.data[0] = 0;
    SMS_TRACE("The stRawarse string length is:%d\n\n", static_cast<int>(tpdu_chars));
    SMS_TRACE("The stRawarse string is %s\n\n", tpdu_text);
    SMS_TRACE("\n\n");

    // At most 510 characters remain, so the octets fit the raw record.
    raw.len = static_cast<uint32_t>(tpdu_chars / 2);
    smsutil::common::get_hex(raw.data, tpdu_text, raw.len);

    const uint8_t mti = raw.data[0] & 0x03;
    if (mti == 3) {
        SMS_TRACE("The tpdu_type in ParseSms is not recognized!\n\n");
        return -1;
    }
    raw.tpdu_type = mti;

    // Not cleared here: each extraction step clears it before filling it,
    // and a step that fails leaves nothing that is read.
    SmsMessageData msg;
    switch (pInputSms->state) {
    case 2:
    case 3:
        return submit_path(raw, msg, pOutputSms);
    case 0:
    case 1:
        if (mti == 0) return deliver_path(raw, msg, pOutputSms);
        if (mti == 2) return status_report_path(raw, msg, pOutputSms);
        SMS_TRACE("The ParseSms sms type is not recognized!\n\n");
        return -1;
    default:
        SMS_TRACE("The ParseSms state is not recognized!\n\n");
        return -1;
    }
}
