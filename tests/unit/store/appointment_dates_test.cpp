// The times of a written appointment as they stand in the store, in each of the zones and around the changes
// of their clocks.

#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/store/machine_zones.h"
#include "tests/unit/text_printer.h"

namespace {

class AppointmentDates : public CalendarWriting {
  protected:
    void SetUp() override {
        CalendarWriting::SetUp();
        const MachineZone* const zone = ZoneOfThisProcess();
        if (zone == nullptr) {
            GTEST_SKIP() << "runs with TZ set to one of its zones";
        }
        m_zone = *zone;
        // Half an hour on Lord Howe, which not every platform knows.
        TIME_ZONE_INFORMATION machine{};
        GetTimeZoneInformation(&machine);
        m_daylight = m_zone.daylightMonth == 0 ? 0 : machine.DaylightBias;
        m_standardDate = machine.StandardDate;
        m_daylightDate = machine.DaylightDate;
    }
    /// UTC minus local time in January or in July, in minutes.
    [[nodiscard]] int OffsetIn(WORD month) const {
        const bool isNorthern = m_zone.daylightMonth < m_zone.standardMonth;
        return m_zone.bias + (isNorthern == (month == 7) ? m_daylight : 0);
    }
    /// A local time and some minutes, on the calendar alone.
    static CString Later(const SYSTEMTIME& local, int minutes) {
        FILETIME time{};
        SystemTimeToFileTime(&local, &time);
        ULARGE_INTEGER steps{};
        steps.LowPart = time.dwLowDateTime;
        steps.HighPart = time.dwHighDateTime;
        steps.QuadPart += static_cast<ULONGLONG>(static_cast<LONGLONG>(minutes) * 600000000);
        time = {steps.LowPart, steps.HighPart};
        SYSTEMTIME later{};
        FileTimeToSystemTime(&time, &later);
        return ::Text(later);
    }
    /// The year whose changes of the clocks are looked at: 2026, or the one that the platform has days for
    /// where it has no rule.
    [[nodiscard]] WORD Year() const { return m_daylightDate.wYear == 0 ? WORD{2026} : m_daylightDate.wYear; }
    /// The day in that year of a rule such as the second Sunday in March; the fifth is the last one.
    [[nodiscard]] WORD DayOfRule(const SYSTEMTIME& rule) const {
        WORD day = rule.wYear == 0 ? WORD{0} : rule.wDay;
        for (WORD candidate = 1; rule.wYear == 0 && candidate <= 31; ++candidate) {
            SYSTEMTIME fields = Fields(Year(), rule.wMonth, candidate);
            FILETIME time{};
            if (SystemTimeToFileTime(&fields, &time) == FALSE) {
                break;
            }
            FileTimeToSystemTime(&time, &fields);
            if (fields.wDayOfWeek == rule.wDayOfWeek && (candidate + 6) / 7 <= rule.wDay) {
                day = candidate;
            }
        }
        return day;
    }
    /// Writes an appointment of half an hour and expects its times so many minutes later.
    void ExpectHalfHour(const SYSTEMTIME& start, int offset) {
        SYSTEMTIME end = start;
        end.wMinute = static_cast<WORD>(end.wMinute + 30);
        Write(8, [&](CCalendarEx& calendar) {
            calendar.m_dtStartTime = DateOf(start);
            calendar.m_dtEndTime = DateOf(end);
            calendar.m_lReminderMinutes = 60;
        });
        for (const LONG id : {0x820D, 0x8235, 0x8516, 0x8502}) {
            EXPECT_EQ(UtcOf(id), Later(start, offset)) << std::hex << id;
        }
        for (const LONG id : {0x820E, 0x8236, 0x8517}) {
            EXPECT_EQ(UtcOf(id), Later(end, offset)) << std::hex << id;
        }
        EXPECT_EQ(UtcOf(0x8560), Later(start, offset - 60));
    }
    static COleDateTime DateOf(const SYSTEMTIME& fields) {
        return Date(fields.wYear, fields.wMonth, fields.wDay, fields.wHour, fields.wMinute, fields.wSecond);
    }

    MachineZone m_zone{};
    int m_daylight = 0;
    SYSTEMTIME m_standardDate{};
    SYSTEMTIME m_daylightDate{};
};

TEST_F(AppointmentDates, OfWinterAndSummerAreTheUtcTimesOfTheMachinesZone) {
    ExpectHalfHour(Fields(2026, 1, 15, 9, 15), OffsetIn(1));
    ExpectHalfHour(Fields(2026, 7, 15, 9, 15), OffsetIn(7));
}

TEST_F(AppointmentDates, OnBothSidesOfAChangeOfTheClocksHaveTheirOwnOffset) {
    if (m_zone.daylightMonth == 0) {
        GTEST_SKIP() << "the clocks of this zone do not change";
    }
    const WORD spring = DayOfRule(m_daylightDate);
    const WORD autumn = DayOfRule(m_standardDate);
    ASSERT_GT(spring, 0);
    ASSERT_GT(autumn, 0);
    const int standard = m_zone.bias;
    const int daylight = m_zone.bias + m_daylight;
    ExpectHalfHour(Fields(Year(), m_zone.daylightMonth, spring, 0, 15), standard);
    ExpectHalfHour(Fields(Year(), m_zone.daylightMonth, spring, 12), daylight);
    ExpectHalfHour(Fields(Year(), m_zone.standardMonth, autumn, 0, 15), daylight);
    ExpectHalfHour(Fields(Year(), m_zone.standardMonth, autumn, 12), standard);
}

TEST_F(AppointmentDates, OverAChangeOfTheClocksLastAsLongAsTheCalendarShows) {
    if (m_zone.daylightMonth == 0) {
        GTEST_SKIP() << "the clocks of this zone do not change";
    }
    const SYSTEMTIME start = Fields(Year(), m_zone.daylightMonth, DayOfRule(m_daylightDate));
    Write(8, [&](CCalendarEx& calendar) {
        calendar.m_bAlldayEvent = 1;
        calendar.m_dtStartTime = calendar.m_dtEndTime = DateOf(start);
    });
    EXPECT_EQ(UtcOf(0x820D), Later(start, m_zone.bias));
    EXPECT_EQ(UtcOf(0x820E), Later(start, 1440 + m_zone.bias + m_daylight));
    EXPECT_EQ(NamedNumber(0x8213), 1440);
}

TEST_F(AppointmentDates, InTheHourThatIsLeftOutOrComesTwiceAreWhatThePlatformSays) {
    constexpr WORD kHours[] = {1, 2, 3};
    constexpr WORD kMinutes[] = {0, 15, 45};
    for (const SYSTEMTIME& rule : {m_daylightDate, m_standardDate}) {
        if (rule.wMonth == 0) {
            continue;
        }
        for (const WORD minute : kMinutes) {
            for (const WORD hour : kHours) {
                SYSTEMTIME local = Fields(Year(), rule.wMonth, DayOfRule(rule), hour, minute);
                SYSTEMTIME utc{};
                ASSERT_NE(TzSpecificLocalTimeToSystemTime(nullptr, &local, &utc), FALSE);
                Write(8, [&](CCalendarEx& calendar) {
                    calendar.m_dtStartTime = calendar.m_dtEndTime = DateOf(local);
                });
                EXPECT_EQ(UtcOf(0x820D), ::Text(utc));
            }
        }
    }
}

TEST_F(AppointmentDates, OfASeriesAreLocalInItsPropertyAndUtcInItsClip) {
    Write(8, [](CCalendarEx& calendar) {
        calendar.m_lRecurType = 1;
        calendar.m_dtStartTime = Date(2026, 1, 15, 23, 30);
        calendar.m_dtEndTime = Date(2026, 1, 16, 0, 30);
        calendar.m_bRecurHasEndDate = 1;
        calendar.m_dtRecurEndDate = Date(2026, 7, 15, 23, 30);
    });
    // The days are 155242 and 155423 days behind 1601-01-01; 1410 and 1470 minutes from the first midnight.
    const std::vector<std::uint8_t> bytes = Bytes(0x8216);
    ASSERT_EQ(bytes.size(), 76U);
    EXPECT_EQ((std::vector<std::uint8_t>{bytes.begin() + 42, bytes.begin() + 50}),
              (std::vector<std::uint8_t>{0x40, 0x14, 0x53, 0x0D, 0x60, 0x0E, 0x57, 0x0D}));
    EXPECT_EQ((std::vector<std::uint8_t>{bytes.begin() + 58, bytes.begin() + 66}),
              (std::vector<std::uint8_t>{0x82, 0x05, 0, 0, 0xBE, 0x05, 0, 0}));
    EXPECT_EQ(UtcOf(0x8236), Later(Fields(2026, 7, 15), OffsetIn(7)));
    EXPECT_EQ(UtcOf(0x8517), Later(Fields(2026, 1, 16, 0, 30), OffsetIn(1)));
}

TEST_F(AppointmentDates, OfASeriesWithoutAnEndClipItAtTheLastMinuteOfTheYear4500) {
    Write(8, [](CCalendarEx& calendar) { calendar.m_lRecurType = 1; });
    EXPECT_EQ(UtcOf(0x8236), Later(Fields(4500, 12, 31, 23, 59), OffsetIn(1)));
}

TEST_F(AppointmentDates, OfTheChangeComeBackInLocalTime) {
    Write(8);
    EXPECT_EQ(::Text(m_calendar.m_dtLastModified), TimeOfChange());
}

}  // namespace
