// Birthday and anniversary as they stand in the store, in each of the zones and on both sides of a change.

#include <algorithm>
#include <chrono>
#include <iterator>
#include <string>

#include "tests/unit/store/contact_writing_fixture.h"
#include "tests/unit/store/machine_zones.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/date_helpers.h"
#include "tests/unit/timezone/zone_rule.h"

namespace {

using std::chrono::days;
using std::chrono::hours;
using std::chrono::seconds;

/// The Sundays on which clocks are put forward and back by law, counted in their months from 1, and 0 for the
/// last one.
struct DaysOfChange {
    const char* zone;
    std::chrono::month forwardMonth;
    unsigned forwardSunday;
    std::chrono::month backMonth;
    unsigned backSunday;
};
constexpr DaysOfChange kDaysOfChange[] = {
    {"America/New_York", std::chrono::March, 2, std::chrono::November, 1},
    {"America/Los_Angeles", std::chrono::March, 2, std::chrono::November, 1},
    {"America/St_Johns", std::chrono::March, 2, std::chrono::November, 1},
    {"Europe/Berlin", std::chrono::March, 0, std::chrono::October, 0},
    {"Australia/Adelaide", std::chrono::October, 1, std::chrono::April, 1},
    {"Australia/Lord_Howe", std::chrono::October, 1, std::chrono::April, 1},
};
LocalTime SundayOf(int year, std::chrono::month month, unsigned number) {
    using std::chrono::Sunday;
    const std::chrono::year_month in = std::chrono::year(year) / month;
    return number == 0 ? std::chrono::local_days(in / Sunday[std::chrono::last])
                       : std::chrono::local_days(in / Sunday[number]);
}

class ContactDates : public ContactWriting {
  protected:
    void SetUp() override {
        ContactWriting::SetUp();
        const MachineZone* const zone = ZoneOfThisProcess();
        if (zone == nullptr) {
            GTEST_SKIP() << "runs with TZ set to one of its zones";
        }
        m_zone = *zone;
        // The zone of the machine, as a logon finds it.
        LogOn();
        EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, m_zone.bias);
    }
    /// UTC minus standard time in whole hours; the minutes of both signs are dropped.
    [[nodiscard]] hours WholeHours() const { return hours(m_zone.bias / 60); }
    /// The UTC time of a property; empty if it is not there.
    [[nodiscard]] CString TimeOf(ULONG tag) const {
        const MapiBuffer<SPropValue> value = GetProperty(Message().Get(), tag);
        SYSTEMTIME fields{};
        return value && FileTimeToSystemTime(&value->Value.ft, &fields) != FALSE ? ::Text(fields) : CString();
    }
    [[nodiscard]] CString NamedTimeOf(LONG id) const {
        return TimeOf(FolderWriter::AddressTag(Message().Get(), id, PT_SYSTIME));
    }
    /// Writes a contact with two dates and expects them in the store, each as the time that it is in UTC and
    /// under its name once more with the whole hours of the zone taken off. Times that are two in UTC, or
    /// none, are the platform's affair.
    void ExpectDates(const LocalTime& birthday, const LocalTime& anniversary) {
        const CString texts[] = {TimeText(birthday), TimeText(anniversary)};
        SCOPED_TRACE(testing::PrintToString(texts[0]) + " and " + testing::PrintToString(texts[1]));
        m_contact.m_strPIMID.clear();
        Write(8, {{4003, texts[0].c_str()}, {4019, texts[1].c_str()}});
        ASSERT_EQ(m_contact.m_lFlag, 0);
        ExpectTime(TimeOf(PR_BIRTHDAY), birthday);
        ExpectTime(TimeOf(PR_WEDDING_ANNIVERSARY), anniversary);
        ExpectTime(NamedTimeOf(0x80DE), birthday - WholeHours());
        ExpectTime(NamedTimeOf(0x80DF), anniversary - WholeHours());
    }
    void ExpectTime(const CString& stored, const LocalTime& local) {
        if (m_rule.IsOneTime(local)) {
            EXPECT_EQ(stored, TimeText(m_rule.ToUtc(local)));
            ++m_expected;
        }
    }
    /// Dates around a change of the clocks, between whose begin and end times are left out or come twice.
    void ExpectDatesAround(const LocalTime& begin, const LocalTime& end) {
        const LocalTime midnight = std::chrono::floor<days>(begin);
        ExpectDates(midnight - days(1), midnight + days(1));
        ExpectDates(midnight, midnight + days(2));
        ExpectDates(begin - hours(1), end + hours(1));
        ExpectDates(begin - seconds(1), end);
        ExpectDates(begin - hours(24), end + hours(24));
    }

    MachineZone m_zone{};
    ZoneRule m_rule = ZoneRule::OfThisProcess();
    int m_year = m_rule.YearOr(2020);
    int m_expected = 0;
};

TEST_F(ContactDates, AreWrittenAsMidnightHereAndOnceMoreWithTheWholeHoursOfTheOffsetTakenOff) {
    ExpectDates(At(m_year, 1, 15), At(m_year, 7, 15));
    EXPECT_EQ(m_expected, 4);
}

TEST_F(ContactDates, OfSummerAndWinterChangePlaces) {
    ExpectDates(At(m_year, 7, 15), At(m_year, 1, 15));
    EXPECT_EQ(m_expected, 4);
}

TEST_F(ContactDates, AroundTheDayOnWhichTheClocksArePutForward) {
    // Elsewhere nothing changes on such a day.
    const LocalTime change = m_rule.HasChanges() ? m_rule.Forward(m_year) : At(m_year, 3, 8, 2);
    ExpectDatesAround(change, change + m_rule.Amount());
    EXPECT_GE(m_expected, 16);
}

TEST_F(ContactDates, AroundTheDayOnWhichTheClocksArePutBack) {
    const LocalTime change = m_rule.HasChanges() ? m_rule.Back(m_year) : At(m_year, 11, 1, 2);
    ExpectDatesAround(change - m_rule.Amount(), change);
    EXPECT_GE(m_expected, 16);
}

TEST_F(ContactDates, ChangeOnTheDaysOfTheLaw) {
    const auto* const law = std::ranges::find(kDaysOfChange, std::string(m_zone.name), &DaysOfChange::zone);
    ASSERT_EQ(m_rule.HasChanges(), law != std::end(kDaysOfChange));
    if (m_rule.HasChanges()) {
        EXPECT_EQ(std::chrono::floor<days>(m_rule.Forward(m_year)),
                  SundayOf(m_year, law->forwardMonth, law->forwardSunday));
        EXPECT_EQ(std::chrono::floor<days>(m_rule.Back(m_year)),
                  SundayOf(m_year, law->backMonth, law->backSunday));
    }
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
