// Runs one entry point a given number of times, for counting its system
// calls (strace -c) or instructions (callgrind) from outside, or measures
// the stack it uses:
//   smsutil_probe <entry> [count]     call the entry count times (default 1)
//   smsutil_probe --stack <entry>     print the bytes of stack the entry used
//   smsutil_probe --list              name the entries
#include <pthread.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "bench_inputs.hpp"
#include "probe_entry.hpp"
#include "smsutil/sms_pdu.h"

namespace {

using namespace smsutil::bench;

std::vector<uint8_t> codes_of(const std::string &text)
{
    uint8_t codes[513] = {};
    uint32_t n = 0;
    if (UTF8_TO_7BIT(text.c_str(), codes, 512, &n, 0) != 0) n = 0;
    return std::vector<uint8_t>(codes, codes + n);
}

// Inputs are built before any counting starts.
struct Inputs {
    SmsReadPdu gsm7 = read_gsm7_160();
    SmsReadPdu ucs2 = read_ucs2_70();
    SmsReadPdu concat = read_concat_part();
    SmsReadPdu report = read_status_report();
    SmsMessage compose_gsm7 = compose_gsm7_160();
    SmsMessage compose_ucs2 = compose_ucs2_70();
    std::string ascii_600 = text_ascii_600();
    std::string cjk_268 = text_cjk_268();
    std::string mixed = text_mixed_160();
    std::vector<uint8_t> mixed_codes = codes_of(mixed);
    wms_raw_tpdu deliver = raw_deliver_gsm7_160();
    wms_gw_submit submit = submit_gsm7_160();
    wms_raw_tpdu cdma = raw_cdma_bearer_data();
    std::string xml_4k = xml_document(4 << 10);
    std::string xml_1m = xml_document(1 << 20);
    std::string feature = write_feature_file();
    std::string turkish = text_turkish_382();
};

const Inputs *g_in = nullptr;

// Results land in globals so the calls cannot be optimised away.
SmsMessage g_message;
SmsSendPdu g_send;
SmsPack g_packs[SMS_MAX_PACKS];
uint8_t g_codes[513];
char g_text[513];
wms_gw_deliver g_deliver;
wms_raw_tpdu g_raw;
wms_cdma_bearer_data g_bd;

SmsReadPdu g_read;
sms_pdu_record g_record;
sms_pdu_part g_parts[3];

bool encode_turkish()
{
    sms_pdu_encode_options options{};
    options.languages = 1u << SMS_PDU_LANG_TURKISH | 1u << SMS_PDU_LANG_SPANISH | 1u << SMS_PDU_LANG_PORTUGUESE;
    options.destination = "+905321234567";
    std::size_t count = 0;
    return sms_pdu_encode(g_in->turkish.data(), g_in->turkish.size(), &options, g_parts, 3, &count) == SMS_PDU_OK &&
           count == 3;
}

// Harness buffers live outside the measured stack.
bool parse(const SmsReadPdu &pdu)
{
    g_read = pdu;
    return ParseSms(&g_read, &g_message) == SMS_RESULT_OK;
}

bool pdu_decode(const SmsReadPdu &pdu)
{
    return sms_pdu_decode_hex(pdu.pdu, std::strlen(pdu.pdu), 0, &g_record) == SMS_PDU_OK;
}

bool xml_parse(const std::string &doc)
{
    XML_Node *root = nullptr;
    if (NDL_XML_Parse(doc.c_str(), &root) != 0) return false;
    NDL_XML_FreeNode(root);
    return true;
}

using Entry = ProbeEntry;

const Entry kEntries[] = {
    {"nothing", [] { return true; }},
    {"parse_gsm7_160", [] { return parse(g_in->gsm7); }},
    {"parse_ucs2_70", [] { return parse(g_in->ucs2); }},
    {"parse_concat_part", [] { return parse(g_in->concat); }},
    {"parse_status_report", [] { return parse(g_in->report); }},
    {"pdu_decode_gsm7_160", [] { return pdu_decode(g_in->gsm7); }},
    {"pdu_decode_ucs2_70", [] { return pdu_decode(g_in->ucs2); }},
    {"compose_gsm7_160", [] { return ComposeSms(&g_in->compose_gsm7, &g_send) == SMS_RESULT_OK; }},
    {"compose_ucs2_70", [] { return ComposeSms(&g_in->compose_ucs2, &g_send) == SMS_RESULT_OK; }},
    {"split_gsm7_600",
     [] {
         return sms_util_split_pack(g_in->ascii_600.c_str(), static_cast<int32_t>(g_in->ascii_600.size()), 1, 0,
                                    g_packs) == 4;
     }},
    {"split_ucs2_268",
     [] {
         return sms_util_split_pack(g_in->cjk_268.c_str(), static_cast<int32_t>(g_in->cjk_268.size()), 0, 0, g_packs) ==
                4;
     }},
    {"utf8_to_7bit",
     [] {
         uint32_t n = 0;
         return UTF8_TO_7BIT(g_in->mixed.c_str(), g_codes, 512, &n, 0) == 0;
     }},
    {"bit7_to_utf8",
     [] {
         return BIT7_TO_UTF8(g_in->mixed_codes.data(), static_cast<int32_t>(g_in->mixed_codes.size()), g_text,
                             sizeof g_text, 0) == 0;
     }},
    {"decode_deliver",
     [] {
         std::memset(&g_deliver, 0, sizeof g_deliver);
         return wms_ts_decode_deliver(&g_in->deliver, &g_deliver) == WMS_TS_STATUS_OK;
     }},
    {"encode_submit", [] { return wms_ts_encode_submit(&g_in->submit, &g_raw) == WMS_TS_STATUS_OK; }},
    {"decode_cdma_bd",
     [] {
         std::memset(&g_bd, 0, sizeof g_bd);
         return wms_ts_decode_CDMA_bd(&g_in->cdma, &g_bd) == WMS_TS_STATUS_OK;
     }},
    {"xml_parse_4k", [] { return xml_parse(g_in->xml_4k); }},
    {"xml_parse_1m", [] { return xml_parse(g_in->xml_1m); }},
    {"pdu_encode_turkish", encode_turkish},
    {"get_node_or_attr", [] { return NDL_XML_GetNodeOrAttr(g_in->feature.c_str(), kFeatureKey, g_text) == 0; }},
};

const Entry *find(const char *name)
{
    for (const Entry &e : kEntries)
        if (std::strcmp(e.name, name) == 0) return &e;
    return nullptr;
}

// The entry runs on a thread whose stack is a buffer painted with a pattern
// beforehand; the deepest byte no longer holding it is the high-water mark.
constexpr std::size_t kStackSize = 1 << 20;
constexpr unsigned char kPaint = 0xA5;

struct StackRun {
    const Entry *entry;
    bool ok;
};

void *run_on_thread(void *arg)
{
    auto *run = static_cast<StackRun *>(arg);
    run->ok = run->entry->run();
    return nullptr;
}

long stack_used(const Entry &entry)
{
    void *stack = nullptr;
    if (posix_memalign(&stack, 4096, kStackSize) != 0) return -1;
    std::memset(stack, kPaint, kStackSize);
    pthread_attr_t attr;
    pthread_attr_init(&attr);
    pthread_attr_setstack(&attr, stack, kStackSize);
    StackRun run{&entry, false};
    pthread_t thread;
    long used = -1;
    if (pthread_create(&thread, &attr, run_on_thread, &run) == 0) {
        pthread_join(thread, nullptr);
        // Stacks grow downwards: scan up from the lowest address.
        const auto *bytes = static_cast<const unsigned char *>(stack);
        std::size_t untouched = 0;
        while (untouched < kStackSize && bytes[untouched] == kPaint) ++untouched;
        used = run.ok ? static_cast<long>(kStackSize - untouched) : -1;
    }
    pthread_attr_destroy(&attr);
    std::free(stack);
    return used;
}

}  // namespace

int main(int argc, char **argv)
{
    if (argc >= 2 && std::strcmp(argv[1], "--list") == 0) {
        for (const Entry &e : kEntries) std::printf("%s\n", e.name);
        return 0;
    }
    const bool stack = argc >= 3 && std::strcmp(argv[1], "--stack") == 0;
    const char *name = stack ? argv[2] : argc >= 2 ? argv[1] : nullptr;
    const Entry *entry = name != nullptr ? find(name) : nullptr;
    if (entry == nullptr) {
        std::fprintf(stderr, "usage: %s <entry> [count] | --stack <entry> | --list\n", argv[0]);
        return 2;
    }
    static const Inputs inputs;
    g_in = &inputs;
    if (stack) {
        const long used = stack_used(*entry);
        if (used < 0) return 1;
        std::printf("%s %ld\n", entry->name, used);
        return 0;
    }
    return run_entry(*entry, argc, argv);
}
