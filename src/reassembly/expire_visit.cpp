// Handing pending messages to the caller: the ones that waited too long
// (and leave the store), or all of them for a look (and stay).
#include "reassembly/message_record.hpp"
#include "reassembly/store_layout.hpp"

using namespace smsutil::reassembly;

extern "C" {

int sms_reasm_expire(sms_reasm_store *store, uint64_t now)
{
    if (store == nullptr || store->magic != kStoreMagic) return SMS_REASM_ERR_ARGUMENT;
    if (store->config.timeout_seconds == 0) return 0;
    int expired = 0;
    // The whole list is walked: a caller's clock that stepped back must not
    // hide an old message behind a younger one.
    for (uint32_t i = store->oldest; i != kNoSlot;) {
        const Slot &slot = slot_at(*store, i);
        const uint32_t next = slot.newer;
        if (age_of(slot, now) >= store->config.timeout_seconds) {
            hand_over(*store, i, SMS_REASM_EXPIRED);
            release_slot(*store, i);
            ++expired;
        }
        i = next;
    }
    return expired;
}

int sms_reasm_visit(sms_reasm_store *store)
{
    if (store == nullptr || store->magic != kStoreMagic) return SMS_REASM_ERR_ARGUMENT;
    int visited = 0;
    for (uint32_t i = store->oldest; i != kNoSlot; i = slot_at(*store, i).newer) {
        hand_over(*store, i, SMS_REASM_PENDING);
        ++visited;
    }
    return visited;
}

}  // extern "C"
