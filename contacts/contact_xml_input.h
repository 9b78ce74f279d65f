#pragma once

// A contact that comes in as one XML document: a root element `Contact` and below it one level of elements
// with text. Only what is looked for is read, so other elements, attributes and the order of the elements do
// not count, and of several elements of a name the first one does.

#include "contacts/contact_record.h"
#include "support/text.h"

/// Reads a document into a record that was reset. Always returns 1: a text that is no such document leaves
/// the record as it was, and a failure ends the reading with what has been found by then.
///
/// An element without text counts as one that is not there. The telephone numbers are written to the log.
int ParseContactXml(const CString& xml, CContactEx& contact);
