// Constant English descriptions of the PDU codec's codes, for tools and logs.
#include <cstddef>
#include <iterator>

#include "smsutil/sms_pdu.h"

namespace {

struct Named {
    int code;
    const char *text;
};

constexpr Named kResults[] = {
    {SMS_PDU_OK, "ok"},
    {SMS_PDU_ERR_NULL, "missing argument"},
    {SMS_PDU_ERR_BAD_HEX, "not a hexadecimal digit"},
    {SMS_PDU_ERR_ODD_LENGTH, "odd number of hexadecimal digits"},
    {SMS_PDU_ERR_TOO_LONG, "PDU too long"},
    {SMS_PDU_ERR_UNSUPPORTED_MTI, "reserved message type"},
    {SMS_PDU_ERR_SCA_LENGTH, "service-centre address too long"},
    {SMS_PDU_ERR_ADDRESS_LENGTH, "address too long"},
    {SMS_PDU_ERR_TRUNCATED_SCA, "PDU ends in the service-centre address"},
    {SMS_PDU_ERR_TRUNCATED_FIRST_OCTET, "PDU ends before the first octet"},
    {SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE, "PDU ends before the message reference"},
    {SMS_PDU_ERR_TRUNCATED_ADDRESS, "PDU ends in the address"},
    {SMS_PDU_ERR_TRUNCATED_PID, "PDU ends before the protocol identifier"},
    {SMS_PDU_ERR_TRUNCATED_DCS, "PDU ends before the data coding scheme"},
    {SMS_PDU_ERR_TRUNCATED_TIMESTAMP, "PDU ends in the time stamp"},
    {SMS_PDU_ERR_TRUNCATED_VALIDITY, "PDU ends in the validity period"},
    {SMS_PDU_ERR_TRUNCATED_DISCHARGE_TIME, "PDU ends in the discharge time"},
    {SMS_PDU_ERR_TRUNCATED_STATUS, "PDU ends before the status"},
    {SMS_PDU_ERR_TRUNCATED_COMMAND_TYPE, "PDU ends before the command type"},
    {SMS_PDU_ERR_TRUNCATED_MESSAGE_NUMBER, "PDU ends before the message number"},
    {SMS_PDU_ERR_TRUNCATED_USER_DATA_LENGTH, "PDU ends before the user data length"},
    {SMS_PDU_ERR_TRUNCATED_USER_DATA, "PDU ends in the user data"},
    {SMS_PDU_ERR_BAD_UTF8, "text is not valid UTF-8"},
    {SMS_PDU_ERR_BAD_DESTINATION, "bad destination number"},
    {SMS_PDU_ERR_BAD_SERVICE_CENTRE, "bad service-centre number"},
    {SMS_PDU_ERR_TOO_MANY_PARTS, "text needs more parts than allowed"},
    {SMS_PDU_ERR_NO_ROOM, "too few part records"},
    {SMS_PDU_ERR_BAD_VALIDITY, "bad validity period"},
    {SMS_PDU_ERR_BAD_OPTIONS, "bad options"},
};

constexpr Named kProblems[] = {
    {SMS_PDU_PROBLEM_UNKNOWN_LANGUAGE, "shift to a language without a table; default table used"},
    {SMS_PDU_PROBLEM_HEADER_OVERRUN, "user data header longer than the user data"},
    {SMS_PDU_PROBLEM_ELEMENT_OVERRUN, "header element runs past the header"},
    {SMS_PDU_PROBLEM_ELEMENT_LENGTH, "header element of the wrong length"},
    {SMS_PDU_PROBLEM_CONCATENATION, "part number is 0 or above the total"},
    {SMS_PDU_PROBLEM_REPEATED_ELEMENT, "header element repeated; the last one counts"},
    {SMS_PDU_PROBLEM_USER_DATA_LENGTH, "user data length above the maximum"},
    {SMS_PDU_PROBLEM_TRAILING_OCTETS, "octets after the user data"},
    {SMS_PDU_PROBLEM_ESCAPE_AT_END, "text ends with an escape"},
    {SMS_PDU_PROBLEM_UNDEFINED_EXTENSION, "escape to a code without a character"},
    {SMS_PDU_PROBLEM_LONE_SURROGATE, "surrogate without its pair"},
    {SMS_PDU_PROBLEM_ODD_UCS2_LENGTH, "odd number of UCS-2 octets"},
    {SMS_PDU_PROBLEM_BAD_TIME, "time stamp out of range"},
    {SMS_PDU_PROBLEM_RESERVED_DCS, "reserved data coding scheme"},
    {SMS_PDU_PROBLEM_COMPRESSED, "compressed text"},
    {SMS_PDU_PROBLEM_RESERVED_PARAMETERS, "reserved parameter indicator bits"},
};

// TP-ST values with a meaning of their own; the others take their range's.
constexpr Named kStatuses[] = {
    {0x00, "received by the recipient"},
    {0x01, "forwarded, delivery not confirmed"},
    {0x02, "replaced by the service centre"},
    {0x20, "congestion, still trying"},
    {0x21, "recipient busy, still trying"},
    {0x22, "no response from the recipient, still trying"},
    {0x23, "service rejected, still trying"},
    {0x24, "quality of service not available, still trying"},
    {0x25, "error in the recipient, still trying"},
    {0x40, "remote procedure error"},
    {0x41, "incompatible destination"},
    {0x42, "connection rejected by the recipient"},
    {0x43, "not obtainable"},
    {0x44, "quality of service not available"},
    {0x45, "no interworking available"},
    {0x46, "validity period expired"},
    {0x47, "deleted by the sender"},
    {0x48, "deleted by the service centre"},
    {0x49, "message does not exist"},
    {0x60, "congestion, no more attempts"},
    {0x61, "recipient busy, no more attempts"},
    {0x62, "no response from the recipient, no more attempts"},
    {0x63, "service rejected, no more attempts"},
    {0x64, "quality of service not available, no more attempts"},
    {0x65, "error in the recipient, no more attempts"},
};

constexpr const char *kCategories[] = {
    "transaction completed",
    "temporary error, still trying",
    "permanent error",
    "temporary error, no more attempts",
    "reserved",
};

template <std::size_t N>
const char *find(const Named (&table)[N], int code)
{
    for (const Named &n : table)
        if (n.code == code) return n.text;
    return nullptr;
}

}  // namespace

extern "C" {

SMSUTIL_API const char *sms_pdu_result_text(int result)
{
    const char *t = find(kResults, result);
    return t != nullptr ? t : "";
}

SMSUTIL_API const char *sms_pdu_problem_text(int code)
{
    const char *t = find(kProblems, code);
    return t != nullptr ? t : "";
}

SMSUTIL_API int sms_pdu_status_category_of(uint8_t status)
{
    return status >= 0x80 ? SMS_PDU_STATUS_RESERVED : status >> 5;
}

SMSUTIL_API const char *sms_pdu_status_text(uint8_t status)
{
    const char *t = find(kStatuses, status);
    return t != nullptr ? t : kCategories[sms_pdu_status_category_of(status)];
}

}  // extern "C"
