#pragma once

// Opening entries of a store: folders by default property, messages and parents by identifier. None of these
// functions logs or throws on a failed MAPI call; each returns null then, and what is returned carries one
// reference.

#include "support/containers.h"
#include "support/owners.h"
#include "support/text.h"

/// What was opened, and as what: MAPI_FOLDER or MAPI_MESSAGE. A null object if it could not be opened.
struct OpenedEntry {
    ComPtr<IUnknown> object;
    ULONG type = 0;
};

/// Opens a message or folder of a store with the best access there is. Null for a null store.
OpenedEntry OpenStoreEntry(IMsgStore* store, ULONG cb, const ENTRYID* entryId);

/// The same for an entry that is a folder; null for any other.
ComPtr<IMAPIFolder> OpenStoreFolder(IMsgStore* store, ULONG cb, const ENTRYID* entryId);

/// The default folder that a property names, such as PR_IPM_CONTACT_ENTRYID: looked for on the Inbox, then on
/// the root of the store. Null if neither has it as a binary value, and for a null store.
ComPtr<IMAPIFolder> GetDefaultFolder(IMsgStore* store, ULONG tag);

/// Puts the identifiers of the store's default folders into their slots, as hexadecimal text. A slot for
/// which the store has no value keeps what it holds. An array that is too short raises CInvalidArgException.
void LoadDefaultFolderIds(IMsgStore* store, CArray<CString>& ids);

/// Opens anything through a folder, with the given access flags.
OpenedEntry OpenFolderEntry(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId, ULONG flags);

/// Opens a message for changes by its identifier as text. Null for a null folder, an empty text and the
/// identifier of anything but a message.
ComPtr<IMessage> OpenMessageByHexId(IMAPIFolder* folder, const CString& hexId);

/// The folder that a message lives in. Null for a null folder or identifier.
ComPtr<IMAPIFolder> OpenParentFolderByEntryId(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId);

/// The same by the message's identifier as text. Null for an empty text.
ComPtr<IMAPIFolder> OpenParentFolderByHexId(IMAPIFolder* folder, const CString& hexId);
