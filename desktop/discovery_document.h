#pragma once

#include <vector>

#include "desktop/folder_list.h"
#include "support/text.h"

/// The profiles of a profile document, in its order. Throws a Failure for a text that is no such document.
std::vector<ProfileEntry> ParseProfiles(const CString& text);

/// The stores and folders of a folder document, each in front of what stands in it. Throws a Failure for a
/// text that is no such document.
std::vector<FolderEntry> ParseFolders(const CString& text);
