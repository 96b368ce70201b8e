// Client record from bearer data.  The data come over the air from anyone:
// the walk over subparameters goes through the bounded octet reader, and
// every field is read through a bit reader that ends where the bearer data
// end, so a malformed length can never read outside them.
#include <algorithm>
#include <cstddef>
#include <cstdint>
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
    case kMessageId:
        return 3;
    case kUserResponse:
        return 1;
    case kMcTime:
    case kValidityAbsolute:
    case kDeferredAbsolute:
        return kAbsoluteTimeOctets;
    case kValidityRelative:
    case kDeferredRelative:
        return 1;
    case kNumberOfMessages:
        return 1;
    case kLanguage:
        return 1;
    case kDisplayMode:
        return 1;
    default:
        return 0;
    }
}

// A variable-length subparameter is read from its first content octet on,
// over the rest of the bearer data: one that is shorter than its fields
// takes the missing bits from the octets that follow it, and bits past the
// end of the bearer data read as zero.  Rejecting it instead would lose the
// whole message for one malformed optional subparameter.
struct VariableContent {
    Content own;   // the octets its length octet gives
    Content rest;  // from its first octet to the end of the bearer data
};

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

wms_status_e_type read_user_data(VariableContent c, wms_cdma_user_data &ud)
{
    BitReader r(c.rest);
    unsigned width = kOctetUnitBits;
    ud.encoding = r.read_zero_extended(kEncodingBits);
    if (ud.encoding == WMS_ENCODING_IS91EP) {
        ud.is91ep_type = r.read_zero_extended(kIs91TypeBits);
        width = is91_unit_bits(ud.is91ep_type);
    }
    ud.num_fields = static_cast<std::uint8_t>(r.read_zero_extended(kNumFieldsBits));

    // Units are read while they start inside the subparameter.
    const std::size_t end = c.own.size() * 8;
    std::size_t units = 0;
    while (r.position() < end) {
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
        // num_fields 7-bit characters fill this many octets, whether or not
        // they all arrived; units not carried keep what data held.
        const std::size_t octets = (7u * (ud.num_fields + 1u)) / 8u;
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

void read_callback(VariableContent c, wms_address &cb)
{
    BitReader r(c.rest);
    const bool chars = r.read_zero_extended(1) == 1;
    cb.digit_mode = chars ? WMS_DIGIT_MODE_CHAR : WMS_DIGIT_MODE_BCD;
    cb.number_type = static_cast<std::uint8_t>(chars ? r.read_zero_extended(kNumberTypeBits) : 0);
    cb.number_plan = static_cast<std::uint8_t>(chars ? r.read_zero_extended(kNumberPlanBits) : 0);
    cb.number_of_digits =
        static_cast<std::uint8_t>(std::min<std::uint32_t>(r.read_zero_extended(8), WMS_CDMA_CALLBACK_MAX_DIGITS));
    const unsigned width = chars ? kCharDigitBits : kDtmfDigitBits;
    for (std::size_t i = 0; i < cb.number_of_digits; ++i)
        cb.digits[i] = static_cast<std::uint8_t>(r.read_zero_extended(width));
}

// The first field of a variable-length subparameter.
std::uint32_t leading_field(VariableContent c, unsigned width) { return BitReader(c.rest).read_zero_extended(width); }

wms_status_e_type read_variable(std::uint8_t id, VariableContent c, wms_cdma_bearer_data &bd)
{
    switch (id) {
    case kUserData:
        return read_user_data(c, bd.user_data);
    case kPriority:
        bd.priority = leading_field(c, kTwoBitFieldBits);
        return kOk;
    case kPrivacy:
        bd.privacy = leading_field(c, kTwoBitFieldBits);
        return kOk;
    case kReplyOption: {
        const std::uint32_t bits = leading_field(c, 2);
        bd.user_ack_requested = static_cast<std::uint8_t>(bits >> 1);
        bd.delivery_ack_requested = static_cast<std::uint8_t>(bits & 1);
        return kOk;
    }
    case kAlertOnDelivery:
        bd.alert_on_delivery = 1;
        return kOk;
    case kCallback:
        read_callback(c, bd.callback);
        return kOk;
    default:
        return kOk;
    }
}

wms_status_e_type read_subparameter(std::uint8_t id, VariableContent c, wms_cdma_bearer_data &bd)
{
    const std::size_t fixed = fixed_length(id);
    if (fixed == 0) return read_variable(id, c, bd);
    if (c.own.size() != fixed) return kMalformed;

    const Content o = c.own;
    switch (id) {
    case kMessageId: {
        BitReader r(o);
        bd.message_id.type = r.read_zero_extended(kMessageTypeBits);
        bd.message_id.id_number = r.read_zero_extended(kMessageIdBits);
        return kOk;
    }
    case kUserResponse:
        bd.user_response = o[0];
        return kOk;
    case kMcTime:
        read_absolute_time(o, bd.mc_time);
        return kOk;
    case kValidityAbsolute:
        read_absolute_time(o, bd.validity_absolute);
        return kOk;
    case kDeferredAbsolute:
        read_absolute_time(o, bd.deferred_absolute);
        return kOk;
    case kValidityRelative:
        wms_ts_decode_relative_time(o[0], &bd.validity_relative);
        return kOk;
    case kDeferredRelative:
        wms_ts_decode_relative_time(o[0], &bd.deferred_relative);
        return kOk;
    case kNumberOfMessages:
        bd.num_messages = static_cast<std::uint8_t>(decimal_digit(o[0] >> 4) * 10 + decimal_digit(o[0] & 0x0F));
        return kOk;
    case kLanguage:
        bd.language = o[0];
        return kOk;
    case kDisplayMode:
        bd.display_mode = BitReader(o).read_zero_extended(kTwoBitFieldBits);
        return kOk;
    default:
        return kOk;
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
        const Content rest(content.data(), raw.data + len);
        const wms_status_e_type status = read_subparameter(id, {content, rest}, bd);
        if (status != kOk) return status;
    }

    if ((bd.mask & WMS_MASK_BD_USER_DATA) && bd.user_data.encoding == WMS_ENCODING_IS91EP)
        return expand_is91_payload(bd);
    return kOk;
}

}  // namespace

extern "C" SMSUTIL_API wms_status_e_type wms_ts_decode_CDMA_bd(const wms_raw_tpdu *raw, wms_cdma_bearer_data *bd)
{
    if (raw == nullptr || bd == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    return decode(*raw, *bd);
}
