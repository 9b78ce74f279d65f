#pragma once

// Property values on their way between the store and its clients.

#include <windows.h>

#include <mapidefs.h>

#include <optional>

#include "localstore/property.h"

namespace localstore {

/// Longest binary or body, in bytes, that GetProps hands out; a longer one comes through a stream. Other
/// strings come whole.
constexpr std::size_t kLongestValue = 32'768;
/// The same for a row of a table.
constexpr std::size_t kLongestRowValue = 4'096;

/// How a client wants a value.
struct ValueRequest {
    /// The tag asked for. PT_UNSPECIFIED takes the type that the property has.
    PropertyTag tag = 0;
    /// Strings of unspecified type come as Unicode.
    bool unicode = false;
    /// The code page of the object's own 8-bit strings.
    UINT codePage = CP_ACP;
    std::size_t longest = kLongestValue;
};

/// Puts a value where a client reads it, with its memory under `parent`. An absent property, one of another
/// type or one that is too long becomes a PT_ERROR value. Returns false for those.
bool PutValue(const Property* property, const ValueRequest& request, void* parent, SPropValue& value);

/// The property that a client's value stands for. 8-bit strings, which are in the system's code page, become
/// Unicode. `problem` receives the result code if nothing comes back.
std::optional<Property> PropertyOfValue(const SPropValue& value, HRESULT& problem);

/// The type in which strings of a property come to a client: unspecified ones follow the flag, all others
/// stay.
PropertyType ClientType(PropertyType type, bool unicode);

}  // namespace localstore
