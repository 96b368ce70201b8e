/* CDMA bearer data: the client records, bit-field packing, the bearer-data
 * codec, the IS-91 extended protocol payload, DTMF digits and packed ASCII.
 *
 * Nothing here logs, allocates or keeps state between calls: every function
 * may run in several threads at once on distinct records.  The records are
 * packed like the transport records (no padding, multi-octet integers least
 * significant octet first); clear a record to all-zero octets before handing
 * it to a decoder or filling it for an encoder. */
#ifndef SMSUTIL_WMS_CDMA_H
#define SMSUTIL_WMS_CDMA_H

#include <stdint.h>

#include "smsutil/smsutil_export.h"
#include "smsutil/wms_ts.h"

SMSUTIL_BEGIN_DECLS

/* Capacities. */
#define WMS_CDMA_USER_DATA_MAX 229      /* units of wms_cdma_user_data.data */
#define WMS_CDMA_CALLBACK_MAX_DIGITS 32 /* digits a call-back number carries */
#define WMS_CDMA_BEARER_DATA_MAX 255    /* octets of encoded bearer data */

/* Result of the IS-91 payload codec (and the bearer-data codec that uses
 * it) for a message type other than 130 to 133.  The bearer-data codec
 * otherwise returns WMS_TS_STATUS_OK, WMS_TS_STATUS_BAD_ADDRESS (100:
 * malformed or oversized bearer data) and WMS_TS_STATUS_BAD_USER_DATA_LENGTH
 * (101: user data of more than 229 units or inconsistent counts). */
#define WMS_TS_STATUS_BAD_IS91EP_TYPE 4

/* wms_cdma_bearer_data.mask: bit n stands for subparameter n. */
#define WMS_MASK_BD_MSG_ID 0x0001u
#define WMS_MASK_BD_USER_DATA 0x0002u
#define WMS_MASK_BD_USER_RESP 0x0004u
#define WMS_MASK_BD_MC_TIME 0x0008u
#define WMS_MASK_BD_VALID_ABS 0x0010u
#define WMS_MASK_BD_VALID_REL 0x0020u
#define WMS_MASK_BD_DEFER_ABS 0x0040u
#define WMS_MASK_BD_DEFER_REL 0x0080u
#define WMS_MASK_BD_PRIORITY 0x0100u
#define WMS_MASK_BD_PRIVACY 0x0200u
#define WMS_MASK_BD_REPLY_OPTION 0x0400u
#define WMS_MASK_BD_NUM_OF_MSGS 0x0800u
#define WMS_MASK_BD_ALERT 0x1000u
#define WMS_MASK_BD_LANGUAGE 0x2000u
#define WMS_MASK_BD_CALLBACK 0x4000u
#define WMS_MASK_BD_DISPLAY_MODE 0x8000u

/* wms_cdma_user_data.encoding (5 bits on the air).  2 and 3 are 7-bit text
 * kept packed in data; every value other than 1, 2 and 3 means octets. */
#define WMS_ENCODING_OCTET 0
#define WMS_ENCODING_IS91EP 1
#define WMS_ENCODING_ASCII 2
#define WMS_ENCODING_IA5 3

/* wms_cdma_user_data.is91ep_type: IS-91 extended protocol message types. */
#define WMS_IS91EP_VOICE_MAIL 130         /* 6-bit: message count, priority, text */
#define WMS_IS91EP_SHORT_MESSAGE_FULL 131 /* 6-bit text, decoded as 133 */
#define WMS_IS91EP_CLI_ORDER 132          /* 4-bit call-back number digits */
#define WMS_IS91EP_SHORT_MESSAGE 133      /* 6-bit text */

#pragma pack(push, 1)

typedef struct wms_cdma_message_id_s {
    uint32_t type;      /* 4 bits used */
    uint32_t id_number; /* 16 bits used */
} wms_cdma_message_id;

typedef struct wms_cdma_user_data_s {
    uint32_t encoding;    /* 5 bits used */
    uint32_t is91ep_type; /* used only with encoding 1 */
    uint8_t data_len;     /* units in data */
    uint8_t padding_bits; /* packed 7-bit text: unused low bits of the last octet */
    uint8_t data[WMS_CDMA_USER_DATA_MAX];
    uint8_t num_fields; /* characters as carried on the air */
} wms_cdma_user_data;

typedef struct wms_cdma_bearer_data_s {
    uint32_t mask;
    wms_cdma_message_id message_id;
    wms_cdma_user_data user_data;
    uint8_t user_response;
    wms_timestamp mc_time;
    wms_timestamp validity_absolute;
    wms_timestamp validity_relative; /* a duration */
    wms_timestamp deferred_absolute;
    wms_timestamp deferred_relative; /* a duration */
    uint32_t priority;               /* 2 bits used */
    uint32_t privacy;                /* 2 bits used */
    uint8_t user_ack_requested;
    uint8_t delivery_ack_requested;
    uint8_t num_messages; /* 0 to 99 */
    uint8_t alert_on_delivery;
    uint32_t language; /* 8 bits used */
    wms_address callback;
    uint32_t display_mode; /* 2 bits used */
} wms_cdma_bearer_data;

#pragma pack(pop)

/* Sizes that C and C++ callers must agree on; checked by the tests. */
#define WMS_SIZEOF_CDMA_USER_DATA 240
#define WMS_SIZEOF_CDMA_BEARER_DATA 345

/* ---- Bit fields ----
 * Bit 0 is the most significant bit of octet 0; a field of n bits at
 * position p covers p .. p+n-1, most significant bit first, and touches no
 * octet beyond the one holding its last bit.  The buffers carry no length:
 * the caller keeps every field inside its buffer.  A count of 0 touches
 * nothing (and unpacks 0); a count above 8 (b_) or 16 (w_) is taken as that
 * maximum. */

/* Writes the low n bits of value; other bits of the octets are kept. */
SMSUTIL_API void b_packb(uint8_t value, uint8_t *dest, uint16_t pos, uint16_t n);
SMSUTIL_API void b_packw(uint16_t value, uint8_t *dest, uint16_t pos, uint16_t n);
/* The n bits at pos as an unsigned number. */
SMSUTIL_API uint8_t b_unpackb(const uint8_t *src, uint16_t pos, uint16_t n);
SMSUTIL_API uint16_t b_unpackw(const uint8_t *src, uint16_t pos, uint16_t n);

/* ---- Bearer data ---- */

/* Encodes the subparameters named by bd->mask into raw->data (all 255
 * octets cleared first); raw->format is set to 0 and raw->len to the octets
 * written.  On a failure raw->len holds the octets of the subparameters
 * completed before it. */
SMSUTIL_API wms_status_e_type wms_ts_encode_CDMA_bd(const wms_cdma_bearer_data *bd, wms_raw_tpdu *raw);
/* Decodes raw->len octets (at most 255 are read) into bd; bd->mask names
 * the subparameters found.  On a failure bd is partly filled. */
SMSUTIL_API wms_status_e_type wms_ts_decode_CDMA_bd(const wms_raw_tpdu *raw, wms_cdma_bearer_data *bd);

/* ---- IS-91 extended protocol payload ---- */

/* Fills out->data, num_fields and data_len with the payload values of
 * bd->user_data.is91ep_type; at most 229 values are stored.  0, or
 * WMS_TS_STATUS_BAD_IS91EP_TYPE with nothing filled. */
SMSUTIL_API wms_status_e_type wms_ts_encode_IS91EP_payload(const wms_cdma_bearer_data *bd, wms_cdma_user_data *out);
/* Rebuilds the fields of bd that the payload of the given type carries from
 * its len values (read from data).  0, or WMS_TS_STATUS_BAD_IS91EP_TYPE. */
SMSUTIL_API wms_status_e_type wms_ts_decode_IS91EP_payload(uint32_t type, uint8_t len, const uint8_t *data,
                                                           wms_cdma_bearer_data *bd);

/* ---- DTMF digits and packed ASCII ---- */

/* count DTMF codes to the characters 0-9 * #, no terminator.  The count, or
 * 0 at the first code without a digit (the characters before it are
 * written). */
SMSUTIL_API uint8_t wms_ts_dtmf2ascii(uint8_t count, const uint8_t *codes, char *text);
/* The DTMF codes of a zero-terminated text of 0-9 * #.  The text length
 * modulo 256, or 0 at the first other character. */
SMSUTIL_API uint8_t wms_ts_ascii2dtmf(const char *text, uint8_t *codes);
/* Packs the low 7 bits of each character of text (its length modulo 256
 * characters) from bit 0 of packed, zero-filled to an octet boundary.
 * Returns the characters packed; *octets and *padding_bits receive the
 * octets used and the fill bits of the last one. */
SMSUTIL_API uint8_t wms_ts_pack_ascii(const char *text, uint8_t *packed, uint8_t *octets, uint8_t *padding_bits);
/* Unpacks at most max_count (and at most ud->num_fields) 7-bit characters
 * from ud->data into text, followed by a zero byte (text holds max_count + 1
 * bytes).  Returns the characters unpacked. */
SMSUTIL_API uint8_t wms_ts_unpack_ascii(const wms_cdma_user_data *ud, uint8_t max_count, char *text);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_WMS_CDMA_H */
