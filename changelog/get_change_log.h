#pragma once

// The change-log library's one function, as the agent imports it.

#include "support/containers.h"

struct tagLogItem;
struct GetChangeLogArgs;

/// The items of a folder, in the memory of the process's heap because both sides change it.
using LogItems = CArray<tagLogItem, const tagLogItem&>;

/// Compares the items with what the map file knows of the last read, and marks in them what is new, changed
/// or gone. Returns 1 or more if there is anything to send, and less than 1 if not.
extern "C" int GetChangeLog(LogItems* items, const GetChangeLogArgs* arguments);
