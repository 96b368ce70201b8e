#include "bench_inputs.hpp"

#include <cstdio>
#include <cstring>
#include <stdexcept>

namespace smsutil::bench {
namespace {

constexpr const char *kScPrefix = "0891682143658709F1";  // +8612345678901
constexpr const char *kCjk = "\xE4\xBD\xA0";             // one character, three bytes

std::string hex(const uint8_t *octets, std::size_t n)
{
    std::string text(2 * n + 1, '\0');
    BcdToAscii(text.data(), octets, static_cast<uint32_t>(n));
    text.resize(2 * n);
    return text;
}

// Inputs are built once at start-up; a builder that fails means the library
// refused a well-formed message, which no figure should hide.
void require(bool ok, const char *what)
{
    if (!ok) throw std::runtime_error(what);
}

SmsReadPdu read_pdu(const std::string &text)
{
    SmsReadPdu in;
    std::memset(&in, 0, sizeof in);
    require(text.size() < sizeof in.pdu, "PDU text too long");
    in.index = 1;
    in.state = 1;
    std::memcpy(in.pdu, text.data(), text.size());
    return in;
}

// The other party of every message: +491701234567.
wms_address party()
{
    wms_address a;
    std::memset(&a, 0, sizeof a);
    a.number_type = WMS_NUMBER_INTERNATIONAL;
    a.number_plan = 1;
    a.number_of_digits = 12;
    wms_ts_ascii_to_bcd("491701234567", 12, a.digits);
    return a;
}

wms_gw_deliver deliver(uint8_t alphabet)
{
    wms_gw_deliver d;
    std::memset(&d, 0, sizeof d);
    d.address = party();
    d.dcs.alphabet = alphabet;
    d.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    d.timestamp = wms_timestamp{0x24, 0x05, 0x06, 0x07, 0x08, 0x09, 8};
    return d;
}

// Letters, digits and the space share their code with ASCII.
void set_septets(wms_gw_user_data &ud, std::size_t n)
{
    static constexpr char kPattern[] = "The quick brown fox jumps over the lazy dog 0123456789 ";
    for (std::size_t i = 0; i < n; ++i) ud.sm_data[i] = static_cast<uint8_t>(kPattern[i % (sizeof kPattern - 1)]);
    ud.sm_len = static_cast<uint16_t>(n);
}

std::string deliver_text(const wms_gw_deliver &d)
{
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    require(wms_ts_encode_deliver(&d, &raw) == WMS_TS_STATUS_OK, "DELIVER refused");
    return kScPrefix + hex(raw.data, raw.len);
}

std::string repeat(const char *piece, std::size_t n)
{
    std::string text;
    for (std::size_t i = 0; i < n; ++i) text += piece;
    return text;
}

SmsMessage compose_base()
{
    SmsMessage msg;
    std::memset(&msg, 0, sizeof msg);
    std::strcpy(msg.szAddress, "+491701234567");
    std::strcpy(msg.sca, "+8612345678901");
    return msg;
}

}  // namespace

SmsReadPdu read_gsm7_160()
{
    wms_gw_deliver d = deliver(WMS_ALPHABET_GSM7);
    set_septets(d.user_data, 160);
    return read_pdu(deliver_text(d));
}

SmsReadPdu read_ucs2_70()
{
    wms_gw_deliver d = deliver(WMS_ALPHABET_UCS2);
    for (std::size_t i = 0; i < 70; ++i) {
        d.user_data.sm_data[2 * i] = 0x4F;
        d.user_data.sm_data[2 * i + 1] = static_cast<uint8_t>(0x60 + i);
    }
    d.user_data.sm_len = 140;
    return read_pdu(deliver_text(d));
}

SmsReadPdu read_concat_part()
{
    wms_gw_deliver d = deliver(WMS_ALPHABET_GSM7);
    d.user_data_header_present = 1;
    d.user_data.num_headers = 1;
    d.user_data.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    d.user_data.headers[0].u.concat_8 = {0x2A, 3, 2};
    set_septets(d.user_data, 153);
    return read_pdu(deliver_text(d));
}

SmsReadPdu read_status_report()
{
    // Reference 0x2A for 12345, submitted 2024-05-06 07:08:09, delivered a
    // second later, status 0.
    return read_pdu("0891682143658709F1062A05812143F5425060708090234250607180902300");
}

SmsMessage compose_gsm7_160()
{
    SmsMessage msg = compose_base();
    msg.sms_content_code = SMS_CONTENT_7BIT;
    for (std::size_t i = 0; i < 160; ++i) msg.content[i] = static_cast<char>('a' + i % 26);
    msg.byContentLen = 160;
    return msg;
}

SmsMessage compose_ucs2_70()
{
    SmsMessage msg = compose_base();
    msg.sms_content_code = SMS_CONTENT_UCS2;
    const std::string text = repeat(kCjk, 70);
    std::memcpy(msg.content, text.c_str(), text.size() + 1);
    msg.byContentLen = static_cast<uint8_t>(text.size());
    return msg;
}

std::string text_ascii_600()
{
    std::string text;
    while (text.size() < 600) text += "Meet me at the station at 10:30, bring the tickets. ";
    text.resize(600);
    return text;
}

std::string text_cjk_600() { return repeat(kCjk, 600); }
std::string text_cjk_268() { return repeat(kCjk, 268); }

std::string text_mixed_160()
{
    // 16 characters, ten times: ASCII, Latin-1 letters of the main row and
    // the euro sign and brackets of the extension row.
    return repeat(
        "Caf\xC3\xA9 \xC3\xBC"
        "ber 5\xE2\x82\xAC [ok]",
        10);
}

std::string text_turkish_382()
{
    // 62 characters, six times, and a greeting: 382 characters, 43 of them
    // letters the default alphabet lacks.
    return repeat(
               "G\xC3\xBCnayd\xC4\xB1n! Bug\xC3\xBCn hava \xC3\xA7ok g\xC3\xBCzel; ak\xC5\x9F"
               "am "
               "yeme\xC4\x9Finde bulu\xC5\x9F"
               "al\xC4\xB1m m\xC4\xB1? ",
               6) +
           "G\xC3\xB6r\xC3\xBC\xC5\x9F\xC3\xBCr\xC3\xBCz.";
}

wms_raw_tpdu raw_deliver_gsm7_160()
{
    wms_gw_deliver d = deliver(WMS_ALPHABET_GSM7);
    set_septets(d.user_data, 160);
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    require(wms_ts_encode_deliver(&d, &raw) == WMS_TS_STATUS_OK, "DELIVER refused");
    return raw;
}

wms_gw_submit submit_gsm7_160()
{
    wms_gw_submit s;
    std::memset(&s, 0, sizeof s);
    s.message_reference = 0x2A;
    s.address = party();
    s.dcs.alphabet = WMS_ALPHABET_GSM7;
    s.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    s.validity.format = WMS_VP_RELATIVE;
    s.validity.time = wms_timestamp{0, 0, 1, 0, 0, 0, 0};
    set_septets(s.user_data, 160);
    return s;
}

wms_raw_tpdu raw_cdma_bearer_data()
{
    wms_cdma_bearer_data bd;
    std::memset(&bd, 0, sizeof bd);
    bd.mask =
        WMS_MASK_BD_MSG_ID | WMS_MASK_BD_USER_DATA | WMS_MASK_BD_MC_TIME | WMS_MASK_BD_PRIORITY | WMS_MASK_BD_CALLBACK;
    bd.message_id.type = 1;
    bd.message_id.id_number = 0x1234;
    bd.user_data.encoding = WMS_ENCODING_ASCII;
    const std::string text = text_ascii_600().substr(0, 160);
    uint8_t octets = 0;
    uint8_t padding = 0;
    bd.user_data.num_fields = wms_ts_pack_ascii(text.c_str(), bd.user_data.data, &octets, &padding);
    bd.user_data.data_len = octets;
    bd.user_data.padding_bits = padding;
    bd.mc_time = wms_timestamp{0x24, 0x05, 0x06, 0x07, 0x08, 0x09, 0};
    bd.priority = 1;
    bd.callback.digit_mode = WMS_DIGIT_MODE_BCD;
    bd.callback.number_of_digits = wms_ts_ascii2dtmf("5551234567", bd.callback.digits);
    wms_raw_tpdu raw;
    std::memset(&raw, 0, sizeof raw);
    require(wms_ts_encode_CDMA_bd(&bd, &raw) == WMS_TS_STATUS_OK, "bearer data refused");
    return raw;
}

std::string xml_document(std::size_t bytes)
{
    std::string doc = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<configuration>\n";
    char entry[256];
    for (unsigned i = 0; doc.size() < bytes; ++i) {
        std::snprintf(entry, sizeof entry,
                      "  <FEATURE_%u enable=\"1\" id=\"%u\">\n    <name>feature number %u</name>\n"
                      "    <value type=\"int\">%u</value>\n  </FEATURE_%u>\n",
                      i, i, i, i * 7, i);
        doc += entry;
    }
    doc += "</configuration>\n";
    return doc;
}

std::string write_feature_file()
{
    const std::string path = std::string(SMSUTIL_BENCH_WORK_DIR) + "/optional_feature.xml";
    std::string doc = xml_document(2048);
    // The setting sits after the other features, as in a real file.
    doc.insert(doc.rfind("</configuration>"), "  <FEATURE_SMS>\n    <lang_table>1</lang_table>\n  </FEATURE_SMS>\n");
    std::FILE *f = std::fopen(path.c_str(), "wb");
    require(f != nullptr, "cannot write the feature file");
    const bool ok = std::fwrite(doc.data(), 1, doc.size(), f) == doc.size();
    require(std::fclose(f) == 0 && ok, "cannot write the feature file");
    return path;
}

}  // namespace smsutil::bench
