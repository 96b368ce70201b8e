/* Reassembly of long messages.
 *
 * A long message reaches the SMS service one part at a time, each part
 * carrying the reference, the total and its own number.  A store collects
 * the parts of many messages at once, puts them in order, keeps the first
 * copy of a part that arrives twice and hands the caller the joined message
 * (one UTF-8 text, a surrogate pair split between two parts made whole
 * again) as soon as its last part arrives.
 *
 * Bounds: a store lives entirely in a buffer the caller supplies, sized by
 * sms_reasm_storage_size() for at most max_messages pending messages of at
 * most max_parts parts and max_text_bytes bytes of text each.  Nothing in
 * this unit allocates, keeps static state, reads a clock or writes a log
 * line: the caller passes its own clock (seconds from a monotonic source).
 *
 * No part is ever dropped in silence.  Every part handed to sms_reasm_add()
 * is answered with one result, and every pending message leaves the store
 * either joined (SMS_REASM_COMPLETE) or through the caller's hand-over
 * function: when it has waited timeout_seconds (sms_reasm_expire), or when
 * the store is full and a new message needs its room (the oldest pending one
 * is evicted).  The pending messages survive a restart as a saved image
 * (sms_reasm_save_state, sms_reasm_load_state).
 *
 * Threads: a store is used by one thread at a time; two stores share
 * nothing and may be used by two threads at once.  The hand-over function
 * must not call back into the store that called it. */
#ifndef SMSUTIL_SMS_REASSEMBLY_H
#define SMSUTIL_SMS_REASSEMBLY_H

#include <stddef.h>
#include <stdint.h>

#include "smsutil/sms_api.h"
#include "smsutil/sms_pdu.h"
#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

#define SMS_REASM_MAX_PARTS 255
#define SMS_REASM_ADDRESS_SIZE 48 /* an alphanumeric sender in UTF-8, with its NUL */
/* The store buffer must be aligned to this many bytes. */
#define SMS_REASM_ALIGNMENT 8

/* Results of sms_reasm_add (zero or positive). */
#define SMS_REASM_STORED 0    /* kept; its message still lacks parts */
#define SMS_REASM_COMPLETE 1  /* the message is complete and written to the caller's record */
#define SMS_REASM_DUPLICATE 2 /* that part is already held; the first copy is kept, nothing changed */
#define SMS_REASM_REFUSED 3   /* number 0 or above total, total 0 or above max_parts, text too long */
#define SMS_REASM_FULL                                                  \
    4 /* the store was full: the oldest pending message was handed over \
         as evicted, then the part was kept */
#define SMS_REASM_TEXT_TOO_LONG                                    \
    5 /* the joined text does not fit the caller's record; nothing \
         changed, text_length says how many bytes it needs */

/* Failures of every function (negative). */
#define SMS_REASM_ERR_ARGUMENT (-1)      /* a missing pointer or a bound out of range */
#define SMS_REASM_ERR_TOO_SMALL (-2)     /* the caller's buffer is too small */
#define SMS_REASM_ERR_ALIGNMENT (-3)     /* the store buffer is not aligned to SMS_REASM_ALIGNMENT */
#define SMS_REASM_ERR_STATE_DAMAGED (-4) /* a saved state is truncated or fails its checksum */
#define SMS_REASM_ERR_STATE_VERSION (-5) /* a saved state of a format this library does not read */
#define SMS_REASM_ERR_STATE_FIT (-6)     /* a saved state holds more than this store's bounds allow */
#define SMS_REASM_ERR_NOT_EMPTY (-7)     /* a state is loaded only into an empty store */

/* Which side of the conversation a part belongs to; parts of a received
 * and of a stored outgoing message never join. */
#define SMS_REASM_RECEIVED 0
#define SMS_REASM_STORED_OUTGOING 1

/* Why a message is handed over. */
#define SMS_REASM_PENDING 0 /* sms_reasm_visit: still pending, stays in the store */
#define SMS_REASM_EXPIRED 1
#define SMS_REASM_EVICTED 2

typedef struct sms_reasm_time_s {
    uint16_t year; /* four digits; 0 when the message has no time stamp */
    uint8_t month;
    uint8_t day;
    uint8_t hour;
    uint8_t minute;
    uint8_t second;
    int8_t zone_quarters; /* offset from UTC in quarter hours, when has_zone is 1 */
    uint8_t has_zone;
} sms_reasm_time;

/* One part (or one whole message) as any decoder describes it.  The text is
 * not copied until sms_reasm_add keeps it. */
typedef struct sms_reasm_part_s {
    uint8_t kind;           /* SMS_REASM_RECEIVED or SMS_REASM_STORED_OUTGOING */
    uint8_t concatenated;   /* 0: a whole message; reference, total and number are not read */
    uint8_t reference_bits; /* 8 or 16: references of the two sizes never join */
    uint8_t total;
    uint8_t number; /* 1 .. total */
    uint8_t coding; /* SMS_CONTENT_* */
    uint16_t reference;
    char address[SMS_REASM_ADDRESS_SIZE]; /* originator, or destination of a stored one */
    char service_centre[SMS_REASM_ADDRESS_SIZE];
    sms_reasm_time time;
    const char *text; /* UTF-8 (8-bit data for SMS_CONTENT_8BIT), text_length bytes */
    uint32_t text_length;
} sms_reasm_part;

typedef struct sms_reasm_part_info_s {
    uint8_t present;
    uint8_t coding;
    uint16_t length; /* text bytes of the part as it arrived */
} sms_reasm_part_info;

/* A joined message, or a pending one being handed over.  The caller sets
 * text and text_capacity (bytes, including room for the NUL) before
 * sms_reasm_add; a handed-over message points text into the store, valid
 * until the hand-over function returns. */
typedef struct sms_reasm_message_s {
    uint8_t kind;
    uint8_t concatenated;
    uint8_t reference_bits;
    uint8_t total; /* 1 for a message that was not cut */
    uint16_t reference;
    uint8_t part_count; /* parts present */
    uint8_t missing_count;
    uint8_t missing[SMS_REASM_MAX_PARTS];           /* numbers not received, ascending */
    sms_reasm_part_info parts[SMS_REASM_MAX_PARTS]; /* parts[n - 1] describes part n */
    char address[SMS_REASM_ADDRESS_SIZE];
    char service_centre[SMS_REASM_ADDRESS_SIZE];
    sms_reasm_time time; /* of the lowest-numbered part present */
    char *text;          /* the parts present, in order, NUL-terminated */
    uint32_t text_capacity;
    uint32_t text_length; /* without the NUL */
} sms_reasm_message;

/* Called once for every message that leaves the store without being
 * completed (reason EXPIRED or EVICTED), or for every pending message
 * during sms_reasm_visit (reason PENDING). */
typedef void (*sms_reasm_handover_fn)(void *context, const sms_reasm_message *message, int reason);

typedef struct sms_reasm_config_s {
    uint32_t max_messages;          /* pending messages held at once, 1 .. 65536 */
    uint32_t max_parts;             /* parts per message, 1 .. 255 */
    uint32_t max_text_bytes;        /* text bytes per message, 1 .. 1048576 */
    uint32_t timeout_seconds;       /* age at which sms_reasm_expire hands a message over; 0: never */
    sms_reasm_handover_fn handover; /* required */
    void *handover_context;
} sms_reasm_config;

typedef struct sms_reasm_store_s sms_reasm_store;

typedef struct sms_reasm_stats_s {
    uint32_t pending_messages;
    uint32_t pending_parts;
    uint32_t pending_bytes;
} sms_reasm_stats;

/* Bytes a store of these bounds needs; 0 when a bound is out of range. */
SMSUTIL_API size_t sms_reasm_storage_size(const sms_reasm_config *config);

/* Builds an empty store inside buffer and sets *store.  The buffer belongs
 * to the store until the caller stops using it; there is nothing to free. */
SMSUTIL_API int sms_reasm_init(sms_reasm_store **store, void *buffer, size_t size, const sms_reasm_config *config);

/* Describes a record filled by ParseSms as a part.  The part's text points
 * into message->content, so the record must outlive the part. */
SMSUTIL_API int sms_reasm_part_from_message(const SmsMessage *message, sms_reasm_part *part);

/* Describes a record filled by sms_pdu_decode as a part: a SUBMIT is a
 * stored outgoing one, every other kind a received one.  The text (the
 * octets after the header for 8-bit data) points into the record, which
 * must outlive the part.  Two-digit years 00 to 95 are taken as 2000 to
 * 2095, 96 to 99 as 1996 to 1999. */
SMSUTIL_API int sms_reasm_part_from_record(const sms_pdu_record *record, sms_reasm_part *part);

/* Offers one part; now is the caller's clock in seconds.  out is written
 * only for SMS_REASM_COMPLETE (and text_length for SMS_REASM_TEXT_TOO_LONG).
 * A part that is not concatenated, or is the only part of its message,
 * comes back complete at once and is never kept. */
SMSUTIL_API int sms_reasm_add(sms_reasm_store *store, const sms_reasm_part *part, uint64_t now, sms_reasm_message *out);

/* Hands over and frees every message whose first part arrived
 * timeout_seconds or more before now.  Returns how many, or a failure. */
SMSUTIL_API int sms_reasm_expire(sms_reasm_store *store, uint64_t now);

/* Hands every pending message to the hand-over function with reason
 * SMS_REASM_PENDING, oldest first, and keeps them.  Returns how many. */
SMSUTIL_API int sms_reasm_visit(sms_reasm_store *store);

SMSUTIL_API int sms_reasm_get_stats(const sms_reasm_store *store, sms_reasm_stats *stats);

/* The pending messages as a versioned, checksummed image, ages measured
 * against now so that a clock restarted at boot does not age them.
 * sms_reasm_state_size gives the bytes needed; *written the bytes used. */
SMSUTIL_API size_t sms_reasm_state_size(const sms_reasm_store *store);
SMSUTIL_API int sms_reasm_save_state(const sms_reasm_store *store, uint64_t now, void *buffer, size_t size,
                                     size_t *written);

/* Loads an image into an empty store.  A damaged, truncated or foreign
 * image, or one that does not fit this store's bounds, is refused whole
 * and leaves the store empty.  now is the clock the ages are counted back
 * from: the time the image was saved to count the time in between, or the
 * current time of a clock that restarted since. */
SMSUTIL_API int sms_reasm_load_state(sms_reasm_store *store, uint64_t now, const void *buffer, size_t size);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_REASSEMBLY_H */
