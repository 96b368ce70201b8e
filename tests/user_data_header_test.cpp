#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/log_fixture.hpp"
#include "transport/codec_internal.hpp"
#include "transport_test_support.hpp"

namespace {

using Octets = std::vector<uint8_t>;

using smsutil::test::concat16;
using smsutil::test::concat8;

wms_udh national(uint16_t id, uint8_t language)
{
    wms_udh e{};
    e.header_id = id;
    e.u.nat_lang_ss = {static_cast<uint8_t>(id), 1, language};
    return e;
}

wms_udh port_element()
{
    wms_udh e{};
    e.header_id = 0x05;
    e.u.other.other_id = 0x05;
    e.u.other.header_length = 4;
    const uint8_t ports[4] = {0x0B, 0x84, 0x23, 0xF0};
    std::memcpy(e.u.other.data, ports, 4);
    return e;
}

Octets encode(const std::vector<wms_udh> &elements, uint8_t &udhl)
{
    std::array<uint8_t, WMS_MAX_LEN> out{};
    udhl = wms_ts_encode_user_data_header(static_cast<uint8_t>(elements.size()), elements.data(), out.data());
    return Octets(out.begin(), out.begin() + udhl + 1);
}

struct EncodeCase {
    const char *name;
    std::vector<wms_udh> elements;
    Octets octets;
};

class HeaderEncode : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(HeaderEncode, WritesUdhlAndElements)
{
    uint8_t udhl = 0;
    const Octets out = encode(GetParam().elements, udhl);
    EXPECT_EQ(udhl, GetParam().octets[0]);
    EXPECT_EQ(out, GetParam().octets);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, HeaderEncode,
    ::testing::Values(
        EncodeCase{"concat_8bit", {concat8(0x12, 3, 1)}, {0x05, 0x00, 0x03, 0x12, 0x03, 0x01}},
        EncodeCase{"concat_16bit", {concat16(0x1234, 2, 2)}, {0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02}},
        EncodeCase{"invalid_concat_left_out", {concat8(1, 3, 4)}, {0x00}},
        EncodeCase{"zero_total_left_out_others_kept",
                   {concat8(1, 0, 0), national(WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT, 1)},
                   {0x03, 0x25, 0x01, 0x01}},
        EncodeCase{"concat_and_single_shift",
                   {concat8(7, 2, 1), national(WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT, 2)},
                   {0x08, 0x00, 0x03, 0x07, 0x02, 0x01, 0x24, 0x01, 0x02}},
        EncodeCase{"raw_port_element", {port_element()}, {0x06, 0x05, 0x04, 0x0B, 0x84, 0x23, 0xF0}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(HeaderEncodeEdge, NoElementsWriteNothing)
{
    std::array<uint8_t, 4> out{0xEE, 0xEE, 0xEE, 0xEE};
    const wms_udh e = concat8(1, 2, 1);
    EXPECT_EQ(wms_ts_encode_user_data_header(0, &e, out.data()), 0);
    EXPECT_EQ(out[0], 0xEE);
}

TEST(HeaderEncodeEdge, AtMostSevenElementsAndNeverPastTheBuffer)
{
    std::vector<wms_udh> many(9, concat8(1, 2, 1));
    uint8_t udhl = 0;
    std::array<uint8_t, WMS_MAX_LEN> out{};
    udhl = wms_ts_encode_user_data_header(9, many.data(), out.data());
    EXPECT_EQ(udhl, 7 * 5);

    // Seven large pictures (131 octets each) cannot all fit: those that do
    // not are left out rather than cut.
    wms_udh picture{};
    picture.header_id = WMS_UDH_LARGE_PICTURE;
    std::vector<wms_udh> big(7, picture);
    smsutil::common::OctetWriter w(out.data(), out.size());
    EXPECT_EQ(smsutil::transport::encode_header(7, big.data(), w), 131);
    EXPECT_EQ(w.position(), 132u);
}

struct DecodeCase {
    const char *name;
    Octets octets;
    uint8_t result;
    uint8_t count;       // 0xEE: the count output is left alone
    const char *traced;  // a line the decoder writes, or ""
};

class HeaderDecode : public smsutil::test::LogTest, public ::testing::WithParamInterface<DecodeCase> {};

TEST_P(HeaderDecode, AcceptsOnlyWellFormedHeaders)
{
    const auto &c = GetParam();
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0xEE;
    EXPECT_EQ(wms_ts_decode_user_data_header(c.octets[0], c.octets.data(), &count, slots.data()), c.result);
    if (c.octets[0] != 0) {
        EXPECT_EQ(count, c.count);
    }
#if SMSUTIL_TRACE_ENABLED
    if (c.traced[0] != '\0') {
        EXPECT_TRUE(logged_by("wms_ts_decode_user_data_header", c.traced)) << log_text();
    }
    // A refused element ends the decoding before the count is reported.
    if (c.result == 0 && c.count == 0) {
        EXPECT_EQ(log_text().find("The num headers is"), std::string::npos) << log_text();
    }
#endif
}

INSTANTIATE_TEST_SUITE_P(
    Headers, HeaderDecode,
    ::testing::Values(
        DecodeCase{"concat_8bit", {0x05, 0x00, 0x03, 0x12, 0x03, 0x01}, 5, 1, "The num headers is 1"},
        DecodeCase{"single_shift", {0x03, 0x24, 0x01, 0x02}, 3, 1, ""},
        DecodeCase{"octet_left_over", {0x06, 0x00, 0x03, 0x12, 0x03, 0x01, 0x00}, 0, 0xEE, "The num headers is 0"},
        DecodeCase{"port_element_first", {0x04, 0x04, 0x02, 0x10, 0x20}, 0, 0, ""},
        DecodeCase{"seq_above_total", {0x05, 0x00, 0x03, 0x12, 0x03, 0x04}, 0, 0, "The header_length is 0"},
        DecodeCase{"zero_iedl_concat", {0x05, 0x00, 0x00, 0x12, 0x03, 0x01}, 0, 0, ""},
        DecodeCase{"concat_past_udhl", {0x04, 0x00, 0x03, 0x12, 0x03, 0x01}, 0, 0xEE, "The header_length is 4"},
        DecodeCase{"concat16_past_udhl", {0x05, 0x08, 0x04, 0x12, 0x34, 0x02, 0x01}, 0, 0xEE,
                   "The header_length is 5"},
        DecodeCase{"port_after_concat_kept", {0x0B, 0x00, 0x03, 0x12, 0x03, 0x01, 0x05, 0x04, 0x0B, 0x84, 0x23, 0xF0},
                   11, 2, ""},
        DecodeCase{"other_iedl_past_udhl", {0x0A, 0x00, 0x03, 0x12, 0x03, 0x01, 0x05, 0x04, 0x0B, 0x84, 0x23}, 0, 0xEE,
                   "The num headers is 0"},
        DecodeCase{"udhl_zero", {0x00, 0x00}, 0, 0, ""},
        DecodeCase{"lone_iei", {0x01, 0x00}, 0, 0xEE, "The num headers is 0"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(HeaderDecodeEdge, ElementsAreStoredInWireOrder)
{
    const Octets wire{0x10, 0x08, 0x04, 0xAB, 0xCD, 0x05, 0x02, 0x25, 0x01, 0x01,
                      0x01, 0x02, 0x80, 0x03, 0x24, 0x01, 0x02};
    // 0x01 (special SM) after supported ones is kept raw but never under
    // its own identifier, whose layout it does not have.
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0;
    ASSERT_EQ(wms_ts_decode_user_data_header(0, wire.data(), &count, slots.data()), 0x10);
    ASSERT_EQ(count, 4);
    EXPECT_EQ(+slots[0].header_id, WMS_UDH_CONCAT_16BIT_REF);
    EXPECT_EQ(+slots[0].u.concat_16.msg_ref, 0xABCD);
    EXPECT_EQ(slots[0].u.concat_16.total_sm, 5);
    EXPECT_EQ(slots[0].u.concat_16.seq_num, 2);
    EXPECT_EQ(+slots[1].header_id, WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT);
    EXPECT_EQ(slots[1].u.nat_lang_ls.shift_id, 0x25);
    EXPECT_EQ(slots[1].u.nat_lang_ls.national_language, 1);
    EXPECT_EQ(+slots[2].header_id, WMS_UDH_OTHER);
    EXPECT_EQ(+slots[2].u.other.other_id, 0x01);
    EXPECT_EQ(slots[2].u.other.header_length, 2);
    EXPECT_EQ(slots[2].u.other.data[1], 0x03);
    EXPECT_EQ(+slots[3].header_id, WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT);
}

TEST(HeaderDecodeEdge, EightConcatenationElementsStopAfterSeven)
{
    Octets wire{8 * 5};
    for (int i = 0; i < 8; ++i) wire.insert(wire.end(), {0x00, 0x03, static_cast<uint8_t>(i), 0x02, 0x01});
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0;
    EXPECT_EQ(wms_ts_decode_user_data_header(0, wire.data(), &count, slots.data()), 40);
    EXPECT_EQ(count, 7);
    EXPECT_EQ(+slots[6].u.concat_8.msg_ref, 6);
}

TEST(HeaderDecodeEdge, RawElementLongerThanTheRecordHoldsIsRefused)
{
    Octets wire{0, 0x00, 0x03, 0x01, 0x02, 0x01, 0x70, 138};
    wire.resize(wire.size() + 138, 0x55);
    wire[0] = static_cast<uint8_t>(wire.size() - 1);
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0;
    EXPECT_EQ(wms_ts_decode_user_data_header(0, wire.data(), &count, slots.data()), 0);
    wire[7] = 137;
    wire.pop_back();
    wire[0] = static_cast<uint8_t>(wire.size() - 1);
    EXPECT_EQ(wms_ts_decode_user_data_header(0, wire.data(), &count, slots.data()), wire[0]);
    EXPECT_EQ(slots[1].u.other.header_length, 137);
}

TEST(HeaderDecodeEdge, BoundedDecoderNeverReadsPastItsInput)
{
    const Octets wire{0x0B, 0x00, 0x03, 0x12, 0x03, 0x01, 0x05, 0x04, 0x0B, 0x84, 0x23, 0xF0};
    for (size_t len = 0; len < wire.size(); ++len) {
        // A copy of exactly len octets lets the address sanitizer see any overread.
        std::vector<uint8_t> cut(wire.begin(), wire.begin() + static_cast<long>(len));
        std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
        uint8_t count = 0;
        const auto result = smsutil::transport::decode_header(cut, count, slots.data());
        EXPECT_EQ(result.udhl, 0) << len;
        EXPECT_EQ(count, 0) << len;
    }
}

TEST(HeaderPointers, EachThreadHasItsOwn)
{
    const Octets wire{0x05, 0x00, 0x03, 0x12, 0x03, 0x01};
    std::array<wms_udh, WMS_UDH_MAX_IES> mine{};
    uint8_t count = 0;
    wms_ts_decode_user_data_header(0, wire.data(), &count, mine.data());
    EXPECT_EQ(smsutil::transport::decode_slot_ptr, &mine[0]);
    wms_udh *seen_by_other = &mine[1];
    std::thread([&] { seen_by_other = smsutil::transport::decode_slot_ptr; }).join();
    EXPECT_EQ(seen_by_other, nullptr);
    EXPECT_EQ(smsutil::transport::decode_slot_ptr, &mine[0]);
}

class HeaderLog : public smsutil::test::LogTest {};

TEST_F(HeaderLog, TracesWhatItReads)
{
    const std::vector<wms_udh> elements{concat8(0x12, 3, 1)};
    uint8_t udhl = 0;
    const Octets wire = encode(elements, udhl);
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0;
    wms_ts_decode_user_data_header(udhl, wire.data(), &count, slots.data());
#if SMSUTIL_TRACE_ENABLED
    EXPECT_TRUE(logged_by("wms_ts_encode_user_data_header", "The head id is: 0"));
    EXPECT_TRUE(logged_by("wms_ts_decode_user_data_header", "The udhl is 5"));
    EXPECT_TRUE(logged_by("wms_ts_decode_user_data_header", "The header_length is 4"));
    EXPECT_TRUE(logged_by("wms_ts_decode_user_data_header", "The num headers is 1"));
#endif
}

}  // namespace
