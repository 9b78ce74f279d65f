#pragma once

// The dates of an item as the store has them, got back from its document.

#include <windows.h>

#include <string>
#include <string_view>
#include <vector>

#include "document_parts.h"

namespace bench {

/// A moment in UTC, the element of the document that tells it, and the form of its text there.
struct ItemDate {
    FILETIME utc;
    std::wstring_view element;
    const wchar_t* format;
};

/// The text of a date, got as the agent gets it.
std::wstring TextOf(const ItemDate& date);

/// The dates of a document that the agent converts from UTC. Raises std::runtime_error if one of them does
/// not give the document's text again.
std::vector<ItemDate> DatesOf(const DocumentParts& parts);

}  // namespace bench
