/* Record sizes and offsets that C and C++ callers must agree on.  Shared by
 * the C translation unit and the C++ static checks, so a header change that
 * moves a field fails both. */
#ifndef SMSUTIL_TEST_ABI_LAYOUT_H
#define SMSUTIL_TEST_ABI_LAYOUT_H

#define SMSUTIL_ABI_CHECKS(CHECK_SIZE, CHECK_OFFSET)            \
    CHECK_SIZE(wms_address, 37)                                 \
    CHECK_SIZE(wms_gw_dcs, 9)                                   \
    CHECK_SIZE(wms_timestamp, 7)                                \
    CHECK_SIZE(wms_gw_validity, 8)                              \
    CHECK_SIZE(wms_udh, 150)                                    \
    CHECK_SIZE(wms_gw_user_data, 1308)                          \
    CHECK_SIZE(wms_gw_deliver, 1366)                            \
    CHECK_SIZE(wms_gw_submit, 1371)                             \
    CHECK_SIZE(wms_gw_status_report, 1381)                      \
    CHECK_SIZE(wms_gw_command, 308)                             \
    CHECK_SIZE(wms_raw_tpdu, 261)                               \
    CHECK_SIZE(SmsReadPdu, 528)                                 \
    CHECK_SIZE(SmsSendPdu, 1028)                                \
    CHECK_SIZE(SmsMessage, 620)                                 \
    CHECK_SIZE(SmsMessageData, 572)                             \
    CHECK_SIZE(SmsOctetBuf, 516)                                \
    CHECK_SIZE(SendOrWriteMsg, 12)                              \
    CHECK_SIZE(SmsConfiguration, 92)                            \
    CHECK_OFFSET(wms_gw_dcs, coding_group, 3)                   \
    CHECK_OFFSET(wms_udh, u, 2)                                 \
    CHECK_OFFSET(wms_gw_user_data, sm_len, 1051)                \
    CHECK_OFFSET(wms_gw_user_data, sm_data, 1053)               \
    CHECK_OFFSET(wms_gw_deliver, address, 4)                    \
    CHECK_OFFSET(wms_gw_deliver, user_data, 58)                 \
    CHECK_OFFSET(wms_gw_submit, message_reference, 4)           \
    CHECK_OFFSET(wms_gw_submit, address, 8)                     \
    CHECK_OFFSET(wms_gw_submit, dcs, 46)                        \
    CHECK_OFFSET(wms_gw_submit, validity, 55)                   \
    CHECK_OFFSET(wms_gw_submit, user_data, 63)                  \
    CHECK_OFFSET(wms_gw_status_report, tp_status, 58)           \
    CHECK_OFFSET(wms_gw_status_report, parameter_indicator, 59) \
    CHECK_OFFSET(wms_gw_status_report, user_data, 73)           \
    CHECK_OFFSET(wms_gw_command, command_data, 53)              \
    CHECK_OFFSET(wms_raw_tpdu, len, 2)                          \
    CHECK_OFFSET(wms_raw_tpdu, data, 6)                         \
    CHECK_OFFSET(SmsReadPdu, pdu, 12)                           \
    CHECK_OFFSET(SmsSendPdu, pdu, 2)                            \
    CHECK_OFFSET(SmsMessage, content, 31)                       \
    CHECK_OFFSET(SmsMessage, wYear, 544)                        \
    CHECK_OFFSET(SmsMessage, sms_flag_type, 552)                \
    CHECK_OFFSET(SmsMessage, mr, 556)                           \
    CHECK_OFFSET(SmsMessage, sca, 560)                          \
    CHECK_OFFSET(SmsMessage, sms_content_code, 584)             \
    CHECK_OFFSET(SmsMessage, szValidity, 600)                   \
    CHECK_OFFSET(SmsMessageData, dwAddressLen, 24)              \
    CHECK_OFFSET(SmsMessageData, dwLength, 40)                  \
    CHECK_OFFSET(SmsMessageData, SmsData, 44)                   \
    CHECK_OFFSET(SmsMessageData, dwLongSms, 560)                \
    CHECK_OFFSET(SmsMessageData, byLangShift, 571)              \
    CHECK_OFFSET(SmsConfiguration, dwValidity, 16)

#endif
