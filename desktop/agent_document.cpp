#include "desktop/agent_document.h"

#include <windows.h>

#include <optional>
#include <string>

#include "support/owners.h"

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

std::optional<std::string> ReadBytes(const CString& path) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    LARGE_INTEGER size{};
    if (!file || GetFileSizeEx(file.Get(), &size) == 0 || size.QuadPart > kLongestDocument) {
        return std::nullopt;
    }
    std::string bytes(static_cast<std::size_t>(size.QuadPart), '\0');
    DWORD count = 0;
    if (ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr) == 0) {
        return std::nullopt;
    }
    bytes.resize(count);
    return bytes;
}

CString WideFromUtf8(const std::string& bytes) {
    const int size = static_cast<int>(bytes.size());
    CString text;
    text.resize(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, nullptr, 0)));
    MultiByteToWideChar(CP_UTF8, 0, bytes.data(), size, text.data(), static_cast<int>(text.size()));
    return text;
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
    const std::optional<std::string> bytes = ReadBytes(path);
    if (!bytes) {
        ThrowReadFailed(
            CString::Format(L"the agent wrote no %s to %s: if it was running before its settings were made, "
                            L"\"zebdesk shutdown\" ends it, and the next command starts it anew",
                            document.what, path.c_str()));
    }
    return WideFromUtf8(*bytes);
}
