// Bit fields of up to 16 bits at any bit position of an octet buffer, and
// the bounded cursors the bearer-data codec reads and writes through.  The
// raw functions trust their caller; the cursors check every field against
// their limit before calling them, so untrusted lengths never reach memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

namespace smsutil::cdma {

inline constexpr unsigned kMaxFieldBits = 16;

// Writes the low `width` bits of value at bit `pos` (bit 0 = MSB of octet
// 0), keeping every other bit of the octets it touches.  width 1..16.
constexpr void pack_bits(std::uint32_t value, std::uint8_t *dest, std::size_t pos, unsigned width)
{
    if (width == 0) return;
    const std::size_t first = pos / 8;
    const unsigned span_bits = static_cast<unsigned>(pos % 8) + width;
    const unsigned octets = (span_bits + 7) / 8;  // 1..3
    const unsigned shift = octets * 8 - span_bits;
    const std::uint32_t field_mask = ((1u << width) - 1u) << shift;
    const std::uint32_t field = (value << shift) & field_mask;
    for (unsigned i = 0; i < octets; ++i) {
        const unsigned s = (octets - 1 - i) * 8;
        const auto m = static_cast<std::uint8_t>(field_mask >> s);
        const auto v = static_cast<std::uint8_t>(field >> s);
        dest[first + i] = static_cast<std::uint8_t>((dest[first + i] & ~m) | v);
    }
}

// The `width` bits at bit `pos`, first bit most significant.  width 0..16.
constexpr std::uint32_t unpack_bits(const std::uint8_t *src, std::size_t pos, unsigned width)
{
    if (width == 0) return 0;
    const std::size_t first = pos / 8;
    const unsigned span_bits = static_cast<unsigned>(pos % 8) + width;
    const unsigned octets = (span_bits + 7) / 8;
    std::uint32_t acc = 0;
    for (unsigned i = 0; i < octets; ++i) acc = (acc << 8) | src[first + i];
    return (acc >> (octets * 8 - span_bits)) & ((1u << width) - 1u);
}

// Reads bit fields from a span of octets; a field that would pass the end
// of the span fails and leaves the position where it was.
class BitReader {
public:
    constexpr explicit BitReader(std::span<const std::uint8_t> octets) : data_(octets.data()), end_(octets.size() * 8)
    {}

    constexpr std::size_t position() const { return pos_; }
    constexpr std::size_t remaining() const { return end_ - pos_; }
    constexpr bool at_end() const { return pos_ >= end_; }

    // The next `width` bits, or nothing.  A value rather than an output
    // reference: record fields are packed and may sit at any address.
    constexpr std::optional<std::uint32_t> read(unsigned width)
    {
        if (width > kMaxFieldBits || width > remaining()) return std::nullopt;
        const std::uint32_t v = unpack_bits(data_, pos_, width);
        pos_ += width;
        return v;
    }

    // Like read, but a field cut short by the end is taken as if zero bits
    // followed: the last unit of user data often ends inside the zero fill.
    constexpr std::uint32_t read_zero_extended(unsigned width)
    {
        const unsigned have = remaining() < width ? static_cast<unsigned>(remaining()) : width;
        const std::uint32_t bits = unpack_bits(data_, pos_, have);
        pos_ += have;
        return bits << (width - have);
    }

private:
    const std::uint8_t *data_;
    std::size_t end_;
    std::size_t pos_ = 0;
};

// Writes bit fields into a span of octets; a field that would pass the end
// of the span fails and writes nothing.
class BitWriter {
public:
    constexpr explicit BitWriter(std::span<std::uint8_t> octets) : data_(octets.data()), end_(octets.size() * 8) {}

    constexpr std::size_t position() const { return pos_; }
    constexpr std::size_t remaining() const { return end_ - pos_; }
    constexpr std::size_t octets_used() const { return (pos_ + 7) / 8; }

    constexpr bool write(std::uint32_t value, unsigned width)
    {
        if (width > kMaxFieldBits || width > remaining()) return false;
        pack_bits(value, data_, pos_, width);
        pos_ += width;
        return true;
    }

    // Overwrites the field at an earlier position (a length octet written
    // once its content is known); the position does not move.
    constexpr bool patch(std::size_t at, std::uint32_t value, unsigned width)
    {
        if (width > kMaxFieldBits || at > pos_ || width > pos_ - at) return false;
        pack_bits(value, data_, at, width);
        return true;
    }

    // Takes back the last n bits (at most back to `floor`) and clears them.
    constexpr void retract(std::size_t n, std::size_t floor)
    {
        const std::size_t room = pos_ > floor ? pos_ - floor : 0;
        if (n > room) n = room;
        pos_ -= n;
        for (std::size_t p = pos_; p < pos_ + n; ++p) pack_bits(0, data_, p, 1);
    }

    // Zero bits up to the next octet boundary.
    constexpr void pad_to_octet()
    {
        while (pos_ % 8 != 0) {
            pack_bits(0, data_, pos_, 1);
            ++pos_;
        }
    }

private:
    std::uint8_t *data_;
    std::size_t end_;
    std::size_t pos_ = 0;
};

}  // namespace smsutil::cdma
