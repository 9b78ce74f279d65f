#include "calendar/appointment_properties.h"

#include <algorithm>
#include <new>

#include "timezone/conversions.h"

namespace {

/// The value of a named property; empty unless it could be read without a warning.
MapiBuffer<SPropValue> GetNamedProperty(IMessage* message, ULONG propertySet, LONG id) {
    const ULONG tag = GetNamedPropertyTag(message, propertySet, id);
    return tag == 0 ? MapiBuffer<SPropValue>() : GetProperty(message, tag);
}

}  // namespace

int GetNamedDateProperty(IMessage* message, ULONG /*propertySet*/, LONG id, COleDateTime& value) {
    value = COleDateTime();
    const MapiBuffer<SPropValue> stored = GetNamedProperty(message, PSETID_Appointment, id);
    if (!stored) {
        return 0;
    }
    FileTimeToLocalDateTime(stored->Value.ft, value);
    return 1;
}

int GetNamedBoolProperty(IMessage* message, ULONG propertySet, LONG id, std::int32_t& value) {
    const MapiBuffer<SPropValue> stored = GetNamedProperty(message, propertySet, id);
    value = stored ? stored->Value.b : 0;
    return stored ? 1 : 0;
}

int GetNamedLongProperty(IMessage* message, ULONG propertySet, LONG id, std::int32_t& value) {
    const MapiBuffer<SPropValue> stored = GetNamedProperty(message, propertySet, id);
    value = stored ? stored->Value.l : 0;
    return stored ? 1 : 0;
}

int GetNamedBinaryProperty(IMessage* message, ULONG /*propertySet*/, LONG id, std::uint32_t& count,
                           std::unique_ptr<std::uint8_t[]>& bytes) {
    count = 0;
    bytes.reset();
    const MapiBuffer<SPropValue> stored = GetNamedProperty(message, PSETID_Appointment, id);
    if (!stored || PROP_TYPE(stored->ulPropTag) != PT_BINARY) {
        return 0;
    }
    const SBinary& binary = stored->Value.bin;
    count = binary.cb;
    if (binary.cb != 0 && binary.lpb != nullptr) {
        bytes.reset(new (std::nothrow) std::uint8_t[binary.cb]);
    }
    if (bytes) {
        std::copy_n(binary.lpb, binary.cb, bytes.get());
    }
    return 1;
}
