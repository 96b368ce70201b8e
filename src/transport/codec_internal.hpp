// Bounded forms of the transport field, header and user data codecs.  The
// exported functions take bare pointers, as their callers expect; the TPDU
// codecs use these forms so that every octet they touch is checked against
// the TPDU's length through one reader or writer.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>

#include "common/octets.hpp"
#include "smsutil/wms_ts.h"

namespace smsutil::transport {

using common::OctetReader;
using common::OctetWriter;

// Longest element a header can hold: IEI, IEDL and 255 data octets.
inline constexpr std::size_t kMaxElementSize = 2 + 255;
// An address field: length and type octets, then up to ten digit octets.
inline constexpr std::size_t kMaxAddressSize = 2 + WMS_ADDRESS_MAX_DIGITS / 2;
// Encoded, an alphanumeric address may pack 20 characters into 18 octets
// (a length no decoder accepts back); room for 20 is kept.
inline constexpr std::size_t kMaxEncodedAddressSize = 2 + WMS_ADDRESS_MAX_DIGITS;
inline constexpr std::size_t kTimestampSize = 7;

// ---- Field codecs ----
// Octets written, 0 when the address has more than 20 digits or does not fit.
std::size_t encode_address(const wms_address &address, OctetWriter &out);
// Octets consumed, 0 when the length octet is above 20 or the field is cut.
std::size_t decode_address(OctetReader &in, wms_address &address);
// 7, or 0 when a field is out of range or there is no room.
std::size_t encode_timestamp(const wms_timestamp &time, OctetWriter &out);
// False only when fewer than seven octets are left.
bool decode_timestamp(OctetReader &in, wms_timestamp &time);
std::size_t encode_validity(const wms_gw_validity &validity, OctetWriter &out);
// Octets consumed; 0 for no validity period, the enhanced format or a cut field.
std::size_t decode_validity(OctetReader &in, wms_gw_validity &validity);
std::uint8_t encode_dcs_octet(const wms_gw_dcs &dcs);
void decode_dcs_octet(std::uint8_t octet, wms_gw_dcs &dcs);

// ---- Septet packing ----
// Packs count septets after fill zero bits; octets written.
std::size_t pack_septets(std::span<const std::uint8_t> septets, unsigned fill, std::span<std::uint8_t> out);
// Unpacks up to count characters (and never more than out.size()) with the
// given start code; octets of in consumed.  Never reads past in.
std::size_t unpack_septets(std::span<const std::uint8_t> in, std::size_t count, unsigned start_code,
                           std::span<std::uint8_t> out);
// Octets that count septets occupy after fill bits.
constexpr std::size_t packed_size(std::size_t count, unsigned fill) { return (fill + 7 * count + 7) / 8; }

// ---- User data header ----
// The element the per-element encoders read and the slot the per-element
// decoders write; one of each per thread.
extern thread_local const wms_udh *encode_element_ptr;
extern thread_local wms_udh *decode_slot_ptr;

using ElementBuffer = std::span<std::uint8_t, kMaxElementSize>;
// Element of a kind with its own encoder (IEI, IEDL, data) into out; its
// size, 0 when the record's sizes do not fit the element's data.
std::size_t build_element(const wms_udh &element, ElementBuffer out);

// Header at out's position (UDHL first); UDHL, 0 with nothing written when
// there is no element.  Elements that do not fit in out are left out.
std::uint8_t encode_header(std::uint8_t count, const wms_udh *headers, OctetWriter &out);

struct HeaderDecode {
    std::uint8_t udhl = 0;  // 0 when the header was refused
    int last_slot = -1;     // slot examined last, -1 when none was
};
// Header starting at the UDHL octet of `in`; never reads past `in`.
HeaderDecode decode_header(std::span<const std::uint8_t> in, std::uint8_t &count, wms_udh *headers);
// Element of another kind from its identifier and data; the octets it
// spans (IEI and IEDL included), 0 when the data are too long to keep.
std::size_t decode_other_element(std::uint8_t iei, std::span<const std::uint8_t> data, wms_udh &slot);

// ---- User data ----
// TP-UDL and TP-UD at out's position; octets written, TP-UDL included.
std::size_t encode_user_data(const wms_gw_dcs &dcs, const wms_gw_user_data &data, OctetWriter &out);

struct UserDataDecode {
    bool complete = false;  // false: TP-UD is shorter than TP-UDL announces
    std::size_t consumed = 0;
};
// UCS-2 text left where it lies in the TPDU, for a caller that converts it
// from there rather than from the exchanged pairs in sm_data.
struct Ucs2InPlace {
    bool found = false;                    // the user data were UCS-2
    std::span<const std::uint8_t> octets;  // from the text's first octet to the TPDU's end
    std::size_t length = 0;                // octets of text (sm_len)
};
// TP-UD from `in` (the rest of the TPDU, TP-UDL already read).  With
// `in_place`, UCS-2 text is only located, and sm_data is not filled unless
// the exchanged pairs are traced.
UserDataDecode decode_user_data(const wms_gw_dcs &dcs, std::uint8_t udl, std::span<const std::uint8_t> in,
                                bool header_present, wms_gw_user_data &data, Ucs2InPlace *in_place = nullptr);

// User data longer than this (TP-UDL octet excluded) is refused.
inline constexpr std::size_t kMaxUserDataOctets = 140;

// The TPDU decoders' last step: TP-UD after a TP-UDL already read, from the
// rest of the TPDU; 0, or 101 when it is cut short or too long.
wms_status_e_type decode_tpdu_user_data(const wms_gw_dcs &dcs, std::uint8_t udl, std::span<const std::uint8_t> rest,
                                        bool header_present, wms_gw_user_data &data, Ucs2InPlace *in_place = nullptr);
// SMS-DELIVER, optionally leaving UCS-2 text in place.
wms_status_e_type decode_deliver(const wms_raw_tpdu &raw, wms_gw_deliver &msg, Ucs2InPlace *in_place);
// SMS-STATUS-REPORT; without `with_scts`, TP-SCTS is only stepped over and
// msg.timestamp left as it was.
wms_status_e_type decode_status_report(const wms_raw_tpdu &raw, wms_gw_status_report &msg, bool with_scts);
// The TPDU encoders' last step: TP-UDL and TP-UD; 0, or 101 when too long.
wms_status_e_type encode_tpdu_user_data(const wms_gw_dcs &dcs, const wms_gw_user_data &data, OctetWriter &out);

// The octets a received TPDU holds: never past len, nor past the buffer
// whatever len claims.
inline OctetReader tpdu_reader(const wms_raw_tpdu &raw)
{
    return OctetReader(raw.data, std::min<std::size_t>(raw.len, WMS_MAX_LEN));
}

// An encoder starts from a cleared TPDU and may fill all of it.
inline OctetWriter cleared_tpdu_writer(wms_raw_tpdu &raw)
{
    std::memset(raw.data, 0, sizeof raw.data);
    return OctetWriter(raw.data, sizeof raw.data);
}

}  // namespace smsutil::transport
