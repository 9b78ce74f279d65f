#pragma once

#include "support/text.h"

/// The calendar part of a folder selection: what stands between the first "<event>" and the first "</event>",
/// in
/// "<id>...</id>" if the selection, trimmed of white space, stands in it too, and bare otherwise. Empty if
/// there is none.
CString ExtractEventFolderId(const CString& selection);
