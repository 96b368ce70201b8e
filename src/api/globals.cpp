// The two process-wide records through which composing carries settings.
#include "smsutil/sms_api.h"

static_assert(sizeof(SmsConfiguration) == 92, "m_stConfiguration is 23 words");

extern "C" {
SMSUTIL_API SmsConfiguration m_stConfiguration = {};
SMSUTIL_API char m_szSCAddress[SMS_NUMBER_SIZE] = {};
}
