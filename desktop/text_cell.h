#pragma once

#include <cstddef>

#include "support/text.h"

/// The columns of a terminal that a text takes: two for an ideograph or a picture, none for a combining mark.
/// Meant for a text from PrintableText.
std::size_t DisplayWidth(WideView text);

/// The text as a terminal may get it on one line: control characters and line separators become blanks, marks
/// that turn the direction of writing are left out, and a lone surrogate becomes U+FFFD. So a name in an
/// address book cannot command the terminal.
CString PrintableText(WideView text);

/// The text in exactly `width` columns: filled with blanks behind it, or cut with "…" at its end. Cuts
/// between characters only, and not between a character and its combining marks.
CString FitText(WideView text, std::size_t width);
