// The fixed fields of a TPDU: addresses, time stamps, validity periods and
// the data coding scheme.
#include <algorithm>
#include <array>
#include <iterator>

#include "pdu/decoder.hpp"
#include "pdu/national_tables.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::pdu {
namespace {

constexpr std::uint8_t kInternational = 1;
constexpr std::uint8_t kAlphanumeric = 5;
// Semi-octet values 10 to 14; 15 only fills the last octet of an odd count.
constexpr char kDigitChars[] = "0123456789*#abc";

// The number of `semi_octets` digits, or the alphanumeric text they pack,
// from `octets` (already known to be there).
void address_text(Decoder &d, std::uint8_t type_octet, std::span<const std::uint8_t> octets, std::size_t semi_octets,
                  std::size_t offset, sms_pdu_address &out)
{
    out.type = (type_octet >> 4) & 7;
    out.plan = type_octet & 0x0F;
    Utf8Out text(out.text);
    if (out.type == kAlphanumeric) {
        // Alphanumeric addresses use the default alphabet and its
        // extension table, whatever the user data header announces.
        std::array<std::uint8_t, SMS_PDU_MAX_DIGITS + 1> septets{};
        const std::size_t count = semi_octets * 4 / 7;
        transport::unpack_septets(octets, count, 0, septets);
        decode_gsm7(d, std::span(septets).first(count), kDefaultLanguage, kDefaultLanguage, offset, 0, text);
        return;
    }
    bool any = false;
    for (std::size_t i = 0; i < semi_octets; ++i) {
        const unsigned nibble = (octets[i / 2] >> (4 * (i & 1))) & 0x0F;
        if (nibble == 0x0F) continue;
        if (!any && out.type == kInternational) text.put(U'+');
        any = true;
        text.put(static_cast<char32_t>(kDigitChars[nibble]));
    }
}

// A BCD octet with its digits swapped, as time stamps carry them.
bool swapped_bcd(std::uint8_t octet, std::uint8_t &value)
{
    const unsigned units = octet >> 4;
    const unsigned tens = octet & 0x0F;
    value = static_cast<std::uint8_t>(tens * 10 + units);
    return tens <= 9 && units <= 9;
}

}  // namespace

sms_pdu_result decode_address(Decoder &d, sms_pdu_address &out)
{
    std::uint8_t semi_octets = 0;
    std::uint8_t type = 0;
    if (!d.in.read(semi_octets)) return SMS_PDU_ERR_TRUNCATED_ADDRESS;
    if (semi_octets > SMS_PDU_MAX_DIGITS) return SMS_PDU_ERR_ADDRESS_LENGTH;
    std::span<const std::uint8_t> octets;
    if (!d.in.read(type)) return SMS_PDU_ERR_TRUNCATED_ADDRESS;
    const std::size_t offset = d.in.position();
    if (!d.in.take((semi_octets + 1u) / 2, octets)) return SMS_PDU_ERR_TRUNCATED_ADDRESS;
    address_text(d, type, octets, semi_octets, offset, out);
    return SMS_PDU_OK;
}

sms_pdu_result decode_service_centre(Decoder &d, sms_pdu_address &out)
{
    std::uint8_t length = 0;
    std::uint8_t type = 0;
    if (!d.in.read(length)) return SMS_PDU_ERR_TRUNCATED_SCA;
    if (length == 0) return SMS_PDU_OK;  // no address: the modem's own is used
    if (length > 1 + SMS_PDU_MAX_DIGITS / 2) return SMS_PDU_ERR_SCA_LENGTH;
    std::span<const std::uint8_t> octets;
    if (!d.in.read(type)) return SMS_PDU_ERR_TRUNCATED_SCA;
    const std::size_t offset = d.in.position();
    if (!d.in.take(length - 1u, octets)) return SMS_PDU_ERR_TRUNCATED_SCA;
    address_text(d, type, octets, octets.size() * 2, offset, out);
    return SMS_PDU_OK;
}

bool decode_time(Decoder &d, sms_pdu_time &out)
{
    const std::size_t offset = d.in.position();
    std::span<const std::uint8_t> o;
    if (!d.in.take(7, o)) return false;
    // Every field is read even after a bad one, so the record shows them all.
    std::uint8_t *const fields[] = {&out.year, &out.month, &out.day, &out.hour, &out.minute, &out.second};
    bool ok = true;
    for (std::size_t i = 0; i < std::size(fields); ++i) ok = swapped_bcd(o[i], *fields[i]) && ok;
    // The time zone's tens digit has three bits; the fourth is the sign.
    std::uint8_t quarters = 0;
    ok = swapped_bcd(static_cast<std::uint8_t>(o[6] & 0xF7), quarters) && ok;
    out.timezone = static_cast<std::int8_t>((o[6] & 0x08) != 0 ? -quarters : quarters);
    ok = ok && out.month >= 1 && out.month <= 12 && out.day >= 1 && out.day <= 31 && out.hour <= 23 &&
         out.minute <= 59 && out.second <= 59;
    if (!ok) d.problem(SMS_PDU_PROBLEM_BAD_TIME, offset);
    return true;
}

bool decode_validity(Decoder &d, unsigned format, sms_pdu_validity &out)
{
    out.format = static_cast<std::uint8_t>(format);
    switch (format) {
    case SMS_PDU_VP_RELATIVE: {
        std::uint8_t vp = 0;
        if (!d.in.read(vp)) return false;
        std::uint32_t minutes = 0;
        if (vp <= 143)
            minutes = (vp + 1u) * 5;
        else if (vp <= 167)
            minutes = 12 * 60 + (vp - 143u) * 30;
        else if (vp <= 196)
            minutes = (vp - 166u) * 24 * 60;
        else
            minutes = (vp - 192u) * 7 * 24 * 60;
        out.relative_seconds = minutes * 60;
        return true;
    }
    case SMS_PDU_VP_ABSOLUTE:
        return decode_time(d, out.absolute);
    case SMS_PDU_VP_ENHANCED:
        return d.in.read(std::span<std::uint8_t>(out.enhanced), sizeof out.enhanced);
    default:
        return true;
    }
}

void decode_dcs(Decoder &d, std::uint8_t o, std::size_t offset, sms_pdu_dcs &out)
{
    out = {};
    out.octet = o;
    out.message_class = SMS_PDU_CLASS_NONE;
    const unsigned group = o >> 4;
    if (group <= 7) {
        // General data coding, and the same with automatic deletion.
        out.auto_delete = (o & 0x40) != 0;
        out.compressed = (o & 0x20) != 0;
        if ((o & 0x10) != 0) out.message_class = o & 3;
        out.alphabet = (o >> 2) & 3;
    } else if (group >= 0xC && group <= 0xE) {
        out.mwi_group = group == 0xC ? SMS_PDU_MWI_DISCARD : SMS_PDU_MWI_STORE;
        out.alphabet = group == 0xE ? SMS_PDU_ALPHABET_UCS2 : SMS_PDU_ALPHABET_GSM7;
        out.mwi_active = (o & 0x08) != 0;
        out.mwi_type = o & 3;
    } else if (group == 0xF) {
        out.alphabet = (o & 0x04) != 0 ? SMS_PDU_ALPHABET_8BIT : SMS_PDU_ALPHABET_GSM7;
        out.message_class = o & 3;
    } else {
        out.alphabet = 3;  // reserved groups 1000 to 1011
    }
    // Reserved codings are read as the default alphabet.
    if (out.alphabet == 3) {
        out.alphabet = SMS_PDU_ALPHABET_GSM7;
        d.problem(SMS_PDU_PROBLEM_RESERVED_DCS, offset);
    }
}

}  // namespace smsutil::pdu
