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
SMSUTIL_API int32_t sms_gsm7_to_ascii(const uint8_t *pGSM_7Data, int32_t iInputLen, uint8_t *pAscii, int32_t iBufLen,
                                      uint32_t *pdwOutputLen);
/* Single-byte (ISO 8859-1) text to default-alphabet 7-bit codes. */
SMSUTIL_API int32_t sms_ascii_to_gsm7(const uint8_t *pAscii, int32_t iInputLen, uint8_t *pGSM_7Data, int32_t iBufLen,
                                      uint32_t *pdwOutputLen);

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

/* ---- National 8-bit code ----
 * A single-byte code in which the default alphabet keeps its 7-bit values
 * (0x80 standing for the commercial at, whose 7-bit code is 0) and the
 * characters that need an escape in 7-bit text take the upper half:
 * 0x81-0x9F the default extension, 0xA0-0xBF Turkish, 0xC0-0xDF Spanish,
 * 0xE0-0xFF nothing yet.  Texts in it are zero-terminated. */
#define KV8BIT_TEXT_BUFFER_SIZE 620

/* The 7-bit extension code that follows the escape for each upper byte,
 * indexed by the byte with its top bit cleared; 0xFF where there is none.
 * Writable so that a gateway can patch its own variant in at run time;
 * the library only reads it. */
#define KV8BIT_NO_EXTENSION_CODE 0xFF
SMSUTIL_API extern uint8_t extern_code_table[128];

/* UCS-2 units to the 8-bit code, taking the lowest byte that stands for
 * each unit.  A unit with no byte leaves its output byte as the caller had
 * it (a zeroed output then ends the text there).  iInputLen may not exceed
 * iBufLen; the output needs iBufLen + 1 bytes, as a zero byte follows the
 * last one written. */
SMSUTIL_API int32_t ucs2_to_kv8bit(const uint16_t *pUCS2, int32_t iInputLen, uint8_t *p8BitData, int32_t iBufLen,
                                   uint32_t *pdwOutputLen);
/* 8-bit code to 7-bit codes (not terminated, may hold 0x00), an upper byte
 * becoming the escape and its extension code.  The gateway's feature file
 * decides whether c cedilla takes its Spanish code.  Output that would
 * pass dwBufLen drops the rest of the input; an escape pair needs three
 * bytes of room or the call fails. */
SMSUTIL_API int32_t kv8bit_to_gsm7bit(const uint8_t *p8BitData, uint32_t dwInputLen, uint8_t *pGSM_7Data,
                                      uint32_t dwBufLen, uint32_t *pdwOutputLen);
/* A zero-terminated 8-bit text converted in place to 7-bit codes; the
 * buffer holds KV8BIT_TEXT_BUFFER_SIZE bytes and the code count is
 * returned through pdwOutputLen. */
SMSUTIL_API int32_t handle_input_sms_ascii_to_7bit(uint8_t *pText, uint32_t *pdwOutputLen);
/* The national language an 8-bit text needs: 0 none, 1 Turkish, 2
 * Spanish, 3 the block without a table; the first decisive byte wins. */
SMSUTIL_API int32_t check_message_coding(const uint8_t *p8BitData);
/* Writes data as a hexadecimal and character dump to the diagnostic log. */
SMSUTIL_API void DumpBuffer(const uint8_t *pData, int32_t iLength, const char *pszDescription);

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_CHARSET_H */
