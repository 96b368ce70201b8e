// The long-message store: scripted arrivals (order, duplicates, keys,
// surrogate pairs cut between parts, expiry, eviction, refusals, saved
// state; tests/data/reassembly_scripts.txt), its bounds, damaged and forged
// states and the records of the message interface.
#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <tuple>
#include <vector>

#include "../fuzz/reassembly_driver.hpp"
#include "reassembly/checksum.hpp"
#include "smsutil/smsutil.h"
#include "support/support.hpp"

namespace {

// "done +111 7: 'abc' 2001", "expired +111 7 missing 2: 'ac' 2001": a message
// in one line, with the year of the part whose time stamp it kept.
std::string describe(const char *what, const sms_reasm_message &m)
{
    std::string line = std::string(what) + " " + m.address + " " + std::to_string(m.reference);
    if (m.missing_count != 0) {
        line += " missing";
        for (unsigned k = 0; k < m.missing_count; ++k) line += " " + std::to_string(m.missing[k]);
    }
    return line + ": '" + std::string(m.text, m.text_length) + "' " + std::to_string(m.time.year) + "\n";
}

struct Store {
    // Four parts of at most 16 bytes each, a 60-second timeout.
    explicit Store(uint32_t messages = 4)
    {
        config = {messages, 4, 16, 60, &Store::on_handover, this};
        buffer.resize(sms_reasm_storage_size(&config) / 8 + 1);
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), buffer.size() * 8, &config), 0);
        out.text = text_buffer;
        out.text_capacity = sizeof text_buffer;
    }
    static void on_handover(void *context, const sms_reasm_message *m, int reason)
    {
        static const char *const names[] = {"pending", "expired", "evicted"};
        auto *self = static_cast<Store *>(context);
        if (self->describing) self->log += describe(names[reason], *m);
    }
    int add(const sms_reasm_part &part, uint64_t now = 0)
    {
        const int result = sms_reasm_add(store, &part, now, &out);
        if (result == SMS_REASM_COMPLETE && describing) log += describe("done", out);
        return result;
    }
    static sms_reasm_part part(const std::string &from, uint16_t reference, uint8_t bits, uint8_t number, uint8_t total,
                               uint8_t kind, uint8_t concatenated, const char *text)
    {
        sms_reasm_part p = {kind,      concatenated, bits, total, number, 0,
                            reference, {},           {},   {},    text,   static_cast<uint32_t>(std::strlen(text))};
        std::strcpy(p.address, from.c_str());
        p.time.year = static_cast<uint16_t>(2000 + number);
        return p;
    }
    std::vector<uint8_t> saved(uint64_t now) const
    {
        std::vector<uint8_t> image(sms_reasm_state_size(store));
        size_t written = 0;
        EXPECT_EQ(sms_reasm_save_state(store, now, image.data(), image.size(), &written), 0);
        EXPECT_EQ(written, image.size());
        EXPECT_EQ(sms_reasm_save_state(store, now, image.data(), image.size() - 1, &written), SMS_REASM_ERR_TOO_SMALL);
        return image;
    }
    uint32_t pending() const
    {
        sms_reasm_stats s{};
        sms_reasm_get_stats(store, &s);
        return s.pending_messages;
    }

    sms_reasm_config config{};
    std::vector<uint64_t> buffer;
    sms_reasm_store *store = nullptr;
    char text_buffer[256];
    sms_reasm_message out{};
    std::string log;
    bool describing = true;  // off where a test counts heap allocations
};

std::string unescape(const std::string &s)
{
    std::string out;
    for (std::size_t i = 0; i < s.size(); ++i) {
        const bool escape = s.compare(i, 2, "\\x") == 0 && i + 3 < s.size();
        out += escape ? static_cast<char>(std::stoi(s.substr(i + 2, 2), nullptr, 16)) : s[i];
        i += escape ? 3 : 0;
    }
    return out;
}

TEST(Reassembly, ScriptedArrivals)
{
    // What an add gives, by name: 0 to 5 in this order.
    const std::vector<std::string> results = {"stored", "done", "duplicate", "refused", "full", "too_long"};
    std::istringstream file(smsutil::test::read_file(std::string(SMSUTIL_TEST_DATA_DIR) + "/reassembly_scripts.txt"));
    std::unique_ptr<Store> s;
    std::vector<uint8_t> image;
    std::string line, word, from, kind, result, text;
    while (std::getline(file, line)) {
        if (line.empty() || line[0] == '#') continue;
        SCOPED_TRACE(line);
        std::istringstream in(line);
        in >> word;
        if (word == ">") {
            std::getline(in >> std::ws, text);
            const std::size_t end = s->log.find('\n');
            EXPECT_EQ(s->log.substr(0, end), unescape(text));
            s->log.erase(0, end == std::string::npos ? end : end + 1);
            continue;
        }
        EXPECT_EQ(s ? s->log : "", "") << "handed over unexpectedly";
        int got = 0, want = 0;  // what the line does and what it states
        if (word == "store" && in >> want) s = std::make_unique<Store>(want), got = want;
        if (word == "capacity" && in >> want) s->out.text_capacity = static_cast<uint32_t>(want), got = want;
        if (word == "pending" && in >> want) got = static_cast<int>(s->pending());
        from.clear();
        if (std::isdigit(static_cast<unsigned char>(word[0])) != 0) in >> from;
        const uint64_t now = from.empty() ? 0 : std::stoull(word);
        if (from == "save") image = s->saved(now);
        if (from == "load" && in >> want) got = sms_reasm_load_state(s->store, now, image.data(), image.size());
        if (from == "expire" && in >> want) got = sms_reasm_expire(s->store, now);
        if (!from.empty() && from[0] == '+') {
            unsigned reference = 0, bits = 0, number = 0, total = 0;
            char slash = 0;
            in >> reference >> slash >> bits >> number >> slash >> total >> kind >> result >> std::ws;
            std::getline(in, text);
            text = unescape(text.substr(1, text.size() - 2));
            const uint8_t k = kind == "S" ? SMS_REASM_STORED_OUTGOING : SMS_REASM_RECEIVED;
            got = s->add(
                Store::part(from, static_cast<uint16_t>(reference), static_cast<uint8_t>(bits),
                            static_cast<uint8_t>(number), static_cast<uint8_t>(total), k, kind != "N", text.c_str()),
                now);
            want = static_cast<int>(std::find(results.begin(), results.end(), result) - results.begin());
        }
        EXPECT_EQ(got, want);
    }
    ASSERT_NE(s, nullptr);  // the file was found and read
    EXPECT_EQ(s->log, "");
}

TEST(Reassembly, StorageIsCheckedBeforeUse)
{
    const auto handover = [](void *, const sms_reasm_message *, int) {};
    constexpr int kBad = SMS_REASM_ERR_ARGUMENT;
    const std::pair<sms_reasm_config, int> cases[] = {
        {{0, 4, 64, 0, handover, nullptr}, kBad}, {{65537, 4, 64, 0, handover, nullptr}, kBad},
        {{4, 0, 64, 0, handover, nullptr}, kBad}, {{4, 256, 64, 0, handover, nullptr}, kBad},
        {{4, 4, 0, 0, handover, nullptr}, kBad},  {{4, 4, (1U << 20) + 1, 0, handover, nullptr}, kBad},
        {{4, 4, 64, 0, nullptr, nullptr}, kBad},  {{1, 255, 1U << 20, 0, handover, nullptr}, 0}};
    for (const auto &[config, result] : cases) {
        const size_t size = sms_reasm_storage_size(&config);
        EXPECT_EQ(size == 0, config.handover != nullptr && result != 0);
        std::vector<uint64_t> buffer(size / 8 + 2);
        sms_reasm_store *store = nullptr;
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), size, &config), result) << config.max_messages;
        if (result != 0) continue;
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), size - 1, &config), SMS_REASM_ERR_TOO_SMALL);
        EXPECT_EQ(sms_reasm_init(&store, reinterpret_cast<char *>(buffer.data()) + 4, size, &config),
                  SMS_REASM_ERR_ALIGNMENT);
    }
}

// Cut short or with a bit flipped, a saved image is refused whole.  So are
// images that pass their checksum but cannot have been saved by a store:
// one byte changed, the checksum made right again.  Offsets of the one
// message saved: 17 reference bits, 18 total, 19 parts held, 23 address,
// 35 the part whose time stamp is kept, 44 and 49 the two part numbers.
TEST(Reassembly, DamagedOrForgedStateIsRefusedWhole)
{
    Store before;
    before.add(Store::part("+1", 7, 8, 1, 3, SMS_REASM_RECEIVED, 1, "a"));
    before.add(Store::part("+1", 7, 8, 3, 3, SMS_REASM_RECEIVED, 1, "c"));
    const std::vector<uint8_t> image = before.saved(0);
    ASSERT_EQ(image.size(), 58U);
    Store damaged;
    for (size_t n = 0; n < image.size(); ++n) {
        EXPECT_EQ(sms_reasm_load_state(damaged.store, 0, image.data(), n), SMS_REASM_ERR_STATE_DAMAGED) << n;
        std::vector<uint8_t> flipped = image;
        flipped[n] ^= 0x01;
        const int result = sms_reasm_load_state(damaged.store, 0, flipped.data(), flipped.size());
        EXPECT_EQ(result, n == 4 || n == 5 ? SMS_REASM_ERR_STATE_VERSION : SMS_REASM_ERR_STATE_DAMAGED) << n;
        ASSERT_EQ(damaged.pending(), 0U) << n;
    }
    constexpr int kDamaged = SMS_REASM_ERR_STATE_DAMAGED;
    const std::tuple<size_t, uint8_t, int> edits[] = {
        {12, 2, kDamaged}, {16, 2, kDamaged}, {17, 7, kDamaged}, {18, 1, kDamaged}, {18, 5, SMS_REASM_ERR_STATE_FIT},
        {19, 3, kDamaged}, {23, 0, kDamaged}, {35, 3, kDamaged}, {49, 1, kDamaged}, {49, 4, kDamaged}};
    for (const auto &[offset, value, result] : edits) {
        std::vector<uint8_t> forged = image;
        forged[offset] = value;
        const uint32_t crc = smsutil::reassembly::crc32(forged.data(), forged.size() - 4);
        for (int k = 0; k < 4; ++k)
            forged[forged.size() - 4 + static_cast<size_t>(k)] = static_cast<uint8_t>(crc >> (8 * k));
        Store after;
        EXPECT_EQ(sms_reasm_load_state(after.store, 0, forged.data(), forged.size()), result) << offset;
        EXPECT_EQ(after.pending(), 0U) << offset;
    }
}

TEST(Reassembly, NeverTouchesTheHeap)
{
    Store s(2);
    s.describing = false;
    std::vector<uint8_t> image(4096);
    size_t written = 0;
    smsutil::test::AllocationScope scope;
    for (const char *from : {"+1", "+2", "+3"}) s.add(Store::part(from, 7, 8, 1, 3, SMS_REASM_RECEIVED, 1, "c"));
    sms_reasm_save_state(s.store, 0, image.data(), image.size(), &written);
    sms_reasm_expire(s.store, 100);
    sms_reasm_load_state(s.store, 0, image.data(), written);
    for (uint8_t n = 2; n <= 3; ++n) s.add(Store::part("+3", 7, 8, n, 3, SMS_REASM_RECEIVED, 1, n == 2 ? "d" : "e"));
    EXPECT_EQ(scope.allocations(), 0U);
    EXPECT_EQ(std::string(s.out.text, s.out.text_length), "cde");
}

// The whole path from PDUs through ParseSms is run by the join command's tests.
TEST(Reassembly, PartsFromTheMessageInterface)
{
    // State, concatenated flag and reference; the part's kind, concatenation and reference bits; whether
    // through the decoder's record instead of an SmsMessage.
    const std::tuple<uint32_t, uint32_t, uint16_t, uint8_t, uint8_t, uint8_t, bool> cases[] = {
        {1, 1, 92, SMS_REASM_RECEIVED, 1, 8, false},
        {3, 1, 0x1234, SMS_REASM_STORED_OUTGOING, 1, 16, false},
        {2, 0, 5, SMS_REASM_STORED_OUTGOING, 0, 0, false},
        {2, 1, 0x34, SMS_REASM_STORED_OUTGOING, 1, 16, true}};
    for (const auto &[state, flag, mr, kind, concatenated, bits, record] : cases) {
        SmsMessage m{};
        m.state = state, m.sms_flag_type = flag, m.mr = mr;
        sms_pdu_record r{};
        r.kind = state >= 2 ? SMS_PDU_SUBMIT : SMS_PDU_DELIVER;
        r.has_concatenation = static_cast<uint8_t>(flag), r.concatenation_16bit = bits == 16;
        r.concatenation_reference = mr;
        sms_reasm_part p;
        ASSERT_EQ(record ? sms_reasm_part_from_record(&r, &p) : sms_reasm_part_from_message(&m, &p), 0);
        EXPECT_EQ(std::vector<int>({p.kind, p.concatenated, p.reference_bits, p.reference}),
                  std::vector<int>({kind, concatenated, bits, concatenated ? mr : 0}));
    }
}

// A fixed run of 10,000 parts from 50 senders (the fuzz seeds are replayed
// with the corpora): every part and byte offered comes out joined, handed
// over, rejected or pending.
TEST(Reassembly, EveryPartIsAccountedFor)
{
    std::mt19937 random(19);
    std::vector<uint8_t> ops;
    for (int k = 0; k < 10000; ++k) {
        if (k % 97 == 0) ops.insert(ops.end(), {5, static_cast<uint8_t>(random() % 40)});
        if (k % 1000 == 999) ops.push_back(6);
        // Four-part messages under three references per sender, parts in
        // any order, now and then a number out of range or a long text.
        const auto r = [&random](unsigned n) { return static_cast<uint8_t>(random() % n); };
        const auto add = reassembly_driver::Driver::add_bytes(
            r(50), r(3), static_cast<uint8_t>(2 | (r(256) & 0x70)), r(20) == 0 ? r(8) : 4, r(5),
            r(20) == 0 ? static_cast<uint8_t>(0x80 | r(128)) : r(15), r(256), r(3));
        ops.insert(ops.end(), add.begin(), add.end());
    }
    reassembly_driver::Driver driver({128, 4, 64, 3600, 50});
    EXPECT_EQ(driver.run(ops.data(), ops.size()), "");
    EXPECT_EQ(driver.parts_offered(), 10000U);
    EXPECT_GT(driver.messages_joined(), 400U);
}

}  // namespace
