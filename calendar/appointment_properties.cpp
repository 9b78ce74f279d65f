#include "calendar/appointment_properties.h"

#include <mapicode.h>

#include <algorithm>
#include <new>
#include <vector>

#include "timezone/conversions.h"

namespace {

/// The value of a named property; empty unless it could be read without a warning.
MapiBuffer<SPropValue> GetNamedProperty(IMessage* message, ULONG propertySet, LONG id) {
    const ULONG tag = GetNamedPropertyTag(message, propertySet, id);
    return tag == 0 ? MapiBuffer<SPropValue>() : GetProperty(message, tag);
}

/// More than any series takes: 65,535 changed instances with texts of the usual lengths.
constexpr std::size_t kLongestBinary = std::size_t{64} * 1024 * 1024;

/// True for the one value that is there but too large to come with the others.
bool IsTooLarge(const SPropValue& value) {
    return PROP_TYPE(value.ulPropTag) == PT_ERROR && value.Value.err == MAPI_E_NOT_ENOUGH_MEMORY;
}

/// Reads a stream to its end; nothing if it fails or does not end soon enough.
std::vector<std::uint8_t> ReadToEnd(IStream* stream) {
    constexpr ULONG kPieceBytes = 64 * 1024;
    std::vector<std::uint8_t> bytes;
    for (;;) {
        const std::size_t there = bytes.size();
        bytes.resize(there + kPieceBytes);
        ULONG read = 0;
        if (FAILED(stream->Read(bytes.data() + there, kPieceBytes, &read)) || read > kPieceBytes ||
            there + read > kLongestBinary) {
            return {};
        }
        bytes.resize(there + read);
        if (read == 0) {
            return bytes;
        }
    }
}

/// The value of a binary property that GetProps has refused as too large; nothing if it cannot be had.
std::vector<std::uint8_t> ReadLargeBinary(IMessage* message, ULONG tag) {
    ComPtr<IStream> stream;
    const HRESULT result = message->OpenProperty(CHANGE_PROP_TYPE(tag, PT_BINARY), &IID_IStream, 0, 0,
                                                 reinterpret_cast<LPUNKNOWN*>(stream.GetAddressOf()));
    if (result != S_OK || !stream) {
        return {};
    }
    try {
        return ReadToEnd(stream.Get());
    } catch (const std::bad_alloc&) {
        // One property that does not fit is no reason to leave out those behind it.
        return {};
    }
}

void CopyBytes(const std::uint8_t* source, std::uint32_t count, std::unique_ptr<std::uint8_t[]>& bytes) {
    if (count != 0 && source != nullptr) {
        bytes.reset(new (std::nothrow) std::uint8_t[count]);
    }
    if (bytes) {
        std::copy_n(source, count, bytes.get());
    }
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
    const ULONG tag = GetNamedPropertyTag(message, PSETID_Appointment, id);
    if (tag == 0) {
        return 0;
    }
    SizedSPropTagArray(1, tags) = {1, {tag}};
    ULONG values = 0;
    MapiBuffer<SPropValue> stored;
    const HRESULT result =
        message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &values, stored.Put());
    if (!stored || values == 0) {
        return 0;
    }
    if (result == S_OK && PROP_TYPE(stored->ulPropTag) == PT_BINARY) {
        count = stored->Value.bin.cb;
        CopyBytes(stored->Value.bin.lpb, count, bytes);
        return 1;
    }
    if (!IsTooLarge(*stored.Get())) {
        return 0;
    }
    // Long series are: without their property they would lose all that is particular to them.
    const std::vector<std::uint8_t> large = ReadLargeBinary(message, tag);
    count = static_cast<std::uint32_t>(large.size());
    CopyBytes(large.data(), count, bytes);
    return large.empty() ? 0 : 1;
}
