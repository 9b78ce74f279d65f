#include "mapi/folder_tables.h"

#include <mapitags.h>

#include "mapi/exact_restriction.h"
#include "mapi/operation_log.h"

namespace {

constexpr ULONG kContentsFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS;

template<class Opener>
ComPtr<IMAPIFolder> OpenThrough(Opener* through, const wchar_t* name, const SBinary& entryId,
                                const wchar_t* operation) {
    ULONG type = 0;
    ComPtr<IMAPIFolder> folder;
    const HRESULT result =
        through->OpenEntry(entryId.cb, reinterpret_cast<LPENTRYID>(entryId.lpb), nullptr, MAPI_BEST_ACCESS,
                           &type, reinterpret_cast<LPUNKNOWN*>(folder.GetAddressOf()));
    LogResult(operation, (CString(name) + L"->OpenEntry").c_str(), result);
    // What is no folder must not be taken for one.
    if (result != S_OK || type != MAPI_FOLDER) {
        folder.Reset();
    }
    return folder;
}

/// All rows of which a text property is exactly a value; for a null value, all rows there are.
RowSet QueryRows(IMAPITable* table, const SPropTagArray* columns, ULONG tag, const wchar_t* value,
                 const wchar_t* operation) {
    ExactRestriction exact(tag, value);
    RowSet rows;
    const HRESULT result = QueryAllRows(table, columns, value == nullptr ? nullptr : exact.Get(), rows);
    LogResult(operation, L"pfnHrQueryAllRows", result);
    return rows;
}

}  // namespace

ComPtr<IMAPIFolder> OpenFolder(IMAPIFolder* through, const wchar_t* name, const SBinary& entryId,
                               const wchar_t* operation) {
    return OpenThrough(through, name, entryId, operation);
}

ComPtr<IMAPIFolder> OpenFolder(IMsgStore* through, const wchar_t* name, const SBinary& entryId,
                               const wchar_t* operation) {
    return OpenThrough(through, name, entryId, operation);
}

TableRows QueryContents(IMAPIFolder* folder, const SPropTagArray* columns, const wchar_t* messageClass,
                        const wchar_t* operation) {
    TableRows contents;
    const HRESULT result = folder->GetContentsTable(kContentsFlags, contents.table.GetAddressOf());
    LogResult(operation, L"lpContainer->GetContentsTable", result);
    if (result == S_OK && contents.table) {
        contents.rows = QueryRows(contents.table.Get(), columns, PR_MESSAGE_CLASS_W, messageClass, operation);
    }
    return contents;
}

TableRows QuerySubFolders(IMAPIFolder* folder, const wchar_t* containerClass, const wchar_t* operation) {
    static constexpr SizedSPropTagArray(4, kColumns) = {
        4, {PR_CONTAINER_CLASS_W, PR_DISPLAY_NAME_W, PR_ENTRYID, PR_SUBFOLDERS}};
    TableRows subFolders;
    const HRESULT result = folder->GetHierarchyTable(MAPI_UNICODE, subFolders.table.GetAddressOf());
    LogResult(operation, L"lpContainer->GetHierarchyTable", result);
    if (result == S_OK && subFolders.table) {
        subFolders.rows = QueryRows(subFolders.table.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns),
                                    PR_CONTAINER_CLASS_W, containerClass, operation);
    }
    return subFolders;
}
