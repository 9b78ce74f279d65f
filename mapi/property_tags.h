#pragma once

// Tags of published properties that the SDK headers at hand do not name.

#include <mapitags.h>

constexpr ULONG PR_LONGTERM_ENTRYID_FROM_TABLE = 0x66700102;
constexpr ULONG PR_ATTACHMENT_CONTACTPHOTO = 0x7FFF000B;
