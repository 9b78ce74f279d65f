#include "desktop/recurrence_words.h"

#include <cstddef>

#include "support/number_text.h"

namespace {

constexpr const wide* kDays[] = {WIDE("Sun"), WIDE("Mon"), WIDE("Tue"), WIDE("Wed"),
                                 WIDE("Thu"), WIDE("Fri"), WIDE("Sat")};
constexpr const wide* kMonths[] = {WIDE("January"),   WIDE("February"), WIDE("March"),    WIDE("April"),
                                   WIDE("May"),       WIDE("June"),     WIDE("July"),     WIDE("August"),
                                   WIDE("September"), WIDE("October"),  WIDE("November"), WIDE("December")};
constexpr const wide* kNth[] = {WIDE("first"), WIDE("second"), WIDE("third"), WIDE("fourth")};

constexpr std::int32_t kEveryDay = 0x7F;
constexpr std::int32_t kWeekdays = 0x3E;
constexpr std::int32_t kWeekend = 0x41;

/// "every day", "every 3 days".
CString Every(std::int32_t interval, const wide* unit) {
    return interval == 1 ? CString(WIDE("every ")) + unit
                         : WIDE("every ") + CString::FromNumber(interval) + WIDE(" ") + unit + WIDE("s");
}

/// "Mon, Wed"; empty for none.
CString DaysOf(std::int32_t mask) {
    CString days;
    for (std::size_t day = 0; day < std::size(kDays); ++day) {
        if ((mask & 1 << day) != 0) {
            days += days.empty() ? WIDE("") : WIDE(", ");
            days += kDays[day];
        }
    }
    return days;
}

CString OnDaysOf(std::int32_t mask) {
    const CString days = DaysOf(mask);
    return days.empty() ? CString() : CString(WIDE(" on ") + days);
}

/// "day 15", "the second Tue", "the last weekday".
CString PlaceInMonth(const RecurrenceFields& fields) {
    if (fields.instance == 0) {
        return WIDE("day ") + CString::FromNumber(fields.day);
    }
    CString place(WIDE("the "));
    if (fields.weekDay >= 1 && fields.weekDay <= static_cast<std::int32_t>(std::size(kNth))) {
        place += kNth[fields.weekDay - 1];
    } else {
        place += WIDE("last");
    }
    place += WIDE(" ");
    switch (fields.weekMask) {
        case kEveryDay:
            return place + WIDE("day");
        case kWeekdays:
            return place + WIDE("weekday");
        case kWeekend:
            return place + WIDE("weekend day");
        default:
            return place + DaysOf(fields.weekMask);
    }
}

CString MonthName(std::int32_t month) {
    return month >= 1 && month <= static_cast<std::int32_t>(std::size(kMonths)) ? CString(kMonths[month - 1])
                                                                                : CString(WIDE("a month"));
}

CString KindWords(const RecurrenceFields& fields) {
    enum Kind : std::int32_t { kDaily = 1, kWeekly, kMonthly, kYearly };
    const std::int32_t interval = ReadNumber(fields.interval.View());
    switch (ReadNumber(fields.type.View())) {
        case kDaily:
            return Every(interval, WIDE("day"));
        case kWeekly:
            // Daily series on certain days of the week leave as weekly ones without an interval.
            if (interval == 0 && fields.weekMask == kWeekdays) {
                return WIDE("every weekday");
            }
            return Every(interval == 0 ? 1 : interval, WIDE("week")) + OnDaysOf(fields.weekMask);
        case kMonthly:
            return Every(interval, WIDE("month")) + WIDE(" on ") + PlaceInMonth(fields);
        case kYearly:
            return Every(interval, WIDE("year")) + WIDE(" on ") + PlaceInMonth(fields) + WIDE(" of ") +
                   MonthName(fields.month);
        default:
            return WIDE("a series of an unknown kind");
    }
}

std::size_t CountOf(WideView text, WideView part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != WideView::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

/// Appends "4 deleted", behind a comma if something stands in front; nothing for a number of 0.
void AppendCount(CString& words, std::size_t count, const wide* what) {
    if (count != 0) {
        words += words.empty() ? WIDE("") : WIDE(", ");
        words += CString::FromNumber(static_cast<long long>(count)) + WIDE(" ") + what;
    }
}

}  // namespace

CString ExceptionWords(const CString& exceptions) {
    CString words;
    AppendCount(words, CountOf(exceptions, WIDE("<deletion ")), WIDE("deleted"));
    AppendCount(words, CountOf(exceptions, WIDE("<modification ")), WIDE("changed"));
    return words;
}

CString RecurrenceWords(const RecurrenceFields& fields) {
    if (fields.type.empty()) {
        return {};
    }
    if (fields.isOtherCalendar) {
        return WIDE("a series of another calendar");
    }
    if (fields.interval.empty()) {
        return WIDE("a series");
    }
    const CString end = fields.end.empty() ? CString() : CString(WIDE(" until ") + fields.end);
    const CString exceptions = ExceptionWords(fields.exceptions);
    return KindWords(fields) + end + (exceptions.empty() ? CString() : CString(WIDE(", ") + exceptions));
}
