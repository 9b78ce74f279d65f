#pragma once

// 64-bit FNV-1a, the hash of Fowler, Noll and Vo: short names and checksums, no protection against intent.

#include <cstdint>
#include <string_view>
#include <type_traits>

#include "support/wide.h"

/// The hash over the units of a text; a unit of more than 8 bits goes in whole. Any change of a single unit
/// changes the hash.
template<class Unit>
[[nodiscard]] constexpr std::uint64_t Fnv1a(std::basic_string_view<Unit> text) noexcept {
    constexpr std::uint64_t kOffsetBasis = 0xCBF29CE484222325;
    constexpr std::uint64_t kPrime = 0x100000001B3;
    std::uint64_t hash = kOffsetBasis;
    for (const Unit unit : text) {
        hash = (hash ^ static_cast<std::make_unsigned_t<Unit>>(unit)) * kPrime;
    }
    return hash;
}
