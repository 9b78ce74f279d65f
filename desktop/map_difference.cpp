#include "desktop/map_difference.h"

#include <cstdint>
#include <unordered_map>

#include "support/fnv.h"

namespace {

/// What a map says of its items, by their identifiers: whole lines.
using Lines = std::unordered_map<std::string_view, std::string_view>;

std::string_view IdentifierOf(std::string_view line) {
    return line.substr(0, line.find('\t'));
}

bool IsItem(std::string_view line) {
    return line.find('\t') != std::string_view::npos;
}

/// Calls visit(line, ofSection) for each line. `ofSection` is set for the items of the section.
template<class Visit>
void ForEachLine(std::string_view map, std::string_view section, Visit visit) {
    bool inSection = false;
    while (!map.empty()) {
        const std::string_view line = map.substr(0, map.find('\n'));
        map.remove_prefix(line.size() < map.size() ? line.size() + 1 : line.size());
        const bool item = IsItem(line);
        if (!item) {
            inSection = line == section;
        }
        visit(line, item && inSection);
    }
}

Lines LinesOf(std::string_view map, std::string_view section) {
    Lines lines;
    ForEachLine(map, section, [&](std::string_view line, bool ofSection) {
        if (ofSection) {
            lines[IdentifierOf(line)] = line;
        }
    });
    return lines;
}

void AppendLine(std::string& text, std::string_view line) {
    text += line;
    text += '\n';
}

constexpr std::string_view kChecksum = "checksum ";

/// A map without its last line if that is the checksum. Such a line elsewhere ends a section as others do.
std::string_view WithoutChecksum(std::string_view map) {
    const std::string_view body = map.substr(0, map.size() - (map.ends_with('\n') ? 1 : 0));
    const std::size_t last = body.rfind('\n') + 1;
    const std::string_view line = body.substr(last);
    return line.starts_with(kChecksum) && !IsItem(line) ? map.substr(0, last) : map;
}

void AppendChecksum(std::string& text) {
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    constexpr unsigned kBits = 64;
    const std::uint64_t checksum = Fnv1a(std::string_view(text));
    std::string line(kChecksum);
    for (unsigned shift = kBits; shift != 0;) {
        shift -= 4;
        line += kHexDigits[checksum >> shift & 15U];
    }
    AppendLine(text, line);
}

}  // namespace

std::vector<std::string> ChangedIdentifiers(std::string_view before, std::string_view after,
                                            std::string_view section) {
    const Lines old = LinesOf(before, section);
    const Lines now = LinesOf(after, section);
    std::vector<std::string> changed;
    for (const auto& [id, line] : now) {
        const auto known = old.find(id);
        if (known == old.end() || known->second != line) {
            changed.emplace_back(id);
        }
    }
    for (const auto& [id, line] : old) {
        if (!now.contains(id)) {
            changed.emplace_back(id);
        }
    }
    return changed;
}

std::size_t CountItems(std::string_view map, std::string_view section) {
    return LinesOf(map, section).size();
}

std::string WithoutChanges(std::string_view before, std::string_view after, std::string_view section,
                           const std::vector<std::string>& ids) {
    Lines back;  // What is to stand there for each item; an empty line for none.
    const Lines old = LinesOf(before, section);
    for (const std::string& id : ids) {
        const auto known = old.find(id);
        back[id] = known != old.end() ? known->second : std::string_view();
    }
    std::string text;
    ForEachLine(WithoutChecksum(after), section, [&](std::string_view line, bool ofSection) {
        if (!ofSection || !back.contains(IdentifierOf(line))) {
            AppendLine(text, line);
        }
        if (line == section) {
            for (const auto& [id, known] : back) {
                if (!known.empty()) {
                    AppendLine(text, known);
                }
            }
        }
    });
    AppendChecksum(text);
    return text;
}
