#pragma once

// What a list of folders holds of all that it could hold, by what its log tells of the walk.

#include <string>
#include <vector>

#include "tests/faults/operation.h"

/// The lines of the whole list without what lies below the folders whose sub-folders were not had. Expects
/// the log to tell why they were not, or what failed to be a call of which it is silent; and each folder that
/// was had to be walked through in its turn.
std::vector<std::string> FolderListByLog(const std::vector<std::string>& whole, const Outcome& outcome);

/// Expects an element of each folder that was walked through.
void ExpectElementsOfWalkedFolders(const std::string& list, const LogLines& log);
