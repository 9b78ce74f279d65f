#pragma once

#include "mapi/table_rows.h"
#include "support/owners.h"
#include "support/text.h"

/// The columns of a message's photos that are looked at.
enum PhotoColumn : unsigned { kPhotoNumber, kPhotoData };

/// The attachments of a message that are photos of the contact. None if they cannot be listed.
TableRows QueryContactPhotos(IMessage* message);

/// Writes the photos of a contact to files "PIC<n>.jpg" in the data folder, with a number that rises as long
/// as the process lives. Returns the path of the last one, which may not exist if it could not be written;
/// empty without a photo. Whoever receives the path owns the file: the agent never deletes one.
CString SaveContactPhoto(IMessage* message);

/// True if the path names something that is no directory.
bool IsExistingFile(const CString& path);
