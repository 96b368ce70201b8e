#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

#include "smsutil/wms_ts.h"
#include "transport/codec_internal.hpp"

namespace {

using Octets = std::vector<uint8_t>;
using Encoder = uint8_t (*)(uint8_t *);

wms_udh element(uint16_t id, const std::function<void(wms_udh &)> &fill)
{
    wms_udh e{};
    e.header_id = id;
    fill(e);
    return e;
}

struct EncodeCase {
    const char *name;
    Encoder encode;
    wms_udh element;
    Octets octets;  // IEI, IEDL, data; empty when the element is refused
};

Octets encode_with(Encoder encode, const wms_udh &e, uint8_t &result)
{
    std::array<uint8_t, smsutil::transport::kMaxElementSize> out;
    out.fill(0xEE);
    smsutil::transport::encode_element_ptr = &e;
    result = encode(out.data());
    smsutil::transport::encode_element_ptr = nullptr;
    return Octets(out.begin(), out.begin() + result);
}

class ElementEncode : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(ElementEncode, WritesIeiIedlAndData)
{
    uint8_t result = 0;
    const Octets out = encode_with(GetParam().encode, GetParam().element, result);
    EXPECT_EQ(result, GetParam().octets.size());
    EXPECT_EQ(out, GetParam().octets);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ElementEncode,
    ::testing::Values(
        EncodeCase{"special_sm_store", wms_ts_encode_udh_special_sm,
                   element(WMS_UDH_SPECIAL_SM, [](wms_udh &e) { e.u.special_sm = {WMS_DCS_MWI_STORE, 1, 5}; }),
                   {0x01, 0x02, 0x81, 0x05}},
        EncodeCase{"special_sm_discard", wms_ts_encode_udh_special_sm,
                   element(WMS_UDH_SPECIAL_SM, [](wms_udh &e) { e.u.special_sm = {WMS_DCS_MWI_DISCARD, 2, 1}; }),
                   {0x01, 0x02, 0x02, 0x01}},
        EncodeCase{"text_formatting", wms_ts_encode_udh_text_formatting,
                   element(WMS_UDH_TEXT_FORMATTING, [](wms_udh &e) { e.u.text_formatting = {2, 10, 1, 2, 1, 0, 1, 0}; }),
                   {0x0A, 0x03, 0x02, 0x0A, 0x59}},
        EncodeCase{"pre_def_sound", wms_ts_encode_udh_pre_def_sound,
                   element(WMS_UDH_PRE_DEF_SOUND, [](wms_udh &e) { e.u.pre_def_sound = {4, 9}; }), {0x0B, 0x02, 0x04, 0x09}},
        EncodeCase{"user_def_sound", wms_ts_encode_udh_user_def_sound,
                   element(WMS_UDH_USER_DEF_SOUND,
                           [](wms_udh &e) {
                               e.u.user_def_sound.data_length = 3;
                               e.u.user_def_sound.position = 7;
                               e.u.user_def_sound.user_def_sound[0] = 0xA1;
                               e.u.user_def_sound.user_def_sound[2] = 0xA3;
                           }),
                   {0x0C, 0x04, 0x07, 0xA1, 0x00, 0xA3}},
        EncodeCase{"user_def_sound_too_long", wms_ts_encode_udh_user_def_sound,
                   element(WMS_UDH_USER_DEF_SOUND, [](wms_udh &e) { e.u.user_def_sound.data_length = 129; }), {}},
        EncodeCase{"pre_def_anim", wms_ts_encode_udh_pre_def_anim,
                   element(WMS_UDH_PRE_DEF_ANIM, [](wms_udh &e) { e.u.pre_def_anim = {1, 14}; }), {0x0D, 0x02, 0x01, 0x0E}},
        EncodeCase{"var_picture", wms_ts_encode_udh_var_picture,
                   element(WMS_UDH_VAR_PICTURE,
                           [](wms_udh &e) {
                               e.u.var_picture.position = 3;
                               e.u.var_picture.width = 16;
                               e.u.var_picture.height = 3;
                               for (int i = 0; i < 6; ++i) e.u.var_picture.data[i] = static_cast<uint8_t>(0x10 + i);
                           }),
                   {0x12, 0x09, 0x03, 0x02, 0x03, 0x10, 0x11, 0x12, 0x13, 0x14, 0x15}},
        EncodeCase{"var_picture_above_134_octets", wms_ts_encode_udh_var_picture,
                   element(WMS_UDH_VAR_PICTURE,
                           [](wms_udh &e) {
                               e.u.var_picture.width = 248;
                               e.u.var_picture.height = 5;  // 155 octets
                           }),
                   {}},
        EncodeCase{"user_prompt", wms_ts_encode_udh_user_prompt,
                   element(WMS_UDH_USER_PROMPT, [](wms_udh &e) { e.u.user_prompt.number_of_objects = 2; }),
                   {0x13, 0x01, 0x02}},
        EncodeCase{"eo_first_segment", wms_ts_encode_udh_eo,
                   element(WMS_UDH_EO,
                           [](wms_udh &e) {
                               e.u.eo.content_length = 2;
                               e.u.eo.content[0] = 0xC0;
                               e.u.eo.content[1] = 0xC1;
                               e.u.eo.first_segment = 1;
                               e.u.eo.reference = 7;
                               e.u.eo.length = 0x1234;
                               e.u.eo.control = 1;
                               e.u.eo.type = 0x1FF;
                               e.u.eo.position = 0x0102;
                           }),
                   {0x14, 0x09, 0x07, 0x12, 0x34, 0x01, 0xFF, 0x01, 0x02, 0xC0, 0xC1}},
        EncodeCase{"eo_later_segment", wms_ts_encode_udh_eo,
                   element(WMS_UDH_EO,
                           [](wms_udh &e) {
                               e.u.eo.content_length = 1;
                               e.u.eo.content[0] = 0xC0;
                               e.u.eo.reference = 7;
                           }),
                   {0x14, 0x01, 0xC0}},
        // IEDL 137 is the longest an object may announce; content holds 136
        // octets, so the last one goes out as 0.
        EncodeCase{"eo_later_segment_of_137", wms_ts_encode_udh_eo,
                   element(WMS_UDH_EO, [](wms_udh &e) {
                       e.u.eo.content_length = 137;
                       std::memset(e.u.eo.content, 0x3C, sizeof e.u.eo.content);
                       e.u.eo.first_segment = 0x3C;
                   }),
                   [] {
                       Octets o{0x14, 0x89};
                       o.insert(o.end(), WMS_UDH_EO_CONTENT_SIZE, 0x3C);
                       o.push_back(0);
                       return o;
                   }()},
        EncodeCase{"rfc822", wms_ts_encode_udh_rfc822,
                   element(WMS_UDH_RFC822, [](wms_udh &e) { e.u.rfc822.header_length = 40; }), {0x20, 0x01, 0x28}},
        EncodeCase{"other", wms_ts_encode_udh_other,
                   element(0x70,
                           [](wms_udh &e) {
                               e.u.other.other_id = 0x170;  // the identifier is its low octet
                               e.u.other.header_length = 2;
                               e.u.other.data[0] = 0xD0;
                               e.u.other.data[1] = 0xD1;
                           }),
                   {0x70, 0x02, 0xD0, 0xD1}},
        EncodeCase{"other_above_137_octets", wms_ts_encode_udh_other,
                   element(0x70, [](wms_udh &e) { e.u.other.header_length = 138; }), {}}),
    [](const auto &info) { return std::string(info.param.name); });

struct SizeCase {
    const char *name;
    Encoder encode;
    uint16_t id;
    uint8_t size;
};

class ElementEncodeFixedSize : public ::testing::TestWithParam<SizeCase> {};

TEST_P(ElementEncodeFixedSize, WritesPositionThenTheBitmap)
{
    wms_udh e{};
    e.header_id = GetParam().id;
    std::memset(&e.u, 0x3C, sizeof e.u);
    uint8_t result = 0;
    const Octets out = encode_with(GetParam().encode, e, result);
    ASSERT_EQ(result, GetParam().size);
    EXPECT_EQ(out[0], GetParam().id);
    EXPECT_EQ(out[1], GetParam().size - 2);
    EXPECT_EQ(Octets(out.begin() + 2, out.end()), Octets(GetParam().size - 2u, 0x3C));
}

INSTANTIATE_TEST_SUITE_P(Bitmaps, ElementEncodeFixedSize,
                         ::testing::Values(SizeCase{"large_anim", wms_ts_encode_udh_large_anim, WMS_UDH_LARGE_ANIM, 131},
                                           SizeCase{"small_anim", wms_ts_encode_udh_small_anim, WMS_UDH_SMALL_ANIM, 35},
                                           SizeCase{"large_picture", wms_ts_encode_udh_large_picture,
                                                    WMS_UDH_LARGE_PICTURE, 131},
                                           SizeCase{"small_picture", wms_ts_encode_udh_small_picture,
                                                    WMS_UDH_SMALL_PICTURE, 35}),
                         [](const auto &info) { return std::string(info.param.name); });

TEST(ElementEncodeEdge, RefusedObjectLeavesOnlyItsIdentifier)
{
    wms_udh e{};
    e.header_id = WMS_UDH_EO;
    e.u.eo.first_segment = 1;
    e.u.eo.content_length = 131;  // 138 octets with the object header
    std::array<uint8_t, 4> out;
    out.fill(0xEE);
    smsutil::transport::encode_element_ptr = &e;
    EXPECT_EQ(wms_ts_encode_udh_eo(out.data()), 0);
    smsutil::transport::encode_element_ptr = nullptr;
    EXPECT_EQ(out[0], WMS_UDH_EO);
    EXPECT_EQ(out[1], 0xEE);
    // In a header it is left out altogether.
    std::array<uint8_t, WMS_MAX_LEN> header{};
    EXPECT_EQ(wms_ts_encode_user_data_header(1, &e, header.data()), 0);
    EXPECT_EQ(header[1], 0);
}

TEST(ElementEncodeEdge, NothingToEncodeWithoutAnElement)
{
    std::array<uint8_t, 4> out{};
    smsutil::transport::encode_element_ptr = nullptr;
    EXPECT_EQ(wms_ts_encode_udh_special_sm(out.data()), 0);
    EXPECT_EQ(wms_ts_encode_udh_eo(out.data()), 0);
    EXPECT_EQ(out[0], 0);
}

}  // namespace
