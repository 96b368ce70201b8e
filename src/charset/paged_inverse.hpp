// Reverse look-ups from UCS-2 units, built at compile time.  Instead of
// 65536 entries per lane, the unit's high byte picks a page and the low
// byte an entry; only high bytes that occur get a page of their own, all
// others share page 0, which stays empty.  The 7-bit tables (one lane per
// language row) and the national 8-bit code (one lane) both use it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace smsutil::charset::paged {

inline constexpr std::size_t kPageSize = 256;

// `each(emit)` calls emit(lane, unit, entry) for every mapping.
template <typename Each>
constexpr std::size_t page_count(Each each)
{
    bool used[kPageSize] = {};
    each([&](std::size_t, std::uint32_t unit, std::uint8_t) { used[(unit >> 8) & 0xFF] = true; });
    std::size_t count = 1;
    for (bool u : used) count += u ? 1 : 0;
    return count;
}

template <std::size_t Pages, std::size_t Lanes>
struct Table {
    static_assert(Pages <= kPageSize);
    std::uint8_t page_of[kPageSize];
    std::uint8_t entries[Pages][Lanes][kPageSize];

    constexpr std::uint8_t find(std::size_t lane, std::uint16_t unit) const
    {
        return entries[page_of[unit >> 8]][lane][unit & 0xFF];
    }
};

// Every entry starts as `none`.  A later mapping of the same lane and unit
// replaces an earlier one, so `each` lists the mapping that must win last.
template <std::size_t Pages, std::size_t Lanes, typename Each>
constexpr Table<Pages, Lanes> build(std::uint8_t none, Each each)
{
    Table<Pages, Lanes> t{};
    for (auto &page : t.entries)
        for (auto &lane : page)
            for (auto &e : lane) e = none;
    std::size_t next_page = 1;
    each([&](std::size_t lane, std::uint32_t unit, std::uint8_t entry) {
        std::uint8_t &p = t.page_of[(unit >> 8) & 0xFF];
        if (p == 0) p = static_cast<std::uint8_t>(next_page++);
        t.entries[p][lane][unit & 0xFF] = entry;
    });
    return t;
}

}  // namespace smsutil::charset::paged
