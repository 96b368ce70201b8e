// What the library writes to its diagnostic log, scenario by scenario,
// against golden transcripts (data/transcripts/<scenario>.txt).  Run with
// SMSUTIL_UPDATE_TRANSCRIPTS=1 after a deliberate change to a log line and
// review the difference.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>

#include "smsutil/sms_api.h"
#include "smsutil/sms_charset.h"
#include "smsutil/wms_ts.h"
#include "support/support.hpp"

namespace {

using namespace smsutil::test;

struct Scenario {
    const char *name;
    std::function<void()> run;
};
void PrintTo(const Scenario &s, std::ostream *os) { *os << s.name; }

class Transcript : public LogTest, public ::testing::WithParamInterface<Scenario> {};

TEST_P(Transcript, MatchesTheGoldenLog)
{
    GetParam().run();
    expect_transcript(GetParam().name);
}

void submit_both_ways()
{
    wms_raw_tpdu raw = raw_from_hex("11000B916407281553F80000AA0AE8329BFD4697D9EC37");
    wms_gw_submit msg{};
    wms_ts_decode_submit(&raw, &msg);
    wms_ts_encode_submit(&msg, &raw);
}

void header_and_user_data()
{
    wms_gw_dcs dcs{};
    dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    wms_gw_user_data in{};
    in.num_headers = 1;
    in.headers[0].header_id = WMS_UDH_CONCAT_8BIT_REF;
    in.headers[0].u.concat_8 = {0x12, 3, 1};
    in.sm_len = 5;
    std::memcpy(in.sm_data, "hello", 5);
    std::array<uint8_t, WMS_MAX_LEN> wire{};
    wms_ts_encode_gw_user_data(&dcs, &in, wire.data());
    wms_gw_user_data out{};
    wms_ts_decode_gw_user_data(&dcs, wire[0], wire.data() + 1, 1, &out);
    const std::array<uint8_t, 4> address{0x03, 0x81, 0x21, 0xF3};
    wms_address a{};
    wms_ts_decode_address(address.data(), &a);
    wms_ts_encode_address(&a, wire.data());
}

void parse_messages()
{
    SmsReadPdu in{};
    SmsMessage out{};
    in.state = 1;
    std::strcpy(in.pdu, "0891682143658709F10405812143F500004250607080902302E834");
    ParseSms(&in, &out);
    std::strcpy(in.pdu, "0891682143658709F1062A05812143F5425060708090234250607180902300");
    ParseSms(&in, &out);
    in.state = 3;
    std::strcpy(in.pdu, "0891682143658709f1110005812143f50000ff02e834");
    ParseSms(&in, &out);
}

void compose_and_split()
{
    SmsMessage msg{};
    std::strcpy(msg.szAddress, "12345");
    std::strcpy(msg.sca, "+8612345678901");
    msg.content[0] = 0x68;
    msg.content[1] = 0x69;
    msg.byContentLen = 2;
    SmsSendPdu pdu{};
    ComposeSms(&msg, &pdu);
    SmsPack packs[SMS_MAX_PACKS]{};
    const std::string text(161, 'b');
    sms_util_split_pack(text.c_str(), static_cast<int32_t>(text.size()), 1, 0, packs);
    char centre[SMS_NUMBER_SIZE];
    parse_centernum(SMS_NUMBER_SIZE, centre, "81");
    EWCheckDialNum("+86*1#", 20);
}

void convert_text()
{
    uint8_t codes[64];
    uint32_t n = 0;
    UTF8_TO_7BIT("Hi \xE2\x82\xAC{", codes, sizeof codes, &n, 0);
    char utf8[64];
    BIT7_TO_UTF8(codes, static_cast<int32_t>(n), utf8, sizeof utf8, 0);
    const uint8_t eight[] = {0xAC, 0x41, 0x00};
    uint8_t out[8];
    uint32_t out_len = 0;
    kv8bit_to_gsm7bit(eight, 2, out, sizeof out, &out_len);
    check_message_coding(eight);
}

void dump_buffers()
{
    const uint8_t data[20] = {'H', 'e', 'l', 'l',  'o',  ',',  ' ', 'W', 'o',  'r',
                              'l', 'd', '!', 0x01, 0x7F, 0x80, 'A', 'B', 0x00, '~'};
    for (const int32_t n : {0, 15, 16, 17, 20}) DumpBuffer(data, n, "demo");
    DumpBuffer(nullptr, 5, nullptr);
    DumpBuffer(data, -3, "neg");
}

INSTANTIATE_TEST_SUITE_P(Scenarios, Transcript,
                         ::testing::Values(Scenario{"submit_both_ways", submit_both_ways},
                                           Scenario{"header_and_user_data", header_and_user_data},
                                           Scenario{"parse_messages", parse_messages},
                                           Scenario{"compose_and_split", compose_and_split},
                                           Scenario{"convert_text", convert_text},
                                           Scenario{"dump_buffers", dump_buffers}),
                         [](const auto &info) { return std::string(info.param.name); });

}  // namespace
