#include "calendar/calendar_record.h"

#include <gtest/gtest.h>

#include <type_traits>

#include "calendar/recurrence_pattern.h"
#include "tests/unit/text_printer.h"

namespace {

using NAMESPACE_MAPI::tagRecurrenceException;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// An entry that counts how often one is destroyed.
class CountedEntry : public CCalendarInfoEx {
  public:
    explicit CountedEntry(int& destroyed) : m_destroyed(&destroyed) {}
    CountedEntry(const CountedEntry&) = delete;
    CountedEntry& operator=(const CountedEntry&) = delete;
    ~CountedEntry() override { ++*m_destroyed; }

  private:
    int* m_destroyed;
};

/// Expects each member to have the value of a record that was reset.
void ExpectReset(const CCalendarEx& calendar) {
    EXPECT_EQ(calendar.m_nObjectType, 103);
    EXPECT_TRUE(calendar.m_arrInfo.IsEmpty());
    EXPECT_EQ(calendar.m_lCalType, -1);
    EXPECT_EQ(calendar.m_lRecurInterval, 1);
    EXPECT_EQ(calendar.m_nPriority, 1);
    EXPECT_EQ(calendar.m_arrReserved3, (std::array<std::int32_t, 2>{-1, -1}));
    EXPECT_EQ(calendar.m_arrReserved5, (std::array<std::int32_t, 2>{0, 0}));
    EXPECT_EQ(calendar.m_arrReserved7, (std::array<std::int32_t, 3>{0, 0, 0}));
    for (const std::int32_t number :
         {calendar.m_lFlag, calendar.m_nReserved1, calendar.m_nRingTone, calendar.m_nReserved6,
          calendar.m_lRecurType, calendar.m_lRecurDay, calendar.m_lRecurMonth, calendar.m_lRecurInstance,
          calendar.m_lRecurWeekDay, calendar.m_lRecurWeekMask, calendar.m_lRecurRepeat,
          calendar.m_bRecurHasEndDate, calendar.m_lReminderMinutes, calendar.m_nReserved8,
          calendar.m_bAlldayEvent, calendar.m_nReserved9}) {
        EXPECT_EQ(number, 0);
    }
    for (const CString& text : {calendar.m_strPIMID, calendar.m_strCsFolder, calendar.m_strReserved4}) {
        EXPECT_EQ(text, WIDE(""));
    }
    for (const COleDateTime& date : {calendar.m_dtStartTime, calendar.m_dtEndTime, calendar.m_dtLastModified,
                                     calendar.m_dtReserved2, calendar.m_dtRecurEndDate}) {
        EXPECT_TRUE(date.IsNoDate());
    }
}

/// Gives each member a value that no reset record has.
void Fill(CCalendarEx& calendar) {
    calendar.AddField(kBodyField, WIDE("body"));
    for (std::int32_t* const number :
         {&calendar.m_lCalType, &calendar.m_lFlag, &calendar.m_nReserved1, &calendar.m_nRingTone,
          &calendar.m_nReserved6, &calendar.m_lRecurType, &calendar.m_lRecurDay, &calendar.m_lRecurMonth,
          &calendar.m_lRecurInstance, &calendar.m_lRecurWeekDay, &calendar.m_lRecurWeekMask,
          &calendar.m_lRecurInterval, &calendar.m_lRecurRepeat, &calendar.m_bRecurHasEndDate,
          &calendar.m_lReminderMinutes, &calendar.m_nPriority, &calendar.m_nReserved8,
          &calendar.m_bAlldayEvent, &calendar.m_nReserved9}) {
        *number = 77;
    }
    calendar.m_arrReserved3.fill(77);
    calendar.m_arrReserved5.fill(77);
    calendar.m_arrReserved7.fill(77);
    for (CString* const text : {&calendar.m_strPIMID, &calendar.m_strCsFolder, &calendar.m_strReserved4}) {
        *text = WIDE("text");
    }
    for (COleDateTime* const date :
         {&calendar.m_dtStartTime, &calendar.m_dtEndTime, &calendar.m_dtLastModified, &calendar.m_dtReserved2,
          &calendar.m_dtRecurEndDate}) {
        *date = {40000.5, kDateInvalid};
    }
}

TEST(CalendarRecord, DefaultsOfAnEntry) {
    const CCalendarInfoEx entry;
    EXPECT_EQ(entry.m_nObjectType, 100);
    EXPECT_EQ(entry.m_strValue, WIDE(""));
    EXPECT_EQ(entry.m_nFieldId, 0);
    EXPECT_EQ(entry.m_arrReserved1, (std::array<std::int32_t, 4>{-1, 0, -1, 0}));
    EXPECT_EQ(entry.m_strReserved2, WIDE(""));
}

TEST(CalendarRecord, ANewOneIsAResetOne) {
    ExpectReset(CCalendarEx());
}

TEST(CalendarRecord, ResetGivesEveryMemberItsFirstValueAndEmptiesTheList) {
    CCalendarEx calendar;
    Fill(calendar);
    calendar.Reset();
    ExpectReset(calendar);
}

TEST(CalendarRecord, ResetDeletesEachEntryOnceAndASecondOneNothing) {
    int destroyed = 0;
    {
        CCalendarEx calendar;
        calendar.m_arrInfo.Add(std::make_unique<CountedEntry>(destroyed));
        calendar.m_arrInfo.Add(nullptr);
        calendar.m_arrInfo.Add(std::make_unique<CountedEntry>(destroyed));
        calendar.Reset();
        EXPECT_EQ(destroyed, 2);
        calendar.Reset();
    }
    EXPECT_EQ(destroyed, 2);
}

TEST(CalendarRecord, TheEndOfARecordDeletesItsEntries) {
    int destroyed = 0;
    {
        CCalendarEx calendar;
        calendar.m_arrInfo.Add(std::make_unique<CountedEntry>(destroyed));
    }
    EXPECT_EQ(destroyed, 1);
}

TEST(CalendarRecord, FieldsStandInOrderAndAnEmptyTextAddsNone) {
    CCalendarEx calendar;
    EXPECT_EQ(calendar.AddField(kSubjectField, WIDE("Review")), 1);
    EXPECT_EQ(calendar.AddField(kLocationField, WIDE("")), 0);
    EXPECT_EQ(calendar.AddField(kBodyField, WIDE("Agenda")), 1);
    ASSERT_EQ(calendar.m_arrInfo.GetSize(), 2U);
    EXPECT_EQ(calendar.m_arrInfo[0]->m_nFieldId, 3000);
    EXPECT_EQ(calendar.m_arrInfo[0]->m_strValue, WIDE("Review"));
    EXPECT_EQ(calendar.m_arrInfo[1]->m_nFieldId, 3002);
    EXPECT_EQ(calendar.m_arrInfo[1]->m_nObjectType, 100);
}

TEST(CalendarRecord, AnIndexOutsideTheListRaises) {
    const CCalendarEx calendar;
    EXPECT_THROW((void)calendar.m_arrInfo[0], CInvalidArgException);
}

TEST(CalendarRecord, IsNeverCopied) {
    EXPECT_FALSE(std::is_copy_constructible_v<CCalendarEx>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CCalendarEx>);
    EXPECT_TRUE(std::has_virtual_destructor_v<CCalendarInfoEx>);
}

TEST(RecurrencePattern, OneThatWasNeverParsedIsAllZeroAndCanBeDestroyed) {
    const auto pattern = std::make_unique<tagRecurrencePattern>();
    for (const std::uint32_t number : {std::uint32_t{pattern->ReaderVersion},
                                       std::uint32_t{pattern->WriterVersion},
                                       std::uint32_t{pattern->RecurFrequency},
                                       std::uint32_t{pattern->PatternType},
                                       std::uint32_t{pattern->CalendarType},
                                       pattern->FirstDateTime,
                                       pattern->Period,
                                       pattern->SlidingFlag,
                                       pattern->WeekDays,
                                       pattern->NthWeek,
                                       pattern->DayOfMonth,
                                       pattern->EndType,
                                       pattern->OccurrenceCount,
                                       pattern->FirstDOW,
                                       pattern->StartDate,
                                       pattern->EndDate,
                                       pattern->ReaderVersion2,
                                       pattern->WriterVersion2,
                                       pattern->StartTimeOffset,
                                       pattern->EndTimeOffset,
                                       pattern->DeletedInstanceCount,
                                       pattern->ModifiedInstanceCount}) {
        EXPECT_EQ(number, 0U);
    }
    EXPECT_EQ(pattern->DeletedInstanceDates, nullptr);
    EXPECT_EQ(pattern->Exceptions, nullptr);
    EXPECT_TRUE(std::has_virtual_destructor_v<tagRecurrencePattern>);
}

TEST(RecurrencePattern, ANewExceptionIsAllZeroWithEmptyTexts) {
    const tagRecurrenceException exception;
    for (const std::uint32_t number :
         {exception.OriginalDate, std::uint32_t{exception.OverrideFlags}, exception.StartDateTime,
          exception.EndDateTime, exception.OriginalStartDate, exception.MeetingType, exception.ReminderDelta,
          exception.ReminderSet, exception.BusyStatus, exception.Attachment, exception.SubType,
          exception.AppointmentColor}) {
        EXPECT_EQ(number, 0U);
    }
    EXPECT_EQ(exception.Subject, WIDE(""));
    EXPECT_EQ(exception.Location, WIDE(""));
    EXPECT_EQ(exception.Reserved, WIDE(""));
    EXPECT_FALSE(std::is_polymorphic_v<tagRecurrenceException>);
}

}  // namespace
