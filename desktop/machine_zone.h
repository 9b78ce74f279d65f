#pragma once

#include <windows.h>

#include "support/text.h"

/// A zone as the element TimeZone of an appointment names one:
/// "GMT:-60;DST:60;STD:0000100503000000;DLT:0000030502000000".
CString ZoneText(const TIME_ZONE_INFORMATION& zone);

/// The same of the zone that this machine is in. Empty if the platform does not tell it.
CString MachineZoneText();
