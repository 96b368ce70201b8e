// Drives a reassembly store with a sequence of operations read from bytes
// (add a part, let time pass, expire, save and load into a fresh store,
// visit) and keeps the books: every part offered must come out joined,
// handed over (expired or evicted), answered as duplicate or refused, or be
// pending still, and the same for every text byte.  A plain model of the
// pending messages (a map from key to the part numbers held) predicts each
// answer, which message expires and which one is evicted.  Shared by the
// fuzz target and the test that replays a fixed sequence.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "smsutil/sms_reassembly.h"

namespace reassembly_driver {

struct Bounds {
    uint32_t max_messages = 4;
    uint32_t max_parts = 4;
    uint32_t max_text_bytes = 64;
    uint32_t timeout = 30;
    uint32_t senders = 6;
};

// A pending message as the model sees it.
struct Pending {
    std::set<unsigned> numbers;
    uint32_t bytes = 0;
    uint64_t first = 0;    // clock at the first part
    unsigned arrival = 0;  // order of arrival
};

class Driver {
public:
    explicit Driver(Bounds bounds) : bounds_(bounds)
    {
        config_ = {bounds.max_messages, bounds.max_parts,     bounds.max_text_bytes,
                   bounds.timeout,      &Driver::on_handover, this};
        storage_.resize(sms_reasm_storage_size(&config_) / 8 + 1);
        fresh_store();
    }

    // Runs the operations in data; returns the first broken rule, or "".
    std::string run(const uint8_t *data, std::size_t size)
    {
        pos_ = 0;
        data_ = data;
        size_ = size;
        while (pos_ < size_ && problem_.empty()) step();
        if (problem_.empty()) check_books();
        return problem_;
    }

    unsigned parts_offered() const { return offered_parts_; }
    unsigned messages_joined() const { return joined_messages_; }

    // One add: the bytes the driver reads for it.
    static std::vector<uint8_t> add_bytes(uint8_t sender, uint8_t reference, uint8_t flags, uint8_t total,
                                          uint8_t number, uint8_t length, uint8_t fill, uint8_t tick)
    {
        return {0, sender, reference, flags, total, number, length, fill, tick};
    }

private:
    uint8_t next() { return pos_ < size_ ? data_[pos_++] : 0; }

    void fail(const std::string &what)
    {
        if (problem_.empty()) problem_ = what;
    }

    void fresh_store()
    {
        if (sms_reasm_init(&store_, storage_.data(), storage_.size() * 8, &config_) != 0) fail("init refused");
    }

    static void on_handover(void *context, const sms_reasm_message *message, int reason)
    {
        auto *self = static_cast<Driver *>(context);
        if (reason == SMS_REASM_PENDING) {
            self->visited_parts_ += message->part_count;
            return;
        }
        if (message->part_count == 0 || message->part_count + message->missing_count != message->total) {
            self->fail("a handed-over message does not add up to its total");
        }
        self->count_out(*message, self->handed_parts_, self->handed_bytes_);
        const std::string key =
            key_of(message->kind, message->reference_bits, message->reference, message->total, message->address);
        const auto found = self->model_.find(key);
        if (found == self->model_.end() || found->second.numbers.size() != message->part_count) {
            self->fail("handed over a message the model does not hold");
            return;
        }
        if (reason == SMS_REASM_EVICTED && found->second.arrival != self->oldest_arrival()) {
            self->fail("evicted a message that is not the oldest");
        }
        if (reason == SMS_REASM_EXPIRED &&
            (self->bounds_.timeout == 0 || self->now_ - found->second.first < self->bounds_.timeout)) {
            self->fail("expired a message before its time");
        }
        self->model_.erase(found);
    }

    static std::string key_of(unsigned kind, unsigned bits, unsigned reference, unsigned total, const char *address)
    {
        return std::to_string(kind) + "/" + std::to_string(bits) + "/" + std::to_string(reference) + "/" +
               std::to_string(total) + "/" + address;
    }

    unsigned oldest_arrival() const
    {
        unsigned oldest = ~0U;
        for (const auto &entry : model_) oldest = entry.second.arrival < oldest ? entry.second.arrival : oldest;
        return oldest;
    }

    // What the store must answer, updating the model as the store should.
    int predict(const sms_reasm_part &part)
    {
        const uint32_t length = part.text_length;
        if (part.concatenated == 0) return SMS_REASM_COMPLETE;
        if (part.total == 0 || part.number == 0 || part.number > part.total || part.total > bounds_.max_parts ||
            length > bounds_.max_text_bytes) {
            return SMS_REASM_REFUSED;
        }
        if (part.total == 1) return SMS_REASM_COMPLETE;
        const std::string key = key_of(part.kind, part.reference_bits, part.reference, part.total, part.address);
        const auto found = model_.find(key);
        if (found != model_.end()) {
            Pending &pending = found->second;
            if (pending.numbers.count(part.number) != 0) return SMS_REASM_DUPLICATE;
            if (length > bounds_.max_text_bytes - pending.bytes) return SMS_REASM_REFUSED;
            if (pending.numbers.size() + 1 == part.total) {
                model_.erase(found);
                return SMS_REASM_COMPLETE;
            }
            pending.numbers.insert(part.number);
            pending.bytes += length;
            return SMS_REASM_STORED;
        }
        // The store hands the oldest over (and the model drops it) first.
        const int result = model_.size() == bounds_.max_messages ? SMS_REASM_FULL : SMS_REASM_STORED;
        new_entry_ = {key, Pending{{part.number}, length, now_, arrivals_++}};
        return result;
    }

    void count_out(const sms_reasm_message &message, unsigned &parts, unsigned long &bytes)
    {
        unsigned present = 0;
        for (unsigned n = 0; n < message.total; ++n) {
            if (message.parts[n].present == 0) continue;
            ++present;
            bytes += message.parts[n].length;
        }
        if (present != message.part_count) fail("part_count disagrees with the parts present");
        parts += present;
        // The joined text is valid UTF-8 as far as surrogates go.
        for (uint32_t i = 0; i + 1 < message.text_length; ++i) {
            const auto b0 = static_cast<uint8_t>(message.text[i]), b1 = static_cast<uint8_t>(message.text[i + 1]);
            if (b0 == 0xED && (b1 & 0xE0) == 0xA0) fail("a surrogate half left in a joined text");
        }
    }

    // Texts with surrogate halves among other characters, so that pairs
    // are cut between parts; 8-bit data, copied as it is, gets none.
    static std::string text_of(std::size_t length, uint8_t fill, bool data)
    {
        static const char *const pieces[] = {"a", "bc", "z", "\xC3\xA9", "\xED\xA0\xBD", "\xED\xB8\x80"};
        const unsigned kinds = data ? 3 : 6;
        std::string text;
        for (unsigned k = 0; text.size() < length; ++k) text += pieces[(fill + k * (fill | 1U)) % kinds];
        return text;
    }

    void add()
    {
        const uint8_t sender = next(), reference = next(), flags = next(), total = next(), number = next();
        const uint8_t length = next(), fill = next();
        now_ += next() % 16;
        sms_reasm_part part;
        std::memset(&part, 0, sizeof part);
        part.kind = flags & 1U;
        part.concatenated = (flags & 6U) != 0 ? 1 : 0;
        part.reference_bits = (flags & 8U) != 0 ? 16 : 8;
        part.reference = part.reference_bits == 8 ? reference % 4 : static_cast<uint16_t>(reference % 4 + 0x100);
        part.total = total % (bounds_.max_parts + 2);
        part.number = number % (bounds_.max_parts + 2);
        part.coding = (flags & 0x30U) == 0x30U ? SMS_CONTENT_8BIT : SMS_CONTENT_UCS2;
        const std::string address = "+4670" + std::to_string(sender % bounds_.senders);
        std::memcpy(part.address, address.c_str(), address.size());
        // Mostly parts that leave room for the others, now and then one
        // longer than a whole message may be.
        const uint32_t room = (length & 0x80U) != 0 ? bounds_.max_text_bytes + 8 : bounds_.max_text_bytes / 4 + 2;
        const std::string text = text_of((length & 0x7FU) % room, fill, part.coding == SMS_CONTENT_8BIT);
        part.text = text.data();
        part.text_length = static_cast<uint32_t>(text.size());
        ++offered_parts_;
        offered_bytes_ += text.size();

        // A small record first, so a text that does not fit is tried again.
        char small[8], large[2048];
        sms_reasm_message out;
        out.text = small;
        out.text_capacity = (flags & 0x40U) != 0 ? sizeof small : sizeof large;
        if (out.text_capacity == sizeof large) out.text = large;
        const int expected = predict(part);
        int result = sms_reasm_add(store_, &part, now_, &out);
        if (result == SMS_REASM_TEXT_TOO_LONG) {
            if (out.text_length < out.text_capacity) fail("too long, yet it fits");
            out.text = large;
            out.text_capacity = sizeof large;
            result = sms_reasm_add(store_, &part, now_, &out);
        }
        if (result != expected)
            fail("answered " + std::to_string(result) + " where " + std::to_string(expected) + " was due");
        if (!new_entry_.first.empty()) model_.insert(new_entry_);
        new_entry_ = std::pair<std::string, Pending>();
        switch (result) {
        case SMS_REASM_STORED:
        case SMS_REASM_FULL:
            break;
        case SMS_REASM_COMPLETE:
            if (out.missing_count != 0 || out.part_count != out.total) fail("a complete message lacks parts");
            count_out(out, joined_parts_, joined_bytes_);
            ++joined_messages_;
            break;
        case SMS_REASM_DUPLICATE:
        case SMS_REASM_REFUSED:
            ++rejected_parts_;
            rejected_bytes_ += text.size();
            break;
        default:
            fail("unexpected result " + std::to_string(result));
        }
    }

    void save_and_load()
    {
        sms_reasm_stats before{}, after{};
        sms_reasm_get_stats(store_, &before);
        std::vector<uint8_t> image(sms_reasm_state_size(store_));
        std::size_t written = 0;
        if (sms_reasm_save_state(store_, now_, image.data(), image.size(), &written) != 0 || written != image.size()) {
            fail("save refused");
            return;
        }
        fresh_store();
        if (sms_reasm_load_state(store_, now_, image.data(), image.size()) != 0) fail("load refused a saved state");
        sms_reasm_get_stats(store_, &after);
        if (std::memcmp(&before, &after, sizeof before) != 0) fail("load changed the pending counts");
    }

    void step()
    {
        switch (next() % 8) {
        case 5:
            now_ += next();
            if (sms_reasm_expire(store_, now_) < 0) fail("expire failed");
            for (const auto &entry : model_) {
                if (bounds_.timeout != 0 && now_ - entry.second.first >= bounds_.timeout) {
                    fail("a message outlived its time");
                }
            }
            break;
        case 6:
            save_and_load();
            break;
        case 7: {
            visited_parts_ = 0;
            sms_reasm_stats stats{};
            sms_reasm_get_stats(store_, &stats);
            if (sms_reasm_visit(store_) != static_cast<int>(stats.pending_messages) ||
                visited_parts_ != stats.pending_parts) {
                fail("visit does not show what is pending");
            }
            break;
        }
        default:
            add();
        }
        check_books();
    }

    void check_books()
    {
        sms_reasm_stats stats{};
        sms_reasm_get_stats(store_, &stats);
        if (stats.pending_messages > bounds_.max_messages) fail("more pending than the store holds");
        if (offered_parts_ != joined_parts_ + handed_parts_ + rejected_parts_ + stats.pending_parts) {
            fail("a part went missing");
        }
        if (offered_bytes_ != joined_bytes_ + handed_bytes_ + rejected_bytes_ + stats.pending_bytes) {
            fail("a text byte went missing");
        }
    }

    Bounds bounds_;
    sms_reasm_config config_{};
    std::vector<uint64_t> storage_;  // 8-byte aligned
    sms_reasm_store *store_ = nullptr;
    const uint8_t *data_ = nullptr;
    std::size_t size_ = 0, pos_ = 0;
    uint64_t now_ = 1000;
    unsigned joined_messages_ = 0;
    unsigned offered_parts_ = 0, joined_parts_ = 0, handed_parts_ = 0, rejected_parts_ = 0, visited_parts_ = 0;
    unsigned long offered_bytes_ = 0, joined_bytes_ = 0, handed_bytes_ = 0, rejected_bytes_ = 0;
    std::string problem_;
    std::map<std::string, Pending> model_;
    std::pair<std::string, Pending> new_entry_;
    unsigned arrivals_ = 0;
};

}  // namespace reassembly_driver
