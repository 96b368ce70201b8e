// The bounded octet reader and writer that every codec decodes and encodes
// through.  A read or write past the end fails and leaves the position
// where it was; nothing ever touches memory outside the span.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace smsutil::common {

class OctetReader {
public:
    constexpr OctetReader() = default;
    constexpr explicit OctetReader(std::span<const std::uint8_t> data) : data_(data) {}
    constexpr OctetReader(const std::uint8_t *data, std::size_t len) : data_(data, len) {}

    constexpr std::size_t position() const { return pos_; }
    constexpr std::size_t size() const { return data_.size(); }
    constexpr std::size_t remaining() const { return data_.size() - pos_; }
    constexpr bool at_end() const { return pos_ >= data_.size(); }
    constexpr bool has(std::size_t n) const { return n <= remaining(); }

    // One octet; false at the end.
    constexpr bool read(std::uint8_t &out)
    {
        if (at_end()) return false;
        out = data_[pos_++];
        return true;
    }
    constexpr bool peek(std::uint8_t &out) const
    {
        if (at_end()) return false;
        out = data_[pos_];
        return true;
    }
    // n octets into out (out.size() >= n); all or nothing.
    constexpr bool read(std::span<std::uint8_t> out, std::size_t n)
    {
        if (n > out.size() || !has(n)) return false;
        for (std::size_t i = 0; i < n; ++i) out[i] = data_[pos_ + i];
        pos_ += n;
        return true;
    }
    // A view of the next n octets, consumed; empty and false when short.
    constexpr bool take(std::size_t n, std::span<const std::uint8_t> &out)
    {
        if (!has(n)) return false;
        out = data_.subspan(pos_, n);
        pos_ += n;
        return true;
    }
    constexpr bool skip(std::size_t n)
    {
        if (!has(n)) return false;
        pos_ += n;
        return true;
    }
    // What is left, unconsumed.
    constexpr std::span<const std::uint8_t> rest() const { return data_.subspan(pos_); }

private:
    std::span<const std::uint8_t> data_{};
    std::size_t pos_ = 0;
};

class OctetWriter {
public:
    constexpr explicit OctetWriter(std::span<std::uint8_t> data) : data_(data) {}
    constexpr OctetWriter(std::uint8_t *data, std::size_t capacity) : data_(data, capacity) {}

    constexpr std::size_t position() const { return pos_; }
    constexpr std::size_t capacity() const { return data_.size(); }
    constexpr std::size_t remaining() const { return data_.size() - pos_; }
    constexpr bool has_room(std::size_t n) const { return n <= remaining(); }

    constexpr bool put(std::uint8_t octet)
    {
        if (pos_ >= data_.size()) return false;
        data_[pos_++] = octet;
        return true;
    }
    // All or nothing.
    constexpr bool put(std::span<const std::uint8_t> octets)
    {
        if (!has_room(octets.size())) return false;
        for (std::size_t i = 0; i < octets.size(); ++i) data_[pos_ + i] = octets[i];
        pos_ += octets.size();
        return true;
    }
    // The octets written so far.
    constexpr std::span<std::uint8_t> written() const { return data_.first(pos_); }
    // The room not yet written, for a producer that fills it in place; it
    // then commits what it used with advance().
    constexpr std::span<std::uint8_t> unwritten() const { return data_.subspan(pos_); }
    constexpr bool advance(std::size_t n)
    {
        if (!has_room(n)) return false;
        pos_ += n;
        return true;
    }

private:
    std::span<std::uint8_t> data_;
    std::size_t pos_ = 0;
};

}  // namespace smsutil::common
