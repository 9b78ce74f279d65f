#pragma once

#include <cstddef>
#include <vector>

#include "support/text.h"

/// A mail profile of the user.
struct ProfileEntry {
    CString name;
    bool isDefault = false;
};

/// A message store, or a folder in one.
struct FolderEntry {
    /// 0 for a store; a folder is one deeper than what it stands in.
    std::size_t depth = 0;
    CString name;
    CString containerClass;
    /// The entry identifier in hexadecimal.
    CString id;
    /// The default store, or the default store's default folder of its class.
    bool isDefault = false;
};

/// The profiles as lines of a table, no longer than `width` columns; 0 cuts nothing.
CString ProfileListText(const std::vector<ProfileEntry>& profiles, std::size_t width);

/// The stores with their folders, in the order in which a walk meets them, as a tree of numbered lines, no
/// longer than `width` columns; 0 cuts nothing. The identifiers of the folders follow by number, and are
/// never cut.
CString FolderListText(const std::vector<FolderEntry>& folders, std::size_t width);
