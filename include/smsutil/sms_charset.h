/* Text conversion: the GSM 7-bit code tables and the conversions between
 * 7-bit codes, single-byte text, UCS-2 and UTF-8.
 *
 * 7-bit text is one code (0 to 127) per byte with an explicit length; 0x1B
 * is the escape that takes the next code from the extension table.  UTF-8
 * text is zero-terminated and made of one- to three-byte sequences only.
 * UCS-2 text is 16-bit units ended by a zero unit.  Every function returns
 * 0 (or a count) on success and -1 on failure; on failure the outputs are
 * partly written and are to be discarded. */
#ifndef SMSUTIL_SMS_CHARSET_H
#define SMSUTIL_SMS_CHARSET_H

#include <stdint.h>

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

/* National language identifiers (`coding`): the row index of both tables. */
#define GSM7_CODING_DEFAULT 0
#define TURKISH_SMS 1
#define GSM7_CODING_SPANISH 2

#define GSM7_TABLE_ROWS 3
#define GSM7_TABLE_CODES 128
#define GSM7_ESCAPE 0x1B
#define GSM7_NO_CHARACTER 0xFFFF /* table entry of a code without a character */

/* UCS-2 value of each 7-bit code: [coding][code].  Row 0 is the default
 * alphabet, row 1 the Turkish locking shift table, row 2 the default
 * alphabet again; in rows 1 and 2 the escape position reads as a space. */
SMSUTIL_API extern const uint32_t g_GSM_7BitTable[GSM7_TABLE_ROWS][GSM7_TABLE_CODES];
/* UCS-2 value of each code after an escape: [coding][code].  Row 0 is the
 * default extension, rows 1 and 2 the Turkish and Spanish single shifts. */
SMSUTIL_API extern const uint32_t g_GSM_7BitExtTable[GSM7_TABLE_ROWS][GSM7_TABLE_CODES];

/* 7-bit codes to UCS-2 units under a national language and shift kind;
 * dwBufLen 0 only counts, and the buffer needs room for dwBufLen + 1 units. */
SMSUTIL_API int32_t gsm7_to_unicode(const uint8_t *pGSM_7Data, uint32_t dwInputLen, uint32_t coding,
                                    uint32_t lang_shift, uint16_t *pUnicodeData, int32_t dwBufLen,
                                    uint32_t *pdwOutputLen);
/* Default-alphabet 7-bit codes to single-byte (ISO 8859-1) text; characters
 * above 0xFF become spaces; a zero byte follows the text. */
SMSUTIL_API int32_t sms_gsm7_to_ascii(const uint8_t *pGSM_7Data, int32_t iInputLen, uint8_t *pAscii,
                                      int32_t iBufLen, uint32_t *pdwOutputLen);
/* Single-byte (ISO 8859-1) text to default-alphabet 7-bit codes. */
SMSUTIL_API int32_t sms_ascii_to_gsm7(const uint8_t *pAscii, int32_t iInputLen, uint8_t *pGSM_7Data,
                                      int32_t iBufLen, uint32_t *pdwOutputLen);

/* Number of 16-bit units before the zero unit. */
SMSUTIL_API int32_t sms_wcslen(const uint16_t *pUCS2);
/* Number of characters in a UTF-8 text; 0 for a null text. */
SMSUTIL_API int32_t MultiByte_WideChar(const char *pUTF8);
/* UCS-2 text to UTF-8 in at most iBufLen bytes; writes no terminator. */
SMSUTIL_API int32_t UCS2_TO_UTF8(const uint16_t *pUCS2, char *pUTF8, int32_t iBufLen);
/* UTF-8 text to UCS-2 units stored low byte first; returns the character
 * count, which may exceed what the iBufLen bytes of output could hold. */
SMSUTIL_API int32_t UTF8_TO_UCS2(const char *pUTF8, uint8_t *pUCS2, int32_t iBufLen);
/* UTF-8 text to 7-bit codes of a national language (coding 0 to 2). */
SMSUTIL_API int32_t UTF8_TO_7BIT(const char *pUTF8, uint8_t *p7Bit, int32_t iBufLen, uint32_t *pdw7BitLen,
                                 uint32_t coding);
/* 7-bit codes of a national language to UTF-8 in a zeroed destination of
 * iBufSize bytes that always keeps its terminator. */
SMSUTIL_API int32_t BIT7_TO_UTF8(const uint8_t *p7Bit, int32_t iInputLen, char *pUTF8, int32_t iBufSize,
                                 uint32_t coding);
/* A received 7-bit text converted in place to UTF-8 (buffer of 513 bytes). */
SMSUTIL_API int32_t handle_input_sms_7bit_to_utf8(uint8_t *pText, uint32_t dwInputLen, uint32_t coding,
                                                  uint32_t lang_shift, uint32_t *pdwOutputLen);
/* A 7-bit text converted in place to single-byte text (buffer of 514 bytes). */
SMSUTIL_API int32_t handle_input_sms_7bit_to_ascii(uint8_t *pText, int32_t iInputLen, uint32_t *pdwOutputLen);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_CHARSET_H */
