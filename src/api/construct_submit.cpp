// Building the SUBMIT record from the message interface's record and the
// compose settings in m_stConfiguration.
#include <cstring>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"

extern "C" {

SMSUTIL_API void ConstructDcsData(uint32_t coding, SendOrWriteMsg *PstSendOrWriteMsg, wms_gw_dcs *dcs)
{
    (void)PstSendOrWriteMsg;
    if (dcs == nullptr) return;
    std::memset(dcs, 0, sizeof *dcs);
    dcs->msg_class = static_cast<uint8_t>(m_stConfiguration.dwMsgClass);
    dcs->alphabet = coding == SMS_CONTENT_7BIT ? WMS_ALPHABET_GSM7 : WMS_ALPHABET_UCS2;
}

SMSUTIL_API void ConstructValidityData(wms_gw_validity *validity)
{
    if (validity == nullptr) return;
    std::memset(validity, 0, sizeof *validity);
    validity->format = WMS_VP_RELATIVE;
    // A month of 30 days and a year of 360 here; the relative-time encoder
    // counts a year as 365 days.
    const uint32_t s = m_stConfiguration.dwValidity;
    auto bcd = [](uint32_t v) { return wms_ts_int_to_bcd(static_cast<uint8_t>(v)); };
    validity->time.second = bcd(s % 60);
    validity->time.minute = bcd((s / 60) % 60);
    validity->time.hour = bcd((s / 3600) % 24);
    validity->time.day = bcd((s / 86400) % 30);
    validity->time.month = bcd((s / 2592000) % 12);
    validity->time.year = bcd(s / 31104000);
    validity->time.timezone = 0;
}

SMSUTIL_API int32_t ConstructSubmitSms(const SmsMessageData *msg, SendOrWriteMsg *PstSendOrWriteMsg,
                                       wms_gw_submit *submit)
{
    if (msg == nullptr || PstSendOrWriteMsg == nullptr || submit == nullptr) return -1;
    std::memset(submit, 0, sizeof *submit);
    submit->reply_path_present = m_stConfiguration.dwReplyPath == 1 ? 1 : 0;
    submit->user_data_header_present = 0;
    submit->status_report_request = static_cast<uint8_t>(m_stConfiguration.dwStatusReport);
    submit->message_reference = msg->dwMr;
    submit->pid = 0;

    // The field goes in as it is: the address check reads no further than
    // its 21 bytes and refuses a number that fills them all.
    const int32_t ret = ConstructAddressData(msg->szAddress, PstSendOrWriteMsg, &submit->address);
    if (ret != 0) {
        SMS_TRACE("ConstructAddressData function run unsuccessfully!\n\n");
        return ret;
    }
    ConstructDcsData(msg->byCharset, PstSendOrWriteMsg, &submit->dcs);
    ConstructValidityData(&submit->validity);
    SMS_TRACE("The byTotalSM is %d\n\n", msg->byTotalSM);
    SMS_TRACE("The bySeqNum is %d\n\n", msg->bySeqNum);

    wms_gw_user_data &ud = submit->user_data;
    if (msg->byTotalSM != 0 && msg->bySeqNum != 0 && msg->bySeqNum <= msg->byTotalSM) {
        wms_udh &h = ud.headers[ud.num_headers++];
        h.header_id = WMS_UDH_CONCAT_8BIT_REF;
        h.u.concat_8.msg_ref = static_cast<uint8_t>(msg->dwMr);
        h.u.concat_8.total_sm = msg->byTotalSM;
        h.u.concat_8.seq_num = msg->bySeqNum;
        submit->user_data_header_present = 1;
    }
    // Only the single shift is ever sent: the receiver keeps its default
    // table for everything the national row does not replace.
    if (msg->byCharset == SMS_CONTENT_7BIT && msg->byteCoding != 0) {
        wms_udh &h = ud.headers[ud.num_headers++];
        h.header_id = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
        h.u.nat_lang_ss.length = 1;
        h.u.nat_lang_ss.national_language = msg->byteCoding;
        submit->user_data_header_present = 1;
    }
    // sm_len keeps the full count so the encoder can refuse what does not fit.
    ud.sm_len = static_cast<uint16_t>(msg->dwLength);
    const std::size_t n = msg->dwLength < sizeof ud.sm_data ? msg->dwLength : sizeof ud.sm_data;
    std::memcpy(ud.sm_data, msg->SmsData, n);
    SMS_TRACE("ConstructSubmitSms function run successfully!\n\n");
    return 0;
}

}  // extern "C"
