#include "localstore/sample/series_bytes.h"

#include <algorithm>
#include <chrono>

namespace sample {

namespace {

constexpr std::uint32_t kMinutesPerDay = 1440;
/// The end of a series that never ends (MS-OXOCAL 2.2.1.44.1).
constexpr std::uint32_t kNoEndDate = 0x5AE980DF;

/// A time such as "2026-03-02" or "2026-03-02 09:30", in no zone, as minutes since 1601.
std::uint32_t LocalMinutes(const std::wstring& text) {
    using namespace std::chrono;
    constexpr std::size_t kDayUnits = 10;
    const auto number = [&text](std::size_t from, std::size_t units) {
        return std::stoi(text.substr(from, units));
    };
    const sys_days first = year(1601) / 1 / 1;
    const sys_days day = year(number(0, 4)) / number(5, 2) / number(8, 2);
    const int minutes = text.size() > kDayUnits ? number(11, 2) * 60 + number(14, 2) : 0;
    return static_cast<std::uint32_t>((day - first).count()) * kMinutesPerDay +
           static_cast<std::uint32_t>(minutes);
}

/// Little-endian numbers and texts, one behind the other.
class Bytes {
  public:
    void U16(std::size_t number) { Number(static_cast<std::uint32_t>(number), 2); }
    void U32(std::size_t number) { Number(static_cast<std::uint32_t>(number), 4); }
    void Wide(const std::wstring& text) {
        U16(text.size());
        for (const wchar_t unit : text) {
            U16(static_cast<std::uint16_t>(unit));
        }
    }
    /// The 8-bit form of a text, with its two lengths. Characters beyond ASCII have none here.
    void Narrow(const std::wstring& text) {
        U16(text.size() + 1);
        U16(text.size());
        for (const wchar_t unit : text) {
            m_bytes.push_back(unit < 0x80 ? static_cast<unsigned char>(unit) : '?');
        }
    }
    [[nodiscard]] std::vector<unsigned char> Take() { return std::move(m_bytes); }

  private:
    void Number(std::uint32_t number, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            m_bytes.push_back(static_cast<unsigned char>(number >> 8 * i & 0xFFU));
        }
    }

    std::vector<unsigned char> m_bytes;
};

/// A kind's frequency, pattern and how many units of its period one step is.
struct KindLayout {
    std::uint16_t frequency;
    std::uint16_t pattern;
    std::uint32_t step;
};

KindLayout LayoutOf(SeriesKind kind) {
    switch (kind) {
        case SeriesKind::Days:
            return {0x200A, 0, kMinutesPerDay};
        case SeriesKind::Weekdays:
            return {0x200A, 1, kMinutesPerDay};
        case SeriesKind::Weeks:
            return {0x200B, 1, 1};
        case SeriesKind::DayOfMonth:
            return {0x200C, 2, 1};
        case SeriesKind::NthOfMonth:
            return {0x200C, 3, 1};
        case SeriesKind::DayOfYear:
            return {0x200D, 2, 12};
        default:
            return {0x200D, 3, 12};
    }
}

void AddPattern(Bytes& bytes, const SampleSeries& series) {
    switch (LayoutOf(series.kind).pattern) {
        case 1:
            bytes.U32(series.days);
            break;
        case 2:
            bytes.U32(series.day);
            break;
        case 3:
            bytes.U32(series.days);
            bytes.U32(series.nth);
            break;
        default:
            break;
    }
}

void AddDays(Bytes& bytes, std::vector<std::uint32_t> days) {
    std::sort(days.begin(), days.end());
    bytes.U32(days.size());
    for (const std::uint32_t day : days) {
        bytes.U32(day);
    }
}

void AddDates(Bytes& bytes, const SampleChange& change, std::uint32_t startOfDay) {
    const std::uint32_t start = LocalMinutes(change.moved);
    bytes.U32(start);
    bytes.U32(start + change.minutes);
    bytes.U32(LocalMinutes(change.day) + startOfDay);
}

/// ExceptionInfo (MS-OXOCAL 2.2.1.44.2).
void AddChange(Bytes& bytes, const SampleChange& change, std::uint32_t startOfDay) {
    AddDates(bytes, change, startOfDay);
    const auto flag = [](bool isSet, unsigned bit) { return isSet ? bit : 0U; };
    bytes.U16(flag(change.subject.has_value(), 0x1) | flag(change.meetingType.has_value(), 0x2) |
              flag(change.reminderMinutes.has_value(), 0x4) | flag(change.reminderSet.has_value(), 0x8) |
              flag(change.location.has_value(), 0x10) | flag(change.busy.has_value(), 0x20) |
              flag(change.attachment.has_value(), 0x40) | flag(change.wholeDay.has_value(), 0x80) |
              flag(change.color.has_value(), 0x100));
    const auto addNumber = [&bytes](const std::optional<std::uint32_t>& number) {
        if (number) {
            bytes.U32(*number);
        }
    };
    if (change.subject) {
        bytes.Narrow(*change.subject);
    }
    addNumber(change.meetingType);
    addNumber(change.reminderMinutes);
    addNumber(change.reminderSet);
    if (change.location) {
        bytes.Narrow(*change.location);
    }
    addNumber(change.busy);
    addNumber(change.attachment);
    addNumber(change.wholeDay);
    addNumber(change.color);
}

/// ChangeHighlight and ExtendedException (MS-OXOCAL 2.2.1.44.3 and 2.2.1.44.4), without reserved data.
void AddExtended(Bytes& bytes, const SampleChange& change, std::uint32_t startOfDay) {
    bytes.U32(4);
    bytes.U32(0);
    bytes.U32(0);
    if (!change.subject && !change.location) {
        return;
    }
    AddDates(bytes, change, startOfDay);
    if (change.subject) {
        bytes.Wide(*change.subject);
    }
    if (change.location) {
        bytes.Wide(*change.location);
    }
    bytes.U32(0);
}

void AddInstances(Bytes& bytes, const SampleSeries& series) {
    std::vector<std::uint32_t> deleted;
    std::vector<std::uint32_t> changed;
    for (const wchar_t* const day : series.deleted) {
        deleted.push_back(LocalMinutes(day));
    }
    for (const SampleChange& change : series.changes) {
        deleted.push_back(LocalMinutes(change.day));
        changed.push_back(LocalMinutes(change.day));
    }
    AddDays(bytes, std::move(deleted));
    AddDays(bytes, std::move(changed));
}

}  // namespace

long RecurrenceType(SeriesKind kind) {
    return LayoutOf(kind).frequency - 0x2009;
}

std::vector<unsigned char> SeriesBytes(const SampleSeries& series, const std::wstring& start,
                                       std::uint32_t minutes) {
    const KindLayout layout = LayoutOf(series.kind);
    const std::uint32_t first = LocalMinutes(start);
    const std::uint32_t startOfDay = first % kMinutesPerDay;
    Bytes bytes;
    bytes.U16(0x3004);
    bytes.U16(0x3004);
    bytes.U16(layout.frequency);
    bytes.U16(layout.pattern);
    bytes.U16(0);
    bytes.U32(0);
    bytes.U32(std::size_t{series.every} * layout.step);
    bytes.U32(0);
    AddPattern(bytes, series);
    bytes.U32(series.until == nullptr ? 0x2023 : series.times != 0 ? 0x2022 : 0x2021);
    bytes.U32(series.times);
    bytes.U32(0);
    AddInstances(bytes, series);
    bytes.U32(first - startOfDay);
    bytes.U32(series.until == nullptr ? kNoEndDate : LocalMinutes(series.until));
    bytes.U32(0x3006);
    bytes.U32(0x3009);
    bytes.U32(startOfDay);
    bytes.U32(startOfDay + minutes);
    bytes.U16(series.changes.size());
    for (const SampleChange& change : series.changes) {
        AddChange(bytes, change, startOfDay);
    }
    bytes.U32(0);
    for (const SampleChange& change : series.changes) {
        AddExtended(bytes, change, startOfDay);
    }
    bytes.U32(0);
    return bytes.Take();
}

}  // namespace sample
