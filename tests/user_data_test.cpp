#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/log_fixture.hpp"
#include "transport/codec_internal.hpp"
#include "transport_test_support.hpp"

namespace {

using Octets = std::vector<uint8_t>;

wms_gw_dcs dcs_of(uint8_t alphabet)
{
    wms_gw_dcs dcs{};
    dcs.msg_class = WMS_MESSAGE_CLASS_NONE;
    dcs.alphabet = alphabet;
    return dcs;
}

wms_gw_user_data text_data(const Octets &sm, std::vector<wms_udh> headers = {})
{
    wms_gw_user_data ud{};
    ud.num_headers = static_cast<uint8_t>(headers.size());
    std::copy(headers.begin(), headers.end(), ud.headers);
    ud.sm_len = static_cast<uint16_t>(sm.size());
    std::copy(sm.begin(), sm.end(), ud.sm_data);
    return ud;
}

Octets chars(const std::string &s) { return {s.begin(), s.end()}; }

using smsutil::test::concat16;
using smsutil::test::concat8;

struct EncodeCase {
    const char *name;
    uint8_t alphabet;
    wms_gw_user_data data;
    Octets wire;  // TP-UDL first
};

class UserDataEncode : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(UserDataEncode, WritesUdlAndData)
{
    const auto &c = GetParam();
    const wms_gw_dcs dcs = dcs_of(c.alphabet);
    std::array<uint8_t, WMS_MAX_LEN> out{};
    ASSERT_EQ(wms_ts_encode_gw_user_data(&dcs, &c.data, out.data()), c.wire.size());
    EXPECT_EQ(Octets(out.begin(), out.begin() + static_cast<long>(c.wire.size())), c.wire);
}

INSTANTIATE_TEST_SUITE_P(
    Data, UserDataEncode,
    ::testing::Values(
        EncodeCase{"gsm7_plain", WMS_ALPHABET_GSM7, text_data(chars("hellohello")),
                   {0x0A, 0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}},
        EncodeCase{"gsm7_after_8bit_concat_one_fill_bit", WMS_ALPHABET_GSM7,
                   text_data(chars("hello"), {concat8(0x12, 3, 1)}),
                   {0x0C, 0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xD0, 0x65, 0x36, 0xFB, 0x0D}},
        EncodeCase{"gsm7_after_16bit_concat_no_fill", WMS_ALPHABET_GSM7,
                   text_data(chars("hello"), {concat16(0x1234, 2, 2)}),
                   {0x0D, 0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02, 0xE8, 0x32, 0x9B, 0xFD, 0x06}},
        EncodeCase{"gsm7_all_elements_left_out", WMS_ALPHABET_GSM7, text_data(chars("hi"), {concat8(1, 1, 2)}),
                   {0x04, 0x00, 0x00, 0x3A, 0x0D}},
        EncodeCase{"ucs2_plain", WMS_ALPHABET_UCS2, text_data({0x41, 0x00, 0x42, 0x00}),
                   {0x04, 0x00, 0x41, 0x00, 0x42}},
        EncodeCase{"ucs2_after_concat", WMS_ALPHABET_UCS2, text_data({0x41, 0x00}, {concat8(9, 2, 2)}),
                   {0x08, 0x05, 0x00, 0x03, 0x09, 0x02, 0x02, 0x00, 0x41}},
        EncodeCase{"8bit_odd_sends_the_next_octet", WMS_ALPHABET_8BIT, text_data({0x01, 0x02, 0x03}),
                   {0x03, 0x02, 0x01, 0x00, 0x03}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(UserDataEncodeEdge, OctetDataStopsAtTheEndOfTheBuffer)
{
    wms_gw_user_data ud = text_data(Octets(200, 0x11));
    ud.sm_len = 300;  // more than sm_data holds: never read past it
    const wms_gw_dcs dcs = dcs_of(WMS_ALPHABET_UCS2);
    std::array<uint8_t, 40> out{};
    smsutil::common::OctetWriter w(out.data(), out.size());
    EXPECT_EQ(smsutil::transport::encode_user_data(dcs, ud, w), 40u);
    EXPECT_EQ(out[0], 300 & 0xFF);
}

struct DecodeCase {
    const char *name;
    uint8_t alphabet;
    uint8_t udl;
    bool header;
    Octets wire;  // TP-UD
    uint8_t consumed;
    Octets sm;
    uint16_t sm_len;
    uint8_t headers;
};

class UserDataDecode : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(UserDataDecode, ReadsHeaderAndText)
{
    const auto &c = GetParam();
    const wms_gw_dcs dcs = dcs_of(c.alphabet);
    wms_gw_user_data ud{};
    EXPECT_EQ(wms_ts_decode_gw_user_data(&dcs, c.udl, c.wire.data(), c.header, &ud), c.consumed);
    EXPECT_EQ(+ud.sm_len, +c.sm_len);
    EXPECT_EQ(ud.num_headers, c.headers);
    EXPECT_EQ(Octets(ud.sm_data, ud.sm_data + c.sm.size()), c.sm);
}

INSTANTIATE_TEST_SUITE_P(
    Data, UserDataDecode,
    ::testing::Values(
        DecodeCase{"gsm7_plain", WMS_ALPHABET_GSM7, 10, false,
                   {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}, 9, chars("hellohello"), 10, 0},
        DecodeCase{"gsm7_after_concat", WMS_ALPHABET_GSM7, 12, true,
                   {0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xD0, 0x65, 0x36, 0xFB, 0x0D}, 11, chars("hello"), 5, 1},
        DecodeCase{"gsm7_header_ignored_without_udhi", WMS_ALPHABET_GSM7, 3, false, {0x05, 0x00, 0x03}, 3,
                   {0x05, 0x00, 0x0C}, 3, 0},
        DecodeCase{"gsm7_header_longer_than_udl", WMS_ALPHABET_GSM7, 7, true,
                   {0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02}, 7, {0, 0}, 0, 1},
        DecodeCase{"gsm7_refused_header_reads_all", WMS_ALPHABET_GSM7, 2, true, {0x01, 0x00}, 2, {0x01, 0x00}, 2, 0},
        DecodeCase{"ucs2_zero_units_move_to_the_end", WMS_ALPHABET_UCS2, 6, false,
                   {0x00, 0x41, 0x00, 0x00, 0x00, 0x42}, 6, {0x41, 0x00, 0x42, 0x00, 0x00, 0x00}, 6, 0},
        DecodeCase{"ucs2_after_concat", WMS_ALPHABET_UCS2, 8, true,
                   {0x05, 0x00, 0x03, 0x09, 0x02, 0x02, 0x04, 0x10}, 8, {0x10, 0x04}, 2, 1},
        DecodeCase{"ucs2_national_language_keeps_header", WMS_ALPHABET_UCS2, 6, true,
                   {0x03, 0x24, 0x01, 0x02, 0x00, 0x41}, 6, {0x24, 0x03, 0x02, 0x01, 0x41, 0x00}, 6, 1},
        DecodeCase{"ucs2_udhl_zero_skips_one_octet", WMS_ALPHABET_UCS2, 5, true, {0x00, 0x00, 0x41, 0x00, 0x42}, 5,
                   {0x41, 0x00, 0x42, 0x00}, 4, 0},
        DecodeCase{"8bit_refused_header_skips_one_octet", WMS_ALPHABET_8BIT, 5, true, {0x03, 0x05, 0x01, 0x00, 0x42},
                   5, {0x01, 0x05, 0x42, 0x00}, 4, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(UserDataDecodeEdge, UdhlZeroNeverUsesASlotLeftByAnEarlierCall)
{
    // An earlier header leaves the decode pointer on a national language slot.
    const Octets earlier{0x03, 0x24, 0x01, 0x02};
    std::array<wms_udh, WMS_UDH_MAX_IES> old{};
    uint8_t count = 0;
    ASSERT_EQ(wms_ts_decode_user_data_header(0, earlier.data(), &count, old.data()), 3);
    const wms_gw_dcs dcs = dcs_of(WMS_ALPHABET_UCS2);
    const Octets wire{0x00, 0x00, 0x41};
    wms_gw_user_data ud{};
    EXPECT_EQ(wms_ts_decode_gw_user_data(&dcs, 3, wire.data(), 1, &ud), 3);
    EXPECT_EQ(+ud.sm_len, 2);
    EXPECT_EQ(ud.sm_data[0], 0x41);
}

TEST(UserDataDecodeEdge, FullSeptetMessage)
{
    Octets wire(140, 0);
    for (size_t i = 0; i < wire.size(); ++i) wire[i] = static_cast<uint8_t>(i * 37 + 5);
    const wms_gw_dcs dcs = dcs_of(WMS_ALPHABET_GSM7);
    wms_gw_user_data ud{};
    EXPECT_EQ(wms_ts_decode_gw_user_data(&dcs, 160, wire.data(), 0, &ud), 140);
    EXPECT_EQ(+ud.sm_len, 160);
    std::array<uint8_t, 140> repacked{};
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(ud.sm_data, 160, 0, 140, repacked.data()), 140);
    EXPECT_TRUE(std::equal(repacked.begin(), repacked.end(), wire.begin()));
}

TEST(UserDataDecodeEdge, ShortDataIsReportedNotRead)
{
    const Octets wire{0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xD0, 0x65, 0x36, 0xFB, 0x0D};
    for (uint8_t alphabet : {uint8_t{WMS_ALPHABET_GSM7}, uint8_t{WMS_ALPHABET_UCS2}}) {
        const uint8_t udl = alphabet == WMS_ALPHABET_GSM7 ? 12 : 11;
        for (size_t len = 0; len <= wire.size(); ++len) {
            const Octets cut(wire.begin(), wire.begin() + static_cast<long>(len));
            wms_gw_user_data ud{};
            const auto r = smsutil::transport::decode_user_data(dcs_of(alphabet), udl, cut, true, ud);
            EXPECT_EQ(r.complete, len == wire.size()) << len;
        }
    }
}

TEST(UserDataDecodeEdge, HeaderPastUdlIsReadFromTheRestOfTheTpdu)
{
    // TP-UDL 3 leaves no room for the header: it is kept, and there is no text.
    const Octets rest{0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xE8, 0x32};
    for (uint8_t alphabet : {uint8_t{WMS_ALPHABET_GSM7}, uint8_t{WMS_ALPHABET_UCS2}}) {
        wms_gw_user_data ud{};
        const auto r = smsutil::transport::decode_user_data(dcs_of(alphabet), 3, rest, true, ud);
        EXPECT_TRUE(r.complete);
        EXPECT_EQ(r.consumed, 6u);
        EXPECT_EQ(+ud.sm_len, 0);
        ASSERT_EQ(ud.num_headers, 1);
        EXPECT_EQ(ud.headers[0].u.concat_8.total_sm, 3);
    }
}

class UserDataLog : public smsutil::test::LogTest {};

TEST_F(UserDataLog, TracesBothDirections)
{
    const wms_gw_dcs dcs = dcs_of(WMS_ALPHABET_GSM7);
    const wms_gw_user_data in = text_data(chars("hello"), {concat8(0x12, 3, 1)});
    std::array<uint8_t, WMS_MAX_LEN> wire{};
    wms_ts_encode_gw_user_data(&dcs, &in, wire.data());
    wms_gw_user_data out{};
    wms_ts_decode_gw_user_data(&dcs, wire[0], wire.data() + 1, 1, &out);
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("wms_ts_encode_gw_user_data", "The sm_len is 5"));
    EXPECT_TRUE(logged_by("wms_ts_encode_gw_user_data", "The header length is 5"));
    EXPECT_TRUE(logged_by("wms_ts_encode_gw_user_data", "The data before encoded is hello"));
    EXPECT_TRUE(logged_by("wms_ts_encode_gw_user_data", "The code after encoded for 7 bit is: d0"));
    EXPECT_TRUE(logged_by("wms_ts_encode_gw_user_data", "The i value returned is 5"));
    EXPECT_TRUE(logged_by("wms_ts_decode_gw_user_data", "The lenth of the data decoded is: 12"));
    EXPECT_TRUE(logged_by("wms_ts_decode_gw_user_data", "The value of sm_len here is 5"));
    EXPECT_TRUE(logged_by("wms_ts_decode_gw_user_data", "The value of pos here is 6"));
#endif
}

}  // namespace
