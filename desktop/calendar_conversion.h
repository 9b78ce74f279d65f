#pragma once

#include <vector>

#include "desktop/item_document.h"
#include "desktop/written_document.h"

/// Why the agent would neither add nor change an appointment by a document to be written; null if it would.
const wchar_t* ObjectionToCalendar(ItemDocument& document);

/// True for a document of a read that has all of its appointment. What a conversion makes is none.
bool IsWholeCalendar(ItemDocument& document);

/// Takes an appointment that was read over into a document to be written, and tells what that loses: the
/// exceptions of a series, the zone of a series that is of another one than this machine, the times of whole
/// days that are not from midnight to midnight here. Throws a Failure for a series of which the document does
/// not tell how it recurs, or whose calendar cannot be written.
std::vector<CString> ConvertCalendar(ItemDocument& read, WrittenDocument& written);
