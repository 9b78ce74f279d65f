#include "desktop/working_map.h"

#include <windows.h>

#include <fstream>
#include <iterator>
#include <optional>
#include <string>

#include "desktop/failure.h"
#include "desktop/map_difference.h"
#include "support/owners.h"

namespace fs = std::filesystem;

namespace {

[[noreturn]] void ThrowUnusable(const fs::path& map, const wchar_t* reason) {
    throw Failure(ExitCode::kOutputFailed, CString::Format(L"the map %s %s", map.c_str(), reason));
}

constexpr const wchar_t* kNotReplaced = L"cannot be replaced: the next read brings the same changes again";

fs::path WithEnding(const fs::path& path, const std::wstring& ending) {
    fs::path result = path;
    result += ending;
    return result;
}

fs::path AbsolutePath(const CString& map) {
    std::error_code error;
    fs::path path = fs::absolute(map.c_str(), error).make_preferred();
    if (error || path.empty()) {
        ThrowUnusable(map.c_str(), L"has no name that a file can have");
    }
    return path;
}

/// The bytes of a file; nothing if it is missing or cannot be read.
std::optional<std::string> BytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return file.bad() ? std::nullopt : std::optional(std::move(bytes));
}

/// False if the text is not on the disk afterwards.
bool WriteThrough(const fs::path& path, const std::string& text) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), text.data(), static_cast<DWORD>(text.size()), &written, nullptr) != 0 &&
           written == text.size() && FlushFileBuffers(file.Get()) != 0;
}

}  // namespace

WorkingMap::WorkingMap(const CString& map, std::string section)
    : m_map(AbsolutePath(map)),
      m_copy(WithEnding(m_map, L".working")),
      m_damagedCopy(WithEnding(m_copy, L".aside")),
      m_section(std::move(section)) {
    RequireUsable();
    // What a read that was killed left behind must not be taken for what this one makes.
    RemoveCopies();
    if (!Exists()) {
        return;
    }
    const bool copied = CopyFileW(m_map.c_str(), m_copy.c_str(), FALSE) != 0;
    std::optional<std::string> bytes = copied ? BytesOf(m_copy) : std::nullopt;
    if (!bytes) {
        RemoveCopies();
        ThrowUnusable(m_map, L"cannot be copied");
    }
    m_bytes = std::move(*bytes);
}

/// A map that could not be replaced in the end had better be refused at once.
void WorkingMap::RequireUsable() const {
    const DWORD attributes = GetFileAttributesW(m_map.c_str());
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
        ThrowUnusable(m_map, L"is a folder");
    }
    if (attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        ThrowUnusable(m_map, L"is write-protected");
    }
    const FileHandle tried(CreateFileW(m_copy.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                       FILE_ATTRIBUTE_NORMAL, nullptr));
    if (!tried) {
        ThrowUnusable(m_map, L"is in a folder that cannot be written to");
    }
}

/// A map that is there but cannot be seen must not be taken for a missing one, which would be replaced.
bool WorkingMap::Exists() const {
    if (GetFileAttributesW(m_map.c_str()) != INVALID_FILE_ATTRIBUTES) {
        return true;
    }
    if (GetLastError() != ERROR_FILE_NOT_FOUND) {
        ThrowUnusable(m_map, L"cannot be reached");
    }
    return false;
}

void WorkingMap::RemoveCopies() const {
    DeleteFileW(m_copy.c_str());
    DeleteFileW(m_damagedCopy.c_str());
    if (IsDamaged()) {
        ThrowUnusable(m_damagedCopy, L"cannot be removed");
    }
}

WorkingMap::~WorkingMap() {
    DeleteFileW(m_copy.c_str());
    DeleteFileW(m_damagedCopy.c_str());
}

bool WorkingMap::IsDamaged() const {
    return GetFileAttributesW(m_damagedCopy.c_str()) != INVALID_FILE_ATTRIBUTES;
}

MapOutcome WorkingMap::Examine() const {
    const std::string before = Before();
    const std::optional<std::string> now = BytesOf(m_copy);
    MapOutcome outcome;
    outcome.damaged = IsDamaged();
    outcome.written = now && now != m_bytes;
    outcome.known = CountItems(before, m_section);
    outcome.changes = ChangedIdentifiers(before, now.value_or(before), m_section);
    return outcome;
}

CString WorkingMap::Keep(const std::vector<std::string>& missing) const {
    if (!missing.empty()) {
        TakeBack(missing);
    }
    CString aside = IsDamaged() ? SetAside() : CString();
    if (MoveFileExW(m_copy.c_str(), m_map.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        ThrowUnusable(m_map, kNotReplaced);
    }
    return aside;
}

void WorkingMap::TakeBack(const std::vector<std::string>& missing) const {
    const std::optional<std::string> now = BytesOf(m_copy);
    if (!now || !WriteThrough(m_copy, WithoutChanges(Before(), *now, m_section, missing))) {
        ThrowUnusable(m_map, kNotReplaced);
    }
}

/// Gives the damaged map a name beside the map that no other one has.
CString WorkingMap::SetAside() const {
    constexpr int kNames = 1000;
    for (int number = 1; number <= kNames; ++number) {
        const fs::path aside =
            WithEnding(m_map, L".aside" + (number == 1 ? std::wstring() : std::to_wstring(number)));
        if (MoveFileExW(m_damagedCopy.c_str(), aside.c_str(), MOVEFILE_WRITE_THROUGH) != 0) {
            return aside.c_str();
        }
    }
    ThrowUnusable(m_map, L"is damaged, and no name was found to keep it under");
}
