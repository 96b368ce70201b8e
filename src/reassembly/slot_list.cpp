// The slots of a store: a free list, and the pending ones linked in the
// order their messages arrived, so eviction takes the oldest in one step.
#include <cstring>

#include "reassembly/key_index.hpp"
#include "reassembly/store_layout.hpp"

namespace smsutil::reassembly {

void reset_slots(Store &store)
{
    const uint32_t count = store.config.max_messages;
    for (uint32_t i = 0; i < count; ++i) slot_at(store, i).newer = i + 1 < count ? i + 1 : kNoSlot;
    store.free_head = 0;
    store.oldest = kNoSlot;
    store.newest = kNoSlot;
    store.pending_messages = 0;
    store.pending_parts = 0;
    store.pending_bytes = 0;
    clear_index(store);
}

uint32_t take_free_slot(Store &store)
{
    const uint32_t i = store.free_head;
    if (i == kNoSlot) return kNoSlot;
    Slot &slot = slot_at(store, i);
    store.free_head = slot.newer;
    std::memset(&slot, 0, sizeof slot);
    std::memset(part_table(slot), 0, sizeof(PartEntry) * store.config.max_parts);
    slot.older = store.newest;
    slot.newer = kNoSlot;
    if (store.newest != kNoSlot) slot_at(store, store.newest).newer = i;
    store.newest = i;
    if (store.oldest == kNoSlot) store.oldest = i;
    ++store.pending_messages;
    return i;
}

void release_slot(Store &store, uint32_t i)
{
    Slot &slot = slot_at(store, i);
    erase_key(store, i);
    if (slot.older != kNoSlot)
        slot_at(store, slot.older).newer = slot.newer;
    else
        store.oldest = slot.newer;
    if (slot.newer != kNoSlot)
        slot_at(store, slot.newer).older = slot.older;
    else
        store.newest = slot.older;
    store.pending_messages -= 1;
    store.pending_parts -= slot.part_count;
    store.pending_bytes -= slot.used_bytes;
    slot.older = kNoSlot;
    slot.newer = store.free_head;
    store.free_head = i;
}

}  // namespace smsutil::reassembly
