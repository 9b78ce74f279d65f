#pragma once

// The texts of a contact that are made of the parts of its name.

#include <vector>

#include "support/text.h"

/// The parts that are not empty, in this order, with a blank between.
[[nodiscard]] CString JoinName(const CString& first, const CString& middle, const CString& last);

/// The first character of each part with a full stop behind it. The middle name may be several: each of its
/// characters that stands behind a blank counts as a first one.
[[nodiscard]] CString InitialsOfName(const CString& first, const CString& middle, const CString& last);

/// Cuts a text with ";" between its parts. Parts may be empty, but behind a last ";" there is none, and in an
/// empty text neither.
[[nodiscard]] std::vector<CString> CutCategories(const CString& text);
