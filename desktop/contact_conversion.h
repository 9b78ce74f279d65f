#pragma once

#include "desktop/item_document.h"

/// Makes of a contact's document that was read one that can be written: as a change of the same contact, or
/// with `asNew` as a new one. A deletion stays one. Times, the full name and a business address among the
/// row's own elements have no place in a document that is written and are dropped. Throws a Failure for
/// anything that is not a whole document of a read: what it lacks the write would remove.
CString ConvertContact(ItemDocument& read, bool asNew);
