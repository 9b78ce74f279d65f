// A machine whose registry has no key of time zones: reads and writes of appointments go on without the
// table, with the zone that the logon found.

#include "calendar/calendar_record.h"
#include "tests/unit/store/calendar_reading_fixture.h"
#include "tests/unit/store/calendar_writing_fixture.h"
#include "tests/unit/text_printer.h"
#include "tests/unit/timezone/zone_registry.h"

namespace {

class WriteWithoutZones : public CalendarWriting {
  protected:
    void SetUp() override {
        CalendarWriting::SetUp();
        g_MAPIObject.m_arrTimeZones.RemoveAll();
    }
    /// The zone that a write of the text of a zone with these numbers takes.
    CString ZoneThatIsWritten(std::int32_t flag) {
        Write(flag, [](CCalendarEx& calendar) { calendar.AddField(3037, L"GMT:+300;DST:0"); });
        EXPECT_EQ(m_calendar.m_lFlag, 0);
        return NamedText(0x8234);
    }
};

TEST_F(WriteWithoutZones, TakesTheZoneOfTheLogon) {
    const ZoneRegistry registry;
    EXPECT_EQ(ZoneThatIsWritten(8), L"The machine's");
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones.GetSize(), 0);
    EXPECT_EQ(LocalOf(0x820D), L"2026-03-10 09:30:00");
    EXPECT_EQ(ZoneThatIsWritten(4), L"The machine's");
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones.GetSize(), 0);
    // The key is looked for again by each write.
    ZoneBytes rules;
    rules.bias = 300;
    registry.AddZone(L"Late", rules);
    EXPECT_EQ(ZoneThatIsWritten(4), L"Display of Late");
}

TEST_F(WriteWithoutZones, DeletesAsEver) {
    const ZoneRegistry registry;
    Write(8);
    ASSERT_EQ(Files(), 1U);
    Write(32);
    EXPECT_EQ(m_calendar.m_lFlag, 0);
    EXPECT_EQ(Files(), 0U);
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones.GetSize(), 0);
}

using ReadWithoutZones = CalendarReading;

TEST_F(ReadWithoutZones, SendsTheSameDocuments) {
    AddAppointments(L"Calendar", {L"One", L"Two"});
    LogOn();
    ASSERT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    const std::vector<CString> documents = TakeSentCalendars();
    ASSERT_EQ(documents.size(), 2U);
    TakeLog();
    g_MAPIObject.m_arrTimeZones.RemoveAll();
    {
        const ZoneRegistry registry;
        EXPECT_EQ(g_MAPIObject.ReadCalendars(L""), 0);
    }
    EXPECT_EQ(g_MAPIObject.m_arrTimeZones.GetSize(), 0);
    EXPECT_EQ(TakeSentCalendars(), documents);
    const LogLines log = TakeLog();
    EXPECT_EQ(LastOf(log, LastLines()), LastLines());
}

}  // namespace
