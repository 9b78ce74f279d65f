#include "libraries/dunmere/change_map.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>

#include "support/fnv.h"

namespace {

constexpr std::string_view kName = "DunmereMap ";
constexpr unsigned kVersion = 1;
constexpr std::string_view kChecksum = "checksum ";
constexpr std::size_t kHashDigits = 16;
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

constexpr double kSecondsPerDay = 86400.0;
/// Days that no calendar of the platform reaches; their seconds fit into 64 bits by far.
constexpr double kMostDays = 10'000'000.0;

bool StandsAsItIs(wide unit) {
    return unit > WIDE(' ') && unit <= WIDE('~') && unit != WIDE('\\');
}

void AppendHex(std::string& text, std::uint64_t number, unsigned digits) {
    while (digits-- != 0) {
        text += kHexDigits[number >> (4 * digits) & 15U];
    }
}

void AppendWord(std::string& text, WideView word) {
    if (std::all_of(word.begin(), word.end(), StandsAsItIs)) {
        const std::size_t before = text.size();
        text.resize(before + word.size());
        std::transform(word.begin(), word.end(), text.begin() + static_cast<std::ptrdiff_t>(before),
                       [](wide unit) { return static_cast<char>(unit); });
        return;
    }
    for (const wide unit : word) {
        if (StandsAsItIs(unit)) {
            text += static_cast<char>(unit);
        } else {
            text += "\\u";
            AppendHex(text, unit, 4);
        }
    }
}

/// The number that a whole text is; nothing if it is none.
template<class Number>
std::optional<Number> NumberOf(std::string_view text, int base = 10) {
    Number number{};
    const char* const end = text.data() + text.size();
    const std::from_chars_result result = std::from_chars(text.data(), end, number, base);
    return result.ec == std::errc() && result.ptr == end ? std::optional(number) : std::nullopt;
}

std::optional<CString> WordOf(std::string_view text) {
    CString word;
    word.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\') {
            word += static_cast<wide>(static_cast<unsigned char>(text[i]));
            continue;
        }
        const auto unit = text.substr(i, 2) == "\\u" && text.size() - i >= 6
                              ? NumberOf<std::uint16_t>(text.substr(i + 2, 4), 16)
                              : std::nullopt;
        if (!unit) {
            return std::nullopt;
        }
        word += static_cast<wide>(*unit);
        i += 5;
    }
    return word;
}

/// Cuts off and returns the text in front of a separator; nothing if it is not there.
std::optional<std::string_view> Cut(std::string_view& text, char separator) {
    const std::size_t end = text.find(separator);
    if (end == std::string_view::npos) {
        return std::nullopt;
    }
    const std::string_view front = text.substr(0, end);
    text.remove_prefix(end + 1);
    return front;
}

bool ReadSection(std::string_view line, ChangeMap& map) {
    line = line.substr(1, line.size() - 2);
    const std::optional<std::string_view> kindText = Cut(line, ' ');
    std::optional<CString> kind = kindText ? WordOf(*kindText) : std::nullopt;
    std::optional<CString> domain = WordOf(line);
    if (!kind || !domain) {
        return false;
    }
    map.sections.push_back({std::move(*kind), std::move(*domain), {}});
    return true;
}

bool ReadItem(std::string_view line, ChangeMap& map) {
    const std::optional<std::string_view> idText = Cut(line, '\t');
    const std::optional<std::string_view> statusText = Cut(line, '\t');
    if (map.sections.empty() || !idText || !statusText) {
        return false;
    }
    std::optional<CString> id = WordOf(*idText);
    const std::optional<std::int32_t> status = NumberOf<std::int32_t>(*statusText);
    const std::optional<std::int64_t> seconds = NumberOf<std::int64_t>(line);
    if (!id || !status || !seconds) {
        return false;
    }
    map.sections.back().items.push_back({std::move(*id), {*status, *seconds}});
    return true;
}

bool ReadLines(std::string_view text, ChangeMap& map) {
    while (const std::optional<std::string_view> line = Cut(text, '\n')) {
        // Identifiers may begin with a bracket; but an item's line has tabs, and a section's has none.
        const bool section = line->starts_with('[') && line->ends_with(']');
        if (!(section && line->find('\t') == std::string_view::npos ? ReadSection(*line, map)
                                                                    : ReadItem(*line, map))) {
            return false;
        }
    }
    return text.empty();
}

/// About the length of the text of a map, so that it need not be copied while it grows.
std::size_t EstimatedBytes(const ChangeMap& map) {
    constexpr std::size_t kBytesBesideId = 16;
    constexpr std::size_t kOtherLines = 128;
    std::size_t bytes = kOtherLines;
    for (const MapSection& section : map.sections) {
        bytes += kOtherLines;
        for (const KnownItem& item : section.items) {
            bytes += item.id.size() + kBytesBesideId;
        }
    }
    return bytes;
}

std::string ChecksumLine(std::string_view text) {
    std::string line(kChecksum);
    AppendHex(line, Fnv1a(text), kHashDigits);
    line += '\n';
    return line;
}

}  // namespace

ChangeTime ChangeTimeOf(const COleDateTime& date) noexcept {
    if (date.m_status != kDateValid) {
        return {date.m_status, 0};
    }
    const double days = LinearFromDate(date.m_dt);
    // A comparison with what is not a number is false.
    if (!(std::abs(days) < kMostDays)) {
        return {kDateInvalid, 0};
    }
    return {kDateValid, std::llround(days * kSecondsPerDay)};
}

COleDateTime DateOf(const ChangeTime& time) noexcept {
    COleDateTime date;
    date.m_status = time.status;
    if (time.status == kDateValid) {
        date.m_dt = DateFromLinear(static_cast<double>(time.seconds) / kSecondsPerDay);
    }
    return date;
}

std::vector<KnownItem>& ChangeMap::ItemsOf(WideView kind, WideView domain) {
    const auto section = std::find_if(sections.begin(), sections.end(), [&](const MapSection& candidate) {
        return candidate.kind == kind && candidate.domain == domain;
    });
    if (section != sections.end()) {
        return section->items;
    }
    sections.push_back({CString(kind), CString(domain), {}});
    return sections.back().items;
}

MapState ReadMap(std::string_view text, ChangeMap& map) {
    std::string_view lines = text;
    const std::optional<std::string_view> header = Cut(lines, '\n');
    if (!header || !header->starts_with(kName)) {
        return MapState::kDamaged;
    }
    const std::optional<unsigned> version = NumberOf<unsigned>(header->substr(kName.size()));
    if (version && *version > kVersion) {
        return MapState::kNewer;
    }
    constexpr std::size_t checksumSize = kChecksum.size() + kHashDigits + 1;
    if (lines.size() < checksumSize) {
        return MapState::kDamaged;
    }
    lines.remove_suffix(checksumSize);
    ChangeMap found;
    // What is not the text that would be written was not written by this version, whatever its checksum.
    if (!ReadLines(lines, found) || WriteMap(found) != text) {
        return MapState::kDamaged;
    }
    map = std::move(found);
    return MapState::kGood;
}

std::string WriteMap(const ChangeMap& map) {
    std::string text;
    text.reserve(EstimatedBytes(map));
    text += kName;
    text += std::to_string(kVersion) + '\n';
    for (const MapSection& section : map.sections) {
        text += '[';
        AppendWord(text, section.kind.View());
        text += ' ';
        AppendWord(text, section.domain.View());
        text += "]\n";
        for (const KnownItem& item : section.items) {
            AppendWord(text, item.id.View());
            text += '\t';
            text += std::to_string(item.modified.status);
            text += '\t';
            text += std::to_string(item.modified.seconds);
            text += '\n';
        }
    }
    text += ChecksumLine(text);
    return text;
}
