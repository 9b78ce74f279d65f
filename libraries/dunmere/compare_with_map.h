#pragma once

#include "changelog/get_change_log.h"

/// What the library's one function does, for callers that link it in.
int CompareWithMap(LogItems* items, const GetChangeLogArgs* arguments) noexcept;
