// IS-91 extended protocol payloads: 6-bit characters (text less 0x20) or
// 4-bit call-back digits, carried one per octet of user data.
#include "cdma/is91_payload.hpp"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

constexpr std::uint8_t kCharOffset = 0x20;
constexpr std::size_t kCapacity = WMS_CDMA_USER_DATA_MAX;

bool is_known_type(std::uint32_t type) { return type >= 130 && type <= 133; }

// Appends text characters as 6-bit values from index `start`; returns the
// count of values the payload holds (capped at the capacity).
std::size_t put_chars(const wms_cdma_user_data &text, std::size_t start, wms_cdma_user_data &out)
{
    const std::size_t count = std::min<std::size_t>(text.num_fields, kCapacity - start);
    for (std::size_t i = 0; i < count; ++i) out.data[start + i] = static_cast<std::uint8_t>(text.data[i] - kCharOffset);
    return start + count;
}

// Stores payload values as text characters from index 0 of out.data.
std::uint8_t take_chars(const std::uint8_t *values, std::size_t count, wms_cdma_user_data &out)
{
    count = std::min(count, kCapacity);
    for (std::size_t i = 0; i < count; ++i) out.data[i] = static_cast<std::uint8_t>(values[i] + kCharOffset);
    return static_cast<std::uint8_t>(count);
}

void set_count(wms_cdma_user_data &ud, std::size_t count)
{
    ud.num_fields = static_cast<std::uint8_t>(count);
    ud.data_len = static_cast<std::uint8_t>(count);
}

}  // namespace

namespace smsutil::cdma {

wms_status_e_type build_is91_payload(const wms_cdma_bearer_data &bd, wms_cdma_user_data &out, std::size_t &needed)
{
    const wms_cdma_user_data &text = bd.user_data;
    std::size_t stored = 0;
    switch (text.is91ep_type) {
    case WMS_IS91EP_VOICE_MAIL: {
        out.data[0] = static_cast<std::uint8_t>(bd.num_messages / 10);
        out.data[1] = static_cast<std::uint8_t>(bd.num_messages % 10);
        std::size_t start = 2;
        if (bd.mask & WMS_MASK_BD_PRIORITY) out.data[start++] = 1;
        needed = start + text.num_fields;
        stored = put_chars(text, start, out);
        break;
    }
    case WMS_IS91EP_SHORT_MESSAGE_FULL:
    case WMS_IS91EP_SHORT_MESSAGE:
        needed = text.num_fields;
        stored = put_chars(text, 0, out);
        break;
    case WMS_IS91EP_CLI_ORDER:
        // Never past the digits a call-back number can hold.
        stored = std::min<std::size_t>(bd.callback.number_of_digits, WMS_CDMA_CALLBACK_MAX_DIGITS);
        needed = stored;
        std::copy_n(bd.callback.digits, stored, out.data);
        break;
    default:
        needed = 0;
        return WMS_TS_STATUS_BAD_IS91EP_TYPE;
    }
    set_count(out, stored);
    return WMS_TS_STATUS_OK;
}

}  // namespace smsutil::cdma

extern "C" SMSUTIL_API wms_status_e_type wms_ts_encode_IS91EP_payload(const wms_cdma_bearer_data *bd,
                                                                      wms_cdma_user_data *out)
{
    if (bd == nullptr || out == nullptr) return WMS_TS_STATUS_BAD_IS91EP_TYPE;
    std::size_t needed = 0;
    return smsutil::cdma::build_is91_payload(*bd, *out, needed);
}

extern "C" SMSUTIL_API wms_status_e_type wms_ts_decode_IS91EP_payload(uint32_t type, uint8_t len, const uint8_t *data,
                                                                      wms_cdma_bearer_data *bd)
{
    if (bd == nullptr || !is_known_type(type)) return WMS_TS_STATUS_BAD_IS91EP_TYPE;
    if (data == nullptr) len = 0;
    bd->alert_on_delivery = 1;
    wms_cdma_user_data &ud = bd->user_data;

    switch (type) {
    case WMS_IS91EP_VOICE_MAIL: {
        bd->mask = WMS_MASK_BD_ALERT | WMS_MASK_BD_NUM_OF_MSGS;
        // A payload too short for both count digits counts the missing one as 0.
        const std::uint8_t tens = len > 0 ? data[0] : 0;
        const std::uint8_t units = len > 1 ? data[1] : 0;
        bd->num_messages = static_cast<std::uint8_t>((tens & 0x0F) * 10 + (units & 0x0F));
        if (len < 3) return WMS_TS_STATUS_OK;
        std::size_t start = 2;
        // A third value of 0 or 1 is a priority marker; anything else is text.
        if (data[2] == 0 || data[2] == 1) {
            bd->priority = data[2] == 1 ? 2 : 0;
            bd->mask |= WMS_MASK_BD_PRIORITY;
            start = 3;
            if (len == 3) return WMS_TS_STATUS_OK;
        }
        bd->mask |= WMS_MASK_BD_USER_DATA;
        ud.encoding = WMS_ENCODING_IS91EP;
        ud.is91ep_type = WMS_IS91EP_VOICE_MAIL;
        set_count(ud, take_chars(data + start, len - start, ud));
        return WMS_TS_STATUS_OK;
    }
    case WMS_IS91EP_CLI_ORDER:
        bd->mask = WMS_MASK_BD_ALERT | WMS_MASK_BD_CALLBACK;
        bd->callback.digit_mode = WMS_DIGIT_MODE_BCD;
        // The count is kept as received; readers stop at the 32 digits held.
        bd->callback.number_of_digits = len;
        std::copy_n(data, std::min<std::size_t>(len, WMS_CDMA_CALLBACK_MAX_DIGITS), bd->callback.digits);
        return WMS_TS_STATUS_OK;
    default:  // 131 and 133: plain text
        bd->mask = WMS_MASK_BD_ALERT | WMS_MASK_BD_USER_DATA;
        ud.encoding = WMS_ENCODING_IS91EP;
        ud.is91ep_type = WMS_IS91EP_SHORT_MESSAGE;
        set_count(ud, take_chars(data, len, ud));
        return WMS_TS_STATUS_OK;
    }
}
