#pragma once

// Opening what an entry identifier of one store stands for.

#include "localstore/com_object.h"
#include "localstore/store_tree.h"

namespace localstore {

/// OpenEntry of a store or of one of its folders. No identifier at all opens the root. MAPI_E_INVALID_ENTRYID
/// for bytes that are no identifier of this store, MAPI_E_NOT_FOUND for an object that is gone.
HRESULT OpenStoreEntry(const std::shared_ptr<StoreTree>& tree, ULONG size, const ENTRYID* id, LPCIID iid,
                       ULONG flags, ULONG* type, LPUNKNOWN* object);

}  // namespace localstore
