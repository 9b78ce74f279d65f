#include "desktop/map_difference.h"

#include <unordered_map>

namespace {

/// What a map says of its items, by their identifiers.
using Lines = std::unordered_map<std::string_view, std::string_view>;

Lines LinesOf(std::string_view map) {
    Lines lines;
    while (!map.empty()) {
        const std::string_view line = map.substr(0, map.find('\n'));
        map.remove_prefix(line.size() < map.size() ? line.size() + 1 : line.size());
        const std::size_t tab = line.find('\t');
        if (tab != std::string_view::npos) {
            lines[line.substr(0, tab)] = line.substr(tab);
        }
    }
    return lines;
}

}  // namespace

std::vector<std::string> ChangedIdentifiers(std::string_view before, std::string_view after) {
    const Lines old = LinesOf(before);
    const Lines now = LinesOf(after);
    std::vector<std::string> changed;
    for (const auto& [id, rest] : now) {
        const auto known = old.find(id);
        if (known == old.end() || known->second != rest) {
            changed.emplace_back(id);
        }
    }
    for (const auto& [id, rest] : old) {
        if (!now.contains(id)) {
            changed.emplace_back(id);
        }
    }
    return changed;
}
