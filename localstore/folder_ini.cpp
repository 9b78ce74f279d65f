#include "localstore/folder_ini.h"

namespace localstore {

namespace {

using View = std::basic_string_view<wide>;

bool IsBlank(wide unit) {
    return unit == WIDE(' ') || unit == WIDE('\t') || unit == WIDE('\r');
}

View Trimmed(View text) {
    while (!text.empty() && IsBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && IsBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

Text LowerCase(View text) {
    Text lower(text);
    for (wide& unit : lower) {
        if (unit >= WIDE('A') && unit <= WIDE('Z')) {
            unit = static_cast<wide>(unit - WIDE('A') + WIDE('a'));
        }
    }
    return lower;
}

}  // namespace

FolderIni::FolderIni(View text) {
    Text section;
    while (!text.empty()) {
        const std::size_t end = text.find(WIDE('\n'));
        const View line = Trimmed(text.substr(0, end));
        text.remove_prefix(end == View::npos ? text.size() : end + 1);
        if (line.empty() || line.front() == WIDE(';') || line.front() == WIDE('#')) {
            continue;
        }
        if (line.front() == WIDE('[') && line.back() == WIDE(']')) {
            section = LowerCase(Trimmed(line.substr(1, line.size() - 2)));
            continue;
        }
        const std::size_t equals = line.find(WIDE('='));
        if (equals != View::npos) {
            m_values.try_emplace({section, LowerCase(Trimmed(line.substr(0, equals)))},
                                 Text(Trimmed(line.substr(equals + 1))));
        }
    }
}

std::optional<Text> FolderIni::Find(View section, View key) const {
    const auto found = m_values.find({LowerCase(section), LowerCase(key)});
    return found == m_values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<bool> FolderIni::FindFlag(View section, View key) const {
    const std::optional<Text> value = Find(section, key);
    if (!value) {
        return std::nullopt;
    }
    const Text lower = LowerCase(*value);
    return lower == WIDE("1") || lower == WIDE("true") || lower == WIDE("yes");
}

}  // namespace localstore
