#pragma once

// What the walks through contact folders and through calendar folders have in common: folders are opened
// through the chosen one, tables are read at once, and every result stands in the log under the operation's
// name. What differs stands in the records below, which each kind of item fills.

#include <functional>

#include "mapi/folder_tables.h"

/// A kind of item and the words that its log lines use.
struct ItemKind {
    const wchar_t* messageClass;    ///< items of exactly this class are read
    const wchar_t* containerClass;  ///< sub-folders of exactly this class are entered
    const wchar_t* folderMember;    ///< the name of the chosen folder in the log
};

/// The name and the identifier of the chosen folder, read from the folder itself.
struct FolderIdentity {
    MapiBuffer<SPropValue> values;
    HRESULT result = E_FAIL;

    /// True if the folder gave both.
    [[nodiscard]] bool IsKnown() const { return result == S_OK && values; }
    [[nodiscard]] CString DisplayName() const;
    [[nodiscard]] SBinary EntryId() const;
};
FolderIdentity GetFolderIdentity(IMAPIFolder* folder);

/// A count of the items of a folder and, by setting, of its sub-folders, and the lines that only one kind
/// writes.
struct FolderCount {
    const ItemKind& kind;
    const wchar_t* operation;
    const wchar_t* invalidParameter;  ///< the line for a missing folder or identifier
    const wchar_t* openFailed;        ///< the line for a folder that does not open; null for none
    const wchar_t* beforeSubFolders;  ///< the line in front of the sub-folders; null for none
};

/// Counts. A failure ends with what was counted so far.
ULONG CountFolderItems(const FolderCount& count, IMAPIFolder* chosen, const SBinary& entryId);

/// What a read amounts to that had to leave out sub-folders, because their table could not be had or the read
/// was stopped in front of it.
enum class WithoutSubFolders { Succeeds, Fails };

/// A read of a folder's items and then of its sub-folders' ones.
struct FolderRead {
    const ItemKind& kind;
    const wchar_t* operation;
    const wchar_t* firstLine;
    const SPropTagArray* columns;
    const int& stop;  ///< looked at before each folder and each item
    std::function<void(const SRow& row, const CString& path)> take;
    WithoutSubFolders withoutSubFolders = WithoutSubFolders::Succeeds;
};

/// Takes all items, depth first in table order. Returns 1, or 0 if a folder could not be read or the read was
/// stopped.
int ReadFolderItems(const FolderRead& read, IMAPIFolder* chosen, const SBinary& entryId, const CString& path);
