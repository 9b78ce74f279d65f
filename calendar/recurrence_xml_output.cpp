#include "calendar/recurrence_xml_output.h"

#include "calendar/exception_rule.h"
#include "mapi/item_document.h"
#include "support/number_text.h"
#include "timezone/conversions.h"

namespace {

using NAMESPACE_MAPI::tagRecurrencePattern;

constexpr std::uint32_t kMinutesPerDay = 1440;
constexpr std::uint32_t kMonthsPerYear = 12;
/// The weekly lRecurType, as which a series on every weekday leaves.
constexpr const wchar_t* kWeeklyType = L"2";

/// Numbers of the document that the kind of the series decides on.
struct Interval {
    std::uint32_t length;  ///< days, weeks, months or years
    bool isOnWeekdays;     ///< on days of a week of the month, not on a day of the month
};

void AppendNumber(CXMLParser& document, const wchar_t* name, std::uint32_t number) {
    AppendElement(document, name, CString::FromNumber(static_cast<std::int32_t>(number)));
}

bool IsNthPattern(const tagRecurrencePattern& pattern) {
    return pattern.PatternType == kMonthNthPattern || pattern.PatternType == kHijriMonthNthPattern;
}

std::uint32_t MonthOf(std::uint32_t minutes) {
    COleDateTime date;
    MinutesToDateTime(minutes, &date);
    return static_cast<std::uint32_t>(SplitDate(date).month);
}

CString ElementText(CXMLParser& document, const wchar_t* path) {
    return document.GetNodeText(document.SelectSingleNode(path).Get());
}

/// The interval of the series, with the elements in front of it.
Interval WriteKind(const tagRecurrencePattern& pattern, CXMLParser& document) {
    switch (pattern.RecurFrequency) {
        case kDailyFrequency:
            if (pattern.PatternType == kDayPattern) {
                return {pattern.Period / kMinutesPerDay, false};
            }
            document.SetNodeText(kWeeklyType, document.SelectSingleNode(L"/Calendar/lRecurType").Get());
            return {0, false};
        case kMonthlyFrequency:
            return {pattern.Period, IsNthPattern(pattern)};
        case kYearlyFrequency:
            AppendNumber(document, L"lRecurMonth", MonthOf(pattern.StartDate));
            return {pattern.Period / kMonthsPerYear, IsNthPattern(pattern)};
        default:
            return {pattern.Period, false};
    }
}

void WriteEnd(const tagRecurrencePattern& pattern, CXMLParser& document) {
    if (pattern.EndType == kNeverEnd || pattern.EndType == kNeverEndOld) {
        AppendElement(document, L"dtRecurEndDate", L"NULL");
        AppendElement(document, L"bRecurHasEndDate", L"FALSE");
        AppendNumber(document, L"lRecurRepeat", 0);
        return;
    }
    COleDateTime end;
    MinutesToDateTime(pattern.EndDate, &end);
    AppendElement(document, L"dtRecurEndDate", DateAndTimeText(end));
    AppendElement(document, L"bRecurHasEndDate", L"TRUE");
    AppendNumber(document, L"lRecurRepeat", pattern.OccurrenceCount);
}

/// What the document says of the whole series so far.
SeriesDefaults DefaultsOf(CXMLParser& document) {
    SeriesDefaults defaults;
    defaults.subject = ElementText(document, L"/Calendar/Description");
    defaults.location = ElementText(document, L"/Calendar/Location");
    // The element is bAlldayEvent. Desktop programs know that an instance is no whole day unless its own
    // exception says so, so the path stays as it is and finds nothing.
    defaults.isAllDay = ElementText(document, L"/Calendar/bAllDayEvent") == L"TRUE" ? 1 : 0;
    defaults.reminderMinutes = ReadNumber(ElementText(document, L"/Calendar/lReminderMinutes").View());
    return defaults;
}

}  // namespace

void WriteRecurrenceElements(const tagRecurrencePattern& pattern, CXMLParser& document) {
    if (pattern.CalendarType != 0) {
        AppendElement(document, L"lCalType", L"-1");
        return;
    }
    constexpr std::uint32_t kLastWeek = 5;
    const Interval interval = WriteKind(pattern, document);
    AppendNumber(document, L"lRecurInterval", interval.length);
    AppendNumber(document, L"lRecurInstance", interval.isOnWeekdays ? 1 : 0);
    AppendNumber(document, L"lRecurWeekMask", pattern.WeekDays);
    AppendElement(document, L"lRecurWeekDay",
                  pattern.NthWeek < kLastWeek ? CString::FromNumber(pattern.NthWeek) : CString(L"-1"));
    AppendNumber(document, L"lRecurDay", pattern.DayOfMonth);
    WriteEnd(pattern, document);
    if (pattern.DeletedInstanceCount != 0 && pattern.DeletedInstanceDates) {
        AppendElement(document, L"ExceptionRule",
                      ExceptionRuleText(pattern, [&document] { return DefaultsOf(document); }));
    }
}
