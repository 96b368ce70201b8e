// The pending messages as a byte image that survives a restart.  All
// numbers are little-endian whatever the processor, so an image moves
// between machines; the length in the header and the CRC at the end catch
// truncation and damage before anything is loaded.
//
//   "SRSM" | version u16 | 0 u16 | image length u32 | message count u32
//   per message, oldest first:
//     kind, reference bits, total, part count (u8 each) | reference u16
//     address and service centre (length u8, bytes) | time (year u16,
//     month, day, hour, minute, second, zone, has zone, its part u8 each)
//     age in seconds u64 | per part held: number, coding u8, length u16, text
//   CRC-32 of everything before it u32
#include <cstring>

#include "common/octets.hpp"
#include "reassembly/checksum.hpp"
#include "reassembly/key_index.hpp"
#include "reassembly/store_layout.hpp"

using namespace smsutil::reassembly;
using smsutil::common::OctetReader;

namespace {

constexpr uint8_t kMagic[4] = {'S', 'R', 'S', 'M'};
constexpr uint16_t kVersion = 1;
constexpr std::size_t kHeaderSize = 16;
constexpr std::size_t kCrcSize = 4;

// Writes into out, or only counts when out is null or full.
class ImageWriter {
public:
    ImageWriter(uint8_t *out, std::size_t capacity) : out_(out), capacity_(capacity) {}

    void bytes(const void *data, std::size_t n)
    {
        const auto *p = static_cast<const uint8_t *>(data);
        for (std::size_t i = 0; i < n; ++i, ++length_) {
            if (out_ != nullptr && length_ < capacity_) out_[length_] = p[i];
        }
    }
    void u8(uint8_t v) { bytes(&v, 1); }
    void u16(uint16_t v) { le(v, 2); }
    void u32(uint32_t v) { le(v, 4); }
    void u64(uint64_t v) { le(v, 8); }
    void text(const char *s, std::size_t capacity)
    {
        const std::size_t n = strnlen(s, capacity - 1);
        u8(static_cast<uint8_t>(n));
        bytes(s, n);
    }
    std::size_t length() const { return length_; }

private:
    void le(uint64_t v, int n)
    {
        for (int i = 0; i < n; ++i) u8(static_cast<uint8_t>(v >> (8 * i)));
    }
    uint8_t *out_;
    std::size_t capacity_;
    std::size_t length_ = 0;
};

void write_message(const Store &store, const Slot &slot, uint64_t now, ImageWriter &w)
{
    w.u8(slot.key.kind);
    w.u8(slot.key.reference_bits);
    w.u8(slot.key.total);
    w.u8(slot.part_count);
    w.u16(slot.key.reference);
    w.text(slot.key.address, sizeof slot.key.address);
    w.text(slot.service_centre, sizeof slot.service_centre);
    const sms_reasm_time &t = slot.time;
    w.u16(t.year);
    for (uint8_t v : {t.month, t.day, t.hour, t.minute, t.second, static_cast<uint8_t>(t.zone_quarters), t.has_zone,
                      slot.time_number}) {
        w.u8(v);
    }
    w.u64(age_of(slot, now));
    const PartEntry *parts = part_table(slot);
    for (unsigned n = 1; n <= slot.key.total; ++n) {
        const PartEntry &entry = parts[n - 1];
        if (entry.present == 0) continue;
        w.u8(static_cast<uint8_t>(n));
        w.u8(entry.coding);
        w.u16(entry.length);
        w.bytes(slot_text(store, slot) + entry.offset, entry.length);
    }
}

// The image without its CRC; returns its length.
std::size_t write_image(const Store &store, uint64_t now, ImageWriter &w, std::size_t total_length)
{
    w.bytes(kMagic, sizeof kMagic);
    w.u16(kVersion);
    w.u16(0);
    w.u32(static_cast<uint32_t>(total_length));
    w.u32(store.pending_messages);
    for (uint32_t i = store.oldest; i != kNoSlot; i = slot_at(store, i).newer) {
        write_message(store, slot_at(store, i), now, w);
    }
    return w.length();
}

bool valid_store(const sms_reasm_store *store) { return store != nullptr && store->magic == kStoreMagic; }

// Little-endian reads on top of the bounded reader.
struct ImageReader {
    OctetReader in;
    bool u8(uint8_t &v) { return in.read(v); }
    bool u16(uint16_t &v) { return le(v, 2); }
    bool u32(uint32_t &v) { return le(v, 4); }
    bool u64(uint64_t &v) { return le(v, 8); }
    template <class T>
    bool le(T &v, int n)
    {
        uint64_t x = 0;
        for (int i = 0; i < n; ++i) {
            uint8_t b = 0;
            if (!in.read(b)) return false;
            x |= uint64_t{b} << (8 * i);
        }
        v = static_cast<T>(x);
        return true;
    }
    bool text(char *out, std::size_t capacity)
    {
        uint8_t n = 0;
        std::span<const uint8_t> bytes;
        if (!u8(n) || n >= capacity || !in.take(n, bytes)) return false;
        std::memcpy(out, bytes.data(), n);
        return std::memchr(out, '\0', n) == nullptr;
    }
};

uint8_t lowest_number(const PartEntry *parts, uint8_t total)
{
    for (unsigned n = 1; n <= total; ++n) {
        if (parts[n - 1].present != 0) return static_cast<uint8_t>(n);
    }
    return 0;
}

// Reads one message into a fresh slot.  A fault of the image gives
// STATE_DAMAGED, a message beyond this store's bounds STATE_FIT.
int read_message(Store &store, ImageReader &r, uint64_t now)
{
    uint8_t kind = 0, bits = 0, total = 0, count = 0;
    uint16_t reference = 0;
    Key key;
    std::memset(&key, 0, sizeof key);
    char service_centre[SMS_REASM_ADDRESS_SIZE] = {};
    if (!r.u8(kind) || !r.u8(bits) || !r.u8(total) || !r.u8(count) || !r.u16(reference) ||
        !r.text(key.address, sizeof key.address) || !r.text(service_centre, sizeof service_centre)) {
        return SMS_REASM_ERR_STATE_DAMAGED;
    }
    if (kind > SMS_REASM_STORED_OUTGOING || (bits != 8 && bits != 16) || (bits == 8 && reference > 0xFF) || total < 2 ||
        count == 0 || count >= total) {
        return SMS_REASM_ERR_STATE_DAMAGED;
    }
    if (total > store.config.max_parts) return SMS_REASM_ERR_STATE_FIT;
    key.kind = kind;
    key.reference_bits = bits;
    key.total = total;
    key.reference = reference;
    if (find_key(store, key) != kNoSlot) return SMS_REASM_ERR_STATE_DAMAGED;

    sms_reasm_time time{};
    uint8_t zone = 0, time_number = 0;
    uint64_t age = 0;
    if (!r.u16(time.year) || !r.u8(time.month) || !r.u8(time.day) || !r.u8(time.hour) || !r.u8(time.minute) ||
        !r.u8(time.second) || !r.u8(zone) || !r.u8(time.has_zone) || !r.u8(time_number) || !r.u64(age)) {
        return SMS_REASM_ERR_STATE_DAMAGED;
    }
    time.zone_quarters = static_cast<int8_t>(zone);

    const uint32_t i = take_free_slot(store);
    if (i == kNoSlot) return SMS_REASM_ERR_STATE_FIT;
    Slot &slot = slot_at(store, i);
    slot.key = key;
    std::memcpy(slot.service_centre, service_centre, sizeof service_centre);
    slot.time = time;
    slot.time_number = time_number;
    slot.first_arrival = now - (age > uint64_t{INT64_MAX} ? uint64_t{INT64_MAX} : age);
    insert_key(store, i);
    PartEntry *parts = part_table(slot);
    uint8_t previous = 0;
    for (unsigned k = 0; k < count; ++k) {
        uint8_t number = 0, coding = 0;
        uint16_t length = 0;
        std::span<const uint8_t> bytes;
        if (!r.u8(number) || !r.u8(coding) || !r.u16(length) || number <= previous || number > total ||
            !r.in.take(length, bytes)) {
            return SMS_REASM_ERR_STATE_DAMAGED;
        }
        if (length > store.config.max_text_bytes - slot.used_bytes) return SMS_REASM_ERR_STATE_FIT;
        parts[number - 1] = {slot.used_bytes, length, coding, 1};
        if (length != 0) std::memcpy(slot_text(store, slot) + slot.used_bytes, bytes.data(), length);
        slot.used_bytes += length;
        ++slot.part_count;
        ++store.pending_parts;
        store.pending_bytes += length;
        previous = number;
    }
    // The time stamp is that of the lowest part held, as adding keeps it;
    // parts come in ascending order, so that is the first one read.
    return time_number == lowest_number(parts, total) ? 0 : SMS_REASM_ERR_STATE_DAMAGED;
}

}  // namespace

extern "C" {

size_t sms_reasm_state_size(const sms_reasm_store *store)
{
    if (!valid_store(store)) return 0;
    ImageWriter counter(nullptr, 0);
    return write_image(*store, 0, counter, 0) + kCrcSize;
}

int sms_reasm_save_state(const sms_reasm_store *store, uint64_t now, void *buffer, size_t size, size_t *written)
{
    if (!valid_store(store) || buffer == nullptr || written == nullptr) return SMS_REASM_ERR_ARGUMENT;
    const std::size_t needed = sms_reasm_state_size(store);
    if (size < needed) return SMS_REASM_ERR_TOO_SMALL;
    auto *out = static_cast<uint8_t *>(buffer);
    ImageWriter w(out, size);
    const std::size_t body = write_image(*store, now, w, needed);
    w.u32(crc32(out, body));
    *written = w.length();
    return 0;
}

int sms_reasm_load_state(sms_reasm_store *store, uint64_t now, const void *buffer, size_t size)
{
    if (!valid_store(store) || (buffer == nullptr && size != 0)) return SMS_REASM_ERR_ARGUMENT;
    if (store->pending_messages != 0) return SMS_REASM_ERR_NOT_EMPTY;
    const auto *in = static_cast<const uint8_t *>(buffer);
    if (size < kHeaderSize + kCrcSize || std::memcmp(in, kMagic, sizeof kMagic) != 0) {
        return SMS_REASM_ERR_STATE_DAMAGED;
    }
    ImageReader r{OctetReader(in + sizeof kMagic, size - sizeof kMagic - kCrcSize)};
    uint16_t version = 0, reserved = 0;
    uint32_t length = 0, count = 0, crc = 0;
    r.u16(version);
    if (version != kVersion) return SMS_REASM_ERR_STATE_VERSION;
    r.u16(reserved);
    r.u32(length);
    r.u32(count);
    ImageReader tail{OctetReader(in + size - kCrcSize, kCrcSize)};
    tail.u32(crc);
    if (reserved != 0 || length != size || crc != crc32(in, size - kCrcSize)) return SMS_REASM_ERR_STATE_DAMAGED;
    if (count > store->config.max_messages) return SMS_REASM_ERR_STATE_FIT;

    int result = 0;
    for (uint32_t k = 0; k < count && result == 0; ++k) result = read_message(*store, r, now);
    if (result == 0 && !r.in.at_end()) result = SMS_REASM_ERR_STATE_DAMAGED;
    // Never half-loaded: any fault leaves the store as empty as it was.
    if (result != 0) reset_slots(*store);
    return result;
}

}  // extern "C"
