// Address fields (TP-OA, TP-DA, TP-RA): length, type of address, then BCD
// semi-octets or, for alphanumeric addresses, packed GSM 7-bit characters.
#include <algorithm>
#include <array>

#include "common/trace.hpp"
#include "transport/codec_internal.hpp"

namespace smsutil::transport {
namespace {

constexpr char kEncodeName[] = "wms_ts_encode_address";
constexpr char kDecodeName[] = "wms_ts_decode_address";

constexpr std::size_t ceil_half(std::size_t n) { return (n + 1) / 2; }

void trace_digits(const wms_address &address)
{
    SMS_TRACE_AS(kDecodeName, "The decoded DA num is: %d\n\n", address.number_of_digits);
    SMS_TRACE_AS(kDecodeName, "The decoded DA number digits are:\n\n");
    for (std::size_t i = 0; i < address.number_of_digits; ++i) SMS_TRACE_AS(kDecodeName, "%x\n", address.digits[i]);
    SMS_TRACE_AS(kDecodeName, "\n\n");
}

}  // namespace

std::size_t encode_address(const wms_address &address, OctetWriter &out)
{
    const std::size_t n = address.number_of_digits;
    if (n > WMS_ADDRESS_MAX_DIGITS) return 0;
    // Only the octets counted in `size` are written and sent.
    std::array<std::uint8_t, kMaxEncodedAddressSize> field;
    const bool alphanumeric = address.number_type == WMS_NUMBER_ALPHANUMERIC;
    // An alphanumeric length counts the semi-octets its packed septets fill.
    field[0] = static_cast<std::uint8_t>(alphanumeric ? (7 * n + 3) / 4 : n);
    field[1] = static_cast<std::uint8_t>(0x80 | (address.number_type << 4) | address.number_plan);
    std::size_t size = 2;
    if (alphanumeric) {
        size += pack_septets(std::span(address.digits, n), 0, std::span(field).subspan(2));
    } else {
        SMS_TRACE_AS(kEncodeName, "The number digits are: %d\n\n", static_cast<int>(n));
        // Two digits per octet, the first in the low half; an odd count
        // fills the last high half with 0xF.
        for (std::size_t i = 0; i < n; i += 2) {
            const unsigned high = i + 1 < n ? address.digits[i + 1] & 0x0F : 0x0F;
            field[2 + i / 2] = static_cast<std::uint8_t>(high << 4 | (address.digits[i] & 0x0F));
        }
        size += ceil_half(n);
    }
    return out.put(std::span<const std::uint8_t>(field.data(), size)) ? size : 0;
}

std::size_t decode_address(OctetReader &in, wms_address &address)
{
    std::uint8_t length = 0;
    if (!in.peek(length)) return 0;
    SMS_TRACE_AS(kDecodeName, "The len is:%d\n\n", length);
    if (length > WMS_ADDRESS_MAX_DIGITS) return 0;
    const std::size_t size = 2 + ceil_half(length);
    std::span<const std::uint8_t> field;
    if (!in.take(size, field)) return 0;
    const std::uint8_t type = field[1];
    const auto body = field.subspan(2);
    address.digit_mode = WMS_DIGIT_MODE_BCD;
    address.number_of_digits = length;
    address.number_type = (type >> 4) & 0x07;
    address.number_plan = type & 0x0F;
    if (address.number_type == WMS_NUMBER_ALPHANUMERIC) {
        address.digit_mode = WMS_DIGIT_MODE_CHAR;
        address.number_of_digits = static_cast<std::uint8_t>(4 * length / 7);
        unpack_septets(body, address.number_of_digits, 0, std::span(address.digits, WMS_ADDRESS_MAX_DIGITS));
    } else {
        // Both nibbles of every octet: an odd length leaves its filler in
        // the slot after the last digit.
        for (std::size_t k = 0; k < body.size(); ++k) {
            address.digits[2 * k] = body[k] & 0x0F;
            address.digits[2 * k + 1] = body[k] >> 4;
        }
    }
    trace_digits(address);
    return size;
}

}  // namespace smsutil::transport

extern "C" {

SMSUTIL_API uint8_t wms_ts_encode_address(const wms_address *address, uint8_t *out)
{
    if (address == nullptr || out == nullptr) return 0;
    smsutil::transport::OctetWriter w(out, smsutil::transport::kMaxEncodedAddressSize);
    return static_cast<uint8_t>(smsutil::transport::encode_address(*address, w));
}

SMSUTIL_API uint8_t wms_ts_decode_address(const uint8_t *data, wms_address *address)
{
    if (data == nullptr || address == nullptr) return 0;
    // The field is never longer than its own length octet says, so only
    // that much of the caller's buffer is read.
    const std::size_t size = data[0] > WMS_ADDRESS_MAX_DIGITS ? 1 : 2 + (data[0] + 1u) / 2;
    smsutil::transport::OctetReader r(data, size);
    return static_cast<uint8_t>(smsutil::transport::decode_address(r, *address));
}

}  // extern "C"
