#ifndef SMSUTIL_SMS_CHARSET_H
#define SMSUTIL_SMS_CHARSET_H

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

SMSUTIL_END_DECLS

#endif /* SMSUTIL_SMS_CHARSET_H */
