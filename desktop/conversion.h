#pragma once

#include <vector>

#include "support/text.h"

/// What was made of a document that was read.
struct Conversion {
    CString document;  ///< one that can be written
    /// What a write of it takes away from the item or moves, a line for the user each.
    std::vector<CString> losses;
};

/// Makes of a document that was read, of any kind of item, one that can be written: as a change of the same
/// item, or with `asNew` as a new one. A deletion stays one. Throws a Failure for anything that is not a
/// whole document of a read: what it lacks the write would remove.
Conversion ConvertDocument(WideView text, bool asNew);
