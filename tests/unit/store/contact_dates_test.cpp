// Birthday and anniversary as they stand in the store, in each of the zones and on both sides of a change.

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/machine_zones.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"

namespace {

class ContactDates : public ContactWriting {
  protected:
    void SetUp() override {
        ContactWriting::SetUp();
        const MachineZone* const zone = ZoneOfThisProcess();
        if (zone == nullptr) {
            GTEST_SKIP() << "runs with TZ set to one of its zones";
        }
        m_zone = *zone;
        g_MAPIObject.m_CurrentTimeZone.Bias = m_zone.bias;
        // Half an hour on Lord Howe, which not every platform knows.
        TIME_ZONE_INFORMATION machine{};
        GetTimeZoneInformation(&machine);
        m_daylight = m_zone.daylightMonth == 0 ? 0 : machine.DaylightBias;
    }
    /// UTC minus local time in January or in July, in minutes.
    [[nodiscard]] int OffsetIn(WORD month) const {
        const bool isNorthern = m_zone.daylightMonth < m_zone.standardMonth;
        return m_zone.bias + (isNorthern == (month == 7) ? m_daylight : 0);
    }
    /// Midnight of a day and some minutes, on the calendar alone.
    static CString Later(WORD year, WORD month, WORD day, int minutes) {
        const SYSTEMTIME midnight = Fields(year, month, day);
        FILETIME time{};
        SystemTimeToFileTime(&midnight, &time);
        ULARGE_INTEGER steps{};
        steps.LowPart = time.dwLowDateTime;
        steps.HighPart = time.dwHighDateTime;
        steps.QuadPart += static_cast<ULONGLONG>(static_cast<LONGLONG>(minutes) * 600000000);
        time = {steps.LowPart, steps.HighPart};
        SYSTEMTIME later{};
        FileTimeToSystemTime(&time, &later);
        return ::Text(later);
    }
    /// The UTC time of a property; empty if it is not there.
    [[nodiscard]] CString TimeOf(ULONG tag) const {
        const MapiBuffer<SPropValue> value = GetProperty(Message().Get(), tag);
        SYSTEMTIME fields{};
        return value && FileTimeToSystemTime(&value->Value.ft, &fields) != FALSE ? ::Text(fields) : CString();
    }
    [[nodiscard]] CString NamedTimeOf(LONG id) const {
        return TimeOf(FolderWriter::AddressTag(Message().Get(), id, PT_SYSTIME));
    }

    MachineZone m_zone{};
    int m_daylight = 0;
};

TEST_F(ContactDates, AreWrittenAsMidnightHereAndOnceMoreWithTheWholeHoursOfTheOffsetTakenOff) {
    Write(8, {{4003, L"2020-01-15 00:00:00"}, {4019, L"2020-07-15 00:00:00"}});
    EXPECT_EQ(TimeOf(PR_BIRTHDAY), Later(2020, 1, 15, OffsetIn(1)));
    EXPECT_EQ(TimeOf(PR_WEDDING_ANNIVERSARY), Later(2020, 7, 15, OffsetIn(7)));
    const int hours = m_zone.bias / 60;
    EXPECT_EQ(NamedTimeOf(0x80DE), Later(2020, 1, 15, OffsetIn(1) - hours * 60));
    EXPECT_EQ(NamedTimeOf(0x80DF), Later(2020, 7, 15, OffsetIn(7) - hours * 60));
}

TEST_F(ContactDates, OfSummerAndWinterChangePlaces) {
    Write(8, {{4003, L"2020-07-15 00:00:00"}, {4019, L"2020-01-15 00:00:00"}});
    EXPECT_EQ(TimeOf(PR_BIRTHDAY), Later(2020, 7, 15, OffsetIn(7)));
    EXPECT_EQ(TimeOf(PR_WEDDING_ANNIVERSARY), Later(2020, 1, 15, OffsetIn(1)));
}

/// These need no zone.
using ContactDatesAnywhere = ContactWriting;

TEST_F(ContactDatesAnywhere, TextThatIsNoDateRemovesBoth) {
    for (const wchar_t* const text : {L"2010-02-30 10:00:00", L"yesterday", L"05/05/1980"}) {
        Write(8, {{4003, L"1980-05-05 00:00:00"}, {4019, L"2001-01-01 00:00:00"}});
        ASSERT_TRUE(GetProperty(Message().Get(), PR_BIRTHDAY));
        Write(4, {{4003, text}, {4019, text}});
        const ComPtr<IMessage> message = Message();
        EXPECT_FALSE(GetProperty(message.Get(), PR_BIRTHDAY));
        EXPECT_FALSE(GetProperty(message.Get(), PR_WEDDING_ANNIVERSARY));
        for (const LONG id : {0x80DE, 0x80DF}) {
            EXPECT_FALSE(GetProperty(message.Get(), FolderWriter::AddressTag(message.Get(), id, PT_SYSTIME)));
        }
    }
}

}  // namespace
