#pragma once

// What the reads of contacts have in common: which items they are about, and how a document begins and
// leaves.

#include "mapi/folder_walk.h"
#include "mapi/item_document.h"

/// Contacts, as the walks through folders look for them.
extern const ItemKind kContactItems;

/// Starts the document of a contact.
void BeginContactDocument(CXMLParser& document);

/// Sends the text of one contact.
void SendContact(const CString& xml);
