// The long-message store: scripted arrivals (order, duplicates, keys,
// surrogate pairs cut between parts, expiry, eviction, refusals), its
// bounds, the saved state and the records of the message interface.
#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "../fuzz/reassembly_driver.hpp"
#include "reassembly/checksum.hpp"
#include "smsutil/smsutil.h"
#include "support/support.hpp"

namespace {

struct PartWanted {
    const char *from = "+111";
    uint16_t reference = 7;
    uint8_t total = 3;
    uint8_t number = 1;
    const char *text = "";
    uint8_t bits = 8;
    uint8_t kind = SMS_REASM_RECEIVED;
    uint8_t concatenated = 1;
};

sms_reasm_part make_part(const PartWanted &wanted)
{
    sms_reasm_part part;
    std::memset(&part, 0, sizeof part);
    part.kind = wanted.kind;
    part.concatenated = wanted.concatenated;
    part.reference_bits = wanted.bits;
    part.reference = wanted.reference;
    part.total = wanted.total;
    part.number = wanted.number;
    std::strcpy(part.address, wanted.from);
    part.time.year = static_cast<uint16_t>(2000 + wanted.number);
    part.text = wanted.text;
    part.text_length = static_cast<uint32_t>(std::strlen(wanted.text));
    return part;
}

// "done +111 7: 'abc'", "expired +111 7 missing 2: 'ac'": what a test expects
// to see of a message, in one line.
std::string describe(const char *what, const sms_reasm_message &m)
{
    std::string line = std::string(what) + " " + m.address + " " + std::to_string(m.reference);
    if (m.missing_count != 0) {
        line += " missing";
        for (unsigned k = 0; k < m.missing_count; ++k) line += " " + std::to_string(m.missing[k]);
    }
    return line + ": '" + std::string(m.text, m.text_length) + "' " + std::to_string(m.time.year) + ";";
}

struct Store {
    explicit Store(uint32_t messages = 4, uint32_t parts = 4, uint32_t text = 64, uint32_t timeout = 60)
    {
        config = {messages, parts, text, timeout, &Store::on_handover, this};
        buffer.resize(sms_reasm_storage_size(&config) / 8 + 1);
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), buffer.size() * 8, &config), 0);
        out.text = text_buffer;
        out.text_capacity = sizeof text_buffer;
    }
    static void on_handover(void *context, const sms_reasm_message *m, int reason)
    {
        static const char *const names[] = {"pending", "expired", "evicted"};
        auto *self = static_cast<Store *>(context);
        ++self->handed_over;
        if (self->describing) self->log += describe(names[reason], *m);
    }
    int add(const PartWanted &wanted, uint64_t now = 0)
    {
        const sms_reasm_part part = make_part(wanted);
        const int result = sms_reasm_add(store, &part, now, &out);
        if (result == SMS_REASM_COMPLETE && describing) log += describe("done", out);
        return result;
    }
    std::vector<uint8_t> saved(uint64_t now) const
    {
        std::vector<uint8_t> image(sms_reasm_state_size(store));
        size_t written = 0;
        EXPECT_EQ(sms_reasm_save_state(store, now, image.data(), image.size(), &written), 0);
        EXPECT_EQ(written, image.size());
        return image;
    }
    sms_reasm_stats stats() const
    {
        sms_reasm_stats s{};
        sms_reasm_get_stats(store, &s);
        return s;
    }

    sms_reasm_config config{};
    std::vector<uint64_t> buffer;
    sms_reasm_store *store = nullptr;
    char text_buffer[256];
    sms_reasm_message out{};
    std::string log;
    bool describing = true;  // off where a test counts heap allocations
    int handed_over = 0;
};

struct Step {
    PartWanted part;
    uint64_t now;
    int result;  // of the add, or the count expired when expire is set
    bool expire = false;
};

constexpr int STORED = SMS_REASM_STORED, DONE = SMS_REASM_COMPLETE, REFUSED = SMS_REASM_REFUSED;

// Each script ends with the messages completed or handed over, in order.
struct Script {
    const char *name;
    uint32_t messages;
    std::vector<Step> steps;
    const char *log;
};

TEST(Reassembly, ScriptedArrivals)
{
    // ED A0 BD and ED B8 80: the halves U+D83D and U+DE00 of U+1F600 as the
    // message interface writes them, one three-byte sequence each.
    const Script scripts[] = {
        {"out of order, duplicate",
         4,
         {{{.number = 3, .text = "c"}, 5, STORED},
          {{.number = 1, .text = "a"}, 6, STORED},
          {{.number = 1, .text = "x"}, 7, SMS_REASM_DUPLICATE},
          {{.number = 2, .text = "b"}, 8, DONE}},
         "done +111 7: 'abc' 2001;"},
        {"keys keep messages apart",
         8,
         {{{.total = 2, .number = 1, .text = "a"}, 0, STORED},
          {{.from = "+222", .total = 2, .number = 1, .text = "x"}, 0, STORED},
          {{.reference = 8, .total = 2, .number = 2, .text = "q"}, 0, STORED},
          {{.total = 2, .number = 2, .text = "w", .bits = 16}, 0, STORED},
          {{.total = 2, .number = 2, .text = "o", .kind = SMS_REASM_STORED_OUTGOING}, 0, STORED},
          {{.total = 3, .number = 2, .text = "t"}, 0, STORED},
          {{.from = "+222", .total = 2, .number = 2, .text = "y"}, 0, DONE},
          {{.total = 2, .number = 2, .text = "b"}, 0, DONE}},
         "done +222 7: 'xy' 2001;done +111 7: 'ab' 2001;"},
        {"16-bit reference and an emoji cut between parts",
         4,
         {{{.reference = 0x1234, .total = 2, .number = 2, .text = "\xED\xB8\x80!", .bits = 16}, 0, STORED},
          {{.reference = 0x1234, .total = 2, .number = 1, .text = "hi \xED\xA0\xBD", .bits = 16}, 0, DONE}},
         "done +111 4660: 'hi \xF0\x9F\x98\x80!' 2001;"},
        {"lone halves become replacement characters",
         4,
         {{{.text = "\xED\xB8\x80"
                    "a\xED\xA0\xBD",
            .concatenated = 0},
           0,
           DONE},
          {{.number = 1, .text = "x\xED\xA0\xBD"}, 0, STORED},
          {{.number = 3, .text = "\xED\xB8\x80y"}, 10, STORED},
          {{}, 59, 0, true},
          {{}, 60, 1, true}},
         "done +111 0: '\xEF\xBF\xBD"
         "a\xEF\xBF\xBD' 2001;expired +111 7 missing 2: 'x\xEF\xBF\xBD\xEF\xBF\xBDy' 2001;"},
        {"a full store evicts the oldest",
         2,
         {{{.from = "+1", .total = 2, .number = 2, .text = "a2"}, 0, STORED},
          {{.from = "+2", .total = 2, .number = 1, .text = "b1"}, 1, STORED},
          {{.from = "+3", .total = 2, .number = 1, .text = "c1"}, 2, SMS_REASM_FULL},
          {{.from = "+1", .total = 2, .number = 1, .text = "a1"}, 3, SMS_REASM_FULL},
          {{.from = "+3", .total = 2, .number = 2, .text = "c2"}, 4, DONE}},
         "evicted +1 7 missing 1: 'a2' 2002;evicted +2 7 missing 2: 'b1' 2001;done +3 7: 'c1c2' 2001;"},
        // Four parts of at most 16 bytes each: each refusal changes nothing.
        {"refused parts",
         4,
         {{{.number = 0}, 0, REFUSED},
          {{.number = 4}, 0, REFUSED},
          {{.total = 0, .number = 0}, 0, REFUSED},
          {{.total = 5, .number = 5}, 0, REFUSED},
          {{.text = "seventeen bytes.."}, 0, REFUSED},
          {{.number = 1, .text = "sixteen bytes..."}, 0, STORED},
          {{.number = 2, .text = "!"}, 0, REFUSED},
          {{.number = 2, .text = ""}, 0, STORED},
          {{.total = 1, .number = 1, .text = "single"}, 0, DONE}},
         "done +111 7: 'single' 2001;"}};
    for (const Script &script : scripts) {
        SCOPED_TRACE(script.name);
        Store s(script.messages, 4, 16, 60);
        int k = 0;
        for (const Step &step : script.steps) {
            const int result = step.expire ? sms_reasm_expire(s.store, step.now) : s.add(step.part, step.now);
            EXPECT_EQ(result, step.result) << "step " << k++;
        }
        EXPECT_EQ(s.log, script.log);
    }
}

TEST(Reassembly, StorageIsCheckedBeforeUse)
{
    const auto handover = [](void *, const sms_reasm_message *, int) {};
    struct Case {
        sms_reasm_config config;
        int result;
    };
    const Case cases[] = {{{0, 4, 64, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{65537, 4, 64, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{4, 0, 64, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{4, 256, 64, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{4, 4, 0, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{4, 4, (1U << 20) + 1, 0, handover, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{4, 4, 64, 0, nullptr, nullptr}, SMS_REASM_ERR_ARGUMENT},
                          {{1, 255, 1U << 20, 0, handover, nullptr}, 0}};
    for (const Case &c : cases) {
        const size_t size = sms_reasm_storage_size(&c.config);
        EXPECT_EQ(size == 0, c.config.handover != nullptr && c.result != 0);
        std::vector<uint64_t> buffer(size / 8 + 2);
        sms_reasm_store *store = nullptr;
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), size, &c.config), c.result) << c.config.max_messages;
        if (c.result != 0) continue;
        EXPECT_EQ(sms_reasm_init(&store, buffer.data(), size - 1, &c.config), SMS_REASM_ERR_TOO_SMALL);
        EXPECT_EQ(sms_reasm_init(&store, reinterpret_cast<char *>(buffer.data()) + 4, size, &c.config),
                  SMS_REASM_ERR_ALIGNMENT);
    }
}

TEST(Reassembly, TextTooLongForTheRecordChangesNothing)
{
    Store s;
    s.add({.total = 2, .number = 1, .text = "abc"});
    const sms_reasm_stats before = s.stats();
    s.out.text_capacity = 5;  // "abcde" needs its NUL too
    EXPECT_EQ(s.add({.total = 2, .number = 2, .text = "de"}), SMS_REASM_TEXT_TOO_LONG);
    EXPECT_EQ(s.out.text_length, 5U);
    const sms_reasm_stats unchanged = s.stats();
    EXPECT_EQ(std::memcmp(&before, &unchanged, sizeof before), 0);
    s.out.text_capacity = 6;
    EXPECT_EQ(s.add({.total = 2, .number = 2, .text = "de"}), SMS_REASM_COMPLETE);
    EXPECT_STREQ(s.out.text, "abcde");
    EXPECT_EQ(s.stats().pending_parts, 0U);
}

// Saved at 150 with ages 50 and 20, loaded after a restart whose clock
// starts again at 10: the parts keep their ages and their text.
TEST(Reassembly, SavedStateSurvivesARestart)
{
    Store before;
    before.add({.from = "+1", .number = 3, .text = "c"}, 100);
    before.add({.from = "+1", .number = 2, .text = "b"}, 110);
    before.add({.from = "+2", .number = 1, .text = "x"}, 130);
    const std::vector<uint8_t> image = before.saved(150);
    std::vector<uint8_t> short_buffer(image.size() - 1);
    size_t written = 0;
    EXPECT_EQ(sms_reasm_save_state(before.store, 150, short_buffer.data(), short_buffer.size(), &written),
              SMS_REASM_ERR_TOO_SMALL);

    Store after;
    ASSERT_EQ(sms_reasm_load_state(after.store, 10, image.data(), image.size()), 0);
    EXPECT_EQ(sms_reasm_load_state(after.store, 10, image.data(), image.size()), SMS_REASM_ERR_NOT_EMPTY);
    EXPECT_EQ(after.add({.from = "+1", .number = 2, .text = "b"}, 11), SMS_REASM_DUPLICATE);
    EXPECT_EQ(sms_reasm_expire(after.store, 19), 0);
    EXPECT_EQ(sms_reasm_expire(after.store, 20), 1);
    EXPECT_EQ(after.add({.from = "+2", .number = 2, .text = "y"}, 20), SMS_REASM_STORED);
    EXPECT_EQ(after.add({.from = "+2", .number = 3, .text = "z"}, 21), SMS_REASM_COMPLETE);
    EXPECT_EQ(after.log, "expired +1 7 missing 1: 'bc' 2002;done +2 7: 'xyz' 2001;");

    // A store with smaller bounds cannot take these messages.
    Store narrow(1, 4, 64, 60);
    EXPECT_EQ(sms_reasm_load_state(narrow.store, 10, image.data(), image.size()), SMS_REASM_ERR_STATE_FIT);
    EXPECT_EQ(narrow.stats().pending_messages, 0U);
}

TEST(Reassembly, DamagedStateIsRefusedWhole)
{
    Store before;
    before.add({.from = "+1", .number = 3, .text = "c"});
    before.add({.from = "+2", .number = 1, .text = "x"});
    const std::vector<uint8_t> image = before.saved(0);
    Store after;
    for (size_t n = 0; n < image.size(); ++n) {
        EXPECT_EQ(sms_reasm_load_state(after.store, 0, image.data(), n), SMS_REASM_ERR_STATE_DAMAGED) << n;
        std::vector<uint8_t> flipped = image;
        flipped[n] ^= 0x01;
        const int result = sms_reasm_load_state(after.store, 0, flipped.data(), flipped.size());
        EXPECT_TRUE(result == SMS_REASM_ERR_STATE_DAMAGED ||
                    ((n == 4 || n == 5) && result == SMS_REASM_ERR_STATE_VERSION))
            << n;
        ASSERT_EQ(after.stats().pending_messages, 0U) << n;
    }
}

// Images that pass their checksum but cannot have been saved by a store:
// one byte changed, the checksum made right again.  Offsets of the one
// message saved: 17 reference bits, 18 total, 19 parts held, 23 address,
// 35 the part whose time stamp is kept, 44 and 49 the two part numbers.
TEST(Reassembly, ForgedStateIsRefusedWhole)
{
    Store before;
    before.add({.from = "+1", .number = 1, .text = "a"});
    before.add({.from = "+1", .number = 3, .text = "c"});
    const std::vector<uint8_t> image = before.saved(0);
    ASSERT_EQ(image.size(), 58U);
    struct Edit {
        size_t offset;
        uint8_t value;
        int result;
    };
    for (const Edit &e : {Edit{12, 2, SMS_REASM_ERR_STATE_DAMAGED}, Edit{16, 2, SMS_REASM_ERR_STATE_DAMAGED},
                          Edit{17, 7, SMS_REASM_ERR_STATE_DAMAGED}, Edit{18, 1, SMS_REASM_ERR_STATE_DAMAGED},
                          Edit{18, 5, SMS_REASM_ERR_STATE_FIT}, Edit{19, 3, SMS_REASM_ERR_STATE_DAMAGED},
                          Edit{23, 0, SMS_REASM_ERR_STATE_DAMAGED}, Edit{35, 3, SMS_REASM_ERR_STATE_DAMAGED},
                          Edit{49, 1, SMS_REASM_ERR_STATE_DAMAGED}, Edit{49, 4, SMS_REASM_ERR_STATE_DAMAGED}}) {
        std::vector<uint8_t> forged = image;
        forged[e.offset] = e.value;
        const uint32_t crc = smsutil::reassembly::crc32(forged.data(), forged.size() - 4);
        for (int k = 0; k < 4; ++k)
            forged[forged.size() - 4 + static_cast<size_t>(k)] = static_cast<uint8_t>(crc >> (8 * k));
        Store after;
        EXPECT_EQ(sms_reasm_load_state(after.store, 0, forged.data(), forged.size()), e.result) << e.offset;
        EXPECT_EQ(after.stats().pending_messages, 0U) << e.offset;
    }
}

TEST(Reassembly, NeverTouchesTheHeap)
{
    Store s(2, 4, 64, 60);
    s.describing = false;
    std::vector<uint8_t> image(4096);
    size_t written = 0;
    smsutil::test::AllocationScope scope;
    s.add({.from = "+1", .number = 1, .text = "a"});
    s.add({.from = "+2", .number = 1, .text = "b"});
    s.add({.from = "+3", .number = 1, .text = "c"});
    sms_reasm_save_state(s.store, 0, image.data(), image.size(), &written);
    sms_reasm_expire(s.store, 100);
    sms_reasm_load_state(s.store, 0, image.data(), written);
    s.add({.from = "+3", .number = 2, .text = "d"});
    s.add({.from = "+3", .number = 3, .text = "e"});
    EXPECT_EQ(scope.allocations(), 0U);
    EXPECT_EQ(s.handed_over, 3);
    EXPECT_EQ(std::string(s.out.text, s.out.text_length), "cde");
}

// The whole path from PDUs through ParseSms is run by the join command's tests.
TEST(Reassembly, PartsFromTheMessageInterface)
{
    struct Case {
        uint32_t state, flag;
        uint16_t mr;
        uint8_t kind, concatenated, bits;
        bool record;  // through the decoder's record instead of an SmsMessage
    };
    for (const Case &c :
         {Case{1, 1, 92, SMS_REASM_RECEIVED, 1, 8, false}, Case{3, 1, 0x1234, SMS_REASM_STORED_OUTGOING, 1, 16, false},
          Case{2, 0, 5, SMS_REASM_STORED_OUTGOING, 0, 0, false},
          Case{2, 1, 0x34, SMS_REASM_STORED_OUTGOING, 1, 16, true}}) {
        SmsMessage m{};
        m.state = c.state;
        m.sms_flag_type = c.flag;
        m.mr = c.mr;
        sms_pdu_record r{};
        r.kind = c.state >= 2 ? SMS_PDU_SUBMIT : SMS_PDU_DELIVER;
        r.has_concatenation = static_cast<uint8_t>(c.flag);
        r.concatenation_16bit = c.bits == 16;
        r.concatenation_reference = c.mr;
        sms_reasm_part part;
        ASSERT_EQ(c.record ? sms_reasm_part_from_record(&r, &part) : sms_reasm_part_from_message(&m, &part), 0);
        EXPECT_EQ(part.kind, c.kind);
        EXPECT_EQ(part.concatenated, c.concatenated);
        EXPECT_EQ(part.reference_bits, c.bits);
        EXPECT_EQ(part.reference, c.concatenated ? c.mr : 0);
    }
}

// A fixed run of 10,000 parts from 50 senders, plus the fuzz seeds: every
// part and byte offered comes out joined, handed over, rejected or pending.
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

    const std::filesystem::path seeds = std::string(SMSUTIL_SOURCE_DIR) + "/fuzz/corpus/reassembly_fuzz";
    for (const auto &entry : std::filesystem::directory_iterator(seeds)) {
        std::ifstream in(entry.path(), std::ios::binary);
        const std::vector<uint8_t> seed{std::istreambuf_iterator<char>(in), {}};
        EXPECT_EQ(reassembly_driver::Driver({}).run(seed.data(), seed.size()), "") << entry.path();
    }
}

}  // namespace
