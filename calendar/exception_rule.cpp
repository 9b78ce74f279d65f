#include "calendar/exception_rule.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <iterator>
#include <span>
#include <vector>

#include "support/base64.h"
#include "timezone/date_text.h"

namespace {

using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

bool Overrides(const tagRecurrenceException& exception, std::uint16_t flag) {
    return (exception.OverrideFlags & flag) != 0;
}

const CString& SubjectOf(const tagRecurrenceException& exception, const SeriesDefaults& defaults) {
    return Overrides(exception, ARO_SUBJECT) ? exception.Subject : defaults.subject;
}

const CString& LocationOf(const tagRecurrenceException& exception, const SeriesDefaults& defaults) {
    return Overrides(exception, ARO_LOCATION) ? exception.Location : defaults.location;
}

/// The room for an encoded text. A longer one, from 385 characters on, is left out.
constexpr std::int32_t kEncodedUnits = 1024;

/// Units of a deletion's line, and about those of a changed instance's paragraph without its two texts.
constexpr std::size_t kDeletionUnits = 46;
constexpr std::size_t kModificationUnits = 280;

std::span<const tagRecurrenceException> ModificationsOf(const tagRecurrencePattern& pattern) {
    return pattern.Exceptions ? std::span<const tagRecurrenceException>(pattern.Exceptions.get(),
                                                                        pattern.ModifiedInstanceCount)
                              : std::span<const tagRecurrenceException>();
}

/// The days of the changed instances, ascending.
std::vector<std::uint32_t> ModifiedDays(const tagRecurrencePattern& pattern) {
    std::vector<std::uint32_t> days;
    days.reserve(ModificationsOf(pattern).size());
    for (const tagRecurrenceException& exception : ModificationsOf(pattern)) {
        days.push_back(exception.OriginalDate);
    }
    std::sort(days.begin(), days.end());
    return days;
}

/// The deleted days of which no changed instance is the reason.
std::vector<std::uint32_t> PureDeletions(const tagRecurrencePattern& pattern) {
    const std::vector<std::uint32_t> modified = ModifiedDays(pattern);
    const std::span<const std::uint32_t> deleted(pattern.DeletedInstanceDates.get(),
                                                 pattern.DeletedInstanceCount);
    std::vector<std::uint32_t> days;
    std::copy_if(deleted.begin(), deleted.end(), std::back_inserter(days), [&](std::uint32_t day) {
        return !std::binary_search(modified.begin(), modified.end(), day);
    });
    return days;
}

/// Base64 has four characters for three bytes. A text that is left out is not one for which room is needed.
std::size_t EncodedUnits(const CString& text) {
    return text.size() > kEncodedUnits ? 0 : text.size() * 3;
}

/// About the length of the whole text, so that it need not be copied while it grows.
std::size_t EstimatedUnits(const tagRecurrencePattern& pattern, const SeriesDefaults& defaults,
                           std::size_t deletions) {
    std::size_t units = (deletions + 1) * kDeletionUnits;
    for (const tagRecurrenceException& exception : ModificationsOf(pattern)) {
        units += kModificationUnits + EncodedUnits(SubjectOf(exception, defaults)) +
                 EncodedUnits(LocationOf(exception, defaults));
    }
    return units;
}

void AppendDeletions(CString& text, const std::vector<std::uint32_t>& days) {
    for (const std::uint32_t day : days) {
        text += L"<deletion time = \"";
        AppendDayText(text, day);
        text += L"\"></deletion>\r\n";
    }
}

/// The UTF-16 bytes of a text in base64; nothing if there is no room for them.
void AppendEncoded(CString& text, const CString& value) {
    std::array<char, kEncodedUnits> encoded{};
    std::int32_t length = kEncodedUnits;
    // Far beyond the room, and short enough for the encoder to refuse it.
    if (value.size() > kEncodedUnits ||
        Base64Encode(reinterpret_cast<const std::uint8_t*>(value.data()),
                     static_cast<std::int32_t>(value.size() * sizeof(wchar_t)), encoded.data(),
                     &length) == 0) {
        return;
    }
    const std::size_t before = text.size();
    text.resize(before + static_cast<std::size_t>(length));
    std::copy_n(encoded.begin(), length, text.begin() + static_cast<std::ptrdiff_t>(before));
}

void BeginLine(CString& text, const wchar_t* name) {
    text.append(L"\t<").append(name).append(L">");
}

void EndLine(CString& text, const wchar_t* name) {
    text.append(L"</").append(name).append(L">\r\n");
}

void AppendMomentLine(CString& text, const wchar_t* name, std::uint32_t minutes) {
    BeginLine(text, name);
    AppendMomentText(text, minutes);
    EndLine(text, name);
}

void AppendEncodedLine(CString& text, const wchar_t* name, const CString& value) {
    BeginLine(text, name);
    AppendEncoded(text, value);
    EndLine(text, name);
}

void AppendLine(CString& text, const wchar_t* name, std::int32_t value) {
    BeginLine(text, name);
    text += CString::FromNumber(value);
    EndLine(text, name);
}

void AppendModification(CString& text, const tagRecurrenceException& exception,
                        const SeriesDefaults& defaults) {
    const auto has = [&exception](std::uint16_t flag) { return Overrides(exception, flag); };
    const auto number = [](std::uint32_t value) { return static_cast<std::int32_t>(value); };
    text += L"<modification time = \"";
    AppendDayText(text, exception.OriginalDate);
    text += L"\">\r\n";
    AppendEncodedLine(text, L"subject", SubjectOf(exception, defaults));
    AppendEncodedLine(text, L"location", LocationOf(exception, defaults));
    AppendMomentLine(text, L"start", exception.StartDateTime);
    AppendMomentLine(text, L"end", exception.EndDateTime);
    AppendLine(text, L"reminderset",
               has(ARO_REMINDER) ? number(exception.ReminderSet) : (defaults.reminderMinutes != -1 ? 1 : 0));
    AppendLine(text, L"reminderdelta",
               has(ARO_REMINDERDELTA) ? number(exception.ReminderDelta) : defaults.reminderMinutes);
    AppendLine(text, L"allday", has(ARO_SUBTYPE) ? number(exception.SubType) : defaults.isAllDay);
    text += L"</modification>\r\n";
}

}  // namespace

CString ExceptionRuleText(const tagRecurrencePattern& pattern,
                          const std::function<SeriesDefaults()>& defaultsOf) {
    const std::vector<std::uint32_t> deletions = PureDeletions(pattern);
    const SeriesDefaults defaults = ModificationsOf(pattern).empty() ? SeriesDefaults() : defaultsOf();
    CString text;
    text.reserve(EstimatedUnits(pattern, defaults, deletions.size()));
    text += L"<exceptions>\r\n";
    AppendDeletions(text, deletions);
    for (const tagRecurrenceException& exception : ModificationsOf(pattern)) {
        AppendModification(text, exception, defaults);
    }
    text += L"</exceptions>";
    return text;
}
