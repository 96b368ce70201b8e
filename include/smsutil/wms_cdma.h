#ifndef SMSUTIL_WMS_CDMA_H
#define SMSUTIL_WMS_CDMA_H

#include "smsutil/smsutil_export.h"

SMSUTIL_BEGIN_DECLS

SMSUTIL_END_DECLS

#endif /* SMSUTIL_WMS_CDMA_H */
