#pragma once

#include "desktop/arguments.h"
#include "desktop/item_kind.h"

/// Has the agent write the documents of the arguments, or delete the item that they name, and prints what
/// became of each. Throws a Failure unless all of them are proved to be done.
void WriteItems(const ItemKind& kind, const Arguments& arguments);
