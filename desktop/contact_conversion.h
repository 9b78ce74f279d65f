#pragma once

#include <vector>

#include "desktop/item_document.h"
#include "desktop/written_document.h"

/// True for a document of a read that has all of its contact. What a conversion makes is none.
bool IsWholeContact(ItemDocument& document);

/// Takes a contact that was read over into a document to be written. Times, the full name and a business
/// address among the row's own elements have no place there and are dropped; nobody misses them, so there
/// are no losses to tell of.
std::vector<CString> ConvertContact(ItemDocument& read, WrittenDocument& written);
