#include "mapi/store_table.h"

#include <mapitags.h>

#include "mapi/operation_log.h"

namespace {

/// The window that owns the dialogues of an open store, in the 32 bits that a window handle has.
ULONG_PTR ForegroundWindow() {
    return static_cast<ULONG>(reinterpret_cast<ULONG_PTR>(GetForegroundWindow()));
}

}  // namespace

TableRows QueryStores(IMAPISession* session, SRestriction* restriction, const wchar_t* operation) {
    static constexpr SizedSPropTagArray(3, kColumns) = {3, {PR_DEFAULT_STORE, PR_ENTRYID, PR_DISPLAY_NAME_W}};
    TableRows stores;
    HRESULT result = session->GetMsgStoresTable(0, stores.table.GetAddressOf());
    LogResult(operation, L"m_lpMAPISession->GetMsgStoresTable", result);
    if (result != S_OK || !stores.table) {
        stores.table.Reset();
        return stores;
    }
    result = QueryAllRows(stores.table.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns), restriction,
                          stores.rows);
    LogResult(operation, L"pfnHrQueryAllRows", result);
    return stores;
}

ComPtr<IMsgStore> OpenStore(IMAPISession* session, const SRow& row, const wchar_t* operation) {
    const SBinary id = EntryIdOfColumn(row, kStoreEntryId);
    ComPtr<IMsgStore> store;
    const HRESULT result =
        session->OpenMsgStore(ForegroundWindow(), id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr,
                              MAPI_BEST_ACCESS, store.GetAddressOf());
    LogResult(operation, L"m_lpMAPISession->OpenMsgStore", result);
    if (result != S_OK) {
        store.Reset();
    }
    return store;
}
