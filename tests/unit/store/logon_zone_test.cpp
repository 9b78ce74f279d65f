// The zone of the machine at logon.

#include "localstore/recorder.h"
#include "tests/unit/store/machine_zones.h"
#include "tests/unit/store/store_fixture.h"
#include "tests/unit/text_printer.h"

namespace {

class LogonZone : public StoreTest {
  protected:
    void SetUp() override {
        StoreTest::SetUp();
        const MachineZone* const zone = ZoneOfThisProcess();
        if (zone == nullptr) {
            GTEST_SKIP() << "runs with TZ set to one of its zones";
        }
        m_zone = *zone;
        g_MAPIObject.m_CurrentTimeZone = {};
    }
    MachineZone m_zone{};
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
    // The store comes before the zone.
    localstore::recorder::FailMethod("IMAPISession::OpenMsgStore", {}, MAPI_E_NO_ACCESS);
    EXPECT_EQ(g_MAPIObject.MAPILogOn(0, L"Work"), 0);
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, 0);
    localstore::recorder::ClearFailures();
    LogOn();
    g_MAPIObject.MAPILogOff();
    EXPECT_EQ(g_MAPIObject.m_CurrentTimeZone.Bias, m_zone.bias);
    EXPECT_TRUE(g_MAPIObject.m_arrTimeZones.IsEmpty());
}

}  // namespace
