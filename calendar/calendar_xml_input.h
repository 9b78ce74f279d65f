#pragma once

// An appointment that comes in as one XML document: a root element `Calendar` and below it one level of
// elements with text. Only what is looked for is read, so other elements, attributes and the order of the
// elements do not count, and of several elements of a name the first one does.

#include "calendar/calendar_record.h"
#include "support/text.h"

/// Reads a document into a record that was reset. Always returns 1: a text that is no such document leaves
/// the record as it was, and a failure ends the reading with what has been found by then.
///
/// An element without text is there all the same: it is the number 0, no "TRUE", and a date that is not
/// valid. Only the texts that become entries of the record are as good as absent when they are empty. A date
/// is local, month/day/year and perhaps hour:minute:second; one that does not exist is marked as not valid.
int ParseCalendarXml(const CString& xml, CCalendarEx& calendar);
