#pragma once

// What an object's properties are written to, and what SetProps and DeleteProps make of it.

#include <windows.h>

#include <mapidefs.h>

#include "localstore/property.h"

namespace localstore {

class PropertyTarget {
  public:
    /// Ends the operation unless the object was opened for writing.
    virtual void RequireWritable() const = 0;
    /// Puts one property, under the store's identifier. S_OK, or why this one cannot be set.
    virtual HRESULT SetOne(Property property) = 0;
    /// Removes one property. S_OK, or MAPI_E_NOT_FOUND if there was none.
    virtual HRESULT RemoveOne(PropertyId id) = 0;

  protected:
    ~PropertyTarget() = default;
};

/// IMAPIProp::SetProps.
HRESULT SetPropsOn(PropertyTarget& target, ULONG count, const SPropValue* values,
                   LPSPropProblemArray* problems);

/// IMAPIProp::DeleteProps. The type in a tag does not matter.
HRESULT DeletePropsOn(PropertyTarget& target, const SPropTagArray* tags, LPSPropProblemArray* problems);

}  // namespace localstore
