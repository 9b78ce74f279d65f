#pragma once

#include "desktop/item_document.h"
#include "desktop/text_table.h"

/// The headings of a table of appointments.
TextTable::Row CalendarHeadings();

/// What a user recognises an appointment by: start and end, which are days without a time for one of whole
/// days, subject, location, the series in words, folder.
TextTable::Row CalendarRow(ItemDocument& document);
