/* Export control for the public C interface.
 * The library is built with hidden visibility: only what carries SMSUTIL_API
 * appears in the dynamic symbol table. */
#ifndef SMSUTIL_EXPORT_H
#define SMSUTIL_EXPORT_H

#if defined(_WIN32)
#define SMSUTIL_API
#elif defined(__GNUC__) || defined(__clang__)
#define SMSUTIL_API __attribute__((visibility("default")))
#else
#define SMSUTIL_API
#endif

#ifdef __cplusplus
#define SMSUTIL_BEGIN_DECLS extern "C" {
#define SMSUTIL_END_DECLS }
#else
#define SMSUTIL_BEGIN_DECLS
#define SMSUTIL_END_DECLS
#endif

#endif /* SMSUTIL_EXPORT_H */
