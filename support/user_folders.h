#pragma once

// The folders of the agent below the user's application data folder.

#include <windows.h>

#include <shlobj.h>

#include "support/text.h"

/// The agent's scratch folder, without a trailing backslash, where contact pictures go. Written by
/// PrepareDataFolder at start and read from then on; empty when it could not be prepared.
extern CString g_strDataFolder;

/// The platform functions that find and make folders, so that their failures can be had in a test.
struct FolderCalls {
    decltype(&::SHGetSpecialFolderPathW) getSpecialFolderPath = &::SHGetSpecialFolderPathW;
    decltype(&::GetTempPathW) getTempPath = &::GetTempPathW;
    decltype(&::SHCreateDirectoryExW) createDirectory = &::SHCreateDirectoryExW;
};

/// Makes the folder `Outlook` below the user's application data folder, or below the temporary folder where
/// there is none, and puts its path into g_strDataFolder. A folder that cannot be made goes unnoticed; an
/// exception leaves the path empty.
void PrepareDataFolder(const FolderCalls& calls = {});

/// Makes a folder with all its parents, given relative to the user's application data folder, and returns its
/// path. An empty relative path gives the application data folder itself. Empty if there is no such folder or
/// if it cannot be made.
CString MakeXMLFolder(const CString& relativePath, const FolderCalls& calls = {});
