#pragma once

// The items of a read, got back from the documents that the agent made of them.

#include <string>
#include <vector>

#include "document_parts.h"
#include "item_dates.h"
#include "support/text.h"

namespace bench {

struct Item {
    std::wstring document;
    DocumentParts parts;
    std::vector<ItemDate> dates;
};

/// Reads a file of documents. Raises std::runtime_error for one that does not become the same again, unit by
/// unit, when it is built of its parts by direct calls of the XML service or by the agent's class.
std::vector<Item> ReadItems(const std::wstring& path);

/// Raises std::runtime_error unless a document that was built is the item's.
void RequireSame(const Item& item, WideView built);

}  // namespace bench
