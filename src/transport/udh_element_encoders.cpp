// Encoders of the user data header elements that have a layout of their
// own.  Each builds IEI, IEDL and data; the exported forms take the element
// from the encode pointer so that a header encoder can hand them one at a time.
#include <algorithm>
#include <array>
#include <cstring>

#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

// Largest data an element of another kind carries.
constexpr std::size_t kMaxOtherData = WMS_UDH_OTHER_SIZE;
// Longest IEDL an extended object may announce.
constexpr std::size_t kMaxEoData = 137;

class ElementBuilder {
public:
    ElementBuilder(ElementBuffer out, std::uint8_t iei) : out_(out) { out_[0] = iei; }
    ElementBuilder &put(std::uint32_t octet)
    {
        out_[size_++] = static_cast<std::uint8_t>(octet);
        return *this;
    }
    ElementBuilder &put(const std::uint8_t *data, std::size_t n)
    {
        std::memcpy(out_.data() + size_, data, n);
        size_ += n;
        return *this;
    }
    // Writes IEDL and gives the element's whole size.
    std::size_t finish()
    {
        out_[1] = static_cast<std::uint8_t>(size_ - 2);
        return size_;
    }

private:
    ElementBuffer out_;
    std::size_t size_ = 2;
};

std::size_t build_special_sm(const wms_udh_special_sm &e, ElementBuffer out)
{
    return ElementBuilder(out, WMS_UDH_SPECIAL_SM)
        .put((e.msg_waiting == WMS_DCS_MWI_STORE ? 0x80u : 0u) | e.mwi_kind)
        .put(e.message_count)
        .finish();
}

std::size_t build_text_formatting(const wms_udh_text_formatting &e, ElementBuffer out)
{
    const unsigned style = e.alignment | (e.font_size << 2) | (e.style_bold << 4) | (e.style_italic << 5) |
                           (e.style_underlined << 6) | (e.style_strikethrough << 7);
    return ElementBuilder(out, WMS_UDH_TEXT_FORMATTING)
        .put(e.start_position)
        .put(e.text_formatting_length)
        .put(style)
        .finish();
}

std::size_t build_two_octets(std::uint8_t iei, std::uint8_t first, std::uint8_t second, ElementBuffer out)
{
    return ElementBuilder(out, iei).put(first).put(second).finish();
}

std::size_t build_positioned(std::uint8_t iei, std::uint8_t position, const std::uint8_t *data, std::size_t n,
                             ElementBuffer out)
{
    return ElementBuilder(out, iei).put(position).put(data, n).finish();
}

std::size_t build_user_def_sound(const wms_udh_user_def_sound &e, ElementBuffer out)
{
    if (e.data_length > WMS_UDH_USER_DEF_SOUND_SIZE) return 0;
    return build_positioned(WMS_UDH_USER_DEF_SOUND, e.position, e.user_def_sound, e.data_length, out);
}

std::size_t build_var_picture(const wms_udh_var_picture &e, ElementBuffer out)
{
    const std::size_t count = static_cast<std::size_t>(e.width) * e.height / 8;
    if (count > WMS_UDH_VAR_PICTURE_SIZE) return 0;
    return ElementBuilder(out, WMS_UDH_VAR_PICTURE)
        .put(e.position)
        .put(e.width >> 3)
        .put(e.height)
        .put(e.data, count)
        .finish();
}

std::size_t build_eo(const wms_udh_eo &e, ElementBuffer out)
{
    const bool first = e.first_segment == 1;
    if (e.content_length + (first ? 7u : 0u) > kMaxEoData) return 0;
    ElementBuilder b(out, WMS_UDH_EO);
    if (first) {
        b.put(e.reference).put(e.length >> 8).put(e.length & 0xFF).put(e.control).put(e.type & 0xFF);
        b.put(e.position >> 8).put(e.position & 0xFF);
    }
    // A later segment may announce one octet more than content holds; that
    // octet has no place in the record and goes out as 0.
    const std::size_t held = std::min<std::size_t>(e.content_length, WMS_UDH_EO_CONTENT_SIZE);
    b.put(e.content, held);
    for (std::size_t i = held; i < e.content_length; ++i) b.put(0);
    return b.finish();
}

std::size_t build_other(const wms_udh_other &e, ElementBuffer out)
{
    if (e.header_length > kMaxOtherData) return 0;
    return ElementBuilder(out, static_cast<std::uint8_t>(e.other_id & 0xFF)).put(e.data, e.header_length).finish();
}

}  // namespace

std::size_t build_element(const wms_udh &e, ElementBuffer out)
{
    const auto &u = e.u;
    switch (e.header_id) {
    case WMS_UDH_SPECIAL_SM:
        return build_special_sm(u.special_sm, out);
    case WMS_UDH_TEXT_FORMATTING:
        return build_text_formatting(u.text_formatting, out);
    case WMS_UDH_PRE_DEF_SOUND:
        return build_two_octets(WMS_UDH_PRE_DEF_SOUND, u.pre_def_sound.position, u.pre_def_sound.snd_number, out);
    case WMS_UDH_USER_DEF_SOUND:
        return build_user_def_sound(u.user_def_sound, out);
    case WMS_UDH_PRE_DEF_ANIM:
        return build_two_octets(WMS_UDH_PRE_DEF_ANIM, u.pre_def_anim.position, u.pre_def_anim.animation_number, out);
    case WMS_UDH_LARGE_ANIM:
        return build_positioned(WMS_UDH_LARGE_ANIM, u.large_anim.position, &u.large_anim.data[0][0],
                                sizeof u.large_anim.data, out);
    case WMS_UDH_SMALL_ANIM:
        return build_positioned(WMS_UDH_SMALL_ANIM, u.small_anim.position, &u.small_anim.data[0][0],
                                sizeof u.small_anim.data, out);
    case WMS_UDH_LARGE_PICTURE:
        return build_positioned(WMS_UDH_LARGE_PICTURE, u.large_picture.position, u.large_picture.data,
                                sizeof u.large_picture.data, out);
    case WMS_UDH_SMALL_PICTURE:
        return build_positioned(WMS_UDH_SMALL_PICTURE, u.small_picture.position, u.small_picture.data,
                                sizeof u.small_picture.data, out);
    case WMS_UDH_VAR_PICTURE:
        return build_var_picture(u.var_picture, out);
    case WMS_UDH_USER_PROMPT:
        return ElementBuilder(out, WMS_UDH_USER_PROMPT).put(u.user_prompt.number_of_objects).finish();
    case WMS_UDH_EO:
        return build_eo(u.eo, out);
    case WMS_UDH_RFC822:
        return ElementBuilder(out, WMS_UDH_RFC822).put(u.rfc822.header_length).finish();
    default:
        return build_other(u.other, out);
    }
}

}  // namespace smsutil::transport

namespace {

// Encodes the element at the encode pointer as the given kind.
uint8_t encode_current_as(std::uint16_t kind, uint8_t *out)
{
    using namespace smsutil::transport;
    if (out == nullptr || encode_element_ptr == nullptr) return 0;
    wms_udh element = *encode_element_ptr;
    element.header_id = kind;
    std::array<std::uint8_t, kMaxElementSize> buf{};
    const std::size_t size = build_element(element, buf);
    std::memcpy(out, buf.data(), size);
    return static_cast<uint8_t>(size);
}

}  // namespace

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_udh_special_sm(uint8_t *out) { return encode_current_as(WMS_UDH_SPECIAL_SM, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_text_formatting(uint8_t *out)
{
    return encode_current_as(WMS_UDH_TEXT_FORMATTING, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_pre_def_sound(uint8_t *out)
{
    return encode_current_as(WMS_UDH_PRE_DEF_SOUND, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_user_def_sound(uint8_t *out)
{
    return encode_current_as(WMS_UDH_USER_DEF_SOUND, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_pre_def_anim(uint8_t *out)
{
    return encode_current_as(WMS_UDH_PRE_DEF_ANIM, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_large_anim(uint8_t *out) { return encode_current_as(WMS_UDH_LARGE_ANIM, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_small_anim(uint8_t *out) { return encode_current_as(WMS_UDH_SMALL_ANIM, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_large_picture(uint8_t *out)
{
    return encode_current_as(WMS_UDH_LARGE_PICTURE, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_small_picture(uint8_t *out)
{
    return encode_current_as(WMS_UDH_SMALL_PICTURE, out);
}
SMSUTIL_API uint8_t wms_ts_encode_udh_var_picture(uint8_t *out) { return encode_current_as(WMS_UDH_VAR_PICTURE, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_user_prompt(uint8_t *out) { return encode_current_as(WMS_UDH_USER_PROMPT, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_rfc822(uint8_t *out) { return encode_current_as(WMS_UDH_RFC822, out); }
SMSUTIL_API uint8_t wms_ts_encode_udh_other(uint8_t *out) { return encode_current_as(WMS_UDH_OTHER, out); }

SMSUTIL_API uint8_t wms_ts_encode_udh_eo(uint8_t *out)
{
    const uint8_t size = encode_current_as(WMS_UDH_EO, out);
    // A refused object still leaves its identifier, which a header
    // encoder then writes over.
    if (size == 0 && out != nullptr && smsutil::transport::encode_element_ptr != nullptr) out[0] = WMS_UDH_EO;
    return size;
}

}  // extern "C"
