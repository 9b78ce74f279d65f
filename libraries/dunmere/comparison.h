#pragma once

// The comparison of what a folder holds now with what is known of it.

#include "changelog/log_item.h"
#include "libraries/dunmere/change_map.h"

/// What a comparison finds.
struct Comparison {
    std::vector<std::int32_t> flags;  ///< one for each item: kItemNew, kItemChanged or 0
    std::vector<tagLogItem> gone;     ///< marked with kItemDeleted, in the order in which they were known
    std::vector<KnownItem> nowKnown;  ///< the items as they are to be known from now on
    std::size_t marked = 0;           ///< flags other than 0
};

/// Compares in one pass. Any difference of the times is a change, also one backwards, as after a backup was
/// put back. Of items with one identifier the first stands for all. Items without an identifier cannot be
/// found again and are left out.
[[nodiscard]] Comparison Compare(const LogItems& items, const std::vector<KnownItem>& known);
