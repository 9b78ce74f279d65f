#pragma once

#include <cstddef>

/// What a read of changes brought.
struct ChangeCounts {
    std::size_t added = 0;
    std::size_t changed = 0;
    std::size_t deleted = 0;

    [[nodiscard]] std::size_t Total() const { return added + changed + deleted; }
};

/// True if so many of the known items are said to be deleted that a folder which could not be read, or not
/// wholly, is the likelier reason: all of five or more, or more than half of fifty or more.
[[nodiscard]] constexpr bool LooksLikeAFailedRead(const ChangeCounts& changes, std::size_t known) {
    constexpr std::size_t kFewestForAll = 5;
    constexpr std::size_t kFewestForHalf = 50;
    const bool all = known >= kFewestForAll && changes.deleted >= known;
    const bool most = known >= kFewestForHalf && changes.deleted > known / 2;
    return all || most;
}
