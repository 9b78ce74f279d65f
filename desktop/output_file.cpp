#include "desktop/output_file.h"

#include <windows.h>

#include "desktop/failure.h"
#include "support/owners.h"

namespace {

[[noreturn]] void ThrowUnwritable(const std::filesystem::path& path) {
    throw Failure(ExitCode::kOutputFailed, CString::Format(L"%s cannot be written", path.c_str()));
}

bool WriteBytes(const std::filesystem::path& path, const std::string& bytes, bool durable) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr));
    DWORD written = 0;
    return file &&
           WriteFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr) != 0 &&
           written == bytes.size() && (!durable || FlushFileBuffers(file.Get()) != 0);
}

}  // namespace

void RequireFolder(const std::filesystem::path& folder) {
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    if (!std::filesystem::is_directory(folder, error)) {
        ThrowUnwritable(folder);
    }
}

void WriteFileWhole(const std::filesystem::path& path, const std::string& bytes, bool durable) {
    std::filesystem::path part = path;
    part += L".part";
    if (!WriteBytes(part, bytes, durable) ||
        MoveFileExW(part.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) == 0) {
        DeleteFileW(part.c_str());
        ThrowUnwritable(path);
    }
}
