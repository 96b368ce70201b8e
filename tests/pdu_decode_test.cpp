#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "smsutil/sms_pdu.h"

namespace {

std::string time_text(const sms_pdu_time &t)
{
    char b[40];
    std::snprintf(b, sizeof b, "%02u-%02u-%02u %02u:%02u:%02u%+d", t.year, t.month, t.day, t.hour, t.minute, t.second,
                  t.timezone);
    return b;
}

// Every field of a record that a PDU set, in one line, so that one string
// per case checks the whole record.
std::string describe(const sms_pdu_record &r)
{
    std::string s = std::string("kind=") + "DSRC"[r.kind];
    const auto add = [&s](const char *key, const std::string &v) { s += std::string(" ") + key + "=" + v; };
    const auto num = [&](const char *key, unsigned v, bool always = false) {
        if (v != 0 || always) add(key, std::to_string(v));
    };
    if (r.has_sca != 0) add("sca", std::string(r.sca.text) + "/" + std::to_string(r.sca.type));
    add("addr",
        std::string(r.address.text) + "/" + std::to_string(r.address.type) + "." + std::to_string(r.address.plan));
    num("mms", r.more_messages);
    num("lp", r.loop_prevention);
    num("rp", r.reply_path);
    num("rd", r.reject_duplicates);
    num("sr", r.status_report);
    num("udhi", r.header_indicator);
    num("mr", r.message_reference);
    num("pid", r.pid);
    const sms_pdu_dcs &d = r.dcs;
    add("dcs", std::to_string(d.alphabet) +
                   (d.message_class != SMS_PDU_CLASS_NONE ? "c" + std::to_string(d.message_class) : "") +
                   (d.compressed != 0 ? "z" : "") + (d.auto_delete != 0 ? "x" : "") +
                   (d.mwi_group != 0 ? "m" + std::to_string(d.mwi_group) + (d.mwi_active != 0 ? "+" : "-") +
                                           std::to_string(d.mwi_type)
                                     : ""));
    if (r.kind == SMS_PDU_DELIVER || r.kind == SMS_PDU_STATUS_REPORT) add("ts", time_text(r.timestamp));
    if (r.validity.format == SMS_PDU_VP_RELATIVE) add("vp", std::to_string(r.validity.relative_seconds) + "s");
    if (r.validity.format == SMS_PDU_VP_ABSOLUTE) add("vp", time_text(r.validity.absolute));
    if (r.validity.format == SMS_PDU_VP_ENHANCED) add("vp", "e" + std::to_string(r.validity.enhanced[0]));
    if (r.kind == SMS_PDU_STATUS_REPORT) {
        add("dt", time_text(r.discharge_time));
        add("st", std::to_string(r.status) + "/" + std::to_string(r.status_category));
        if (r.has_parameter_indicator != 0) num("pi", r.parameter_indicator, true);
    }
    if (r.kind == SMS_PDU_COMMAND) add("cmd", std::to_string(r.command_type) + "/" + std::to_string(r.message_number));
    num("ud", r.user_data_length);
    num("hl", r.header_length);
    for (unsigned i = 0; i < r.element_count; ++i)
        add("ie", std::to_string(r.elements[i].id) + "@" + std::to_string(r.elements[i].offset) + "+" +
                      std::to_string(r.elements[i].length));
    if (r.has_concatenation != 0)
        add("concat", std::to_string(r.concatenation_reference) + "/" + std::to_string(r.concatenation_total) + "/" +
                          std::to_string(r.concatenation_part) + (r.concatenation_16bit != 0 ? "w" : ""));
    if (r.has_ports != 0)
        add("ports",
            std::to_string(r.source_port) + ">" + std::to_string(r.destination_port) + (r.ports_16bit != 0 ? "w" : ""));
    if (r.has_locking_shift != 0) num("lock", r.locking_language, true);
    if (r.has_single_shift != 0) num("single", r.single_language, true);
    if (r.text_length != 0 || r.dcs.alphabet != SMS_PDU_ALPHABET_8BIT) add("text", std::string(r.text, r.text_length));
    for (unsigned i = 0; i < r.problem_count; ++i)
        add("p", std::to_string(r.problems[i].code) + "@" + std::to_string(r.problems[i].offset));
    return s;
}

struct Case {
    const char *hex;
    unsigned flags;
    const char *want;
};

template <std::size_t N>
void check_all(const Case (&cases)[N])
{
    for (const Case &c : cases) {
        sms_pdu_record r;
        EXPECT_EQ(sms_pdu_decode_hex(c.hex, std::strlen(c.hex), c.flags, &r), SMS_PDU_OK) << c.hex;
        EXPECT_EQ(describe(r), c.want) << c.hex;
    }
}

constexpr unsigned kNoSca = SMS_PDU_DECODE_NO_SCA;

// Kinds, addresses, time stamps, validity periods and status reports.
TEST(PduDecode, Fields)
{
    const Case cases[] = {
        {"07911326040000F0040B911346610089F60000208051515473400AE8329BFD4697D9EC37", 0,
         "kind=D sca=+31624000000/1 addr=+31641600986/1.1 dcs=0 ts=02-08-15 15:45:37+4 ud=9 text=hellohello"},
        // Empty service centre as a lone type octet; alphanumeric sender
        // with an underscore and an extension character.
        {"0181"
         "00"
         "09D04F59648302"
         "00"
         "00"
         "11208211050500"
         "0141",
         0, "kind=D sca=/0 addr=O2_{/5.0 mms=1 dcs=0 ts=11-02-28 11:50:50+0 ud=1 text=A"},
        {"0181"
         "00"
         "06D0418010"
         "00"
         "00"
         "11208211050500"
         "00",
         0, "kind=D sca=/0 addr=A@B/5.0 mms=1 dcs=0 ts=11-02-28 11:50:50+0 text="},
        // 20 digits; UCS-2 with a surrogate pair and a lone half; west of UTC.
        {"06914488214365"
         "A4"
         "149121436587092143658709"
         "00"
         "08"
         "1120821105050A"
         "0A0048006"
         "9D83DDE00DC00",
         0,
         "kind=D sca=+4488123456/1 addr=+12345678901234567890/1.1 rp=1 sr=1 dcs=2 ts=11-02-28 11:50:50-20 ud=10 "
         "text=Hi\xF0\x9F\x98\x80\xEF\xBF\xBD p=11@38"},
        {"00"
         "31"
         "05"
         "0A816021436587"
         "00"
         "04"
         "A7"
         "04DEADBEEF",
         0, "kind=S sca=/0 addr=0612345678/0.1 sr=1 mr=5 dcs=1 vp=86400s ud=4"},
        {"19"
         "00"
         "04912143"
         "00"
         "00"
         "1120821105050A"
         "00",
         kNoSca, "kind=S addr=+1234/1.1 dcs=0 vp=11-02-28 11:50:50-20 text="},
        {"0D"
         "00"
         "04912143"
         "00"
         "00"
         "01020000000000"
         "00",
         kNoSca, "kind=S addr=+1234/1.1 rd=1 dcs=0 vp=e1 text="},
        {"06"
         "2A"
         "0B911346610089F6"
         "20805151547340"
         "20805151547540"
         "00",
         kNoSca, "kind=R addr=+31641600986/1.1 mr=42 dcs=0 ts=02-08-15 15:45:37+4 dt=02-08-15 15:45:57+4 st=0/0 text="},
        // TP-PI filled with ones: ignored.  A PI announcing PID and DCS.
        {"22"
         "2A"
         "04912143"
         "20805151547340"
         "20805151547540"
         "46"
         "FF",
         kNoSca,
         "kind=R addr=+1234/1.1 mms=1 sr=1 mr=42 dcs=0 ts=02-08-15 15:45:37+4 dt=02-08-15 15:45:57+4 st=70/2 "
         "pi=255 text= p=16@21"},
        {"02"
         "2A"
         "04912143"
         "20805151547340"
         "20805151547540"
         "61"
         "06"
         "F6"
         "0141",
         kNoSca,
         "kind=R addr=+1234/1.1 mms=1 mr=42 dcs=1c2 ts=02-08-15 15:45:37+4 dt=02-08-15 15:45:57+4 st=97/3 pi=6 ud=1"},
        {"22"
         "01"
         "00"
         "01"
         "2A"
         "04912143"
         "00",
         kNoSca | SMS_PDU_DECODE_COMMAND, "kind=C addr=+1234/1.1 sr=1 mr=1 dcs=1 cmd=1/42"},
        // Month 13 and a non-decimal second are kept but reported.
        {"04"
         "04912143"
         "00"
         "00"
         "1131821105A50A"
         "00",
         kNoSca, "kind=D addr=+1234/1.1 dcs=0 ts=11-13-28 11:50:60-20 text= p=13@7"},
    };
    check_all(cases);
}

// The header elements wherever they stand, national tables, and damaged
// headers that leave the text readable.  Each PDU is a DELIVER from +1234
// with TP-UDHI; the fields from the user data on are compared.
TEST(PduDecode, HeadersAndText)
{
    struct HeaderCase {
        const char *dcs;
        const char *user_data;
        const char *want;
    };
    const HeaderCase cases[] = {
        // Turkish locking and single shift; the text ends with an escape.
        {"00", "0E0625010124010187CD7153DE00",
         "ud=13 hl=7 ie=37@3+1 ie=36@6+1 lock=1 single=1 text=\xC4\xB1\xC4\x9E\xE2\x82\xAC p=9@26"},
        {"00", "0B06250103240103954D01", "ud=10 hl=7 ie=37@3+1 ie=36@6+1 lock=3 single=3 text=\xE2\x88\x9E\xC3\xAA"},
        {"00", "070324010D40A601", "ud=7 hl=4 ie=36@3+1 single=13 text=Hi p=1@16"},
        {"00", "100B05040B8423F00003420201BCD7",
         "ud=14 hl=12 ie=5@3+4 ie=0@9+3 concat=66/2/1 ports=9200>2948w text=ok"},
        {"00", "0C050A03000510906536FB0D", "ud=11 hl=6 ie=10@3+3 text=Hello"},
        {"00", "0E0800034202010A09000059CE03", "ud=13 hl=9 ie=0@3+3 concat=66/2/1 text=Hey p=3@21"},
        {"00", "09050003420203B26F", "ud=8 hl=6 ie=0@3+3 text=Yo p=5@16"},
        {"00", "090624010224010141", "ud=8 hl=7 ie=36@3+1 ie=36@6+1 single=1 text=A p=6@19"},
        {"04", "0906050400FA23F00106", "ud=9 hl=7 ie=5@3+4 ports=9200>250w"},
        {"08", "0A05000301020200410042", "ud=10 hl=6 ie=0@3+3 concat=1/2/2 text=AB"},
        {"08", "03050003", "ud=3 hl=3 text= p=2@15 p=3@16"},
    };
    for (const HeaderCase &c : cases) {
        const std::string hex = std::string(
                                    "4404912143"
                                    "00") +
                                c.dcs + "11208211050500" + c.user_data;
        sms_pdu_record r;
        EXPECT_EQ(sms_pdu_decode_hex(hex.c_str(), hex.size(), kNoSca, &r), SMS_PDU_OK) << hex;
        const std::string got = describe(r);
        EXPECT_EQ(got.substr(got.find(" ud=") + 1), c.want) << hex;
    }
}

// Every field cut short gives its own code; what was read before stays.
TEST(PduDecode, RefusedInput)
{
    struct ErrorCase {
        const char *hex;
        unsigned flags;
        int rc;
        const char *text;
    };
    const std::string too_long(2 * (SMS_PDU_MAX_INPUT_OCTETS + 1), '0');
    const ErrorCase cases[] = {
        {"", 0, SMS_PDU_ERR_TRUNCATED_SCA, ""},
        {"0791", 0, SMS_PDU_ERR_TRUNCATED_SCA, ""},
        {"0C91", 0, SMS_PDU_ERR_SCA_LENGTH, ""},
        {"07911326040000F0", 0, SMS_PDU_ERR_TRUNCATED_FIRST_OCTET, ""},
        {"07911326040000G0", 0, SMS_PDU_ERR_BAD_HEX, ""},
        {"07911326040000F", 0, SMS_PDU_ERR_ODD_LENGTH, ""},
        {too_long.c_str(), 0, SMS_PDU_ERR_TOO_LONG, ""},
        {"03", kNoSca, SMS_PDU_ERR_UNSUPPORTED_MTI, ""},
        {"040B91", kNoSca, SMS_PDU_ERR_TRUNCATED_ADDRESS, ""},
        {"041591", kNoSca, SMS_PDU_ERR_ADDRESS_LENGTH, ""},
        {"04049121", kNoSca, SMS_PDU_ERR_TRUNCATED_ADDRESS, ""},
        {"0404912143", kNoSca, SMS_PDU_ERR_TRUNCATED_PID, ""},
        {"040491214300", kNoSca, SMS_PDU_ERR_TRUNCATED_DCS, ""},
        {"04049121430000112082", kNoSca, SMS_PDU_ERR_TRUNCATED_TIMESTAMP, ""},
        {"0404912143000011208211050500", kNoSca, SMS_PDU_ERR_TRUNCATED_USER_DATA_LENGTH, ""},
        {"04049121430000112082110505000AE8329B", kNoSca, SMS_PDU_ERR_TRUNCATED_USER_DATA, "hel"},
        {"01", kNoSca, SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE, ""},
        {"1100049121430000", kNoSca, SMS_PDU_ERR_TRUNCATED_VALIDITY, ""},
        {"1900049121430000112082", kNoSca, SMS_PDU_ERR_TRUNCATED_VALIDITY, ""},
        {"022A0491214320805151547340208051515475400001", kNoSca, SMS_PDU_ERR_TRUNCATED_PID, ""},
        {"022A0491214320805151547340208051515475400002", kNoSca, SMS_PDU_ERR_TRUNCATED_DCS, ""},
        {"022A0491214320805151547340208051515475400004", kNoSca, SMS_PDU_ERR_TRUNCATED_USER_DATA_LENGTH, ""},
        {"022A0491214320805151547340208051515475", kNoSca, SMS_PDU_ERR_TRUNCATED_DISCHARGE_TIME, ""},
        {"022A049121432080515154734020805151547540", kNoSca, SMS_PDU_ERR_TRUNCATED_STATUS, ""},
        {"0201", kNoSca | SMS_PDU_DECODE_COMMAND, SMS_PDU_ERR_TRUNCATED_PID, ""},
        {"020100", kNoSca | SMS_PDU_DECODE_COMMAND, SMS_PDU_ERR_TRUNCATED_COMMAND_TYPE, ""},
        {"02010001", kNoSca | SMS_PDU_DECODE_COMMAND, SMS_PDU_ERR_TRUNCATED_MESSAGE_NUMBER, ""},
        {"02010001020491214302AA", kNoSca | SMS_PDU_DECODE_COMMAND, SMS_PDU_ERR_TRUNCATED_USER_DATA, ""},
    };
    for (const ErrorCase &c : cases) {
        sms_pdu_record r;
        EXPECT_EQ(sms_pdu_decode_hex(c.hex, std::strlen(c.hex), c.flags, &r), c.rc) << c.hex;
        EXPECT_STREQ(r.text, c.text) << c.hex;
        EXPECT_STRNE(sms_pdu_result_text(c.rc), "") << c.rc;
    }
    sms_pdu_record r;
    EXPECT_EQ(sms_pdu_decode(nullptr, 1, 0, &r), SMS_PDU_ERR_NULL);
    EXPECT_EQ(sms_pdu_decode_hex("00", 2, 0, nullptr), SMS_PDU_ERR_NULL);
}

// The data coding groups, each in a DELIVER without user data.
TEST(PduDecode, DataCodingScheme)
{
    const std::pair<const char *, const char *> cases[] = {
        {"00", "dcs=0 text="},          {"08", "dcs=2 text="},        {"11", "dcs=0c1 text="},
        {"28", "dcs=2z text= p=15@15"}, {"5A", "dcs=2c2x text="},     {"C8", "dcs=0m1+0 text="},
        {"D3", "dcs=0m2-3 text="},      {"EA", "dcs=2m2+2 text="},    {"F6", "dcs=1c2"},
        {"F1", "dcs=0c1 text="},        {"0C", "dcs=0 text= p=14@6"}, {"85", "dcs=0 text= p=14@6"},
    };
    for (const auto &[dcs, want] : cases) {
        const std::string hex = std::string("040491214300") + dcs + "11208211050500" + "00";
        sms_pdu_record r;
        EXPECT_EQ(sms_pdu_decode_hex(hex.c_str(), hex.size(), kNoSca, &r), SMS_PDU_OK) << dcs;
        std::string got = describe(r);
        const std::string ts = " ts=11-02-28 11:50:50+0";
        got.erase(got.find(ts), ts.size());
        EXPECT_EQ(got.substr(got.find("dcs=")), want) << dcs;
    }
}

}  // namespace
