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

bool Flush(const std::filesystem::path& path) {
    const FileHandle file(
        CreateFileW(path.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    return file && FlushFileBuffers(file.Get()) != 0;
}

/// The name under which a file comes into being.
std::filesystem::path PartOf(const std::filesystem::path& path) {
    std::filesystem::path part = path;
    part += L".part";
    return part;
}

/// Gives a file that is whole its name, or removes what there is of it.
bool MoveIntoPlace(bool isWhole, const std::filesystem::path& part, const std::filesystem::path& path) {
    if (isWhole && MoveFileExW(part.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) != 0) {
        return true;
    }
    DeleteFileW(part.c_str());
    return false;
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
    const std::filesystem::path part = PartOf(path);
    if (!MoveIntoPlace(WriteBytes(part, bytes, durable), part, path)) {
        ThrowUnwritable(path);
    }
}

bool CopyFileWhole(const std::filesystem::path& from, const std::filesystem::path& to, bool durable) {
    const std::filesystem::path part = PartOf(to);
    const bool isThere = CopyFileW(from.c_str(), part.c_str(), FALSE) != 0 && (!durable || Flush(part));
    return MoveIntoPlace(isThere, part, to);
}
