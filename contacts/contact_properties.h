#pragma once

// A contact as the properties of a message: what a write sets, and what it removes because the contact does
// not have it. Properties of a message that are not among them keep their values.

#include "contacts/contact_record.h"
#include "support/owners.h"
#include "timezone/zone_text.h"

/// Sets the names, the class, the numbers and addresses, and all else that is plain text.
void SetContactTexts(IMessage* message, tagContactFields& fields);

/// Sets birthday and anniversary, each twice: as the time of its midnight here, and as a date that this
/// zone's offset from UTC, in whole hours, was taken off before.
void SetContactDates(IMessage* message, const tagContactFields& fields,
                     const NAMESPACE_COMMON::tagZebTimeZone& zone);

/// Sets one of the three e-mail addresses, by the id of its property, with the three properties that belong
/// to it. Returns a result of finding their tags: that of the last, for without one of the others the next is
/// set all the same.
HRESULT SetContactEmailAddress(IMessage* message, LONG id, const CString& address);

/// Sets the categories, given with ";" between them; removes them for an empty text.
void SetContactCategories(IMessage* message, const CString& categories);

/// Sets what is made of first, middle and last name: display name, subject and initials.
void SetContactNameTexts(IMessage* message, const tagContactFields& fields);
