#pragma once

#include <windows.h>

#include <filesystem>
#include <string>

/// Makes a folder among the temporary ones that was not there before, and leaves its removal to the caller. A
/// test program that was killed leaves its own behind, and the number of its process comes again.
inline std::filesystem::path MakeNewFolder(const std::wstring& stem) {
    static int count = 0;
    const std::wstring start = stem + L"-" + std::to_wstring(GetCurrentProcessId()) + L"-";
    for (;;) {
        std::filesystem::path path =
            std::filesystem::temp_directory_path() / (start + std::to_wstring(++count));
        if (std::filesystem::create_directory(path)) {
            return path;
        }
    }
}
