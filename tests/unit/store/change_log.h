#pragma once

// The change-log library in a test: the real comparison, or whatever a test puts in its place.

#include <functional>

#include "changelog/get_change_log.h"

/// Makes GetChangeLog run something else; an empty function brings the real comparison back.
void OnGetChangeLog(std::function<int(LogItems& items, const GetChangeLogArgs& arguments)> action);
