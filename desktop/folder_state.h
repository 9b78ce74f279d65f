#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "support/text.h"

/// Seconds since 1899-12-30 00:00, local time, as a map counts them.
using MapSeconds = std::int64_t;

/// What a folder held at one moment: its items, by identifier in upper-case hexadecimal, and when each was
/// changed last.
class FolderState {
  public:
    /// Takes the text of a map file that the agent has just made. An item is a line of identifier, status and
    /// seconds with a tab between them; everything else is passed over.
    explicit FolderState(std::string_view map);

    /// When an item was changed last; nothing if it is not there.
    [[nodiscard]] std::optional<MapSeconds> TimeOf(const std::string& id) const;
    [[nodiscard]] const std::unordered_map<std::string, MapSeconds>& Items() const { return m_items; }

  private:
    std::unordered_map<std::string, MapSeconds> m_items;
};

/// The seconds of a time as a write hands it back, "12/31/2024 23:59:59"; nothing for any other text and for
/// "12/30/1899 00:00:00", which stands for a time that is not known.
[[nodiscard]] std::optional<MapSeconds> SecondsOfTimeText(WideView text);
