#pragma once

// One contact of the store as one XML document, the form in which it leaves the agent. Nothing here logs, and
// a property that fails leaves out what it would have given.

#include "mapi/item_document.h"
#include "support/owners.h"
#include "support/text.h"

/// The properties that a row of a contact folder is read with, in order.
extern const SPropTagArray* const kContactColumns;

/// Appends the row part: an element for each property that the row has. `id` receives the identifier as
/// hexadecimal text, the long-term one if the row brings it. `text`, unless null, receives the document as it
/// is then.
void AppendContactRowToXml(CXMLParser& document, CString& id, const SPropValue* values, ULONG count,
                           CString* text);

/// Appends the message part: what only the open message gives. A null message appends nothing.
void AppendContactMessageToXml(CXMLParser& document, IMessage* message);

/// Reads one of the three e-mail addresses by the id of its property. An Exchange entry gives its readable
/// address. Returns 1, or 0 with an empty text.
int GetContactEmailAddress(IMessage* message, LONG id, CString& address);

/// Reads the categories, joined with ";". Returns 1 if there was a value, even one without texts, and 0
/// otherwise.
int GetContactCategories(IMessage* message, CString& categories);
