#pragma once

// What is known of the items of earlier comparisons, and the text in which a file keeps it.
//
// The text is ASCII, each line ended by a line feed:
//
//     DunmereMap 1
//     [contact pim]
//     <identifier> TAB <status> TAB <seconds>
//     ...
//     checksum <sixteen hexadecimal digits>
//
// A section holds the items of one kind and domain. Status is that of the item's date; seconds count from
// 1899-12-30 00:00 local time and are 0 for a date that is not valid. In names and identifiers every unit
// other than the visible ones of ASCII, and the backslash, stands as \u and four upper-case hexadecimal
// digits. The checksum is the 64-bit FNV-1a of all bytes in front of its line.

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "timezone/ole_date_time.h"

/// The time of a change as it is compared and kept.
struct ChangeTime {
    std::int32_t status = kDateValid;
    std::int64_t seconds =
        0;  ///< since 1899-12-30 00:00, to the nearest second; 0 unless the status is valid

    friend bool operator==(const ChangeTime&, const ChangeTime&) = default;
};

/// The time of a date. A date beyond all calendars counts as invalid.
[[nodiscard]] ChangeTime ChangeTimeOf(const COleDateTime& date) noexcept;
[[nodiscard]] COleDateTime DateOf(const ChangeTime& time) noexcept;

struct KnownItem {
    CString id;
    ChangeTime modified;

    friend bool operator==(const KnownItem&, const KnownItem&) = default;
};

struct MapSection {
    CString kind;
    CString domain;
    std::vector<KnownItem> items;
};

class ChangeMap {
  public:
    /// The items of a kind and domain; a new section if there is none.
    [[nodiscard]] std::vector<KnownItem>& ItemsOf(WideView kind, WideView domain);

    std::vector<MapSection> sections;
};

enum class MapState { kGood, kDamaged, kNewer };

/// Reads the text of a map. Anything but the exact text that WriteMap gives is damaged, unless its first line
/// names a later version. `map` is filled only if the text is good.
[[nodiscard]] MapState ReadMap(std::string_view text, ChangeMap& map);

[[nodiscard]] std::string WriteMap(const ChangeMap& map);
