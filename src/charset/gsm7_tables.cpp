// The exported 7-bit code tables and, built from them at compile time, the
// reverse look-up used when text is turned into 7-bit codes.
#include <initializer_list>

#include "charset/gsm7_inverse.hpp"
#include "charset/gsm7_tables.hpp"

namespace {

using smsutil::charset::kCodeCount;
using smsutil::charset::kRowCount;

// The default alphabet; the escape position keeps its own code.
constexpr std::uint32_t kDefaultRow[kCodeCount] = {
    0x0040, 0x00A3, 0x0024, 0x00A5, 0x00E8, 0x00E9, 0x00F9, 0x00EC,  // 0x00
    0x00F2, 0x00C7, 0x000A, 0x00D8, 0x00F8, 0x000D, 0x00C5, 0x00E5,  // 0x08
    0x0394, 0x005F, 0x03A6, 0x0393, 0x039B, 0x03A9, 0x03A0, 0x03A8,  // 0x10
    0x03A3, 0x0398, 0x039E, 0x001B, 0x00C6, 0x00E6, 0x00DF, 0x00C9,  // 0x18
    0x0020, 0x0021, 0x0022, 0x0023, 0x00A4, 0x0025, 0x0026, 0x0027,  // 0x20
    0x0028, 0x0029, 0x002A, 0x002B, 0x002C, 0x002D, 0x002E, 0x002F,  // 0x28
    0x0030, 0x0031, 0x0032, 0x0033, 0x0034, 0x0035, 0x0036, 0x0037,  // 0x30
    0x0038, 0x0039, 0x003A, 0x003B, 0x003C, 0x003D, 0x003E, 0x003F,  // 0x38
    0x00A1, 0x0041, 0x0042, 0x0043, 0x0044, 0x0045, 0x0046, 0x0047,  // 0x40
    0x0048, 0x0049, 0x004A, 0x004B, 0x004C, 0x004D, 0x004E, 0x004F,  // 0x48
    0x0050, 0x0051, 0x0052, 0x0053, 0x0054, 0x0055, 0x0056, 0x0057,  // 0x50
    0x0058, 0x0059, 0x005A, 0x00C4, 0x00D6, 0x00D1, 0x00DC, 0x00A7,  // 0x58
    0x00BF, 0x0061, 0x0062, 0x0063, 0x0064, 0x0065, 0x0066, 0x0067,  // 0x60
    0x0068, 0x0069, 0x006A, 0x006B, 0x006C, 0x006D, 0x006E, 0x006F,  // 0x68
    0x0070, 0x0071, 0x0072, 0x0073, 0x0074, 0x0075, 0x0076, 0x0077,  // 0x70
    0x0078, 0x0079, 0x007A, 0x00E4, 0x00F6, 0x00F1, 0x00FC, 0x00E0,  // 0x78
};

// The default extension table.
constexpr std::uint32_t kDefaultExtRow[kCodeCount] = {
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x00
    0xFFFF, 0xFFFF, 0x000A, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x08
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x005E, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x10
    0xFFFF, 0xFFFF, 0xFFFF, 0x0020, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x18
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x20
    0x007B, 0x007D, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x005C,  // 0x28
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x30
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x005B, 0x007E, 0x005D, 0xFFFF,  // 0x38
    0x007C, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x40
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x48
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x50
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x58
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0x20AC, 0xFFFF, 0xFFFF,  // 0x60
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x68
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x70
    0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF, 0xFFFF,  // 0x78
};

// A national row is the default row with a handful of codes replaced.
struct Patch {
    std::uint8_t code;
    std::uint32_t value;
};

// Turkish locking shift: the escape position reads as a space.
constexpr Patch kTurkishMain[] = {{0x04, 0x20AC}, {0x07, 0x0131}, {0x0B, 0x011E}, {0x0C, 0x011F}, {0x1B, 0x0020},
                                  {0x1C, 0x015E}, {0x1D, 0x015F}, {0x40, 0x0130}, {0x60, 0x00E7}};
// Spanish has no locking-shift table of its own; only its escape position
// reads as a space.
constexpr Patch kSpanishMain[] = {{0x1B, 0x0020}};
constexpr Patch kTurkishExt[] = {{0x47, 0x011E}, {0x49, 0x0130}, {0x53, 0x015E}, {0x63, 0x00E7},
                                 {0x67, 0x011F}, {0x69, 0x0131}, {0x73, 0x015F}};
constexpr Patch kSpanishExt[] = {{0x09, 0x00E7}, {0x41, 0x00C1}, {0x49, 0x00CD}, {0x4F, 0x00D3}, {0x55, 0x00DA},
                                 {0x61, 0x00E1}, {0x69, 0x00ED}, {0x6F, 0x00F3}, {0x75, 0x00FA}};

struct Rows {
    std::uint32_t v[kRowCount][kCodeCount];
};

template <std::size_t N1, std::size_t N2>
constexpr Rows derive(const std::uint32_t (&base)[kCodeCount], const Patch (&row1)[N1], const Patch (&row2)[N2])
{
    Rows rows{};
    for (auto &row : rows.v)
        for (std::uint32_t c = 0; c < kCodeCount; ++c) row[c] = base[c];
    for (const Patch &p : row1) rows.v[1][p.code] = p.value;
    for (const Patch &p : row2) rows.v[2][p.code] = p.value;
    return rows;
}

constexpr Rows kMainRows = derive(kDefaultRow, kTurkishMain, kSpanishMain);
constexpr Rows kExtRows = derive(kDefaultExtRow, kTurkishExt, kSpanishExt);

}  // namespace

// The exported arrays are plain C arrays, so the derived rows are spelled
// out element by element here.
#define SMSUTIL_ROW8(t, r, b) \
    t.v[r][b], t.v[r][b + 1], t.v[r][b + 2], t.v[r][b + 3], t.v[r][b + 4], t.v[r][b + 5], t.v[r][b + 6], t.v[r][b + 7]
#define SMSUTIL_ROW(t, r)                                                                                     \
    {                                                                                                         \
        SMSUTIL_ROW8(t, r, 0), SMSUTIL_ROW8(t, r, 8), SMSUTIL_ROW8(t, r, 16), SMSUTIL_ROW8(t, r, 24),         \
            SMSUTIL_ROW8(t, r, 32), SMSUTIL_ROW8(t, r, 40), SMSUTIL_ROW8(t, r, 48), SMSUTIL_ROW8(t, r, 56),   \
            SMSUTIL_ROW8(t, r, 64), SMSUTIL_ROW8(t, r, 72), SMSUTIL_ROW8(t, r, 80), SMSUTIL_ROW8(t, r, 88),   \
            SMSUTIL_ROW8(t, r, 96), SMSUTIL_ROW8(t, r, 104), SMSUTIL_ROW8(t, r, 112), SMSUTIL_ROW8(t, r, 120) \
    }

extern "C" SMSUTIL_API constexpr std::uint32_t g_GSM_7BitTable[kRowCount][kCodeCount] = {
    SMSUTIL_ROW(kMainRows, 0), SMSUTIL_ROW(kMainRows, 1), SMSUTIL_ROW(kMainRows, 2)};

// The extension rows depart from the published single shift tables on
// purpose at three codes: 0x0A gives a line feed rather than a form feed (a
// page break means nothing on a handset), 0x0D has no character, and an
// escape after an escape reads as a space.
extern "C" SMSUTIL_API constexpr std::uint32_t g_GSM_7BitExtTable[kRowCount][kCodeCount] = {
    SMSUTIL_ROW(kExtRows, 0), SMSUTIL_ROW(kExtRows, 1), SMSUTIL_ROW(kExtRows, 2)};

#undef SMSUTIL_ROW
#undef SMSUTIL_ROW8

namespace smsutil::charset {
namespace {

constexpr int differing_codes(std::uint32_t row_a, std::uint32_t row_b)
{
    int n = 0;
    for (std::uint32_t c = 0; c < kCodeCount; ++c) n += g_GSM_7BitTable[row_a][c] != g_GSM_7BitTable[row_b][c] ? 1 : 0;
    return n;
}

constexpr bool main_rows_complete()
{
    for (const auto &row : g_GSM_7BitTable)
        for (std::uint32_t v : row)
            if (v == kNoCharacter) return false;
    return true;
}

// Every entry is a UCS-2 unit, so decoding never has to narrow a value.
constexpr bool all_units()
{
    for (const auto *table : {&g_GSM_7BitTable, &g_GSM_7BitExtTable})
        for (const auto &row : *table)
            for (std::uint32_t v : row)
                if (v > 0xFFFF) return false;
    return true;
}

// Line feed and carriage return are their own ASCII character too, but too
// rare to be worth a range; the escape only keeps its own code as a marker.
constexpr bool ascii_ranges_exact()
{
    for (std::uint32_t code = 0; code < kCodeCount; ++code) {
        bool plain = code >= kAsciiCodes.low && code <= kAsciiCodes.high;
        for (const CodeRange &r : kNotAscii) plain = plain && !(code >= r.low && code <= r.high);
        const bool same =
            g_GSM_7BitTable[GSM7_CODING_DEFAULT][code] == code && code != '\n' && code != '\r' && code != kEscape;
        if (plain != same) return false;
    }
    return true;
}

// Guards against a slip in the data above: the national rows are the
// default alphabet with a few well-known replacements.
static_assert(main_rows_complete() && all_units() && ascii_ranges_exact());
static_assert(differing_codes(0, 1) == 9);
static_assert(differing_codes(0, 2) == 1 && g_GSM_7BitTable[2][kEscape] == 0x0020);

constexpr inverse_detail::Mappings kMappings{g_GSM_7BitTable, g_GSM_7BitExtTable};
constexpr std::size_t kInversePages = paged::page_count(kMappings);
constexpr inverse_detail::InverseTable<kInversePages> kInverse =
    paged::build<kInversePages, kRowCount>(inverse_detail::kNotFound, kMappings);
static_assert(inverse_detail::is_exact(kInverse, g_GSM_7BitTable, g_GSM_7BitExtTable),
              "some character cannot be found again by the reverse look-up");

constexpr Utf8Code utf8_code(std::uint32_t unit)
{
    if (unit == 0 || unit == kEscape || unit >= kNoCharacter) return {{0, 0, 0}, 0};
    if (unit < 0x80) return {{static_cast<std::uint8_t>(unit), 0, 0}, 1};
    if (unit < 0x800)
        return {{static_cast<std::uint8_t>(0xC0 | unit >> 6), static_cast<std::uint8_t>(0x80 | (unit & 0x3F)), 0}, 2};
    return {{static_cast<std::uint8_t>(0xE0 | unit >> 12), static_cast<std::uint8_t>(0x80 | ((unit >> 6) & 0x3F)),
             static_cast<std::uint8_t>(0x80 | (unit & 0x3F))},
            3};
}

}  // namespace

constexpr std::array<Utf8Code, 256> kDefaultRowUtf8 = [] {
    std::array<Utf8Code, 256> row{};
    for (std::uint32_t c = 0; c < kCodeCount; ++c) row[c] = utf8_code(g_GSM_7BitTable[GSM7_CODING_DEFAULT][c]);
    return row;
}();
static_assert(sizeof(Utf8Code) == 4);

Gsm7Code find_gsm7_code(std::uint32_t row, std::uint16_t unit)
{
    if (row >= kRowCount) return {false, false, 0};
    return inverse_detail::decode_entry(kInverse.find(row, unit));
}

}  // namespace smsutil::charset
