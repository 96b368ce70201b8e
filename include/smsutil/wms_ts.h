/* GSM/UMTS transport layer: TPDU client records, their constants and the
 * codec's result codes.  All records are packed: fields follow one another
 * with no padding and multi-octet integers are stored least significant
 * octet first.  Clear a record to all-zero octets before handing it to a
 * decoder or filling it for an encoder. */
#ifndef SMSUTIL_WMS_TS_H
#define SMSUTIL_WMS_TS_H

#include <stdint.h>

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

/* Capacities. */
#define WMS_MAX_LEN 255            /* octets of a TPDU and of decoded text */
#define WMS_ADDRESS_MAX_DIGITS 20  /* digits or characters of an address */
#define WMS_ADDRESS_DIGITS_SIZE 32 /* slots of wms_address.digits */
#define WMS_UDH_MAX_IES 7          /* header elements per user data */
#define WMS_UDH_OTHER_SIZE 137     /* data of an element of another kind */
#define WMS_UDH_EO_CONTENT_SIZE 136
#define WMS_UDH_VAR_PICTURE_SIZE 134
#define WMS_UDH_USER_DEF_SOUND_SIZE 128
#define WMS_UDH_LARGE_PICTURE_SIZE 128
#define WMS_UDH_SMALL_PICTURE_SIZE 32
#define WMS_UDH_ANIM_NUM_BITMAPS 4
#define WMS_UDH_LARGE_BITMAP_SIZE 32
#define WMS_UDH_SMALL_BITMAP_SIZE 8
#define WMS_COMMAND_DATA_SIZE 255

/* Result codes of the TPDU encoders and decoders. */
#define WMS_TS_STATUS_OK 0
#define WMS_TS_STATUS_BAD_ADDRESS 100
#define WMS_TS_STATUS_BAD_USER_DATA_LENGTH 101
#define WMS_TS_STATUS_BAD_TIME 102
#define WMS_TS_STATUS_BAD_VALIDITY_FORMAT 201
typedef uint32_t wms_status_e_type;

/* wms_address.digit_mode */
#define WMS_DIGIT_MODE_BCD 0
#define WMS_DIGIT_MODE_CHAR 1

/* wms_address.number_type: the 3-bit type of number */
#define WMS_NUMBER_UNKNOWN 0
#define WMS_NUMBER_INTERNATIONAL 1
#define WMS_NUMBER_NATIONAL 2
#define WMS_NUMBER_NETWORK 3
#define WMS_NUMBER_SUBSCRIBER 4
#define WMS_NUMBER_ALPHANUMERIC 5
#define WMS_NUMBER_ABBREVIATED 6
#define WMS_NUMBER_RESERVED_7 7

/* wms_gw_dcs.msg_class */
#define WMS_MESSAGE_CLASS_0 0
#define WMS_MESSAGE_CLASS_1 1
#define WMS_MESSAGE_CLASS_2 2
#define WMS_MESSAGE_CLASS_3 3
#define WMS_MESSAGE_CLASS_NONE 4

/* wms_gw_dcs.alphabet */
#define WMS_ALPHABET_GSM7 0
#define WMS_ALPHABET_8BIT 1
#define WMS_ALPHABET_UCS2 2

/* wms_gw_dcs.coding_group */
#define WMS_DCS_GENERAL 0
#define WMS_DCS_MWI_DISCARD 1
#define WMS_DCS_MWI_STORE 2
#define WMS_DCS_CLASS_GROUP 3

/* wms_gw_dcs.mwi_kind */
#define WMS_MWI_VOICEMAIL 0
#define WMS_MWI_FAX 1
#define WMS_MWI_EMAIL 2
#define WMS_MWI_OTHER 3

/* wms_gw_validity.format: the TP-VPF value */
#define WMS_VP_NONE 0
#define WMS_VP_ENHANCED 1
#define WMS_VP_RELATIVE 2
#define WMS_VP_ABSOLUTE 3

/* wms_raw_tpdu.tpdu_type */
#define WMS_TPDU_TYPE_DELIVER 0
#define WMS_TPDU_TYPE_SUBMIT 3
#define WMS_TPDU_TYPE_COMMAND 7

/* wms_udh.header_id: information element identifiers */
#define WMS_UDH_CONCAT_8BIT_REF 0x00
#define WMS_UDH_SPECIAL_SM 0x01
#define WMS_UDH_CONCAT_16BIT_REF 0x08
#define WMS_UDH_TEXT_FORMATTING 0x0A
#define WMS_UDH_PRE_DEF_SOUND 0x0B
#define WMS_UDH_USER_DEF_SOUND 0x0C
#define WMS_UDH_PRE_DEF_ANIM 0x0D
#define WMS_UDH_LARGE_ANIM 0x0E
#define WMS_UDH_SMALL_ANIM 0x0F
#define WMS_UDH_LARGE_PICTURE 0x10
#define WMS_UDH_SMALL_PICTURE 0x11
#define WMS_UDH_VAR_PICTURE 0x12
#define WMS_UDH_USER_PROMPT 0x13
#define WMS_UDH_EO 0x14
#define WMS_UDH_RFC822 0x20
#define WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT 0x24
#define WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT 0x25
/* Any identifier not listed above; stored under its own identifier. */
#define WMS_UDH_OTHER 0xFFFF
typedef uint16_t wms_udh_id_e_type;

#pragma pack(push, 1)

typedef struct wms_address_s {
    uint8_t digit_mode;
    uint8_t number_mode;
    uint8_t number_type;
    uint8_t number_plan;
    uint8_t number_of_digits;
    uint8_t digits[WMS_ADDRESS_DIGITS_SIZE];
} wms_address;

typedef struct wms_gw_dcs_s {
    uint8_t msg_class;
    uint8_t is_compressed;
    uint8_t alphabet;
    uint32_t coding_group;
    uint8_t mwi_active;
    uint8_t mwi_kind;
} wms_gw_dcs;

typedef struct wms_timestamp_s {
    uint8_t year;
    uint8_t month;
    uint8_t day;
    uint8_t hour;
    uint8_t minute;
    uint8_t second;
    int8_t timezone;
} wms_timestamp;

typedef struct wms_gw_validity_s {
    uint8_t format;
    wms_timestamp time;
} wms_gw_validity;

typedef struct wms_udh_concat_8_s {
    uint8_t msg_ref;
    uint8_t total_sm;
    uint8_t seq_num;
} wms_udh_concat_8;

typedef struct wms_udh_special_sm_s {
    uint32_t msg_waiting;
    uint8_t mwi_kind;
    uint8_t message_count;
} wms_udh_special_sm;

typedef struct wms_udh_concat_16_s {
    uint16_t msg_ref;
    uint8_t total_sm;
    uint8_t seq_num;
} wms_udh_concat_16;

typedef struct wms_udh_text_formatting_s {
    uint8_t start_position;
    uint8_t text_formatting_length;
    uint8_t alignment;
    uint8_t font_size;
    uint8_t style_bold;
    uint8_t style_italic;
    uint8_t style_underlined;
    uint8_t style_strikethrough;
} wms_udh_text_formatting;

typedef struct wms_udh_pre_def_sound_s {
    uint8_t position;
    uint8_t snd_number;
} wms_udh_pre_def_sound;

typedef struct wms_udh_user_def_sound_s {
    uint8_t data_length;
    uint8_t position;
    uint8_t user_def_sound[WMS_UDH_USER_DEF_SOUND_SIZE];
} wms_udh_user_def_sound;

typedef struct wms_udh_pre_def_anim_s {
    uint8_t position;
    uint8_t animation_number;
} wms_udh_pre_def_anim;

typedef struct wms_udh_large_anim_s {
    uint8_t position;
    uint8_t data[WMS_UDH_ANIM_NUM_BITMAPS][WMS_UDH_LARGE_BITMAP_SIZE];
} wms_udh_large_anim;

typedef struct wms_udh_small_anim_s {
    uint8_t position;
    uint8_t data[WMS_UDH_ANIM_NUM_BITMAPS][WMS_UDH_SMALL_BITMAP_SIZE];
} wms_udh_small_anim;

typedef struct wms_udh_large_picture_s {
    uint8_t position;
    uint8_t data[WMS_UDH_LARGE_PICTURE_SIZE];
} wms_udh_large_picture;

typedef struct wms_udh_small_picture_s {
    uint8_t position;
    uint8_t data[WMS_UDH_SMALL_PICTURE_SIZE];
} wms_udh_small_picture;

typedef struct wms_udh_var_picture_s {
    uint8_t position;
    uint8_t width;
    uint8_t height;
    uint8_t data[WMS_UDH_VAR_PICTURE_SIZE];
} wms_udh_var_picture;

typedef struct wms_udh_user_prompt_s {
    uint8_t number_of_objects;
} wms_udh_user_prompt;

typedef struct wms_udh_eo_s {
    uint8_t content_length;
    uint8_t content[WMS_UDH_EO_CONTENT_SIZE];
    uint8_t first_segment;
    uint8_t reference;
    uint16_t length;
    uint8_t control;
    uint32_t type;
    uint16_t position;
} wms_udh_eo;

typedef struct wms_udh_rfc822_s {
    uint8_t header_length;
} wms_udh_rfc822;

typedef struct wms_udh_nat_lang_s {
    uint8_t shift_id;
    uint8_t length;
    uint8_t national_language;
} wms_udh_nat_lang;

typedef struct wms_udh_other_s {
    uint16_t other_id;
    uint8_t header_length;
    uint8_t data[WMS_UDH_OTHER_SIZE];
} wms_udh_other;

typedef struct wms_udh_s {
    uint16_t header_id;
    union {
        wms_udh_concat_8 concat_8;
        wms_udh_special_sm special_sm;
        wms_udh_concat_16 concat_16;
        wms_udh_text_formatting text_formatting;
        wms_udh_pre_def_sound pre_def_sound;
        wms_udh_user_def_sound user_def_sound;
        wms_udh_pre_def_anim pre_def_anim;
        wms_udh_large_anim large_anim;
        wms_udh_small_anim small_anim;
        wms_udh_large_picture large_picture;
        wms_udh_small_picture small_picture;
        wms_udh_var_picture var_picture;
        wms_udh_user_prompt user_prompt;
        wms_udh_eo eo;
        wms_udh_rfc822 rfc822;
        wms_udh_nat_lang nat_lang_ss; /* WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT */
        wms_udh_nat_lang nat_lang_ls; /* WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT */
        wms_udh_other other;
    } u;
} wms_udh;

typedef struct wms_gw_user_data_s {
    uint8_t num_headers;
    wms_udh headers[WMS_UDH_MAX_IES];
    uint16_t sm_len;
    uint8_t sm_data[WMS_MAX_LEN];
} wms_gw_user_data;

typedef struct wms_gw_deliver_s {
    uint8_t more_msgs_to_send;
    uint8_t reply_path_present;
    uint8_t user_data_header_present;
    uint8_t status_report_indication;
    wms_address address;
    uint8_t pid;
    wms_gw_dcs dcs;
    wms_timestamp timestamp;
    wms_gw_user_data user_data;
} wms_gw_deliver;

typedef struct wms_gw_submit_s {
    uint8_t reject_duplicates;
    uint8_t reply_path_present;
    uint8_t user_data_header_present;
    uint8_t status_report_request;
    uint32_t message_reference;
    wms_address address;
    uint8_t pid;
    wms_gw_dcs dcs;
    wms_gw_validity validity;
    wms_gw_user_data user_data;
} wms_gw_submit;

typedef struct wms_gw_status_report_s {
    uint8_t user_data_header_present;
    uint8_t more_msgs_to_send;
    uint8_t status_report_qualifier;
    uint32_t message_reference;
    wms_address address;
    wms_timestamp timestamp;
    wms_timestamp discharge_time;
    uint8_t tp_status;
    uint32_t parameter_indicator;
    uint8_t pid;
    wms_gw_dcs dcs;
    wms_gw_user_data user_data;
} wms_gw_status_report;

typedef struct wms_gw_command_s {
    uint8_t user_data_header_present;
    uint8_t status_report_request;
    uint32_t message_reference;
    uint32_t pid;
    uint8_t command_type;
    uint32_t message_number;
    wms_address address;
    uint8_t command_data_length;
    uint8_t command_data[WMS_COMMAND_DATA_SIZE];
} wms_gw_command;

typedef struct wms_raw_tpdu_s {
    uint8_t format;
    uint8_t tpdu_type;
    uint32_t len;
    uint8_t data[WMS_MAX_LEN];
} wms_raw_tpdu;

#pragma pack(pop)

/* Sizes that C and C++ callers must agree on; checked by the tests. */
#define WMS_SIZEOF_ADDRESS 37
#define WMS_SIZEOF_GW_DCS 9
#define WMS_SIZEOF_TIMESTAMP 7
#define WMS_SIZEOF_GW_VALIDITY 8
#define WMS_SIZEOF_UDH 150
#define WMS_SIZEOF_GW_USER_DATA 1308

/* ---- Field codecs: BCD helpers and relative durations ---- */

/* Two BCD digits of v (0..99), tens in the high nibble; not range-checked. */
SMSUTIL_API uint8_t wms_ts_int_to_bcd(uint8_t v);
/* 1 and the value when both nibbles are 0..9; otherwise 0 and *value = 0. */
SMSUTIL_API uint8_t wms_ts_bcd_to_int(uint8_t bcd, uint8_t *value);
/* Digit values of the first count characters ('*' 10, '#' 11); no terminator. */
SMSUTIL_API void wms_ts_ascii_to_bcd(const char *text, uint8_t count, uint8_t *digits);
/* Characters of the first count digit values; no terminator. */
SMSUTIL_API void wms_ts_bcd_to_ascii(const uint8_t *digits, uint8_t count, char *text);
/* The relative TP-VP octet of a duration held in a wms_timestamp. */
SMSUTIL_API uint8_t wms_ts_encode_relative_time(const wms_timestamp *duration);
/* The duration of a relative TP-VP octet; the record is cleared first. */
SMSUTIL_API void wms_ts_decode_relative_time(uint8_t vp, wms_timestamp *duration);

/* ---- Field codecs: time stamps, validity, data coding scheme, addresses ----
 * Encoders write into out and return the octets written; decoders read from
 * the field's first octet and return the octets consumed; 0 means failure. */

/* The seven TP-SCTS octets of time into out; 0 at the first field out of range. */
SMSUTIL_API uint8_t wms_ts_encode_timestamp(const wms_timestamp *time, uint8_t *out);
/* Seven time stamp octets into time; bad fields become 0 or 1.  Returns 7. */
SMSUTIL_API uint8_t wms_ts_decode_timestamp(const uint8_t *data, wms_timestamp *time);
/* TP-VP by validity->format: 1 (relative), 7 (absolute) or 0 (none, enhanced, bad time). */
SMSUTIL_API uint8_t wms_ts_encode_gw_validity(const wms_gw_validity *validity, uint8_t *out);
/* TP-VP for the format already in validity->format; 1, 7, or 0 (none clears the record). */
SMSUTIL_API uint8_t wms_ts_decode_gw_validity(const uint8_t *data, wms_gw_validity *validity);
/* The TP-DCS octet of dcs into *out; returns 1. */
SMSUTIL_API uint8_t wms_ts_encode_dcs(const wms_gw_dcs *dcs, uint8_t *out);
/* The TP-DCS octet *data into dcs; returns 1. */
SMSUTIL_API uint8_t wms_ts_decode_dcs(const uint8_t *data, wms_gw_dcs *dcs);
/* Length, type and digits of address into out (room for 22 octets); 0 above 20 digits. */
SMSUTIL_API uint8_t wms_ts_encode_address(const wms_address *address, uint8_t *out);
/* An address field from its length octet; 0 when that octet is above 20. */
SMSUTIL_API uint8_t wms_ts_decode_address(const uint8_t *data, wms_address *address);

/* ---- User data header ----
 * The per-element encoders read the element that the header encoder is
 * encoding and the per-element decoders write the slot the header decoder
 * is filling; each thread has its own such pair. */

/* UDHL and up to 7 elements into out (room for WMS_MAX_LEN octets); UDHL, 0 without elements. */
SMSUTIL_API uint8_t wms_ts_encode_user_data_header(uint8_t count, const wms_udh *headers, uint8_t *out);
/* A header from its UDHL octet into up to 7 slots; UDHL, or 0 when refused (udhl is not read). */
SMSUTIL_API uint8_t wms_ts_decode_user_data_header(uint8_t udhl, const uint8_t *data, uint8_t *count, wms_udh *headers);
/* Per-element encoders: IEI, IEDL and data at out; the octets written (0: left out). */
SMSUTIL_API uint8_t wms_ts_encode_udh_special_sm(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_text_formatting(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_pre_def_sound(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_user_def_sound(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_pre_def_anim(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_large_anim(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_small_anim(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_large_picture(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_small_picture(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_var_picture(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_user_prompt(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_eo(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_rfc822(uint8_t *out);
SMSUTIL_API uint8_t wms_ts_encode_udh_other(uint8_t *out);
/* Per-element decoders, from the IEDL octet; octets consumed with IEDL, 0 when IEDL is 0
 * or announces less than the element needs. */
SMSUTIL_API uint8_t wms_ts_decode_udh_special_sm(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_text_formatting(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_pre_def_sound(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_user_def_sound(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_pre_def_anim(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_large_anim(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_small_anim(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_large_picture(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_small_picture(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_var_picture(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_user_prompt(const uint8_t *iedl);
SMSUTIL_API uint8_t wms_ts_decode_udh_rfc822(const uint8_t *iedl);
/* Extended object from the IEDL octet; first_segment 1 reads the seven object octets first. */
SMSUTIL_API uint8_t wms_ts_decode_udh_eo(const uint8_t *iedl, uint8_t first_segment);
/* Element of any other kind from its IEI octet; IEDL + 2, 0 above 137 data octets. */
SMSUTIL_API uint8_t wms_ts_decode_udh_other(const uint8_t *iei);

/* ---- User data and GSM 7-bit packing ---- */

/* count septets after fill (0..6) zero bits into at most capacity octets; octets written. */
SMSUTIL_API uint16_t wms_ts_pack_gw_7_bit_chars(const uint8_t *septets, uint16_t count, uint16_t fill,
                                                uint16_t capacity, uint8_t *out);
/* count characters (at most capacity) from packed octets; start code 0, or 8 - fill bits.
 * Returns the octets consumed. */
SMSUTIL_API uint8_t wms_ts_unpack_gw_7_bit_chars(const uint8_t *packed, uint8_t count, uint8_t capacity,
                                                 uint16_t start_code, uint8_t *out);
/* TP-UDL and TP-UD of data into out (room for WMS_MAX_LEN octets); octets written. */
SMSUTIL_API uint8_t wms_ts_encode_gw_user_data(const wms_gw_dcs *dcs, const wms_gw_user_data *data, uint8_t *out);
/* TP-UD of udl units into user_data; octets of TP-UD consumed. */
SMSUTIL_API uint8_t wms_ts_decode_gw_user_data(const wms_gw_dcs *dcs, uint8_t udl, const uint8_t *data,
                                               uint8_t header_present, wms_gw_user_data *user_data);

/* ---- TPDUs: result codes WMS_TS_STATUS_* ----
 * Decoders read raw->data up to raw->len (at most WMS_MAX_LEN) into a
 * cleared record; encoders fill raw->data, raw->len and raw->tpdu_type. */

SMSUTIL_API wms_status_e_type wms_ts_decode_deliver(const wms_raw_tpdu *raw, wms_gw_deliver *msg);
SMSUTIL_API wms_status_e_type wms_ts_decode_submit(const wms_raw_tpdu *raw, wms_gw_submit *msg);
SMSUTIL_API wms_status_e_type wms_ts_decode_status_report(const wms_raw_tpdu *raw, wms_gw_status_report *msg);
SMSUTIL_API wms_status_e_type wms_ts_encode_deliver(const wms_gw_deliver *msg, wms_raw_tpdu *raw);
SMSUTIL_API wms_status_e_type wms_ts_encode_submit(const wms_gw_submit *msg, wms_raw_tpdu *raw);
/* 101 when command_data_length octets do not fit in the TPDU. */
SMSUTIL_API wms_status_e_type wms_ts_encode_command(const wms_gw_command *msg, wms_raw_tpdu *raw);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_WMS_TS_H */
