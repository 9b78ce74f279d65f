#pragma once

#include "desktop/item_document.h"
#include "desktop/text_table.h"

/// The headings of a table of contacts.
TextTable::Row ContactHeadings();

/// What a user recognises a contact by: name, company, the first telephone number, the first e-mail address,
/// folder.
TextTable::Row ContactRow(ItemDocument& document);
