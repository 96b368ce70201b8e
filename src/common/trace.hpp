// The one place that builds a diagnostic log line.  Every reporting
// function goes through SMS_TRACE so the "[name: line]:" prefix, the
// 2048-byte bound and the newline rule of _smslog cannot drift apart.
#pragma once

#include <cstdarg>
#include <cstdint>

namespace smsutil::common {

// Formats "[%16s: %4d]:" + message and writes it at level 1.
void trace_line(const char *func, int line, const char *format, ...)
#if defined(__GNUC__) || defined(__clang__)
    __attribute__((format(printf, 3, 4)))
#endif
    ;

}  // namespace smsutil::common

#if SMSUTIL_TRACE_ENABLED
#define SMS_TRACE(...) ::smsutil::common::trace_line(__func__, __LINE__, __VA_ARGS__)
// For code that reports on behalf of an exported function from a helper.
#define SMS_TRACE_AS(name, ...) ::smsutil::common::trace_line((name), __LINE__, __VA_ARGS__)
#else
// Compiled out, but the arguments stay type-checked and "used".
#define SMS_TRACE(...)                                                             \
    do {                                                                           \
        if (false) ::smsutil::common::trace_line(__func__, __LINE__, __VA_ARGS__); \
    } while (0)
#define SMS_TRACE_AS(name, ...)                                                  \
    do {                                                                         \
        if (false) ::smsutil::common::trace_line((name), __LINE__, __VA_ARGS__); \
    } while (0)
#endif

// Every reporting function refuses a null argument the same way: one line
// naming the function and the argument, then -1.
#define SMS_RETURN_IF_NULL(ptr)                                          \
    do {                                                                 \
        if ((ptr) == nullptr) {                                          \
            SMS_TRACE("The %s " #ptr " pointer is NULL!\n\n", __func__); \
            return -1;                                                   \
        }                                                                \
    } while (0)
