#include "mapi/folder_walk.h"

#include <mapitags.h>

#include "mapi/operation_log.h"
#include "support/errors.h"
#include "support/log.h"
#include "support/settings.h"

namespace {

constexpr ULONG kContentsFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS;

/// A folder's own name and identifier, in the order in which they are asked for.
enum FolderProperty : unsigned { kFolderName, kFolderEntryId };

bool IsSet(const SBinary& entryId) {
    return entryId.lpb != nullptr;
}

}  // namespace

ComPtr<IMAPIFolder> FolderWalk::Open(IMAPIFolder* chosen, const SBinary& entryId) const {
    ULONG type = 0;
    ComPtr<IMAPIFolder> folder;
    const HRESULT result =
        chosen->OpenEntry(entryId.cb, reinterpret_cast<LPENTRYID>(entryId.lpb), nullptr, MAPI_BEST_ACCESS,
                          &type, reinterpret_cast<LPUNKNOWN*>(folder.GetAddressOf()));
    LogResult(m_operation, (CString(m_kind.folderMember) + L"->OpenEntry").c_str(), result);
    if (result != S_OK) {
        folder.Reset();
    }
    return folder;
}

TableRows FolderWalk::Contents(IMAPIFolder* folder, const SPropTagArray* columns) const {
    TableRows contents;
    const HRESULT result = folder->GetContentsTable(kContentsFlags, contents.table.GetAddressOf());
    LogResult(m_operation, L"lpContainer->GetContentsTable", result);
    if (result == S_OK && contents.table) {
        contents.rows = Query(contents.table.Get(), columns, PR_MESSAGE_CLASS_W, m_kind.messageClass);
    }
    return contents;
}

TableRows FolderWalk::SubFolders(IMAPIFolder* folder) const {
    static constexpr SizedSPropTagArray(4, kColumns) = {
        4, {PR_CONTAINER_CLASS_W, PR_DISPLAY_NAME_W, PR_ENTRYID, PR_SUBFOLDERS}};
    TableRows subFolders;
    const HRESULT result = folder->GetHierarchyTable(MAPI_UNICODE, subFolders.table.GetAddressOf());
    LogResult(m_operation, L"lpContainer->GetHierarchyTable", result);
    if (result == S_OK && subFolders.table) {
        subFolders.rows = Query(subFolders.table.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns),
                                PR_CONTAINER_CLASS_W, m_kind.containerClass);
    }
    return subFolders;
}

RowSet FolderWalk::Query(IMAPITable* table, const SPropTagArray* columns, ULONG restrictedTag,
                         const wchar_t* value) const {
    SPropValue exact{};
    exact.ulPropTag = restrictedTag;
    exact.Value.lpszW = const_cast<LPWSTR>(value);
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty.relop = RELOP_EQ;
    restriction.res.resProperty.ulPropTag = restrictedTag;
    restriction.res.resProperty.lpProp = &exact;

    RowSet rows;
    const HRESULT result =
        pfnHrQueryAllRows(table, const_cast<LPSPropTagArray>(columns), &restriction, nullptr, 0, rows.Put());
    LogResult(m_operation, L"pfnHrQueryAllRows", result);
    if (result != S_OK) {
        rows.Reset();
    }
    return rows;
}

CString FolderIdentity::DisplayName() const {
    return PROP_TYPE(values.Get()[kFolderName].ulPropTag) == PT_UNICODE
               ? CString(values.Get()[kFolderName].Value.lpszW)
               : CString();
}

SBinary FolderIdentity::EntryId() const {
    return values.Get()[kFolderEntryId].Value.bin;
}

FolderIdentity GetFolderIdentity(IMAPIFolder* folder) {
    SizedSPropTagArray(2, tags) = {2, {PR_DISPLAY_NAME_W, PR_ENTRYID}};
    FolderIdentity identity;
    ULONG count = 0;
    identity.result = folder->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count,
                                       identity.values.Put());
    if (count < 2) {
        identity.values.Reset();
    }
    return identity;
}

namespace {

/// The counting itself; `total` holds what was counted when an exception ends it.
void AddFolderItems(const FolderCount& count, const FolderWalk& walk, IMAPIFolder* chosen,
                    const SBinary& entryId, ULONG& total) {
    static constexpr SizedSPropTagArray(1, kColumns) = {1, {PR_ENTRYID}};
    if (chosen == nullptr || !IsSet(entryId) || entryId.cb == 0) {
        LogLine(kLogFailure, count.operation, count.invalidParameter);
        AfxThrowUserException();
    }
    const ComPtr<IMAPIFolder> folder = walk.Open(chosen, entryId);
    if (!folder) {
        if (count.openFailed != nullptr) {
            LogLine(kLogFailure, count.operation, count.openFailed);
        }
        AfxThrowUserException();
    }
    total = walk.Contents(folder.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns)).Count();
    if (!g_bSubFolder) {
        return;
    }
    if (count.beforeSubFolders != nullptr) {
        LogLine(kLogTrace, count.operation, count.beforeSubFolders);
    }
    const TableRows subFolders = walk.SubFolders(folder.Get());
    for (ULONG i = 0; i < subFolders.Count(); ++i) {
        total += CountFolderItems(count, chosen, EntryIdOfColumn(subFolders.Row(i), kSubFolderEntryId));
    }
}

/// Sends the items of an open folder. False if they could not be had or the read was stopped.
bool ReadContents(const FolderRead& read, const FolderWalk& walk, IMAPIFolder* folder, const CString& path) {
    const TableRows contents = walk.Contents(folder, read.columns);
    if (!contents.rows) {
        return false;
    }
    for (ULONG i = 0; i < contents.Count(); ++i) {
        if (read.stop != 0) {
            return false;
        }
        read.send(contents.Row(i), path);
    }
    return true;
}

bool ReadSubFolders(const FolderRead& read, const FolderWalk& walk, IMAPIFolder* chosen, IMAPIFolder* folder,
                    const CString& path) {
    const TableRows subFolders = walk.SubFolders(folder);
    for (ULONG i = 0; i < subFolders.Count(); ++i) {
        const SRow& row = subFolders.Row(i);
        const CString subPath = CString(path + L"\\" + TextOfColumn(row, kSubFolderName));
        if (ReadFolderItems(read, chosen, EntryIdOfColumn(row, kSubFolderEntryId), subPath) == 0) {
            return false;
        }
    }
    return true;
}

bool ReadFolder(const FolderRead& read, const FolderWalk& walk, IMAPIFolder* chosen, const SBinary& entryId,
                const CString& path) {
    if (read.stop != 0 || chosen == nullptr || !IsSet(entryId)) {
        LogLine(kLogFailure, read.operation, L"Interrupted or INVALID Parameter");
        AfxThrowUserException();
    }
    const ComPtr<IMAPIFolder> folder = walk.Open(chosen, entryId);
    if (!folder) {
        LogLine(kLogFailure, read.operation, L"OpenEntry Failed or NULL lpContainer");
        AfxThrowUserException();
    }
    if (!ReadContents(read, walk, folder.Get(), path)) {
        return false;
    }
    return !g_bSubFolder || read.stop != 0 || ReadSubFolders(read, walk, chosen, folder.Get(), path);
}

}  // namespace

ULONG CountFolderItems(const FolderCount& count, IMAPIFolder* chosen, const SBinary& entryId) {
    const FolderWalk walk(count.kind, count.operation);
    LogLine(kLogTrace, count.operation, L"Begin");
    ULONG total = 0;
    try {
        AddFolderItems(count, walk, chosen, entryId, total);
    } catch (...) {
        // What was counted so far stands; the lines written on the way tell the reason.
    }
    LogLine(kLogTrace, count.operation, L"Finish");
    return total;
}

int ReadFolderItems(const FolderRead& read, IMAPIFolder* chosen, const SBinary& entryId,
                    const CString& path) {
    const FolderWalk walk(read.kind, read.operation);
    LogLine(kLogTrace, read.operation, read.firstLine);
    bool succeeded = false;
    try {
        succeeded = ReadFolder(read, walk, chosen, entryId, path);
    } catch (const NoDocument&) {
        return 0;
    } catch (...) {
        succeeded = false;
    }
    LogFinish(read.operation, succeeded);
    return succeeded ? 1 : 0;
}
