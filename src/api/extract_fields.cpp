// Decoded DELIVER, SUBMIT and STATUS-REPORT TPDUs into the record the
// message interface works on.
#include <cstring>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"

namespace {

// A message record never takes more user data than one short message holds.
constexpr uint32_t kMaxUserData = 160;

uint8_t charset_of(uint8_t alphabet)
{
    switch (alphabet) {
    case WMS_ALPHABET_GSM7:
        return SMS_CONTENT_7BIT;
    case WMS_ALPHABET_UCS2:
        return SMS_CONTENT_UCS2;
    case WMS_ALPHABET_8BIT:
        return SMS_CONTENT_8BIT;
    default:
        return SMS_CONTENT_OTHER;
    }
}

void copy_user_data(const wms_gw_user_data &ud, SmsMessageData *msg)
{
    uint32_t n = ud.sm_len;
    if (n > kMaxUserData) n = kMaxUserData;
    std::memcpy(msg->SmsData, ud.sm_data, n);
    msg->dwLength = n;
}

// Which header elements a TPDU kind contributes.
struct HeaderKinds {
    bool concat_8bit;
    bool concat_16bit;
    bool national_language;
};

void take_headers(const wms_gw_user_data &ud, HeaderKinds kinds, SmsMessageData *msg)
{
    const uint8_t count = ud.num_headers < WMS_UDH_MAX_IES ? ud.num_headers : WMS_UDH_MAX_IES;
    for (uint8_t i = 0; i < count; ++i) {
        const wms_udh &h = ud.headers[i];
        switch (h.header_id) {
        case WMS_UDH_CONCAT_8BIT_REF:
            if (!kinds.concat_8bit) break;
            msg->dwMr = h.u.concat_8.msg_ref;
            msg->byTotalSM = h.u.concat_8.total_sm;
            msg->bySeqNum = h.u.concat_8.seq_num;
            msg->dwLongSms = 1;
            break;
        case WMS_UDH_CONCAT_16BIT_REF:
            if (!kinds.concat_16bit) break;
            msg->dwMr = h.u.concat_16.msg_ref;
            msg->byTotalSM = h.u.concat_16.total_sm;
            msg->bySeqNum = h.u.concat_16.seq_num;
            msg->dwLongSms = 1;
            break;
        case WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT:
        case WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT:
            if (!kinds.national_language) break;
            // Both shift kinds share one member layout.
            msg->byLangShift = h.u.nat_lang_ss.shift_id;
            msg->byteCoding = h.u.nat_lang_ss.national_language;
            break;
        default:
            break;
        }
    }
}

}  // namespace

extern "C" {

SMSUTIL_API int32_t ParseDeliverSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_deliver deliver;
    std::memset(&deliver, 0, sizeof deliver);
    if (MSDecodeDeliver(raw, &deliver) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE("MSDecodeDeliver in ParseDeliverSms function run unsuccessfully! The ERROR CODE is %d\n\n",
                  SMS_ERR_DECODE);
        return -1;
    }
    std::memset(msg, 0, sizeof *msg);
    msg->byCharset = charset_of(deliver.dcs.alphabet);
    msg->byMsgType = SMS_MSG_TYPE_DELIVER;
    if (DecomposeReadMsgTime(&deliver.timestamp, msg) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE("DecomposeReadMsgTime in ParseDeliverSms function run unsuccessfully! The ERROR CODE is %d\n\n",
                  SMS_ERR_DECODE);
        return -1;
    }
    uint32_t len = sizeof msg->szAddress;
    const int32_t ret = DecodeAddress(&deliver.address, msg->szAddress, &len);
    if (ret != 0) {
        SMS_TRACE("DecodeAddress in ParseDeliverSms function run unsuccessfully!\n\n");
        return ret;
    }
    copy_user_data(deliver.user_data, msg);
    SMS_TRACE("find header %d num %d!\n\n", deliver.user_data_header_present, deliver.user_data.num_headers);
    if (deliver.user_data_header_present == 1) take_headers(deliver.user_data, {true, true, true}, msg);
    SMS_TRACE("ParseDeliverSms function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t ParseSubmitSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_submit submit;
    std::memset(&submit, 0, sizeof submit);
    if (MSDecodeSubmit(raw, &submit) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE("MSDecodeSubmit function run unsuccessfully! The ERROR CODE is %d\n\n", SMS_ERR_DECODE);
        return -1;
    }
    std::memset(msg, 0, sizeof *msg);
    msg->byCharset = charset_of(submit.dcs.alphabet);
    msg->byMsgType = SMS_MSG_TYPE_SUBMIT;

    SMS_TRACE("The num before decoded is:\n");
    for (int i = 0; i < SMS_NUMBER_SIZE; ++i) SMS_TRACE("%x\n", submit.address.digits[i]);
    uint32_t len = sizeof msg->szAddress;
    const int32_t ret = DecodeAddress(&submit.address, msg->szAddress, &len);
    if (ret != 0) {
        SMS_TRACE("DecodeAddress in ParseSubmitSms function run unsuccessfully!\n\n");
        return ret;
    }
    msg->dwAddressLen = len;
    SMS_TRACE("The parsed num before copy is:\n\n");
    for (uint32_t i = 0; i < len; ++i) SMS_TRACE("%x\n", static_cast<unsigned char>(msg->szAddress[i]));

    copy_user_data(submit.user_data, msg);
    SMS_TRACE("The SmsData len is %d\n", static_cast<int>(msg->dwLength));
    SMS_TRACE("find header %d num %d!\n\n", submit.user_data_header_present, submit.user_data.num_headers);
    // A stored SUBMIT is only ever composed with an 8-bit reference.
    if (submit.user_data_header_present == 1) take_headers(submit.user_data, {true, false, true}, msg);
    SMS_TRACE("ParseSubmitSms function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t ParseStatusReport(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_status_report report;
    std::memset(&report, 0, sizeof report);
    if (MSDecodeStatusReport(raw, &report) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE("MSDecodeStatusReport in ParseStatusReport function run unsuccessfully! The ERROR CODE is %d\n\n",
                  SMS_ERR_DECODE);
        return -1;
    }
    std::memset(msg, 0, sizeof *msg);
    msg->byMsgForm = 2;
    msg->byCharset = charset_of(report.dcs.alphabet);
    const int32_t ret = SwitchReportStatus(report.tp_status, &msg->byReportState);
    if (ret != 0) {
        SMS_TRACE("SwitchReportStatus in ParseStatusReport function run unsuccessfully!\n\n");
        return ret;
    }
    msg->byMsgType = SMS_MSG_TYPE_STATUS_REPORT;
    if (DecomposeReadMsgTime(&report.discharge_time, msg) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE("DecomposeReadMsgTime in ParseStatusReport function run unsuccessfully!\n\n");
        return -1;
    }
    uint32_t len = sizeof msg->szAddress;
    (void)DecodeAddress(&report.address, msg->szAddress, &len);
    msg->byHasText = 0;
    if ((report.parameter_indicator & 0x04u) != 0) {
        copy_user_data(report.user_data, msg);
        msg->byHasText = 1;
    }
    SMS_TRACE("find header %d num %d!\n\n", report.user_data_header_present, report.user_data.num_headers);
    if (report.user_data_header_present == 1) take_headers(report.user_data, {false, false, true}, msg);
    SMS_TRACE("ParseStatusReport function run successfully!\n\n");
    return 0;
}

}  // extern "C"
