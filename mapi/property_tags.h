#pragma once

// Tags of published properties that the SDK headers at hand do not name.

#include <windows.h>

#include <mapitags.h>

constexpr ULONG PR_ICON_INDEX = 0x10800003;
constexpr ULONG PR_LONGTERM_ENTRYID_FROM_TABLE = 0x66700102;
constexpr ULONG PR_ATTACH_FLAGS = 0x37140003;
constexpr ULONG PR_ATTACHMENT_LINKID = 0x7FFA0003;
constexpr ULONG PR_EXCEPTION_STARTTIME = 0x7FFB0040;
constexpr ULONG PR_EXCEPTION_ENDTIME = 0x7FFC0040;
constexpr ULONG PR_ATTACHMENT_FLAGS = 0x7FFD0003;
constexpr ULONG PR_ATTACHMENT_HIDDEN = 0x7FFE000B;
constexpr ULONG PR_ATTACHMENT_CONTACTPHOTO = 0x7FFF000B;
