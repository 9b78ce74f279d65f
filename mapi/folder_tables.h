#pragma once

// Opening folders and reading their tables, with every result in the log under the operation's name.

#include "mapi/table_rows.h"

/// The columns of a table of sub-folders, in order.
enum SubFolderColumn : unsigned {
    kSubFolderClass,
    kSubFolderName,
    kSubFolderEntryId,
    kSubFolderHasSubFolders
};

/// Opens a folder through another one or through a store, with the best access there is. The line names what
/// it was opened through. Null on failure.
ComPtr<IMAPIFolder> OpenFolder(IMAPIFolder* through, const wchar_t* name, const SBinary& entryId,
                               const wchar_t* operation);
ComPtr<IMAPIFolder> OpenFolder(IMsgStore* through, const wchar_t* name, const SBinary& entryId,
                               const wchar_t* operation);

/// A folder's items of exactly one message class. Without rows on failure.
TableRows QueryContents(IMAPIFolder* folder, const SPropTagArray* columns, const wchar_t* messageClass,
                        const wchar_t* operation);

/// A folder's sub-folders, of exactly one class or, for null, of all. Without rows on failure.
TableRows QuerySubFolders(IMAPIFolder* folder, const wchar_t* containerClass, const wchar_t* operation);
