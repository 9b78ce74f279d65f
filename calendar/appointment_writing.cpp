#include "calendar/appointment_writing.h"

#include <cstddef>
#include <cstdint>
#include <memory>

#include "calendar/appointment_names.h"
#include "calendar/appointment_properties.h"
#include "calendar/recurrence_blob.h"
#include "calendar/recurrence_building.h"
#include "calendar/zone_blob.h"
#include "mapi/change_flags.h"
#include "mapi/property_tags.h"
#include "mapi/property_writing.h"
#include "timezone/conversions.h"

namespace {

using NAMESPACE_COMMON::tagZebTimeZone;
using NAMESPACE_MAPI::tagRecurrencePattern;

/// PidTagIconIndex of a single appointment and of a series (MS-OXOCAL).
constexpr LONG kSingleIcon = 1024;
constexpr LONG kSeriesIcon = 1025;
/// PidLidSideEffects of an appointment (MS-OXCMSG): it is opened to be deleted, copied, moved or asked for
/// its menu, and does not stay behind in the Inbox.
constexpr LONG kSideEffects = 0x0001 | 0x0020 | 0x0040 | 0x0100 | 0x0010;

constexpr std::int32_t kNoReminder = -1;

bool IsSeries(const CCalendarEx& calendar) {
    return calendar.m_lRecurType != 0;
}

bool HasReminder(const CCalendarEx& calendar) {
    return calendar.m_lReminderMinutes != kNoReminder;
}

/// The text of a field; of several entries the last one counts.
CString TextOf(const CCalendarEx& calendar, std::int32_t field) {
    CString text;
    for (const auto& entry : calendar.m_arrInfo) {
        if (entry && entry->m_nFieldId == field) {
            text = entry->m_strValue;
        }
    }
    return text;
}

void SetNewAppointment(IMessage* message) {
    SetTextProperty(message, PR_MESSAGE_CLASS_W, L"IPM.Appointment");
    SetNumberProperty(message, PR_MESSAGE_FLAGS, MSGFLAG_READ);
    SetNumberProperty(message, PR_IMPORTANCE, IMPORTANCE_NORMAL);
    SetNumberProperty(message, PR_PRIORITY, PRIO_NORMAL);
    SetNumberProperty(message, PR_SENSITIVITY, SENSITIVITY_NONE);
    SetNamedNumberProperty(message, PSETID_Appointment, kPidLidBusyStatus, 0);
}

void SetTimes(IMessage* message, const CCalendarEx& calendar) {
    const COleDateTime& start = calendar.m_dtStartTime;
    const COleDateTime& end = calendar.m_dtEndTime;
    SetNamedDateProperty(message, PSETID_Appointment, kPidLidAppointmentStartWhole, start);
    SetNamedDateProperty(message, PSETID_Appointment, kPidLidClipStart, start);
    SetNamedDateProperty(message, PSETID_Common, kPidLidCommonStart, start);
    SetNamedDateProperty(message, PSETID_Appointment, kPidLidAppointmentEndWhole, end);
    SetNamedDateProperty(message, PSETID_Appointment, kPidLidClipEnd, end);
    SetNamedDateProperty(message, PSETID_Common, kPidLidCommonEnd, end);
    SetNamedNumberProperty(message, PSETID_Appointment, kPidLidAppointmentDuration,
                           WholeMinutes(DateDifference(end.m_dt, start.m_dt)));
}

void SetTexts(IMessage* message, const CCalendarEx& calendar) {
    SetTextProperty(message, PR_SUBJECT_W, TextOf(calendar, kSubjectField));
    SetTextProperty(message, PR_BODY_W, TextOf(calendar, kBodyField));
    SetNamedTextProperty(message, PSETID_Appointment, kPidLidLocation, TextOf(calendar, kLocationField));
}

void SetSound(IMessage* message, bool plays) {
    SetNamedFlagProperty(message, PSETID_Common, kPidLidReminderPlaySound, plays);
    SetNamedTextProperty(message, PSETID_Common, kPidLidReminderFileParameter, L"Reminder.wav");
}

/// Without a ring tone the reminder of this appointment is silent. One can only be turned on where the
/// appointment has a reminder of its own kind already; all others keep what is set for reminders at large.
void SetReminderSound(IMessage* message, const CCalendarEx& calendar) {
    if (calendar.m_nRingTone == 0) {
        SetNamedFlagProperty(message, PSETID_Common, kPidLidReminderOverride, TRUE);
        SetSound(message, false);
        return;
    }
    std::int32_t overrides = 0;
    if (GetNamedBoolProperty(message, PSETID_Common, kPidLidReminderOverride, overrides) != 0 &&
        overrides != 0) {
        SetSound(message, true);
    }
}

/// When the reminder shows itself. A difference of exactly zero stands for no date, whatever the start is.
COleDateTime SignalTime(const CCalendarEx& calendar) {
    COleDateTime time = calendar.m_dtStartTime;
    time.m_dt = SubtractSpan(time.m_dt, DaysOf(0, 0, calendar.m_lReminderMinutes, 0));
    return time.m_dt == 0.0 ? COleDateTime() : time;
}

void SetReminder(IMessage* message, const CCalendarEx& calendar) {
    SetNamedFlagProperty(message, PSETID_Common, kPidLidReminderSet, HasReminder(calendar));
    if (!HasReminder(calendar)) {
        return;
    }
    SetNamedNumberProperty(message, PSETID_Common, kPidLidReminderDelta, calendar.m_lReminderMinutes);
    SetReminderSound(message, calendar);
    SetNamedDateProperty(message, PSETID_Common, kPidLidReminderTime, calendar.m_dtStartTime);
    SetNamedDateProperty(message, PSETID_Common, kPidLidReminderSignalTime, SignalTime(calendar));
}

void SetZone(IMessage* message, const tagZebTimeZone& zone) {
    std::unique_ptr<std::uint8_t[]> bytes;
    std::uint32_t count = 0;
    if (WriteTimeZoneBlob(zone, &bytes, count) != 0) {
        SetNamedBinaryProperty(message, PSETID_Appointment, kPidLidTimeZoneStruct, bytes.get(), count);
    }
    SetNamedTextProperty(message, PSETID_Appointment, kPidLidTimeZoneDescription, zone.Display);
}

/// The clip of a series ends with the last day of the series and not with its first instance.
void SetSeries(IMessage* message, const CCalendarEx& calendar) {
    tagRecurrencePattern pattern;
    BuildRecurrencePattern(pattern, calendar);
    std::unique_ptr<std::uint8_t[]> bytes;
    std::uint32_t count = 0;
    if (WriteRecurrenceBlob(pattern, &bytes, count) != 0) {
        SetNamedBinaryProperty(message, PSETID_Appointment, kPidLidAppointmentRecur, bytes.get(), count);
    }
    // The words for a series are left to the mail program, which makes them of its properties.
    SetNamedTextProperty(message, PSETID_Appointment, kPidLidRecurrencePattern, CString());
    COleDateTime end;
    MinutesToDateTime(pattern.EndDate, &end);
    SetNamedDateProperty(message, PSETID_Appointment, kPidLidClipEnd, end);
}

void SetRecurrence(IMessage* message, const CCalendarEx& calendar) {
    SetNamedFlagProperty(message, PSETID_Appointment, kPidLidRecurring, IsSeries(calendar));
    SetNamedNumberProperty(message, PSETID_Appointment, kPidLidRecurrenceType, calendar.m_lRecurType);
    if (IsSeries(calendar)) {
        SetSeries(message, calendar);
    } else {
        // The type is not that of the property. A store looks at the name alone when it removes something.
        DeleteNamedProperty(message, PSETID_Appointment, kPidLidAppointmentRecur, PT_SYSTIME);
    }
}

}  // namespace

void CutToWholeDays(CCalendarEx& calendar) {
    if (calendar.m_bAlldayEvent == 0) {
        return;
    }
    COleDateTime& start = calendar.m_dtStartTime;
    COleDateTime& end = calendar.m_dtEndTime;
    start = MidnightOf(start);
    end = MidnightOf(end);
    if (start >= end) {
        end = {AddSpan(start.m_dt, 1.0), kDateValid};
    }
}

void SetAppointmentProperties(IMessage* message, CCalendarEx& calendar, const TimeZoneTable& zones,
                              const tagZebTimeZone& currentZone) {
    if ((calendar.m_lFlag & kChangeAdd) != 0) {
        SetNewAppointment(message);
    }
    SetNumberProperty(message, PR_ICON_INDEX, IsSeries(calendar) ? kSeriesIcon : kSingleIcon);
    CutToWholeDays(calendar);
    SetTimes(message, calendar);
    SetTexts(message, calendar);
    SetNamedFlagProperty(message, PSETID_Appointment, kPidLidAppointmentSubType,
                         static_cast<unsigned short>(calendar.m_bAlldayEvent));
    SetReminder(message, calendar);
    SetNamedNumberProperty(message, PSETID_Common, kPidLidSideEffects, kSideEffects);
    const int index = FindTimeZoneByText(zones, TextOf(calendar, kTimeZoneField).c_str());
    SetZone(message, index < 0 ? currentZone : zones[static_cast<std::size_t>(index)]);
    SetRecurrence(message, calendar);
}
