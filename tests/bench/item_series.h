#pragma once

// The series of a recurring appointment: the property that holds it, and what the agent makes of it without
// the XML service.

#include <cstdint>
#include <vector>

#include "calendar/exception_rule.h"
#include "document_parts.h"
#include "store_calls.h"

namespace bench {

/// The first element of a document for which the property is needed.
constexpr std::wstring_view kSeriesElement = L"lRecurInterval";

struct ItemSeries {
    std::vector<std::uint8_t> bytes;
    SeriesDefaults defaults;
};

/// The series of a message with its document; one without bytes if there is none. Raises std::runtime_error
/// if it does not give the text of the document's exceptions again.
ItemSeries SeriesOf(IMessage* message, const DocumentParts& parts);

/// Parses the property as the agent does.
NAMESPACE_MAPI::tagRecurrencePattern PatternOf(const ItemSeries& series);

/// The text of the exceptions, if there are some.
CString ExceptionsOf(const ItemSeries& series, const NAMESPACE_MAPI::tagRecurrencePattern& pattern);

}  // namespace bench
