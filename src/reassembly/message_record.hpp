// Fills the caller-facing record of a message from what the store holds:
// the pending parts of a slot, plus at most one part that has just arrived
// and is not stored (the one that completes the message).
#pragma once

#include <cstdint>

#include "reassembly/store_layout.hpp"

namespace smsutil::reassembly {

struct MessageSource {
    const Store &store;
    const Slot *slot;             // null for a part that is a whole message
    const sms_reasm_part *extra;  // null when only the slot's parts count
};

// Bytes of the joined text, without the NUL.
uint32_t joined_length(const MessageSource &source);

// Every field of out; the text goes into out.text (out.text_capacity),
// which the caller has checked is large enough.
void fill_message(const MessageSource &source, sms_reasm_message &out);

// Hands slot i to the caller's hand-over function through the store's own
// record and text buffer; the slot stays where it is.
void hand_over(Store &store, uint32_t i, int reason);

}  // namespace smsutil::reassembly
