#pragma once

// Named properties and long texts of a message, as contacts and appointments both read them.

#include "support/owners.h"
#include "support/text.h"

/// The first 32 bits of the property sets; the rest of each is {xxxxxxxx-0000-0000-C000-000000000046}
/// (MS-OXPROPS 1.3.2).
constexpr ULONG PSETID_Address = 0x00062004;
constexpr ULONG PSETID_Appointment = 0x00062002;
constexpr ULONG PSETID_Common = 0x00062008;
constexpr ULONG PS_PUBLIC_STRINGS_Data1 = 0x00020329;

/// The identifier of a property set by its first 32 bits.
GUID PropertySet(ULONG firstBits);

/// Finds the tag of a property with a numeric name, made in the store if it is not there; its type may be
/// unspecified. Returns the result of the call, and the tag is 0 unless that is 0.
HRESULT FindNamedPropertyTag(IMAPIProp* object, ULONG propertySet, LONG id, ULONG& tag);

/// The tag of a property with a numeric name, made in the store if it is not there; its type may be
/// unspecified. 0 on failure.
ULONG GetNamedPropertyTag(IMAPIProp* object, ULONG propertySet, LONG id);

/// The same for a property whose name is a text.
ULONG GetNamedPropertyTag(IMAPIProp* object, ULONG propertySet, const wchar_t* text);

/// Reads one property by tag. Empty unless the call returned exactly 0: an absent property comes with a
/// warning.
MapiBuffer<SPropValue> GetProperty(IMAPIProp* object, ULONG tag, ULONG flags = MAPI_UNICODE);

/// Reads a named text. Returns 1 with the text, or 0 with an empty text if the property is absent or no text.
int GetNamedStringProperty(IMessage* message, ULONG propertySet, LONG id, CString& text);

/// Reads a text of any length through a stream. A text that is one line break counts as empty. Returns 1 if
/// the stream could be opened and 0 otherwise.
int ReadLongTextProperty(IMessage* message, ULONG tag, CString& text);
