// What a series is in the document of its appointment. Its exceptions have tests of their own.

#include "calendar/recurrence_xml_output.h"

#include <gtest/gtest.h>

#include "mapi/item_document.h"
#include "tests/unit/calendar/sample_series.h"
#include "tests/unit/store/appointment_fixture.h"
#include "tests/unit/store/document_body.h"
#include "tests/unit/text_printer.h"

namespace {

using namespace sample_series;

/// The elements that a series adds to a document that has a store value of 1 for its kind, behind that.
CString Write(const tagRecurrencePattern& pattern) {
    CXMLParser document;
    EXPECT_TRUE(document.InitDocument());
    document.CreateRootElement(L"Calendar");
    AppendElement(document, L"lRecurType", L"1");
    WriteRecurrenceElements(pattern, document);
    CString body = document.GetDocumentText();
    for (std::size_t at = 0; (at = body.find(L"\r\n", at)) != CString::npos;) {
        body.erase(at, 1);
    }
    return body.Trim();
}

/// The value of an element; "(none)" if it is not there.
CString ValueOf(const tagRecurrencePattern& pattern, const CString& name) {
    const CString body = Write(pattern);
    const std::size_t start = body.find(L"<" + name + L">");
    if (start == CString::npos) {
        return {L"(none)"};
    }
    const std::size_t from = start + name.size() + 2;
    return body.substr(from, body.find(L"</" + name + L">") - from);
}

/// A series of a kind with a value in each field that its kind has, ten times.
tagRecurrencePattern OfKind(std::uint16_t frequency, std::uint16_t type, std::uint32_t period) {
    tagRecurrencePattern pattern = Weekly();
    pattern.RecurFrequency = frequency;
    pattern.PatternType = type;
    pattern.Period = period;
    pattern.WeekDays = 0;
    return pattern;
}

tagRecurrencePattern OfNthWeekday(std::uint16_t frequency, std::uint32_t period, std::uint16_t type) {
    tagRecurrencePattern pattern = OfKind(frequency, type, period);
    pattern.WeekDays = 0x10;
    pattern.NthWeek = 2;
    return pattern;
}

tagRecurrencePattern OfDay(std::uint16_t frequency, std::uint32_t period, std::uint16_t type) {
    tagRecurrencePattern pattern = OfKind(frequency, type, period);
    pattern.DayOfMonth = 31;
    return pattern;
}

struct Numbers {
    const wchar_t* type;
    const wchar_t* interval;
    const wchar_t* instance;
    const wchar_t* mask;
    const wchar_t* weekDay;
    const wchar_t* day;
};

/// The document of a series of the 7th of March 2011 and 58 days that ends after ten instances.
CString DocumentOf(const Numbers& numbers, const wchar_t* month = nullptr) {
    Elements elements{{L"lRecurType", numbers.type}};
    if (month != nullptr) {
        elements.emplace_back(L"lRecurMonth", month);
    }
    const Elements more{{L"lRecurInterval", numbers.interval}, {L"lRecurInstance", numbers.instance},
                        {L"lRecurWeekMask", numbers.mask},     {L"lRecurWeekDay", numbers.weekDay},
                        {L"lRecurDay", numbers.day},           {L"dtRecurEndDate", L"05/04/2011 00:00:00"},
                        {L"bRecurHasEndDate", L"TRUE"},        {L"lRecurRepeat", L"10"}};
    elements.insert(elements.end(), more.begin(), more.end());
    return CalendarOf(elements);
}

TEST(RecurrenceElements, DailyByDays) {
    EXPECT_EQ(Write(OfKind(0x200A, 0, 2880)), DocumentOf({L"1", L"2", L"0", L"0", L"0", L"0"}));
}

TEST(RecurrenceElements, DailyOnEveryWeekdayLeavesAsAWeeklySeries) {
    for (const unsigned type : {1U, 2U, 0xFFFFU}) {
        tagRecurrencePattern pattern = OfKind(0x200A, static_cast<std::uint16_t>(type), 10080);
        pattern.WeekDays = 0x3E;
        EXPECT_EQ(Write(pattern), DocumentOf({L"2", L"0", L"0", L"62", L"0", L"0"}));
    }
}

TEST(RecurrenceElements, Weekly) {
    EXPECT_EQ(Write(Weekly()), DocumentOf({L"1", L"2", L"0", L"10", L"0", L"0"}));
}

TEST(RecurrenceElements, MonthlyOnADayOrTheMonthsEnd) {
    for (const unsigned type : {2U, 4U, 0xAU, 0xCU}) {
        EXPECT_EQ(Write(OfDay(0x200C, 3, static_cast<std::uint16_t>(type))),
                  DocumentOf({L"1", L"3", L"0", L"0", L"0", L"31"}));
    }
}

TEST(RecurrenceElements, MonthlyOnTheNthWeekday) {
    for (const unsigned type : {3U, 0xBU}) {
        EXPECT_EQ(Write(OfNthWeekday(0x200C, 3, static_cast<std::uint16_t>(type))),
                  DocumentOf({L"1", L"3", L"1", L"16", L"2", L"0"}));
    }
}

TEST(RecurrenceElements, YearlyOnADayOrTheMonthsEnd) {
    for (const unsigned type : {2U, 4U, 0xAU, 0xCU}) {
        EXPECT_EQ(Write(OfDay(0x200D, 24, static_cast<std::uint16_t>(type))),
                  DocumentOf({L"1", L"2", L"0", L"0", L"0", L"31"}, L"3"));
    }
}

TEST(RecurrenceElements, YearlyOnTheNthWeekday) {
    for (const unsigned type : {3U, 0xBU}) {
        EXPECT_EQ(Write(OfNthWeekday(0x200D, 24, static_cast<std::uint16_t>(type))),
                  DocumentOf({L"1", L"2", L"1", L"16", L"2", L"0"}, L"3"));
    }
}

TEST(RecurrenceElements, OfNoKnownFrequencyKeepTheirPeriod) {
    EXPECT_EQ(Write(OfKind(0, 3, 77)), DocumentOf({L"1", L"77", L"0", L"0", L"0", L"0"}));
}

TEST(RecurrenceElements, EveryThirdDayHasAPeriodOf4320AndAnIntervalOf3) {
    EXPECT_EQ(ValueOf(OfKind(0x200A, 0, 4320), L"lRecurInterval"), L"3");
    EXPECT_EQ(ValueOf(OfKind(0x200A, 0, 4319), L"lRecurInterval"), L"2");
    EXPECT_EQ(ValueOf(OfKind(0x200A, 0, 0xFFFFFFFF), L"lRecurInterval"), L"2982616");
}

TEST(RecurrenceElements, OfEveryWeekdayHaveTheWeeklyTypeNoIntervalAndTheMask) {
    tagRecurrencePattern pattern = OfKind(0x200A, 1, 0);
    pattern.WeekDays = 0x3E;
    EXPECT_EQ(ValueOf(pattern, L"lRecurType"), L"2");
    EXPECT_EQ(ValueOf(pattern, L"lRecurInterval"), L"0");
    EXPECT_EQ(ValueOf(pattern, L"lRecurWeekMask"), L"62");
}

TEST(RecurrenceElements, EveryTwelveMonthsIsOneYearWithTheMonthInFrontOfIt) {
    const CString body = Write(OfDay(0x200D, 12, 2));
    EXPECT_NE(body.find(L"<lRecurType>1</lRecurType>\n\t<lRecurMonth>3</lRecurMonth>\n\t"
                        L"<lRecurInterval>1</lRecurInterval>"),
              CString::npos);
}

TEST(RecurrenceElements, TheLastWeekIsMinus1AndTheFourthIs4) {
    tagRecurrencePattern pattern = OfNthWeekday(0x200C, 1, 3);
    const std::pair<std::uint32_t, const wchar_t*> weeks[] = {{0, L"0"},  {1, L"1"},  {4, L"4"},
                                                              {5, L"-1"}, {6, L"-1"}, {0xFFFFFFFF, L"-1"}};
    for (const auto& [week, text] : weeks) {
        pattern.NthWeek = week;
        EXPECT_EQ(ValueOf(pattern, L"lRecurWeekDay"), text) << week;
    }
}

TEST(RecurrenceElements, ASeriesThatNeverEndsHasNoDateAndNoCount) {
    for (const std::uint32_t end : {0x2023U, 0xFFFFFFFFU}) {
        tagRecurrencePattern pattern = Weekly();
        pattern.EndType = end;
        EXPECT_EQ(ValueOf(pattern, L"dtRecurEndDate"), L"NULL");
        EXPECT_EQ(ValueOf(pattern, L"bRecurHasEndDate"), L"FALSE");
        EXPECT_EQ(ValueOf(pattern, L"lRecurRepeat"), L"0");
    }
}

TEST(RecurrenceElements, AnyOtherEndIsADateAndACount) {
    for (const std::uint32_t end : {0x2021U, 0x2022U, 0U, 0x2024U, 0xFFFFFFFEU}) {
        tagRecurrencePattern pattern = Weekly();
        pattern.EndType = end;
        EXPECT_EQ(ValueOf(pattern, L"dtRecurEndDate"), L"05/04/2011 00:00:00");
        EXPECT_EQ(ValueOf(pattern, L"bRecurHasEndDate"), L"TRUE");
        EXPECT_EQ(ValueOf(pattern, L"lRecurRepeat"), L"10");
    }
}

TEST(RecurrenceElements, AnyMinuteIsADate) {
    tagRecurrencePattern pattern = OfDay(0x200D, 12, 2);
    pattern.EndDate = 0xFFFFFFFF;
    pattern.StartDate = 0xFFFFFFFF;
    // 2^32 minutes reach into the year 9767.
    EXPECT_TRUE(ValueOf(pattern, L"dtRecurEndDate").find(L"/9767 ") != CString::npos);
    pattern.EndDate = 0;
    pattern.StartDate = 0;
    EXPECT_EQ(ValueOf(pattern, L"dtRecurEndDate"), L"01/01/1601 00:00:00");
    EXPECT_EQ(ValueOf(pattern, L"lRecurMonth"), L"1");
}

TEST(RecurrenceElements, MonthIsThatOfTheStartInEveryZone) {
    tagRecurrencePattern pattern = OfDay(0x200D, 12, 2);
    constexpr std::uint32_t kLastOfMarch = kFirstMonday + 24 * kDay;
    for (const std::uint32_t start : {kLastOfMarch, kLastOfMarch + kDay - 1}) {
        pattern.StartDate = start;
        EXPECT_EQ(ValueOf(pattern, L"lRecurMonth"), L"3");
    }
    pattern.StartDate = kLastOfMarch + kDay;
    EXPECT_EQ(ValueOf(pattern, L"lRecurMonth"), L"4");
}

TEST(RecurrenceElements, NumbersAreSigned) {
    tagRecurrencePattern pattern = Weekly();
    pattern.Period = 0xFFFFFFFF;
    pattern.WeekDays = 0x80000000;
    pattern.OccurrenceCount = 0xFFFFFFFE;
    pattern.DayOfMonth = 0xFFFFFFFF;
    EXPECT_EQ(ValueOf(pattern, L"lRecurInterval"), L"-1");
    EXPECT_EQ(ValueOf(pattern, L"lRecurWeekMask"), L"-2147483648");
    EXPECT_EQ(ValueOf(pattern, L"lRecurRepeat"), L"-2");
    EXPECT_EQ(ValueOf(pattern, L"lRecurDay"), L"-1");
}

TEST(RecurrenceElements, AnyOtherCalendarIsNamedAsSuchAndNothingElse) {
    for (const unsigned calendar : {1U, 6U, 8U, 0xFFFFU}) {
        tagRecurrencePattern pattern = WithExceptions();
        pattern.CalendarType = static_cast<std::uint16_t>(calendar);
        EXPECT_EQ(Write(pattern), CalendarOf({{L"lRecurType", L"1"}, {L"lCalType", L"-1"}}));
    }
}

TEST(RecurrenceElements, ExceptionsWithoutDeletedDaysAreLost) {
    tagRecurrencePattern pattern = Weekly();
    SetExceptions(pattern, {Moved(kFirstMonday, 0)});
    EXPECT_EQ(ValueOf(pattern, L"ExceptionRule"), L"(none)");
    // A count without its array says nothing either.
    pattern.DeletedInstanceCount = 3;
    EXPECT_EQ(ValueOf(pattern, L"ExceptionRule"), L"(none)");
    EXPECT_EQ(ValueOf(pattern, L"lRecurRepeat"), L"10");
}

}  // namespace
