#pragma once

#include <string>
#include <string_view>
#include <vector>

/// The identifiers of the items that one state of a map file and a later one tell apart: those that were
/// added, changed or taken away in between, in no order. An item is a line of the map with a tab behind its
/// identifier; everything else is passed over, so nothing but an empty text stands for no map at all.
[[nodiscard]] std::vector<std::string> ChangedIdentifiers(std::string_view before, std::string_view after);
