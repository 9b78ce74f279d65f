#pragma once

// What the text of a map file says of the items of one section, such as "[contact pim]". An item is a line
// with a tab behind its identifier. An empty text stands for no map at all.

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The identifiers of the items that one state of a map and a later one tell apart: those that were added,
/// changed or taken away in between, in no order.
[[nodiscard]] std::vector<std::string> ChangedIdentifiers(std::string_view before, std::string_view after,
                                                          std::string_view section);

/// The number of items in a section.
[[nodiscard]] std::size_t CountItems(std::string_view map, std::string_view section);

/// The later state of a map, but what it says of some items is what the earlier one says, so that the next
/// comparison finds their changes again. The items must be among those that the two states tell apart.
[[nodiscard]] std::string WithoutChanges(std::string_view before, std::string_view after,
                                         std::string_view section, const std::vector<std::string>& ids);
