#include "timezone/conversions.h"

// Behind the base headers.
#include <oleauto.h>

#include "support/errors.h"
#include "support/owners.h"
#include "timezone/date_text.h"

namespace {

/// 100-nanosecond steps of a file time in a minute.
constexpr std::int64_t kStepsPerMinute = 600000000;

/// The system library for one conversion, with one of its functions, which older systems do not have.
template<class Function>
class SystemFunction {
  public:
    SystemFunction(const TimeZoneCalls& calls, const char* name)
        : m_library(calls.loadLibrary(L"Kernel32.dll")) {
        if (m_library) {
            m_function = reinterpret_cast<Function>(
                reinterpret_cast<void*>(calls.getProcAddress(m_library.Get(), name)));
        }
    }

    /// Calls the function; false if there is none or if it fails.
    template<class... Arguments>
    bool Succeeds(Arguments... arguments) const {
        return m_function != nullptr && m_function(arguments...) != FALSE;
    }

  private:
    Library m_library;
    Function m_function = nullptr;
};

bool GetZone(const TimeZoneCalls& calls, TIME_ZONE_INFORMATION& zone) {
    return calls.getTimeZoneInformation(&zone) != TIME_ZONE_ID_INVALID;
}

void SetFromFields(const SYSTEMTIME& fields, COleDateTime& date) {
    date.SetDateTime(fields.wYear, fields.wMonth, fields.wDay, fields.wHour, fields.wMinute, fields.wSecond);
}

/// The fields of a valid date; all zero otherwise.
SYSTEMTIME FieldsOf(const COleDateTime& date) {
    SYSTEMTIME fields = {};
    if (date.m_status == kDateValid && VariantTimeToSystemTime(date.m_dt, &fields) == FALSE) {
        fields = {};
    }
    return fields;
}

std::uint64_t StepsOf(const FILETIME& time) {
    return static_cast<std::uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
}

FILETIME FileTimeOfSteps(std::uint64_t steps) {
    return {static_cast<DWORD>(steps & 0xFFFFFFFFU), static_cast<DWORD>(steps >> 32)};
}

}  // namespace

void UtcSystemTimeToLocalDateTime(const SYSTEMTIME& utc, COleDateTime& local, const TimeZoneCalls& calls) {
    TIME_ZONE_INFORMATION zone = {};
    if (!GetZone(calls, zone)) {
        return;
    }
    const SystemFunction<decltype(&::SystemTimeToTzSpecificLocalTime)> convert(
        calls, "SystemTimeToTzSpecificLocalTime");
    SYSTEMTIME input = utc;
    SYSTEMTIME result = {};
    if (convert.Succeeds(&zone, &input, &result)) {
        SetFromFields(result, local);
        return;
    }
    SetFromFields(utc, local);
    local.m_dt = SubtractSpan(local.m_dt, DaysOf(0, 0, zone.Bias, 0));
}

void LocalDateTimeToUtcSystemTime(const COleDateTime& local, SYSTEMTIME& utc, const TimeZoneCalls& calls) {
    TIME_ZONE_INFORMATION zone = {};
    if (!GetZone(calls, zone)) {
        return;
    }
    const SystemFunction<decltype(&::TzSpecificLocalTimeToSystemTime)> convert(
        calls, "TzSpecificLocalTimeToSystemTime");
    SYSTEMTIME input = FieldsOf(local);
    if (convert.Succeeds(&zone, &input, &utc) || local.m_status != kDateValid) {
        return;
    }
    VariantTimeToSystemTime(AddSpan(local.m_dt, DaysOf(0, 0, zone.Bias, 0)), &utc);
}

void FileTimeToLocalDateTime(const FILETIME& utc, COleDateTime& local) {
    SYSTEMTIME fields = {};
    FileTimeToSystemTime(&utc, &fields);
    UtcSystemTimeToLocalDateTime(fields, local);
}

FILETIME LocalDateTimeToFileTime(const COleDateTime& local) {
    SYSTEMTIME fields = {};
    LocalDateTimeToUtcSystemTime(local, fields);
    FILETIME utc = {};
    SystemTimeToFileTime(&fields, &utc);
    return utc;
}

void MakeDateOnly(WORD year, WORD month, WORD day, COleDateTime* date) {
    if (date == nullptr) {
        RaiseComError(kErrorFail);
    }
    date->SetDateTime(year, month, day, 0, 0, 0);
}

DateParts SplitDate(const COleDateTime& date) {
    SYSTEMTIME fields = {};
    if (date.m_status != kDateValid || VariantTimeToSystemTime(date.m_dt, &fields) == FALSE) {
        return {};
    }
    return {fields.wYear, fields.wMonth, fields.wDay};
}

COleDateTime MidnightOf(const COleDateTime& date) {
    const DateParts parts = SplitDate(date);
    COleDateTime midnight;
    MakeDateOnly(static_cast<WORD>(parts.year), static_cast<WORD>(parts.month), static_cast<WORD>(parts.day),
                 &midnight);
    return midnight;
}

std::uint32_t MinutesSince1601(const COleDateTime& date) {
    const SYSTEMTIME fields = FieldsOf(MidnightOf(date));
    FILETIME time = {};
    SystemTimeToFileTime(&fields, &time);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(StepsOf(time)) / kStepsPerMinute);
}

void MinutesToDateTime(std::uint32_t minutes, COleDateTime* date) {
    if (date == nullptr) {
        RaiseComError(kErrorFail);
    }
    const FILETIME time = FileTimeOfSteps(std::uint64_t{minutes} * kStepsPerMinute);
    SYSTEMTIME fields = {};
    FileTimeToSystemTime(&time, &fields);
    SetFromFields(fields, *date);
}

COleDateTime ParseDateTimeText(WideView text) {
    COleDateTime date;
    if (text.empty()) {
        return date;
    }
    const DateTextNumbers numbers = CutDateText(text);
    const std::int32_t status =
        date.SetDateTime(static_cast<WORD>(numbers.year), static_cast<WORD>(numbers.month),
                         static_cast<WORD>(numbers.day), static_cast<WORD>(numbers.hour),
                         static_cast<WORD>(numbers.minute), static_cast<WORD>(numbers.second));
    return status == kDateInvalid ? COleDateTime() : date;
}
