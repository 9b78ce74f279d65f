#pragma once

// What the reads of appointments have in common: which items they are about, and how a document begins, ends
// and leaves.

#include "mapi/folder_walk.h"
#include "mapi/item_document.h"

/// Appointments, as the walks through folders look for them.
extern const ItemKind kCalendarItems;

/// Starts the document of an appointment.
void BeginCalendarDocument(CXMLParser& document);

/// Appends the kind of every appointment.
void AppendCalendarKind(CXMLParser& document);

/// Appends the kind that closes the document of an appointment, and returns true for one that is to be sent.
/// Every one is: a series of another calendar too, which has a kind of its own in front of this one.
bool CloseCalendarDocument(CXMLParser& document);

/// Sends the text of one appointment.
void SendCalendar(const CString& xml);
