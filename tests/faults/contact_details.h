#pragma once

// What a contact can have beside texts: a picture, categories and dates.

#include <mapidefs.h>

#include "tests/faults/operation.h"

/// The picture of the contact that is changed, before that.
std::string OldPicture();
/// Makes the file of the new picture.
void WritePicture(const std::wstring& path);

/// The elements of a document that bring the details, the picture from a file.
CString DetailElements(const CString& picture);

/// Expects of each detail the one that was there, or the new one, or none; all are new if nothing failed. Of
/// a picture that was there nothing need be left: it goes before the new one comes.
void ExpectDetails(IMessage* message, const Outcome& outcome);
