// The listing of a folder on the disk and nothing else: bench_listing FOLDER; each line of the input has the
// system list it twice more, as a changed read has, by the calls that the local store makes for it.

#include <windows.h>

#include <stdexcept>
#include <vector>

#include "command_loop.h"
#include "support/owners.h"

namespace {

/// What the local store has the system write at once.
constexpr std::size_t kBufferBytes = std::size_t{64} * 1024;

/// Lists the folder to its end and returns the number of files, which is all that is done with them.
std::size_t List(const wchar_t* path) {
    const FileHandle folder(CreateFileW(path, FILE_LIST_DIRECTORY,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                        OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    if (!folder) {
        throw std::runtime_error("the folder cannot be opened");
    }
    std::vector<std::uint64_t> buffer(kBufferBytes / sizeof(std::uint64_t));
    std::size_t files = 0;
    while (GetFileInformationByHandleEx(folder.Get(), FileIdBothDirectoryInfo, buffer.data(), kBufferBytes) !=
           FALSE) {
        const auto* place = reinterpret_cast<const BYTE*>(buffer.data());
        const FILE_ID_BOTH_DIR_INFO* information = nullptr;
        do {
            information = reinterpret_cast<const FILE_ID_BOTH_DIR_INFO*>(place);
            files += (information->FileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0 ? 1 : 0;
            place += information->NextEntryOffset;
        } while (information->NextEntryOffset != 0);
    }
    if (GetLastError() != ERROR_NO_MORE_FILES) {
        throw std::runtime_error("the folder cannot be listed");
    }
    return files;
}

void Run(const wchar_t* path) {
    bench::AnswerLines([&](const std::string& /*line*/) {
        std::size_t files = 0;
        const double seconds = bench::SecondsOf([&] {
            List(path);
            files = List(path);
        });
        return std::to_string(seconds) + ' ' + std::to_string(files);
    });
}

}  // namespace

int wmain(int count, wchar_t** arguments) {
    return bench::Guarded("bench_listing", [&] {
        if (count != 2) {
            throw std::invalid_argument("bench_listing FOLDER");
        }
        Run(arguments[1]);
    });
}
