#pragma once

#include "support/owners.h"
#include "support/text.h"

/// Replaces the photo of a contact by a file, and marks the message as one with or without a photo. The old
/// photo goes in any case: an empty path, and a file that cannot be opened, leave the contact without one.
void SetContactPhoto(IMessage* message, const CString& path);

/// Removes the photos of a contact and attaches a file as its new one. Returns 1 if that was attached and 0
/// otherwise. A file that cannot be read to its end raises the platform's error.
int AttachContactPhoto(IMessage* message, const CString& path);

/// Removes the photos of a contact, and the mark for attachments if there were any. Returns 1.
int DeleteContactPhotoAttachments(IMessage* message);
