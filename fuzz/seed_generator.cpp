// Writes the seed corpora: valid inputs for every fuzz target, built with
// the library's own encoders so that the fuzzers start from messages the
// decoders accept.  Usage: fuzz_seeds <corpus directory>; each target's
// seeds go to <corpus directory>/<target>/seed-NN.
#include <sys/stat.h>

#include <cstdio>
#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "smsutil/ndl_xml.h"
#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_cdma.h"
#include "smsutil/wms_ts.h"

namespace {

using Octets = std::vector<uint8_t>;

std::string g_root;

void write_seed(const std::string &target, const Octets &bytes)
{
    static std::map<std::string, int> counters;
    const int counter = ++counters[target];
    const std::string dir = g_root + "/" + target;
    mkdir(dir.c_str(), 0755);
    char name[32];
    std::snprintf(name, sizeof name, "/seed-%02d", counter);
    std::FILE *f = std::fopen((dir + name).c_str(), "wb");
    if (f == nullptr) {
        std::perror((dir + name).c_str());
        return;
    }
    std::fwrite(bytes.data(), 1, bytes.size(), f);
    std::fclose(f);
}

Octets concat(std::initializer_list<Octets> parts)
{
    Octets out;
    for (const Octets &p : parts) out.insert(out.end(), p.begin(), p.end());
    return out;
}
Octets text(const std::string &s) { return Octets(s.begin(), s.end()); }
Octets raw_octets(const wms_raw_tpdu &raw)
{
    const uint32_t len = raw.len;  // packed: no reference to the field
    return Octets(raw.data, raw.data + std::min<uint32_t>(len, WMS_MAX_LEN));
}

wms_address address_of(const char *digits, uint8_t type)
{
    wms_address a{};
    a.number_type = type;
    a.number_plan = 1;
    a.number_of_digits = static_cast<uint8_t>(std::strlen(digits));
    wms_ts_ascii_to_bcd(digits, a.number_of_digits, a.digits);
    return a;
}

wms_timestamp time_of(uint8_t y, uint8_t mo, uint8_t d, uint8_t h, uint8_t mi, uint8_t s)
{
    return wms_timestamp{wms_ts_int_to_bcd(y),
                         wms_ts_int_to_bcd(mo),
                         wms_ts_int_to_bcd(d),
                         wms_ts_int_to_bcd(h),
                         wms_ts_int_to_bcd(mi),
                         wms_ts_int_to_bcd(s),
                         8};
}

// User data variants: 7-bit text, a concatenation header, UCS-2, 8-bit.
struct UserData {
    wms_gw_dcs dcs;
    wms_gw_user_data ud;
};
UserData octet_data(uint8_t msg_class, uint8_t alphabet, const void *bytes, uint16_t n)
{
    UserData v{};
    v.dcs.msg_class = msg_class;
    v.dcs.alphabet = alphabet;
    std::memcpy(v.ud.sm_data, bytes, n);
    v.ud.sm_len = n;
    return v;
}

std::vector<UserData> user_data_variants()
{
    std::vector<UserData> out;
    UserData plain{};
    plain.dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    uint32_t n = 0;
    UTF8_TO_7BIT("Hello {world} 100\xE2\x82\xAC", plain.ud.sm_data, WMS_MAX_LEN, &n, 0);
    plain.ud.sm_len = static_cast<uint16_t>(n);
    out.push_back(plain);

    UserData concat = plain;
    concat.ud.num_headers = 2;
    concat.ud.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    concat.ud.headers[0].u.concat_8 = {0x42, 3, 2};
    concat.ud.headers[1].header_id = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
    concat.ud.headers[1].u.nat_lang_ss = {0, 1, 1};
    out.push_back(concat);

    const uint16_t units[] = {0x4F60, 0x597D, 0x0041, 0x20AC};
    UserData ucs2 = octet_data(WMS_MESSAGE_CLASS_NONE, WMS_ALPHABET_UCS2, units, sizeof units);
    ucs2.ud.num_headers = 1;
    ucs2.ud.headers[0].header_id = WMS_UDH_CONCAT_16BIT_REF;
    ucs2.ud.headers[0].u.concat_16 = {0x1234, 2, 1};
    out.push_back(ucs2);
    out.push_back(octet_data(WMS_MESSAGE_CLASS_1, WMS_ALPHABET_8BIT, "\x01\x02octets\xFF", 9));
    return out;
}

std::vector<Octets> deliver_tpdus()
{
    std::vector<Octets> out;
    for (const UserData &v : user_data_variants()) {
        wms_gw_deliver d{};
        d.address = address_of("4917012345", WMS_NUMBER_INTERNATIONAL);
        d.dcs = v.dcs;
        d.timestamp = time_of(24, 5, 6, 7, 8, 9);
        d.user_data = v.ud;
        d.user_data_header_present = v.ud.num_headers != 0;
        wms_raw_tpdu raw{};
        if (wms_ts_encode_deliver(&d, &raw) == WMS_TS_STATUS_OK) out.push_back(raw_octets(raw));
    }
    return out;
}

std::vector<Octets> submit_tpdus()
{
    std::vector<Octets> out;
    int i = 0;
    for (const UserData &v : user_data_variants()) {
        wms_gw_submit s{};
        s.message_reference = 0x10u + static_cast<uint32_t>(i);
        s.address = address_of("12345", WMS_NUMBER_UNKNOWN);
        s.dcs = v.dcs;
        s.validity.format = static_cast<uint8_t>(i % 4);  // none, enhanced, relative, absolute
        s.validity.time =
            s.validity.format == WMS_VP_ABSOLUTE ? time_of(25, 12, 31, 23, 59, 59) : time_of(0, 0, 1, 2, 0, 0);
        s.user_data = v.ud;
        s.user_data_header_present = v.ud.num_headers != 0;
        s.status_report_request = 1;
        wms_raw_tpdu raw{};
        if (wms_ts_encode_submit(&s, &raw) == WMS_TS_STATUS_OK) out.push_back(raw_octets(raw));
        ++i;
    }
    return out;
}

// No status-report encoder exists: assembled from the field encoders.
std::vector<Octets> status_report_tpdus()
{
    std::vector<Octets> out;
    const wms_address addr = address_of("8613800100500", WMS_NUMBER_INTERNATIONAL);
    uint8_t a[32];
    const uint8_t alen = wms_ts_encode_address(&addr, a);
    uint8_t t1[7], t2[7];
    const wms_timestamp s1 = time_of(24, 1, 2, 3, 4, 5), s2 = time_of(24, 1, 2, 3, 4, 9);
    wms_ts_encode_timestamp(&s1, t1);
    wms_ts_encode_timestamp(&s2, t2);
    const Octets head = concat({{0x06, 0x2A}, Octets(a, a + alen), Octets(t1, t1 + 7), Octets(t2, t2 + 7)});
    out.push_back(concat({head, {0x00}}));
    // With a parameter indicator, PID, DCS and 7-bit user data.
    const UserData v = user_data_variants()[0];
    uint8_t ud[WMS_MAX_LEN];
    const uint8_t n = wms_ts_encode_gw_user_data(&v.dcs, &v.ud, ud);
    uint8_t dcs = 0;
    wms_ts_encode_dcs(&v.dcs, &dcs);
    out.push_back(concat({head, {0x41, 0x07, 0x00, dcs}, Octets(ud, ud + n)}));
    return out;
}

Octets hex(const Octets &bytes)
{
    std::vector<char> h(2 * bytes.size() + 1);
    BcdToAscii(h.data(), bytes.data(), static_cast<uint32_t>(bytes.size()));
    return Octets(h.begin(), h.end() - 1);
}

Octets sc_prefix(const char *number)
{
    SendOrWriteMsg w{};
    SmsOctetBuf buf{};
    ComposeSCAddrData(number, &w, &buf);
    return hex(Octets(buf.data, buf.data + buf.dwLen));
}

void tpdu_seeds()
{
    for (const Octets &t : deliver_tpdus()) {
        write_seed("decode_deliver_fuzz", concat({{0x00}, t}));
        write_seed("tpdu_round_trip_fuzz", concat({{0x00, 0x00}, t}));
    }
    for (const Octets &t : submit_tpdus()) {
        write_seed("decode_submit_fuzz", concat({{0x0C}, t}));
        write_seed("tpdu_round_trip_fuzz", concat({{0x01, 0x0C}, t}));
    }
    for (const Octets &t : status_report_tpdus()) write_seed("decode_status_report_fuzz", concat({{0x00}, t}));
}

void parse_sms_seeds()
{
    const Octets sca = sc_prefix("+8613800100500");
    for (const Octets &t : deliver_tpdus()) write_seed("parse_sms_fuzz", concat({{0x01, 0x01}, sca, hex(t)}));
    for (const Octets &t : submit_tpdus()) write_seed("parse_sms_fuzz", concat({{0x02, 0x03}, sca, hex(t)}));
    for (const Octets &t : status_report_tpdus()) write_seed("parse_sms_fuzz", concat({{0x03, 0x00}, sca, hex(t)}));
}

void user_data_seeds()
{
    for (const UserData &v : user_data_variants()) {
        uint8_t ud[WMS_MAX_LEN];
        const uint8_t n = wms_ts_encode_gw_user_data(&v.dcs, &v.ud, ud);
        uint8_t dcs = 0;
        wms_ts_encode_dcs(&v.dcs, &dcs);
        if (n == 0) continue;
        write_seed("decode_gw_user_data_fuzz",
                   concat({{dcs, ud[0], static_cast<uint8_t>(v.ud.num_headers != 0)}, Octets(ud + 1, ud + n)}));
        if (v.ud.num_headers != 0) {
            uint8_t h[WMS_MAX_LEN];
            const uint8_t udhl = wms_ts_encode_user_data_header(v.ud.num_headers, v.ud.headers, h);
            write_seed("decode_user_data_header_fuzz", Octets(h, h + udhl + 1));
        }
    }
    // Elements of other kinds, one header.
    wms_udh hs[3]{};
    hs[0].header_id = WMS_UDH_SPECIAL_SM;
    hs[0].u.special_sm = {1, WMS_MWI_EMAIL, 3};
    hs[1].header_id = WMS_UDH_PRE_DEF_SOUND;
    hs[1].u.pre_def_sound = {4, 7};
    hs[2].header_id = WMS_UDH_OTHER;
    hs[2].u.other.other_id = 0x70;
    hs[2].u.other.header_length = 3;
    std::memcpy(hs[2].u.other.data, "abc", 3);
    uint8_t h[WMS_MAX_LEN];
    const uint8_t udhl = wms_ts_encode_user_data_header(3, hs, h);
    write_seed("decode_user_data_header_fuzz", Octets(h, h + udhl + 1));
}

void cdma_seeds()
{
    std::vector<wms_cdma_bearer_data> records;
    wms_cdma_bearer_data bd{};
    bd.mask = WMS_MASK_BD_MSG_ID | WMS_MASK_BD_USER_DATA | WMS_MASK_BD_MC_TIME | WMS_MASK_BD_PRIORITY;
    bd.message_id = {2, 0x1234};
    bd.user_data.encoding = WMS_ENCODING_ASCII;
    uint8_t octets = 0, padding = 0;
    bd.user_data.num_fields = wms_ts_pack_ascii("hello cdma", bd.user_data.data, &octets, &padding);
    bd.user_data.data_len = octets;
    bd.user_data.padding_bits = padding;
    bd.mc_time = time_of(24, 2, 29, 12, 0, 0);
    bd.priority = 2;
    records.push_back(bd);

    wms_cdma_bearer_data all{};
    all.mask = 0xFFFF & ~WMS_MASK_BD_USER_DATA;
    all.message_id = {1, 7};
    all.user_response = 5;
    all.mc_time = all.validity_absolute = all.deferred_absolute = time_of(23, 7, 1, 1, 2, 3);
    all.validity_relative = all.deferred_relative = time_of(0, 0, 1, 2, 0, 0);
    all.privacy = 1;
    all.user_ack_requested = all.delivery_ack_requested = 1;
    all.num_messages = 42;
    all.alert_on_delivery = 1;
    all.language = 1;
    all.callback = address_of("5551234", WMS_NUMBER_UNKNOWN);
    all.display_mode = 1;
    records.push_back(all);

    wms_cdma_bearer_data octet{};
    octet.mask = WMS_MASK_BD_USER_DATA;
    octet.user_data.encoding = WMS_ENCODING_OCTET;
    std::memcpy(octet.user_data.data, "\x00\x01\x02\xFE", 4);
    octet.user_data.data_len = octet.user_data.num_fields = 4;
    records.push_back(octet);

    for (uint32_t type = WMS_IS91EP_VOICE_MAIL; type <= WMS_IS91EP_SHORT_MESSAGE; ++type) {
        wms_cdma_bearer_data is91{};
        is91.mask = WMS_MASK_BD_USER_DATA;
        is91.user_data.encoding = WMS_ENCODING_IS91EP;
        is91.user_data.is91ep_type = type;
        const char *payload = type == WMS_IS91EP_CLI_ORDER ? "\x05\x05\x05\x01\x02" : "\x01\x02\x01HELLO";
        const auto n = static_cast<uint8_t>(type == WMS_IS91EP_CLI_ORDER ? 5 : 8);
        std::memcpy(is91.user_data.data, payload, n);
        is91.user_data.data_len = is91.user_data.num_fields = n;
        records.push_back(is91);
        // The payload decoder's own seed: the same values with their type.
        write_seed("decode_is91ep_payload_fuzz",
                   concat({{static_cast<uint8_t>(type - 128)}, Octets(payload, payload + n)}));
    }

    for (const wms_cdma_bearer_data &r : records) {
        wms_raw_tpdu raw{};
        if (wms_ts_encode_CDMA_bd(&r, &raw) != WMS_TS_STATUS_OK) continue;
        write_seed("decode_cdma_bd_fuzz", concat({{0x00}, raw_octets(raw)}));
        write_seed("cdma_bd_round_trip_fuzz", concat({{0x00}, raw_octets(raw)}));
    }
}

const char *const kTexts[] = {
    "Hello, world!",
    "{[~]}|\\^\xE2\x82\xAC and @ \xC2\xA3$\xC2\xA5",
    "\xC3\x87\xC4\x9F\xC4\xB1\xC5\x9F \xC3\xA1\xC3\xAD\xC3\xB3",  // Turkish and Spanish letters
    "\xE4\xBD\xA0\xE5\xA5\xBD \xD0\x9F\xD1\x80\xD0\xB8\xD0\xB2\xD0\xB5\xD1\x82",
};

void charset_seeds()
{
    for (uint8_t coding = 0; coding < 3; ++coding) {
        for (const char *t : kTexts) {
            const Octets utf8 = text(t);
            write_seed("utf8_to_ucs2_fuzz", concat({{0x00, 0x02}, utf8}));
            write_seed("utf8_to_7bit_fuzz", concat({{coding, 0x00, 0x02}, utf8}));
            uint8_t codes[512];
            uint32_t n = 0;
            if (UTF8_TO_7BIT(t, codes, sizeof codes, &n, coding) != 0) continue;
            const Octets seven(codes, codes + n);
            write_seed("bit7_to_utf8_fuzz", concat({{coding, 0x00, 0x02}, seven}));
            write_seed("gsm7_to_unicode_fuzz", concat({{coding, 0x24, 0x01, 0x02}, seven}));
            write_seed("gsm7_to_unicode_fuzz", concat({{coding, 0x25, 0x01, 0x02}, seven}));
            // The national 8-bit form of the same characters.
            uint16_t units[256] = {};
            const int32_t count = UTF8_TO_UCS2(t, reinterpret_cast<uint8_t *>(units), sizeof units - 2);
            uint8_t eight[257] = {};
            uint32_t m = 0;
            if (count > 0 && ucs2_to_kv8bit(units, sms_wcslen(units), eight, 256, &m) == 0) {
                write_seed("kv8bit_to_gsm7bit_fuzz", concat({{0x00, 0x02}, Octets(eight, eight + m)}));
            }
        }
    }
}

void message_seeds()
{
    std::string long_text;
    for (int i = 0; i < 30; ++i) long_text += "Lorem ipsum \xE2\x82\xAC ";
    for (const std::string &t : {std::string(kTexts[0]), std::string(kTexts[1]), std::string(kTexts[3]), long_text}) {
        write_seed("split_pack_fuzz", concat({{0x00, 0x00}, text(t)}));
        write_seed("split_pack_fuzz", concat({{0x01, 0x02}, text(t)}));
    }
    // Settings octets, mr, total, part, then address NUL service centre NUL text.
    write_seed(
        "compose_parse_round_trip_fuzz",
        concat({{0x00, 0x07, 0x00, 0x00}, text("+491701234567"), {0}, text("+8613800100500"), {0}, text(kTexts[3])}));
    uint8_t codes[512];
    uint32_t n = 0;
    UTF8_TO_7BIT(kTexts[1], codes, sizeof codes, &n, 0);
    write_seed(
        "compose_parse_round_trip_fuzz",
        concat({{0x13, 0x2A, 0x03, 0x02}, text("12345"), {0}, text("8613800100500"), {0}, Octets(codes, codes + n)}));
    UTF8_TO_7BIT(kTexts[2], codes, sizeof codes, &n, 2);
    write_seed("compose_parse_round_trip_fuzz", concat({{0x09, 0x01, 0x00, 0x00},
                                                        text("+34600111222"),
                                                        {0},
                                                        text("+34600000000"),
                                                        {0},
                                                        Octets(codes, codes + n)}));
}

// Documents written by the serializer from trees built node by node.
void xml_seeds()
{
    XML_Node *root = nullptr;
    NDL_XML_CreateNode(0, nullptr, "configuration", nullptr, &root);
    XML_Node *feature = nullptr;
    NDL_XML_CreateNode(0, nullptr, "FEATURE_SMS", nullptr, &feature);
    NDL_XML_AppendChildNode(root, feature);
    XML_Node *table = nullptr;
    NDL_XML_CreateNode(0, nullptr, "lang_table", "1", &table);
    NDL_XML_AppendChildNode(feature, table);
    XML_Node *item = nullptr;
    NDL_XML_CreateNode(0, "p", "item", "a < b & \"c\"", &item);
    NDL_XML_AddAttr(item, nullptr, "id", "7");
    NDL_XML_AddAttr(item, "x", "name", "it's");
    NDL_XML_AppendChildNode(feature, item);
    XML_Node *second = nullptr;
    NDL_XML_CreateNode(0, "p", "item", "two", &second);
    NDL_XML_AddAttr(second, nullptr, "id", "8");
    NDL_XML_AppendChildNode(feature, second);
    char *doc = nullptr;
    NDL_XML_Transform(root, &doc);
    NDL_XML_FreeNode(root);
    const Octets document = text(doc != nullptr ? doc : "");
    NDL_XML_FreeMem(doc);

    const Octets handwritten =
        text("<?xml version=\"1.0\"?>\n<!-- c --><a b='1'><![CDATA[x<y]]>&#65;&amp;<c/></a><d/>");
    for (const Octets &d : {document, handwritten}) {
        write_seed("xml_parse_fuzz", concat({{0x00}, d}));
        write_seed("xml_parse_fuzz", concat({{0x85}, d}));
        write_seed("xml_round_trip_fuzz", d);
    }
    for (const char *key : {"configuration.FEATURE_SMS.lang_table", "configuration.FEATURE_SMS.item[id=8]",
                            "configuration.FEATURE_SMS.item[id=7][name]", "configuration.FEATURE_SMS.item[id]"}) {
        write_seed("xml_get_node_or_attr_fuzz", concat({{0x20}, text(key), {0}, document}));
    }
    for (const char *url : {"configuration.FEATURE_SMS.p:item.2", "configuration.FEATURE_SMS.lang_table", "a.c"}) {
        write_seed("xml_get_node_by_url_fuzz", concat({text(url), {0}, url[0] == 'a' ? handwritten : document}));
    }
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s <corpus directory>\n", argv[0]);
        return 2;
    }
    g_root = argv[1];
    mkdir(g_root.c_str(), 0755);
    tpdu_seeds();
    parse_sms_seeds();
    user_data_seeds();
    cdma_seeds();
    charset_seeds();
    message_seeds();
    xml_seeds();
    return 0;
}
