#pragma once

// What counts and reads may leave behind a failure.

#include "tests/faults/operation.h"

/// Expects of a count the items of each folder whose contents could be had, and of no other.
void ExpectContactCount(StoreState& state, const Outcome& outcome);
void ExpectCalendarCount(StoreState& state, const Outcome& outcome);

/// Expects of a full read that succeeds a document of each item, save what it may leave out.
void ExpectContactsRead(StoreState& state, const Outcome& outcome);
void ExpectCalendarsRead(StoreState& state, const Outcome& outcome);

/// Expects of a read of changes that succeeds that each change arrived or is found again the next time, save
/// those whose message did not open.
void ExpectContactChangesRead(StoreState& state, const Outcome& outcome);
void ExpectCalendarChangesRead(StoreState& state, const Outcome& outcome);
