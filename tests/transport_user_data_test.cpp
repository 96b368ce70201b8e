// User data: header elements, the header, the text behind it and septet packing.
#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "smsutil/wms_ts.h"
#include "support/support.hpp"
#include "transport/codec_internal.hpp"

namespace {

using namespace smsutil::test;
using smsutil::transport::decode_slot_ptr;
using smsutil::transport::encode_element_ptr;

enum Way { kBoth, kEncodeOnly, kDecodeOnly };

std::string rep(std::size_t n, const char *hex_octets)
{
    std::string s;
    for (std::size_t i = 0; i < n; ++i) s += hex_octets;
    return s;
}

std::string bytes_of(const wms_udh &e) { return hex(reinterpret_cast<const uint8_t *>(&e), sizeof e); }

wms_udh element(uint16_t id, void (*fill)(wms_udh &) = nullptr)
{
    wms_udh e{};
    e.header_id = id;
    if (fill) fill(e);
    return e;
}

wms_udh concat8(uint8_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e = element(WMS_UDH_CONCAT_8BIT_REF);
    e.u.concat_8 = {ref, total, seq};
    return e;
}

wms_udh concat16(uint16_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e = element(WMS_UDH_CONCAT_16BIT_REF);
    e.u.concat_16 = {ref, total, seq};
    return e;
}

wms_udh national(uint16_t id, uint8_t language)
{
    wms_udh e = element(id);
    e.u.nat_lang_ss = {static_cast<uint8_t>(id), 1, language};
    return e;
}

wms_udh other(uint16_t id, uint8_t iei, const std::string &data)
{
    wms_udh e = element(id);
    const Octets o = bytes(data);
    e.u.other.other_id = iei;
    e.u.other.header_length = static_cast<uint8_t>(o.size());
    std::copy(o.begin(), o.end(), e.u.other.data);
    return e;
}

// ---- Single elements: the record encodes to the octets and the octets
// decode to the record.

struct Codec {
    uint16_t id;
    uint8_t (*encode)(uint8_t *);
    uint8_t (*decode)(const uint8_t *);  // from the IEDL
};
const Codec kCodecs[] = {
    {WMS_UDH_SPECIAL_SM, wms_ts_encode_udh_special_sm, wms_ts_decode_udh_special_sm},
    {WMS_UDH_TEXT_FORMATTING, wms_ts_encode_udh_text_formatting, wms_ts_decode_udh_text_formatting},
    {WMS_UDH_PRE_DEF_SOUND, wms_ts_encode_udh_pre_def_sound, wms_ts_decode_udh_pre_def_sound},
    {WMS_UDH_USER_DEF_SOUND, wms_ts_encode_udh_user_def_sound, wms_ts_decode_udh_user_def_sound},
    {WMS_UDH_PRE_DEF_ANIM, wms_ts_encode_udh_pre_def_anim, wms_ts_decode_udh_pre_def_anim},
    {WMS_UDH_LARGE_ANIM, wms_ts_encode_udh_large_anim, wms_ts_decode_udh_large_anim},
    {WMS_UDH_SMALL_ANIM, wms_ts_encode_udh_small_anim, wms_ts_decode_udh_small_anim},
    {WMS_UDH_LARGE_PICTURE, wms_ts_encode_udh_large_picture, wms_ts_decode_udh_large_picture},
    {WMS_UDH_SMALL_PICTURE, wms_ts_encode_udh_small_picture, wms_ts_decode_udh_small_picture},
    {WMS_UDH_VAR_PICTURE, wms_ts_encode_udh_var_picture, wms_ts_decode_udh_var_picture},
    {WMS_UDH_USER_PROMPT, wms_ts_encode_udh_user_prompt, wms_ts_decode_udh_user_prompt},
    {WMS_UDH_EO, wms_ts_encode_udh_eo, nullptr},
    {WMS_UDH_RFC822, wms_ts_encode_udh_rfc822, wms_ts_decode_udh_rfc822},
};

uint8_t encode_element(const wms_udh &record, uint8_t *out)
{
    for (const Codec &c : kCodecs) {
        if (c.id == record.header_id) return c.encode(out);
    }
    return wms_ts_encode_udh_other(out);
}

uint8_t decode_element(const wms_udh &record, const Octets &wire)
{
    if (record.header_id == WMS_UDH_EO) return wms_ts_decode_udh_eo(wire.data() + 1, record.u.eo.first_segment);
    for (const Codec &c : kCodecs) {
        if (c.id == record.header_id) return c.decode(wire.data() + 1);
    }
    return wms_ts_decode_udh_other(wire.data());  // from the IEI
}

void special_store(wms_udh &e) { e.u.special_sm = {WMS_DCS_MWI_STORE, 1, 5}; }
void special_discard(wms_udh &e) { e.u.special_sm = {WMS_DCS_MWI_DISCARD, 2, 1}; }
void pre_def_sound(wms_udh &e) { e.u.pre_def_sound = {4, 9}; }
void pre_def_anim(wms_udh &e) { e.u.pre_def_anim = {1, 14}; }
void var_picture(wms_udh &e) { e.u.var_picture = {3, 16, 3, {0x10, 0x11, 0x12, 0x13, 0x14, 0x15}}; }
void eo_first(wms_udh &e) { e.u.eo = {2, {0xC0, 0xC1}, 1, 7, 0x1234, 1, 0xFF, 0x0102}; }
void eo_wide_type(wms_udh &e) { e.u.eo = {0, {}, 1, 0, 0, 0, 0x1FF, 0}; }
void var_picture_too_big(wms_udh &e) { e.u.var_picture = {0, 248, 5, {}}; }
void user_def_sound(wms_udh &e)
{
    e.u.user_def_sound = {3, 7, {0xA1, 0x00, 0xA3}};
    // The decoder fills the unused rest of the melody with 0xFF.
    std::memset(e.u.user_def_sound.user_def_sound + 3, 0xFF, sizeof e.u.user_def_sound.user_def_sound - 3);
}
void var_picture_clipped(wms_udh &e)
{
    e.u.var_picture = {0, 160, 7, {}};
    std::memset(e.u.var_picture.data, 0x22, 134);
}
void eo_first_of_131(wms_udh &e) { e.u.eo = {131, {}, 1, 0, 0, 0, 0, 0}; }
void eo_later_of_136(wms_udh &e)
{
    e.u.eo.content_length = 136;
    std::memset(e.u.eo.content, 0x55, sizeof e.u.eo.content);
}
// Only a first segment of 1 is one.
void eo_later_of_137(wms_udh &e)
{
    eo_later_of_136(e);
    e.u.eo.content_length = 137;
    e.u.eo.first_segment = 0x55;
}
// Position 7, then the whole bitmap.
void bitmap(wms_udh &e, std::size_t n)
{
    auto *u = reinterpret_cast<uint8_t *>(&e.u);
    u[0] = 7;
    std::memset(u + 1, 0x11, n);
}
void small_bitmap(wms_udh &e) { bitmap(e, 32); }
void large_bitmap(wms_udh &e) { bitmap(e, 128); }

struct ElementCase {
    const char *name;
    uint16_t id;
    void (*fill)(wms_udh &);
    std::string wire;  // IEI first; empty when the encoder refuses the record
    uint8_t decoded;   // the decoder's result
    Way way = kBoth;
};

class Element : public ::testing::TestWithParam<ElementCase> {};

TEST_P(Element, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    const wms_udh record = element(c.id, c.fill);
    const Octets wire = bytes(c.wire);
    Octets out(smsutil::transport::kMaxElementSize, 0xEE);
    wms_udh slot{};
    uint8_t written = 0, decoded = 0;
    encode_element_ptr = &record;
    if (c.way != kDecodeOnly) written = encode_element(record, out.data());
    decode_slot_ptr = &slot;
    if (c.way != kEncodeOnly) decoded = decode_element(record, wire);
    if (c.way != kDecodeOnly) {
        EXPECT_EQ(hex(out.data(), written), hex(wire));
    }
    if (c.way == kEncodeOnly) return;
    EXPECT_EQ(decoded, c.decoded);
    if (decoded != 0) {
        EXPECT_EQ(bytes_of(slot), bytes_of(record));
    }
}

const ElementCase kElements[] = {
    {"special_sm_store", 0x01, special_store, "01028105", 3},
    {"special_sm_discard", 0x01, special_discard, "01020201", 3},
    {"special_sm_cut", 0x01, nullptr, "010181", 0, kDecodeOnly},
    {"text_formatting", 0x0A, [](wms_udh &e) { e.u.text_formatting = {2, 10, 1, 2, 1, 0, 1, 0}; }, "0A03020A59", 4},
    {"text_formatting_reserved_size", 0x0A, [](wms_udh &e) { e.u.text_formatting = {0, 1, 3, 0, 0, 0, 0, 1}; },
     "0A0300018F", 4, kDecodeOnly},
    {"pre_def_sound", 0x0B, pre_def_sound, "0B020409", 3},
    {"user_def_sound", 0x0C, user_def_sound, "0C0407A100A3", 5},
    {"user_def_sound_too_long", 0x0C, [](wms_udh &e) { e.u.user_def_sound.data_length = 129; }, "", 0, kEncodeOnly},
    {"user_def_sound_over_128", 0x0C, nullptr, "0C82" + rep(130, "11"), 0, kDecodeOnly},
    {"pre_def_anim", 0x0D, pre_def_anim, "0D02010E", 3},
    {"pre_def_anim_zero_iedl", 0x0D, nullptr, "0D00", 0, kDecodeOnly},
    {"large_anim", 0x0E, large_bitmap, "0E8107" + rep(128, "11"), 130},
    {"small_anim", 0x0F, small_bitmap, "0F2107" + rep(32, "11"), 34},
    {"large_picture", 0x10, large_bitmap, "108107" + rep(128, "11"), 130},
    {"small_picture", 0x11, small_bitmap, "112107" + rep(32, "11"), 34},
    {"small_picture_one_short", 0x11, nullptr, "112007" + rep(32, "11"), 0, kDecodeOnly},
    {"var_picture", 0x12, var_picture, "1209030203101112131415", 10},
    {"var_picture_above_134_octets", 0x12, var_picture_too_big, "", 0, kEncodeOnly},
    {"var_picture_clipped_to_134", 0x12, var_picture_clipped, "128C001407" + rep(137, "22"), 138, kDecodeOnly},
    {"user_prompt", 0x13, [](wms_udh &e) { e.u.user_prompt.number_of_objects = 2; }, "130102", 2},
    {"eo_first_segment", 0x14, eo_first, "140907123401FF0102C0C1", 10},
    {"eo_type_keeps_its_low_octet", 0x14, eo_wide_type, "140700000000FF0000", 0, kEncodeOnly},
    {"eo_later_segment", 0x14, [](wms_udh &e) { e.u.eo = {1, {0xC0}, 0, 0, 0, 0, 0, 0}; }, "1401C0", 2},
    // IEDL 137 is the longest an object may announce; content holds 136
    // octets, so the last one goes out as 0.
    {"eo_later_segment_of_137", 0x14, eo_later_of_137, "1489" + rep(136, "55") + "00", 0, kEncodeOnly},
    {"eo_first_segment_short", 0x14, [](wms_udh &e) { e.u.eo.first_segment = 1; }, "1406010203040506", 0, kDecodeOnly},
    {"eo_content_136", 0x14, eo_later_of_136, "1488" + rep(136, "55"), 137, kDecodeOnly},
    {"eo_content_137", 0x14, nullptr, "1489" + rep(137, "55"), 0, kDecodeOnly},
    {"eo_first_above_137", 0x14, eo_first_of_131, "", 0, kEncodeOnly},
    {"rfc822", 0x20, [](wms_udh &e) { e.u.rfc822.header_length = 40; }, "200128", 2},
    {"rfc822_zero_iedl", 0x20, nullptr, "2000", 0, kDecodeOnly},
    {"other", 0x70, [](wms_udh &e) { e = other(0x70, 0x70, "D0D1"); }, "7002D0D1", 4},
    {"other_id_is_its_low_octet", 0x70, [](wms_udh &e) { e.u.other.other_id = 0x170; }, "7000", 0, kEncodeOnly},
    {"other_above_137_octets", 0x70, [](wms_udh &e) { e.u.other.header_length = 138; }, "", 0, kEncodeOnly},
    {"other_over_137_refused", 0x70, nullptr, "708A" + rep(138, "33"), 0, kDecodeOnly},
};
INSTANTIATE_TEST_SUITE_P(Kinds, Element, ::testing::ValuesIn(kElements), case_name<ElementCase>);

TEST(ElementEdge, NoElementOrSlotMeansNothingWritten)
{
    encode_element_ptr = nullptr;
    decode_slot_ptr = nullptr;
    std::array<uint8_t, 4> out{0x01, 0x02};
    EXPECT_EQ(wms_ts_encode_udh_special_sm(out.data()) + wms_ts_encode_udh_eo(out.data()), 0);
    EXPECT_EQ(out[0], 1);
    EXPECT_EQ(wms_ts_decode_udh_user_prompt(out.data()), 0);
}

// ---- The header: UDHL, then the elements.  `count` is what decoding
// reports: -1 for the elements of the row, else a refusal leaving 0 or the
// caller's 0xEE.

struct HeaderCase {
    const char *name;
    std::vector<wms_udh> elements;
    std::string wire;
    Way way = kBoth;
    int count = -1;
};

class Header : public ::testing::TestWithParam<HeaderCase> {};

TEST_P(Header, EncodesToTheOctetsAndDecodesToTheElements)
{
    const auto &c = GetParam();
    const Octets wire = bytes(c.wire);
    if (c.way != kDecodeOnly) {
        std::array<uint8_t, WMS_MAX_LEN> out{};
        const uint8_t udhl =
            wms_ts_encode_user_data_header(static_cast<uint8_t>(c.elements.size()), c.elements.data(), out.data());
        EXPECT_EQ(hex(out.data(), udhl + 1u), hex(wire));
    }
    if (c.way == kEncodeOnly) return;
    std::array<wms_udh, WMS_UDH_MAX_IES> slots{};
    uint8_t count = 0xEE;
    const uint8_t udhl = wms_ts_decode_user_data_header(wire[0], wire.data(), &count, slots.data());
    if (c.count >= 0) {
        EXPECT_EQ(udhl, 0);
        EXPECT_EQ(count, c.count);
    } else {
        EXPECT_EQ(udhl, wire[0]);
        ASSERT_EQ(count, c.elements.size());
        for (std::size_t i = 0; i < count; ++i) EXPECT_EQ(bytes_of(slots[i]), bytes_of(c.elements[i])) << i;
        // One octet short, the last element runs past the input, unless
        // seven elements have ended the header already.  An exact copy lets
        // the address sanitizer see any overread.
        const Octets cut(wire.begin(), wire.end() - 1);
        if (count < WMS_UDH_MAX_IES) {
            EXPECT_EQ(smsutil::transport::decode_header(cut, count, slots.data()).udhl, 0);
        }
    }
}

const wms_udh kConcat = concat8(1, 2, 1);
constexpr uint16_t kSingle = WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT;
constexpr uint16_t kLocking = WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;

const HeaderCase kHeaders[] = {
    {"concat_8bit", {concat8(0x12, 3, 1)}, "050003120301"},
    {"concat_16bit", {concat16(0x1234, 3, 2)}, "06080412340302"},
    {"concat_and_single_shift", {concat8(7, 2, 1), national(kSingle, 2)}, "080003070201240102"},
    {"port_after_concat_kept", {concat8(0x12, 3, 1), other(5, 5, "0B8423F0")}, "0B0003120301 05040B8423F0"},
    // Special SM after supported ones is kept raw, but never under its own
    // identifier, whose layout it does not have.
    {"wire_order",
     {concat16(0xABCD, 5, 2), national(kLocking, 1), other(WMS_UDH_OTHER, 1, "8003"), national(kSingle, 2)},
     "10 0804ABCD0502 250101 01028003 240102"},
    {"other_of_137_kept", {kConcat, other(0x70, 0x70, rep(137, "55"))}, "90 0003010201 7089" + rep(137, "55")},
    // Seven large pictures (131 octets each) cannot all fit: those that do
    // not are left out rather than cut.
    {"big_ones_left_out_whole", std::vector<wms_udh>(7, element(WMS_UDH_LARGE_PICTURE)), "83 108100" + rep(128, "00"),
     kEncodeOnly},
    {"invalid_concat_left_out", {concat8(1, 3, 4)}, "00", kEncodeOnly},
    {"zero_total_left_out_others_kept", {concat8(1, 0, 0), national(kLocking, 1)}, "03250101", kEncodeOnly},
    {"refused_object_left_out", {element(WMS_UDH_EO, eo_first_of_131)}, "00", kEncodeOnly},
    {"seven_of_nine_written", std::vector<wms_udh>(9, kConcat), "23" + rep(7, "0003010201"), kEncodeOnly},
    {"seven_of_eight_read", std::vector<wms_udh>(7, kConcat), "28" + rep(8, "0003010201"), kDecodeOnly},
    {"octet_left_over", {}, "06000312030100", kDecodeOnly, 0xEE},
    {"port_element_first", {}, "0404021020", kDecodeOnly, 0},
    {"seq_above_total", {}, "050003120304", kDecodeOnly, 0},
    {"zero_iedl_concat", {}, "050000120301", kDecodeOnly, 0},
    {"concat_past_udhl", {}, "040003120301", kDecodeOnly, 0xEE},
    {"concat16_past_udhl", {}, "05080412340201", kDecodeOnly, 0xEE},
    {"other_iedl_past_udhl", {}, "0A0003120301 05040B8423", kDecodeOnly, 0xEE},
    {"other_of_138_refused", {}, "91 0003010201 708A" + rep(138, "55"), kDecodeOnly, 0},
    {"udhl_zero", {}, "0000", kDecodeOnly, 0xEE},
    {"lone_iei", {}, "0100", kDecodeOnly, 0xEE},
};
INSTANTIATE_TEST_SUITE_P(Headers, Header, ::testing::ValuesIn(kHeaders), case_name<HeaderCase>);

TEST(HeaderEdge, NoElementsWriteNothing)
{
    Octets out(WMS_MAX_LEN, 0xEE);
    EXPECT_EQ(wms_ts_encode_user_data_header(0, &kConcat, out.data()), 0);
    EXPECT_EQ(out[0], 0xEE);
}

// ---- TP-UDL and TP-UD.

// Class, compressed, alphabet, group, indication active and kind.
wms_gw_dcs dcs_of(uint8_t alphabet) { return {WMS_MESSAGE_CLASS_NONE, 0, alphabet, 0, 0, 0}; }

wms_gw_user_data text_data(const Octets &sm, const std::vector<wms_udh> &headers = {})
{
    wms_gw_user_data ud{};
    ud.num_headers = static_cast<uint8_t>(headers.size());
    std::copy(headers.begin(), headers.end(), ud.headers);
    ud.sm_len = static_cast<uint16_t>(sm.size());
    std::copy(sm.begin(), sm.end(), ud.sm_data);
    return ud;
}

struct UserDataCase {
    const char *name;
    uint8_t alphabet;
    bool udhi;
    const char *sm;  // sm_data as held: characters, or units low octet first
    std::vector<wms_udh> headers;
    const char *wire;  // TP-UDL first
    Way way = kBoth;
    std::size_t consumed = 0;  // octets decoding takes after TP-UDL; 0: all of them
};

class UserData : public ::testing::TestWithParam<UserDataCase> {};

TEST_P(UserData, EncodesToTheOctetsAndDecodesToTheRecord)
{
    const auto &c = GetParam();
    const wms_gw_dcs dcs = dcs_of(c.alphabet);
    const wms_gw_user_data record = text_data(bytes(c.sm), c.headers);
    const Octets wire = bytes(c.wire);
    if (c.way != kDecodeOnly) {
        std::array<uint8_t, WMS_MAX_LEN> out{};
        EXPECT_EQ(hex(out.data(), wms_ts_encode_gw_user_data(&dcs, &record, out.data())), hex(wire));
    }
    if (c.way == kEncodeOnly) return;
    wms_gw_user_data ud{};
    // The octets after TP-UD are passed too: a header TP-UDL cannot hold
    // is read from the rest of the TPDU.
    const auto rest = std::span(wire).subspan(1);
    const auto r = smsutil::transport::decode_user_data(dcs, wire[0], rest, c.udhi, ud);
    EXPECT_TRUE(r.complete);
    EXPECT_EQ(r.consumed, c.consumed ? c.consumed : rest.size());
    EXPECT_EQ(hex(ud.sm_data, ud.sm_len), c.sm);
    ASSERT_EQ(ud.num_headers, c.headers.size());
    for (std::size_t i = 0; i < c.headers.size(); ++i) EXPECT_EQ(bytes_of(ud.headers[i]), bytes_of(c.headers[i]));
    // One octet short of what TP-UDL announces is reported, not read.
    if (c.consumed == 0) {
        const auto cut = rest.first(rest.size() - 1);
        EXPECT_FALSE(smsutil::transport::decode_user_data(dcs, wire[0], cut, c.udhi, ud).complete);
    }
}

// TP-UDL 3 leaves no room for the header: it is kept, and there is no text.
const char kPastUdl[] = "03050003120301E832";
const wms_udh kConcat123 = concat8(0x12, 3, 1);
const wms_udh kConcat16 = concat16(0x1234, 2, 2);
const wms_udh kTurkish = national(kSingle, 2);
constexpr uint8_t kGsm7 = WMS_ALPHABET_GSM7;
constexpr uint8_t kUcs2 = WMS_ALPHABET_UCS2;
constexpr uint8_t k8bit = WMS_ALPHABET_8BIT;

const UserDataCase kUserData[] = {
    {"gsm7_plain", kGsm7, false, "68656C6C6F68656C6C6F", {}, "0AE8329BFD4697D9EC37"},
    {"gsm7_after_8bit_concat_one_fill_bit", kGsm7, true, "68656C6C6F", {kConcat123}, "0C050003120301D06536FB0D"},
    {"gsm7_after_16bit_concat_no_fill", kGsm7, true, "68656C6C6F", {kConcat16}, "0D06080412340202E8329BFD06"},
    {"gsm7_all_elements_left_out", kGsm7, true, "6869", {concat8(1, 1, 2)}, "0400003A0D", kEncodeOnly},
    {"gsm7_header_ignored_without_udhi", kGsm7, false, "05000C", {}, "03050003", kDecodeOnly},
    {"gsm7_header_longer_than_udl", kGsm7, true, "", {kConcat16}, "0706080412340202", kDecodeOnly},
    {"gsm7_refused_header_reads_all", kGsm7, true, "0100", {}, "020100", kDecodeOnly},
    {"gsm7_header_past_udl", kGsm7, true, "", {kConcat123}, kPastUdl, kDecodeOnly, 6},
    {"ucs2_header_past_udl", kUcs2, true, "", {kConcat123}, kPastUdl, kDecodeOnly, 6},
    {"ucs2_plain", kUcs2, false, "41004200", {}, "0400410042"},
    {"ucs2_after_concat", kUcs2, true, "4100", {concat8(9, 2, 2)}, "080500030902020041"},
    // An odd count ending the TPDU pairs its last octet with a 0; the dropped
    // U+0000 leaves its place at the end.
    {"ucs2_odd_at_the_end", kUcs2, false, "4100004200", {}, "050000004142", kDecodeOnly},
    {"ucs2_zero_units_move_to_the_end", kUcs2, false, "410042000000", {}, "06004100000042", kDecodeOnly},
    {"ucs2_national_language_keeps_header", kUcs2, true, "240302014100", {kTurkish}, "06032401020041", kDecodeOnly},
    {"ucs2_udhl_zero_skips_one_octet", kUcs2, true, "41004200", {}, "050000410042", kDecodeOnly},
    {"8bit_odd_sends_the_next_octet", k8bit, false, "010203", {}, "0302010003", kEncodeOnly},
    {"8bit_refused_header_skips_one_octet", k8bit, true, "01054200", {}, "050305010042", kDecodeOnly},
};
INSTANTIATE_TEST_SUITE_P(Data, UserData, ::testing::ValuesIn(kUserData), case_name<UserDataCase>);

TEST(UserDataEdge, OctetDataStopsAtTheEndOfTheBuffer)
{
    wms_gw_user_data ud = text_data(Octets(200, 0x11));
    ud.sm_len = 300;  // more than sm_data holds: never read past it
    std::array<uint8_t, 40> out{};
    smsutil::common::OctetWriter w(out.data(), out.size());
    EXPECT_EQ(smsutil::transport::encode_user_data(dcs_of(kUcs2), ud, w), 40u);
    EXPECT_EQ(out[0], 300 & 0xFF);
}

TEST(UserDataEdge, DecodeSlotIsPerThreadAndUdhlZeroNeverUsesAStaleOne)
{
    // An earlier header leaves the decode pointer on a national language slot.
    const Octets earlier{0x03, 0x24, 0x01, 0x02};
    std::array<wms_udh, WMS_UDH_MAX_IES> old{};
    uint8_t count = 0;
    ASSERT_EQ(wms_ts_decode_user_data_header(0, earlier.data(), &count, old.data()), 3);
    wms_udh *seen_by_other = &old[1];
    std::thread([&] { seen_by_other = decode_slot_ptr; }).join();
    EXPECT_EQ(seen_by_other, nullptr);
    EXPECT_EQ(decode_slot_ptr, &old[0]);
    const wms_gw_dcs dcs = dcs_of(kUcs2);
    const Octets wire{0x00, 0x00, 0x41};
    wms_gw_user_data ud{};
    EXPECT_EQ(wms_ts_decode_gw_user_data(&dcs, 3, wire.data(), 1, &ud), 3);
    EXPECT_EQ(hex(ud.sm_data, ud.sm_len), "4100");
}

// ---- Septet packing; the text behind headers is in the user data table.

struct PackCase {
    const char *name;
    std::string text;
    uint16_t fill;
    const char *packed;
    uint8_t before = 0;  // what the caller left in the first octet
};

class SeptetPacking : public ::testing::TestWithParam<PackCase> {};

TEST_P(SeptetPacking, PacksAndUnpacksKnownOctets)
{
    const auto &c = GetParam();
    const Octets septets(c.text.begin(), c.text.end());
    const auto n = static_cast<uint16_t>(septets.size());
    std::array<uint8_t, 32> out{c.before};
    const uint16_t written = wms_ts_pack_gw_7_bit_chars(septets.data(), n, c.fill, 32, out.data());
    EXPECT_EQ(hex(out.data(), written), c.packed);
    EXPECT_EQ(out[written], 0);

    const Octets packed = bytes(c.packed);
    std::array<uint8_t, 32> back{};
    const uint16_t start_code = c.fill == 0 ? 0 : static_cast<uint16_t>(8 - c.fill);
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), static_cast<uint8_t>(n), 32, start_code, back.data()),
              packed.size());
    EXPECT_EQ(Octets(back.begin(), back.begin() + n), septets);
}

const PackCase kPacks[] = {
    {"seven_chars", "hellohe", 0, "E8329BFD469701"},
    {"eight_chars", "hellohel", 0, "E8329BFD4697D9"},
    {"six_fill_bits", "hello", 6, "00BACC66BF01"},
    {"fill_keeps_the_callers_low_bit", "Hi", 1, "9169", 0x01},
    {"fill_without_text", "", 3, "00"},
    {"nothing", "", 0, ""},
};
INSTANTIATE_TEST_SUITE_P(Texts, SeptetPacking, ::testing::ValuesIn(kPacks), case_name<PackCase>);

TEST(SeptetPackingEdge, StopsAtTheCapacity)
{
    const Octets septets{'h', 'e', 'l', 'l', 'o', 'h', 'e', 'l', 'l', 'o'};
    Octets out(9, 0xEE);
    EXPECT_EQ(wms_ts_pack_gw_7_bit_chars(septets.data(), 10, 0, 4, out.data()), 4);
    EXPECT_EQ(hex(out.data(), 5), "E8329BFDEE");

    std::array<uint8_t, 10> chars{};
    const Octets packed = bytes("E8329BFD4697D9EC37");
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(packed.data(), 10, 3, 0, chars.data()), 3);
    EXPECT_EQ(hex(chars.data(), 4), "68656C00");
    // Seven characters leave seven spare bits; a sender padding with CR puts a
    // whole character there, stored past the count where there is room.
    const Octets cr = bytes("E8329BFD46971B");
    EXPECT_EQ(wms_ts_unpack_gw_7_bit_chars(cr.data(), 7, 9, 0, chars.data()), 7);
    EXPECT_EQ(hex(chars.data(), 10), "68656C6C6F68650D0000");
}

}  // namespace
