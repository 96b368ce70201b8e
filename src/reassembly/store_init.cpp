// Sizing a store, building it in the caller's buffer, and its counters.
#include <cstring>

#include "reassembly/store_layout.hpp"

using namespace smsutil::reassembly;

namespace smsutil::reassembly {

Layout compute_layout(const sms_reasm_config &config)
{
    Layout layout{};
    if (config.max_messages == 0 || config.max_messages > kMaxMessages || config.max_parts == 0 ||
        config.max_parts > SMS_REASM_MAX_PARTS || config.max_text_bytes == 0 || config.max_text_bytes > kMaxTextBytes) {
        return layout;
    }
    layout.index_size = 2;
    while (layout.index_size < 2 * config.max_messages) layout.index_size *= 2;
    // 64-bit arithmetic: a store of the largest bounds exceeds a 32-bit size_t.
    uint64_t at = align_up(sizeof(Store));
    layout.index_offset = static_cast<std::size_t>(at);
    at += align_up(sizeof(uint32_t) * uint64_t{layout.index_size});
    layout.record_offset = static_cast<std::size_t>(at);
    at += align_up(sizeof(sms_reasm_message));
    layout.scratch_offset = static_cast<std::size_t>(at);
    at += align_up(uint64_t{config.max_text_bytes} + 1);
    layout.slots_offset = static_cast<std::size_t>(at);
    const uint64_t stride =
        align_up(sizeof(Slot) + sizeof(PartEntry) * uint64_t{config.max_parts} + config.max_text_bytes);
    layout.slot_stride = static_cast<std::size_t>(stride);
    at += stride * config.max_messages;
    if (static_cast<std::size_t>(at) != at) return Layout{};
    layout.total = static_cast<std::size_t>(at);
    return layout;
}

}  // namespace smsutil::reassembly

extern "C" {

size_t sms_reasm_storage_size(const sms_reasm_config *config)
{
    return config == nullptr ? 0 : compute_layout(*config).total;
}

int sms_reasm_init(sms_reasm_store **store, void *buffer, size_t size, const sms_reasm_config *config)
{
    if (store == nullptr || buffer == nullptr || config == nullptr || config->handover == nullptr) {
        return SMS_REASM_ERR_ARGUMENT;
    }
    const Layout layout = compute_layout(*config);
    if (layout.total == 0) return SMS_REASM_ERR_ARGUMENT;
    if (reinterpret_cast<uintptr_t>(buffer) % SMS_REASM_ALIGNMENT != 0) return SMS_REASM_ERR_ALIGNMENT;
    if (size < layout.total) return SMS_REASM_ERR_TOO_SMALL;
    auto *built = static_cast<Store *>(buffer);
    std::memset(built, 0, sizeof *built);
    built->magic = kStoreMagic;
    built->config = *config;
    built->layout = layout;
    reset_slots(*built);
    *store = built;
    return 0;
}

int sms_reasm_get_stats(const sms_reasm_store *store, sms_reasm_stats *stats)
{
    if (store == nullptr || stats == nullptr || store->magic != kStoreMagic) return SMS_REASM_ERR_ARGUMENT;
    stats->pending_messages = store->pending_messages;
    stats->pending_parts = store->pending_parts;
    stats->pending_bytes = store->pending_bytes;
    return 0;
}

}  // extern "C"
