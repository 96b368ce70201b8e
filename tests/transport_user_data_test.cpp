// User data: header elements, the header, the text behind it and septet packing.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/support.hpp"
#include "transport/codec_internal.hpp"

namespace {

using namespace smsutil::test;

wms_udh concat8(uint8_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e{};
    e.header_id = WMS_UDH_CONCAT_8BIT_REF;
    e.u.concat_8 = {ref, total, seq};
    return e;
}

wms_udh concat16(uint16_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e{};
    e.header_id = WMS_UDH_CONCAT_16BIT_REF;
    e.u.concat_16 = {ref, total, seq};
    return e;
}

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

struct HeaderCase {
    const char *name;
    std::vector<wms_udh> elements;
    Octets octets;
};

class HeaderEncode : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(HeaderEncode, WritesUdhlAndElements)
{
    uint8_t udhl = 0;
    const Octets out = encode(GetParam().elements, udhl);
    EXPECT_EQ(udhl, GetParam().octets[0]);
    EXPECT_EQ(out, GetParam().octets);
}

INSTANTIATE_TEST_SUITE_P(
    Headers, HeaderEncode,
    ::testing::Values(HeaderCase{"concat_8bit", {concat8(0x12, 3, 1)}, {0x05, 0x00, 0x03, 0x12, 0x03, 0x01}},
                      HeaderCase{"concat_16bit", {concat16(0x1234, 2, 2)}, {0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02}},
                      HeaderCase{"invalid_concat_left_out", {concat8(1, 3, 4)}, {0x00}},
                      HeaderCase{"zero_total_left_out_others_kept",
                                 {concat8(1, 0, 0), national(WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT, 1)},
                                 {0x03, 0x25, 0x01, 0x01}},
                      HeaderCase{"concat_and_single_shift",
                                 {concat8(7, 2, 1), national(WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT, 2)},
                                 {0x08, 0x00, 0x03, 0x07, 0x02, 0x01, 0x24, 0x01, 0x02}},
                      HeaderCase{"raw_port_element", {port_element()}, {0x06, 0x05, 0x04, 0x0B, 0x84, 0x23, 0xF0}}),
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

struct HeaderDecodeCase {
    const char *name;
    Octets octets;
    uint8_t result;
    uint8_t count;       // 0xEE: the count output is left alone
    const char *traced;  // a line the decoder writes, or ""
};

class HeaderDecode : public LogTest, public ::testing::WithParamInterface<HeaderDecodeCase> {};

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
        EXPECT_TRUE(logged(c.traced)) << log_text();
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
        HeaderDecodeCase{"concat_8bit", {0x05, 0x00, 0x03, 0x12, 0x03, 0x01}, 5, 1, "The num headers is 1"},
        HeaderDecodeCase{"single_shift", {0x03, 0x24, 0x01, 0x02}, 3, 1, ""},
        HeaderDecodeCase{
            "octet_left_over", {0x06, 0x00, 0x03, 0x12, 0x03, 0x01, 0x00}, 0, 0xEE, "The num headers is 0"},
        HeaderDecodeCase{"port_element_first", {0x04, 0x04, 0x02, 0x10, 0x20}, 0, 0, ""},
        HeaderDecodeCase{"seq_above_total", {0x05, 0x00, 0x03, 0x12, 0x03, 0x04}, 0, 0, "The header_length is 0"},
        HeaderDecodeCase{"zero_iedl_concat", {0x05, 0x00, 0x00, 0x12, 0x03, 0x01}, 0, 0, ""},
        HeaderDecodeCase{"concat_past_udhl", {0x04, 0x00, 0x03, 0x12, 0x03, 0x01}, 0, 0xEE, "The header_length is 4"},
        HeaderDecodeCase{
            "concat16_past_udhl", {0x05, 0x08, 0x04, 0x12, 0x34, 0x02, 0x01}, 0, 0xEE, "The header_length is 5"},
        HeaderDecodeCase{"port_after_concat_kept",
                         {0x0B, 0x00, 0x03, 0x12, 0x03, 0x01, 0x05, 0x04, 0x0B, 0x84, 0x23, 0xF0},
                         11,
                         2,
                         ""},
        HeaderDecodeCase{"other_iedl_past_udhl",
                         {0x0A, 0x00, 0x03, 0x12, 0x03, 0x01, 0x05, 0x04, 0x0B, 0x84, 0x23},
                         0,
                         0xEE,
                         "The num headers is 0"},
        HeaderDecodeCase{"udhl_zero", {0x00, 0x00}, 0, 0, ""},
        HeaderDecodeCase{"lone_iei", {0x01, 0x00}, 0, 0xEE, "The num headers is 0"}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(HeaderDecodeEdge, ElementsAreStoredInWireOrder)
{
    const Octets wire{0x10, 0x08, 0x04, 0xAB, 0xCD, 0x05, 0x02, 0x25, 0x01,
                      0x01, 0x01, 0x02, 0x80, 0x03, 0x24, 0x01, 0x02};
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

// ---- One table per element kind: the record encodes to the octets and the
// octets decode to the record (or to `back` where decoding fills in more).

using Encoder = uint8_t (*)(uint8_t *);
using Decoder = uint8_t (*)(const uint8_t *);  // from the IEI
enum Way { kBoth, kEncodeOnly, kDecodeOnly };

template <uint8_t (*F)(const uint8_t *)>
uint8_t from_iedl(const uint8_t *iei)
{
    return F(iei + 1);
}
template <int First>
uint8_t eo_from_iedl(const uint8_t *iei)
{
    return wms_ts_decode_udh_eo(iei + 1, First);
}

wms_udh element(uint16_t id, const std::function<void(wms_udh &)> &fill)
{
    wms_udh e;
    std::memset(&e, 0, sizeof e);
    e.header_id = id;
    fill(e);
    return e;
}

struct ElementCase {
    const char *name;
    Encoder encode;
    Decoder decode;
    wms_udh record;
    Octets wire;      // IEI first; empty when the encoder refuses the record
    uint8_t decoded;  // the decoder's result
    Way way = kBoth;
    std::function<void(wms_udh &)> back = nullptr;  // what decoding adds to the record
};
void PrintTo(const ElementCase &c, std::ostream *os) { *os << c.name; }

class Element : public ::testing::TestWithParam<ElementCase> {};

TEST_P(Element, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    std::size_t heap = 0;
    if (c.way != kDecodeOnly) {
        std::array<uint8_t, smsutil::transport::kMaxElementSize> out;
        out.fill(0xEE);
        smsutil::transport::encode_element_ptr = &c.record;
        AllocationScope scope;
        const uint8_t n = c.encode(out.data());
        heap += scope.allocations();
        smsutil::transport::encode_element_ptr = nullptr;
        EXPECT_EQ(Octets(out.begin(), out.begin() + n), c.wire);
    }
    if (c.way != kEncodeOnly) {
        wms_udh slot;
        std::memset(&slot, 0, sizeof slot);
        smsutil::transport::decode_slot_ptr = &slot;
        AllocationScope scope;
        const uint8_t decoded = c.decode(c.wire.data());
        heap += scope.allocations();
        smsutil::transport::decode_slot_ptr = nullptr;
        EXPECT_EQ(decoded, c.decoded);
        wms_udh expected = c.record;
        if (c.back) c.back(expected);
        if (c.decoded != 0) {
            EXPECT_EQ(hex(reinterpret_cast<const uint8_t *>(&slot), sizeof slot),
                      hex(reinterpret_cast<const uint8_t *>(&expected), sizeof expected));
        }
    }
    EXPECT_EQ(heap, 0u);
}

Octets with_tail(Octets head, std::size_t n, uint8_t fill)
{
    head.resize(head.size() + n, fill);
    return head;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Element,
    ::testing::Values(
        ElementCase{"special_sm_store",
                    wms_ts_encode_udh_special_sm,
                    from_iedl<wms_ts_decode_udh_special_sm>,
                    element(WMS_UDH_SPECIAL_SM,
                            [](wms_udh &e) {
                                e.u.special_sm = {WMS_DCS_MWI_STORE, 1, 5};
                            }),
                    {0x01, 0x02, 0x81, 0x05},
                    3},
        ElementCase{"special_sm_discard",
                    wms_ts_encode_udh_special_sm,
                    from_iedl<wms_ts_decode_udh_special_sm>,
                    element(WMS_UDH_SPECIAL_SM,
                            [](wms_udh &e) {
                                e.u.special_sm = {WMS_DCS_MWI_DISCARD, 2, 1};
                            }),
                    {0x01, 0x02, 0x02, 0x01},
                    3},
        ElementCase{
            "special_sm_cut", nullptr, from_iedl<wms_ts_decode_udh_special_sm>, {}, {0x01, 0x01, 0x81}, 0, kDecodeOnly},
        ElementCase{
            "text_formatting",
            wms_ts_encode_udh_text_formatting,
            from_iedl<wms_ts_decode_udh_text_formatting>,
            element(WMS_UDH_TEXT_FORMATTING, [](wms_udh &e) { e.u.text_formatting = {2, 10, 1, 2, 1, 0, 1, 0}; }),
            {0x0A, 0x03, 0x02, 0x0A, 0x59},
            4},
        ElementCase{
            "text_formatting_reserved_size",
            nullptr,
            from_iedl<wms_ts_decode_udh_text_formatting>,
            element(WMS_UDH_TEXT_FORMATTING, [](wms_udh &e) { e.u.text_formatting = {0, 1, 3, 0, 0, 0, 0, 1}; }),
            {0x0A, 0x03, 0x00, 0x01, 0x8F},
            4,
            kDecodeOnly},
        ElementCase{"pre_def_sound",
                    wms_ts_encode_udh_pre_def_sound,
                    from_iedl<wms_ts_decode_udh_pre_def_sound>,
                    element(WMS_UDH_PRE_DEF_SOUND,
                            [](wms_udh &e) {
                                e.u.pre_def_sound = {4, 9};
                            }),
                    {0x0B, 0x02, 0x04, 0x09},
                    3},
        ElementCase{"user_def_sound",
                    wms_ts_encode_udh_user_def_sound,
                    from_iedl<wms_ts_decode_udh_user_def_sound>,
                    element(WMS_UDH_USER_DEF_SOUND,
                            [](wms_udh &e) {
                                e.u.user_def_sound.data_length = 3;
                                e.u.user_def_sound.position = 7;
                                e.u.user_def_sound.user_def_sound[0] = 0xA1;
                                e.u.user_def_sound.user_def_sound[2] = 0xA3;
                            }),
                    {0x0C, 0x04, 0x07, 0xA1, 0x00, 0xA3},
                    5,
                    kBoth,
                    // the unused rest of the melody reads as 0xFF
                    [](wms_udh &e) {
                        std::memset(e.u.user_def_sound.user_def_sound + 3, 0xFF,
                                    sizeof e.u.user_def_sound.user_def_sound - 3);
                    }},
        ElementCase{"user_def_sound_too_long",
                    wms_ts_encode_udh_user_def_sound,
                    nullptr,
                    element(WMS_UDH_USER_DEF_SOUND, [](wms_udh &e) { e.u.user_def_sound.data_length = 129; }),
                    {},
                    0,
                    kEncodeOnly},
        ElementCase{"user_def_sound_over_128",
                    nullptr,
                    from_iedl<wms_ts_decode_udh_user_def_sound>,
                    {},
                    with_tail({0x0C, 130}, 130, 1),
                    0,
                    kDecodeOnly},
        ElementCase{"pre_def_anim",
                    wms_ts_encode_udh_pre_def_anim,
                    from_iedl<wms_ts_decode_udh_pre_def_anim>,
                    element(WMS_UDH_PRE_DEF_ANIM,
                            [](wms_udh &e) {
                                e.u.pre_def_anim = {1, 14};
                            }),
                    {0x0D, 0x02, 0x01, 0x0E},
                    3},
        ElementCase{"pre_def_anim_zero_iedl",
                    nullptr,
                    from_iedl<wms_ts_decode_udh_pre_def_anim>,
                    {},
                    {0x0D, 0x00},
                    0,
                    kDecodeOnly},
        ElementCase{"var_picture",
                    wms_ts_encode_udh_var_picture,
                    from_iedl<wms_ts_decode_udh_var_picture>,
                    element(WMS_UDH_VAR_PICTURE,
                            [](wms_udh &e) {
                                e.u.var_picture.position = 3;
                                e.u.var_picture.width = 16;
                                e.u.var_picture.height = 3;
                                for (int i = 0; i < 6; ++i) e.u.var_picture.data[i] = static_cast<uint8_t>(0x10 + i);
                            }),
                    {0x12, 0x09, 0x03, 0x02, 0x03, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15},
                    10},
        ElementCase{"var_picture_above_134_octets",
                    wms_ts_encode_udh_var_picture,
                    nullptr,
                    element(WMS_UDH_VAR_PICTURE,
                            [](wms_udh &e) {
                                e.u.var_picture.width = 248;
                                e.u.var_picture.height = 5;  // 155 octets
                            }),
                    {},
                    0,
                    kEncodeOnly},
        ElementCase{"var_picture_clipped_to_134", nullptr, from_iedl<wms_ts_decode_udh_var_picture>,
                    element(WMS_UDH_VAR_PICTURE,
                            [](wms_udh &e) {
                                e.u.var_picture.width = 160;
                                e.u.var_picture.height = 7;
                                std::memset(e.u.var_picture.data, 2, 134);
                            }),
                    with_tail({0x12, 140, 0, 20, 7}, 137, 2), 4 + 134, kDecodeOnly},
        ElementCase{"user_prompt",
                    wms_ts_encode_udh_user_prompt,
                    from_iedl<wms_ts_decode_udh_user_prompt>,
                    element(WMS_UDH_USER_PROMPT, [](wms_udh &e) { e.u.user_prompt.number_of_objects = 2; }),
                    {0x13, 0x01, 0x02},
                    2},
        ElementCase{"eo_first_segment",
                    wms_ts_encode_udh_eo,
                    eo_from_iedl<1>,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.content_length = 2;
                                e.u.eo.content[0] = 0xC0;
                                e.u.eo.content[1] = 0xC1;
                                e.u.eo.first_segment = 1;
                                e.u.eo.reference = 7;
                                e.u.eo.length = 0x1234;
                                e.u.eo.control = 1;
                                e.u.eo.type = 0xFF;
                                e.u.eo.position = 0x0102;
                            }),
                    {0x14, 0x09, 0x07, 0x12, 0x34, 0x01, 0xFF, 0x01, 0x02, 0xC0, 0xC1},
                    10},
        ElementCase{"eo_type_keeps_its_low_octet",
                    wms_ts_encode_udh_eo,
                    nullptr,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.first_segment = 1;
                                e.u.eo.type = 0x1FF;
                            }),
                    {0x14, 0x07, 0x00, 0x00, 0x00, 0x00, 0xFF, 0x00, 0x00},
                    0,
                    kEncodeOnly},
        ElementCase{"eo_later_segment",
                    wms_ts_encode_udh_eo,
                    eo_from_iedl<0>,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.content_length = 1;
                                e.u.eo.content[0] = 0xC0;
                            }),
                    {0x14, 0x01, 0xC0},
                    2},
        // IEDL 137 is the longest an object may announce; content holds 136
        // octets, so the last one goes out as 0.
        ElementCase{"eo_later_segment_of_137", wms_ts_encode_udh_eo, nullptr,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.content_length = 137;
                                std::memset(e.u.eo.content, 0x3C, sizeof e.u.eo.content);
                                e.u.eo.first_segment = 0x3C;
                            }),
                    with_tail(with_tail({0x14, 0x89}, WMS_UDH_EO_CONTENT_SIZE, 0x3C), 1, 0), 0, kEncodeOnly},
        ElementCase{
            "eo_first_segment_short", nullptr, eo_from_iedl<1>, {}, {0x14, 0x06, 1, 2, 3, 4, 5, 6}, 0, kDecodeOnly},
        ElementCase{"eo_content_136", nullptr, eo_from_iedl<0>,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.content_length = 136;
                                std::memset(e.u.eo.content, 0x55, 136);
                            }),
                    with_tail({0x14, 136}, 136, 0x55), 137, kDecodeOnly},
        ElementCase{"eo_content_137", nullptr, eo_from_iedl<0>, {}, with_tail({0x14, 137}, 137, 0x55), 0, kDecodeOnly},
        ElementCase{"eo_first_above_137",
                    wms_ts_encode_udh_eo,
                    nullptr,
                    element(WMS_UDH_EO,
                            [](wms_udh &e) {
                                e.u.eo.first_segment = 1;
                                e.u.eo.content_length = 131;
                            }),
                    {},
                    0,
                    kEncodeOnly},
        ElementCase{"rfc822",
                    wms_ts_encode_udh_rfc822,
                    from_iedl<wms_ts_decode_udh_rfc822>,
                    element(WMS_UDH_RFC822, [](wms_udh &e) { e.u.rfc822.header_length = 40; }),
                    {0x20, 0x01, 0x28},
                    2},
        ElementCase{"rfc822_zero_iedl", nullptr, from_iedl<wms_ts_decode_udh_rfc822>, {}, {0x20, 0x00}, 0, kDecodeOnly},
        ElementCase{"other",
                    wms_ts_encode_udh_other,
                    wms_ts_decode_udh_other,
                    element(0x70,
                            [](wms_udh &e) {
                                e.u.other.other_id = 0x70;
                                e.u.other.header_length = 2;
                                e.u.other.data[0] = 0xD0;
                                e.u.other.data[1] = 0xD1;
                            }),
                    {0x70, 0x02, 0xD0, 0xD1},
                    4},
        ElementCase{"other_id_is_its_low_octet",
                    wms_ts_encode_udh_other,
                    nullptr,
                    element(0x70, [](wms_udh &e) { e.u.other.other_id = 0x170; }),
                    {0x70, 0x00},
                    0,
                    kEncodeOnly},
        ElementCase{"other_above_137_octets",
                    wms_ts_encode_udh_other,
                    nullptr,
                    element(0x70, [](wms_udh &e) { e.u.other.header_length = 138; }),
                    {},
                    0,
                    kEncodeOnly},
        ElementCase{"other_over_137_refused",
                    nullptr,
                    wms_ts_decode_udh_other,
                    {},
                    with_tail({0x70, 138}, 138, 3),
                    0,
                    kDecodeOnly}),
    [](const auto &info) { return std::string(info.param.name); });

struct BitmapCase {
    const char *name;
    Encoder encode;
    Decoder decode;
    uint16_t id;
    std::size_t size;  // bitmap octets
};
void PrintTo(const BitmapCase &c, std::ostream *os) { *os << c.name; }

class Bitmap : public ::testing::TestWithParam<BitmapCase> {};

// Position octet then the whole bitmap, both ways; one octet short is refused.
TEST_P(Bitmap, TakesItsWholeSize)
{
    const auto &c = GetParam();
    wms_udh e;
    std::memset(&e, 0, sizeof e);
    e.header_id = c.id;
    auto *u = reinterpret_cast<uint8_t *>(&e.u);
    for (std::size_t i = 0; i <= c.size; ++i) u[i] = static_cast<uint8_t>(i + 9);
    std::array<uint8_t, smsutil::transport::kMaxElementSize> out{};
    smsutil::transport::encode_element_ptr = &e;
    ASSERT_EQ(c.encode(out.data()), c.size + 3);
    smsutil::transport::encode_element_ptr = nullptr;
    EXPECT_EQ(out[0], c.id);
    EXPECT_EQ(out[1], c.size + 1);
    wms_udh slot{};
    smsutil::transport::decode_slot_ptr = &slot;
    EXPECT_EQ(c.decode(out.data()), c.size + 2);
    EXPECT_EQ(std::memcmp(&slot, &e, sizeof e), 0);
    out[1] -= 1;
    EXPECT_EQ(c.decode(out.data()), 0);
    smsutil::transport::decode_slot_ptr = nullptr;
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Bitmap,
    ::testing::Values(BitmapCase{"large_anim", wms_ts_encode_udh_large_anim, from_iedl<wms_ts_decode_udh_large_anim>,
                                 WMS_UDH_LARGE_ANIM, 128},
                      BitmapCase{"small_anim", wms_ts_encode_udh_small_anim, from_iedl<wms_ts_decode_udh_small_anim>,
                                 WMS_UDH_SMALL_ANIM, 32},
                      BitmapCase{"large_picture", wms_ts_encode_udh_large_picture,
                                 from_iedl<wms_ts_decode_udh_large_picture>, WMS_UDH_LARGE_PICTURE, 128},
                      BitmapCase{"small_picture", wms_ts_encode_udh_small_picture,
                                 from_iedl<wms_ts_decode_udh_small_picture>, WMS_UDH_SMALL_PICTURE, 32}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(ElementEdge, NoElementOrSlotMeansNothingWritten)
{
    std::array<uint8_t, 4> out{};
    smsutil::transport::encode_element_ptr = nullptr;
    EXPECT_EQ(wms_ts_encode_udh_special_sm(out.data()), 0);
    EXPECT_EQ(wms_ts_encode_udh_eo(out.data()), 0);
    EXPECT_EQ(out[0], 0);
    const Octets element{0x13, 0x01, 0x02};
    smsutil::transport::decode_slot_ptr = nullptr;
    EXPECT_EQ(wms_ts_decode_udh_user_prompt(element.data() + 1), 0);
}

// A refused object leaves only its identifier, and a header leaves it out.
TEST(ElementEdge, RefusedObjectIsLeftOutOfTheHeader)
{
    wms_udh e{};
    e.header_id = WMS_UDH_EO;
    e.u.eo.first_segment = 1;
    e.u.eo.content_length = 131;
    std::array<uint8_t, 4> out;
    out.fill(0xEE);
    smsutil::transport::encode_element_ptr = &e;
    EXPECT_EQ(wms_ts_encode_udh_eo(out.data()), 0);
    smsutil::transport::encode_element_ptr = nullptr;
    EXPECT_EQ(out[0], WMS_UDH_EO);
    EXPECT_EQ(out[1], 0xEE);
    std::array<uint8_t, WMS_MAX_LEN> header{};
    EXPECT_EQ(wms_ts_encode_user_data_header(1, &e, header.data()), 0);
    EXPECT_EQ(header[1], 0);
}

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

struct UserDataCase {
    const char *name;
    uint8_t alphabet;
    bool udhi;
    wms_gw_user_data record;
    Octets wire;  // TP-UDL first
    Way way = kBoth;
    std::size_t consumed = 0;  // octets decoding takes after TP-UDL; 0: all of them
};

class UserData : public ::testing::TestWithParam<UserDataCase> {};

TEST_P(UserData, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    const wms_gw_dcs dcs = dcs_of(c.alphabet);
    if (c.way != kDecodeOnly) {
        std::array<uint8_t, WMS_MAX_LEN> out{};
        ASSERT_EQ(wms_ts_encode_gw_user_data(&dcs, &c.record, out.data()), c.wire.size());
        EXPECT_EQ(Octets(out.begin(), out.begin() + static_cast<long>(c.wire.size())), c.wire);
    }
    if (c.way != kEncodeOnly) {
        wms_gw_user_data ud{};
        // The octets after TP-UD are passed too: a header TP-UDL cannot hold
        // is read from the rest of the TPDU.
        const auto r = smsutil::transport::decode_user_data(dcs, c.wire[0], std::span(c.wire).subspan(1), c.udhi, ud);
        EXPECT_TRUE(r.complete);
        EXPECT_EQ(r.consumed, c.consumed ? c.consumed : c.wire.size() - 1);
        EXPECT_EQ(hex(ud.sm_data, ud.sm_len), hex(c.record.sm_data, c.record.sm_len));
        ASSERT_EQ(ud.num_headers, c.record.num_headers);
        for (int i = 0; i < ud.num_headers; ++i) {
            EXPECT_EQ(hex(reinterpret_cast<const uint8_t *>(&ud.headers[i]), sizeof(wms_udh)),
                      hex(reinterpret_cast<const uint8_t *>(&c.record.headers[i]), sizeof(wms_udh)));
        }
    }
}

const Octets kPastUdl{0x03, 0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xE8, 0x32};

INSTANTIATE_TEST_SUITE_P(
    Data, UserData,
    ::testing::Values(UserDataCase{"gsm7_plain",
                                   WMS_ALPHABET_GSM7,
                                   false,
                                   text_data(chars("hellohello")),
                                   {0x0A, 0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}},
                      UserDataCase{"gsm7_after_8bit_concat_one_fill_bit",
                                   WMS_ALPHABET_GSM7,
                                   true,
                                   text_data(chars("hello"), {concat8(0x12, 3, 1)}),
                                   {0x0C, 0x05, 0x00, 0x03, 0x12, 0x03, 0x01, 0xD0, 0x65, 0x36, 0xFB, 0x0D}},
                      UserDataCase{"gsm7_after_16bit_concat_no_fill",
                                   WMS_ALPHABET_GSM7,
                                   true,
                                   text_data(chars("hello"), {concat16(0x1234, 2, 2)}),
                                   {0x0D, 0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02, 0xE8, 0x32, 0x9B, 0xFD, 0x06}},
                      UserDataCase{"gsm7_all_elements_left_out",
                                   WMS_ALPHABET_GSM7,
                                   true,
                                   text_data(chars("hi"), {concat8(1, 1, 2)}),
                                   {0x04, 0x00, 0x00, 0x3A, 0x0D},
                                   kEncodeOnly},
                      UserDataCase{"gsm7_header_ignored_without_udhi",
                                   WMS_ALPHABET_GSM7,
                                   false,
                                   text_data({0x05, 0x00, 0x0C}),
                                   {0x03, 0x05, 0x00, 0x03},
                                   kDecodeOnly},
                      UserDataCase{"gsm7_header_longer_than_udl",
                                   WMS_ALPHABET_GSM7,
                                   true,
                                   text_data({}, {concat16(0x1234, 2, 2)}),
                                   {0x07, 0x06, 0x08, 0x04, 0x12, 0x34, 0x02, 0x02},
                                   kDecodeOnly},
                      UserDataCase{"gsm7_refused_header_reads_all",
                                   WMS_ALPHABET_GSM7,
                                   true,
                                   text_data({0x01, 0x00}),
                                   {0x02, 0x01, 0x00},
                                   kDecodeOnly},
                      // TP-UDL 3 leaves no room for the header: it is kept, and there is no text.
                      UserDataCase{"gsm7_header_past_udl", WMS_ALPHABET_GSM7, true,
                                   text_data({}, {concat8(0x12, 3, 1)}), kPastUdl, kDecodeOnly, 6},
                      UserDataCase{"ucs2_header_past_udl", WMS_ALPHABET_UCS2, true,
                                   text_data({}, {concat8(0x12, 3, 1)}), kPastUdl, kDecodeOnly, 6},
                      UserDataCase{"ucs2_plain",
                                   WMS_ALPHABET_UCS2,
                                   false,
                                   text_data({0x41, 0x00, 0x42, 0x00}),
                                   {0x04, 0x00, 0x41, 0x00, 0x42}},
                      UserDataCase{"ucs2_after_concat",
                                   WMS_ALPHABET_UCS2,
                                   true,
                                   text_data({0x41, 0x00}, {concat8(9, 2, 2)}),
                                   {0x08, 0x05, 0x00, 0x03, 0x09, 0x02, 0x02, 0x00, 0x41}},
                      UserDataCase{"ucs2_zero_units_move_to_the_end",
                                   WMS_ALPHABET_UCS2,
                                   false,
                                   text_data({0x41, 0x00, 0x42, 0x00, 0x00, 0x00}),
                                   {0x06, 0x00, 0x41, 0x00, 0x00, 0x00, 0x42},
                                   kDecodeOnly},
                      UserDataCase{"ucs2_national_language_keeps_header",
                                   WMS_ALPHABET_UCS2,
                                   true,
                                   text_data({0x24, 0x03, 0x02, 0x01, 0x41, 0x00},
                                             {national(WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT, 2)}),
                                   {0x06, 0x03, 0x24, 0x01, 0x02, 0x00, 0x41},
                                   kDecodeOnly},
                      UserDataCase{"ucs2_udhl_zero_skips_one_octet",
                                   WMS_ALPHABET_UCS2,
                                   true,
                                   text_data({0x41, 0x00, 0x42, 0x00}),
                                   {0x05, 0x00, 0x00, 0x41, 0x00, 0x42},
                                   kDecodeOnly},
                      UserDataCase{"8bit_odd_sends_the_next_octet",
                                   WMS_ALPHABET_8BIT,
                                   false,
                                   text_data({0x01, 0x02, 0x03}),
                                   {0x03, 0x02, 0x01, 0x00, 0x03},
                                   kEncodeOnly},
                      UserDataCase{"8bit_refused_header_skips_one_octet",
                                   WMS_ALPHABET_8BIT,
                                   true,
                                   text_data({0x01, 0x05, 0x42, 0x00}),
                                   {0x05, 0x03, 0x05, 0x01, 0x00, 0x42},
                                   kDecodeOnly}),
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

std::vector<uint8_t> septets_of(const std::string &text) { return {text.begin(), text.end()}; }

struct PackCase {
    const char *name;
    std::string text;
    uint16_t fill;
    std::vector<uint8_t> packed;
};

class SeptetPackingKnown : public ::testing::TestWithParam<PackCase> {};

TEST_P(SeptetPackingKnown, PacksAndUnpacksKnownOctets)
{
    const auto &c = GetParam();
    const auto septets = septets_of(c.text);
    std::array<uint8_t, 32> out{};
    const uint16_t written = wms_ts_pack_gw_7_bit_chars(septets.data(), static_cast<uint16_t>(septets.size()), c.fill,
                                                        static_cast<uint16_t>(out.size()), out.data());
    ASSERT_EQ(written, c.packed.size());
    EXPECT_EQ(std::vector<uint8_t>(out.begin(), out.begin() + written), c.packed);

    std::array<uint8_t, 32> back{};
    const uint16_t start_code = c.fill == 0 ? 0 : static_cast<uint16_t>(8 - c.fill);
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(c.packed.data(), static_cast<uint8_t>(septets.size()), 32, start_code,
                                           back.data()),
              c.packed.size());
    EXPECT_EQ(std::vector<uint8_t>(back.begin(), back.begin() + static_cast<long>(septets.size())), septets);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, SeptetPackingKnown,
    ::testing::Values(PackCase{"hellohello", "hellohello", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37}},
                      PackCase{"seven_chars", "hellohe", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0x01}},
                      PackCase{"eight_chars", "hellohel", 0, {0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9}},
                      PackCase{"one_fill_bit", "hello", 1, {0xD0, 0x65, 0x36, 0xFB, 0x0D}},
                      PackCase{"six_fill_bits", "hello", 6, {0x00, 0xBA, 0xCC, 0x66, 0xBF, 0x01}},
                      PackCase{"fill_without_text", "", 3, {0x00}}, PackCase{"nothing", "", 0, {}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(SeptetPacking, FillBitsKeepWhatTheCallerLeftInTheFirstOctet)
{
    const auto septets = septets_of("Hi");
    std::array<uint8_t, 4> out{0x01, 0xEE, 0xEE, 0xEE};
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(septets.data(), 2, 1, 4, out.data()), 2);
    EXPECT_EQ(out[0], 0x91);  // 0x90 packed, ORed onto the caller's low bit
    EXPECT_EQ(out[1], 0x69);
    EXPECT_EQ(out[2], 0xEE);
}

TEST(SeptetPacking, StopsAtTheCapacity)
{
    const auto septets = septets_of("hellohello");
    std::array<uint8_t, 9> out;
    out.fill(0xEE);
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(septets.data(), 10, 0, 4, out.data()), 4);
    EXPECT_EQ(out[3], 0xFD);
    EXPECT_EQ(out[4], 0xEE);

    std::array<uint8_t, 10> chars{};
    const std::array<uint8_t, 9> packed{0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0xD9, 0xEC, 0x37};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 10, 3, 0, chars.data()), 3);
    EXPECT_EQ(chars[2], 'l');
    EXPECT_EQ(chars[3], 0);
}

TEST(SeptetPacking, CharacterInTheLastOctetsHighBitsIsStoredPastTheCount)
{
    // Seven characters leave seven spare bits; a sender padding with CR puts
    // a whole character there.
    const std::array<uint8_t, 7> packed{0xE8, 0x32, 0x9B, 0xFD, 0x46, 0x97, 0x1B};
    std::array<uint8_t, 9> chars{};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 7, 9, 0, chars.data()), 7);
    EXPECT_EQ(chars[6], 'e');
    EXPECT_EQ(chars[7], 0x0D);
    EXPECT_EQ(chars[8], 0);
    std::array<uint8_t, 7> exact{};
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 7, 7, 0, exact.data()), 7);
    EXPECT_EQ(exact[6], 'e');
}

}  // namespace
