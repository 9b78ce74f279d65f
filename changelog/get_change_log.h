#pragma once

// The change-log library's one function, as the agent imports it.

#include "changelog/log_item.h"

/// Compares the items with what the map file knows of the last comparison of this kind and domain. Marks each
/// item as new, changed or neither, appends one for each that is gone, and puts what is there now into the
/// map file. Returns the number of items that are marked or appended; 0 if there is none; below 0 if nothing
/// could be compared, with the items as they were and no new map.
extern "C" int GetChangeLog(LogItems* items, const GetChangeLogArgs* arguments);
