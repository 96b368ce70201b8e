// The octets of a SUBMIT: service-centre address, first octet, TP-MR,
// TP-DA, TP-PID, TP-DCS, TP-VP, TP-UDL and TP-UD.
#include "pdu/encode_submit.hpp"

#include "common/octets.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::pdu {
namespace {

using common::OctetWriter;

constexpr std::uint8_t kMtiSubmit = 0x01;
constexpr std::uint8_t kStatusReportRequest = 0x20;
constexpr std::uint8_t kHeaderIndicator = 0x40;
constexpr std::uint8_t kTypeInternational = 0x91;  // international number, ISDN plan
// A number without "+" is sent as dialled (type unknown, ISDN plan): the
// network then applies the national rules, prefix or not.
constexpr std::uint8_t kTypeUnknown = 0x81;
constexpr std::uint8_t kDcsUcs2 = 0x08;
constexpr std::uint8_t kDcsClassPresent = 0x10;

// "+" (international) and 1 to 20 digits.  The length octet counts the
// digits of a destination and the octets after it of a service-centre
// address.  False, with nothing of the field kept, for anything else.
bool encode_number(const char *text, bool length_in_octets, std::span<std::uint8_t, kMaxNumberOctets> out,
                   std::uint8_t &length)
{
    const bool international = text[0] == '+';
    std::size_t n = 0;
    std::array<std::uint8_t, SMS_PDU_MAX_DIGITS> digits{};
    for (std::size_t i = international ? 1 : 0; text[i] != '\0'; ++i) {
        if (text[i] < '0' || text[i] > '9' || n == digits.size()) return false;
        digits[n++] = static_cast<std::uint8_t>(text[i] - '0');
    }
    if (n == 0) return false;
    const std::size_t digit_octets = (n + 1) / 2;
    out[0] = static_cast<std::uint8_t>(length_in_octets ? 1 + digit_octets : n);
    out[1] = international ? kTypeInternational : kTypeUnknown;
    for (std::size_t k = 0; k < digit_octets; ++k) {
        const std::uint8_t high = 2 * k + 1 < n ? digits[2 * k + 1] : 0x0F;
        out[2 + k] = static_cast<std::uint8_t>(high << 4 | digits[2 * k]);
    }
    length = static_cast<std::uint8_t>(2 + digit_octets);
    return true;
}

// The relative TP-VP that keeps the message at least `seconds`: 5-minute
// steps to 12 hours, 30-minute steps to 24 hours, days to 30 days, weeks to
// 63 weeks.  False beyond that.
bool relative_validity(std::uint32_t seconds, std::uint8_t &vp)
{
    const std::uint64_t minutes = (std::uint64_t{seconds} + 59) / 60;
    const std::uint64_t days = (minutes + 1439) / 1440;
    const std::uint64_t weeks = (days + 6) / 7;
    std::uint64_t value = 0;
    if (minutes <= 12 * 60)
        value = minutes == 0 ? 0 : (minutes + 4) / 5 - 1;
    else if (minutes <= 24 * 60)
        value = 143 + (minutes - 12 * 60 + 29) / 30;
    else if (days <= 30)
        value = 166 + days;
    else if (weeks <= 63)
        value = 192 + weeks;
    else
        return false;
    vp = static_cast<std::uint8_t>(value);
    return true;
}

constexpr std::uint8_t swapped_bcd(unsigned value) { return static_cast<std::uint8_t>((value % 10) << 4 | value / 10); }

// Years 00-99 are 2000-2099, where every fourth year is a leap year.
constexpr unsigned days_in_month(unsigned year, unsigned month)
{
    constexpr std::array<std::uint8_t, 12> kDays = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && year % 4 == 0 ? 29 : kDays[month - 1];
}

// The seven semi-octet fields of an absolute TP-VP; false for a time that
// does not exist or a zone beyond what the field holds (79 quarter hours).
bool absolute_validity(const sms_pdu_time &t, std::span<std::uint8_t, 7> out)
{
    if (t.year > 99 || t.month < 1 || t.month > 12 || t.day < 1 || t.day > days_in_month(t.year, t.month) ||
        t.hour > 23 || t.minute > 59 || t.second > 59 || t.timezone < -79 || t.timezone > 79)
        return false;
    const unsigned zone = static_cast<unsigned>(t.timezone < 0 ? -t.timezone : t.timezone);
    out[0] = swapped_bcd(t.year);
    out[1] = swapped_bcd(t.month);
    out[2] = swapped_bcd(t.day);
    out[3] = swapped_bcd(t.hour);
    out[4] = swapped_bcd(t.minute);
    out[5] = swapped_bcd(t.second);
    out[6] = static_cast<std::uint8_t>(swapped_bcd(zone) | (t.timezone < 0 ? 0x08 : 0));
    return true;
}

bool encode_validity(const sms_pdu_validity &validity, Envelope &envelope)
{
    switch (validity.format) {
    case SMS_PDU_VP_NONE:
        envelope.validity_length = 0;
        return true;
    case SMS_PDU_VP_RELATIVE:
        envelope.validity_length = 1;
        return relative_validity(validity.relative_seconds, envelope.validity[0]);
    case SMS_PDU_VP_ABSOLUTE:
        envelope.validity_length = 7;
        return absolute_validity(validity.absolute, envelope.validity);
    case SMS_PDU_VP_ENHANCED:
        envelope.validity_length = 7;
        for (std::size_t i = 0; i < 7; ++i) envelope.validity[i] = validity.enhanced[i];
        return true;
    default:
        return false;
    }
}

// UDHL and the elements: concatenation first, where receivers that look at
// one element only expect it, then the shift elements.
void write_header(const Envelope &envelope, const Plan &plan, std::size_t number, OctetWriter &out)
{
    out.put(static_cast<std::uint8_t>(header_length(plan)));
    const auto total = static_cast<std::uint8_t>(plan.parts);
    const auto sequence = static_cast<std::uint8_t>(number);
    if (plan.parts > 1 && envelope.reference_16bit) {
        const std::array<std::uint8_t, 6> element = {0x08,
                                                     4,
                                                     static_cast<std::uint8_t>(envelope.reference >> 8),
                                                     static_cast<std::uint8_t>(envelope.reference),
                                                     total,
                                                     sequence};
        out.put(element);
    } else if (plan.parts > 1) {
        const std::array<std::uint8_t, 5> element = {0x00, 3, static_cast<std::uint8_t>(envelope.reference), total,
                                                     sequence};
        out.put(element);
    }
    if (plan.locking != kDefaultLanguage) out.put(std::array<std::uint8_t, 3>{0x25, 1, plan.locking});
    if (plan.single != kDefaultLanguage) out.put(std::array<std::uint8_t, 3>{0x24, 1, plan.single});
}

// The text as septets packed behind the header; TP-UDL counts septets,
// header and fill bits included.
std::size_t write_gsm7(const Plan &plan, std::span<const std::uint8_t> text, OctetWriter &out)
{
    std::array<std::uint8_t, 8 * kUserDataOctets / 7> septets{};
    std::size_t n = 0;
    std::size_t pos = 0;
    char32_t cp = 0;
    while (next_code_point(text, pos, cp)) {
        const Codes &codes = codes_of(cp);
        const bool escaped = codes.locking[plan.locking] == kNoCode;
        if (n + (escaped ? 2 : 1) > septets.size()) break;  // the cutter keeps parts within this
        if (!escaped) {
            septets[n++] = codes.locking[plan.locking];
        } else {
            septets[n++] = kEscape;
            septets[n++] = codes.single[plan.single];
        }
    }
    const unsigned udhl = header_length(plan);
    const std::size_t header_bits = udhl == 0 ? 0 : 8 * (udhl + 1u);
    const unsigned fill = static_cast<unsigned>((7 - header_bits % 7) % 7);
    const std::span<std::uint8_t> room = out.unwritten();
    // The packer keeps the low bits of its first octet (they belong to the
    // octet before the text), so the fill bits start cleared.
    if (fill != 0 && !room.empty()) room[0] = 0;
    out.advance(transport::pack_septets(std::span<const std::uint8_t>(septets.data(), n), fill, room));
    return (header_bits + fill) / 7 + n;
}

// The text as UTF-16 units, high octet first; TP-UDL counts octets.
std::size_t write_ucs2(const Plan &plan, std::span<const std::uint8_t> text, OctetWriter &out)
{
    const auto put_unit = [&out](char32_t unit) {
        out.put(static_cast<std::uint8_t>(unit >> 8));
        out.put(static_cast<std::uint8_t>(unit));
    };
    std::size_t units = 0;
    std::size_t pos = 0;
    char32_t cp = 0;
    while (next_code_point(text, pos, cp)) {
        if (cp > 0xFFFF) {
            put_unit(0xD800 + ((cp - 0x10000) >> 10));
            put_unit(0xDC00 + ((cp - 0x10000) & 0x3FF));
            units += 2;
        } else {
            put_unit(cp);
            ++units;
        }
    }
    const unsigned udhl = header_length(plan);
    return (udhl == 0 ? 0 : udhl + 1u) + 2 * units;
}

void write_hex(sms_pdu_part &part)
{
    constexpr char kDigits[] = "0123456789abcdef";
    for (std::size_t i = 0; i < part.length; ++i) {
        part.hex[2 * i] = kDigits[part.octets[i] >> 4];
        part.hex[2 * i + 1] = kDigits[part.octets[i] & 0x0F];
    }
    part.hex[2 * part.length] = '\0';
}

}  // namespace

int make_envelope(const sms_pdu_encode_options &options, Envelope &envelope)
{
    if (options.destination == nullptr) return SMS_PDU_ERR_NULL;
    if (!encode_number(options.destination, false, envelope.destination, envelope.destination_length))
        return SMS_PDU_ERR_BAD_DESTINATION;
    // An empty address leaves the modem's stored service centre in charge.
    const char *centre = options.service_centre;
    if (centre == nullptr || centre[0] == '\0') {
        envelope.service_centre[0] = 0;
        envelope.service_centre_length = 1;
    } else if (!encode_number(centre, true, envelope.service_centre, envelope.service_centre_length)) {
        return SMS_PDU_ERR_BAD_SERVICE_CENTRE;
    }
    if (!encode_validity(options.validity, envelope)) return SMS_PDU_ERR_BAD_VALIDITY;
    envelope.first_octet = static_cast<std::uint8_t>(kMtiSubmit | options.validity.format << 3 |
                                                     (options.status_report_request != 0 ? kStatusReportRequest : 0));
    envelope.class_bits =
        options.has_message_class != 0 ? static_cast<std::uint8_t>(kDcsClassPresent | options.message_class) : 0;
    envelope.reference_16bit = options.reference_16bit != 0;
    envelope.reference = options.reference;
    return SMS_PDU_OK;
}

void write_part(const Envelope &envelope, const Plan &plan, std::span<const std::uint8_t> text,
                const Cutter::Piece &piece, std::size_t number, sms_pdu_part &part)
{
    OctetWriter out(part.octets, SMS_PDU_MAX_OCTETS);
    out.put(std::span<const std::uint8_t>(envelope.service_centre.data(), envelope.service_centre_length));
    const std::size_t tpdu_start = out.position();
    const bool header = header_length(plan) != 0;
    const bool gsm7 = plan.coding == Coding::kGsm7;
    out.put(static_cast<std::uint8_t>(envelope.first_octet | (header ? kHeaderIndicator : 0)));
    out.put(0);  // TP-MR: the modem numbers the messages it sends
    out.put(std::span<const std::uint8_t>(envelope.destination.data(), envelope.destination_length));
    out.put(0);  // TP-PID: plain short message
    out.put(static_cast<std::uint8_t>(envelope.class_bits | (gsm7 ? 0 : kDcsUcs2)));
    out.put(std::span<const std::uint8_t>(envelope.validity.data(), envelope.validity_length));
    const std::size_t length_at = out.position();
    out.put(0);
    if (header) write_header(envelope, plan, number, out);
    const std::span<const std::uint8_t> piece_text = text.subspan(piece.begin, piece.end - piece.begin);
    const std::size_t udl = gsm7 ? write_gsm7(plan, piece_text, out) : write_ucs2(plan, piece_text, out);
    part.octets[length_at] = static_cast<std::uint8_t>(udl);

    part.length = static_cast<std::uint16_t>(out.position());
    part.tpdu_length = static_cast<std::uint16_t>(out.position() - tpdu_start);
    write_hex(part);
    part.alphabet = gsm7 ? SMS_PDU_ALPHABET_GSM7 : SMS_PDU_ALPHABET_UCS2;
    part.locking_language = plan.locking;
    part.single_language = plan.single;
    part.text_offset = static_cast<std::uint32_t>(piece.begin);
    part.text_length = static_cast<std::uint32_t>(piece.end - piece.begin);
}

}  // namespace smsutil::pdu
