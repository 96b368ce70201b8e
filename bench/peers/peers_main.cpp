// Side-by-side driver: the library and other parsers found on the machine
// doing the same job on the same inputs, one entry at a time, so that
// callgrind can count each (bench/scripts/instructions_per_call.sh):
//   smsutil_peers <entry> [count]     run the entry count times (default 1)
//   smsutil_peers --list              name the entries this build has
// XML: parse the benchmark documents into a tree and free it.  PDU: a
// stored DELIVER as hexadecimal text, with its service centre, into a
// record with the text as UTF-8.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench_inputs.hpp"
#include "probe_entry.hpp"
#include "smsutil/sms_pdu.h"

#ifdef SMSUTIL_PEER_PUGIXML
#include <pugixml.hpp>
#endif
#ifdef SMSUTIL_PEER_TINYXML2
#include <tinyxml2.h>
#endif
#ifdef SMSUTIL_PEER_MXML
#include <mxml.h>
#endif
#ifdef SMSUTIL_PEER_LIBXML2
// Its headers use the same XML_ERR_ names as the library's, so it lives in
// a file of its own.
bool libxml2_parse(const std::string &doc);
#endif
#ifdef SMSUTIL_PEER_GAMMU
#include <gammu.h>
#endif

namespace {

using namespace smsutil::bench;

struct Inputs {
    std::string xml_4k = xml_document(4 << 10);
    std::string xml_1m = xml_document(1 << 20);
    SmsReadPdu gsm7 = read_gsm7_160();
    SmsReadPdu ucs2 = read_ucs2_70();
};
const Inputs *g_in = nullptr;

SmsMessage g_message;
sms_pdu_record g_record;

bool ours_xml(const std::string &doc)
{
    XML_Node *root = nullptr;
    if (NDL_XML_Parse(doc.c_str(), &root) != 0) return false;
    NDL_XML_FreeNode(root);
    return true;
}

bool ours_parse_sms(const SmsReadPdu &pdu)
{
    SmsReadPdu in = pdu;
    return ParseSms(&in, &g_message) == SMS_RESULT_OK;
}

bool ours_pdu_decode(const SmsReadPdu &pdu)
{
    return sms_pdu_decode_hex(pdu.pdu, std::strlen(pdu.pdu), 0, &g_record) == SMS_PDU_OK;
}

#ifdef SMSUTIL_PEER_PUGIXML
bool pugixml_parse(const std::string &doc)
{
    pugi::xml_document tree;
    return tree.load_string(doc.c_str());
}
#endif
#ifdef SMSUTIL_PEER_TINYXML2
bool tinyxml2_parse(const std::string &doc)
{
    tinyxml2::XMLDocument tree;
    return tree.Parse(doc.c_str(), doc.size()) == tinyxml2::XML_SUCCESS;
}
#endif
#ifdef SMSUTIL_PEER_MXML
bool mxml_parse(const std::string &doc)
{
    mxml_node_t *tree = mxmlLoadString(nullptr, doc.c_str(), MXML_OPAQUE_CALLBACK);
    if (tree == nullptr) return false;
    mxmlDelete(tree);
    return true;
}
#endif
#ifdef SMSUTIL_PEER_GAMMU
GSM_SMSMessage g_peer_sms;
char g_peer_text[4 * GSM_MAX_SMS_LENGTH + 1];

bool gammu_decode(const SmsReadPdu &pdu)
{
    unsigned char octets[sizeof pdu.pdu / 2];
    const std::size_t hex_len = std::strlen(pdu.pdu);
    if (!DecodeHexBin(octets, reinterpret_cast<const unsigned char *>(pdu.pdu), hex_len)) return false;
    if (GSM_DecodePDUFrame(nullptr, &g_peer_sms, octets, hex_len / 2, nullptr, TRUE) != ERR_NONE) return false;
    EncodeUTF8(g_peer_text, g_peer_sms.Text);
    return true;
}
#endif

using Entry = ProbeEntry;

const std::vector<Entry> &entries()
{
    static const std::vector<Entry> list = {
        {"xml_parse_4k_ours", [] { return ours_xml(g_in->xml_4k); }},
        {"xml_parse_1m_ours", [] { return ours_xml(g_in->xml_1m); }},
#ifdef SMSUTIL_PEER_PUGIXML
        {"xml_parse_4k_pugixml", [] { return pugixml_parse(g_in->xml_4k); }},
        {"xml_parse_1m_pugixml", [] { return pugixml_parse(g_in->xml_1m); }},
#endif
#ifdef SMSUTIL_PEER_TINYXML2
        {"xml_parse_4k_tinyxml2", [] { return tinyxml2_parse(g_in->xml_4k); }},
        {"xml_parse_1m_tinyxml2", [] { return tinyxml2_parse(g_in->xml_1m); }},
#endif
#ifdef SMSUTIL_PEER_MXML
        {"xml_parse_4k_mxml", [] { return mxml_parse(g_in->xml_4k); }},
        {"xml_parse_1m_mxml", [] { return mxml_parse(g_in->xml_1m); }},
#endif
#ifdef SMSUTIL_PEER_LIBXML2
        {"xml_parse_4k_libxml2", [] { return libxml2_parse(g_in->xml_4k); }},
        {"xml_parse_1m_libxml2", [] { return libxml2_parse(g_in->xml_1m); }},
#endif
        {"pdu_gsm7_160_parse_sms", [] { return ours_parse_sms(g_in->gsm7); }},
        {"pdu_ucs2_70_parse_sms", [] { return ours_parse_sms(g_in->ucs2); }},
        {"pdu_gsm7_160_pdu_decode", [] { return ours_pdu_decode(g_in->gsm7); }},
        {"pdu_ucs2_70_pdu_decode", [] { return ours_pdu_decode(g_in->ucs2); }},
#ifdef SMSUTIL_PEER_GAMMU
        {"pdu_gsm7_160_gammu", [] { return gammu_decode(g_in->gsm7); }},
        {"pdu_ucs2_70_gammu", [] { return gammu_decode(g_in->ucs2); }},
#endif
    };
    return list;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc >= 2 && std::strcmp(argv[1], "--list") == 0) {
        for (const Entry &e : entries()) std::printf("%s\n", e.name);
        return 0;
    }
    const Entry *entry = nullptr;
    for (const Entry &e : entries())
        if (argc >= 2 && std::strcmp(e.name, argv[1]) == 0) entry = &e;
    if (entry == nullptr) {
        std::fprintf(stderr, "usage: %s <entry> [count] | --list\n", argv[0]);
        return 2;
    }
    static const Inputs inputs;
    g_in = &inputs;
    return run_entry(*entry, argc, argv);
}
