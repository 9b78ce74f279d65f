#include "calendar/exception_rule.h"

#include <array>
#include <unordered_set>

#include "support/base64.h"
#include "timezone/conversions.h"

namespace {

using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// The room for an encoded text. A longer one, from 385 characters on, is left out.
constexpr std::int32_t kEncodedUnits = 1024;

CString TextOfMinutes(std::uint32_t minutes, const wchar_t* format) {
    COleDateTime date;
    MinutesToDateTime(minutes, &date);
    return date.Format(format);
}

CString DayText(std::uint32_t minutes) {
    return TextOfMinutes(minutes, L"%Y/%m/%d");
}

CString MomentText(std::uint32_t minutes) {
    return TextOfMinutes(minutes, L"%Y/%m/%d %H:%M:%S");
}

/// The UTF-16 bytes of a text in base64; empty if there is no room for them.
CString EncodedText(const CString& text) {
    std::array<char, kEncodedUnits> encoded{};
    std::int32_t length = kEncodedUnits;
    // Far beyond the room, and short enough for the encoder to refuse it.
    if (text.size() > kEncodedUnits || Base64Encode(reinterpret_cast<const std::uint8_t*>(text.data()),
                                                    static_cast<std::int32_t>(text.size() * sizeof(wchar_t)),
                                                    encoded.data(), &length) == 0) {
        return {};
    }
    CString result;
    result.assign(encoded.begin(), encoded.begin() + length);
    return result;
}

using DeletedDateSet = std::unordered_set<std::uint32_t>;

/// The deleted days of which no changed instance is the reason.
DeletedDateSet PureDeletions(const tagRecurrencePattern& pattern) {
    DeletedDateSet days(pattern.DeletedInstanceDates.get(),
                        pattern.DeletedInstanceDates.get() + pattern.DeletedInstanceCount);
    for (std::uint32_t i = 0; pattern.Exceptions && i < pattern.ModifiedInstanceCount; ++i) {
        days.erase(pattern.Exceptions[i].OriginalDate);
    }
    return days;
}

void AppendDeletions(CString& text, const tagRecurrencePattern& pattern) {
    const DeletedDateSet days = PureDeletions(pattern);
    for (std::uint32_t i = 0; i < pattern.DeletedInstanceCount; ++i) {
        const std::uint32_t day = pattern.DeletedInstanceDates[i];
        if (days.contains(day)) {
            text += L"<deletion time = \"" + DayText(day) + L"\"></deletion>\r\n";
        }
    }
}

void AppendLine(CString& text, const wchar_t* name, const CString& value) {
    text += CString(L"\t<") + name + L">" + value + L"</" + name + L">\r\n";
}

void AppendLine(CString& text, const wchar_t* name, std::int32_t value) {
    AppendLine(text, name, CString::FromNumber(value));
}

void AppendModification(CString& text, const tagRecurrenceException& exception,
                        const SeriesDefaults& defaults) {
    const auto has = [&exception](std::uint16_t flag) { return (exception.OverrideFlags & flag) != 0; };
    const auto number = [](std::uint32_t value) { return static_cast<std::int32_t>(value); };
    text += L"<modification time = \"" + DayText(exception.OriginalDate) + L"\">\r\n";
    AppendLine(text, L"subject", EncodedText(has(ARO_SUBJECT) ? exception.Subject : defaults.subject));
    AppendLine(text, L"location", EncodedText(has(ARO_LOCATION) ? exception.Location : defaults.location));
    AppendLine(text, L"start", MomentText(exception.StartDateTime));
    AppendLine(text, L"end", MomentText(exception.EndDateTime));
    AppendLine(text, L"reminderset",
               has(ARO_REMINDER) ? number(exception.ReminderSet) : (defaults.reminderMinutes != -1 ? 1 : 0));
    AppendLine(text, L"reminderdelta",
               has(ARO_REMINDERDELTA) ? number(exception.ReminderDelta) : defaults.reminderMinutes);
    AppendLine(text, L"allday", has(ARO_SUBTYPE) ? number(exception.SubType) : defaults.isAllDay);
    text += L"</modification>\r\n";
}

}  // namespace

CString ExceptionRuleText(const tagRecurrencePattern& pattern, const SeriesDefaults& defaults) {
    CString text(L"<exceptions>\r\n");
    AppendDeletions(text, pattern);
    for (std::uint32_t i = 0; pattern.Exceptions && i < pattern.ModifiedInstanceCount; ++i) {
        AppendModification(text, pattern.Exceptions[i], defaults);
    }
    text += L"</exceptions>";
    return text;
}
