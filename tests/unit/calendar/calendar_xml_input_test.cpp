#include "calendar/calendar_xml_input.h"

#include <gtest/gtest.h>

#include <utility>
#include <vector>

#include "tests/unit/recorded_log.h"
#include "tests/unit/text_printer.h"

namespace {

using Entries = std::vector<std::pair<std::int32_t, CString>>;

COleDateTime At(WORD year, WORD month, WORD day, WORD hour = 0, WORD minute = 0, WORD second = 0) {
    COleDateTime date;
    date.SetDateTime(year, month, day, hour, minute, second);
    return date;
}

std::string Printed(const CString& text) {
    return testing::PrintToString(text);
}

/// A record that was parsed from a document with some elements below the root.
class CalendarXmlInput : public testing::Test {
  protected:
    void SetUp() override { TakeLog(); }
    void TearDown() override { EXPECT_EQ(TakeLog(), LogLines()); }

    void Parse(const CString& xml) { EXPECT_EQ(ParseCalendarXml(xml, m_calendar), 1); }
    void ParseElements(const CString& elements) {
        Parse(CString(L"<?xml version='1.0' encoding='utf-8'?><Calendar>") + elements + L"</Calendar>");
    }
    /// Parses a document with one element into a record that was reset.
    void ParseOne(const CString& name, const CString& text) {
        m_calendar.Reset();
        ParseElements(L"<" + name + L">" + text + L"</" + name + L">");
    }
    /// Ids and values of the entries, in order.
    [[nodiscard]] Entries List() const {
        Entries entries;
        for (const auto& entry : m_calendar.m_arrInfo) {
            entries.emplace_back(entry->m_nFieldId, entry->m_strValue);
        }
        return entries;
    }
    /// Expects the start to be a valid date.
    void ExpectStart(const CString& text, const COleDateTime& date) {
        ParseOne(L"dtStartTime", text);
        EXPECT_EQ(m_calendar.m_dtStartTime.m_status, kDateValid) << Printed(text);
        EXPECT_EQ(m_calendar.m_dtStartTime.m_dt, date.m_dt) << Printed(text);
    }
    /// Expects the start to be no date at all, with a value that does not depend on the platform.
    void ExpectNoStart(const CString& text) {
        ParseOne(L"dtStartTime", text);
        EXPECT_EQ(m_calendar.m_dtStartTime.m_status, kDateInvalid) << Printed(text);
        EXPECT_EQ(m_calendar.m_dtStartTime.m_dt, 0.0) << Printed(text);
    }

    CCalendarEx m_calendar;
};

constexpr std::pair<const wchar_t*, std::int32_t CCalendarEx::*> kNumbers[] = {
    {L"lFlag", &CCalendarEx::m_lFlag},
    {L"Priority", &CCalendarEx::m_nPriority},
    {L"nRingTone", &CCalendarEx::m_nRingTone},
    {L"lReminderMinutes", &CCalendarEx::m_lReminderMinutes},
    {L"lRecurType", &CCalendarEx::m_lRecurType},
    {L"lCalType", &CCalendarEx::m_lCalType},
    {L"lRecurInterval", &CCalendarEx::m_lRecurInterval},
    {L"lRecurMonth", &CCalendarEx::m_lRecurMonth},
    {L"lRecurInstance", &CCalendarEx::m_lRecurInstance},
    {L"lRecurWeekMask", &CCalendarEx::m_lRecurWeekMask},
    {L"lRecurWeekDay", &CCalendarEx::m_lRecurWeekDay},
    {L"lRecurDay", &CCalendarEx::m_lRecurDay},
    {L"lRecurRepeat", &CCalendarEx::m_lRecurRepeat},
};
constexpr std::pair<const wchar_t*, std::int32_t CCalendarEx::*> kYesNos[] = {
    {L"bAlldayEvent", &CCalendarEx::m_bAlldayEvent},
    {L"bRecurHasEndDate", &CCalendarEx::m_bRecurHasEndDate},
};
constexpr std::pair<const wchar_t*, CString CCalendarEx::*> kTexts[] = {
    {L"PIMID", &CCalendarEx::m_strPIMID},
    {L"CsFolder", &CCalendarEx::m_strCsFolder},
};
constexpr std::pair<const wchar_t*, COleDateTime CCalendarEx::*> kDates[] = {
    {L"dtStartTime", &CCalendarEx::m_dtStartTime},
    {L"dtEndTime", &CCalendarEx::m_dtEndTime},
    {L"dtRecurEndDate", &CCalendarEx::m_dtRecurEndDate},
};
/// In the order in which the entries come.
constexpr std::pair<const wchar_t*, std::int32_t> kEntries[] = {
    {L"Description", 3000}, {L"Location", 3003},      {L"Body", 3002},
    {L"TimeZone", 3037},    {L"ExceptionRule", 3024},
};
static_assert(std::size(kNumbers) + std::size(kYesNos) + std::size(kTexts) + std::size(kDates) +
                  std::size(kEntries) ==
              25);

TEST_F(CalendarXmlInput, DocumentWithAFlagAloneHasTheValuesOfAResetOtherwise) {
    ParseElements(L"<lFlag>8</lFlag>");
    EXPECT_EQ(m_calendar.m_lFlag, 8);
    EXPECT_EQ(m_calendar.m_lRecurInterval, 1);
    EXPECT_EQ(m_calendar.m_nPriority, 1);
    EXPECT_EQ(m_calendar.m_lCalType, -1);
    for (const auto& [name, member] : kDates) {
        EXPECT_TRUE((m_calendar.*member).IsNoDate()) << Printed(name);
    }
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
}

TEST_F(CalendarXmlInput, TextThatIsNotXmlLeavesTheRecordAsItWas) {
    m_calendar.m_strPIMID = L"before";
    m_calendar.m_lFlag = 4;
    for (const wchar_t* const text :
         {L"", L" ", L"not XML", L"<Calendar><lFlag>8</lFlag>", L"<Calendar><lFlag>8</lFlag></calendar>"}) {
        Parse(text);
        EXPECT_EQ(m_calendar.m_lFlag, 4);
        EXPECT_EQ(m_calendar.m_strPIMID, L"before");
        EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
    }
}

TEST_F(CalendarXmlInput, EachNumberGoesToItsMemberAndToNoOther) {
    for (const auto& [name, member] : kNumbers) {
        ParseOne(name, L"77");
        for (const auto& [other, otherMember] : kNumbers) {
            const CCalendarEx reset;
            EXPECT_EQ(m_calendar.*otherMember, otherMember == member ? 77 : reset.*otherMember)
                << Printed(name) << Printed(other);
        }
    }
}

TEST_F(CalendarXmlInput, NumberIsTheOneAtTheBeginningOfItsText) {
    const std::pair<const wchar_t*, std::int32_t> texts[] = {
        {L"8", 8},    {L"8x", 8},  {L" 32 ", 32},  {L"-1", -1},
        {L"+12", 12}, {L"4.9", 4}, {L"007", 7},    {L"4294967304", 2147483647},
        {L"x8", 0},   {L"0x8", 0}, {L"- 4", 0},    {L"", 0},
        {L"--1", 0},  {L"1 2", 1}, {L"\x0661", 0}, {L"-2147483648", -2147483647 - 1}};
    for (const auto& [name, member] : kNumbers) {
        for (const auto& [text, number] : texts) {
            ParseOne(name, text);
            EXPECT_EQ(m_calendar.*member, number) << Printed(name) << Printed(text);
        }
    }
}

TEST_F(CalendarXmlInput, NumberBelowZeroIsKept) {
    ParseElements(L"<lReminderMinutes>-1</lReminderMinutes><lRecurWeekDay>-1</lRecurWeekDay>");
    EXPECT_EQ(m_calendar.m_lReminderMinutes, -1);
    EXPECT_EQ(m_calendar.m_lRecurWeekDay, -1);
}

TEST_F(CalendarXmlInput, YesIsTrueInCapitalsAndNothingElse) {
    for (const auto& [name, member] : kYesNos) {
        ParseOne(name, L"TRUE");
        EXPECT_EQ(m_calendar.*member, 1) << Printed(name);
        for (const wchar_t* const text :
             {L"true", L"True", L"1", L"-1", L"TRUE.", L"TRUEE", L"YES", L"FALSE", L""}) {
            ParseOne(name, text);
            EXPECT_EQ(m_calendar.*member, 0) << Printed(name) << Printed(text);
        }
    }
}

TEST_F(CalendarXmlInput, NoIsWrittenOverAYes) {
    m_calendar.m_bRecurHasEndDate = 1;
    ParseElements(L"<bRecurHasEndDate>true</bRecurHasEndDate>");
    EXPECT_EQ(m_calendar.m_bRecurHasEndDate, 0);
}

TEST_F(CalendarXmlInput, WholeDayHasTwoSpellingsOfWhichOneIsRead) {
    ParseElements(L"<bAllDayEvent>TRUE</bAllDayEvent>");
    EXPECT_EQ(m_calendar.m_bAlldayEvent, 0);
    ParseElements(L"<bAlldayEvent>TRUE</bAlldayEvent>");
    EXPECT_EQ(m_calendar.m_bAlldayEvent, 1);
}

TEST_F(CalendarXmlInput, EachTextGoesToItsMember) {
    ParseElements(L"<CsFolder>\\\\Calendar\\Sub</CsFolder><PIMID>00AB</PIMID>");
    EXPECT_EQ(m_calendar.m_strPIMID, L"00AB");
    EXPECT_EQ(m_calendar.m_strCsFolder, L"\\\\Calendar\\Sub");
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
}

TEST_F(CalendarXmlInput, EmptyTextOfAnIdentityIsTakenToo) {
    m_calendar.m_strPIMID = L"before";
    m_calendar.m_strCsFolder = L"before";
    ParseElements(L"<PIMID/><CsFolder></CsFolder>");
    EXPECT_EQ(m_calendar.m_strPIMID, L"");
    EXPECT_EQ(m_calendar.m_strCsFolder, L"");
}

TEST_F(CalendarXmlInput, EntriesComeInTheFixedOrderWhateverTheDocumentsIs) {
    CString elements;
    Entries expected;
    for (const auto& [name, id] : kEntries) {
        const CString value = CString(L"value of ") + name;
        elements = CString(L"<") + name + L">" + value + L"</" + name + L">" + elements;
        expected.emplace_back(id, value);
    }
    ParseElements(elements);
    EXPECT_EQ(List(), expected);
    EXPECT_EQ(m_calendar.m_arrInfo[0]->m_nObjectType, 100);
    EXPECT_EQ(m_calendar.m_arrInfo[0]->m_arrReserved1, (std::array<std::int32_t, 4>{-1, 0, -1, 0}));
    EXPECT_EQ(m_calendar.m_arrInfo[0]->m_strReserved2, L"");
}

TEST_F(CalendarXmlInput, EmptyTextAddsNoEntryAndIsTheNumberZero) {
    m_calendar.m_lRecurType = 3;
    ParseElements(L"<Location></Location><Body/><Description> </Description><lRecurType></lRecurType>");
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
    EXPECT_EQ(m_calendar.m_lRecurType, 0);
}

TEST_F(CalendarXmlInput, OfTwoBodiesTheFirstCounts) {
    ParseElements(L"<Body>one</Body><Body>two</Body>");
    EXPECT_EQ(List(), (Entries{{3002, L"one"}}));
}

TEST_F(CalendarXmlInput, OfTwoBodiesAnEmptyFirstOneCounts) {
    ParseElements(L"<Body/><Body>two</Body>");
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
}

TEST_F(CalendarXmlInput, ExceptionRuleIsKeptAsItStands) {
    ParseElements(L"<ExceptionRule>2011/03/16|x&lt;y&gt;|</ExceptionRule>");
    EXPECT_EQ(List(), (Entries{{3024, L"2011/03/16|x<y>|"}}));
}

TEST_F(CalendarXmlInput, EachDateGoesToItsMember) {
    for (const auto& [name, member] : kDates) {
        ParseOne(name, L"12/31/2010 23:59:58");
        for (const auto& [other, otherMember] : kDates) {
            const COleDateTime& date = m_calendar.*otherMember;
            EXPECT_EQ(date.m_status, kDateValid);
            EXPECT_EQ(date.m_dt, otherMember == member ? At(2010, 12, 31, 23, 59, 58).m_dt : 0.0)
                << Printed(name) << Printed(other);
        }
    }
}

TEST_F(CalendarXmlInput, DateOfOneDigitFieldsIsRead) {
    ExpectStart(L"1/2/2010 3:04:05", At(2010, 1, 2, 3, 4, 5));
}

TEST_F(CalendarXmlInput, WhatADateDoesNotHoldIsZero) {
    ExpectStart(L"12/31/2010", At(2010, 12, 31));
    ExpectStart(L"12/31/2010 7", At(2010, 12, 31, 7));
    ExpectStart(L"12/31/2010 07:08", At(2010, 12, 31, 7, 8));
}

TEST_F(CalendarXmlInput, ReadingOfADateStopsWhereItDoesNotFit) {
    ExpectStart(L"12/31/2010T07:08:09", At(2010, 12, 31));
    ExpectStart(L"12/31/2010 7.08.09", At(2010, 12, 31, 7));
    ExpectStart(L"12/31/2010 07:08:09 PM", At(2010, 12, 31, 7, 8, 9));
    ExpectStart(L"12/31/2010 07:08:09.5", At(2010, 12, 31, 7, 8, 9));
    ExpectStart(L"12/31/2010 x", At(2010, 12, 31));
}

TEST_F(CalendarXmlInput, FieldsOfADateHaveTheirWidths) {
    // The fifth digit of the year is the hour, since white space may be missing there.
    ExpectStart(L"12/31/201012:30:40", At(2010, 12, 31, 12, 30, 40));
    ExpectStart(L"12/31/2010 07:08:091", At(2010, 12, 31, 7, 8, 9));
    // The third digit of the month is no slash.
    ExpectNoStart(L"012/31/2010");
}

TEST_F(CalendarXmlInput, WhiteSpaceInFrontOfANumberOfADateDoesNotCount) {
    ExpectStart(L" 1/ 2/ 2010   3: 4: 5", At(2010, 1, 2, 3, 4, 5));
    ExpectStart(L"1/2/2010\n\t3:04:05", At(2010, 1, 2, 3, 4, 5));
    // In front of a slash it does.
    ExpectNoStart(L"1 /2/2010");
}

TEST_F(CalendarXmlInput, DateInAnotherOrderIsNotValid) {
    ExpectNoStart(L"2010-01-02");
    ExpectNoStart(L"31/12/2010");
    ExpectNoStart(L"2010/01/02 03:04:05");
}

TEST_F(CalendarXmlInput, DateThatDoesNotExistIsNotValid) {
    for (const wchar_t* const text :
         {L"02/30/2010 00:00:00", L"02/29/2011", L"00/10/2010", L"01/00/2010", L"13/01/2010", L"01/32/2010",
          L"01/02/2010 24:00:00", L"01/02/2010 00:60:00", L"01/02/2010 00:00:60", L"01/02/2010 -1:00:00",
          L"-1/02/2010", L"1/2/-1", L"1/2"}) {
        ExpectNoStart(text);
    }
    ExpectStart(L"02/29/2012", At(2012, 2, 29));
}

TEST_F(CalendarXmlInput, DateOfNoTextIsNotValidAndNotTheValueForNoDate) {
    ExpectNoStart(L"");
    ExpectNoStart(L"   ");
    ExpectNoStart(L"NULL");
    EXPECT_FALSE(m_calendar.m_dtStartTime.IsNoDate());
}

TEST_F(CalendarXmlInput, EndDateThatDoesNotExistKeepsTheValueForNoDate) {
    // The end of a series is told by the value.
    ParseElements(L"<bRecurHasEndDate>TRUE</bRecurHasEndDate><dtRecurEndDate/>");
    EXPECT_EQ(m_calendar.m_dtRecurEndDate.m_dt, 0.0);
    EXPECT_EQ(m_calendar.m_dtRecurEndDate.m_status, kDateInvalid);
}

TEST_F(CalendarXmlInput, EveryDayOfFourYearsIsRead) {
    constexpr WORD kDays[] = {31, 29, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    for (WORD year = 2009; year <= 2012; ++year) {
        for (WORD month = 1; month <= 12; ++month) {
            for (WORD day = 1; day <= 31; ++day) {
                const CString text = CString::Format(L"%02d/%02d/%04d", month, day, year);
                const bool exists = day <= kDays[month - 1] && (month != 2 || day != 29 || year == 2012);
                if (exists) {
                    ExpectStart(text, At(year, month, day));
                } else {
                    ExpectNoStart(text);
                }
            }
        }
    }
}

TEST_F(CalendarXmlInput, NamesOfOtherCaseAttributesAndOtherDepthsAreNotRead) {
    ParseElements(
        L"<Group><lFlag>8</lFlag><Body>x</Body></Group><lflag>8</lflag><body>x</body><Unknown lFlag='8'/>"
        L"<n:Body xmlns:n='urn:x'>x</n:Body>");
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_TRUE(m_calendar.m_arrInfo.IsEmpty());
}

TEST_F(CalendarXmlInput, TextOfAnElementIsThatOfItsDescendantsToo) {
    ParseElements(L"<Body>one<b> two</b><![CDATA[ <three>]]><!-- not this --> &amp; &#x34;</Body>");
    EXPECT_EQ(List(), (Entries{{3002, L"one two <three> & 4"}}));
}

TEST_F(CalendarXmlInput, ASecondDocumentAddsItsEntriesToTheRecord) {
    ParseElements(L"<Body>one</Body><lFlag>8</lFlag>");
    ParseElements(L"<Body>two</Body>");
    EXPECT_EQ(List(), (Entries{{3002, L"one"}, {3002, L"two"}}));
    EXPECT_EQ(m_calendar.m_lFlag, 8);
}

}  // namespace
