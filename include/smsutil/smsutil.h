/* Umbrella header: the whole public interface of libsmsutilapi. */
#ifndef SMSUTIL_H
#define SMSUTIL_H

#include "smsutil/ndl_xml.h"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"
#include "smsutil/sms_pdu.h"
#include "smsutil/sms_reassembly.h"
#include "smsutil/smsutil_export.h"
#include "smsutil/wms_cdma.h"
#include "smsutil/wms_ts.h"

#endif /* SMSUTIL_H */
