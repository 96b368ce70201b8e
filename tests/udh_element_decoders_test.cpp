#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/alloc_counter.hpp"
#include "transport/codec_internal.hpp"

namespace {

using Octets = std::vector<uint8_t>;
using Decoder = uint8_t (*)(const uint8_t *);

// Decodes an element (given from its IEI) into a fresh slot; only the
// decoder of other kinds starts at the IEI, the rest at IEDL.
uint8_t decode_into(Decoder decode, const Octets &element, wms_udh &slot)
{
    std::memset(&slot, 0, sizeof slot);
    smsutil::transport::decode_slot_ptr = &slot;
    const uint8_t result = decode(element.data() + (decode == wms_ts_decode_udh_other ? 0 : 1));
    smsutil::transport::decode_slot_ptr = nullptr;
    return result;
}

struct DecodeCase {
    const char *name;
    Decoder decode;
    Octets element;  // IEI first
    uint8_t result;
    uint16_t id;
    Octets member;  // leading octets of the union expected after decoding
};

class ElementDecode : public ::testing::TestWithParam<DecodeCase> {};

TEST_P(ElementDecode, FillsTheSlot)
{
    const auto &c = GetParam();
    wms_udh slot;
    smsutil::test::AllocationScope scope;
    EXPECT_EQ(decode_into(c.decode, c.element, slot), c.result);
    EXPECT_EQ(scope.allocations(), 0u);
    if (c.result == 0) return;
    EXPECT_EQ(+slot.header_id, c.id);
    const auto *u = reinterpret_cast<const uint8_t *>(&slot.u);
    EXPECT_EQ(Octets(u, u + c.member.size()), c.member);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, ElementDecode,
    ::testing::Values(
        DecodeCase{"special_sm_store", wms_ts_decode_udh_special_sm, {0x01, 0x02, 0x81, 0x05}, 3, WMS_UDH_SPECIAL_SM,
                   {WMS_DCS_MWI_STORE, 0, 0, 0, 0x01, 0x05}},
        DecodeCase{"special_sm_cut", wms_ts_decode_udh_special_sm, {0x01, 0x01, 0x81}, 0, 0, {}},
        DecodeCase{"text_formatting", wms_ts_decode_udh_text_formatting, {0x0A, 0x03, 0x02, 0x0A, 0x59}, 4,
                   WMS_UDH_TEXT_FORMATTING, {2, 10, 1, 2, 1, 0, 1, 0}},
        DecodeCase{"text_formatting_reserved_size", wms_ts_decode_udh_text_formatting, {0x0A, 0x03, 0x00, 0x01, 0x8F},
                   4, WMS_UDH_TEXT_FORMATTING, {0, 1, 3, 0, 0, 0, 0, 1}},
        DecodeCase{"pre_def_sound", wms_ts_decode_udh_pre_def_sound, {0x0B, 0x02, 0x04, 0x09}, 3,
                   WMS_UDH_PRE_DEF_SOUND, {4, 9}},
        DecodeCase{"pre_def_anim_zero_iedl", wms_ts_decode_udh_pre_def_anim, {0x0D, 0x00}, 0, 0, {}},
        DecodeCase{"user_def_sound", wms_ts_decode_udh_user_def_sound, {0x0C, 0x03, 0x07, 0xA1, 0xA2}, 4,
                   WMS_UDH_USER_DEF_SOUND, {2, 7, 0xA1, 0xA2, 0xFF, 0xFF}},
        DecodeCase{"user_prompt", wms_ts_decode_udh_user_prompt, {0x13, 0x01, 0x02}, 2, WMS_UDH_USER_PROMPT, {2}},
        DecodeCase{"rfc822", wms_ts_decode_udh_rfc822, {0x20, 0x01, 0x28}, 2, WMS_UDH_RFC822, {0x28}},
        DecodeCase{"rfc822_zero_iedl", wms_ts_decode_udh_rfc822, {0x20, 0x00}, 0, 0, {}},
        DecodeCase{"var_picture", wms_ts_decode_udh_var_picture, {0x12, 0x05, 0x03, 0x02, 0x01, 0xAA, 0xBB}, 6,
                   WMS_UDH_VAR_PICTURE, {3, 16, 1, 0xAA, 0xBB}},
        DecodeCase{"small_anim_cut", wms_ts_decode_udh_small_anim, {0x0F, 0x05, 0, 1, 2, 3, 4}, 0, 0, {}},
        DecodeCase{"other", wms_ts_decode_udh_other, {0x70, 0x02, 0xD0, 0xD1}, 4, 0x70, {0x70, 0x00, 0x02, 0xD0, 0xD1}}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(ElementDecodeEdge, BitmapsTakeTheirWholeSize)
{
    struct Kind {
        Decoder decode;
        uint16_t id;
        size_t data;
    };
    for (const Kind &k : {Kind{wms_ts_decode_udh_large_anim, WMS_UDH_LARGE_ANIM, 128},
                          Kind{wms_ts_decode_udh_small_anim, WMS_UDH_SMALL_ANIM, 32},
                          Kind{wms_ts_decode_udh_large_picture, WMS_UDH_LARGE_PICTURE, 128},
                          Kind{wms_ts_decode_udh_small_picture, WMS_UDH_SMALL_PICTURE, 32}}) {
        Octets element{static_cast<uint8_t>(k.id), static_cast<uint8_t>(k.data + 1), 9};
        for (size_t i = 0; i < k.data; ++i) element.push_back(static_cast<uint8_t>(i));
        wms_udh slot;
        EXPECT_EQ(decode_into(k.decode, element, slot), k.data + 2);
        EXPECT_EQ(+slot.header_id, k.id);
        const auto *u = reinterpret_cast<const uint8_t *>(&slot.u);
        EXPECT_EQ(u[0], 9);
        EXPECT_EQ(u[k.data], k.data - 1);
        element[1] -= 1;  // one octet short of the bitmap
        element.pop_back();
        EXPECT_EQ(decode_into(k.decode, element, slot), 0);
    }
}

TEST(ElementDecodeEdge, ExtendedObjects)
{
    const Octets first{0x14, 0x09, 0x07, 0x12, 0x34, 0x01, 0xFF, 0x01, 0x02, 0xC0, 0xC1};
    wms_udh slot;
    std::memset(&slot, 0, sizeof slot);
    smsutil::transport::decode_slot_ptr = &slot;
    EXPECT_EQ(wms_ts_decode_udh_eo(first.data() + 1, 1), 10);
    EXPECT_EQ(slot.u.eo.content_length, 2);
    EXPECT_EQ(slot.u.eo.content[1], 0xC1);
    EXPECT_EQ(slot.u.eo.reference, 7);
    EXPECT_EQ(+slot.u.eo.length, 0x1234);
    EXPECT_EQ(+slot.u.eo.type, 0xFFu);
    EXPECT_EQ(+slot.u.eo.position, 0x0102);
    // As a later segment the same octets are all content.
    EXPECT_EQ(wms_ts_decode_udh_eo(first.data() + 1, 0), 10);
    EXPECT_EQ(slot.u.eo.content_length, 9);
    EXPECT_EQ(slot.u.eo.first_segment, 0);
    // A first segment needs its seven object octets.
    const Octets short_first{0x14, 0x06, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(wms_ts_decode_udh_eo(short_first.data() + 1, 1), 0);
    // Content beyond the 136 octets the record holds is refused.
    Octets big{0x14, 137};
    big.resize(2 + 137, 0x55);
    EXPECT_EQ(wms_ts_decode_udh_eo(big.data() + 1, 0), 0);
    big[1] = 136;
    big.pop_back();
    EXPECT_EQ(wms_ts_decode_udh_eo(big.data() + 1, 0), 137);
    smsutil::transport::decode_slot_ptr = nullptr;
}

TEST(ElementDecodeEdge, SizesAboveTheRecordAreRefusedOrClipped)
{
    Octets sound{0x0C, 130};
    sound.resize(2 + 130, 1);
    wms_udh slot;
    EXPECT_EQ(decode_into(wms_ts_decode_udh_user_def_sound, sound, slot), 0);
    Octets picture{0x12, 140, 0, 20, 7};
    picture.resize(2 + 140, 2);
    EXPECT_EQ(decode_into(wms_ts_decode_udh_var_picture, picture, slot), 4 + 134);
    Octets other{0x70, 138};
    other.resize(2 + 138, 3);
    EXPECT_EQ(decode_into(wms_ts_decode_udh_other, other, slot), 0);
}

TEST(ElementDecodeEdge, NoSlotNoWrite)
{
    const Octets element{0x13, 0x01, 0x02};
    smsutil::transport::decode_slot_ptr = nullptr;
    EXPECT_EQ(wms_ts_decode_udh_user_prompt(element.data() + 1), 0);
}

}  // namespace
