#include <gtest/gtest.h>

#include <string>

#include "smsutil/wms_ts.h"

namespace {

struct DcsCase {
    const char *name;
    uint8_t octet;
    uint8_t msg_class;
    uint8_t alphabet;
    uint32_t group;
    uint8_t mwi_active;
    uint8_t mwi_kind;
};

class DcsDecode : public ::testing::TestWithParam<DcsCase> {};

TEST_P(DcsDecode, ReadsTheCodingGroup)
{
    const DcsCase &c = GetParam();
    wms_gw_dcs dcs{};
    EXPECT_EQ(wms_ts_decode_dcs(&c.octet, &dcs), 1);
    EXPECT_EQ(dcs.msg_class, c.msg_class);
    EXPECT_EQ(dcs.alphabet, c.alphabet);
    EXPECT_EQ(+dcs.coding_group, c.group);
    EXPECT_EQ(dcs.mwi_active, c.mwi_active);
    EXPECT_EQ(dcs.mwi_kind, c.mwi_kind);
}

INSTANTIATE_TEST_SUITE_P(
    Octets, DcsDecode,
    ::testing::Values(DcsCase{"general_7bit", 0x00, 4, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0},
                      DcsCase{"general_ucs2", 0x08, 4, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0},
                      DcsCase{"general_8bit_class_2", 0x16, 2, WMS_ALPHABET_8BIT, WMS_DCS_GENERAL, 0, 0},
                      DcsCase{"class_1_7bit", 0x11, 1, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0},
                      DcsCase{"reserved_alphabet_is_7bit", 0x0C, 4, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0},
                      DcsCase{"class_group_8bit", 0xF6, 2, WMS_ALPHABET_8BIT, WMS_DCS_CLASS_GROUP, 0, 0},
                      DcsCase{"class_group_7bit", 0xF1, 1, WMS_ALPHABET_GSM7, WMS_DCS_CLASS_GROUP, 0, 0},
                      DcsCase{"discard_active_voicemail", 0xC8, 4, WMS_ALPHABET_GSM7, WMS_DCS_MWI_DISCARD, 1, 0},
                      DcsCase{"store_inactive_fax", 0xD1, 4, WMS_ALPHABET_GSM7, WMS_DCS_MWI_STORE, 0, 1},
                      DcsCase{"store_ucs2_email", 0xEA, 4, WMS_ALPHABET_UCS2, WMS_DCS_MWI_STORE, 1, 2},
                      DcsCase{"automatic_deletion_defaults", 0x4C, 4, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Dcs, DecodeKeepsMwiFieldsOutsideTheMwiGroups)
{
    wms_gw_dcs dcs{};
    dcs.mwi_active = 1;
    dcs.mwi_kind = 3;
    const uint8_t octet = 0xF4;
    wms_ts_decode_dcs(&octet, &dcs);
    EXPECT_EQ(dcs.mwi_active, 1);
    EXPECT_EQ(dcs.mwi_kind, 3);
}

struct EncodeCase {
    const char *name;
    wms_gw_dcs dcs;
    uint8_t octet;
};

class DcsEncode : public ::testing::TestWithParam<EncodeCase> {};

TEST_P(DcsEncode, BuildsTheOctet)
{
    uint8_t octet = 0xEE;
    EXPECT_EQ(wms_ts_encode_dcs(&GetParam().dcs, &octet), 1);
    EXPECT_EQ(octet, GetParam().octet);
}

INSTANTIATE_TEST_SUITE_P(
    Records, DcsEncode,
    ::testing::Values(EncodeCase{"no_class_7bit", {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, 0x00},
                      EncodeCase{"class_0_7bit", {0, 0, WMS_ALPHABET_GSM7, WMS_DCS_GENERAL, 0, 0}, 0x10},
                      EncodeCase{"compressed_ucs2", {4, 1, WMS_ALPHABET_UCS2, WMS_DCS_GENERAL, 0, 0}, 0x28},
                      EncodeCase{"class_group_8bit", {3, 0, WMS_ALPHABET_8BIT, WMS_DCS_CLASS_GROUP, 0, 0}, 0xF7},
                      EncodeCase{"class_group_ucs2_as_7bit", {1, 0, WMS_ALPHABET_UCS2, WMS_DCS_CLASS_GROUP, 0, 0}, 0xF1},
                      EncodeCase{"discard", {4, 0, 0, WMS_DCS_MWI_DISCARD, 1, 2}, 0xCA},
                      EncodeCase{"store_7bit", {4, 0, WMS_ALPHABET_GSM7, WMS_DCS_MWI_STORE, 0, 3}, 0xD3},
                      EncodeCase{"store_ucs2", {4, 0, WMS_ALPHABET_UCS2, WMS_DCS_MWI_STORE, 1, 1}, 0xE9},
                      EncodeCase{"unknown_group", {4, 0, 0, 9, 2, 0}, 0xE0}),
    [](const auto &info) { return std::string(info.param.name); });

TEST(Dcs, EveryOctetDecodesToARecordThatEncodesToTheSameMeaning)
{
    for (unsigned o = 0; o <= 0xFF; ++o) {
        const auto octet = static_cast<uint8_t>(o);
        wms_gw_dcs first{};
        wms_ts_decode_dcs(&octet, &first);
        uint8_t again = 0;
        wms_ts_encode_dcs(&first, &again);
        wms_gw_dcs second{};
        wms_ts_decode_dcs(&again, &second);
        EXPECT_EQ(first.alphabet, second.alphabet) << o;
        EXPECT_EQ(first.msg_class, second.msg_class) << o;
        EXPECT_EQ(+first.coding_group, +second.coding_group) << o;
        EXPECT_EQ(first.mwi_active, second.mwi_active) << o;
        EXPECT_EQ(first.mwi_kind, second.mwi_kind) << o;
        EXPECT_EQ(first.is_compressed, second.is_compressed) << o;
    }
}

}  // namespace
