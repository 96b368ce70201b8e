// TP-UDL and TP-UD: the user data header with every element listed, and
// the text in UTF-8.
#include <algorithm>
#include <array>

#include "pdu/decoder.hpp"
#include "pdu/national_tables.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::pdu {
namespace {

constexpr std::uint8_t kConcat8 = 0x00;
constexpr std::uint8_t kPorts8 = 0x04;
constexpr std::uint8_t kPorts16 = 0x05;
constexpr std::uint8_t kConcat16 = 0x08;
constexpr std::uint8_t kSingleShift = 0x24;
constexpr std::uint8_t kLockingShift = 0x25;

constexpr std::size_t kMaxSeptets = 160;
constexpr std::size_t kMaxOctets = 140;

std::uint16_t be16(const std::uint8_t *p) { return static_cast<std::uint16_t>(p[0] << 8 | p[1]); }

// Marks one kind of element as seen; a second one is reported and, as
// receivers are to do with a repeated element, replaces the first.
void note_repeat(Decoder &d, std::uint8_t &seen, std::size_t offset)
{
    if (seen != 0) d.problem(SMS_PDU_PROBLEM_REPEATED_ELEMENT, offset);
    seen = 1;
}

void interpret_element(Decoder &d, std::uint8_t id, std::span<const std::uint8_t> data, std::size_t offset)
{
    sms_pdu_record &r = d.record;
    const auto expect = [&](std::size_t n) {
        if (data.size() == n) return true;
        d.problem(SMS_PDU_PROBLEM_ELEMENT_LENGTH, offset);
        return false;
    };
    switch (id) {
    case kConcat8:
    case kConcat16: {
        const bool wide = id == kConcat16;
        if (!expect(wide ? 4 : 3)) return;
        const std::uint8_t total = data[wide ? 2 : 1];
        const std::uint8_t part = data[wide ? 3 : 2];
        if (total == 0 || part == 0 || part > total) {
            d.problem(SMS_PDU_PROBLEM_CONCATENATION, offset);
            return;
        }
        note_repeat(d, r.has_concatenation, offset);
        r.concatenation_16bit = wide;
        r.concatenation_reference = wide ? be16(data.data()) : data[0];
        r.concatenation_total = total;
        r.concatenation_part = part;
        return;
    }
    case kPorts8:
    case kPorts16: {
        const bool wide = id == kPorts16;
        if (!expect(wide ? 4 : 2)) return;
        note_repeat(d, r.has_ports, offset);
        r.ports_16bit = wide;
        r.destination_port = wide ? be16(data.data()) : data[0];
        r.source_port = wide ? be16(data.data() + 2) : data[1];
        return;
    }
    case kSingleShift:
    case kLockingShift: {
        if (!expect(1)) return;
        const bool locking = id == kLockingShift;
        if (locking ? !is_known_language(data[0]) || data[0] == kDefaultLanguage : !has_single_shift_table(data[0]))
            d.problem(SMS_PDU_PROBLEM_UNKNOWN_LANGUAGE, offset);
        note_repeat(d, locking ? r.has_locking_shift : r.has_single_shift, offset);
        (locking ? r.locking_language : r.single_language) = data[0];
        return;
    }
    default:
        return;
    }
}

// Elements from user_data[1] up to `end`; those that fit are listed.
void decode_elements(Decoder &d, std::size_t end, std::size_t ud_offset)
{
    sms_pdu_record &r = d.record;
    std::size_t pos = 1;
    while (pos < end) {
        if (pos + 2 > end || pos + 2 + r.user_data[pos + 1] > end) {
            d.problem(SMS_PDU_PROBLEM_ELEMENT_OVERRUN, ud_offset + pos);
            return;
        }
        const std::uint8_t id = r.user_data[pos];
        const std::uint8_t len = r.user_data[pos + 1];
        if (r.element_count < SMS_PDU_MAX_ELEMENTS)
            r.elements[r.element_count++] = {id, static_cast<std::uint8_t>(pos + 2), len};
        interpret_element(d, id, std::span<const std::uint8_t>(r.user_data + pos + 2, len), ud_offset + pos);
        pos += 2 + len;
    }
}

void decode_ucs2(Decoder &d, std::span<const std::uint8_t> octets, std::size_t offset, Utf8Out &out)
{
    if (octets.size() % 2 != 0) d.problem(SMS_PDU_PROBLEM_ODD_UCS2_LENGTH, offset + octets.size() - 1);
    const std::size_t units = octets.size() / 2;
    for (std::size_t i = 0; i < units; ++i) {
        const char32_t u = be16(&octets[2 * i]);
        if (u < 0xD800 || u > 0xDFFF) {
            out.put(u);
            continue;
        }
        const char32_t next = i + 1 < units ? be16(&octets[2 * i + 2]) : 0;
        if (u <= 0xDBFF && next >= 0xDC00 && next <= 0xDFFF) {
            out.put(0x10000 + ((u - 0xD800) << 10) + (next - 0xDC00));
            ++i;
        } else {
            d.problem(SMS_PDU_PROBLEM_LONE_SURROGATE, offset + 2 * i);
            out.put(0xFFFD);
        }
    }
}

}  // namespace

void Utf8Out::put_multibyte(char32_t c)
{
    char b[4];
    std::size_t n = 0;
    if (c < 0x80) {
        b[n++] = static_cast<char>(c);
    } else if (c < 0x800) {
        b[n++] = static_cast<char>(0xC0 | (c >> 6));
        b[n++] = static_cast<char>(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        b[n++] = static_cast<char>(0xE0 | (c >> 12));
        b[n++] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        b[n++] = static_cast<char>(0x80 | (c & 0x3F));
    } else {
        b[n++] = static_cast<char>(0xF0 | (c >> 18));
        b[n++] = static_cast<char>(0x80 | ((c >> 12) & 0x3F));
        b[n++] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        b[n++] = static_cast<char>(0x80 | (c & 0x3F));
    }
    if (len_ + n >= buf_.size()) return;
    std::copy_n(b, n, buf_.begin() + static_cast<std::ptrdiff_t>(len_));
    len_ += n;
}

void decode_gsm7(Decoder &d, std::span<const std::uint8_t> septets, unsigned locking, unsigned single,
                 std::size_t offset, std::size_t first, Utf8Out &out)
{
    const auto octet_of = [&](std::size_t i) { return offset + (first + i) * 7 / 8; };
    const Row &main = locking_row(locking);
    const Row &ext = single_shift_row(single);
    for (std::size_t i = 0; i < septets.size(); ++i) {
        const std::uint8_t code = septets[i] & 0x7F;
        if (code != kEscape) {
            out.put(main[code]);
            continue;
        }
        if (i + 1 == septets.size()) {
            d.problem(SMS_PDU_PROBLEM_ESCAPE_AT_END, octet_of(i));
            return;
        }
        const std::uint8_t next = septets[++i] & 0x7F;
        if (next == kEscape) {
            out.put(U' ');  // escape to a further table, none defined yet
        } else if (ext[next] != kNoCharacter) {
            out.put(ext[next]);
        } else {
            // A receiver shows the main table's character for a code the
            // extension table lacks.
            d.problem(SMS_PDU_PROBLEM_UNDEFINED_EXTENSION, octet_of(i - 1));
            out.put(main[next]);
        }
    }
}

std::size_t decode_text(Decoder &d, bool readable, std::size_t udl, std::size_t present, std::size_t ud_offset);

sms_pdu_result decode_user_data(Decoder &d)
{
    sms_pdu_record &r = d.record;
    const std::size_t udl_offset = d.in.position();
    std::uint8_t udl = 0;
    if (!d.in.read(udl)) return SMS_PDU_ERR_TRUNCATED_USER_DATA_LENGTH;
    const bool septets = r.dcs.alphabet == SMS_PDU_ALPHABET_GSM7 && r.dcs.compressed == 0;
    if (udl > (septets ? kMaxSeptets : kMaxOctets)) d.problem(SMS_PDU_PROBLEM_USER_DATA_LENGTH, udl_offset);
    const std::size_t announced = septets ? (udl * 7u + 7) / 8 : udl;
    const std::size_t present = std::min(announced, d.in.remaining());
    const std::size_t ud_offset = d.in.position();
    d.in.read(std::span<std::uint8_t>(r.user_data), present);
    r.user_data_length = static_cast<std::uint16_t>(present);
    if (septets) r.user_data_septets = udl;

    bool readable = true;
    if (r.header_indicator != 0) {
        const std::size_t header_end = present == 0 ? 1 : 1u + r.user_data[0];
        if (header_end > announced) {
            d.problem(SMS_PDU_PROBLEM_HEADER_OVERRUN, ud_offset);
            readable = false;
        }
        decode_elements(d, std::min(header_end, present), ud_offset);
        r.header_length = static_cast<std::uint16_t>(std::min(header_end, present));
    }

    r.text_length = static_cast<std::uint16_t>(decode_text(d, readable, udl, present, ud_offset));
    if (present < announced) return SMS_PDU_ERR_TRUNCATED_USER_DATA;
    if (!d.in.at_end()) d.problem(SMS_PDU_PROBLEM_TRAILING_OCTETS, d.in.position());
    return SMS_PDU_OK;
}

// The text of the user data now in the record; its length in bytes.
std::size_t decode_text(Decoder &d, bool readable, std::size_t udl, std::size_t present, std::size_t ud_offset)
{
    sms_pdu_record &r = d.record;
    const bool septets = r.dcs.alphabet == SMS_PDU_ALPHABET_GSM7 && r.dcs.compressed == 0;
    Utf8Out text(r.text);
    if (readable && r.dcs.compressed != 0) {
        d.problem(SMS_PDU_PROBLEM_COMPRESSED, ud_offset);
    } else if (readable && septets) {
        // The text starts at the first septet boundary after the header,
        // so reading every septet from bit 0 and skipping the header's
        // septets needs no fill-bit arithmetic.
        std::array<std::uint8_t, SMS_PDU_USER_DATA_SIZE + 1> all{};
        const std::size_t count = std::min<std::size_t>(udl, present * 8 / 7);
        transport::unpack_septets(std::span(r.user_data, present), count, 0, all);
        const std::size_t skip = std::min<std::size_t>(count, (r.header_length * 8u + 6) / 7);
        // Without a shift element the language stays 0, the default tables.
        decode_gsm7(d, std::span(all).subspan(skip, count - skip), r.locking_language, r.single_language, ud_offset,
                    skip, text);
    } else if (readable && r.dcs.alphabet == SMS_PDU_ALPHABET_UCS2) {
        decode_ucs2(d, std::span(r.user_data + r.header_length, present - r.header_length), ud_offset + r.header_length,
                    text);
    }
    return text.size();
}

}  // namespace smsutil::pdu
