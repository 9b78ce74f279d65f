#pragma once

// What a contact can have beside texts: a picture, categories and dates.

#include <mapidefs.h>

#include <cstdint>
#include <string>

#include "tests/faults/operation.h"

/// The field of a contact's company.
inline constexpr std::int32_t kCompanyField = 4004;

/// The picture of the contact that is changed, before that.
std::string OldPicture();
/// Makes the file of the new picture.
void WritePicture(const std::wstring& path);

/// The elements of a document that bring the details, the picture from a file.
CString DetailElements(const CString& picture);

/// Expects of the texts of a contact, and of its details if it is a full one, what the document brings, or
/// none where it was not found in it, or what was there, as far as what failed may leave it. Of a picture
/// that was there nothing need be left: it goes before the new one comes.
void ExpectContact(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome);
void ExpectFullContact(IMessage* message, const StoreState& state, bool wasAdded, const Outcome& outcome);
