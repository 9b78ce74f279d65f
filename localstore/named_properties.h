#pragma once

// The named properties of one message store: which identifier its clients see for a name.

#include <windows.h>

#include <mapidefs.h>

#include <deque>
#include <optional>
#include <unordered_map>

#include "localstore/msg_names.h"

namespace localstore {

/// Identifiers of one store. They last as long as the process, and the files have mappings of their own.
class NamedProperties {
  public:
    /// The identifier of a name. A number of PS_MAPI below 0x8000 is its own identifier. Without `create`
    /// nothing comes back for a name that was not seen yet; with it, nothing once all identifiers are given
    /// out.
    std::optional<PropertyId> IdOf(const PropertyName& name, bool create);
    /// The name of an identifier, or null. The pointer stays valid.
    [[nodiscard]] const PropertyName* NameOf(PropertyId id) const;

  private:
    std::unordered_map<PropertyName, PropertyId, PropertyNameHash> m_ids;
    std::deque<PropertyName> m_names;
};

/// The name that a client gave. Nothing if a pointer or the kind is not valid.
std::optional<PropertyName> NameOfClient(const MAPINAMEID* name);

/// IMAPIProp::GetIDsFromNames for a store.
HRESULT GetIDsFromNames(NamedProperties& names, ULONG count, LPMAPINAMEID* list, ULONG flags,
                        LPSPropTagArray* tags);

/// IMAPIProp::GetNamesFromIDs for a store. Without tags, all names are listed.
HRESULT GetNamesFromIDs(NamedProperties& names, LPSPropTagArray* tags, const GUID* set, ULONG flags,
                        ULONG* count, LPMAPINAMEID** list);

}  // namespace localstore
