#include "common/feature_file.hpp"

#include "smsutil/ndl_xml.h"

namespace smsutil::common {

void read_lang_table_setting(char *out, std::size_t size)
{
    if (out == nullptr || size == 0) return;
    out[0] = '\0';
    (void)NDL_XML_GetNodeOrAttrEx(SMSUTIL_FEATURE_FILE, "configuration.FEATURE_SMS.lang_table", out, size);
}

}  // namespace smsutil::common
