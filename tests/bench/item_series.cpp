#include "item_series.h"

#include <mapitags.h>

#include <algorithm>
#include <stdexcept>

#include "calendar/appointment_names.h"
#include "calendar/recurrence_blob.h"
#include "support/number_text.h"

namespace bench {

namespace {

/// The text of the first element of a name; empty without one.
CString TextOf(const DocumentParts& parts, std::wstring_view name) {
    const auto found = std::find_if(parts.elements.begin(), parts.elements.end(),
                                    [name](const ElementPart& part) { return part.name == name; });
    return found == parts.elements.end() ? CString() : CString(found->text.data(), found->text.size());
}

/// What the agent finds in the document. Its path to the mark of whole days leads nowhere.
SeriesDefaults DefaultsOf(const DocumentParts& parts) {
    SeriesDefaults defaults;
    defaults.subject = TextOf(parts, L"Description");
    defaults.location = TextOf(parts, L"Location");
    defaults.reminderMinutes = ReadNumber(TextOf(parts, L"lReminderMinutes").View());
    return defaults;
}

}  // namespace

ItemSeries SeriesOf(IMessage* message, const DocumentParts& parts) {
    ItemSeries series;
    const MapiBuffer<SPropValue> value = NamedValueOf(message, kAppointmentSet, kPidLidAppointmentRecur);
    if (!value || PROP_TYPE(value->ulPropTag) != PT_BINARY) {
        return series;
    }
    series.bytes.assign(value->Value.bin.lpb, value->Value.bin.lpb + value->Value.bin.cb);
    series.defaults = DefaultsOf(parts);
    if (ExceptionsOf(series, PatternOf(series)) != TextOf(parts, kExceptionsElement)) {
        throw std::runtime_error("a series does not give the exceptions of its document");
    }
    return series;
}

NAMESPACE_MAPI::tagRecurrencePattern PatternOf(const ItemSeries& series) {
    NAMESPACE_MAPI::tagRecurrencePattern pattern;
    if (ParseRecurrenceBlob(series.bytes.data(), static_cast<std::uint32_t>(series.bytes.size()), pattern) ==
        0) {
        throw std::runtime_error("a series cannot be read");
    }
    return pattern;
}

CString ExceptionsOf(const ItemSeries& series, const NAMESPACE_MAPI::tagRecurrencePattern& pattern) {
    return pattern.DeletedInstanceCount != 0 && pattern.DeletedInstanceDates
               ? ExceptionRuleText(pattern, [&series] { return series.defaults; })
               : CString();
}

}  // namespace bench
