// The index that finds a pending message by its key in constant time,
// whatever the number of messages pending: open addressing with linear
// probing over a table at least twice as large as the slots, so a probe
// run stays short.  Entries hold a slot number plus one; 0 is empty.
#pragma once

#include <cstdint>

#include "reassembly/store_layout.hpp"

namespace smsutil::reassembly {

void clear_index(Store &store);
// The slot holding key, or kNoSlot.
uint32_t find_key(const Store &store, const Key &key);
// Indexes slot i under the key it holds; the key must not be indexed yet.
void insert_key(Store &store, uint32_t i);
void erase_key(Store &store, uint32_t i);

}  // namespace smsutil::reassembly
