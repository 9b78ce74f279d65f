#include "localstore/sample/sample_times.h"

#include "localstore/sample/sample_error.h"

namespace sample {

FILETIME TimeOf(const std::wstring& text) {
    constexpr std::size_t kDayUnits = 10;
    SYSTEMTIME date{};
    date.wYear = static_cast<WORD>(std::stoi(text.substr(0, 4)));
    date.wMonth = static_cast<WORD>(std::stoi(text.substr(5, 2)));
    date.wDay = static_cast<WORD>(std::stoi(text.substr(8, 2)));
    if (text.size() > kDayUnits) {
        date.wHour = static_cast<WORD>(std::stoi(text.substr(11, 2)));
        date.wMinute = static_cast<WORD>(std::stoi(text.substr(14, 2)));
    }
    FILETIME time{};
    RequireTrue(SystemTimeToFileTime(&date, &time) != FALSE, L"convert a date");
    return time;
}

TIME_ZONE_INFORMATION MachineZone() {
    TIME_ZONE_INFORMATION zone{};
    RequireTrue(GetTimeZoneInformation(&zone) != TIME_ZONE_ID_INVALID, L"ask for the zone of this machine");
    return zone;
}

FILETIME LocalToUtc(const FILETIME& local, const TIME_ZONE_INFORMATION& zone) {
    SYSTEMTIME there{};
    SYSTEMTIME utc{};
    FILETIME time{};
    RequireTrue(FileTimeToSystemTime(&local, &there) != FALSE &&
                    TzSpecificLocalTimeToSystemTime(&zone, &there, &utc) != FALSE &&
                    SystemTimeToFileTime(&utc, &time) != FALSE,
                L"convert a time");
    return time;
}

}  // namespace sample
