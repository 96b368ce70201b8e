#ifndef SMSUTIL_NDL_XML_H
#define SMSUTIL_NDL_XML_H

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

SMSUTIL_END_DECLS

#endif /* SMSUTIL_NDL_XML_H */
