#pragma once

// Setting properties of a message one by one. What is empty is removed instead. The results of setting and
// removing are not looked at: whether a write has succeeded is decided by the saving of the message.

#include <cstdint>

#include "support/owners.h"
#include "support/text.h"
#include "timezone/ole_date_time.h"

/// Sets a text, or removes it if it is empty.
void SetTextProperty(IMAPIProp* object, ULONG tag, const CString& text);

/// The same for a text with a numeric name. Returns the result of finding its tag, without which nothing is
/// done.
HRESULT SetNamedTextProperty(IMAPIProp* object, ULONG propertySet, LONG id, const CString& text);

/// Sets a number.
void SetNumberProperty(IMAPIProp* object, ULONG tag, LONG number);

/// The same for one with a numeric name, if its tag can be found.
void SetNamedNumberProperty(IMAPIProp* object, ULONG propertySet, LONG id, LONG number);

/// Sets a yes or no, of which the store keeps all 16 bits.
void SetFlagProperty(IMAPIProp* object, ULONG tag, unsigned short flag);

/// The same for one with a numeric name, if its tag can be found.
void SetNamedFlagProperty(IMAPIProp* object, ULONG propertySet, LONG id, unsigned short flag);

/// Sets bytes under a numeric name, if its tag can be found.
void SetNamedBinaryProperty(IMAPIProp* object, ULONG propertySet, LONG id, const std::uint8_t* bytes,
                            std::uint32_t count);

/// Sets a local date as the UTC time that it is, or removes the property for the value that stands for no
/// date.
void SetDateProperty(IMAPIProp* object, ULONG tag, const COleDateTime& date);

/// The same for a date with a numeric name. Returns the result of finding its tag, without which nothing is
/// done.
HRESULT SetNamedDateProperty(IMAPIProp* object, ULONG propertySet, LONG id, const COleDateTime& date);

/// Removes a property.
void DeleteProperty(IMAPIProp* object, ULONG tag);

/// Removes one with a numeric name, under the type that is given, if its tag can be found.
void DeleteNamedProperty(IMAPIProp* object, ULONG propertySet, LONG id, ULONG type);
