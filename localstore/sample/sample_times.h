#pragma once

#include <windows.h>

#include <string>

namespace sample {

/// A time such as "2001-12-31" or "2001-12-31 09:30", in no zone.
FILETIME TimeOf(const std::wstring& text);

/// The zone of this machine.
TIME_ZONE_INFORMATION MachineZone();

/// A time of a zone as UTC.
FILETIME LocalToUtc(const FILETIME& local, const TIME_ZONE_INFORMATION& zone);

}  // namespace sample
