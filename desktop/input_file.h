#pragma once

#include <optional>
#include <string>

#include "support/text.h"

/// The bytes of a file; nothing if it cannot be read or has more than `most` bytes, which must fit 31 bits.
std::optional<std::string> ReadFileBytes(const CString& path, long long most);

/// A text in UTF-8; nothing if it is none.
std::optional<CString> WideFromUtf8(const std::string& bytes);

/// The text of a document in UTF-8, from a file or for "-" from standard input. A byte order mark is cut off.
/// Throws a Failure if it cannot be read, is no such text or is too long for a document.
CString ReadDocumentText(const CString& name);
