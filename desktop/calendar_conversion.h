#pragma once

#include <vector>

#include "desktop/item_document.h"
#include "desktop/written_document.h"

/// Takes an appointment that was read over into a document to be written, and tells what that loses: the
/// exceptions of a series, the zone of a series that is of another one than this machine, the times of whole
/// days that are not from midnight to midnight here. Throws a Failure for a series of which the document does
/// not tell how it recurs, or whose calendar cannot be written.
std::vector<CString> ConvertCalendar(ItemDocument& read, WrittenDocument& written);
