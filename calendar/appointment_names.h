#pragma once

// The named properties of an appointment that are read or written, by their published names (MS-OXPROPS 2).

#include <windows.h>

// In PSETID_Appointment.
constexpr LONG kPidLidBusyStatus = 0x8205;
constexpr LONG kPidLidLocation = 0x8208;
constexpr LONG kPidLidAppointmentStartWhole = 0x820D;
constexpr LONG kPidLidAppointmentEndWhole = 0x820E;
constexpr LONG kPidLidAppointmentDuration = 0x8213;
constexpr LONG kPidLidAppointmentSubType = 0x8215;
constexpr LONG kPidLidAppointmentRecur = 0x8216;
constexpr LONG kPidLidRecurring = 0x8223;
constexpr LONG kPidLidRecurrenceType = 0x8231;
constexpr LONG kPidLidRecurrencePattern = 0x8232;
constexpr LONG kPidLidTimeZoneStruct = 0x8233;
constexpr LONG kPidLidTimeZoneDescription = 0x8234;
constexpr LONG kPidLidClipStart = 0x8235;
constexpr LONG kPidLidClipEnd = 0x8236;

// In PSETID_Common.
constexpr LONG kPidLidReminderDelta = 0x8501;
constexpr LONG kPidLidReminderTime = 0x8502;
constexpr LONG kPidLidReminderSet = 0x8503;
constexpr LONG kPidLidSideEffects = 0x8510;
constexpr LONG kPidLidCommonStart = 0x8516;
constexpr LONG kPidLidCommonEnd = 0x8517;
constexpr LONG kPidLidReminderOverride = 0x851C;
constexpr LONG kPidLidReminderPlaySound = 0x851E;
constexpr LONG kPidLidReminderFileParameter = 0x851F;
constexpr LONG kPidLidReminderSignalTime = 0x8560;
