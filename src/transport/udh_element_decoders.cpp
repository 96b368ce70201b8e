// Decoders of single user data header elements, for callers that walk a
// header themselves.  Each reads from the element's IEDL octet, never past
// the IEDL octets that follow it, and writes the slot at the decode pointer.
#include <algorithm>
#include <cstring>

#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

// The element's data as announced by its IEDL octet.
std::span<const std::uint8_t> element_data(const std::uint8_t *iedl) { return {iedl + 1, iedl[0]}; }

// Copies a fixed-size element body (position, then n octets) when IEDL
// announces at least that much; the octets consumed, 0 otherwise.
std::size_t decode_positioned(const std::uint8_t *iedl, std::uint16_t kind, std::uint8_t &position, std::uint8_t *dest,
                              std::size_t n)
{
    const auto data = element_data(iedl);
    if (data.empty() || data.size() < 1 + n || decode_slot_ptr == nullptr) return 0;
    decode_slot_ptr->header_id = kind;
    position = data[0];
    std::memcpy(dest, data.data() + 1, n);
    return 2 + n;
}

// Elements of two data octets; the octets consumed, 0 when cut short.
std::size_t decode_pair(const std::uint8_t *iedl, std::uint16_t kind, std::uint8_t &first, std::uint8_t &second)
{
    const auto data = element_data(iedl);
    if (data.size() < 2 || decode_slot_ptr == nullptr) return 0;
    decode_slot_ptr->header_id = kind;
    first = data[0];
    second = data[1];
    return 3;
}

std::size_t decode_single(const std::uint8_t *iedl, std::uint16_t kind, std::uint8_t &value)
{
    const auto data = element_data(iedl);
    if (data.empty() || decode_slot_ptr == nullptr) return 0;
    decode_slot_ptr->header_id = kind;
    value = data[0];
    return 2;
}

}  // namespace

std::size_t decode_other_element(std::uint8_t iei, std::span<const std::uint8_t> data, wms_udh &slot)
{
    if (data.size() > WMS_UDH_OTHER_SIZE) return 0;
    slot.header_id = iei;
    slot.u.other.other_id = iei;
    slot.u.other.header_length = static_cast<std::uint8_t>(data.size());
    std::memcpy(slot.u.other.data, data.data(), data.size());
    return 2 + data.size();
}

}  // namespace smsutil::transport

using smsutil::transport::decode_slot_ptr;

extern "C" {

SMSUTIL_API uint8_t wms_ts_decode_udh_special_sm(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.special_sm;
    std::uint8_t indication = 0;
    const auto size = smsutil::transport::decode_pair(iedl, WMS_UDH_SPECIAL_SM, indication, e.message_count);
    if (size == 0) return 0;
    e.msg_waiting = (indication & 0x80) != 0 ? WMS_DCS_MWI_STORE : WMS_DCS_MWI_DISCARD;
    e.mwi_kind = indication & 0x7F;
    return static_cast<uint8_t>(size);
}

SMSUTIL_API uint8_t wms_ts_decode_udh_text_formatting(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    const auto data = smsutil::transport::element_data(iedl);
    if (data.size() < 3) return 0;
    decode_slot_ptr->header_id = WMS_UDH_TEXT_FORMATTING;
    auto &e = decode_slot_ptr->u.text_formatting;
    e.start_position = data[0];
    e.text_formatting_length = data[1];
    const std::uint8_t style = data[2];
    e.alignment = style & 0x03;
    e.font_size = (style >> 2) & 0x03;
    if (e.font_size == 3) e.font_size = 0;  // reserved: normal size
    e.style_bold = (style >> 4) & 1;
    e.style_italic = (style >> 5) & 1;
    e.style_underlined = (style >> 6) & 1;
    e.style_strikethrough = (style >> 7) & 1;
    return 4;
}

SMSUTIL_API uint8_t wms_ts_decode_udh_pre_def_sound(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.pre_def_sound;
    return static_cast<uint8_t>(smsutil::transport::decode_pair(iedl, WMS_UDH_PRE_DEF_SOUND, e.position, e.snd_number));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_pre_def_anim(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.pre_def_anim;
    return static_cast<uint8_t>(
        smsutil::transport::decode_pair(iedl, WMS_UDH_PRE_DEF_ANIM, e.position, e.animation_number));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_user_def_sound(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr || iedl[0] == 0) return 0;
    const std::size_t length = iedl[0] - 1u;
    if (length > WMS_UDH_USER_DEF_SOUND_SIZE) return 0;
    auto &e = decode_slot_ptr->u.user_def_sound;
    decode_slot_ptr->header_id = WMS_UDH_USER_DEF_SOUND;
    e.data_length = static_cast<uint8_t>(length);
    e.position = iedl[1];
    std::memset(e.user_def_sound, 0xFF, sizeof e.user_def_sound);
    std::memcpy(e.user_def_sound, iedl + 2, length);
    return static_cast<uint8_t>(length + 2);
}

SMSUTIL_API uint8_t wms_ts_decode_udh_large_anim(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.large_anim;
    return static_cast<uint8_t>(
        smsutil::transport::decode_positioned(iedl, WMS_UDH_LARGE_ANIM, e.position, &e.data[0][0], sizeof e.data));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_small_anim(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.small_anim;
    return static_cast<uint8_t>(
        smsutil::transport::decode_positioned(iedl, WMS_UDH_SMALL_ANIM, e.position, &e.data[0][0], sizeof e.data));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_large_picture(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.large_picture;
    return static_cast<uint8_t>(
        smsutil::transport::decode_positioned(iedl, WMS_UDH_LARGE_PICTURE, e.position, e.data, sizeof e.data));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_small_picture(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    auto &e = decode_slot_ptr->u.small_picture;
    return static_cast<uint8_t>(
        smsutil::transport::decode_positioned(iedl, WMS_UDH_SMALL_PICTURE, e.position, e.data, sizeof e.data));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_var_picture(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    const auto data = smsutil::transport::element_data(iedl);
    if (data.size() < 3) return 0;
    decode_slot_ptr->header_id = WMS_UDH_VAR_PICTURE;
    auto &e = decode_slot_ptr->u.var_picture;
    e.position = data[0];
    e.width = static_cast<uint8_t>(data[1] * 8);
    e.height = data[2];
    const std::size_t n = std::min<std::size_t>(data.size() - 3, WMS_UDH_VAR_PICTURE_SIZE);
    std::memcpy(e.data, data.data() + 3, n);
    return static_cast<uint8_t>(4 + n);
}

SMSUTIL_API uint8_t wms_ts_decode_udh_user_prompt(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    return static_cast<uint8_t>(
        smsutil::transport::decode_single(iedl, WMS_UDH_USER_PROMPT, decode_slot_ptr->u.user_prompt.number_of_objects));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_rfc822(const uint8_t *iedl)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    return static_cast<uint8_t>(
        smsutil::transport::decode_single(iedl, WMS_UDH_RFC822, decode_slot_ptr->u.rfc822.header_length));
}

SMSUTIL_API uint8_t wms_ts_decode_udh_eo(const uint8_t *iedl, uint8_t first_segment)
{
    if (iedl == nullptr || decode_slot_ptr == nullptr) return 0;
    const auto data = smsutil::transport::element_data(iedl);
    const std::size_t header = first_segment == 1 ? 7 : 0;
    if (data.empty() || data.size() < header) return 0;
    const std::size_t content = data.size() - header;
    if (content > WMS_UDH_EO_CONTENT_SIZE) return 0;
    decode_slot_ptr->header_id = WMS_UDH_EO;
    auto &e = decode_slot_ptr->u.eo;
    e.first_segment = first_segment;
    if (header != 0) {
        e.reference = data[0];
        e.length = static_cast<uint16_t>((data[1] << 8) | data[2]);
        e.control = data[3];
        e.type = data[4];
        e.position = static_cast<uint16_t>((data[5] << 8) | data[6]);
    }
    e.content_length = static_cast<uint8_t>(content);
    std::memcpy(e.content, data.data() + header, content);
    return static_cast<uint8_t>(1 + header + content);
}

SMSUTIL_API uint8_t wms_ts_decode_udh_other(const uint8_t *iei)
{
    if (iei == nullptr || decode_slot_ptr == nullptr) return 0;
    return static_cast<uint8_t>(
        smsutil::transport::decode_other_element(iei[0], std::span<const uint8_t>(iei + 2, iei[1]), *decode_slot_ptr));
}

}  // extern "C"
