#pragma once

// A snapshot of a folder: every item with its identifier and the time of its last change.

#include "changelog/log_item.h"
#include "mapi/folder_walk.h"

/// Turns one row of a table into an item. The long-term identifier names the item if the row has it, as it
/// does in documents; else the short-term one. Other values are passed over.
void FillLogItem(tagLogItem& item, const SPropValue* values, ULONG count);

/// A walk that lists what a folder and, by setting, its sub-folders hold now.
struct FolderLog {
    const ItemKind& kind;
    const wchar_t* operation;
    const int& stop;  ///< looked at before each folder and each item
};

/// Appends the items of a folder, then those of its sub-folders. Returns 1, or 0 if anything could not be
/// read or the walk was stopped: such a list must not be compared, for what is missing in it would count as
/// deleted.
int ReadFolderLog(const FolderLog& log, IMAPIFolder* chosen, const SBinary& entryId, LogItems& items);

/// Hands the list of a kind of item over to the change-log library. Returns what GetChangeLog returns.
int FindChanges(LogItems& items, const wchar_t* kind, const CString& mapFile);
