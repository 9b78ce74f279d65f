#pragma once

// The settings file PIMProfile.ini beside the process image, section Outlook. It is read once at start;
// nothing writes these variables afterwards.

#include "support/text.h"
#include "support/user_folders.h"

/// The folder of the process image, with its trailing backslash.
extern CString g_strModulePath;
/// Key `chars`, read only where key `filter` is "true". Nothing uses it.
extern CString g_strFilterChars;
/// Key `subfolder`: reads walk into sub-folders.
extern bool g_bSubFolder;
/// Key `picdelete`, true without the key. Nothing uses it.
extern bool g_bPicDelete;
/// The folder document's path, from key `XMLPath`; empty without the key.
extern CString g_strOutlookXml;
/// The profile document's path, from key `XMLPath`; empty without the key.
extern CString g_strProfileXml;

/// Reads the settings file beside the process image, whose path a test can give. Of a path that is longer
/// than 259 characters only these count, so that the file of a folder above is read. If the path cannot be
/// had, all settings keep their initial values: empty and false.
void LoadSettings(decltype(&::GetModuleFileNameW) getModuleFileName = &::GetModuleFileNameW);

/// Reads the settings file in a folder, given with its trailing backslash. A missing file gives every key its
/// default. The folder of key `XMLPath` is made; where that fails, the two documents' paths lie in the root
/// of the current drive.
void LoadSettingsFrom(const CString& folder, const FolderCalls& calls = {});
