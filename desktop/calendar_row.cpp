#include "desktop/calendar_row.h"

#include "desktop/recurrence_words.h"
#include "support/number_text.h"

namespace {

/// The day that stands for no date in documents.
constexpr const wchar_t* kNoDay = L"1899-12-30";

/// The day of a time as documents carry it, "03/07/2011 09:00:00", in the order year, month, day. Empty for
/// what is no time.
CString DayOf(const CString& time) {
    constexpr std::size_t kTimeUnits = 19;
    if (time.size() != kTimeUnits || time[2] != L'/' || time[5] != L'/') {
        return {};
    }
    CString day = time.substr(6, 4) + L"-" + time.substr(0, 2) + L"-" + time.substr(3, 2);
    return day == kNoDay ? CString() : day;
}

CString TimeText(const CString& time, bool isWholeDay) {
    const CString day = DayOf(time);
    return day.empty() || isWholeDay ? day : CString(day + L" " + time.substr(11, 5));
}

std::int32_t NumberOf(ItemDocument& document, const wchar_t* name) {
    return ReadNumber(document.Field(name).View());
}

RecurrenceFields FieldsOf(ItemDocument& document) {
    RecurrenceFields fields;
    fields.type = document.Field(L"lRecurType");
    fields.interval = document.Field(L"lRecurInterval");
    fields.instance = NumberOf(document, L"lRecurInstance");
    fields.weekMask = NumberOf(document, L"lRecurWeekMask");
    fields.weekDay = NumberOf(document, L"lRecurWeekDay");
    fields.day = NumberOf(document, L"lRecurDay");
    fields.month = NumberOf(document, L"lRecurMonth");
    fields.end = DayOf(document.Field(L"dtRecurEndDate"));
    fields.exceptions = document.Field(L"ExceptionRule");
    // Every document ends with the kind 3; a series of another calendar has this one in front of it.
    fields.isOtherCalendar = document.Field(L"lCalType") == L"-1";
    return fields;
}

}  // namespace

TextTable::Row CalendarHeadings() {
    return {L"START", L"END", L"SUBJECT", L"LOCATION", L"RECURRENCE", L"FOLDER"};
}

TextTable::Row CalendarRow(ItemDocument& document) {
    const bool isWholeDay = document.Field(L"bAlldayEvent") == L"TRUE";
    return {
        TimeText(document.Field(L"dtStartTime"), isWholeDay),
        TimeText(document.Field(L"dtEndTime"), isWholeDay),
        document.Field(L"Description"),
        document.Field(L"Location"),
        RecurrenceWords(FieldsOf(document)),
        document.Field(L"CsFolder"),
    };
}
