#pragma once

// What the documents of contacts and of appointments have in common: how one begins, how its elements are
// written, and how it leaves; and how the elements of one that comes in are found.

#include <windows.h>

#include <mapidefs.h>

#include "support/text.h"
#include "support/xml_parser.h"
#include "timezone/ole_date_time.h"

/// Raised when no XML document can be made: it ends a read at once, without the operation's last line.
struct NoDocument {};

/// Starts an empty document with its declaration and its root. Without the XML service it logs and raises
/// NoDocument.
void BeginItemDocument(CXMLParser& document, const wchar_t* root);

/// Appends one element with a text below the root, on a line of its own.
void AppendElement(CXMLParser& document, const wchar_t* name, const CString& text);

/// A local date and time as documents carry it.
CString DateAndTimeText(const COleDateTime& local);

/// A time of the store, which is UTC, as documents carry it: in local time.
CString DateAndTimeText(const FILETIME& utc);

/// Takes what every item's row has: its identifier, which is put into `id`, and the times of its creation and
/// last change, of which each becomes an element. False for any other value, of which nothing is done.
bool TakeCommonRowValue(CXMLParser& document, CString& id, const SPropValue& value);

/// Sends the text of one item. One that cannot be delivered is logged with the given line and does not end
/// the read: the next one may be.
void SendItem(const CString& xml, void (*sendBack)(const CString& xml), const wchar_t* failureLine);

/// Reads the text of the first element of a name right below the root. False, with the text as it was, if
/// there is none.
bool ReadElement(CXMLParser& document, const wchar_t* root, const wchar_t* name, CString& text);
