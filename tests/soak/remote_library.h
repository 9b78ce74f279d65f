#pragma once

#include <windows.h>

/// Has a process load a library. True if it keeps it, which is up to the library's entry function. Throws
/// std::runtime_error if the process cannot be made to try.
bool LoadInto(HANDLE process, const wchar_t* library);
