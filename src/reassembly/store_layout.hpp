// How a store is laid out inside the caller's buffer.  Everything is found
// by offsets from the store header, so the buffer holds no pointer into
// itself and two stores never share a byte.
//
//   header | key index | hand-over record | hand-over text | slot 0 | slot 1 ...
//
// A slot holds one pending message: its key and header, a part table of
// max_parts entries and max_text_bytes of text, filled in arrival order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "smsutil/sms_reassembly.h"

namespace smsutil::reassembly {

inline constexpr uint32_t kNoSlot = 0xFFFFFFFFU;
inline constexpr uint32_t kStoreMagic = 0x52534D53U;
inline constexpr uint32_t kMaxMessages = 65536;
inline constexpr uint32_t kMaxTextBytes = 1U << 20;

// What makes two parts belong to one message.  Built zeroed, so equal keys
// are equal byte for byte (the index hashes and compares the bytes).
struct Key {
    uint8_t kind;
    uint8_t reference_bits;
    uint8_t total;
    uint8_t unused;
    uint16_t reference;
    char address[SMS_REASM_ADDRESS_SIZE];
};

struct PartEntry {
    uint32_t offset;  // into the slot's text
    uint16_t length;
    uint8_t coding;
    uint8_t present;
};

struct Slot {
    Key key;
    char service_centre[SMS_REASM_ADDRESS_SIZE];
    sms_reasm_time time;  // of part time_number, the lowest held
    uint8_t time_number;
    uint8_t part_count;
    uint32_t used_bytes;
    uint64_t first_arrival;
    // Arrival order: older is towards the head, which eviction takes.
    // A free slot uses `newer` as its free-list link.
    uint32_t older;
    uint32_t newer;
};

inline constexpr std::size_t align_up(std::size_t n)
{
    return (n + SMS_REASM_ALIGNMENT - 1) & ~std::size_t{SMS_REASM_ALIGNMENT - 1};
}

// The bytes every part of the store needs for these bounds.
struct Layout {
    uint32_t index_size;  // entries, a power of two at least twice max_messages
    std::size_t index_offset;
    std::size_t record_offset;
    std::size_t scratch_offset;
    std::size_t slots_offset;
    std::size_t slot_stride;
    std::size_t total;  // 0 when the bounds are out of range or too large
};

Layout compute_layout(const sms_reasm_config &config);

}  // namespace smsutil::reassembly

// The store header at the start of the caller's buffer.
struct sms_reasm_store_s {
    uint32_t magic;
    sms_reasm_config config;
    smsutil::reassembly::Layout layout;
    uint32_t pending_messages;
    uint32_t pending_parts;
    uint32_t pending_bytes;
    uint32_t oldest;  // head of the arrival list
    uint32_t newest;
    uint32_t free_head;
};

namespace smsutil::reassembly {

using Store = sms_reasm_store_s;

inline unsigned char *base(Store &store) { return reinterpret_cast<unsigned char *>(&store); }
inline const unsigned char *base(const Store &store) { return reinterpret_cast<const unsigned char *>(&store); }

inline uint32_t *key_index(Store &store)
{
    return reinterpret_cast<uint32_t *>(base(store) + store.layout.index_offset);
}
inline const uint32_t *key_index(const Store &store)
{
    return reinterpret_cast<const uint32_t *>(base(store) + store.layout.index_offset);
}
inline sms_reasm_message &handover_record(Store &store)
{
    return *reinterpret_cast<sms_reasm_message *>(base(store) + store.layout.record_offset);
}
inline char *handover_text(Store &store) { return reinterpret_cast<char *>(base(store) + store.layout.scratch_offset); }

inline Slot &slot_at(Store &store, uint32_t i)
{
    return *reinterpret_cast<Slot *>(base(store) + store.layout.slots_offset + i * store.layout.slot_stride);
}
inline const Slot &slot_at(const Store &store, uint32_t i)
{
    return *reinterpret_cast<const Slot *>(base(store) + store.layout.slots_offset + i * store.layout.slot_stride);
}
inline PartEntry *part_table(Slot &slot) { return reinterpret_cast<PartEntry *>(&slot + 1); }
inline const PartEntry *part_table(const Slot &slot) { return reinterpret_cast<const PartEntry *>(&slot + 1); }
inline char *slot_text(Store &store, Slot &slot)
{
    return reinterpret_cast<char *>(part_table(slot) + store.config.max_parts);
}
inline const char *slot_text(const Store &store, const Slot &slot)
{
    return reinterpret_cast<const char *>(part_table(slot) + store.config.max_parts);
}

// Seconds since the message's first part arrived.  The caller's clock may
// restart near zero after a reboot, so arrival times are kept modulo 2^64
// and a clock that stepped back reads as age 0.
inline uint64_t age_of(const Slot &slot, uint64_t now)
{
    const auto age = static_cast<int64_t>(now - slot.first_arrival);
    return age > 0 ? static_cast<uint64_t>(age) : 0;
}

// Arrival list and free list (slot_list.cpp).
void reset_slots(Store &store);
uint32_t take_free_slot(Store &store);  // appended as newest; kNoSlot when none is free
void release_slot(Store &store, uint32_t i);

}  // namespace smsutil::reassembly
