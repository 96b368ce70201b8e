// Decoded DELIVER, SUBMIT and STATUS-REPORT TPDUs into the record the
// message interface works on.
#include <cstddef>
#include <cstring>

#include "api/extract_steps.hpp"
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

constexpr const char kParseDeliverSms[] = "ParseDeliverSms";
constexpr const char kParseStatusReport[] = "ParseStatusReport";

// A decoded TPDU is cleared where its decoder may leave a field that is read
// afterwards: everything ahead of the user data, the header slots only when
// TP-UDHI announces a header, and the text only as far as a message record
// takes it (the decoder drops U+0000 units and leaves the cleared tail to
// stand for them).
template <class Decoded>
void clear_for_decoding(Decoded &decoded, const wms_raw_tpdu *raw, bool may_carry_text = true)
{
    static_assert(offsetof(Decoded, user_data) + sizeof decoded.user_data <= sizeof decoded);
    static_assert(offsetof(Decoded, user_data) + sizeof decoded.user_data + alignof(Decoded) > sizeof decoded,
                  "the user data must be the decoded record's last member");
    wms_gw_user_data &ud = decoded.user_data;
    std::memset(&decoded, 0, offsetof(Decoded, user_data) + offsetof(wms_gw_user_data, headers));
    if (raw != nullptr && raw->len != 0 && (raw->data[0] & 0x40) != 0) std::memset(ud.headers, 0, sizeof ud.headers);
    ud.sm_len = 0;
    if (may_carry_text) std::memset(ud.sm_data, 0, kMaxUserData);
}

// A report's optional fields follow TP-ST, whose place the address length
// gives; a TPDU that ends there has no text to decode.
bool report_may_carry_text(const wms_raw_tpdu *raw)
{
    constexpr std::size_t kFixedOctets = 2 + 2 + 2 * 7 + 1;  // first, MR, address head, two stamps, TP-ST
    if (raw == nullptr || raw->len < 3) return false;
    return raw->len > kFixedOctets + (raw->data[2] + 1u) / 2;
}

// The message record, its text buffer only when it is read.
void clear_message(SmsMessageData &msg, bool with_text)
{
    if (with_text) {
        std::memset(&msg, 0, sizeof msg);
        return;
    }
    constexpr std::size_t text_at = offsetof(SmsMessageData, SmsData);
    constexpr std::size_t tail_at = text_at + sizeof msg.SmsData;
    auto *bytes = reinterpret_cast<unsigned char *>(&msg);
    std::memset(bytes, 0, text_at);
    std::memset(bytes + tail_at, 0, sizeof msg - tail_at);
}

}  // namespace

int32_t smsutil::api::extract_deliver(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode,
                                      transport::Ucs2InPlace *in_place)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_deliver deliver;
    clear_for_decoding(deliver, raw);
    if (decode_deliver_step(raw, &deliver, in_place) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE_AS(kParseDeliverSms,
                     "MSDecodeDeliver in ParseDeliverSms function run unsuccessfully! The ERROR CODE is %d\n\n",
                     SMS_ERR_DECODE);
        return -1;
    }
    const bool text_in_place = in_place != nullptr && in_place->found;
    clear_message(*msg, !text_in_place);
    msg->byCharset = charset_of(deliver.dcs.alphabet);
    msg->byMsgType = SMS_MSG_TYPE_DELIVER;
    if (DecomposeReadMsgTime(&deliver.timestamp, msg) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE_AS(kParseDeliverSms,
                     "DecomposeReadMsgTime in ParseDeliverSms function run unsuccessfully! The ERROR CODE is %d\n\n",
                     SMS_ERR_DECODE);
        return -1;
    }
    uint32_t len = sizeof msg->szAddress;
    const int32_t ret = DecodeAddress(&deliver.address, msg->szAddress, &len);
    if (ret != 0) {
        SMS_TRACE_AS(kParseDeliverSms, "DecodeAddress in ParseDeliverSms function run unsuccessfully!\n\n");
        return ret;
    }
    if (text_in_place)
        msg->dwLength = deliver.user_data.sm_len < kMaxUserData ? deliver.user_data.sm_len : kMaxUserData;
    else
        copy_user_data(deliver.user_data, msg);
    SMS_TRACE_AS(kParseDeliverSms, "find header %d num %d!\n\n", deliver.user_data_header_present,
                 deliver.user_data.num_headers);
    if (deliver.user_data_header_present == 1) take_headers(deliver.user_data, {true, true, true}, msg);
    SMS_TRACE_AS(kParseDeliverSms, "ParseDeliverSms function run successfully!\n\n");
    return 0;
}

int32_t smsutil::api::extract_status_report(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode,
                                            bool whole_record, char *address_out)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_status_report report;
    clear_for_decoding(report, raw, report_may_carry_text(raw));
    if (decode_status_report_step(raw, &report, false) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE_AS(kParseStatusReport,
                     "MSDecodeStatusReport in ParseStatusReport function run unsuccessfully! The ERROR CODE is %d\n\n",
                     SMS_ERR_DECODE);
        return -1;
    }
    const bool has_text = (report.parameter_indicator & 0x04u) != 0;
    // Without text, ParseSms reads only fields that every successful step
    // below writes.
    if (whole_record || has_text) std::memset(msg, 0, sizeof *msg);
    msg->byMsgForm = 2;
    msg->byCharset = charset_of(report.dcs.alphabet);
    msg->byReportState = report_status_tag(report.tp_status);
    msg->byMsgType = SMS_MSG_TYPE_STATUS_REPORT;
    if (DecomposeReadMsgTime(&report.discharge_time, msg) != 0) {
        *pdwErrCode = SMS_ERR_DECODE;
        SMS_TRACE_AS(kParseStatusReport, "DecomposeReadMsgTime in ParseStatusReport function run unsuccessfully!\n\n");
        return -1;
    }
    if (address_out == nullptr) {
        (void)address_text(report.address, msg->szAddress, sizeof msg->szAddress);
    } else {
        const uint32_t len = address_text(report.address, address_out, sizeof msg->szAddress);
        // Decoded alphanumeric text may hold NUL ('@'): the caller's text
        // ends at the first one, with nothing after it.
        if (report.address.digit_mode != WMS_DIGIT_MODE_BCD) {
            const std::size_t end = strnlen(address_out, len);
            std::memset(address_out + end, 0, len - end);
        }
    }
    msg->byHasText = 0;
    if (has_text) {
        copy_user_data(report.user_data, msg);
        msg->byHasText = 1;
    }
    SMS_TRACE_AS(kParseStatusReport, "find header %d num %d!\n\n", report.user_data_header_present,
                 report.user_data.num_headers);
    if (report.user_data_header_present == 1) take_headers(report.user_data, {false, false, true}, msg);
    SMS_TRACE_AS(kParseStatusReport, "ParseStatusReport function run successfully!\n\n");
    return 0;
}

extern "C" {

SMSUTIL_API int32_t ParseDeliverSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode)
{
    return smsutil::api::extract_deliver(raw, msg, pdwErrCode, nullptr);
}

SMSUTIL_API int32_t ParseSubmitSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode)
{
    if (msg == nullptr || pdwErrCode == nullptr) return -1;
    wms_gw_submit submit;
    clear_for_decoding(submit, raw);
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
    return smsutil::api::extract_status_report(raw, msg, pdwErrCode, true);
}

}  // extern "C"
