// The desktop program tells of zones by itself, because it is another program than the agent. This is where
// the two meet.

#include "desktop/machine_zone.h"

#include <gmock/gmock.h>

#include "timezone/zone_table.h"

namespace {

/// Eastern time as it is since 2007.
TIME_ZONE_INFORMATION NewYork() {
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = 300;
    zone.DaylightBias = -60;
    zone.StandardDate = {0, 11, 0, 1, 2, 0, 0, 0};
    zone.DaylightDate = {0, 3, 0, 2, 2, 0, 0, 0};
    return zone;
}

TEST(ZoneText, HasBothRulesWithTheDayOfTheWeekLast) {
    EXPECT_EQ(ZoneText(NewYork()), L"GMT:+300;DST:60;STD:0000110102000000;DLT:0000030202000000");
    TIME_ZONE_INFORMATION zone = NewYork();
    zone.Bias = -60;
    zone.StandardDate = {2011, 10, 6, 5, 3, 59, 58, 999};
    EXPECT_EQ(ZoneText(zone), L"GMT:-60;DST:60;STD:2011100503595806;DLT:0000030202000000");
}

TEST(ZoneText, HasNoDaylightSavingWithoutARuleForIt) {
    TIME_ZONE_INFORMATION zone{};
    zone.DaylightBias = -60;
    EXPECT_EQ(ZoneText(zone), L"GMT:+0;DST:0;STD:0000000000000000;DLT:0000000000000000");
}

TEST(MachineZone, IsToldAsTheAgentTellsIt) {
    EXPECT_EQ(MachineZoneText(), FormatTimeZoneText(ReadCurrentTimeZone()));
}

}  // namespace
