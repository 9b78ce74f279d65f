#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

/// Makes a folder among the temporary ones that was not there before, and leaves its removal to the caller. A
/// test program that was killed leaves its own behind, and the number of its process comes again.
inline std::filesystem::path MakeNewFolder(const std::wstring& stem) {
    static int count = 0;
    for (;;) {
        const std::wstring numbers = std::to_wstring(GetCurrentProcessId()) + L"-" + std::to_wstring(++count);
        const std::filesystem::path path = std::filesystem::temp_directory_path() / (stem + L"-" + numbers);
        if (std::filesystem::create_directory(path)) {
            return path;
        }
    }
}
