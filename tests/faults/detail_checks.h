#pragma once

// How single properties of a message are compared with what may stand there.

#include <mapidefs.h>

#include <vector>

#include "support/text.h"
#include "tests/faults/operation.h"

/// What stands for a property that a message does not have.
inline constexpr const wchar_t* kNoValue = L"(none)";

/// A property as text: a number, a flag as 0 or 1, a text, texts with semicolons between them, bytes in
/// hexadecimal digits, or a time as TimeText writes it.
CString ShownProperty(IMessage* message, ULONG tag);

/// A time as sortable text, in UTC: one that is given in UTC, and one in the machine's zone.
CString TimeText(const SYSTEMTIME& utc);
CString TimeTextOfLocal(const SYSTEMTIME& local);

/// Expects of a property one of the new values, or, unless nothing failed, the one that was there. What
/// stands there beside the first new value is only for runs in which something failed.
void ExpectOldOrNew(IMessage* message, ULONG tag, const CString& old, const std::vector<CString>& fresh,
                    const Outcome& outcome);
