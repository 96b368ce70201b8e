#include "reassembly/key_index.hpp"

#include <cstring>

namespace smsutil::reassembly {
namespace {

uint32_t hash_of(const Key &key)
{
    // FNV-1a: cheap, and the address bytes spread well through it.
    uint32_t h = 2166136261U;
    const auto *bytes = reinterpret_cast<const unsigned char *>(&key);
    for (std::size_t i = 0; i < sizeof key; ++i) h = (h ^ bytes[i]) * 16777619U;
    return h;
}

uint32_t mask(const Store &store) { return store.layout.index_size - 1; }

}  // namespace

void clear_index(Store &store) { std::memset(key_index(store), 0, sizeof(uint32_t) * store.layout.index_size); }

uint32_t find_key(const Store &store, const Key &key)
{
    const uint32_t *index = key_index(store);
    for (uint32_t pos = hash_of(key) & mask(store);; pos = (pos + 1) & mask(store)) {
        if (index[pos] == 0) return kNoSlot;
        const uint32_t i = index[pos] - 1;
        if (std::memcmp(&slot_at(store, i).key, &key, sizeof key) == 0) return i;
    }
}

void insert_key(Store &store, uint32_t i)
{
    uint32_t *index = key_index(store);
    uint32_t pos = hash_of(slot_at(store, i).key) & mask(store);
    while (index[pos] != 0) pos = (pos + 1) & mask(store);
    index[pos] = i + 1;
}

void erase_key(Store &store, uint32_t i)
{
    uint32_t *index = key_index(store);
    uint32_t pos = hash_of(slot_at(store, i).key) & mask(store);
    while (index[pos] != i + 1) pos = (pos + 1) & mask(store);
    // Backward-shift deletion: move later entries of the run into the hole
    // when their home position allows it, so no tombstones ever build up.
    uint32_t hole = pos;
    for (uint32_t next = (hole + 1) & mask(store); index[next] != 0; next = (next + 1) & mask(store)) {
        const uint32_t home = hash_of(slot_at(store, index[next] - 1).key) & mask(store);
        if (((next - home) & mask(store)) >= ((next - hole) & mask(store))) {
            index[hole] = index[next];
            hole = next;
        }
    }
    index[hole] = 0;
}

}  // namespace smsutil::reassembly
