#pragma once

// One appointment of the store as one XML document, the form in which it leaves the agent. Nothing here logs,
// and a property that fails leaves its default. An exception ends a part early: the document goes on with
// what it holds so far.

#include "mapi/item_document.h"
#include "support/owners.h"
#include "timezone/zone_text.h"

/// The properties that a row of a calendar folder is read with, in order.
extern const SPropTagArray* const kCalendarColumns;

/// Appends the row part: an element for each property that the row has. `id` receives the identifier as
/// hexadecimal text, the long-term one if the row brings it. A null array appends nothing.
void WriteCalendarRowFields(CString& id, CXMLParser& document, const SPropValue* values,
                            const ULONG* count) noexcept;

/// Appends the message part: what only the open message gives. An appointment without a zone gets the given
/// one. A null message appends nothing.
void WriteCalendarDetails(CXMLParser& document, IMessage* message,
                          const NAMESPACE_COMMON::tagZebTimeZone& zone) noexcept;
