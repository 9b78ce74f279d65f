#pragma once

// All that an appointment has: its texts, times, reminder, zone and series.

#include <mapidefs.h>

#include "tests/faults/operation.h"
#include "tests/unit/store/appointment_fixture.h"

/// Gives the appointment that is changed its properties, before that.
void SetOldAppointment(NewAppointment& appointment);

/// The elements of a document that bring a series with a reminder in a zone of the test's, which has all
/// kinds of properties.
CString AppointmentElements();

/// Expects of each property of a message the value that the document brings, or, of an element that was not
/// found in it, the one that stands for none, or the one that was there, as far as what failed may leave it.
void ExpectAppointment(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome);
