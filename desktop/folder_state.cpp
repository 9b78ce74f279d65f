#include "desktop/folder_state.h"

#include <charconv>
#include <chrono>

namespace {

constexpr std::string_view kTab = "\t";
constexpr WideView kTimePattern = WIDE("00/00/0000 00:00:00");

/// Cuts off the text in front of the separator, and the separator.
std::string_view CutOff(std::string_view& text, char separator) {
    const std::string_view piece = text.substr(0, text.find(separator));
    text.remove_prefix(piece.size() < text.size() ? piece.size() + 1 : piece.size());
    return piece;
}

bool IsDigit(wide unit) {
    return unit >= WIDE('0') && unit <= WIDE('9');
}

/// True if the text has digits where the pattern has them, and the pattern's own units elsewhere.
bool FitsPattern(WideView text) {
    if (text.size() != kTimePattern.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsDigit(kTimePattern[i]) ? !IsDigit(text[i]) : text[i] != kTimePattern[i]) {
            return false;
        }
    }
    return true;
}

/// The number at a place of a text that fits the pattern.
int NumberAt(WideView text, std::size_t place, std::size_t length) {
    int number = 0;
    for (const wide digit : text.substr(place, length)) {
        number = number * 10 + (digit - WIDE('0'));
    }
    return number;
}

}  // namespace

FolderState::FolderState(std::string_view map) {
    while (!map.empty()) {
        std::string_view line = CutOff(map, '\n');
        if (line.find(kTab) == std::string_view::npos) {
            continue;
        }
        const std::string_view id = CutOff(line, '\t');
        CutOff(line, '\t');
        MapSeconds seconds = 0;
        std::from_chars(line.data(), line.data() + line.size(), seconds);
        m_items[std::string(id)] = seconds;
    }
}

std::optional<MapSeconds> FolderState::TimeOf(const std::string& id) const {
    const auto item = m_items.find(id);
    return item == m_items.end() ? std::nullopt : std::optional(item->second);
}

std::optional<MapSeconds> SecondsOfTimeText(WideView text) {
    using namespace std::chrono;
    if (!FitsPattern(text)) {
        return std::nullopt;
    }
    const year_month_day date = year(NumberAt(text, 6, 4)) /
                                month(static_cast<unsigned>(NumberAt(text, 0, 2))) /
                                day(static_cast<unsigned>(NumberAt(text, 3, 2)));
    if (!date.ok()) {
        return std::nullopt;
    }
    const sys_days start = year(1899) / December / day(30);
    const auto time = sys_days(date) - start + hours(NumberAt(text, 11, 2)) + minutes(NumberAt(text, 14, 2)) +
                      seconds(NumberAt(text, 17, 2));
    const MapSeconds result = duration_cast<seconds>(time).count();
    return result == 0 ? std::nullopt : std::optional(result);
}
