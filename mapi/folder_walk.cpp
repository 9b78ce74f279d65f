#include "mapi/folder_walk.h"

#include <mapitags.h>

#include "mapi/item_document.h"
#include "mapi/operation_log.h"
#include "support/errors.h"
#include "support/log.h"
#include "support/settings.h"

namespace {

/// A folder's own name and identifier, in the order in which they are asked for.
enum FolderProperty : unsigned { kFolderName, kFolderEntryId };

bool IsSet(const SBinary& entryId) {
    return entryId.lpb != nullptr;
}

}  // namespace

CString FolderIdentity::DisplayName() const {
    return PROP_TYPE(values.Get()[kFolderName].ulPropTag) == PT_UNICODE
               ? CString(values.Get()[kFolderName].Value.lpszW)
               : CString();
}

SBinary FolderIdentity::EntryId() const {
    const SPropValue& id = values.Get()[kFolderEntryId];
    return PROP_TYPE(id.ulPropTag) == PT_BINARY ? id.Value.bin : SBinary{0, nullptr};
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
void AddFolderItems(const FolderCount& count, IMAPIFolder* chosen, const SBinary& entryId, ULONG& total) {
    static constexpr SizedSPropTagArray(1, kColumns) = {1, {PR_ENTRYID}};
    if (chosen == nullptr || !IsSet(entryId) || entryId.cb == 0) {
        LogLine(kLogFailure, count.operation, count.invalidParameter);
        AfxThrowUserException();
    }
    const ComPtr<IMAPIFolder> folder = OpenFolder(chosen, count.kind.folderMember, entryId, count.operation);
    if (!folder) {
        if (count.openFailed != nullptr) {
            LogLine(kLogFailure, count.operation, count.openFailed);
        }
        AfxThrowUserException();
    }
    total = QueryContents(folder.Get(), reinterpret_cast<const SPropTagArray*>(&kColumns),
                          count.kind.messageClass, count.operation)
                .Count();
    if (!g_bSubFolder) {
        return;
    }
    if (count.beforeSubFolders != nullptr) {
        LogLine(kLogTrace, count.operation, count.beforeSubFolders);
    }
    const TableRows subFolders = QuerySubFolders(folder.Get(), count.kind.containerClass, count.operation);
    for (ULONG i = 0; i < subFolders.Count(); ++i) {
        total += CountFolderItems(count, chosen, EntryIdOfColumn(subFolders.Row(i), kSubFolderEntryId));
    }
}

/// Takes the items of an open folder. False if they could not be had or the read was stopped.
bool ReadContents(const FolderRead& read, IMAPIFolder* folder, const CString& path) {
    const TableRows contents = QueryContents(folder, read.columns, read.kind.messageClass, read.operation);
    if (!contents.rows) {
        return false;
    }
    for (ULONG i = 0; i < contents.Count(); ++i) {
        if (read.stop != 0) {
            return false;
        }
        read.take(contents.Row(i), path);
    }
    return true;
}

bool ReadSubFolders(const FolderRead& read, IMAPIFolder* chosen, IMAPIFolder* folder, const CString& path) {
    const TableRows subFolders = QuerySubFolders(folder, read.kind.containerClass, read.operation);
    if (!subFolders.rows) {
        return read.withoutSubFolders == WithoutSubFolders::Succeeds;
    }
    for (ULONG i = 0; i < subFolders.Count(); ++i) {
        const SRow& row = subFolders.Row(i);
        const CString subPath = CString(path + L"\\" + TextOfColumn(row, kSubFolderName, PR_DISPLAY_NAME_W));
        if (ReadFolderItems(read, chosen, EntryIdOfColumn(row, kSubFolderEntryId), subPath) == 0) {
            return false;
        }
    }
    return true;
}

bool ReadFolder(const FolderRead& read, IMAPIFolder* chosen, const SBinary& entryId, const CString& path) {
    if (read.stop != 0 || chosen == nullptr || !IsSet(entryId)) {
        LogLine(kLogFailure, read.operation, L"Interrupted or INVALID Parameter");
        AfxThrowUserException();
    }
    const ComPtr<IMAPIFolder> folder = OpenFolder(chosen, read.kind.folderMember, entryId, read.operation);
    if (!folder) {
        LogLine(kLogFailure, read.operation, L"OpenEntry Failed or NULL lpContainer");
        AfxThrowUserException();
    }
    if (!ReadContents(read, folder.Get(), path)) {
        return false;
    }
    if (!g_bSubFolder) {
        return true;
    }
    if (read.stop != 0) {
        return read.withoutSubFolders == WithoutSubFolders::Succeeds;
    }
    return ReadSubFolders(read, chosen, folder.Get(), path);
}

}  // namespace

ULONG CountFolderItems(const FolderCount& count, IMAPIFolder* chosen, const SBinary& entryId) {
    LogLine(kLogTrace, count.operation, L"Begin");
    ULONG total = 0;
    try {
        AddFolderItems(count, chosen, entryId, total);
    } catch (...) {
        // What was counted so far stands; the lines written on the way tell the reason.
    }
    LogLine(kLogTrace, count.operation, L"Finish");
    return total;
}

int ReadFolderItems(const FolderRead& read, IMAPIFolder* chosen, const SBinary& entryId,
                    const CString& path) {
    LogLine(kLogTrace, read.operation, read.firstLine);
    bool succeeded = false;
    try {
        succeeded = ReadFolder(read, chosen, entryId, path);
    } catch (const NoDocument&) {
        return 0;
    } catch (...) {
        succeeded = false;
    }
    LogFinish(read.operation, succeeded);
    return succeeded ? 1 : 0;
}
