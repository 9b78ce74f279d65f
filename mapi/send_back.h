#pragma once

// The way of one item to the desktop program. The agent's callback client does it; the rooms below know no
// more of it than this.

#include "support/text.h"

/// Sends one contact as an XML text and waits until the desktop program has taken it. Raises an exception if
/// the call fails.
void SendBackOneContact(const CString& xml);

/// The same for one appointment.
void SendBackOneCalendar(const CString& xml);
