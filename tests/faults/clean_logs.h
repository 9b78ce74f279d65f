#pragma once

// The log of each operation in which nothing fails.

#include "tests/faults/operation.h"

/// Expects the lines of a run without failures: each that is documented, in its order, and no other.
void ExpectCleanLog(const Operation& operation, const StoreState& state, const LogLines& log);
