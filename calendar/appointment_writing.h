#pragma once

// An appointment as the properties of a message: what a write sets, and what it removes because the
// appointment does not have it. Properties of a message that are not among them keep their values.

#include "calendar/calendar_record.h"
#include "support/owners.h"
#include "timezone/zone_table.h"

/// Makes the times of a whole day midnights: that of its first day, and that of the day behind its last. Does
/// nothing to an appointment that does not take whole days.
void CutToWholeDays(CCalendarEx& calendar);

/// Writes everything, in the order in which it belongs into the store; saves nothing. A new appointment also
/// gets its class and what is fixed then. The times go out as the UTC times of the machine's zone. The zone
/// of the record's text is only named beside them, and is the current one if the table does not have it.
void SetAppointmentProperties(IMessage* message, CCalendarEx& calendar, const TimeZoneTable& zones,
                              const NAMESPACE_COMMON::tagZebTimeZone& currentZone);
