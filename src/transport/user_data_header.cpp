// The user data header as a whole: UDHL, then up to seven elements.  The
// encoder writes every kind; the decoder takes the concatenation and
// national language elements and keeps others it meets after those raw.
#include <algorithm>
#include <array>

#include "common/trace.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::transport {

thread_local const wms_udh *encode_element_ptr = nullptr;
thread_local wms_udh *decode_slot_ptr = nullptr;

namespace {

constexpr char kEncodeName[] = "wms_ts_encode_user_data_header";
constexpr char kDecodeName[] = "wms_ts_decode_user_data_header";

bool concat_numbers_valid(std::uint8_t total, std::uint8_t seq) { return total != 0 && seq != 0 && seq <= total; }

// Concatenation and national language elements; 0 when left out.
std::size_t build_inline_element(const wms_udh &e, ElementBuffer out)
{
    switch (e.header_id) {
    case WMS_UDH_CONCAT_8BIT_REF: {
        const auto &c = e.u.concat_8;
        if (!concat_numbers_valid(c.total_sm, c.seq_num)) return 0;
        const std::array<std::uint8_t, 5> octets{WMS_UDH_CONCAT_8BIT_REF, 3, c.msg_ref, c.total_sm, c.seq_num};
        std::copy(octets.begin(), octets.end(), out.begin());
        return octets.size();
    }
    case WMS_UDH_CONCAT_16BIT_REF: {
        const auto &c = e.u.concat_16;
        if (!concat_numbers_valid(c.total_sm, c.seq_num)) return 0;
        const std::array<std::uint8_t, 6> octets{WMS_UDH_CONCAT_16BIT_REF,
                                                 4,
                                                 static_cast<std::uint8_t>(c.msg_ref >> 8),
                                                 static_cast<std::uint8_t>(c.msg_ref & 0xFF),
                                                 c.total_sm,
                                                 c.seq_num};
        std::copy(octets.begin(), octets.end(), out.begin());
        return octets.size();
    }
    default: {  // the two national language shifts
        const auto &n = e.u.nat_lang_ss;
        const std::array<std::uint8_t, 3> octets{static_cast<std::uint8_t>(e.header_id), n.length, n.national_language};
        std::copy(octets.begin(), octets.end(), out.begin());
        return octets.size();
    }
    }
}

bool is_inline_kind(std::uint16_t id)
{
    return id == WMS_UDH_CONCAT_8BIT_REF || id == WMS_UDH_CONCAT_16BIT_REF ||
           id == WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT || id == WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT;
}

// Identifiers that name a layout of their own; stored raw, they are marked
// as another kind so that nobody reads them through the wrong member.
bool has_own_layout(std::uint8_t iei)
{
    return iei == WMS_UDH_SPECIAL_SM || (iei >= WMS_UDH_TEXT_FORMATTING && iei <= WMS_UDH_EO) || iei == WMS_UDH_RFC822;
}

enum class ElementOutcome {
    kStored,
    kRefused,   // the header is refused at once
    kRunsPast,  // the element does not end inside the octets at hand
};

// Reads one element at the reader's position into slot.
ElementOutcome decode_element(OctetReader &in, bool first, wms_udh &slot)
{
    std::uint8_t iei = 0;
    std::uint8_t iedl = 0;
    if (!in.read(iei)) return ElementOutcome::kRunsPast;
    const bool has_iedl = in.peek(iedl);
    std::span<const std::uint8_t> body;
    switch (iei) {
    case WMS_UDH_CONCAT_8BIT_REF:
    case WMS_UDH_CONCAT_16BIT_REF: {
        const bool wide = iei == WMS_UDH_CONCAT_16BIT_REF;
        const std::size_t length = wide ? 5 : 4;
        if (has_iedl && iedl == 0) {
            SMS_TRACE_AS(kDecodeName, "The header_length is %d\n\n", 0);
            return ElementOutcome::kRefused;
        }
        // An element that runs past the octets at hand runs past UDHL too:
        // it has its length, and the header fails as a whole.
        if (!in.take(length, body)) {
            SMS_TRACE_AS(kDecodeName, "The header_length is %d\n\n", static_cast<int>(length));
            return ElementOutcome::kRunsPast;
        }
        const bool valid = concat_numbers_valid(body[length - 2], body[length - 1]);
        SMS_TRACE_AS(kDecodeName, "The header_length is %d\n\n", valid ? static_cast<int>(length) : 0);
        if (!valid) return ElementOutcome::kRefused;
        slot.header_id = iei;
        if (wide) {
            slot.u.concat_16.msg_ref = static_cast<std::uint16_t>((body[1] << 8) | body[2]);
            slot.u.concat_16.total_sm = body[3];
            slot.u.concat_16.seq_num = body[4];
        } else {
            slot.u.concat_8.msg_ref = body[1];
            slot.u.concat_8.total_sm = body[2];
            slot.u.concat_8.seq_num = body[3];
        }
        return ElementOutcome::kStored;
    }
    case WMS_UDH_NATIONAL_LANGUAGE_SINGLE_SHIFT:
    case WMS_UDH_NATIONAL_LANGUAGE_LOCKING_SHIFT:
        // Taken as three octets long whatever IEDL says.
        if (!in.take(2, body)) return ElementOutcome::kRunsPast;
        slot.header_id = iei;
        slot.u.nat_lang_ss.shift_id = iei;
        slot.u.nat_lang_ss.length = body[0];
        slot.u.nat_lang_ss.national_language = body[1];
        return ElementOutcome::kStored;
    default: {
        // A header must open with a kind this decoder knows; later ones of
        // other kinds are kept raw.
        if (first) return ElementOutcome::kRefused;
        if (!in.skip(1) || !in.take(iedl, body)) return ElementOutcome::kRunsPast;
        if (decode_other_element(iei, body, slot) == 0) return ElementOutcome::kRefused;
        if (has_own_layout(iei)) slot.header_id = WMS_UDH_OTHER;
        return ElementOutcome::kStored;
    }
    }
}

}  // namespace

std::uint8_t encode_header(std::uint8_t count, const wms_udh *headers, OctetWriter &out)
{
    if (count == 0 || headers == nullptr) return 0;
    const std::size_t udhl_at = out.position();
    if (!out.put(0)) return 0;
    std::array<std::uint8_t, kMaxElementSize> buf{};
    for (std::size_t i = 0; i < count && i < WMS_UDH_MAX_IES; ++i) {
        const wms_udh &element = headers[i];
        encode_element_ptr = &element;
        SMS_TRACE_AS(kEncodeName, "The head id is: %d\n\n", element.header_id);
        const std::size_t size =
            is_inline_kind(element.header_id) ? build_inline_element(element, buf) : build_element(element, buf);
        // An element that does not fit the output is left out like an invalid one.
        if (size != 0) out.put(std::span<const std::uint8_t>(buf.data(), size));
    }
    const auto udhl = static_cast<std::uint8_t>(out.position() - udhl_at - 1);
    out.written()[udhl_at] = udhl;
    return udhl;
}

}  // namespace smsutil::transport

namespace smsutil::transport {

HeaderDecode decode_header(std::span<const std::uint8_t> in, std::uint8_t &count, wms_udh *headers)
{
    HeaderDecode result;
    if (in.empty() || in[0] == 0) return result;
    const std::uint8_t udhl = in[0];
    SMS_TRACE_AS(kDecodeName, "The udhl is %d\n\n", udhl);
    // Elements are read from all the octets at hand, not only UDHL's: an
    // element that runs past UDHL is read (and the header then refused)
    // rather than mistaken for a bad one.
    OctetReader reader(in);
    reader.skip(1);
    std::size_t n = 0;
    bool ran_past = false;
    while (reader.position() < udhl && n < WMS_UDH_MAX_IES) {
        decode_slot_ptr = &headers[n];
        result.last_slot = static_cast<int>(n);
        const ElementOutcome outcome = decode_element(reader, n == 0, headers[n]);
        if (outcome == ElementOutcome::kRefused) {
            count = 0;
            return result;
        }
        if (outcome == ElementOutcome::kRunsPast) {
            ran_past = true;
            break;
        }
        ++n;
    }
    // Seven elements end the header whatever follows; otherwise the last
    // element must end exactly where UDHL says.
    const bool accepted = !ran_past && (n == WMS_UDH_MAX_IES || reader.position() == udhl + 1u);
    if (!accepted) n = 0;
    SMS_TRACE_AS(kDecodeName, "The num headers is %d\n\n", static_cast<int>(n));
    // A refused header leaves a count the caller set (cleared, as a rule).
    if (n != 0) count = static_cast<std::uint8_t>(n);
    result.udhl = accepted ? udhl : 0;
    return result;
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_user_data_header(uint8_t count, const wms_udh *headers, uint8_t *out)
{
    if (out == nullptr) return 0;
    smsutil::transport::OctetWriter w(out, WMS_MAX_LEN);
    return smsutil::transport::encode_header(count, headers, w);
}

SMSUTIL_API uint8_t wms_ts_decode_user_data_header(uint8_t udhl, const uint8_t *data, uint8_t *count, wms_udh *headers)
{
    (void)udhl;  // the header's own first octet is what counts
    if (data == nullptr || count == nullptr || headers == nullptr) return 0;
    return smsutil::transport::decode_header(std::span<const uint8_t>(data, data[0] + 1u), *count, headers).udhl;
}

}  // extern "C"
