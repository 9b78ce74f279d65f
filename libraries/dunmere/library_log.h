#pragma once

// The library's own lines, in a log of its own: the agent's is read by other programs, line by line.

#include "support/output_string.h"
#include "support/text.h"

constexpr int kLibraryTrace = 1;
constexpr int kLibraryFailure = 3;

/// Writes one line formatted as by wprintf, line end included. A line for which there is no memory is lost.
template<class... Arguments>
void LogLibrary(int level, const wchar_t* format, const Arguments&... arguments) noexcept {
    try {
        const CString line = CString::Format(format, arguments...) + L"\r\n";
        OutputString(L"Dunmere64bit", level, line.c_str());
    } catch (...) {
    }
}
