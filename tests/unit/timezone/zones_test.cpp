// The conversions with real zones. The zone belongs to the process, so each of these suites runs in a process
// of its own, with TZ in its environment, and is skipped in any other.

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"
#include "timezone/conversions.h"

namespace {

FARPROC WINAPI NoFunction(HMODULE, LPCSTR) {
    return nullptr;
}

class ZoneTest : public testing::Test {
  protected:
    ZoneTest(const char* zone, LONG bias) : m_zone(zone), m_bias(bias) {}

    void SetUp() override {
        const char* const zone = std::getenv("TZ");
        if (zone == nullptr || zone != m_zone) {
            GTEST_SKIP() << "runs with TZ=" << m_zone;
        }
        TIME_ZONE_INFORMATION information = {};
        ASSERT_NE(GetTimeZoneInformation(&information), TIME_ZONE_ID_INVALID);
        ASSERT_EQ(information.Bias, m_bias) << "the process is not in the zone of the test";
    }

    static CString ToLocal(const SYSTEMTIME& utc, const TimeZoneCalls& calls = {}) {
        COleDateTime local;
        UtcSystemTimeToLocalDateTime(utc, local, calls);
        return Text(local);
    }
    static CString ToUtc(const COleDateTime& local, const TimeZoneCalls& calls = {}) {
        SYSTEMTIME utc = {};
        LocalDateTimeToUtcSystemTime(local, utc, calls);
        return Text(utc);
    }
    static TimeZoneCalls Fallback() { return {&::GetTimeZoneInformation, &::LoadLibraryW, &NoFunction}; }

  private:
    std::string m_zone;
    LONG m_bias;
};

class InNewYork : public ZoneTest {
  protected:
    InNewYork() : ZoneTest("America/New_York", 300) {}
};

TEST_F(InNewYork, WinterIsFiveAndSummerFourHoursBehind) {
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12)), L"2010-01-15 07:00:00");
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12)), L"2010-07-15 08:00:00");
    EXPECT_EQ(ToUtc(Date(2010, 1, 15, 7)), L"2010-01-15 12:00:00");
    EXPECT_EQ(ToUtc(Date(2010, 7, 15, 8)), L"2010-07-15 12:00:00");
}

TEST_F(InNewYork, TheHourOfSpringIsSkipped) {
    // Daylight saving begins on the second Sunday of March at 02:00.
    EXPECT_EQ(ToLocal(Fields(2010, 3, 14, 6, 59, 59)), L"2010-03-14 01:59:59");
    EXPECT_EQ(ToLocal(Fields(2010, 3, 14, 7)), L"2010-03-14 03:00:00");
}

TEST_F(InNewYork, TheHourOfAutumnComesTwice) {
    // It ends on the first Sunday of November at 02:00.
    EXPECT_EQ(ToLocal(Fields(2010, 11, 7, 5, 59, 59)), L"2010-11-07 01:59:59");
    EXPECT_EQ(ToLocal(Fields(2010, 11, 7, 6)), L"2010-11-07 01:00:00");
    EXPECT_EQ(ToLocal(Fields(2010, 11, 7, 7)), L"2010-11-07 02:00:00");
}

TEST_F(InNewYork, FallbackIgnoresDaylightSaving) {
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12), Fallback()), L"2010-07-15 07:00:00");
    EXPECT_EQ(ToUtc(Date(2010, 7, 15, 7), Fallback()), L"2010-07-15 12:00:00");
}

TEST_F(InNewYork, FileTimesOfTheStoreBecomeLocal) {
    // 2010-07-15 12:00 UTC.
    SYSTEMTIME fields = Fields(2010, 7, 15, 12);
    FILETIME time = {};
    ASSERT_TRUE(SystemTimeToFileTime(&fields, &time));
    COleDateTime local;
    FileTimeToLocalDateTime(time, local);
    EXPECT_EQ(Text(local), L"2010-07-15 08:00:00");

    const FILETIME back = LocalDateTimeToFileTime(local);
    EXPECT_EQ(back.dwLowDateTime, time.dwLowDateTime);
    EXPECT_EQ(back.dwHighDateTime, time.dwHighDateTime);
}

TEST_F(InNewYork, MinutesSince1601KnowNoZone) {
    EXPECT_EQ(MinutesSince1601(Date(2010, 7, 15, 23)), MinutesSince1601(Date(2010, 7, 15)));
    COleDateTime date;
    MinutesToDateTime(MinutesSince1601(Date(2010, 7, 15)) + 480, &date);
    EXPECT_EQ(Text(date), L"2010-07-15 08:00:00");
}

class InKolkata : public ZoneTest {
  protected:
    InKolkata() : ZoneTest("Asia/Kolkata", -330) {}
};

TEST_F(InKolkata, IsFiveAndAHalfHoursAheadAllYear) {
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12)), L"2010-01-15 17:30:00");
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 20)), L"2010-07-16 01:30:00");
    EXPECT_EQ(ToUtc(Date(2010, 1, 1, 5, 29)), L"2009-12-31 23:59:00");
}

TEST_F(InKolkata, FallbackIsTheSameWithoutDaylightSaving) {
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 20), Fallback()), L"2010-07-16 01:30:00");
    EXPECT_EQ(ToUtc(Date(2010, 1, 1, 5, 29), Fallback()), L"2009-12-31 23:59:00");
}

class OnLordHowe : public ZoneTest {
  protected:
    OnLordHowe() : ZoneTest("Australia/Lord_Howe", -630) {}
};

TEST_F(OnLordHowe, WinterIsTenAndAHalfHoursAhead) {
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12)), L"2010-07-15 22:30:00");
    EXPECT_EQ(ToUtc(Date(2010, 7, 15, 22, 30)), L"2010-07-15 12:00:00");
}

TEST_F(OnLordHowe, SummerAddsWhatThePlatformSaysOfTheZone) {
    // It is half an hour there, which not every platform knows.
    TIME_ZONE_INFORMATION zone = {};
    ASSERT_NE(GetTimeZoneInformation(&zone), TIME_ZONE_ID_INVALID);
    ASSERT_LT(zone.DaylightBias, 0);
    const WORD minutes = static_cast<WORD>(30 - zone.DaylightBias);
    const COleDateTime local = Date(2010, 1, 15, static_cast<WORD>(22 + minutes / 60), minutes % 60);
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12)), Text(local));
    EXPECT_EQ(ToUtc(local), L"2010-01-15 12:00:00");
}

TEST_F(OnLordHowe, FallbackLeavesOutTheHalfHour) {
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12), Fallback()), L"2010-01-15 22:30:00");
}

}  // namespace
