// TP-UDL and TP-UD: the optional header, then GSM 7-bit text packed behind
// fill bits, or 8-bit / UCS-2 data whose octet pairs are held swapped.
#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "common/trace.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

constexpr char kEncodeName[] = "wms_ts_encode_gw_user_data";
constexpr char kDecodeName[] = "wms_ts_decode_gw_user_data";

// Fill bits that bring text behind a header of udhl octets (the UDHL octet
// itself included) onto a septet boundary.
constexpr unsigned fill_bits(std::size_t udhl)
{
    const std::size_t h = 8 * (udhl + 1);
    return h % 7 == 0 ? 0 : static_cast<unsigned>(7 - h % 7);
}

// A caller's length never makes us read past sm_data.
std::size_t text_length(const wms_gw_user_data &data) { return std::min<std::size_t>(data.sm_len, WMS_MAX_LEN); }

std::size_t encode_septets(const wms_gw_user_data &data, std::size_t udl_at, OctetWriter &out)
{
    unsigned fill = 0;
    if (data.num_headers != 0) {
        const std::uint8_t udhl = encode_header(data.num_headers, data.headers, out);
        SMS_TRACE_AS(kEncodeName, "The header length is %d\n\n", udhl);
        fill = fill_bits(udhl);
        out.written()[udl_at] = static_cast<std::uint8_t>((8 * (udhl + 1u) + 7u * data.sm_len + fill) / 7);
    }
    const std::size_t n = text_length(data);
    const std::size_t start = out.position() - udl_at;
    SMS_TRACE_AS(kEncodeName, "The data before encoded is %.*s\n\n", static_cast<int>(n),
                 reinterpret_cast<const char *>(data.sm_data));
    SMS_TRACE_AS(kEncodeName, "The data length before encoded is %d\n\n", data.sm_len);
    auto room = out.unwritten();
    room = room.first(std::min<std::size_t>(room.size(), WMS_MAX_LEN - std::min<std::size_t>(start, WMS_MAX_LEN)));
    if (!room.empty()) room[0] = 0;  // the fill bits
    const std::size_t written = pack_septets(std::span(data.sm_data, n), fill, room);
    out.advance(written);
    SMS_TRACE_AS(kEncodeName, "The code after encoded for 7 bit is: %x\n\n", written != 0 ? room[0] : 0u);
    SMS_TRACE_AS(kEncodeName, "The i value returned is %d\n\n", static_cast<int>(written));
    return start + written;
}

std::size_t encode_octet_pairs(const wms_gw_user_data &data, std::size_t udl_at, OctetWriter &out)
{
    if (data.num_headers != 0) {
        const std::uint8_t udhl = encode_header(data.num_headers, data.headers, out);
        SMS_TRACE_AS(kEncodeName, "The user data length is:%d\n\n", data.sm_len);
        SMS_TRACE_AS(kEncodeName, "The user header length is:%d\n\n", udhl);
        out.written()[udl_at] = static_cast<std::uint8_t>(udhl + data.sm_len + 1u);
    }
    SMS_TRACE_AS(kEncodeName, "The three is:%d\n\n", data.sm_len);
    const std::size_t n = text_length(data);
    // Units are held low octet first and sent high octet first; an odd
    // length sends the octet after the data as its pair.  Pairs that lie
    // inside sm_data and fit the room whole are written without a test per
    // octet; the rest take the general loop below.
    const auto room = out.unwritten();
    const std::size_t fast_end = std::min({n + 1, std::size_t{WMS_MAX_LEN}, room.size()}) & ~std::size_t{1};
    std::size_t i = 0;
    for (; i < fast_end; i += 2) {
        room[i] = data.sm_data[i + 1];
        room[i + 1] = data.sm_data[i];
        SMS_TRACE_AS(kEncodeName, "%x\n", room[i]);
        SMS_TRACE_AS(kEncodeName, "%x\n", room[i + 1]);
    }
    out.advance(fast_end);
    for (; i < n; i += 2) {
        const std::uint8_t high = i + 1 < WMS_MAX_LEN ? data.sm_data[i + 1] : 0;
        const std::uint8_t low = data.sm_data[i];
        const std::array<std::uint8_t, 2> pair{high, low};
        // A pair that does not fit whole still sends its high octet.
        if (!out.put(pair)) {
            if (out.put(high)) SMS_TRACE_AS(kEncodeName, "%x\n", high);
            break;
        }
        SMS_TRACE_AS(kEncodeName, "%x\n", high);
        SMS_TRACE_AS(kEncodeName, "%x\n", low);
    }
    return out.position() - udl_at;
}

}  // namespace

std::size_t encode_user_data(const wms_gw_dcs &dcs, const wms_gw_user_data &data, OctetWriter &out)
{
    const std::size_t udl_at = out.position();
    if (!out.put(static_cast<std::uint8_t>(data.sm_len & 0xFF))) return 0;
    SMS_TRACE_AS(kEncodeName, "The sm_len is %x\n\n", data.sm_len);
    return dcs.alphabet == WMS_ALPHABET_GSM7 ? encode_septets(data, udl_at, out)
                                             : encode_octet_pairs(data, udl_at, out);
}

namespace {

struct TextSpan {
    std::size_t start = 0;   // first octet of the text within TP-UD
    std::size_t length = 0;  // characters (7-bit) or octets
};

// The header is read from the rest of the TPDU (`in`), not only from the
// octets TP-UDL covers: a header longer than TP-UDL allows is kept, and the
// text it leaves no room for is empty.
TextSpan septet_text(std::uint8_t udl, std::span<const std::uint8_t> in, bool header_present, wms_gw_user_data &data,
                     unsigned &start_code)
{
    start_code = 0;
    if (!header_present) return {0, udl};
    const HeaderDecode header = decode_header(in, data.num_headers, data.headers);
    if (data.num_headers == 0 || header.udhl == 0) return {0, udl};
    const long bits = 7L * udl - 8L * (header.udhl + 1);
    // A header longer than TP-UDL allows leaves no room for text.
    if (bits < 0) return {header.udhl + 1u, 0};
    const auto fill = static_cast<unsigned>(bits % 7);
    start_code = fill == 0 ? 0 : 8 - fill;
    return {header.udhl + 1u, static_cast<std::size_t>(bits / 7)};
}

TextSpan octet_text(std::uint8_t udl, std::span<const std::uint8_t> in, bool header_present, wms_gw_user_data &data)
{
    if (!header_present) return {0, udl};
    const HeaderDecode header = decode_header(in, data.num_headers, data.headers);
    // The data skip the header only when its last element examined is a
    // concatenation element; a header that examined no element of this call
    // is treated as a cleared slot would be, skipping just the UDHL octet.
    const std::uint16_t last_id =
        header.last_slot < 0 ? WMS_UDH_CONCAT_8BIT_REF : data.headers[header.last_slot].header_id;
    if (last_id != WMS_UDH_CONCAT_8BIT_REF && last_id != WMS_UDH_CONCAT_16BIT_REF) return {0, udl};
    const std::size_t skipped = header.udhl + 1u;
    return {skipped, udl > skipped ? udl - skipped : 0};
}

// UCS-2 or 8-bit text into sm_data, each pair exchanged; U+0000 units dropped.
void exchange_pairs(std::span<const std::uint8_t> in, TextSpan text, wms_gw_user_data &data)
{
    // The pair of an odd last octet is the octet after it, when the TPDU has one.
    auto octet_at = [&](std::size_t i) -> std::uint8_t { return i < in.size() ? in[i] : 0; };
    std::size_t stored = 0;
    // Pairs that lie wholly inside the TPDU and the record need no
    // test per octet; the rest take the general loop below.
    const std::size_t inside = in.size() > text.start ? in.size() - text.start : 0;
    const std::size_t fast_end = std::min({text.length + 1, inside, std::size_t{WMS_MAX_LEN}}) & ~std::size_t{1};
    const std::uint8_t *const src = in.data() + text.start;
    std::size_t i = 0;
    for (; i < fast_end; i += 2) {
        std::uint16_t pair;
        std::memcpy(&pair, src + i, sizeof pair);
        if (pair == 0) continue;
        // Rotating by eight exchanges the two octets on any host.
        pair = std::rotl(pair, 8);
        std::memcpy(&data.sm_data[stored], &pair, sizeof pair);
        stored += 2;
        SMS_TRACE_AS(kDecodeName, "%x\n", src[i + 1]);
        SMS_TRACE_AS(kDecodeName, "%x\n", src[i]);
    }
    for (; i < text.length; i += 2) {
        const std::uint8_t high = octet_at(text.start + i);
        const std::uint8_t low = octet_at(text.start + i + 1);
        // A U+0000 unit is dropped; the cleared tail of sm_data stands for it.
        if (high == 0 && low == 0) continue;
        for (const std::uint8_t octet : {low, high}) {
            if (stored >= WMS_MAX_LEN) break;
            data.sm_data[stored++] = octet;
            SMS_TRACE_AS(kDecodeName, "%x\n", octet);
        }
    }
}

}  // namespace

UserDataDecode decode_user_data(const wms_gw_dcs &dcs, std::uint8_t udl, std::span<const std::uint8_t> in,
                                bool header_present, wms_gw_user_data &data, Ucs2InPlace *in_place)
{
    SMS_TRACE_AS(kDecodeName, "The lenth of the data decoded is: %d\n\n", udl);
    SMS_TRACE_AS(kDecodeName, "The raw data is:\n\n");
    for (std::size_t i = 0; i < std::min<std::size_t>(udl, in.size()); ++i) SMS_TRACE_AS(kDecodeName, "%x\n", in[i]);
    SMS_TRACE_AS(kDecodeName, "\n\n");
    data.num_headers = 0;

    const bool septets = dcs.alphabet == WMS_ALPHABET_GSM7;
    const std::size_t ud_size = septets ? packed_size(udl, 0) : udl;
    if (in.size() < ud_size) return {};
    const auto ud = in.first(ud_size);

    std::size_t value = 0;
    TextSpan text;
    if (septets) {
        unsigned start_code = 0;
        text = septet_text(udl, in, header_present, data, start_code);
        value = unpack_septets(ud.subspan(std::min(text.start, ud.size())), text.length, start_code,
                               std::span(data.sm_data, WMS_MAX_LEN));
        data.sm_len = static_cast<std::uint16_t>(text.length);
    } else {
        text = octet_text(udl, in, header_present, data);
        data.sm_len = static_cast<std::uint16_t>(text.length);
        SMS_TRACE_AS(kDecodeName, "The exchange data is:\n\n");
        if (in_place != nullptr && dcs.alphabet == WMS_ALPHABET_UCS2) {
            in_place->found = true;
            in_place->octets = in.subspan(std::min(text.start, in.size()));
            in_place->length = text.length;
        }
        // The exchange below exists for sm_data and its log lines; a caller
        // converting in place needs neither when nothing is traced.
        const bool exchange = in_place == nullptr || !in_place->found || SMSUTIL_TRACE_ENABLED;
        if (exchange) exchange_pairs(in, text, data);
        value = text.length;
    }
    SMS_TRACE_AS(kDecodeName, "The value of sm_len here is %d\n\n", static_cast<int>(value));
    SMS_TRACE_AS(kDecodeName, "The value of pos here is %d\n\n", static_cast<int>(text.start));
    return {true, text.start + value};
}

wms_status_e_type decode_tpdu_user_data(const wms_gw_dcs &dcs, std::uint8_t udl, std::span<const std::uint8_t> rest,
                                        bool header_present, wms_gw_user_data &data, Ucs2InPlace *in_place)
{
    const UserDataDecode result = decode_user_data(dcs, udl, rest, header_present, data, in_place);
    if (!result.complete || result.consumed > kMaxUserDataOctets) return WMS_TS_STATUS_BAD_USER_DATA_LENGTH;
    return WMS_TS_STATUS_OK;
}

wms_status_e_type encode_tpdu_user_data(const wms_gw_dcs &dcs, const wms_gw_user_data &data, OctetWriter &out)
{
    // The TP-UDL octet is counted here as well.
    const std::size_t size = encode_user_data(dcs, data, out);
    return size > kMaxUserDataOctets + 1 ? WMS_TS_STATUS_BAD_USER_DATA_LENGTH : WMS_TS_STATUS_OK;
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_gw_user_data(const wms_gw_dcs *dcs, const wms_gw_user_data *data, uint8_t *out)
{
    if (dcs == nullptr || data == nullptr || out == nullptr) return 0;
    smsutil::transport::OctetWriter w(out, WMS_MAX_LEN);
    return static_cast<uint8_t>(smsutil::transport::encode_user_data(*dcs, *data, w));
}

SMSUTIL_API uint8_t wms_ts_decode_gw_user_data(const wms_gw_dcs *dcs, uint8_t udl, const uint8_t *data,
                                               uint8_t header_present, wms_gw_user_data *user_data)
{
    if (dcs == nullptr || data == nullptr || user_data == nullptr) return 0;
    // Only the octets TP-UDL announces are read: without the TPDU's length,
    // a header that runs past them cannot be read here.
    const std::size_t size = dcs->alphabet == WMS_ALPHABET_GSM7 ? smsutil::transport::packed_size(udl, 0) : udl;
    const auto result = smsutil::transport::decode_user_data(*dcs, udl, std::span<const uint8_t>(data, size),
                                                             header_present != 0, *user_data);
    return static_cast<uint8_t>(result.consumed);
}

}  // extern "C"
