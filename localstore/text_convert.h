#pragma once

// 8-bit texts and Unicode.

#include <windows.h>

#include "localstore/property.h"

namespace localstore {

/// The code page itself if the system knows it, otherwise the system's own.
UINT UsableCodePage(UINT codePage);

/// Unicode of 8-bit text. Bytes that mean nothing in the code page become the system's substitute.
Text DecodeText(const Bytes& bytes, UINT codePage);
/// 8-bit text of Unicode; characters that the code page lacks become its default character.
Bytes EncodeText(std::wstring_view text, UINT codePage);

/// The text of a string property, whichever of the two types it has. `codePage` is that of 8-bit text.
Text TextOf(const Property& property, UINT codePage);

}  // namespace localstore
