// Offering one part to a store: refuse what cannot belong to a message,
// keep the first copy of a part, and join the message once its last part
// is there.  A new message that finds the store full first hands the
// oldest pending one over, so nothing leaves the store unannounced.
#include <cstring>

#include "reassembly/key_index.hpp"
#include "reassembly/message_record.hpp"
#include "reassembly/store_layout.hpp"

using namespace smsutil::reassembly;

namespace {

constexpr uint32_t kMaxPartText = 0xFFFF;  // a part's length is kept in 16 bits

bool is_whole_message(const sms_reasm_part &part)
{
    return part.concatenated == 0 || (part.total == 1 && part.number == 1);
}

bool refused(const Store &store, const sms_reasm_part &part)
{
    if (part.text_length > kMaxPartText) return true;
    if (part.concatenated == 0) return false;
    return part.total == 0 || part.number == 0 || part.number > part.total || part.total > store.config.max_parts ||
           part.text_length > store.config.max_text_bytes;
}

bool described_well(const sms_reasm_part &part)
{
    if (part.text == nullptr && part.text_length != 0) return false;
    if (part.kind != SMS_REASM_RECEIVED && part.kind != SMS_REASM_STORED_OUTGOING) return false;
    if (part.concatenated == 0) return true;
    return part.reference_bits == 16 || (part.reference_bits == 8 && part.reference <= 0xFF);
}

Key key_of(const sms_reasm_part &part)
{
    Key key;
    std::memset(&key, 0, sizeof key);
    key.kind = part.kind;
    key.reference_bits = part.reference_bits;
    key.total = part.total;
    key.reference = part.reference;
    std::memcpy(key.address, part.address, sizeof key.address - 1);
    // Bytes after the terminator must not make two equal addresses differ.
    const std::size_t len = strnlen(key.address, sizeof key.address - 1);
    std::memset(key.address + len, 0, sizeof key.address - len);
    return key;
}

// Joins into the caller's record, or says how long the text would be.
int complete(const MessageSource &source, sms_reasm_message *out)
{
    const uint32_t length = joined_length(source);
    if (out->text == nullptr || length >= out->text_capacity) {
        out->text_length = length;
        return SMS_REASM_TEXT_TOO_LONG;
    }
    fill_message(source, *out);
    return SMS_REASM_COMPLETE;
}

void keep_part(Store &store, Slot &slot, const sms_reasm_part &part)
{
    PartEntry &entry = part_table(slot)[part.number - 1];
    entry = {slot.used_bytes, static_cast<uint16_t>(part.text_length), part.coding, 1};
    if (part.text_length != 0) std::memcpy(slot_text(store, slot) + slot.used_bytes, part.text, part.text_length);
    slot.used_bytes += part.text_length;
    ++slot.part_count;
    ++store.pending_parts;
    store.pending_bytes += part.text_length;
    if (part.number < slot.time_number) {
        slot.time = part.time;
        slot.time_number = part.number;
    }
}

uint32_t open_message(Store &store, const Key &key, const sms_reasm_part &part, uint64_t now)
{
    const uint32_t i = take_free_slot(store);
    Slot &slot = slot_at(store, i);
    slot.key = key;
    std::memcpy(slot.service_centre, part.service_centre, sizeof slot.service_centre - 1);
    slot.time = part.time;
    slot.time_number = part.number;
    slot.first_arrival = now;
    insert_key(store, i);
    return i;
}

}  // namespace

extern "C" int sms_reasm_add(sms_reasm_store *store, const sms_reasm_part *part, uint64_t now, sms_reasm_message *out)
{
    if (store == nullptr || part == nullptr || store->magic != kStoreMagic || !described_well(*part)) {
        return SMS_REASM_ERR_ARGUMENT;
    }
    if (refused(*store, *part)) return SMS_REASM_REFUSED;
    if (is_whole_message(*part)) {
        if (out == nullptr) return SMS_REASM_ERR_ARGUMENT;
        return complete({*store, nullptr, part}, out);
    }

    const Key key = key_of(*part);
    uint32_t i = find_key(*store, key);
    if (i != kNoSlot) {
        Slot &slot = slot_at(*store, i);
        if (part_table(slot)[part->number - 1].present != 0) return SMS_REASM_DUPLICATE;
        if (part->text_length > store->config.max_text_bytes - slot.used_bytes) return SMS_REASM_REFUSED;
        if (slot.part_count + 1U < slot.key.total) {
            keep_part(*store, slot, *part);
            return SMS_REASM_STORED;
        }
        if (out == nullptr) return SMS_REASM_ERR_ARGUMENT;
        const int result = complete({*store, &slot, part}, out);
        if (result == SMS_REASM_COMPLETE) release_slot(*store, i);
        return result;
    }

    int result = SMS_REASM_STORED;
    if (store->free_head == kNoSlot) {
        const uint32_t oldest = store->oldest;
        hand_over(*store, oldest, SMS_REASM_EVICTED);
        release_slot(*store, oldest);
        result = SMS_REASM_FULL;
    }
    i = open_message(*store, key, *part, now);
    keep_part(*store, slot_at(*store, i), *part);
    return result;
}
