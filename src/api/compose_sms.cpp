// ComposeSms: one pack into a SUBMIT PDU, service-centre address first.
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "common/trace.hpp"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"

namespace {

// The exported function its helpers report for.
constexpr const char kComposeSms[] = "ComposeSms";

constexpr uint32_t kMax7BitNormal = 160;
constexpr uint32_t kMax7BitLong = 153;
constexpr int32_t kMaxUcs2Normal = 70;
constexpr int32_t kMaxUcs2Long = 67;
// A number field read as text: all of its bytes when it has no terminator.
constexpr int kNumberField = SMS_NUMBER_SIZE;

uint32_t validity_seconds(const char (&text)[SMS_VALIDITY_SIZE])
{
    char bounded[SMS_VALIDITY_SIZE + 1] = {};
    std::memcpy(bounded, text, sizeof text);
    if (bounded[0] == '\0') return 0;
    return static_cast<uint32_t>(static_cast<int32_t>(std::strtol(bounded, nullptr, 10)));
}

// UTF-8 content into UCS-2 units in msg.SmsData; 0 or -1.
int32_t prepare_ucs2(const SmsMessage &in, SmsMessageData &msg)
{
    SMS_TRACE_AS(kComposeSms, "The size of stMessage.SmsData is %d\n\n", static_cast<int>(sizeof msg.SmsData));
    const std::size_t content_len = strnlen(in.content, sizeof in.content);
    SMS_TRACE_AS(kComposeSms, "The strlen of  pInputSms->content is %d\n\n", static_cast<int>(content_len));
    // Unterminated content cannot be measured without reading past it.
    uint16_t units[SMS_PDU_TEXT_SIZE / 2 + 1] = {};
    const int32_t ret = content_len < sizeof in.content ? UTF8_TO_UCS2(in.content, reinterpret_cast<uint8_t *>(units),
                                                                       static_cast<int32_t>(sizeof msg.SmsData))
                                                        : -1;
    if (ret < 0) {
        SMS_TRACE_AS(kComposeSms, "UTF8_TO_UCS2 function run unsuccessfully!\n\n");
        return ret;
    }
    std::memcpy(msg.SmsData, units, sizeof msg.SmsData - 1);
    // The conversion counted the characters already.
    const int32_t c = ret;
    SMS_TRACE_AS(kComposeSms, "The length of UCS2 is %d\n\n", 2 * sms_wcslen(units));
    SMS_TRACE_AS(kComposeSms, "The length of utf8_char_length is %d\n\n", 2 * c);
    msg.dwLength = static_cast<uint32_t>(2 * c);
    if (in.sms_flag_type == 1 && c > kMaxUcs2Long) {
        SMS_TRACE_AS(kComposeSms, "The ComposeSms UCS2 length is out of range in the long sms!\n\n");
        return -1;
    }
    if (in.sms_flag_type == 0 && c > kMaxUcs2Normal) {
        SMS_TRACE_AS(kComposeSms, "The ComposeSms UCS2 length is out of range in the normal sms!\n\n");
        return -1;
    }
    return 0;
}

int32_t prepare_7bit(const SmsMessage &in, SmsMessageData &msg)
{
    SMS_TRACE_AS(kComposeSms, "The length of 7bit is %d\n\n", static_cast<int>(strnlen(in.content, sizeof in.content)));
    // Septet 0 is '@': the count comes from byContentLen, not the string.
    std::memcpy(msg.SmsData, in.content, in.byContentLen);
    msg.dwLength = in.byContentLen;
    if (in.sms_flag_type == 1 && msg.dwLength > kMax7BitLong) {
        SMS_TRACE_AS(kComposeSms, "The ComposeSms 7 bit length is out of range in the long sms!\n\n");
        return -1;
    }
    if (in.sms_flag_type == 0 && msg.dwLength > kMax7BitNormal) {
        SMS_TRACE_AS(kComposeSms, "The ComposeSms 7 bit length is out of range in the normal sms!\n\n");
        return -1;
    }
    return 0;
}

}  // namespace

extern "C" {

SMSUTIL_API int32_t ComposeSubmitSms(const SmsMessageData *msg, SendOrWriteMsg *PstSendOrWriteMsg, SmsOctetBuf *out,
                                     uint32_t *pdwErrCode)
{
    if (msg == nullptr || PstSendOrWriteMsg == nullptr || out == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_submit submit;  // cleared by ConstructSubmitSms
    int32_t ret = ConstructSubmitSms(msg, PstSendOrWriteMsg, &submit);
    if (ret != 0) {
        SMS_TRACE("ConstructSubmitSms function run unsuccessfully!\n\n");
        return ret;
    }
    wms_raw_tpdu raw;  // cleared by the encoder
    if (MSEncodeSubmit(&submit, &raw) != 0) {
        *pdwErrCode = SMS_ERR_ENCODE_SUBMIT;
        SMS_TRACE("MSEncodeSubmit function run unsuccessfully! The ERROR CODE is %d\n\n", SMS_ERR_ENCODE_SUBMIT);
        return -1;
    }
    SmsOctetBuf sc;  // only the dwLen octets the step writes are read
    SMS_TRACE("The sc num is %.*s\n\n", kNumberField, m_szSCAddress);
    ret = ComposeSCAddrData(m_szSCAddress, PstSendOrWriteMsg, &sc);
    if (ret != 0) {
        *pdwErrCode = SMS_ERR_SC_ADDRESS;
        SMS_TRACE("ComposeSCAddrData function run unsuccessfully! The ERROR CODE is %d\n\n", SMS_ERR_SC_ADDRESS);
        return ret;
    }
    PstSendOrWriteMsg->dwScLen = sc.dwLen;
    PstSendOrWriteMsg->dwTpduLen = raw.len;
    std::memset(out, 0, sizeof *out);
    std::memcpy(out->data, sc.data, sc.dwLen);
    std::memcpy(out->data + sc.dwLen, raw.data, raw.len);

    SMS_TRACE("The user data len is %d\n\n", static_cast<int>(raw.len));
    SMS_TRACE("The staRaw data is:\n\n");
    for (uint32_t i = 0; i < raw.len; ++i) SMS_TRACE("%x\n", raw.data[i]);
    const uint32_t total = sc.dwLen + raw.len;
    SMS_TRACE("The PDU length is: %d\n\n", static_cast<int>(total));
    out->dwLen = total;
    SMS_TRACE("ComposeSubmitSms function run successfully!\n\n");
    return 0;
}

SMSUTIL_API int32_t ComposeSms(const SmsMessage *pInputSms, SmsSendPdu *pOutputSms)
{
    SmsMessageData stMessage;
    std::memset(&stMessage, 0, sizeof stMessage);
    SendOrWriteMsg work{};
    SmsOctetBuf composed;  // cleared by ComposeSubmitSms once it succeeds
    SMS_RETURN_IF_NULL(pInputSms);
    SMS_RETURN_IF_NULL(pOutputSms);
    const SmsMessage &in = *pInputSms;
    stMessage.byCharset = static_cast<uint8_t>(in.sms_content_code);
    stMessage.byteCoding = static_cast<uint8_t>(in.byteCoding);
    SMS_TRACE("stMessage.byteCoding is %d\n\n", stMessage.byteCoding);
    SMS_TRACE("The charset of stMessage.SmsData is %d\n\n", stMessage.byCharset);

    int32_t ret;
    if (stMessage.byCharset == SMS_CONTENT_UCS2)
        ret = prepare_ucs2(in, stMessage);
    else if (stMessage.byCharset == SMS_CONTENT_7BIT)
        ret = prepare_7bit(in, stMessage);
    else {
        SMS_TRACE("The sms_content_code is not recognized!\n\n");
        return -1;
    }
    if (ret != 0) return ret;

    // Both numbers are copied field for field, never cut: a number that
    // fills its 21 bytes without a terminator is longer than 20 characters,
    // and the address steps refuse it.
    static_assert(sizeof stMessage.szAddress == sizeof in.szAddress && sizeof m_szSCAddress == sizeof in.sca);
    std::memcpy(stMessage.szAddress, in.szAddress, sizeof in.szAddress);
    std::memcpy(m_szSCAddress, in.sca, sizeof in.sca);
    SMS_TRACE("The sc num is %.*s\n\n", kNumberField, m_szSCAddress);

    stMessage.dwMr = in.mr;
    stMessage.byTotalSM = 0;
    stMessage.bySeqNum = 0;
    SMS_TRACE("The sms_flag_type is %d\n\n", static_cast<int>(in.sms_flag_type));
    SMS_TRACE("The btTotalPack is %d\n\n", in.btTotalPack);
    SMS_TRACE("The btPack is %d\n\n", in.btPack);
    if (in.sms_flag_type == 1) {
        stMessage.byTotalSM = in.btTotalPack;
        stMessage.bySeqNum = in.btPack;
    }
    // The time travels along but takes no part in a SUBMIT; the trace has
    // always called every one of its fields "day".
    stMessage.wYear = in.wYear;
    stMessage.byMonth = in.byMonth;
    stMessage.byDay = in.byDay;
    stMessage.byHour = in.byHour;
    stMessage.byMinute = in.byMinute;
    stMessage.bySecond = in.bySecond;
    for (const int field : {static_cast<int>(stMessage.wYear), static_cast<int>(stMessage.byMonth),
                            static_cast<int>(stMessage.byDay), static_cast<int>(stMessage.byHour),
                            static_cast<int>(stMessage.byMinute), static_cast<int>(stMessage.bySecond)})
        SMS_TRACE("The day is %d\n\n", field);

    m_stConfiguration.dwMsgClass = WMS_MESSAGE_CLASS_NONE;
    m_stConfiguration.dwValidity = validity_seconds(in.szValidity);
    m_stConfiguration.dwReplyPath = 0;
    m_stConfiguration.dwStatusReport = in.dwStatusReportRequest;

    uint32_t err = 0;
    ret = ComposeSubmitSms(&stMessage, &work, &composed, &err);
    // Whatever the caller's field held, the global ends as a string.
    m_szSCAddress[kNumberField - 1] = '\0';
    if (ret != 0) {
        SMS_TRACE("ComposeSubmitSms function run unsuccessfully!\n\n");
        return ret;
    }
    SMS_TRACE("The composed pdu's length inside is %d\n\n", static_cast<int>(composed.dwLen));
    BcdToAscii(pOutputSms->pdu, composed.data, composed.dwLen);
    pOutputSms->wLength = static_cast<uint16_t>(2 * composed.dwLen);
    SMS_TRACE("The stRawarse string length is:%d\n\n", pOutputSms->wLength);
    SMS_TRACE("The pOutputSms ->pdu is %s\n\n", pOutputSms->pdu);
    SMS_TRACE("ComposeSms function run successfully!\n\n");
    return 0;
}

}  // extern "C"
