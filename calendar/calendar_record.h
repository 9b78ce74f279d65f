#pragma once

// An appointment in memory, as a document brings it and the store takes it. Appointments that are read go
// from the store into the document without one.

#include <array>
#include <cstdint>

#include "support/record_entries.h"
#include "support/text.h"
#include "timezone/ole_date_time.h"

/// The fields of an appointment that travel as entries.
constexpr std::int32_t kSubjectField = 3000;
constexpr std::int32_t kBodyField = 3002;
constexpr std::int32_t kLocationField = 3003;
constexpr std::int32_t kExceptionRuleField = 3024;
constexpr std::int32_t kTimeZoneField = 3037;

/// One text of an appointment. The members without a meaning of their own are carried along with the entry.
class CCalendarInfoEx {
  public:
    CCalendarInfoEx() = default;
    CCalendarInfoEx(const CCalendarInfoEx&) = default;
    CCalendarInfoEx& operator=(const CCalendarInfoEx&) = default;
    virtual ~CCalendarInfoEx() = default;

    std::int32_t m_nObjectType = 100;
    CString m_strValue;
    std::int32_t m_nFieldId = 0;
    std::array<std::int32_t, 4> m_arrReserved1{-1, 0, -1, 0};
    CString m_strReserved2;
};

/// An appointment, with what is to be done with it. Its times are local ones.
class CCalendarEx {
  public:
    CCalendarEx() { Reset(); }
    CCalendarEx(const CCalendarEx&) = delete;
    CCalendarEx& operator=(const CCalendarEx&) = delete;
    virtual ~CCalendarEx() { Reset(); }

    /// Deletes all entries; texts become empty, dates no date, and numbers what a document without them
    /// means.
    void Reset();

    /// Appends a text. Returns 1, or 0 with nothing added for an empty one.
    int AddField(std::int32_t fieldId, const CString& value) { return AddEntry(m_arrInfo, fieldId, value); }

    std::int32_t m_nObjectType = 103;
    RecordEntries<CCalendarInfoEx> m_arrInfo;  ///< in order of insertion
    std::int32_t m_lCalType = -1;              ///< only 3 is written
    std::int32_t m_lFlag = 0;                  ///< 8 add, 4 update, 32 delete
    std::int32_t m_nReserved1 = 0;
    CString m_strPIMID;  ///< entry identifier as hexadecimal text
    COleDateTime m_dtStartTime;
    COleDateTime m_dtEndTime;
    COleDateTime m_dtLastModified;  ///< of the message, after it was saved
    COleDateTime m_dtReserved2;
    std::array<std::int32_t, 2> m_arrReserved3{};
    std::int32_t m_nRingTone = 0;
    CString m_strReserved4;
    std::array<std::int32_t, 2> m_arrReserved5{};
    CString m_strCsFolder;  ///< folder path
    std::int32_t m_nReserved6 = 0;
    std::int32_t m_lRecurType = 0;
    std::int32_t m_lRecurDay = 0;
    std::int32_t m_lRecurMonth = 0;
    std::int32_t m_lRecurInstance = 0;
    std::int32_t m_lRecurWeekDay = 0;
    std::int32_t m_lRecurWeekMask = 0;
    std::int32_t m_lRecurInterval = 1;
    std::int32_t m_lRecurRepeat = 0;
    COleDateTime m_dtRecurEndDate;
    std::int32_t m_bRecurHasEndDate = 0;
    std::int32_t m_lReminderMinutes = 0;  ///< -1 for no reminder
    std::int32_t m_nPriority = 1;
    std::array<std::int32_t, 3> m_arrReserved7{};
    std::int32_t m_nReserved8 = 0;
    std::int32_t m_bAlldayEvent = 0;
    std::int32_t m_nReserved9 = 0;
};
