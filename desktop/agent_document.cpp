#include "desktop/agent_document.h"

#include <windows.h>

#include "desktop/input_file.h"

namespace {

/// Far more than any tree of folders takes, and few enough for every length here.
constexpr LONGLONG kLongestDocument = 512LL * 1024 * 1024;

[[noreturn]] void ThrowReadFailed(const CString& message) {
    throw Failure(ExitCode::kReadFailed, message);
}

void RemoveEarlier(const CString& path) {
    if (DeleteFileW(path.c_str()) == 0 && GetFileAttributesW(path.c_str()) != INVALID_FILE_ATTRIBUTES) {
        ThrowReadFailed(L"what is at " + path + L" cannot be replaced");
    }
}

}  // namespace

CString FetchDocument(const AgentConnection& agent, const AgentDocument& document, const CString& folder) {
    const CString path = folder + L"\\" + document.file;
    RemoveEarlier(path);
    wchar_t nothing[] = L"";
    long status = 1;
    agent.Call([&] { document.write(nothing, &status); });
    if (status != 0) {
        ThrowReadFailed(
            CString::Format(L"the agent could not write the %s to %s", document.what, path.c_str()));
    }
    const std::optional<std::string> bytes = ReadFileBytes(path, kLongestDocument);
    if (!bytes) {
        ThrowReadFailed(
            CString::Format(L"the agent wrote no %s to %s: if it was running before its settings were made, "
                            L"\"zebdesk shutdown\" ends it, and the next command starts it anew",
                            document.what, path.c_str()));
    }
    return WideFromUtf8(*bytes).value_or(CString());
}
