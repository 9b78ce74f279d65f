#pragma once

#include "calendar/recurrence_pattern.h"

/// Hands the fields of PatternTypeSpecific (MS-OXOCAL 2.2.1.44.1) to `visit`, in their order in the blob. The
/// frequency decides before the pattern does, for a reader and for a writer alike: what one writes, the other
/// must find.
template<class Pattern, class Visit>
void ForEachSpecificField(Pattern& pattern, Visit visit) {
    const bool isMonthly =
        pattern.RecurFrequency == kMonthlyFrequency || pattern.RecurFrequency == kYearlyFrequency;
    if (pattern.RecurFrequency == kWeeklyFrequency ||
        (pattern.RecurFrequency == kDailyFrequency && pattern.PatternType == kWeekPattern)) {
        visit(pattern.WeekDays);
        return;
    }
    if (!isMonthly) {
        return;
    }
    switch (pattern.PatternType) {
        case kMonthPattern:
        case kMonthEndPattern:
        case kHijriMonthPattern:
        case kHijriMonthEndPattern:
            visit(pattern.DayOfMonth);
            return;
        case kMonthNthPattern:
        case kHijriMonthNthPattern:
            visit(pattern.WeekDays);
            visit(pattern.NthWeek);
            return;
        default:
            return;
    }
}
