#include "reassembly/message_record.hpp"

#include <cstring>
#include <span>

#include "reassembly/text_join.hpp"

namespace smsutil::reassembly {
namespace {

struct PartView {
    bool present = false;
    uint8_t coding = 0;
    std::span<const uint8_t> text;
};

uint8_t total_of(const MessageSource &source)
{
    if (source.slot != nullptr) return source.slot->key.total;
    return source.extra->concatenated != 0 ? source.extra->total : 1;
}

PartView part_view(const MessageSource &source, uint8_t number)
{
    const sms_reasm_part *extra = source.extra;
    if (extra != nullptr && (source.slot == nullptr || extra->number == number)) {
        return {true, extra->coding, {reinterpret_cast<const uint8_t *>(extra->text), extra->text_length}};
    }
    if (source.slot == nullptr) return {};
    const PartEntry &entry = part_table(*source.slot)[number - 1];
    if (entry.present == 0) return {};
    const auto *text = reinterpret_cast<const uint8_t *>(slot_text(source.store, *source.slot));
    return {true, entry.coding, {text + entry.offset, entry.length}};
}

uint32_t join(const MessageSource &source, char *out, uint32_t capacity)
{
    TextJoiner joiner(out, capacity);
    const uint8_t total = total_of(source);
    for (unsigned n = 1; n <= total; ++n) {
        const PartView view = part_view(source, static_cast<uint8_t>(n));
        if (!view.present)
            joiner.gap();
        else if (view.coding == SMS_CONTENT_8BIT)
            joiner.append_data(view.text);
        else
            joiner.append_text(view.text);
    }
    return joiner.finish();
}

}  // namespace

uint32_t joined_length(const MessageSource &source) { return join(source, nullptr, 0); }

void fill_message(const MessageSource &source, sms_reasm_message &out)
{
    char *text = out.text;
    const uint32_t capacity = out.text_capacity;
    std::memset(&out, 0, sizeof out);
    out.text = text;
    out.text_capacity = capacity;

    const sms_reasm_part *extra = source.extra;
    if (source.slot != nullptr) {
        const Slot &slot = *source.slot;
        out.kind = slot.key.kind;
        out.concatenated = 1;
        out.reference_bits = slot.key.reference_bits;
        out.reference = slot.key.reference;
        std::memcpy(out.address, slot.key.address, sizeof out.address);
        std::memcpy(out.service_centre, slot.service_centre, sizeof out.service_centre);
        out.time = slot.time;
        if (extra != nullptr && extra->number < slot.time_number) out.time = extra->time;
    } else {
        out.kind = extra->kind;
        out.concatenated = extra->concatenated != 0 ? 1 : 0;
        if (out.concatenated != 0) {
            out.reference_bits = extra->reference_bits;
            out.reference = extra->reference;
        }
        std::memcpy(out.address, extra->address, sizeof out.address);
        std::memcpy(out.service_centre, extra->service_centre, sizeof out.service_centre);
        out.address[sizeof out.address - 1] = '\0';
        out.service_centre[sizeof out.service_centre - 1] = '\0';
        out.time = extra->time;
    }
    out.total = total_of(source);
    for (unsigned n = 1; n <= out.total; ++n) {
        const PartView view = part_view(source, static_cast<uint8_t>(n));
        if (!view.present) {
            out.missing[out.missing_count++] = static_cast<uint8_t>(n);
            continue;
        }
        out.parts[n - 1] = {1, view.coding, static_cast<uint16_t>(view.text.size())};
        ++out.part_count;
    }
    out.text_length = join(source, out.text, out.text_capacity);
}

void hand_over(Store &store, uint32_t i, int reason)
{
    sms_reasm_message &record = handover_record(store);
    record.text = handover_text(store);
    // Joining never makes a text longer than its parts, which fit the slot.
    record.text_capacity = store.config.max_text_bytes + 1;
    fill_message({store, &slot_at(store, i), nullptr}, record);
    store.config.handover(store.config.handover_context, &record, reason);
}

}  // namespace smsutil::reassembly
