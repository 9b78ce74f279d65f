#pragma once

#include "support/text.h"

/// The calendar part of a folder selection: what stands between the first "<event>" and the first "</event>".
/// It is wrapped in "<id>...</id>" if the selection, trimmed of white space, is, and bare otherwise. Empty if
/// there is none.
CString ExtractEventFolderId(const CString& selection);
