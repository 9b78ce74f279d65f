#include "localstore/diagnostics.h"

#include <windows.h>

#include <mutex>

#include "localstore/call_text.h"
#include "localstore/file_system.h"
#include "support/owners.h"

namespace localstore {

namespace {

std::mutex g_mutex;                ///< guards the lines and keeps appended lines whole
std::vector<std::string> g_lines;  ///< what was reported, in a recording build

Text LogPath() {
    Text path(MAX_PATH, L'\0');
    const DWORD length = GetEnvironmentVariableW(L"LOCALSTORE_LOG", path.data(), MAX_PATH);
    path.resize(length < MAX_PATH ? length : 0);
    return path;
}

std::string Now() {
    SYSTEMTIME now{};
    GetLocalTime(&now);
    char text[32] = {};
    wsprintfA(text, "%04d-%02d-%02d %02d:%02d:%02d ", now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute,
              now.wSecond);
    return text;
}

void Append(const Text& path, const std::string& line) {
    const FileHandle file(CreateFileW(path.c_str(), FILE_APPEND_DATA, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    if (file) {
        const std::string whole = Now() + line + "\r\n";
        DWORD written = 0;
        WriteFile(file.Get(), whole.data(), static_cast<DWORD>(whole.size()), &written, nullptr);
    }
}

}  // namespace

void ReportSkipped(const Text& path, const char* reason) noexcept {
    try {
        const std::lock_guard lock(g_mutex);
        const std::string line = "skipped " + Utf8Of(path) + ": " + reason;
        OutputDebugStringA(("localstore: " + line + "\n").c_str());
        const Text log = LogPath();
        if (!log.empty()) {
            Append(log, line);
        }
#ifdef LOCALSTORE_RECORDING
        g_lines.push_back(line);
#endif
    } catch (const std::exception&) {
        // A line that cannot be made is no reason to fail the operation that it tells about.
        return;
    }
}

std::vector<std::string> DiagnosticLines() {
    const std::lock_guard lock(g_mutex);
    return g_lines;
}

void ClearDiagnosticLines() noexcept {
    const std::lock_guard lock(g_mutex);
    g_lines.clear();
}

}  // namespace localstore
