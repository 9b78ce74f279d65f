// Two states of a map of any content: a second, plain reader finds the same items and the same changes, and a
// state from which some changes were taken back shows the others alone.

#include <algorithm>
#include <map>
#include <set>
#include <string>

#include "desktop/map_difference.h"
#include "tests/fuzz/fuzz_input.h"

namespace {

constexpr std::string_view kSection = "[contact pim]";

using Items = std::map<std::string, std::string>;

std::vector<std::string> LinesOf(std::string_view text) {
    std::vector<std::string> lines(1);
    for (const char unit : text) {
        if (unit == '\n') {
            lines.emplace_back();
        } else {
            lines.back() += unit;
        }
    }
    // Behind the last line feed there is no line.
    if (lines.back().empty()) {
        lines.pop_back();
    }
    return lines;
}

bool IsItem(const std::string& line) {
    return line.find('\t') != std::string::npos;
}

/// The lines of a map by what they are: the items of the section, and all else in its order.
struct PlainMap {
    Items items;
    std::vector<std::string> others;
    bool hasSection = false;
};

PlainMap ReadPlainly(std::string_view text) {
    PlainMap map;
    std::string section;
    const std::vector<std::string> lines = LinesOf(text);
    for (const std::string& line : lines) {
        if (!IsItem(line)) {
            section = line;
            map.hasSection = map.hasSection || line == kSection;
        }
        if (IsItem(line) && section == kSection) {
            map.items[line.substr(0, line.find('\t'))] = line;
        } else {
            map.others.push_back(line);
        }
    }
    // A checksum ends a map and is no part of what it says.
    const bool ends = !lines.empty() && !IsItem(lines.back()) && lines.back().starts_with("checksum ");
    if (ends) {
        map.others.pop_back();
    }
    return map;
}

std::set<std::string> Differences(const Items& before, const Items& after) {
    std::set<std::string> ids;
    for (const auto& [id, line] : before) {
        if (const auto now = after.find(id); now == after.end() || now->second != line) {
            ids.insert(id);
        }
    }
    for (const auto& [id, line] : after) {
        if (!before.contains(id)) {
            ids.insert(id);
        }
    }
    return ids;
}

/// 64-bit FNV-1a, with the multiplication by the prime 2^40 + 2^8 + 0xB3 taken apart.
std::string ChecksumLine(std::string_view text) {
    std::uint64_t hash = 14695981039346656037U;
    for (const char unit : text) {
        hash ^= static_cast<std::uint8_t>(unit);
        hash = (hash << 40U) + (hash << 8U) + hash * 0xB3U;
    }
    std::string digits;
    for (std::size_t i = 0; i < 16; ++i) {
        digits.insert(digits.begin(), "0123456789ABCDEF"[hash % 16]);
        hash /= 16;
    }
    return "checksum " + digits + "\n";
}

/// Takes every other change back.
void RequireTakenBack(std::string_view before, std::string_view after, const std::set<std::string>& changed) {
    const PlainMap old = ReadPlainly(before);
    const PlainMap now = ReadPlainly(after);
    Items expected = now.items;
    std::vector<std::string> back;
    std::size_t number = 0;
    for (const std::string& id : changed) {
        if (number++ % 2 != 0) {
            continue;
        }
        back.push_back(id);
        expected.erase(id);
        // What went has its place in the section of the later state.
        if (const auto known = old.items.find(id); known != old.items.end() && now.hasSection) {
            expected.insert(*known);
        }
    }
    const std::string text = WithoutChanges(before, after, kSection, back);
    const PlainMap result = ReadPlainly(text);
    Require(result.items == expected);
    Require(result.others == now.others);
    const std::size_t end = text.rfind("checksum ");
    Require(text.substr(end) == ChecksumLine(std::string_view(text).substr(0, end)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // A byte of zeros parts the two states.
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    const std::string_view before = text.substr(0, text.find('\0'));
    const std::string_view after = text.substr(std::min(size, before.size() + 1));

    const PlainMap old = ReadPlainly(before);
    const PlainMap now = ReadPlainly(after);
    Require(CountItems(before, kSection) == old.items.size());
    Require(CountItems(after, kSection) == now.items.size());
    const std::vector<std::string> changed = ChangedIdentifiers(before, after, kSection);
    const std::set<std::string> distinct(changed.begin(), changed.end());
    Require(distinct.size() == changed.size());
    Require(distinct == Differences(old.items, now.items));
    RequireTakenBack(before, after, distinct);
    return 0;
}
