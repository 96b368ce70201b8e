#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>
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

constexpr unsigned kNoSca = SMS_PDU_DECODE_NO_SCA;

// The table of PDUs: each line's flags and hex decode to the record it describes.
TEST(PduDecode, EveryPduOfTheTable)
{
    std::ifstream table(std::string(SMSUTIL_TEST_DATA_DIR) + "/pdu_decode.txt");
    std::string line;
    int cases = 0;
    while (std::getline(table, line)) {
        if (line.empty() || line[0] == '#') continue;
        std::istringstream row(line);
        std::string flags, hex, want;
        row >> flags >> hex >> std::ws;
        std::getline(row, want);
        const unsigned f = flags == "0" ? 0 : flags == "n" ? kNoSca : kNoSca | SMS_PDU_DECODE_COMMAND;
        sms_pdu_record r;
        EXPECT_EQ(sms_pdu_decode_hex(hex.c_str(), hex.size(), f, &r), SMS_PDU_OK) << hex;
        EXPECT_EQ(describe(r), want) << hex;
        ++cases;
    }
    EXPECT_GT(cases, 30);  // the file was found and read
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

}  // namespace
