// Representative inputs for the benchmarks and the probe driver, built
// through the library's own encoders so that each one is a message the
// decoders accept rather than hand-packed octets.
#pragma once

#include <string>

#include "smsutil/ndl_xml.h"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_cdma.h"
#include "smsutil/wms_ts.h"

namespace smsutil::bench {

// Stored PDUs as the modem reports them (received, state 1).
SmsReadPdu read_gsm7_160();       // one DELIVER of 160 septets
SmsReadPdu read_ucs2_70();        // one DELIVER of 70 UCS-2 characters
SmsReadPdu read_concat_part();    // part 2 of 3 with an 8-bit reference, 153 septets
SmsReadPdu read_status_report();  // a STATUS-REPORT

// Single packs ready for ComposeSms.
SmsMessage compose_gsm7_160();  // 160 GSM codes
SmsMessage compose_ucs2_70();   // 70 three-byte UTF-8 characters

// Texts of 600 characters: plain ASCII, and three-byte UTF-8 characters.
std::string text_ascii_600();
std::string text_cjk_600();
// The longest UCS-2 text four packs take: 268 three-byte characters.
std::string text_cjk_268();
// 160 characters of UTF-8 that need both rows of the default alphabet
// (letters, accented letters, the euro sign and brackets).
std::string text_mixed_160();

// 382 characters of Turkish that the Turkish locking-shift table sends in
// three parts (UCS-2 would take six).
std::string text_turkish_382();

// TPDUs for the transport codec.
wms_raw_tpdu raw_deliver_gsm7_160();
wms_gw_submit submit_gsm7_160();
// CDMA bearer data: message id, 160 characters of 7-bit ASCII, time stamp,
// priority and a call-back number.
wms_raw_tpdu raw_cdma_bearer_data();

// XML documents of about `bytes` bytes: a configuration-like tree of
// elements with attributes and text.
std::string xml_document(std::size_t bytes);

// A feature file carrying the national-table setting, written under the
// work directory; its path.
std::string write_feature_file();
inline constexpr const char *kFeatureKey = "configuration.FEATURE_SMS.lang_table";

}  // namespace smsutil::bench
