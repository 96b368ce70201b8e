// Input handling shared by the fuzz targets.  Every target reads a few
// leading control octets (lengths, modes, languages) and takes the rest as
// its payload; copies go into heap blocks of exactly the size the callee
// may touch, so that any read or write past them is caught by the address
// checker instead of landing in a neighbouring stack slot.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

namespace fuzzin {

class Input {
public:
    Input(const uint8_t *data, std::size_t size) : data_(data), size_(size) {}

    // Next control octet, 0 once the input is used up.
    uint8_t byte()
    {
        if (pos_ >= size_) return 0;
        return data_[pos_++];
    }
    uint16_t word()
    {
        const uint16_t lo = byte();
        return static_cast<uint16_t>(lo | (byte() << 8));
    }
    const uint8_t *rest() const { return data_ + pos_; }
    std::size_t rest_size() const { return size_ - pos_; }

private:
    const uint8_t *data_;
    std::size_t size_;
    std::size_t pos_ = 0;
};

// An exactly sized heap copy; a zero-length block still has a valid address.
class Block {
public:
    explicit Block(std::size_t size) : size_(size), data_(static_cast<uint8_t *>(std::calloc(size ? size : 1, 1))) {}
    Block(const uint8_t *src, std::size_t size) : Block(size)
    {
        if (size != 0) std::memcpy(data_, src, size);
    }
    ~Block() { std::free(data_); }
    Block(Block &&other) noexcept : size_(other.size_), data_(other.data_) { other.data_ = nullptr; }
    Block(const Block &) = delete;
    Block &operator=(const Block &) = delete;
    Block &operator=(Block &&) = delete;

    uint8_t *data() { return data_; }
    char *text() { return reinterpret_cast<char *>(data_); }
    std::size_t size() const { return size_; }

private:
    std::size_t size_;
    uint8_t *data_;
};

// The payload as a zero-terminated text in a block of its length plus one;
// it ends at the first zero octet, as a C caller's string would.
inline Block terminated(const uint8_t *src, std::size_t size)
{
    const void *nul = std::memchr(src, 0, size);
    const std::size_t n = nul != nullptr ? static_cast<std::size_t>(static_cast<const uint8_t *>(nul) - src) : size;
    Block b(n + 1);
    if (n != 0) std::memcpy(b.data(), src, n);
    return b;
}

// Splits the payload at its first zero octet: the part before it (as a
// terminated text) and the part after it (also terminated).
struct TwoTexts {
    std::vector<char> first;
    std::vector<char> second;
};
inline TwoTexts split_at_nul(const uint8_t *src, std::size_t size)
{
    const void *nul = std::memchr(src, 0, size);
    const std::size_t n = nul != nullptr ? static_cast<std::size_t>(static_cast<const uint8_t *>(nul) - src) : size;
    TwoTexts t;
    t.first.assign(src, src + n);
    t.first.push_back('\0');
    if (n < size) {
        const uint8_t *s = src + n + 1;
        const std::size_t m = size - n - 1;
        t.second.assign(s, s + m);
    }
    t.second.push_back('\0');
    return t;
}

// Stops the run on a broken invariant so that libFuzzer keeps the input.
[[noreturn]] inline void invariant_failed(const char *what)
{
    std::fprintf(stderr, "invariant broken: %s\n", what);
    std::abort();
}
#define FUZZ_CHECK(cond)                                                  \
    do {                                                                  \
        if (!(cond)) ::fuzzin::invariant_failed(#cond " (" __FILE__ ")"); \
    } while (0)

}  // namespace fuzzin
