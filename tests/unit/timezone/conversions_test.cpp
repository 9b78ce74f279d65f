#include "timezone/conversions.h"
#include "timezone/date_text.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/errors.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

// Substitutes for the platform's functions, with what they were asked for.
std::vector<CString> libraries;
std::vector<std::string> functions;

DWORD WINAPI NoZone(TIME_ZONE_INFORMATION*) {
    return TIME_ZONE_ID_INVALID;
}
/// Five hours behind UTC, with an hour of daylight saving from March to November.
DWORD WINAPI FiveHoursBehind(TIME_ZONE_INFORMATION* zone) {
    *zone = {};
    zone->Bias = 300;
    zone->DaylightBias = -60;
    zone->StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    zone->DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    return TIME_ZONE_ID_DAYLIGHT;
}
/// Ten and a half hours ahead of UTC, with half an hour of daylight saving from October to April.
DWORD WINAPI HalfAnHourOfSummer(TIME_ZONE_INFORMATION* zone) {
    *zone = {};
    zone->Bias = -630;
    zone->DaylightBias = -30;
    zone->StandardDate = {0, 4, 0, 1, 2, 0, 0, 0};
    zone->DaylightDate = {0, 10, 0, 1, 2, 0, 0, 0};
    return TIME_ZONE_ID_STANDARD;
}
HMODULE WINAPI RecordLibrary(LPCWSTR name) {
    libraries.emplace_back(name);
    return LoadLibraryW(name);
}
HMODULE WINAPI NoLibrary(LPCWSTR) {
    return nullptr;
}
/// A library that nothing else in this program has loaded.
HMODULE WINAPI OtherLibrary(LPCWSTR) {
    return LoadLibraryW(L"cabinet.dll");
}
FARPROC WINAPI RecordFunction(HMODULE library, LPCSTR name) {
    functions.emplace_back(name);
    return GetProcAddress(library, name);
}
FARPROC WINAPI NoFunction(HMODULE, LPCSTR) {
    return nullptr;
}
BOOL WINAPI FailToConvert(const TIME_ZONE_INFORMATION*, const SYSTEMTIME*, SYSTEMTIME*) {
    return FALSE;
}
FARPROC WINAPI FailingFunction(HMODULE, LPCSTR) {
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&FailToConvert));
}

const TimeZoneCalls kWithoutZone{&NoZone, &::LoadLibraryW, &::GetProcAddress};
const TimeZoneCalls kConverting{&FiveHoursBehind, &RecordLibrary, &RecordFunction};

/// The three ways in which a platform can fail to convert.
const TimeZoneCalls kFallbacks[] = {
    {&FiveHoursBehind, &NoLibrary, &::GetProcAddress},
    {&FiveHoursBehind, &::LoadLibraryW, &NoFunction},
    {&FiveHoursBehind, &::LoadLibraryW, &FailingFunction},
};

CString ToLocal(const SYSTEMTIME& utc, const TimeZoneCalls& calls) {
    COleDateTime local{7.0, kDateNull};
    UtcSystemTimeToLocalDateTime(utc, local, calls);
    return Text(local);
}

CString ToUtc(const COleDateTime& local, const TimeZoneCalls& calls) {
    SYSTEMTIME utc = Fields(1, 2, 3, 4, 5, 6);
    LocalDateTimeToUtcSystemTime(local, utc, calls);
    return Text(utc);
}

TEST(UtcToLocal, FollowsTheRulesOfTheZone) {
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12), kConverting), L"2010-01-15 07:00:00");
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12), kConverting), L"2010-07-15 08:00:00");
}

TEST(LocalToUtc, FollowsTheRulesOfTheZone) {
    EXPECT_EQ(ToUtc(Date(2010, 1, 15, 7), kConverting), L"2010-01-15 12:00:00");
    EXPECT_EQ(ToUtc(Date(2010, 7, 15, 8), kConverting), L"2010-07-15 12:00:00");
}

TEST(Conversions, DaylightSavingCanBeHalfAnHour) {
    const TimeZoneCalls calls{&HalfAnHourOfSummer, &::LoadLibraryW, &::GetProcAddress};
    EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12), calls), L"2010-07-15 22:30:00");
    EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12), calls), L"2010-01-15 23:00:00");
    EXPECT_EQ(ToUtc(Date(2010, 1, 15, 23), calls), L"2010-01-15 12:00:00");
}

TEST(Conversions, LookUpTheirFunctionByNameEachTime) {
    libraries.clear();
    functions.clear();
    ToLocal(Fields(2010, 1, 15), kConverting);
    ToUtc(Date(2010, 1, 15), kConverting);
    EXPECT_EQ(libraries, (std::vector<CString>{L"Kernel32.dll", L"Kernel32.dll"}));
    EXPECT_EQ(functions, (std::vector<std::string>{"SystemTimeToTzSpecificLocalTime",
                                                   "TzSpecificLocalTimeToSystemTime"}));
}

TEST(Conversions, FreeTheLibraryAgain) {
    const TimeZoneCalls calls{&FiveHoursBehind, &OtherLibrary, &::GetProcAddress};
    ASSERT_EQ(GetModuleHandleW(L"cabinet.dll"), nullptr);
    ToLocal(Fields(2010, 1, 15), calls);
    EXPECT_EQ(GetModuleHandleW(L"cabinet.dll"), nullptr);
    ToUtc(Date(2010, 1, 15), calls);
    EXPECT_EQ(GetModuleHandleW(L"cabinet.dll"), nullptr);
}

TEST(Conversions, AZoneThatCannotBeAskedForLeavesTheOutput) {
    COleDateTime local{7.0, kDateNull};
    UtcSystemTimeToLocalDateTime(Fields(2010, 1, 15, 12), local, kWithoutZone);
    EXPECT_EQ(local.m_dt, 7.0);
    EXPECT_EQ(local.m_status, kDateNull);
    EXPECT_EQ(ToUtc(Date(2010, 1, 15), kWithoutZone), L"0001-02-03 04:05:06");
}

TEST(UtcToLocal, FallbackTakesTheBiasAloneAndIgnoresDaylightSaving) {
    for (const TimeZoneCalls& calls : kFallbacks) {
        EXPECT_EQ(ToLocal(Fields(2010, 1, 15, 12), calls), L"2010-01-15 07:00:00");
        EXPECT_EQ(ToLocal(Fields(2010, 7, 15, 12), calls), L"2010-07-15 07:00:00");
        EXPECT_EQ(ToLocal(Fields(2010, 1, 1, 2), calls), L"2009-12-31 21:00:00");
    }
}

TEST(UtcToLocal, FallbackCrossesTheEpochOfTheDates) {
    EXPECT_EQ(ToLocal(Fields(1899, 12, 30, 2), kFallbacks[0]), L"1899-12-29 21:00:00");
}

TEST(UtcToLocal, FallbackKeepsTheStatusOfADateThatDoesNotExist) {
    for (const TimeZoneCalls& calls : kFallbacks) {
        COleDateTime local;
        UtcSystemTimeToLocalDateTime(Fields(2010, 2, 30, 12), local, calls);
        EXPECT_EQ(local.m_status, kDateInvalid);
    }
}

TEST(UtcToLocal, WhatThePlatformRefusesToConvertGoesThroughTheFallback) {
    COleDateTime local{40219.5, kDateValid};
    UtcSystemTimeToLocalDateTime(Fields(2010, 13, 1), local, kConverting);
    EXPECT_EQ(local.m_status, kDateInvalid);
    EXPECT_EQ(local.m_dt, SubtractSpan(40219.5, 300 / 1440.0));
}

TEST(LocalToUtc, FallbackTakesTheBiasAloneAndIgnoresDaylightSaving) {
    for (const TimeZoneCalls& calls : kFallbacks) {
        EXPECT_EQ(ToUtc(Date(2010, 1, 15, 7), calls), L"2010-01-15 12:00:00");
        EXPECT_EQ(ToUtc(Date(2010, 7, 15, 7), calls), L"2010-07-15 12:00:00");
    }
}

TEST(LocalToUtc, ADateThatIsNotValidLeavesTheOutput) {
    for (const std::int32_t status : {kDateInvalid, kDateNull}) {
        const COleDateTime date{40219.5, status};
        EXPECT_EQ(ToUtc(date, kConverting), L"0001-02-03 04:05:06");
        for (const TimeZoneCalls& calls : kFallbacks) {
            EXPECT_EQ(ToUtc(date, calls), L"0001-02-03 04:05:06");
        }
    }
}

TEST(FileTimes, ADateWithoutOneIsZero) {
    for (const COleDateTime date : {COleDateTime{0.0, kDateInvalid}, COleDateTime{40219.5, kDateNull}}) {
        const FILETIME time = LocalDateTimeToFileTime(date);
        EXPECT_EQ(time.dwLowDateTime, 0U);
        EXPECT_EQ(time.dwHighDateTime, 0U);
    }
}

TEST(FileTimes, OfDatesBefore1601AreThatOfItsFirstMoment) {
    for (const COleDateTime& date : {Date(100, 1, 1), Date(1500, 6, 15), Date(1600, 12, 30)}) {
        const FILETIME time = LocalDateTimeToFileTime(date);
        EXPECT_EQ(time.dwLowDateTime, 0U) << date.m_dt;
        EXPECT_EQ(time.dwHighDateTime, 0U) << date.m_dt;
    }
    for (const COleDateTime& date : {Date(1601, 1, 3), Date(9999, 12, 30)}) {
        COleDateTime back;
        FileTimeToLocalDateTime(LocalDateTimeToFileTime(date), back);
        EXPECT_EQ(Text(back), Text(date));
    }
}

TEST(FileTimes, ComeBackAsTheSameLocalTime) {
    // Noon in the middle of a month is in no zone's hour of change.
    for (const COleDateTime& date :
         {Date(2010, 1, 15, 12), Date(2010, 7, 15, 12, 34, 56), Date(1950, 6, 15, 12)}) {
        COleDateTime back;
        FileTimeToLocalDateTime(LocalDateTimeToFileTime(date), back);
        EXPECT_EQ(Text(back), Text(date));
    }
}

TEST(MakeDateOnly, GivesTheDateAtMidnight) {
    COleDateTime date{7.5, kDateNull};
    MakeDateOnly(2010, 2, 10, &date);
    EXPECT_EQ(date.m_dt, 40219.0);
    EXPECT_EQ(date.m_status, kDateValid);
}

TEST(MakeDateOnly, ADateThatDoesNotExistIsInvalid) {
    COleDateTime date;
    MakeDateOnly(2010, 2, 30, &date);
    EXPECT_EQ(date.m_status, kDateInvalid);
    MakeDateOnly(static_cast<WORD>(-1), static_cast<WORD>(-1), static_cast<WORD>(-1), &date);
    EXPECT_EQ(date.m_status, kDateInvalid);
}

template<class Call>
ComErrorCode RaisedCode(Call call) {
    try {
        call();
    } catch (const COleException& exception) {
        return exception.Code();
    }
    return 0;
}

TEST(NullOutput, RaisesFail) {
    EXPECT_EQ(RaisedCode([] { MakeDateOnly(2010, 2, 10, nullptr); }), kErrorFail);
    EXPECT_EQ(RaisedCode([] { MinutesToDateTime(0, nullptr); }), kErrorFail);
}

TEST(SplitDate, GivesYearMonthAndDay) {
    const DateParts parts = SplitDate(Date(2010, 2, 10, 23, 59, 59));
    EXPECT_EQ(parts.year, 2010);
    EXPECT_EQ(parts.month, 2);
    EXPECT_EQ(parts.day, 10);
}

TEST(SplitDate, ADateThatCannotBeSplitGivesMinusOne) {
    for (const COleDateTime date : {COleDateTime{40219.0, kDateInvalid}, COleDateTime{40219.0, kDateNull},
                                    COleDateTime{3000000.0, kDateValid}}) {
        const DateParts parts = SplitDate(date);
        EXPECT_EQ(parts.year, -1);
        EXPECT_EQ(parts.month, -1);
        EXPECT_EQ(parts.day, -1);
    }
}

TEST(MidnightOf, IsTheDateWithoutItsTime) {
    const COleDateTime midnight = MidnightOf(Date(2010, 2, 10, 23, 59, 59));
    EXPECT_EQ(midnight.m_dt, 40219.0);
    EXPECT_EQ(midnight.m_status, kDateValid);
    // In front of the day zero, where values run backwards within a day.
    EXPECT_EQ(MidnightOf(Date(1899, 12, 29, 18)).m_dt, -1.0);
}

TEST(MidnightOf, ADateThatHasNoneIsInvalidWithTheValueZero) {
    for (const COleDateTime date : {COleDateTime{40219.5, kDateInvalid}, COleDateTime{40219.5, kDateNull},
                                    COleDateTime{3000000.0, kDateValid}}) {
        const COleDateTime midnight = MidnightOf(date);
        EXPECT_EQ(midnight.m_dt, 0.0);
        EXPECT_EQ(midnight.m_status, kDateInvalid);
    }
}

TEST(MinutesSince1601, CountsToTheMidnightOfTheDate) {
    EXPECT_EQ(MinutesSince1601(Date(1601, 1, 1)), 0U);
    EXPECT_EQ(MinutesSince1601(Date(1601, 1, 2, 13, 45)), 1440U);
    EXPECT_EQ(MinutesSince1601(Date(2010, 2, 10)), 215170560U);
    EXPECT_EQ(MinutesSince1601(Date(2010, 2, 10, 23, 59, 59)), 215170560U);
}

TEST(MinutesSince1601, TheEndOfASeriesWithoutEndIsWhereItsFormatPutsIt) {
    // MS-OXOCAL, RecurrencePattern: 0x5AE980DF is 4500-12-31 23:59.
    EXPECT_EQ(MinutesSince1601(Date(4500, 12, 31, 23, 59)), 0x5AE980DFU - 1439U);
    COleDateTime date;
    MinutesToDateTime(0x5AE980DF, &date);
    EXPECT_EQ(Text(date), L"4500-12-31 23:59:00");
}

TEST(MinutesSince1601, GoOnFromZeroBehind32Bits) {
    // 2^32 minutes are 2,982,616 days and 256 minutes: midnight of that day is the last one that fits.
    EXPECT_EQ(MinutesSince1601(Date(9767, 2, 16)), 4'294'967'040U);
    EXPECT_EQ(MinutesSince1601(Date(9767, 2, 17)), 1440U - 256U);
}

TEST(MinutesSince1601, ADateThatHasNoneGivesZero) {
    EXPECT_EQ(MinutesSince1601({40219.0, kDateInvalid}), 0U);
    EXPECT_EQ(MinutesSince1601({40219.0, kDateNull}), 0U);
    EXPECT_EQ(MinutesSince1601({3000000.0, kDateValid}), 0U);
    EXPECT_EQ(MinutesSince1601(Date(1600, 12, 31)), 0U);
}

TEST(MinutesToDateTime, BothEndsOfTheRangeAreDates) {
    COleDateTime date{7.0, kDateNull};
    MinutesToDateTime(0, &date);
    EXPECT_EQ(Text(date), L"1601-01-01 00:00:00");
    MinutesToDateTime(0xFFFFFFFF, &date);
    EXPECT_EQ(Text(date), L"9767-02-16 04:15:00");
    EXPECT_EQ(date.m_status, kDateValid);
}

// The texts of dates in recurrence data are made without the platform.
TEST(MinutesToDateTime, GivesTheDatesThatTextsOfMinutesName) {
    constexpr std::uint64_t kStep = 9973;  // a prime, so that all times of day come
    for (std::uint64_t minutes = 0; minutes <= 0xFFFFFFFF; minutes += kStep) {
        COleDateTime date;
        MinutesToDateTime(static_cast<std::uint32_t>(minutes), &date);
        CString text;
        AppendMomentText(text, static_cast<std::uint32_t>(minutes));
        ASSERT_EQ(text, date.Format(L"%Y/%m/%d %H:%M:%S")) << minutes;
    }
}

TEST(MinutesToDateTime, KeepsTheTimeOfDay) {
    COleDateTime date;
    MinutesToDateTime(215170560 + 610, &date);
    EXPECT_EQ(Text(date), L"2010-02-10 10:10:00");
}

TEST(ParseDateTimeText, ReadsADate) {
    EXPECT_EQ(Text(ParseDateTimeText(L"2010-02-10 11:22:33")), L"2010-02-10 11:22:33");
}

TEST(ParseDateTimeText, WhatIsMissingIsZero) {
    EXPECT_EQ(Text(ParseDateTimeText(L"2010-02-10 10:05")), L"2010-02-10 10:05:00");
    EXPECT_EQ(Text(ParseDateTimeText(L"2010-02-10")), L"2010-02-10 00:00:00");
}

TEST(ParseDateTimeText, NumbersHave16Bits) {
    EXPECT_EQ(Text(ParseDateTimeText(L"67546-65538-65546 65547:65558:65569")), L"2010-02-10 11:22:33");
    EXPECT_EQ(ParseDateTimeText(L"65535-02-10").m_dt, 0.0);
}

TEST(ParseDateTimeText, AnEmptyTextAndABadDateAreNoDate) {
    for (const wchar_t* text :
         {L"", L"2010-02-30 10:00:00", L"2010-02", L"not a date", L"2010-02-10 24:00:00",
          L"02/10/2010 10:00:00", L"99999999999-02-10", L"-2010-02-10"}) {
        const COleDateTime date = ParseDateTimeText(text);
        EXPECT_EQ(date.m_dt, 0.0) << testing::PrintToString(CString(text));
        EXPECT_EQ(date.m_status, kDateValid) << testing::PrintToString(CString(text));
    }
}

}  // namespace
