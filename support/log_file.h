#pragma once

// Where the agent's log would be and how much it would hold, by the registry. The logging library decides for
// itself; these values are kept and nothing reads them.

#include <windows.h>

#include "support/text.h"

/// The level: the default of the caller, or the registry's value.
extern int g_nLogLevel;
/// The path of the process image with ".log" for its extension; empty without a registry value.
extern CString g_strLogFile;

/// The platform functions that a test looks at or makes fail.
struct LogFileCalls {
    decltype(&::GetModuleFileNameW) getModuleFileName = &::GetModuleFileNameW;
    decltype(&::OutputDebugStringW) outputDebugString = &::OutputDebugStringW;
};

class CLogFile {
  public:
    /// Works out the level and the path for a module, which is the process image if there is none of its
    /// name. The registry value that is named by the full path of the module's file, below
    /// "SoftWare\Lornwick\LogFiles" of the current user, holds the level. Each failure is a debug string, and
    /// leaves the default level and no path.
    static void Init(const wchar_t* moduleName, bool isLibrary, int defaultLevel,
                     const LogFileCalls& calls = {});
};
