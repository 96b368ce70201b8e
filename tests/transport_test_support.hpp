// Shared pieces of the transport tests: hex input, header elements, random
// records and the check that a decoder never looks past a TPDU's length.
#pragma once

#include <gtest/gtest.h>

#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "smsutil/wms_ts.h"

namespace smsutil::test {

inline wms_raw_tpdu raw_from_hex(const std::string &hex)
{
    wms_raw_tpdu raw{};
    for (size_t i = 0; i + 1 < hex.size() && raw.len < WMS_MAX_LEN; i += 2)
        raw.data[raw.len++] = static_cast<uint8_t>(std::stoul(hex.substr(i, 2), nullptr, 16));
    return raw;
}

inline std::string hex_of(const wms_raw_tpdu &raw)
{
    static const char digits[] = "0123456789ABCDEF";
    std::string s;
    for (size_t i = 0; i < raw.len; ++i) {
        s += digits[raw.data[i] >> 4];
        s += digits[raw.data[i] & 0x0F];
    }
    return s;
}

// Decodes raw twice, once with the octets past len cleared and once with
// them set, and expects the same result and the same record: an octet read
// past len would show as a difference.
template <typename Record, typename Decode>
uint32_t decode_ignoring_tail(const wms_raw_tpdu &raw, Decode decode, Record &record)
{
    wms_raw_tpdu clean = raw;
    wms_raw_tpdu dirty = raw;
    for (size_t i = raw.len; i < WMS_MAX_LEN; ++i) {
        clean.data[i] = 0;
        dirty.data[i] = static_cast<uint8_t>(0xA5 ^ i);
    }
    Record from_dirty{};
    std::memset(&record, 0, sizeof record);
    const uint32_t result = decode(&clean, &record);
    EXPECT_EQ(decode(&dirty, &from_dirty), result) << hex_of(raw);
    EXPECT_EQ(std::memcmp(&record, &from_dirty, sizeof record), 0) << hex_of(raw);
    return result;
}

// Every proper prefix of a valid TPDU, then random octet strings.
template <typename Record, typename Decode>
void expect_bounded_on_hostile_input(const wms_raw_tpdu &valid, Decode decode, unsigned seed)
{
    for (uint32_t len = 0; len <= valid.len; ++len) {
        wms_raw_tpdu cut = valid;
        cut.len = len;
        Record record;
        const uint32_t result = decode_ignoring_tail(cut, decode, record);
        EXPECT_TRUE(result == 0 || result == 100 || result == 101 || result == 102) << len;
    }
    std::mt19937 rng(seed);
    for (int i = 0; i < 3000; ++i) {
        wms_raw_tpdu raw{};
        raw.len = rng() % 2 == 0 ? rng() % 40 : rng() % 300;  // also lengths above the buffer
        for (auto &octet : raw.data) octet = static_cast<uint8_t>(rng());
        Record record;
        const uint32_t result = decode_ignoring_tail(raw, decode, record);
        EXPECT_TRUE(result == 0 || result == 100 || result == 101 || result == 102) << hex_of(raw);
    }
}

inline wms_udh concat8(uint8_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e{};
    e.header_id = WMS_UDH_CONCAT_8BIT_REF;
    e.u.concat_8 = {ref, total, seq};
    return e;
}

inline wms_udh concat16(uint16_t ref, uint8_t total, uint8_t seq)
{
    wms_udh e{};
    e.header_id = WMS_UDH_CONCAT_16BIT_REF;
    e.u.concat_16 = {ref, total, seq};
    return e;
}

class RecordGenerator {
public:
    explicit RecordGenerator(unsigned seed) : rng_(seed) {}

    unsigned below(unsigned n) { return static_cast<unsigned>(rng_() % n); }
    uint8_t octet() { return static_cast<uint8_t>(rng_()); }

    wms_address address()
    {
        wms_address a{};
        if (below(3) == 0) {
            a.digit_mode = WMS_DIGIT_MODE_CHAR;
            a.number_type = WMS_NUMBER_ALPHANUMERIC;
            a.number_of_digits = static_cast<uint8_t>(below(12));
            for (int i = 0; i < a.number_of_digits; ++i) a.digits[i] = static_cast<uint8_t>(below(128));
        } else {
            static constexpr uint8_t kTypes[] = {0, 1, 2, 3, 4, 6, 7};
            a.number_type = kTypes[below(7)];
            a.number_of_digits = static_cast<uint8_t>(below(21));
            for (int i = 0; i < a.number_of_digits; ++i) a.digits[i] = static_cast<uint8_t>(below(16));
        }
        a.number_plan = static_cast<uint8_t>(below(16));
        return a;
    }

    wms_gw_dcs dcs()
    {
        wms_gw_dcs d{};
        d.coding_group = below(4);
        d.msg_class = WMS_MESSAGE_CLASS_NONE;
        switch (d.coding_group) {
        case WMS_DCS_GENERAL:
            d.alphabet = static_cast<uint8_t>(below(3));
            d.msg_class = static_cast<uint8_t>(below(5));
            break;
        case WMS_DCS_CLASS_GROUP:
            d.alphabet = below(2) == 0 ? WMS_ALPHABET_GSM7 : WMS_ALPHABET_8BIT;
            d.msg_class = static_cast<uint8_t>(below(4));
            break;
        case WMS_DCS_MWI_DISCARD:
            d.mwi_active = static_cast<uint8_t>(below(2));
            d.mwi_kind = static_cast<uint8_t>(below(4));
            break;
        default:
            d.alphabet = below(2) == 0 ? WMS_ALPHABET_GSM7 : WMS_ALPHABET_UCS2;
            d.mwi_active = static_cast<uint8_t>(below(2));
            d.mwi_kind = static_cast<uint8_t>(below(4));
            break;
        }
        return d;
    }

    wms_timestamp timestamp()
    {
        auto bcd = [&](unsigned lo, unsigned hi) { return wms_ts_int_to_bcd(static_cast<uint8_t>(lo + below(hi - lo + 1))); };
        return wms_timestamp{bcd(0, 99), bcd(1, 12), bcd(1, 31), bcd(0, 23), bcd(0, 59), bcd(0, 59),
                             static_cast<int8_t>(static_cast<int>(below(97)) - 48)};
    }

    wms_gw_validity validity()
    {
        wms_gw_validity v{};
        static constexpr uint8_t kFormats[] = {WMS_VP_NONE, WMS_VP_RELATIVE, WMS_VP_ABSOLUTE};
        v.format = kFormats[below(3)];
        if (v.format == WMS_VP_RELATIVE) wms_ts_decode_relative_time(octet(), &v.time);
        if (v.format == WMS_VP_ABSOLUTE) v.time = timestamp();
        return v;
    }

    // A header element the decoder takes back field by field.
    wms_udh supported_element()
    {
        wms_udh e{};
        switch (below(4)) {
        case 0:
        case 1: {
            const auto total = static_cast<uint8_t>(1 + below(255));
            const auto seq = static_cast<uint8_t>(1 + below(total));
            e = below(2) == 0 ? concat8(octet(), total, seq) : concat16(static_cast<uint16_t>(rng_()), total, seq);
            break;
        }
        default:
            e.header_id = below(2) == 0 ? WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT : WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;
            e.u.nat_lang_ss = {static_cast<uint8_t>(e.header_id), 1, static_cast<uint8_t>(below(14))};
            break;
        }
        return e;
    }

    // An element of any kind the encoder writes.
    wms_udh any_element()
    {
        static constexpr uint16_t kKinds[] = {
            WMS_UDH_SPECIAL_SM,    WMS_UDH_TEXT_FORMATTING, WMS_UDH_PRE_DEF_SOUND, WMS_UDH_USER_DEF_SOUND,
            WMS_UDH_PRE_DEF_ANIM,  WMS_UDH_LARGE_ANIM,      WMS_UDH_SMALL_ANIM,    WMS_UDH_LARGE_PICTURE,
            WMS_UDH_SMALL_PICTURE, WMS_UDH_VAR_PICTURE,     WMS_UDH_USER_PROMPT,   WMS_UDH_EO,
            WMS_UDH_RFC822,        0x05};
        wms_udh e{};
        e.header_id = kKinds[below(sizeof kKinds / sizeof kKinds[0])];
        auto *raw = reinterpret_cast<uint8_t *>(&e.u);
        for (size_t i = 0; i < sizeof e.u; ++i) raw[i] = octet();
        switch (e.header_id) {
        case WMS_UDH_SPECIAL_SM: e.u.special_sm.msg_waiting = WMS_DCS_MWI_DISCARD + below(2); e.u.special_sm.mwi_kind &= 0x7F; break;
        case WMS_UDH_USER_DEF_SOUND: e.u.user_def_sound.data_length = static_cast<uint8_t>(below(20)); break;
        case WMS_UDH_VAR_PICTURE: e.u.var_picture.width = 8; e.u.var_picture.height = static_cast<uint8_t>(below(16)); break;
        case WMS_UDH_EO: e.u.eo.content_length = static_cast<uint8_t>(below(16)); e.u.eo.first_segment = static_cast<uint8_t>(below(2)); break;
        case 0x05: e.u.other.other_id = 0x05; e.u.other.header_length = static_cast<uint8_t>(below(10)); break;
        default: break;
        }
        return e;
    }

    // User data for the alphabet; with headers, the first is one the decoder
    // takes, and for octet data the last is a concatenation element, so that
    // the text is found behind the header.
    wms_gw_user_data user_data(uint8_t alphabet, bool with_headers, bool any_kinds)
    {
        wms_gw_user_data ud{};
        std::vector<wms_udh> headers;
        if (with_headers) {
            headers.push_back(supported_element());
            const unsigned extra = below(4);
            for (unsigned i = 0; i < extra; ++i) headers.push_back(any_kinds ? any_element() : supported_element());
            if (alphabet != WMS_ALPHABET_GSM7) headers.push_back(concat8(octet(), 2, 1));
        }
        std::array<uint8_t, WMS_MAX_LEN> scratch{};
        // Summed element by element: a header encoder leaves out what does
        // not fit its buffer, which would hide an oversized header.
        auto header_size = [&] {
            unsigned size = headers.empty() ? 0 : 1;
            for (const wms_udh &e : headers) size += wms_ts_encode_user_data_header(1, &e, scratch.data());
            return size;
        };
        // Elements that do not fit beside the others are dropped, keeping the ends.
        if (header_size() > 140) headers.erase(headers.begin() + 1, headers.end() - (alphabet == WMS_ALPHABET_GSM7 ? 0 : 1));
        ud.num_headers = static_cast<uint8_t>(headers.size());
        std::copy(headers.begin(), headers.end(), ud.headers);
        const unsigned header_octets = header_size();
        const unsigned room = 140 - header_octets;
        if (alphabet == WMS_ALPHABET_GSM7) {
            ud.sm_len = static_cast<uint16_t>(below(room * 8 >= 6 ? (room * 8 - 6) / 7 + 1 : 1));
            for (int i = 0; i < ud.sm_len; ++i) ud.sm_data[i] = static_cast<uint8_t>(below(128));
        } else {
            ud.sm_len = static_cast<uint16_t>(below(room / 2 + 1) * 2);
            for (int i = 0; i < ud.sm_len; ++i) ud.sm_data[i] = static_cast<uint8_t>(1 + below(255));
        }
        return ud;
    }

private:
    std::mt19937 rng_;
};

inline void expect_same_address(const wms_address &a, const wms_address &b)
{
    EXPECT_EQ(a.number_type, b.number_type);
    EXPECT_EQ(a.number_plan, b.number_plan);
    EXPECT_EQ(a.digit_mode, b.digit_mode);
    ASSERT_EQ(a.number_of_digits, b.number_of_digits);
    EXPECT_EQ(std::memcmp(a.digits, b.digits, a.number_of_digits), 0);
}

inline void expect_same_dcs(const wms_gw_dcs &a, const wms_gw_dcs &b)
{
    EXPECT_EQ(+a.coding_group, +b.coding_group);
    EXPECT_EQ(a.alphabet, b.alphabet);
    EXPECT_EQ(a.msg_class, b.msg_class);
    EXPECT_EQ(a.is_compressed, b.is_compressed);
    EXPECT_EQ(a.mwi_active, b.mwi_active);
    EXPECT_EQ(a.mwi_kind, b.mwi_kind);
}

// Elements the decoder takes come back whole; the text comes back exactly.
inline void expect_same_user_data(const wms_gw_user_data &sent, const wms_gw_user_data &got, bool any_kinds)
{
    ASSERT_EQ(got.num_headers, sent.num_headers);
    for (int i = 0; i < sent.num_headers; ++i) {
        const uint16_t id = sent.headers[i].header_id;
        const bool supported = id == WMS_UDH_CONCAT_8BIT_REF || id == WMS_UDH_CONCAT_16BIT_REF ||
                               id == WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT ||
                               id == WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;
        if (supported || !any_kinds) {
            EXPECT_EQ(std::memcmp(&got.headers[i], &sent.headers[i], sizeof(wms_udh)), 0) << i;
        }
    }
    ASSERT_EQ(+got.sm_len, +sent.sm_len);
    EXPECT_EQ(std::memcmp(got.sm_data, sent.sm_data, +sent.sm_len), 0);
}

}  // namespace smsutil::test
