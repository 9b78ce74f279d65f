#pragma once

// What the reads of contacts have in common: which items they are about, and how a document begins and
// leaves.

#include "mapi/folder_walk.h"
#include "support/xml_parser.h"

/// Contacts, as the walks through folders look for them.
extern const ItemKind kContactItems;

/// Starts an empty document with its declaration and its root. Without the XML service it logs and raises
/// NoDocument.
void BeginContactDocument(CXMLParser& document);

/// Sends the text of one contact. One that cannot be delivered is logged and does not end the read: the next
/// one may be.
void SendContact(const CString& xml);
