#pragma once

// What the lists of profiles and folders may leave behind a failure.

#include "tests/faults/operation.h"

/// Puts an older list in the file, so that one that is left can be told from one that was written.
void WriteOldList(const CString& file);

/// Expects in the file the list of a run without a failure, byte for byte. Behind a failure the old list is
/// left by a run that failed, and one that succeeded left it whole, or shorter by what could not be had.
void ExpectProfileList(StoreState& state, const Outcome& outcome);
void ExpectFolderList(StoreState& state, const Outcome& outcome);
