#pragma once

// What the files of the operations share.

#include <cstddef>
#include <vector>

#include "tests/faults/operation.h"

constexpr auto kAllItems = static_cast<std::size_t>(StoreState::kItems);

/// A read of the zones leaves the key of each of them open.
constexpr long kZoneKeys = 2;

/// The store as it was in the beginning, a session, and nothing of an earlier run.
void PrepareItems(StoreState& state);
/// Zones are read once in a session; here they are read in each operation that needs them.
void PrepareCalendars(StoreState& state);

/// The operations that write, in order.
std::vector<Operation> WriteOperations();
