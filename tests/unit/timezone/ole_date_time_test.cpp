#include "timezone/ole_date_time.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

#include "support/errors.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

TEST(SetDateTime, GivesTheDaysSinceTheEpoch) {
    COleDateTime date;
    EXPECT_EQ(date.SetDateTime(2010, 2, 10, 6, 0, 0), kDateValid);
    EXPECT_EQ(date.m_dt, 40219.25);
    EXPECT_EQ(date.m_status, kDateValid);
    EXPECT_EQ(date.SetDateTime(1899, 12, 30, 0, 0, 0), kDateValid);
    EXPECT_EQ(date.m_dt, 0.0);
    EXPECT_EQ(date.SetDateTime(1899, 12, 29, 12, 0, 0), kDateValid);
    EXPECT_EQ(date.m_dt, -1.5);
    EXPECT_EQ(date.SetDateTime(9999, 12, 31, 0, 0, 0), kDateValid);
    EXPECT_EQ(date.m_dt, 2958465.0);
}

TEST(SetDateTime, EverySecondOfADayComesBack) {
    for (unsigned second = 0; second < 86400; ++second) {
        COleDateTime date;
        ASSERT_EQ(date.SetDateTime(2010, 2, 10, static_cast<WORD>(second / 3600),
                                   static_cast<WORD>(second / 60 % 60), static_cast<WORD>(second % 60)),
                  kDateValid)
            << second;
    }
}

TEST(SetDateTime, ADateThatDoesNotExistIsInvalid) {
    COleDateTime date;
    EXPECT_EQ(date.SetDateTime(2000, 2, 30, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2000, 2, 29, 0, 0, 0), kDateValid);
    EXPECT_EQ(date.SetDateTime(1900, 2, 29, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 4, 31, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.m_status, kDateInvalid);
}

TEST(SetDateTime, FieldsOutsideTheirRangeAreInvalid) {
    COleDateTime date;
    EXPECT_EQ(date.SetDateTime(2010, 0, 1, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 13, 1, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 1, 0, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 1, 1, 24, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 1, 1, 0, 60, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(2010, 1, 1, 0, 0, 60), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(10000, 1, 1, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.SetDateTime(0xFFFF, 0xFFFF, 0xFFFF, 0, 0, 0), kDateInvalid);
}

TEST(SetDateTime, AYearOfTwoDigitsIsInvalid) {
    // The platform reads 10 as 2010, and what does not come back as it was given is no date.
    EXPECT_EQ(COleDateTime().SetDateTime(10, 2, 10, 0, 0, 0), kDateInvalid);
}

TEST(SetDateTime, TheYears100To9999AreAllThereIs) {
    EXPECT_EQ(COleDateTime().SetDateTime(99, 12, 31, 23, 59, 59), kDateInvalid);
    COleDateTime first;
    EXPECT_EQ(first.SetDateTime(100, 1, 1, 0, 0, 0), kDateValid);
    EXPECT_EQ(first.m_dt, -657434.0);
    EXPECT_EQ(first.Format(L"%Y-%m-%d"), L"0100-01-01");
    COleDateTime last;
    EXPECT_EQ(last.SetDateTime(9999, 12, 31, 23, 59, 59), kDateValid);
    EXPECT_EQ(std::floor(last.m_dt), 2958465.0);
    EXPECT_EQ(last.Format(L"%Y-%m-%d %H:%M:%S"), L"9999-12-31 23:59:59");
    EXPECT_EQ(COleDateTime().SetDateTime(10000, 1, 1, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(COleDateTime().SetDateTime(65535, 1, 1, 0, 0, 0), kDateInvalid);
}

TEST(SetDateTime, ARefusedDateLeavesTheValue) {
    COleDateTime date{5.0, kDateValid};
    EXPECT_EQ(date.SetDateTime(2010, 13, 1, 0, 0, 0), kDateInvalid);
    EXPECT_EQ(date.m_dt, 5.0);
}

TEST(GetCurrentTime, IsTheLocalTimeNow) {
    if (std::getenv("TZ") != nullptr) {
        GTEST_SKIP() << "the run-time library reads TZ in its own way";
    }
    SYSTEMTIME before = {};
    SYSTEMTIME after = {};
    GetLocalTime(&before);
    const COleDateTime now = COleDateTime::GetCurrentTime();
    GetLocalTime(&after);
    EXPECT_EQ(now.m_status, kDateValid);
    EXPECT_GE(Text(now), Text(before));
    EXPECT_LE(Text(now), Text(after));
}

TEST(Format, TheValueForNoDateIsTheEpoch) {
    EXPECT_EQ(COleDateTime().Format(L"%m/%d/%Y %H:%M:%S"), L"12/30/1899 00:00:00");
}

TEST(Format, WritesTheFormsOfTheDocuments) {
    const COleDateTime date = Date(2010, 2, 10, 16, 5, 9);
    EXPECT_EQ(date.Format(L"%m/%d/%Y %H:%M:%S"), L"02/10/2010 16:05:09");
    EXPECT_EQ(date.Format(L"%Y-%m-%d"), L"2010-02-10");
    EXPECT_EQ(date.Format(L"%Y/%m/%d %H:%M:%S"), L"2010/02/10 16:05:09");
    EXPECT_EQ(date.Format(L""), L"");
}

TEST(Format, KnowsTheDayOfTheWeekAndOfTheYear) {
    EXPECT_EQ(Date(2010, 12, 31).Format(L"%w %j"), L"5 365");
    EXPECT_EQ(Date(2012, 12, 31).Format(L"%w %j"), L"1 366");
}

TEST(Format, DatesBeforeTheEpochKeepTheirTimeOfDay) {
    EXPECT_EQ((COleDateTime{-1.5, kDateValid}.Format(L"%m/%d/%Y %H:%M:%S")), L"12/29/1899 12:00:00");
}

TEST(Format, ANullDateIsEmpty) {
    EXPECT_EQ((COleDateTime{5.0, kDateNull}.Format(L"%Y")), L"");
}

TEST(Format, AnInvalidDateAndOneOutOfRangeSaySo) {
    EXPECT_EQ((COleDateTime{5.0, kDateInvalid}.Format(L"%Y")), L"Invalid DateTime");
    EXPECT_EQ((COleDateTime{2958466.0, kDateValid}.Format(L"%Y")), L"Invalid DateTime");
    EXPECT_EQ((COleDateTime{-657435.0, kDateValid}.Format(L"%Y")), L"Invalid DateTime");
}

TEST(Format, TextLongerThanTheBufferIsEmpty) {
    EXPECT_EQ(COleDateTime().Format(CString(WideString(255, L'x')).c_str()), CString(WideString(255, L'x')));
    EXPECT_EQ(COleDateTime().Format(CString(WideString(256, L'x')).c_str()), L"");
}

TEST(Format, NumbersHaveAllTheirDigitsToTheEndOfTheCalendar) {
    EXPECT_EQ(Date(9999, 12, 31, 23, 59, 58).Format(L"%S%M%H%d%m%Y"), L"58592331129999");
    EXPECT_EQ(Date(1601, 1, 2, 3, 4, 5).Format(L"%S%M%H%d%m%Y"), L"05040302011601");
}

TEST(Format, NumbersStandBesideOtherDirectives) {
    EXPECT_EQ(Date(2010, 2, 10).Format(L"%d%%, %j"), L"10%, 041");
}

TEST(Format, NumberBeyondTheBufferLeavesTheTextEmpty) {
    const CString front(WideString(251, L'x'));
    EXPECT_EQ(Date(2010, 2, 10).Format(CString(front + L"%Y").c_str()), CString(front + L"2010"));
    EXPECT_EQ(Date(2010, 2, 10).Format(CString(front + L"x%Y").c_str()), L"");
}

TEST(Format, ANullFormatRaisesInvalidArgument) {
    for (const std::int32_t status : {kDateValid, kDateInvalid, kDateNull}) {
        try {
            static_cast<void>(COleDateTime{0.0, status}.Format(nullptr));
            ADD_FAILURE() << "nothing was raised";
        } catch (const COleException& exception) {
            EXPECT_EQ(exception.Code(), kErrorInvalidArgument);
        }
    }
}

}  // namespace
