#include "desktop/calendar_conversion.h"

#include "desktop/failure.h"
#include "desktop/machine_zone.h"
#include "desktop/recurrence_words.h"
#include "support/number_text.h"

namespace {

/// What is called the same in both directions.
constexpr const wchar_t* kElements[] = {
    L"Description", L"Location",  L"Body",      L"Priority",         L"bAlldayEvent",
    L"dtStartTime", L"dtEndTime", L"nRingTone", L"lReminderMinutes",
};
/// The same of a series, but for its interval and its end.
constexpr const wchar_t* kSeriesElements[] = {
    L"lRecurType", L"lRecurMonth", L"lRecurInstance", L"lRecurWeekMask", L"lRecurWeekDay", L"lRecurDay",
};

// Kinds of a series.
constexpr std::int32_t kDaily = 1;
constexpr std::int32_t kWeekly = 2;
constexpr std::int32_t kYearly = 4;

constexpr std::int32_t kMondayToFriday = 62;

/// The one kind of calendar item that is written.
constexpr std::int32_t kAppointment = 3;

[[noreturn]] void ThrowRefused(const wchar_t* message) {
    throw Failure(ExitCode::kDocumentRefused, message);
}

std::int32_t NumberOf(ItemDocument& read, const wchar_t* name) {
    return ReadNumber(read.Field(name).View());
}

/// Requires that the document tells all of a series: what it does not tell would be written as something
/// else.
void RequireSeries(ItemDocument& read) {
    if (read.Field(L"lCalType") == L"-1") {
        ThrowRefused(L"its series is of another calendar than the Gregorian one, and cannot be written");
    }
    const std::int32_t type = NumberOf(read, L"lRecurType");
    if (type < kDaily || type > kYearly || !read.Has(L"lRecurInterval")) {
        ThrowRefused(L"it is a series, and does not tell how it recurs");
    }
}

/// An interval of 0 means every weekday, but only beside the days from Monday to Friday.
CString IntervalOf(ItemDocument& read) {
    CString interval = read.Field(L"lRecurInterval");
    const bool isOnDays =
        NumberOf(read, L"lRecurType") == kWeekly && NumberOf(read, L"lRecurWeekMask") != kMondayToFriday;
    return isOnDays && ReadNumber(interval.View()) == 0 ? CString(L"1") : interval;
}

/// A series that is read has both its last day and its count. Written as one that ends by its count it keeps
/// both, and written as one that ends by its last day it gets the count 1. So a count of 1 tells nothing.
void AddEnd(ItemDocument& read, WrittenDocument& written) {
    if (read.Field(L"bRecurHasEndDate") != L"TRUE") {
        return;
    }
    const bool hasCount = NumberOf(read, L"lRecurRepeat") > 1;
    written.Add(L"dtRecurEndDate", read.Field(L"dtRecurEndDate"));
    written.Add(L"bRecurHasEndDate", hasCount ? L"FALSE" : L"TRUE");
    written.Add(L"lRecurRepeat", hasCount ? read.Field(L"lRecurRepeat") : CString());
}

void AddSeries(ItemDocument& read, WrittenDocument& written) {
    for (const wchar_t* name : kSeriesElements) {
        written.Add(name, read.Field(name));
    }
    written.Add(L"lRecurInterval", IntervalOf(read));
    AddEnd(read, written);
}

void TellSeriesLosses(ItemDocument& read, std::vector<CString>& losses) {
    const CString exceptions = ExceptionWords(read.Field(L"ExceptionRule"));
    if (!exceptions.empty()) {
        losses.emplace_back(L"the exceptions of its series cannot be written (" + exceptions +
                            L"): a write makes them instances like all others");
    }
    if (read.Field(L"TimeZone") != MachineZoneText()) {
        losses.emplace_back(
            L"its series is of another time zone than this machine, which a write makes it one of");
    }
}

/// The zone of a single appointment that is not this machine's, in the form by which a write finds one: the
/// text in front of its rules. Empty for this machine's, which a write takes by itself. A series has its
/// times by the clocks of this machine, so it must not name another zone.
CString OtherZoneOf(ItemDocument& read) {
    const CString zone = read.Field(L"TimeZone");
    return zone == MachineZoneText() ? CString() : CString(zone.substr(0, zone.find(L";STD:")));
}

bool IsMidnight(const CString& time) {
    constexpr WideView kMidnight = L" 00:00:00";
    return time.View().ends_with(kMidnight);
}

}  // namespace

const wchar_t* ObjectionToCalendar(ItemDocument& document) {
    return NumberOf(document, L"lCalType") == kAppointment
               ? nullptr
               : L"its lCalType is not 3, so it is no appointment that is written";
}

bool IsWholeCalendar(ItemDocument& document) {
    // The last element of its message, and one of the two that tell whether it is a series.
    return document.Has(L"TimeZone") && (document.Has(L"RecurType") || document.Has(L"lRecurType"));
}

std::vector<CString> ConvertCalendar(ItemDocument& read, WrittenDocument& written) {
    std::vector<CString> losses;
    for (const wchar_t* name : kElements) {
        written.Add(name, read.Field(name));
    }
    if (read.Has(L"RecurType")) {
        written.Add(L"TimeZone", OtherZoneOf(read));
    } else {
        RequireSeries(read);
        AddSeries(read, written);
        TellSeriesLosses(read, losses);
    }
    written.Add(L"lCalType", CString::FromNumber(kAppointment));
    if (read.Field(L"bAlldayEvent") == L"TRUE" &&
        !(IsMidnight(read.Field(L"dtStartTime")) && IsMidnight(read.Field(L"dtEndTime")))) {
        losses.emplace_back(
            L"its whole days are not from midnight to midnight here, and a write makes them so");
    }
    return losses;
}
