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

fs::path WithEnding(const fs::path& path, const wchar_t* ending) {
    fs::path result = path;
    result += ending;
    return result;
}

/// The bytes of a file; nothing if it is missing or cannot be read.
std::optional<std::string> BytesOf(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string{std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

WorkingMap::WorkingMap(const CString& map) {
    std::error_code error;
    m_map = fs::absolute(map.c_str(), error).make_preferred();
    m_copy = WithEnding(m_map, L".working");
    RequireUsable();
    if (fs::exists(m_map, error) && CopyFileW(m_map.c_str(), m_copy.c_str(), FALSE) == 0) {
        ThrowUnusable(m_map, L"cannot be copied");
    }
    m_before = BytesOf(m_copy).value_or(std::string());
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
    {
        const FileHandle tried(CreateFileW(m_copy.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                                           FILE_ATTRIBUTE_NORMAL, nullptr));
        if (!tried) {
            ThrowUnusable(m_map, L"is in a folder that cannot be written to");
        }
    }
    // An empty file would be no map.
    DeleteFileW(m_copy.c_str());
}

WorkingMap::~WorkingMap() {
    DeleteFileW(m_copy.c_str());
}

CString WorkingMap::TakeSetAside() const {
    const fs::path aside = WithEnding(m_copy, L".aside");
    std::error_code error;
    if (!fs::exists(aside, error)) {
        return {};
    }
    const fs::path better = WithEnding(m_map, L".aside");
    const bool renamed = MoveFileExW(aside.c_str(), better.c_str(), MOVEFILE_WRITE_THROUGH) != 0;
    return renamed ? better.c_str() : aside.c_str();
}

MapOutcome WorkingMap::Examine() const {
    MapOutcome outcome;
    outcome.setAside = TakeSetAside();
    const std::optional<std::string> now = BytesOf(m_copy);
    outcome.written = now && now != m_before;
    // What was set aside told the agent nothing.
    outcome.changes =
        ChangedIdentifiers(outcome.setAside.empty() ? m_before : std::string(), now.value_or(m_before));
    return outcome;
}

void WorkingMap::Keep() const {
    if (MoveFileExW(m_copy.c_str(), m_map.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH) == 0) {
        ThrowUnusable(m_map, L"cannot be replaced: the next read brings the same changes again");
    }
}
