#include "desktop/input_file.h"

#include <windows.h>

#include <vector>

#include "desktop/failure.h"
#include "support/owners.h"

namespace {

/// Far more than a contact takes, and few enough for every length here.
constexpr long long kLongestDocument = 256LL * 1024 * 1024;
constexpr DWORD kPiece = 0x10000;

/// Reads on to the end. A pipe that its writer has closed ends with an error of its own.
std::optional<std::string> ReadToEnd(HANDLE file, long long most) {
    std::string bytes;
    std::vector<char> piece(kPiece);
    for (;;) {
        DWORD count = 0;
        if (ReadFile(file, piece.data(), kPiece, &count, nullptr) == 0) {
            return GetLastError() == ERROR_BROKEN_PIPE ? std::optional(bytes) : std::nullopt;
        }
        if (count == 0) {
            return bytes;
        }
        if (static_cast<long long>(bytes.size()) + count > most) {
            return std::nullopt;
        }
        bytes.append(piece.data(), count);
    }
}

[[noreturn]] void ThrowRefused(const CString& message) {
    throw Failure(ExitCode::kDocumentRefused, message);
}

}  // namespace

std::optional<std::string> ReadFileBytes(const CString& path, long long most) {
    const FileHandle file(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr));
    return file ? ReadToEnd(file.Get(), most) : std::nullopt;
}

std::optional<CString> WideFromUtf8(const std::string& bytes) {
    if (bytes.empty()) {
        return CString();
    }
    const int size = static_cast<int>(bytes.size());
    const int units = MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, nullptr, 0);
    if (units == 0) {
        return std::nullopt;
    }
    CString text;
    text.resize(static_cast<std::size_t>(units));
    MultiByteToWideChar(CP_UTF8, MB_ERR_INVALID_CHARS, bytes.data(), size, text.data(), units);
    return text;
}

CString ReadDocumentText(const CString& name) {
    const std::optional<std::string> bytes = name == L"-"
                                                 ? ReadToEnd(GetStdHandle(STD_INPUT_HANDLE), kLongestDocument)
                                                 : ReadFileBytes(name, kLongestDocument);
    if (!bytes) {
        ThrowRefused(L"it cannot be read");
    }
    std::optional<CString> text = WideFromUtf8(*bytes);
    // A text that crosses to the agent ends at its first NUL.
    if (!text || text->find(L'\0') != CString::npos) {
        ThrowRefused(L"it is no text in UTF-8");
    }
    constexpr wchar_t kByteOrderMark = 0xFEFF;
    if (!text->empty() && text->front() == kByteOrderMark) {
        text->erase(0, 1);
    }
    return *text;
}
