#pragma once

#include "support/owners.h"
#include "support/text.h"

/// Writes the photos of a contact to files "PIC<n>.jpg" in the data folder, with a number that rises as long
/// as the process lives. Returns the path of the last one, which may not exist if it could not be written;
/// empty without a photo. Whoever receives the path owns the file: the agent never deletes one.
CString SaveContactPhoto(IMessage* message);

/// True if the path names something that is no directory.
bool IsExistingFile(const CString& path);
