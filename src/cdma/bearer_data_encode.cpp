// Bearer data from a client record: each subparameter named by the mask
// as an identifier octet, a length octet and its bit fields, filled with
// zero bits to an octet boundary.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "cdma/bit_fields.hpp"
#include "cdma/is91_payload.hpp"
#include "cdma/subparameters.hpp"
#include "smsutil/wms_cdma.h"

namespace {

using namespace smsutil::cdma;

constexpr wms_status_e_type kOk = WMS_TS_STATUS_OK;
constexpr wms_status_e_type kNoRoom = WMS_TS_STATUS_BAD_ADDRESS;
constexpr wms_status_e_type kBadUserData = WMS_TS_STATUS_BAD_USER_DATA_LENGTH;

class Encoder {
public:
    explicit Encoder(wms_raw_tpdu &raw) : raw_(raw), out_({raw.data, WMS_CDMA_BEARER_DATA_MAX}) {}

    // Writes one subparameter whose content `fill` writes; a failure leaves
    // raw.len at the end of the last complete subparameter and clears what
    // the failed one had written.
    template <typename Fill>
    wms_status_e_type put(std::uint8_t id, Fill &&fill)
    {
        const std::size_t start = out_.position();
        wms_status_e_type status = (out_.write(id, 8) && out_.write(0, 8)) ? kOk : kNoRoom;
        if (status == kOk) status = fill(out_);
        if (status != kOk) {
            std::memset(raw_.data + start / 8, 0, WMS_CDMA_BEARER_DATA_MAX - start / 8);
            return status;
        }
        out_.pad_to_octet();
        const std::size_t content_octets = (out_.position() - start) / 8 - 2;
        out_.patch(start + 8, static_cast<std::uint32_t>(content_octets), 8);
        raw_.len = static_cast<std::uint32_t>(out_.position() / 8);
        return kOk;
    }

private:
    wms_raw_tpdu &raw_;
    BitWriter out_;
};

wms_status_e_type room(bool written) { return written ? kOk : kNoRoom; }

// A lambda rather than a function: the encoder calls its fill step
// directly, where a function would be called through a pointer that the
// sanitizer's function-type check (absent from a C program's runtime)
// would then have to vet.
constexpr auto put_nothing = [](BitWriter &) { return kOk; };

wms_status_e_type put_absolute_time(BitWriter &w, const wms_timestamp &t)
{
    const std::uint8_t fields[kAbsoluteTimeOctets] = {t.year, t.month, t.day, t.hour, t.minute, t.second};
    for (std::uint8_t f : fields)
        if (!w.write(f, 8)) return kNoRoom;
    return kOk;
}

wms_status_e_type put_user_data(BitWriter &w, const wms_cdma_bearer_data &bd)
{
    const wms_cdma_user_data &ud = bd.user_data;
    if (!w.write(ud.encoding, kEncodingBits)) return kNoRoom;

    // IS-91 payloads are built in a scratch record of this call.
    wms_cdma_user_data scratch{};
    const wms_cdma_user_data *units = &ud;
    unsigned width = kOctetUnitBits;
    if (ud.encoding == WMS_ENCODING_IS91EP) {
        if (ud.num_fields != ud.data_len) return kBadUserData;
        if (!w.write(ud.is91ep_type, kIs91TypeBits)) return kNoRoom;
        width = is91_unit_bits(ud.is91ep_type);
        std::size_t needed = 0;
        const wms_status_e_type status = build_is91_payload(bd, scratch, needed);
        if (status != kOk) return status;
        if (needed > WMS_CDMA_USER_DATA_MAX) return kBadUserData;
        units = &scratch;
    }
    if (!w.write(units->num_fields, kNumFieldsBits)) return kNoRoom;
    if (units->data_len > WMS_CDMA_USER_DATA_MAX) return kBadUserData;
    const std::size_t units_start = w.position();
    for (std::size_t i = 0; i < units->data_len; ++i)
        if (!w.write(units->data[i], width)) return kNoRoom;
    // Packed 7-bit text ends inside its last octet: the unused bits go, so
    // the content is no longer than the characters need.
    w.retract(ud.padding_bits, units_start);
    return kOk;
}

wms_status_e_type put_callback(BitWriter &w, const wms_address &cb)
{
    const bool chars = cb.digit_mode == WMS_DIGIT_MODE_CHAR;
    if (!w.write(chars ? 1 : 0, 1)) return kNoRoom;
    if (chars && !(w.write(cb.number_type, kNumberTypeBits) && w.write(cb.number_plan, kNumberPlanBits)))
        return kNoRoom;
    const std::size_t count = std::min<std::size_t>(cb.number_of_digits, WMS_CDMA_CALLBACK_MAX_DIGITS);
    if (!w.write(static_cast<std::uint32_t>(count), 8)) return kNoRoom;
    const unsigned width = chars ? kCharDigitBits : kDtmfDigitBits;
    for (std::size_t i = 0; i < count; ++i)
        if (!w.write(cb.digits[i], width)) return kNoRoom;
    return kOk;
}

wms_status_e_type encode(const wms_cdma_bearer_data &bd, wms_raw_tpdu &raw)
{
    Encoder enc(raw);
    const std::uint32_t mask = bd.mask;
    const auto has = [mask](std::uint8_t id) { return (mask & mask_bit(id)) != 0; };
    const bool is91 = bd.user_data.encoding == WMS_ENCODING_IS91EP;
    // A voice-mail notice carries priority and message count in its payload,
    // a call-back order the call-back number.
    const bool voice_mail = is91 && bd.user_data.is91ep_type == WMS_IS91EP_VOICE_MAIL;
    const bool cli_order = is91 && bd.user_data.is91ep_type == WMS_IS91EP_CLI_ORDER;

    wms_status_e_type s = kOk;
    const auto step = [&](bool wanted, std::uint8_t id, auto &&fill) {
        if (s == kOk && wanted) s = enc.put(id, fill);
    };
    const auto octet = [](std::uint32_t v) { return [v](BitWriter &w) { return room(w.write(v, 8)); }; };
    const auto absolute = [](const wms_timestamp &t) { return [&t](BitWriter &w) { return put_absolute_time(w, t); }; };
    const auto relative = [](const wms_timestamp &t) {
        return [&t](BitWriter &w) { return room(w.write(wms_ts_encode_relative_time(&t), 8)); };
    };
    // Priority, privacy and display mode: two bits at the top of one octet.
    const auto two_bits = [](std::uint32_t v) {
        return [v](BitWriter &w) { return room(w.write(v, kTwoBitFieldBits)); };
    };

    step(has(kMessageId), kMessageId, [&](BitWriter &w) {
        return room(w.write(bd.message_id.type, kMessageTypeBits) && w.write(bd.message_id.id_number, kMessageIdBits) &&
                    w.write(0, 4));
    });
    step(has(kAlertOnDelivery), kAlertOnDelivery, put_nothing);
    step(has(kDisplayMode), kDisplayMode, two_bits(bd.display_mode));
    step(has(kUserData) || cli_order, kUserData, [&](BitWriter &w) { return put_user_data(w, bd); });
    step(has(kUserResponse), kUserResponse, octet(bd.user_response));
    step(has(kMcTime), kMcTime, absolute(bd.mc_time));
    step(has(kValidityAbsolute), kValidityAbsolute, absolute(bd.validity_absolute));
    step(has(kValidityRelative), kValidityRelative, relative(bd.validity_relative));
    step(has(kDeferredAbsolute), kDeferredAbsolute, absolute(bd.deferred_absolute));
    step(has(kDeferredRelative), kDeferredRelative, relative(bd.deferred_relative));
    step(has(kPriority) && !voice_mail, kPriority, two_bits(bd.priority));
    step(has(kPrivacy), kPrivacy, two_bits(bd.privacy));
    step(has(kReplyOption), kReplyOption, [&](BitWriter &w) {
        return room(w.write(bd.user_ack_requested, 1) && w.write(bd.delivery_ack_requested, 1));
    });
    step(has(kNumberOfMessages) && !voice_mail, kNumberOfMessages, [&](BitWriter &w) {
        return room(w.write(bd.num_messages / 10u, kBcdDigitBits) && w.write(bd.num_messages % 10u, kBcdDigitBits));
    });
    // The alert goes out again here as well as after the identifier; a
    // decoder keeps the first and skips the repeat.
    step(has(kAlertOnDelivery), kAlertOnDelivery, put_nothing);
    step(has(kLanguage), kLanguage, octet(bd.language));
    step(has(kCallback) && !cli_order, kCallback, [&](BitWriter &w) { return put_callback(w, bd.callback); });
    return s;
}

}  // namespace

extern "C" SMSUTIL_API wms_status_e_type wms_ts_encode_CDMA_bd(const wms_cdma_bearer_data *bd, wms_raw_tpdu *raw)
{
    if (raw == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    raw->format = 0;
    raw->len = 0;
    std::memset(raw->data, 0, sizeof raw->data);
    if (bd == nullptr) return WMS_TS_STATUS_BAD_ADDRESS;
    return encode(*bd, *raw);
}
