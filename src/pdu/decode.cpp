// One PDU, octets or hexadecimal text, into a record: the service-centre
// address, then the TPDU its first octet's TP-MTI names.
#include <array>
#include <cstring>

#include "pdu/decoder.hpp"

namespace smsutil::pdu {
namespace {

constexpr unsigned bit(std::uint8_t octet, unsigned n) { return (octet >> n) & 1u; }

// Reads one octet of the named field into `out`.
#define PDU_READ(out, error)                 \
    do {                                     \
        if (!d.in.read(out)) return (error); \
    } while (0)
#define PDU_TRY(call)                                                         \
    do {                                                                      \
        if (const sms_pdu_result rc_ = (call); rc_ != SMS_PDU_OK) return rc_; \
    } while (0)

sms_pdu_result read_dcs(Decoder &d)
{
    const std::size_t offset = d.in.position();
    std::uint8_t octet = 0;
    PDU_READ(octet, SMS_PDU_ERR_TRUNCATED_DCS);
    decode_dcs(d, octet, offset, d.record.dcs);
    return SMS_PDU_OK;
}

sms_pdu_result deliver(Decoder &d)
{
    sms_pdu_record &r = d.record;
    r.kind = SMS_PDU_DELIVER;
    PDU_TRY(decode_address(d, r.address));
    PDU_READ(r.pid, SMS_PDU_ERR_TRUNCATED_PID);
    PDU_TRY(read_dcs(d));
    if (!decode_time(d, r.timestamp)) return SMS_PDU_ERR_TRUNCATED_TIMESTAMP;
    return decode_user_data(d);
}

sms_pdu_result submit(Decoder &d)
{
    sms_pdu_record &r = d.record;
    r.kind = SMS_PDU_SUBMIT;
    PDU_READ(r.message_reference, SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE);
    PDU_TRY(decode_address(d, r.address));
    PDU_READ(r.pid, SMS_PDU_ERR_TRUNCATED_PID);
    PDU_TRY(read_dcs(d));
    if (!decode_validity(d, (r.first_octet >> 3) & 3, r.validity)) return SMS_PDU_ERR_TRUNCATED_VALIDITY;
    return decode_user_data(d);
}

sms_pdu_result status_report(Decoder &d)
{
    sms_pdu_record &r = d.record;
    r.kind = SMS_PDU_STATUS_REPORT;
    PDU_READ(r.message_reference, SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE);
    PDU_TRY(decode_address(d, r.address));
    if (!decode_time(d, r.timestamp)) return SMS_PDU_ERR_TRUNCATED_TIMESTAMP;
    if (!decode_time(d, r.discharge_time)) return SMS_PDU_ERR_TRUNCATED_DISCHARGE_TIME;
    PDU_READ(r.status, SMS_PDU_ERR_TRUNCATED_STATUS);
    r.status_category = static_cast<std::uint8_t>(sms_pdu_status_category_of(r.status));
    // TP-PI and what it announces are optional.
    const std::size_t pi_offset = d.in.position();
    if (!d.in.read(r.parameter_indicator)) return SMS_PDU_OK;
    r.has_parameter_indicator = 1;
    const std::uint8_t pi = r.parameter_indicator;
    if ((pi & 0x78) != 0) {
        // Some service centres fill TP-PI with ones; nothing that follows
        // can be trusted to be what it would announce.
        d.problem(SMS_PDU_PROBLEM_RESERVED_PARAMETERS, pi_offset);
        return SMS_PDU_OK;
    }
    // Extension octets carry only reserved bits.
    for (std::uint8_t ext = pi; (ext & 0x80) != 0;)
        if (!d.in.read(ext)) break;
    if (bit(pi, 0) != 0) PDU_READ(r.pid, SMS_PDU_ERR_TRUNCATED_PID);
    if (bit(pi, 1) != 0) PDU_TRY(read_dcs(d));
    return bit(pi, 2) != 0 ? decode_user_data(d) : SMS_PDU_OK;
}

sms_pdu_result command(Decoder &d)
{
    sms_pdu_record &r = d.record;
    r.kind = SMS_PDU_COMMAND;
    PDU_READ(r.message_reference, SMS_PDU_ERR_TRUNCATED_MESSAGE_REFERENCE);
    PDU_READ(r.pid, SMS_PDU_ERR_TRUNCATED_PID);
    PDU_READ(r.command_type, SMS_PDU_ERR_TRUNCATED_COMMAND_TYPE);
    PDU_READ(r.message_number, SMS_PDU_ERR_TRUNCATED_MESSAGE_NUMBER);
    PDU_TRY(decode_address(d, r.address));
    // TP-CDL counts octets, and TP-CD is read like 8-bit user data.
    r.dcs.alphabet = SMS_PDU_ALPHABET_8BIT;
    return decode_user_data(d);
}

// Every entry starts from this, whatever it then refuses.
void clear(sms_pdu_record &r)
{
    std::memset(&r, 0, sizeof r);
    r.dcs.message_class = SMS_PDU_CLASS_NONE;
}

sms_pdu_result decode(std::span<const std::uint8_t> octets, unsigned flags, sms_pdu_record &r)
{
    clear(r);
    if (octets.size() > SMS_PDU_MAX_INPUT_OCTETS) return SMS_PDU_ERR_TOO_LONG;
    Decoder d{common::OctetReader(octets), r};
    if ((flags & SMS_PDU_DECODE_NO_SCA) == 0) {
        r.has_sca = 1;
        PDU_TRY(decode_service_centre(d, r.sca));
    }
    PDU_READ(r.first_octet, SMS_PDU_ERR_TRUNCATED_FIRST_OCTET);
    const std::uint8_t fo = r.first_octet;
    r.header_indicator = static_cast<std::uint8_t>(bit(fo, 6));
    switch (fo & 3) {
    case 0:
        r.more_messages = static_cast<std::uint8_t>(!bit(fo, 2));
        r.loop_prevention = static_cast<std::uint8_t>(bit(fo, 3));
        r.status_report = static_cast<std::uint8_t>(bit(fo, 5));
        r.reply_path = static_cast<std::uint8_t>(bit(fo, 7));
        return deliver(d);
    case 1:
        r.reject_duplicates = static_cast<std::uint8_t>(bit(fo, 2));
        r.status_report = static_cast<std::uint8_t>(bit(fo, 5));
        r.reply_path = static_cast<std::uint8_t>(bit(fo, 7));
        return submit(d);
    case 2:
        r.status_report = static_cast<std::uint8_t>(bit(fo, 5));
        if ((flags & SMS_PDU_DECODE_COMMAND) != 0) return command(d);
        r.more_messages = static_cast<std::uint8_t>(!bit(fo, 2));
        r.loop_prevention = static_cast<std::uint8_t>(bit(fo, 3));
        return status_report(d);
    default:
        return SMS_PDU_ERR_UNSUPPORTED_MTI;
    }
}

// Value of each character as a hexadecimal digit, kNotHex for the others.
constexpr std::uint8_t kNotHex = 0xFF;
constexpr std::array<std::uint8_t, 256> kHexValue = [] {
    std::array<std::uint8_t, 256> t{};
    for (auto &v : t) v = kNotHex;
    for (unsigned i = 0; i < 10; ++i) t['0' + i] = static_cast<std::uint8_t>(i);
    for (unsigned i = 0; i < 6; ++i) t['a' + i] = t['A' + i] = static_cast<std::uint8_t>(10 + i);
    return t;
}();

std::uint8_t hex_value(char c) { return kHexValue[static_cast<unsigned char>(c)]; }

}  // namespace
}  // namespace smsutil::pdu

extern "C" {

SMSUTIL_API int sms_pdu_decode(const uint8_t *octets, size_t len, unsigned flags, sms_pdu_record *record)
{
    if (record == nullptr || (octets == nullptr && len != 0)) return SMS_PDU_ERR_NULL;
    return smsutil::pdu::decode(std::span<const uint8_t>(octets, len), flags, *record);
}

SMSUTIL_API int sms_pdu_decode_hex(const char *hex, size_t len, unsigned flags, sms_pdu_record *record)
{
    if (record == nullptr || (hex == nullptr && len != 0)) return SMS_PDU_ERR_NULL;
    smsutil::pdu::clear(*record);
    using smsutil::pdu::hex_value;
    // A bad digit anywhere wins over an odd length or a long text.
    std::array<uint8_t, SMS_PDU_MAX_INPUT_OCTETS> octets;
    const size_t pairs = len / 2;
    bool bad = len % 2 != 0 && hex_value(hex[len - 1]) == smsutil::pdu::kNotHex;
    for (size_t i = 0; i < pairs; ++i) {
        const uint8_t hi = hex_value(hex[2 * i]);
        const uint8_t lo = hex_value(hex[2 * i + 1]);
        bad |= (hi | lo) == smsutil::pdu::kNotHex;
        if (i < octets.size()) octets[i] = static_cast<uint8_t>(hi << 4 | (lo & 0x0F));
    }
    if (bad) return SMS_PDU_ERR_BAD_HEX;
    if (len % 2 != 0) return SMS_PDU_ERR_ODD_LENGTH;
    if (pairs > octets.size()) return SMS_PDU_ERR_TOO_LONG;
    return smsutil::pdu::decode(std::span<const uint8_t>(octets.data(), pairs), flags, *record);
}

}  // extern "C"
