#pragma once

#include "calendar/recurrence_pattern.h"
#include "support/xml_parser.h"

/// Appends what a series is to the document of its appointment, which already has lRecurType and what single
/// instances take over from the series. A series of another calendar than the Gregorian one is only named as
/// such.
void WriteRecurrenceElements(const NAMESPACE_MAPI::tagRecurrencePattern& pattern, CXMLParser& document);
