/* Message interface: the records exchanged with the SMS service, the
 * results and error codes of its steps, the compose globals and the
 * diagnostic log.  Message records keep natural alignment. */
#ifndef SMSUTIL_SMS_API_H
#define SMSUTIL_SMS_API_H

#include <stdint.h>

#include "smsutil/smsutil_export.h"
#include "smsutil/wms_ts.h"

SMSUTIL_BEGIN_DECLS

/* Capacities, each including the terminating NUL. */
#define SMS_NUMBER_SIZE 21    /* numbers: 20 characters */
#define SMS_PDU_TEXT_SIZE 513 /* PDU text and message text: 512 characters */
#define SMS_SEND_PDU_SIZE 1025
#define SMS_VALIDITY_SIZE 20
#define SMS_OCTET_BUF_SIZE 512

/* Results of every message-interface function. */
#define SMS_RESULT_OK 0
#define SMS_RESULT_FAIL (-1)

/* Error codes written by the steps that drive the transport codec. */
#define SMS_ERR_ENCODE_SUBMIT 10502
#define SMS_ERR_SC_ADDRESS 10503
#define SMS_ERR_DECODE 10506

/* Coding of a message text (SmsMessage.sms_content_code,
 * SmsMessageData.byCharset). */
#define SMS_CONTENT_UCS2 0 /* UCS-2 on the air, UTF-8 in the record */
#define SMS_CONTENT_7BIT 1
#define SMS_CONTENT_8BIT 2
#define SMS_CONTENT_OTHER 3

/* Delivery state of a status report (SmsMessage.dwReportStatus). */
#define SMS_STATUS_DELIVERED 0
#define SMS_STATUS_COMPLETED 1
#define SMS_STATUS_REPLACED 2
#define SMS_STATUS_PENDING 3
#define SMS_STATUS_FAILED 4
#define SMS_STATUS_STOPPED 5

/* SmsMessageData.byMsgType */
#define SMS_MSG_TYPE_DELIVER 0
#define SMS_MSG_TYPE_SUBMIT 1
#define SMS_MSG_TYPE_STATUS_REPORT 2

/* One stored message as read from the modem: the input of ParseSms. */
typedef struct SmsReadPdu_s {
    uint32_t index;
    uint32_t state;  /* 0, 1 received; 2, 3 stored outgoing */
    uint32_t length; /* written by ParseSms: characters in pdu */
    char pdu[SMS_PDU_TEXT_SIZE];
} SmsReadPdu;

/* The output of ComposeSms. */
typedef struct SmsSendPdu_s {
    uint16_t wLength; /* hexadecimal characters in pdu */
    char pdu[SMS_SEND_PDU_SIZE];
} SmsSendPdu;

/* The caller-facing message: filled by ParseSms, read by ComposeSms. */
typedef struct SmsMessage_s {
    uint32_t index;
    uint32_t state;
    uint8_t byStatusReport;
    char szAddress[SMS_NUMBER_SIZE];
    uint8_t byContentLen;
    char content[SMS_PDU_TEXT_SIZE];
    uint16_t wYear;
    uint8_t byMonth;
    uint8_t byDay;
    uint8_t byHour;
    uint8_t byMinute;
    uint8_t bySecond;
    uint32_t sms_flag_type;
    uint16_t mr;
    uint8_t btTotalPack;
    uint8_t btPack;
    char sca[SMS_NUMBER_SIZE];
    uint32_t sms_content_code;
    uint32_t byteCoding;
    uint32_t dwReportStatus;
    uint32_t dwStatusReportRequest;
    char szValidity[SMS_VALIDITY_SIZE];
} SmsMessage;

/* The record passed between the message interface's steps. */
typedef struct SmsMessageData_s {
    uint8_t byMsgForm;
    uint8_t byReportState;
    uint8_t byHasText;
    char szAddress[SMS_NUMBER_SIZE];
    uint32_t dwAddressLen;
    uint16_t wYear;
    uint8_t byMonth;
    uint8_t byDay;
    uint8_t byHour;
    uint8_t byMinute;
    uint8_t bySecond;
    uint8_t byCharset;
    uint8_t byMsgType;
    uint32_t dwLength;
    uint8_t SmsData[SMS_PDU_TEXT_SIZE];
    uint32_t dwLongSms;
    uint32_t dwMr;
    uint8_t byTotalSM;
    uint8_t bySeqNum;
    uint8_t byteCoding;
    uint8_t byLangShift;
} SmsMessageData;

typedef struct SmsOctetBuf_s {
    uint32_t dwLen;
    uint8_t data[SMS_OCTET_BUF_SIZE];
} SmsOctetBuf;

typedef struct SendOrWriteMsg_s {
    uint8_t byDigitMode;
    uint8_t byNumberMode;
    uint8_t byScTon;
    uint8_t byScNpi;
    uint32_t dwScLen;
    uint32_t dwTpduLen;
} SendOrWriteMsg;

/* Layout of m_stConfiguration: 23 words, reserved ones never touched. */
typedef struct SmsConfiguration_s {
    uint32_t dwStatusReport;
    uint32_t dwReplyPath;
    uint32_t dwMsgClass;
    uint32_t dwReserved3;
    uint32_t dwValidity;
    uint32_t dwReserved[18];
} SmsConfiguration;

/* Settings carried from ComposeSms to its steps. */
SMSUTIL_API extern SmsConfiguration m_stConfiguration;
/* Service-centre number of the message being composed. */
SMSUTIL_API extern char m_szSCAddress[SMS_NUMBER_SIZE];

/* Diagnostic log: levels 0..5 are written, higher ones dropped.  The
 * formatted text (at most 2047 characters) gets a trailing newline if it
 * lacks one; the file is emptied once this process has written more than
 * 32768 bytes to it.  Failures are silent. */
SMSUTIL_API void _smslog(const char *path, uint32_t level, const char *format, ...)
#if defined(__GNUC__) || defined(__clang__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;

/* ---- Packs and receivers ---- */

#define SMS_PACK_CONTENT_SIZE 352 /* 351 bytes of UTF-8 and the NUL */
#define SMS_MAX_PACKS 4
#define SMS_RECEIVER_NUMBER_SIZE 24
#define SMS_MAX_RECEIVERS 20

/* One pack of a text cut for a concatenated series. */
typedef struct SmsPack_s {
    uint32_t length; /* bytes of content without the NUL */
    char content[SMS_PACK_CONTENT_SIZE];
} SmsPack;

/* One receiver of a destination list. */
typedef struct SmsReceiver_s {
    uint32_t dwUserData; /* the caller's; never read or written here */
    char szNumber[SMS_RECEIVER_NUMBER_SIZE];
} SmsReceiver;

/* ---- Dial numbers and service-centre addresses ---- */

/* 0 when the number is 1..maxLen characters of digits, '*', '#' and a
 * leading '+' (not '+' alone); -1 otherwise.  Reads at most maxLen + 1
 * bytes of the string. */
SMSUTIL_API int32_t EWCheckDialNum(const char *pszDialNum, uint32_t maxLen);
/* Destination number text into a SUBMIT address; an empty number is valid. */
SMSUTIL_API int32_t ConstructAddressData(const char *pszAddress, SendOrWriteMsg *PstSendOrWriteMsg,
                                         wms_address *PstAddress);
/* Service-centre number into the octets that prefix a PDU (01 81 when empty). */
SMSUTIL_API int32_t ComposeSCAddrData(const char *pszAddr, SendOrWriteMsg *PstSendOrWriteMsg, SmsOctetBuf *PstBuf);
/* Two hexadecimal characters into the service-centre length octet. */
SMSUTIL_API int32_t TransformSCANum(const char *pSctemp, uint32_t *out);
/* Service-centre number text from the hexadecimal address that starts at
 * its type-of-address octet; out has dwSize bytes. */
SMSUTIL_API int32_t parse_centernum(int32_t dwSize, char *out, const char *src);
/* A decoded address as text; *pdwLen is the capacity in, the length out. */
SMSUTIL_API int32_t DecodeAddress(const wms_address *address, char *pszAddr, uint32_t *pdwLen);
/* Octets into lowercase hexadecimal text (2 * count + 1 bytes). */
SMSUTIL_API void BcdToAscii(char *out, const uint8_t *in, uint32_t count);
/* Hexadecimal text (either case) into octets, two characters an octet. */
SMSUTIL_API void AsciiToBcd(uint8_t *out, const char *in, uint32_t count);

/* ---- Extracting decoded TPDUs ---- */

SMSUTIL_API int32_t MSDecodeDeliver(const wms_raw_tpdu *raw, wms_gw_deliver *out);
SMSUTIL_API int32_t MSDecodeSubmit(const wms_raw_tpdu *raw, wms_gw_submit *out);
SMSUTIL_API int32_t MSDecodeStatusReport(const wms_raw_tpdu *raw, wms_gw_status_report *out);
/* Each fills msg from the TPDU; *pdwErrCode gets SMS_ERR_DECODE on a decode
 * or time stamp failure and is left alone otherwise. */
SMSUTIL_API int32_t ParseDeliverSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode);
SMSUTIL_API int32_t ParseSubmitSms(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode);
SMSUTIL_API int32_t ParseStatusReport(const wms_raw_tpdu *raw, SmsMessageData *msg, uint32_t *pdwErrCode);
/* BCD time stamp into msg's date fields (years 00..95 are 2000..2095). */
SMSUTIL_API int32_t DecomposeReadMsgTime(const wms_timestamp *time, SmsMessageData *msg);
/* TP-Status octet into an SMS_STATUS_* delivery state. */
SMSUTIL_API int32_t SwitchReportStatus(uint32_t tpStatus, uint8_t *PbyTag);

/* ---- Entry points ---- */

/* One stored PDU (hexadecimal text) into a zeroed and filled message. */
SMSUTIL_API int32_t ParseSms(SmsReadPdu *pInputSms, SmsMessage *pOutputSms);
/* One pack into a SUBMIT PDU as lowercase hexadecimal text. */
SMSUTIL_API int32_t ComposeSms(const SmsMessage *pInputSms, SmsSendPdu *pOutputSms);

/* ---- Compose steps ---- */

SMSUTIL_API int32_t ComposeSubmitSms(const SmsMessageData *msg, SendOrWriteMsg *PstSendOrWriteMsg, SmsOctetBuf *out,
                                     uint32_t *pdwErrCode);
SMSUTIL_API int32_t ConstructSubmitSms(const SmsMessageData *msg, SendOrWriteMsg *PstSendOrWriteMsg,
                                       wms_gw_submit *submit);
SMSUTIL_API int32_t MSEncodeSubmit(const wms_gw_submit *submit, wms_raw_tpdu *raw);
SMSUTIL_API void ConstructDcsData(uint32_t coding, SendOrWriteMsg *PstSendOrWriteMsg, wms_gw_dcs *dcs);
SMSUTIL_API void ConstructValidityData(wms_gw_validity *validity);

/* ---- Splitting long text, receiver lists ---- */

/* Cuts a UTF-8 text into at most 4 packs for UCS-2 (packCoding 0) or
 * 7-bit (1) sending under national language `coding`; the number of
 * packs, or -1.  A single pack whose text does not fit content fails. */
SMSUTIL_API int32_t sms_util_split_pack(const char *text, int32_t len, int32_t packCoding, uint32_t coding,
                                        SmsPack *pRes);
/* Bytes taken by the first n characters of a UTF-8 text; -1 for null. */
SMSUTIL_API int32_t find_utf8_count(int32_t n, const char *text);
/* Splits a separator-delimited list into at most 20 receivers. */
SMSUTIL_API int32_t sms_parse_receiver(const char *separator, const char *list, SmsReceiver *receivers);
/* 0 when the text is non-empty and only digits and '+'; else -1. */
SMSUTIL_API int32_t sms_test_str_num(const char *text);
/* Bounded copy that always terminates; returns dst. */
SMSUTIL_API char *sms_safe_cpy(char *dst, const char *src, int32_t size);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_API_H */
