#pragma once

#include "desktop/arguments.h"
#include "desktop/item_kind.h"

/// Reads what changed since the map of the arguments was written, to the output that they ask for, and brings
/// the map up to date when all of it has arrived and is kept. Throws a Failure otherwise, and if so much is
/// deleted that the user has to be asked; the map is as it was then.
void ReadChanges(const ItemKind& kind, const Arguments& arguments);
