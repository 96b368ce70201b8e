/* Standards-true PDU codec.
 *
 * Decodes a PDU as the modem reports it (service-centre address, then the
 * TPDU) into a record that keeps everything the PDU says, and encodes a
 * UTF-8 text into SUBMIT PDUs.  It stands beside ParseSms/ComposeSms, whose
 * behaviour is fixed by the gateway's interface and which this codec does
 * not change.
 *
 * Every function here is reentrant: no global state, no heap, no log lines.
 * Records and buffers belong to the caller.  Every read is bounded by the
 * length given. */
#ifndef SMSUTIL_SMS_PDU_H
#define SMSUTIL_SMS_PDU_H

#include <stddef.h>
#include <stdint.h>

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

/* ---- Result codes ---- */
typedef enum {
    SMS_PDU_OK = 0,
    SMS_PDU_ERR_NULL = 1,            /* a required pointer is null */
    SMS_PDU_ERR_BAD_HEX = 2,         /* a character that is not a hexadecimal digit */
    SMS_PDU_ERR_ODD_LENGTH = 3,      /* hexadecimal text of odd length */
    SMS_PDU_ERR_TOO_LONG = 4,        /* more than SMS_PDU_MAX_INPUT_OCTETS octets */
    SMS_PDU_ERR_UNSUPPORTED_MTI = 5, /* TP-MTI 3 (reserved) */
    SMS_PDU_ERR_SCA_LENGTH = 6,      /* service-centre length octet above 11 */
    SMS_PDU_ERR_ADDRESS_LENGTH = 7,  /* address length above 20 semi-octets */
    /* The PDU ends inside the named field.  The record keeps every field
     * read before it; a PDU cut inside its user data keeps the header
     * elements and the text of the octets that are there. */
    SMS_PDU_ERR_TRUNCATED_SCA = 10,
    SMS_PDU_ERR_TRUNCATED_FIRST_OCTET = 11,
    SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE = 12,
    SMS_PDU_ERR_TRUNCATED_ADDRESS = 13,
    SMS_PDU_ERR_TRUNCATED_PID = 14,
    SMS_PDU_ERR_TRUNCATED_DCS = 15,
    SMS_PDU_ERR_TRUNCATED_TIMESTAMP = 16,
    SMS_PDU_ERR_TRUNCATED_VALIDITY = 17,
    SMS_PDU_ERR_TRUNCATED_DISCHARGE_TIME = 18,
    SMS_PDU_ERR_TRUNCATED_STATUS = 19,
    SMS_PDU_ERR_TRUNCATED_COMMAND_TYPE = 20,
    SMS_PDU_ERR_TRUNCATED_MESSAGE_NUMBER = 21,
    SMS_PDU_ERR_TRUNCATED_USER_DATA_LENGTH = 22, /* TP-UDL, or TP-CDL of a COMMAND */
    SMS_PDU_ERR_TRUNCATED_USER_DATA = 23,        /* TP-UD, or TP-CD of a COMMAND */
    /* Encoding */
    SMS_PDU_ERR_BAD_UTF8 = 30,        /* the text is not well-formed UTF-8 */
    SMS_PDU_ERR_BAD_DESTINATION = 31, /* empty, more than 20 digits, or a character that is no digit */
    SMS_PDU_ERR_BAD_SERVICE_CENTRE = 32,
    SMS_PDU_ERR_TOO_MANY_PARTS = 33, /* the text needs more parts than allowed */
    SMS_PDU_ERR_NO_ROOM = 34,        /* fewer part records than the text needs */
    SMS_PDU_ERR_BAD_VALIDITY = 35,
    SMS_PDU_ERR_BAD_OPTIONS = 36
} sms_pdu_result;

/* Constant English description of a result code ("" for an unknown one). */
SMSUTIL_API const char *sms_pdu_result_text(int result);

/* ---- Sizes (SMS_PDU_TEXT_SIZE belongs to the message interface) ---- */
#define SMS_PDU_MAX_INPUT_OCTETS 400 /* longest PDU the decoders accept */
#define SMS_PDU_MAX_DIGITS 20
#define SMS_PDU_ADDRESS_SIZE 41    /* "+" and 20 digits, or 11 characters of up to 3 UTF-8 bytes */
#define SMS_PDU_USER_DATA_SIZE 255 /* largest TP-UDL a PDU can announce */
#define SMS_PDU_UTF8_SIZE 769      /* 255 septets of up to 3 UTF-8 bytes, and a terminating zero */
#define SMS_PDU_MAX_ELEMENTS 127   /* as many elements as 254 header octets hold */
#define SMS_PDU_MAX_PROBLEMS 8

/* ---- Field values ---- */
typedef enum { SMS_PDU_DELIVER = 0, SMS_PDU_SUBMIT = 1, SMS_PDU_STATUS_REPORT = 2, SMS_PDU_COMMAND = 3 } sms_pdu_kind;

typedef enum { SMS_PDU_ALPHABET_GSM7 = 0, SMS_PDU_ALPHABET_8BIT = 1, SMS_PDU_ALPHABET_UCS2 = 2 } sms_pdu_alphabet;

#define SMS_PDU_CLASS_NONE 4

typedef enum {
    SMS_PDU_MWI_NONE = 0,    /* not a message-waiting coding group */
    SMS_PDU_MWI_DISCARD = 1, /* indication only; the message may be discarded */
    SMS_PDU_MWI_STORE = 2    /* indication, and the message is stored */
} sms_pdu_mwi_group;

typedef enum {
    SMS_PDU_MWI_VOICEMAIL = 0,
    SMS_PDU_MWI_FAX = 1,
    SMS_PDU_MWI_EMAIL = 2,
    SMS_PDU_MWI_OTHER = 3
} sms_pdu_mwi_type;

typedef enum {
    SMS_PDU_VP_NONE = 0,
    SMS_PDU_VP_ENHANCED = 1,
    SMS_PDU_VP_RELATIVE = 2,
    SMS_PDU_VP_ABSOLUTE = 3
} sms_pdu_validity_format;

/* National language identifiers of the shift elements; the bit of each in
 * sms_pdu_encode_options.languages is 1u << identifier. */
typedef enum {
    SMS_PDU_LANG_NONE = 0, /* the default alphabet */
    SMS_PDU_LANG_TURKISH = 1,
    SMS_PDU_LANG_SPANISH = 2,
    SMS_PDU_LANG_PORTUGUESE = 3
} sms_pdu_language;

/* TP-ST by its range. */
typedef enum {
    SMS_PDU_STATUS_COMPLETED = 0,       /* 0x00-0x1F: the transaction is over (delivered, forwarded, replaced) */
    SMS_PDU_STATUS_TRYING = 1,          /* 0x20-0x3F: temporary error, the service centre keeps trying */
    SMS_PDU_STATUS_PERMANENT_ERROR = 2, /* 0x40-0x5F */
    SMS_PDU_STATUS_GAVE_UP = 3,         /* 0x60-0x7F: temporary error, the service centre stopped trying */
    SMS_PDU_STATUS_RESERVED = 4         /* 0x80-0xFF */
} sms_pdu_status_category;

/* Range of a TP-ST value, and a constant English description of it. */
SMSUTIL_API int sms_pdu_status_category_of(uint8_t status);
SMSUTIL_API const char *sms_pdu_status_text(uint8_t status);

/* ---- The decoded record ---- */

typedef struct {
    uint8_t type;                    /* type of number, 0..7; 1 international, 5 alphanumeric */
    uint8_t plan;                    /* numbering plan, 0..15 */
    char text[SMS_PDU_ADDRESS_SIZE]; /* digits (with "+" when international) or alphanumeric text, UTF-8 */
} sms_pdu_address;

typedef struct {
    uint8_t year, month, day, hour, minute, second; /* as sent: year 0..99 */
    int8_t timezone;                                /* quarter hours east of UTC, signed */
} sms_pdu_time;

typedef struct {
    uint8_t format;            /* sms_pdu_validity_format */
    uint32_t relative_seconds; /* SMS_PDU_VP_RELATIVE */
    sms_pdu_time absolute;     /* SMS_PDU_VP_ABSOLUTE */
    uint8_t enhanced[7];       /* SMS_PDU_VP_ENHANCED, the octets as sent */
} sms_pdu_validity;

typedef struct {
    uint8_t octet;         /* TP-DCS as sent */
    uint8_t alphabet;      /* sms_pdu_alphabet */
    uint8_t message_class; /* 0..3, or SMS_PDU_CLASS_NONE */
    uint8_t compressed;
    uint8_t auto_delete; /* marked for deletion once read */
    uint8_t mwi_group;   /* sms_pdu_mwi_group */
    uint8_t mwi_active;
    uint8_t mwi_type; /* sms_pdu_mwi_type */
} sms_pdu_dcs;

/* One information element of the user data header.  Its data are
 * user_data[offset] to user_data[offset + length - 1]. */
typedef struct {
    uint8_t id;
    uint8_t offset;
    uint8_t length;
} sms_pdu_element;

typedef enum {
    SMS_PDU_PROBLEM_UNKNOWN_LANGUAGE = 1, /* shift to a language without a table: default table used */
    SMS_PDU_PROBLEM_HEADER_OVERRUN = 2,   /* the header is longer than the user data; no text */
    SMS_PDU_PROBLEM_ELEMENT_OVERRUN = 3,  /* an element runs past the header's end; it and later ones are left out */
    SMS_PDU_PROBLEM_ELEMENT_LENGTH = 4,   /* a known element of the wrong length; listed, not interpreted */
    SMS_PDU_PROBLEM_CONCATENATION = 5,    /* part number 0 or above the total; ignored */
    SMS_PDU_PROBLEM_REPEATED_ELEMENT = 6, /* a second element of one kind; the last one counts */
    SMS_PDU_PROBLEM_USER_DATA_LENGTH = 7, /* TP-UDL above 160 septets or 140 octets */
    SMS_PDU_PROBLEM_TRAILING_OCTETS = 8,  /* octets after the user data */
    SMS_PDU_PROBLEM_ESCAPE_AT_END = 9,    /* the 7-bit text ends with the escape */
    SMS_PDU_PROBLEM_UNDEFINED_EXTENSION = 10, /* escape and a code the table lacks: read from the main table */
    SMS_PDU_PROBLEM_LONE_SURROGATE = 11,      /* UCS-2 surrogate half without its pair: U+FFFD */
    SMS_PDU_PROBLEM_ODD_UCS2_LENGTH = 12,     /* UCS-2 text of an odd number of octets; the last is left out */
    SMS_PDU_PROBLEM_BAD_TIME = 13,            /* a time stamp field that is no BCD number or out of range */
    SMS_PDU_PROBLEM_RESERVED_DCS = 14,        /* reserved data coding: read as the default alphabet */
    SMS_PDU_PROBLEM_COMPRESSED = 15,          /* compressed text: octets only, no text */
    SMS_PDU_PROBLEM_RESERVED_PARAMETERS = 16  /* TP-PI with reserved bits: no optional field read */
} sms_pdu_problem_code;

SMSUTIL_API const char *sms_pdu_problem_text(int code);

typedef struct {
    uint16_t code;   /* sms_pdu_problem_code */
    uint16_t offset; /* octet of the input where it was found */
} sms_pdu_problem;

typedef struct {
    uint8_t kind;        /* sms_pdu_kind */
    uint8_t first_octet; /* as sent */
    uint8_t has_sca;     /* the input began with a service-centre address (possibly empty) */
    sms_pdu_address sca;
    /* Originator (DELIVER), destination (SUBMIT, COMMAND), recipient (STATUS-REPORT). */
    sms_pdu_address address;

    /* Flags of the first octet, 0 or 1 */
    uint8_t more_messages;     /* DELIVER, STATUS-REPORT: TP-MMS clear */
    uint8_t loop_prevention;   /* DELIVER, STATUS-REPORT: TP-LP */
    uint8_t reply_path;        /* DELIVER, SUBMIT: TP-RP */
    uint8_t reject_duplicates; /* SUBMIT: TP-RD */
    uint8_t status_report;     /* TP-SRI (DELIVER), TP-SRR (SUBMIT, COMMAND), TP-SRQ (STATUS-REPORT) */
    uint8_t header_indicator;  /* TP-UDHI */

    uint8_t message_reference; /* SUBMIT, STATUS-REPORT, COMMAND */
    uint8_t pid;
    sms_pdu_dcs dcs;
    sms_pdu_time timestamp;    /* TP-SCTS: DELIVER, STATUS-REPORT */
    sms_pdu_validity validity; /* SUBMIT */

    /* STATUS-REPORT */
    sms_pdu_time discharge_time;
    uint8_t status;          /* TP-ST */
    uint8_t status_category; /* sms_pdu_status_category */
    uint8_t has_parameter_indicator;
    uint8_t parameter_indicator;

    /* COMMAND */
    uint8_t command_type;
    uint8_t message_number;

    /* TP-UD (TP-CD of a COMMAND) as sent, header included, and what the
     * header says.  user_data_length counts the octets present; for 7-bit
     * text user_data_septets is TP-UDL. */
    uint8_t user_data[SMS_PDU_USER_DATA_SIZE];
    uint16_t user_data_length;
    uint16_t user_data_septets;
    uint16_t header_length; /* UDHL and the header octets; 0 without a header */
    uint8_t element_count;
    sms_pdu_element elements[SMS_PDU_MAX_ELEMENTS];

    uint8_t has_concatenation;
    uint8_t concatenation_16bit;
    uint16_t concatenation_reference;
    uint8_t concatenation_total;
    uint8_t concatenation_part;

    uint8_t has_ports;
    uint8_t ports_16bit;
    uint16_t source_port;
    uint16_t destination_port;

    uint8_t has_locking_shift;
    uint8_t locking_language; /* identifier as sent */
    uint8_t has_single_shift;
    uint8_t single_language;

    /* The text in UTF-8, zero-terminated; text_length bytes.  Empty for
     * 8-bit and compressed data, whose octets are user_data after
     * header_length. */
    char text[SMS_PDU_UTF8_SIZE];
    uint16_t text_length;

    uint8_t problem_count;
    uint8_t problems_dropped; /* problems beyond SMS_PDU_MAX_PROBLEMS */
    sms_pdu_problem problems[SMS_PDU_MAX_PROBLEMS];
} sms_pdu_record;

/* ---- Decoding ---- */

/* The input starts at the TPDU's first octet: no service-centre address. */
#define SMS_PDU_DECODE_NO_SCA 0x01u
/* TP-MTI 2 is read as a COMMAND (a PDU on its way to the service centre)
 * instead of a STATUS-REPORT (one that came from it). */
#define SMS_PDU_DECODE_COMMAND 0x02u

/* Decode one PDU given as octets or as hexadecimal text of either case.
 * The record is cleared first; the result is SMS_PDU_OK or an error code,
 * and problems that did not stop the decoding are listed in the record. */
SMSUTIL_API int sms_pdu_decode(const uint8_t *octets, size_t len, unsigned flags, sms_pdu_record *record);
SMSUTIL_API int sms_pdu_decode_hex(const char *hex, size_t len, unsigned flags, sms_pdu_record *record);

/* ---- Encoding ---- */

#define SMS_PDU_MAX_PARTS 255
#define SMS_PDU_MAX_OCTETS 176 /* service-centre address (12) and the longest SUBMIT (164) */

/* Options of sms_pdu_encode.  An all-zero record is a valid start: default
 * alphabet or UCS-2, up to 255 parts, 8-bit reference 0, no validity
 * period, no status report, no class; only the destination must be set. */
typedef struct {
    uint32_t languages;         /* national languages allowed: bits 1u << sms_pdu_language (1 to 3); 0: none */
    uint16_t max_parts;         /* 1..255; 0 means 255 */
    uint8_t reference_16bit;    /* concatenation with a 16-bit reference */
    uint16_t reference;         /* concatenation reference (low octet with 8-bit references) */
    const char *destination;    /* "+" and digits for an international number, else digits */
    const char *service_centre; /* null or "": empty address (00); else like destination */
    sms_pdu_validity validity;  /* format NONE, RELATIVE (rounded up to the next value that can be
                                   sent, at most 63 weeks), ABSOLUTE or ENHANCED (octets as given) */
    uint8_t status_report_request;
    uint8_t has_message_class; /* 0: no class; else message_class is sent */
    uint8_t message_class;     /* 0..3 */
} sms_pdu_encode_options;

typedef struct {
    uint8_t octets[SMS_PDU_MAX_OCTETS];
    uint16_t length;                      /* octets, service-centre address included */
    uint16_t tpdu_length;                 /* octets after the service-centre address */
    char hex[2 * SMS_PDU_MAX_OCTETS + 1]; /* lowercase, zero-terminated */
    uint8_t alphabet;                     /* sms_pdu_alphabet: GSM7 or UCS2 */
    uint8_t locking_language;             /* sms_pdu_language, SMS_PDU_LANG_NONE for the default table */
    uint8_t single_language;
    uint32_t text_offset; /* the bytes of the input text this part carries */
    uint32_t text_length;
} sms_pdu_part;

/* Encode a UTF-8 text of len bytes into SUBMIT PDUs: the default alphabet
 * when it holds the text; else, of the allowed national languages, the
 * locking-shift and single-shift tables that take the fewest parts, the
 * header octets of their shift elements counted; else UCS-2.  On equal
 * parts the fewer shift elements win, then a single shift before a locking
 * shift, then the lower language identifier.  A text of more than one part
 * is cut into concatenated parts; a part never ends inside an escape
 * sequence or a surrogate pair.  An empty text gives one empty part.
 *
 * *count receives the number of parts the text takes (also when that is
 * more than max_parts or capacity).  The parts are written only on
 * SMS_PDU_OK: SMS_PDU_ERR_TOO_MANY_PARTS when the text needs more than
 * max_parts, SMS_PDU_ERR_NO_ROOM when it needs more than capacity (so a
 * capacity of 0 asks for the count), and any other error leave parts as
 * they were and *count at 0. */
SMSUTIL_API int sms_pdu_encode(const char *utf8, size_t len, const sms_pdu_encode_options *options, sms_pdu_part *parts,
                               size_t capacity, size_t *count);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_PDU_H */
