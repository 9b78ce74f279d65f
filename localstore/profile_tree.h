#pragma once

// The root folder of the store and what stands directly in it: profiles, and the message stores of a profile.

#include <memory>
#include <optional>
#include <vector>

#include "localstore/folder_ini.h"
#include "localstore/store_tree.h"

namespace localstore {

/// The root: what SetRootPath gave, else the environment variable LOCALSTORE_ROOT, else the folder LocalStore
/// beside the module.
Text RootPath();
/// Gives another root to the process; an empty one goes back to the rule.
void SetRootPath(const Text& path);

struct ProfileInfo {
    /// What it is called and logged on to by.
    Text name;
    /// Its folder's own name, which the identifiers in it are made of.
    Text directory;
    bool isDefault = false;
};

/// The profiles in order of their directories. At most one is the default.
std::vector<ProfileInfo> ListProfiles();

struct StoreInfo {
    std::shared_ptr<StoreTree> tree;
    bool isDefault = false;
    /// The store is listed and does not let itself be opened.
    bool refuses = false;
};

/// The message stores of a profile, given by its directory, in order of name. At most one is the default.
std::vector<StoreInfo> ListStores(const Text& directory);

/// The folder.ini of a folder; an empty one if there is none.
FolderIni ReadFolderIni(const Text& folder);

/// True if two names are equal without regard to case.
bool SameName(std::wstring_view left, std::wstring_view right);

}  // namespace localstore
