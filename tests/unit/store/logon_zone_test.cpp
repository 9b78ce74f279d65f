// The zone of the machine at logon. It belongs to the process, so this suite runs once for each zone, in a
// process with TZ in its environment.

#include <algorithm>
#include <cstdlib>
#include <string>

#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

/// What the zones are by law. On a machine whose platform does not list a zone, its names are empty.
struct Zone {
    const char* name;
    std::int32_t bias;
    WORD daylightMonth;  ///< 0 without daylight saving
    WORD standardMonth;
    const wchar_t* offset;  ///< as names of zones show it
};
constexpr Zone kZones[] = {
    {"America/New_York", 300, 3, 11, L"-05:00"}, {"America/Los_Angeles", 480, 3, 11, L"-08:00"},
    {"America/St_Johns", 210, 3, 11, L"-03:30"}, {"America/Phoenix", 420, 0, 0, L"-07:00"},
    {"Europe/Berlin", -60, 3, 10, L"+01:00"},    {"Asia/Kolkata", -330, 0, 0, L"+05:30"},
    {"Asia/Kathmandu", -345, 0, 0, L"+05:45"},   {"Asia/Yangon", -390, 0, 0, L"+06:30"},
    {"Asia/Tokyo", -540, 0, 0, L"+09:00"},       {"Australia/Adelaide", -570, 10, 4, L"+09:30"},
    {"Australia/Darwin", -570, 0, 0, L"+09:30"}, {"Australia/Lord_Howe", -630, 10, 4, L"+10:30"},
};

class LogonZone : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        const char* const name = std::getenv("TZ");
        const auto* const zone =
            std::ranges::find(kZones, std::string(name == nullptr ? "" : name), &Zone::name);
        if (zone == std::end(kZones)) {
            GTEST_SKIP() << "runs with TZ set to one of its zones";
        }
        m_zone = *zone;
        g_MAPIObject.m_CurrentTimeZone = {};
    }
    Zone m_zone{};
};

TEST_F(LogonZone, IsThatOfTheMachine) {
    ASSERT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 1);
    const NAMESPACE_COMMON::tagZebTimeZone& zone = g_MAPIObject.m_CurrentTimeZone;
    EXPECT_EQ(zone.Bias, m_zone.bias);
    EXPECT_EQ(zone.StandardBias, 0);
    EXPECT_EQ(zone.HasDaylightRule(), m_zone.daylightMonth != 0);
    EXPECT_EQ(zone.DaylightDate.wMonth, m_zone.daylightMonth);
    EXPECT_EQ(zone.StandardDate.wMonth, m_zone.standardMonth);
    EXPECT_TRUE(zone.Display.empty() || zone.Display.find(m_zone.offset) != CString::npos)
        << testing::PrintToString(zone.Display);
    TIME_ZONE_INFORMATION machine{};
    GetTimeZoneInformation(&machine);
    EXPECT_EQ(zone.Std, machine.StandardName);
    EXPECT_EQ(zone.Dlt, machine.DaylightName);
    EXPECT_EQ(zone.DaylightBias, machine.DaylightBias);
    // A zone without a name is one that the platform does not list.
    EXPECT_EQ(zone.Display.empty(), zone.Std.empty());
}

TEST_F(LogonZone, OutlivesTheSessionAndIsNotSetByALogonThatFails) {
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Nobody"), 0);
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, 0);
    LogOn();
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, m_zone.bias);
    EXPECT_TRUE(g_MAPIObject.m_arrTimeZones.IsEmpty());
}

}  // namespace
