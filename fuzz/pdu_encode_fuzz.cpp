// Any text with any options: sms_pdu_encode refuses exactly the text that
// is not well-formed UTF-8, and every part it writes is a well-formed
// SUBMIT whose header and user data, read back here field by field, give
// its share of the text, the shares in order giving the whole text.
#include <string>
#include <vector>

#include "fuzz_input.hpp"
#include "pdu/encode_utf8.hpp"
#include "pdu/national_tables.hpp"
#include "smsutil/sms_pdu.h"

namespace {

using namespace smsutil::pdu;

// Well-formed UTF-8, checked byte pattern by byte pattern (the ranges of
// the Unicode standard's table of well-formed sequences).
bool well_formed(const uint8_t *s, std::size_t n)
{
    for (std::size_t i = 0; i < n;) {
        const uint8_t b = s[i];
        std::size_t len = 0;
        uint8_t lo = 0x80, hi = 0xBF;
        if (b < 0x80)
            len = 1;
        else if (b >= 0xC2 && b <= 0xDF)
            len = 2;
        else if (b >= 0xE0 && b <= 0xEF)
            len = 3, lo = b == 0xE0 ? 0xA0 : 0x80, hi = b == 0xED ? 0x9F : 0xBF;
        else if (b >= 0xF0 && b <= 0xF4)
            len = 4, lo = b == 0xF0 ? 0x90 : 0x80, hi = b == 0xF4 ? 0x8F : 0xBF;
        else
            return false;
        if (n - i < len) return false;
        for (std::size_t k = 1; k < len; ++k) {
            const uint8_t c = s[i + k];
            if (c < (k == 1 ? lo : 0x80) || c > (k == 1 ? hi : 0xBF)) return false;
        }
        i += len;
    }
    return true;
}

void append_utf8(std::string &out, char32_t cp)
{
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | cp >> 6);
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | cp >> 12);
        out += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | cp >> 18);
        out += static_cast<char>(0x80 | (cp >> 12 & 0x3F));
        out += static_cast<char>(0x80 | (cp >> 6 & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

// Digits from the control octet: 1 to 20, "+" in front when its top bit is set.
std::string number(uint8_t control)
{
    const std::string digits = "98765432109876543210";
    return ((control & 0x80) != 0 ? "+" : "") + digits.substr(0, 1 + control % 20);
}

// Reads one part back; its text, or a broken invariant.
std::string read_part(const sms_pdu_part &p, const sms_pdu_encode_options &o, std::size_t index, std::size_t count)
{
    const uint8_t *q = p.octets;
    FUZZ_CHECK(p.length <= SMS_PDU_MAX_OCTETS && p.tpdu_length + 1u + q[0] == p.length);
    for (std::size_t i = 0; i < p.length; ++i) {
        const char *digits = "0123456789abcdef";
        FUZZ_CHECK(p.hex[2 * i] == digits[q[i] >> 4] && p.hex[2 * i + 1] == digits[q[i] & 15]);
    }
    FUZZ_CHECK(p.hex[2 * p.length] == '\0');
    std::size_t pos = 1u + q[0];
    const uint8_t first = q[pos++];
    FUZZ_CHECK((first & 3) == 1 && (first >> 3 & 3) == o.validity.format &&
               (first >> 5 & 1) == o.status_report_request);
    FUZZ_CHECK(q[pos++] == 0);     // TP-MR
    pos += 2 + (q[pos] + 1u) / 2;  // TP-DA
    FUZZ_CHECK(q[pos++] == 0);     // TP-PID
    const uint8_t dcs = q[pos++];
    const bool ucs2 = p.alphabet == SMS_PDU_ALPHABET_UCS2;
    FUZZ_CHECK(dcs == ((ucs2 ? 0x08 : 0) | (o.has_message_class ? 0x10 | o.message_class : 0)));
    pos += o.validity.format == SMS_PDU_VP_NONE ? 0 : o.validity.format == SMS_PDU_VP_RELATIVE ? 1 : 7;
    const std::size_t udl = q[pos++];
    const std::size_t ud = pos;
    FUZZ_CHECK(p.length - ud == (ucs2 ? udl : (7 * udl + 7) / 8) && udl <= (ucs2 ? 140u : 160u));

    std::size_t header = 0;
    unsigned locking = 0, single = 0, parts_seen = 0;
    if ((first & 0x40) != 0) {
        header = q[ud] + 1u;
        for (std::size_t e = ud + 1; e < ud + header; e += 2u + q[e + 1]) {
            FUZZ_CHECK(e + 2u + q[e + 1] <= ud + header);
            const uint8_t *d = q + e + 2;
            if (q[e] == 0x00 || q[e] == 0x08) {
                const bool wide = q[e] == 0x08;
                FUZZ_CHECK(wide == (o.reference_16bit != 0) && q[e + 1] == (wide ? 4 : 3));
                FUZZ_CHECK((wide ? (d[0] << 8 | d[1]) : d[0]) == (wide ? o.reference : (o.reference & 0xFF)));
                FUZZ_CHECK(d[wide + 1] == count && d[wide + 2] == index + 1);
                ++parts_seen;
            } else {
                FUZZ_CHECK((q[e] == 0x25 || q[e] == 0x24) && q[e + 1] == 1);
                (q[e] == 0x25 ? locking : single) = d[0];
            }
        }
    }
    FUZZ_CHECK(parts_seen == (count > 1 ? 1u : 0u));
    FUZZ_CHECK(locking == p.locking_language && single == p.single_language);

    std::string text;
    if (ucs2) {
        FUZZ_CHECK(locking == 0 && single == 0 && (udl - header) % 2 == 0);
        for (std::size_t i = ud + header; i + 1 < p.length; i += 2) {
            char32_t unit = static_cast<char32_t>(q[i] << 8 | q[i + 1]);
            if (unit >= 0xD800 && unit <= 0xDBFF) {
                FUZZ_CHECK(i + 3 < p.length);
                const char32_t low = static_cast<char32_t>(q[i + 2] << 8 | q[i + 3]);
                FUZZ_CHECK(low >= 0xDC00 && low <= 0xDFFF);
                unit = 0x10000 + ((unit - 0xD800) << 10) + (low - 0xDC00);
                i += 2;
            }
            append_utf8(text, unit);
        }
        return text;
    }
    const std::size_t start_bit = header == 0 ? 0 : (8 * header + 6) / 7 * 7;
    bool escaped = false;
    for (std::size_t bit = start_bit; bit + 7 <= 7 * udl; bit += 7) {
        const std::size_t at = ud + bit / 8;
        const unsigned window = q[at] | (at + 1 < p.length ? q[at + 1] << 8 : 0);
        const uint8_t code = window >> (bit % 8) & 0x7F;
        if (!escaped && code == kEscape) {
            escaped = true;
            continue;
        }
        const uint16_t ch = escaped ? single_shift_row(single)[code] : locking_row(locking)[code];
        FUZZ_CHECK(ch != kNoCharacter);
        append_utf8(text, ch);
        escaped = false;
    }
    FUZZ_CHECK(!escaped);
    return text;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    fuzzin::Input in(data, size);
    const uint8_t flags = in.byte();
    const uint8_t max_parts = in.byte();
    const uint8_t validity = in.byte();
    const std::string destination = number(in.byte());
    const uint8_t centre = in.byte();
    const std::string service_centre = centre == 0 ? "" : number(centre);
    sms_pdu_encode_options o{};
    o.languages = flags & 0x0E;
    o.reference_16bit = flags & 1;
    o.status_report_request = flags >> 4 & 1;
    o.has_message_class = flags >> 5 & 1;
    o.message_class = flags >> 6;
    o.max_parts = max_parts;
    o.reference = in.word();
    o.destination = destination.c_str();
    o.service_centre = service_centre.c_str();
    o.validity.format = validity & 3;
    o.validity.relative_seconds = in.word() * 977u;
    o.validity.absolute = {static_cast<uint8_t>(validity >> 2), 12, 31, 23, 59, 59, -48};
    fuzzin::Block text(in.rest(), in.rest_size());

    static std::vector<sms_pdu_part> parts(SMS_PDU_MAX_PARTS);
    std::size_t count = 0;
    const int result = sms_pdu_encode(text.text(), text.size(), &o, parts.data(), parts.size(), &count);
    // Options are checked before the text; only a relative period beyond
    // 63 weeks is out of range here.
    if (result == SMS_PDU_ERR_BAD_VALIDITY) {
        FUZZ_CHECK(o.validity.format == SMS_PDU_VP_RELATIVE && o.validity.relative_seconds > 63u * 7 * 86400);
        return 0;
    }
    FUZZ_CHECK((result == SMS_PDU_ERR_BAD_UTF8) == !well_formed(text.data(), text.size()));
    if (result == SMS_PDU_ERR_TOO_MANY_PARTS) FUZZ_CHECK(count > (max_parts == 0 ? 255u : max_parts));
    if (result != SMS_PDU_OK) {
        FUZZ_CHECK(result == SMS_PDU_ERR_BAD_UTF8 || result == SMS_PDU_ERR_TOO_MANY_PARTS);
        return 0;
    }
    FUZZ_CHECK(count >= 1 && count <= (max_parts == 0 ? 255u : max_parts));
    std::string whole;
    for (std::size_t i = 0; i < count; ++i) {
        const sms_pdu_part &p = parts[i];
        FUZZ_CHECK(p.alphabet == parts[0].alphabet && p.locking_language == parts[0].locking_language &&
                   p.single_language == parts[0].single_language);
        FUZZ_CHECK(p.text_offset == whole.size() && (count == 1 || p.text_length != 0));
        const std::string back = read_part(p, o, i, count);
        FUZZ_CHECK(back.size() == p.text_length &&
                   back.compare(0, back.size(), text.text() + p.text_offset, p.text_length) == 0);
        whole += back;
    }
    FUZZ_CHECK(whole.size() == text.size());
    // The default alphabet is left only for a text it cannot hold.
    if (parts[0].alphabet != SMS_PDU_ALPHABET_GSM7 || parts[0].locking_language != 0 || parts[0].single_language != 0) {
        const std::span<const uint8_t> all(text.data(), text.size());
        bool default_holds = true;
        std::size_t pos = 0;
        char32_t cp = 0;
        while (default_holds && next_code_point(all, pos, cp))
            default_holds = codes_of(cp).locking[0] != kNoCode || codes_of(cp).single[0] != kNoCode;
        FUZZ_CHECK(!default_holds);
    }
    return 0;
}
