// Client record from bearer data.  The data come over the air from anyone:
// the walk over subparameters goes through the bounded octet reader, and
// every field is read through a bit reader confined to its subparameter,
// so a malformed length can neither read outside the bearer data nor pull
// fields out of a neighbouring subparameter.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "cdma/bit_fields.hpp"
#include "cdma/subparameters.hpp"
#include "common/octets.hpp"
#include "smsutil/wms_cdma.h"

namespace {

using namespace smsutil::cdma;
using Content = std::span<const std::uint8_t>;

constexpr wms_status_e_type kOk = WMS_TS_STATUS_OK;
constexpr wms_status_e_type kMalformed = WMS_TS_STATUS_BAD_ADDRESS;
constexpr wms_status_e_type kBadUserData = WMS_TS_STATUS_BAD_USER_DATA_LENGTH;

// Content length of the subparameters whose layout is fixed, 0 for those
// whose length octet is taken as it comes.  A fixed-length subparameter
// with another length is refused: decoding it at its own length would read
// the next subparameter's octets, or resume the walk inside this one.
constexpr std::size_t fixed_length(std::uint8_t id)
{
    switch (id) {
    case kMessageId: return 3;
    case kUserResponse: return 1;
    case kMcTime:
    case kValidityAbsolute:
    case kDeferredAbsolute: return kAbsoluteTimeOctets;
    case kValidityRelative:
    case kDeferredRelative: return 1;
    case kNumberOfMessages: return 1;
    case kLanguage: return 1;
    case kDisplayMode: return 1;
    default: return 0;
    }
}

// The one field at the top of a subparameter, handed to `store` when read.
template <typename Field>
wms_status_e_type read_only_field(Content c, unsigned width, Field &&store)
{
    BitReader r(c);
    const auto v = r.read(width);
    if (!v) return kMalformed;
    store(*v);
    return kOk;
}

void read_absolute_time(Content c, wms_timestamp &t)
{
    // The time zone is not carried and stays as it was.
    t.year = c[0];
    t.month = c[1];
    t.day = c[2];
    t.hour = c[3];
    t.minute = c[4];
    t.second = c[5];
}

std::uint8_t decimal_digit(std::uint8_t v) { return v > 9 ? 0 : v; }

wms_status_e_type read_user_data(Content c, wms_cdma_user_data &ud)
{
    BitReader r(c);
    unsigned width = kOctetUnitBits;
    const auto encoding = r.read(kEncodingBits);
    if (!encoding) return kMalformed;
    ud.encoding = *encoding;
    if (*encoding == WMS_ENCODING_IS91EP) {
        const auto type = r.read(kIs91TypeBits);
        if (!type) return kMalformed;
        ud.is91ep_type = *type;
        width = is91_unit_bits(*type);
    }
    const auto num_fields = r.read(kNumFieldsBits);
    if (!num_fields) return kMalformed;
    ud.num_fields = static_cast<std::uint8_t>(*num_fields);

    std::size_t units = 0;
    while (!r.at_end()) {
        if (units == WMS_CDMA_USER_DATA_MAX) return kBadUserData;
        ud.data[units++] = static_cast<std::uint8_t>(r.read_zero_extended(width));
    }

    switch (ud.encoding) {
    case WMS_ENCODING_IS91EP:
        if (ud.num_fields > units) return kBadUserData;
        ud.data_len = ud.num_fields;
        ud.padding_bits = 0;
        break;
    case WMS_ENCODING_ASCII:
    case WMS_ENCODING_IA5: {
        // num_fields 7-bit characters fill this many octets.
        const std::size_t octets = (7u * (ud.num_fields + 1u)) / 8u;
        // More characters than the subparameter carries would leave the
        // tail of data as whatever it held before.
        if (octets > units) return kBadUserData;
        ud.data_len = static_cast<std::uint8_t>(octets);
        ud.padding_bits = static_cast<std::uint8_t>(8 * octets - 7u * ud.num_fields);
        break;
    }
    default:
        // The last unit read holds only the zero fill.
        ud.data_len = static_cast<std::uint8_t>(units > 0 ? units - 1 : 0);
        ud.padding_bits = 0;
        break;
    }
    return kOk;
}

wms_status_e_type read_callback(Content c, wms_address &cb)
{
    BitReader r(c);
    const auto mode = r.read(1);
    if (!mode) return kMalformed;
    const bool chars = *mode == 1;
    std::optional<std::uint32_t> type = 0;
    std::optional<std::uint32_t> plan = 0;
    if (chars) {
        type = r.read(kNumberTypeBits);
        plan = r.read(kNumberPlanBits);
    }
    const auto count = r.read(8);
    if (!type || !plan || !count) return kMalformed;
    cb.digit_mode = chars ? WMS_DIGIT_MODE_CHAR : WMS_DIGIT_MODE_BCD;
    cb.number_type = static_cast<std::uint8_t>(*type);
    cb.number_plan = static_cast<std::uint8_t>(*plan);
    cb.number_of_digits = static_cast<std::uint8_t>(std::min<std::uint32_t>(*count, WMS_CDMA_CALLBACK_MAX_DIGITS));
    const unsigned width = chars ? kCharDigitBits : kDtmfDigitBits;
    for (std::size_t i = 0; i < cb.number_of_digits; ++i) {
        const auto digit = r.read(width);
        if (!digit) return kMalformed;
        cb.digits[i] = static_cast<std::uint8_t>(*digit);
    }
    return kOk;
}

wms_status_e_type read_subparameter(std::uint8_t id, Content c, wms_cdma_bearer_data &bd)
{
    const std::size_t fixed = fixed_length(id);
    if (fixed != 0 && c.size() != fixed) return kMalformed;

    switch (id) {
    case kMessageId: {
        BitReader r(c);
        const auto type = r.read(kMessageTypeBits);
        const auto number = r.read(kMessageIdBits);
        if (!type || !number) return kMalformed;
        bd.message_id.type = *type;
        bd.message_id.id_number = *number;
        return kOk;
    }
    case kUserData: return read_user_data(c, bd.user_data);
    case kUserResponse: bd.user_response = c[0]; return kOk;
    case kMcTime: read_absolute_time(c, bd.mc_time); return kOk;
    case kValidityAbsolute: read_absolute_time(c, bd.validity_absolute); return kOk;
    case kDeferredAbsolute: read_absolute_time(c, bd.deferred_absolute); return kOk;
    case kValidityRelative: wms_ts_decode_relative_time(c[0], &bd.validity_relative); return kOk;
    case kDeferredRelative: wms_ts_decode_relative_time(c[0], &bd.deferred_relative); return kOk;
    case kPriority: return read_only_field(c, kTwoBitFieldBits, [&](std::uint32_t v) { bd.priority = v; });
    case kPrivacy: return read_only_field(c, kTwoBitFieldBits, [&](std::uint32_t v) { bd.privacy = v; });
    case kReplyOption: {
        BitReader r(c);
        const auto user_ack = r.read(1);
        const auto delivery_ack = r.read(1);
        if (!user_ack || !delivery_ack) return kMalformed;
        bd.user_ack_requested = static_cast<std::uint8_t>(*user_ack);
        bd.delivery_ack_requested = static_cast<std::uint8_t>(*delivery_ack);
        return kOk;
    }
    case kNumberOfMessages:
        bd.num_messages = static_cast<std::uint8_t>(decimal_digit(c[0] >> 4) * 10 + decimal_digit(c[0] & 0x0F));
        return kOk;
    case kAlertOnDelivery: bd.alert_on_delivery = 1; return kOk;
    case kLanguage: bd.language = c[0]; return kOk;
    case kCallback: return read_callback(c, bd.callback);
    case kDisplayMode: return read_only_field(c, kTwoBitFieldBits, [&](std::uint32_t v) { bd.display_mode = v; });
    default: return kOk;
    }
}

// An IS-91 payload stands for the subparameters it carries: the record is
// rebuilt from it, keeping only the message identifier of the walk.
wms_status_e_type expand_is91_payload(wms_cdma_bearer_data &bd)
{
    const std::uint32_t walked_mask = bd.mask;
    const wms_cdma_message_id message_id = bd.message_id;
    const wms_cdma_user_data payload = bd.user_data;
    const wms_status_e_type status =
        wms_ts_decode_IS91EP_payload(payload.is91ep_type, payload.num_fields, payload.data, &bd);
    if (status != kOk) return status;
    if (walked_mask & WMS_MASK_BD_MSG_ID) {
        bd.mask |= WMS_MASK_BD_MSG_ID;
        bd.message_id = message_id;
    }
    return kOk;
}

wms_status_e_type decode(const wms_raw_tpdu &raw, wms_cdma_bearer_data &bd)
{
    bd.mask = 0;
    if (raw.len == 0) return kOk;
    if ((raw.len & 0xFFFFu) < 2) return kMalformed;
    const std::size_t len = std::min<std::size_t>(raw.len, WMS_CDMA_BEARER_DATA_MAX);

    smsutil::common::OctetReader walk(raw.data, len);
    std::uint8_t id = 0;
    std::uint8_t length = 0;
    Content content;
    while (walk.read(id) && walk.read(length) && walk.take(length, content)) {
        // Unknown identifiers and repeats are stepped over; the first
        // occurrence of a subparameter is the one that counts.
        if (id > kLastSubparameterId || (bd.mask & mask_bit(id))) continue;
        bd.mask |= mask_bit(id);
        const wms_status_e_type status = read_subparameter(id, content, bd);
        if (status != kOk) return status;
    }

    if ((bd.mask & WMS_MASK_BD_USER_DATA) && bd.user_data.encoding == WMS_ENCODING_IS91EP)
        return expand_is91_payload(bd);
    return kOk;
}

}  // namespace

extern "C" SMSUTIL_API wms_status_e_type wms_ts_decode_CDMA_bd(const wms_raw_tpdu *raw,
                                                               wms_cdma_bearer_data *bd)
{
    if (raw == nullptr || bd == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    return decode(*raw, *bd);
}
