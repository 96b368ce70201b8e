// Choosing the alphabet and national tables of a text, and cutting it into
// parts.
#include "pdu/encode_plan.hpp"

#include <array>

namespace smsutil::pdu {
namespace {

// The main tables a locking shift can select (Spanish has none of its own)
// and the tables a single shift can select; bit i of a character's mask
// says whether table i holds it, locking tables in bits 0-2, single-shift
// tables in bits 3-6.
inline constexpr std::array<std::uint8_t, 3> kLockingChoices = {kDefaultLanguage, kTurkish, kPortuguese};
inline constexpr std::array<std::uint8_t, 4> kSingleChoices = {kDefaultLanguage, kTurkish, kSpanish, kPortuguese};
inline constexpr unsigned kMaskCount = 1u << (kLockingChoices.size() + kSingleChoices.size());

constexpr unsigned locking_bit(std::uint8_t language)
{
    for (unsigned i = 0; i < kLockingChoices.size(); ++i)
        if (kLockingChoices[i] == language) return 1u << i;
    return 0;
}
constexpr unsigned single_bit(std::uint8_t language) { return 1u << (kLockingChoices.size() + language); }

constexpr unsigned table_mask(const Codes &codes)
{
    unsigned mask = 0;
    for (const std::uint8_t id : kLockingChoices)
        if (codes.locking[id] != kNoCode) mask |= locking_bit(id);
    for (const std::uint8_t id : kSingleChoices)
        if (codes.single[id] != kNoCode) mask |= single_bit(id);
    return mask;
}

// Most text is Latin-1, whose masks are worked out once at compile time.
inline constexpr auto kLatin1Masks = [] {
    std::array<std::uint8_t, 256> masks{};
    for (char32_t cp = 0; cp < masks.size(); ++cp) masks[cp] = static_cast<std::uint8_t>(table_mask(codes_of(cp)));
    return masks;
}();

constexpr unsigned mask_of(char32_t cp)
{
    return cp < kLatin1Masks.size() ? kLatin1Masks[cp] : table_mask(codes_of(cp));
}

// Every table combination in the order that breaks ties between equal
// part counts: the default alphabet; one shift element (single shifts
// first, since a receiver without the language still reads every other
// character right); then two; lower language identifiers first.
struct Tables {
    std::uint8_t locking;
    std::uint8_t single;
};
inline constexpr std::array<Tables, 12> kCandidates = {{
    {kDefaultLanguage, kDefaultLanguage},
    {kDefaultLanguage, kTurkish},
    {kDefaultLanguage, kSpanish},
    {kDefaultLanguage, kPortuguese},
    {kTurkish, kDefaultLanguage},
    {kPortuguese, kDefaultLanguage},
    {kTurkish, kTurkish},
    {kTurkish, kSpanish},
    {kTurkish, kPortuguese},
    {kPortuguese, kTurkish},
    {kPortuguese, kSpanish},
    {kPortuguese, kPortuguese},
}};

// The characters of a text counted by the tables that hold them: enough to
// tell, for every combination, whether it holds the text and how many
// septets it takes, without reading the text again.
struct Census {
    std::array<std::uint32_t, kMaskCount> count{};
    std::array<std::uint8_t, kMaskCount> masks{};  // the masks seen, in order of appearance
    std::size_t distinct = 0;
    std::size_t characters = 0;
    std::size_t supplementary = 0;  // characters beyond U+FFFF: a surrogate pair in UCS-2
};

bool take_census(std::span<const std::uint8_t> text, Census &census)
{
    std::size_t pos = 0;
    char32_t cp = 0;
    while (pos < text.size()) {
        if (!next_code_point(text, pos, cp)) return false;
        ++census.characters;
        if (cp > 0xFFFF) ++census.supplementary;
        const unsigned mask = mask_of(cp);
        if (census.count[mask]++ == 0) census.masks[census.distinct++] = static_cast<std::uint8_t>(mask);
    }
    return true;
}

// Septets the combination takes, and how many of the characters need the
// escape; false when a character is in neither table.
bool septets_of(const Census &census, Tables tables, std::size_t &septets, std::size_t &escaped)
{
    const unsigned lock = locking_bit(tables.locking);
    const unsigned single = single_bit(tables.single);
    escaped = 0;
    for (std::size_t i = 0; i < census.distinct; ++i) {
        const unsigned mask = census.masks[i];
        if ((mask & lock) != 0) continue;
        if ((mask & single) == 0) return false;
        escaped += census.count[mask];
    }
    septets = census.characters + escaped;
    return true;
}

constexpr std::size_t ceil_div(std::size_t a, std::size_t b) { return (a + b - 1) / b; }

// Parts `units` would take if every part were filled to its last unit.
std::size_t fewest_parts(Plan plan, std::size_t units)
{
    plan.parts = 1;
    if (units <= part_capacity(plan)) return 1;
    plan.parts = 2;
    return ceil_div(units, part_capacity(plan));
}

// Parts for `units` in all, `doubles` of them in characters of two units.
// Greedy cutting loses at most one unit at the end of a part, so the count
// lies between the quotients by the capacity and by one less; only when
// they differ is the text cut for real.
std::size_t count_parts(std::span<const std::uint8_t> text, Plan plan, std::size_t units, std::size_t doubles)
{
    const std::size_t fewest = fewest_parts(plan, units);
    if (fewest == 1 || doubles == 0) return fewest;
    plan.parts = 2;
    if (fewest == ceil_div(units, part_capacity(plan) - 1)) return fewest;
    Cutter cutter(text, plan);
    Cutter::Piece piece;
    std::size_t parts = 0;
    while (cutter.next(piece)) ++parts;
    return parts;
}

}  // namespace

bool make_plan(std::span<const std::uint8_t> text, unsigned languages, bool reference_16bit, Plan &plan)
{
    Census census;
    if (!take_census(text, census)) return false;
    const auto allowed = [languages](std::uint8_t id) {
        return id == kDefaultLanguage || (languages & (1u << id)) != 0;
    };

    Plan candidate;
    candidate.concatenation_octets = reference_16bit ? 6 : 5;
    bool found = false;
    for (const Tables tables : kCandidates) {
        if (!allowed(tables.locking) || !allowed(tables.single)) continue;
        std::size_t septets = 0;
        std::size_t escaped = 0;
        if (!septets_of(census, tables, septets, escaped)) continue;
        candidate.locking = tables.locking;
        candidate.single = tables.single;
        // The default alphabet is taken whenever it holds the text: every
        // receiver reads it.
        if (tables.locking == kDefaultLanguage && tables.single == kDefaultLanguage) {
            plan = candidate;
            plan.parts = count_parts(text, candidate, septets, escaped);
            return true;
        }
        // A combination that cannot beat the best so far even with full
        // parts is not cut.
        if (found && fewest_parts(candidate, septets) >= plan.parts) continue;
        const std::size_t parts = count_parts(text, candidate, septets, escaped);
        if (found && parts >= plan.parts) continue;
        plan = candidate;
        plan.parts = parts;
        found = true;
    }
    if (found) return true;

    // UCS-2 takes at most 16 bits a character; 7-bit national text at most
    // 14 and a few header octets, which never makes more parts, so UCS-2 is
    // only the way out for characters no allowed table holds.
    plan = Plan{};
    plan.coding = Coding::kUcs2;
    plan.concatenation_octets = candidate.concatenation_octets;
    plan.parts = count_parts(text, plan, census.characters + census.supplementary, census.supplementary);
    return true;
}

bool Cutter::next(Piece &piece)
{
    if (started_ && pos_ >= text_.size()) return false;
    started_ = true;
    const std::size_t capacity = part_capacity(plan_);
    piece = Piece{pos_, pos_, 0};
    while (pos_ < text_.size()) {
        std::size_t after = pos_;
        char32_t cp = 0;
        // The text was checked before it is cut; a malformed rest would end
        // the part rather than be read past.
        if (!next_code_point(text_, after, cp)) break;
        const unsigned units = units_of(plan_, cp);
        if (piece.units + units > capacity) break;
        piece.units += units;
        pos_ = after;
    }
    piece.end = pos_;
    // A part that takes nothing of a text not yet used up would repeat.
    return piece.units != 0 || pos_ >= text_.size();
}

}  // namespace smsutil::pdu
