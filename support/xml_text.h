#pragma once

// What XML 1.0 says about text, for documents on their way out and in.

#include "support/text.h"

/// The text without what no XML 1.0 document can carry: control characters other than tab, line feed and
/// carriage return, lone surrogates, U+FFFE and U+FFFF (XML 1.0, production 2, Char). A text with nothing of
/// that kind is returned as it is, without a copy. Any other is copied to `room`, and the result is a view of
/// that.
WideView PermittedXmlText(WideView text, CString& room);

/// True if a document begins with a document type declaration behind its XML declaration, comments and
/// processing instructions (XML 1.0, production 22, prolog). Exact for every text that is well-formed.
[[nodiscard]] bool HasDocumentType(WideView document) noexcept;
