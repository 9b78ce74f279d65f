#include "tests/faults/platform_faults.h"

#include <windows.h>
#include <winternl.h>

// Behind the base headers.
#include <oleauto.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "support/owners.h"
#include "tests/faults/document_faults.h"
#include "tests/faults/import_hook.h"

FaultPoint g_fileFaults;
FaultPoint g_registryFaults;
FaultPoint g_comFaults;

namespace {

/// A function's name as a template argument.
template<std::size_t Size>
struct Name {
    constexpr Name(const char (&name)[Size]) { std::copy_n(name, Size, text); }
    char text[Size]{};
};

constexpr std::intptr_t kNoHandle = -1;
constexpr std::intptr_t kNothing = 0;

/// How a failed call answers, by what the function returns.
template<class Result>
struct Answer;

/// A handle, or a text: the value that stands for none is an argument.
template<class Pointed>
struct Answer<Pointed*> {
    static Pointed* Of(std::uint32_t code, std::intptr_t none) {
        SetLastError(code);
        return none == kNothing ? nullptr : static_cast<Pointed*>(FileHandleTraits::Empty());
    }
};
/// BOOL.
template<>
struct Answer<int> {
    static int Of(std::uint32_t code, std::intptr_t none) {
        SetLastError(code);
        return static_cast<int>(none);
    }
};
template<>
struct Answer<DWORD> {
    static DWORD Of(std::uint32_t code, std::intptr_t none) {
        SetLastError(code);
        return static_cast<DWORD>(none);
    }
};
/// HRESULT and LSTATUS, which are the code itself.
template<>
struct Answer<LONG> {
    static LONG Of(std::uint32_t code, std::intptr_t /*none*/) { return static_cast<LONG>(code); }
};

/// A function that counts its calls and passes them on.
template<Name Function, FaultPoint& Point, std::intptr_t None, class Signature>
class Counted;

template<Name Function, FaultPoint& Point, std::intptr_t None, class Result, class... Arguments>
class Counted<Function, Point, None, Result(WINAPI*)(Arguments...)> {
  public:
    static bool Install() {
        s_original = reinterpret_cast<Original>(ReplaceImport(Function.text, reinterpret_cast<void*>(&Call)));
        return s_original != nullptr;
    }

  private:
    using Original = Result(WINAPI*)(Arguments...);

    static Result WINAPI Call(Arguments... arguments) {
        return Point.Fails() ? Answer<Result>::Of(Point.Code(), None) : s_original(arguments...);
    }
    static inline Original s_original = nullptr;
};

template<Name Function, class Signature, std::intptr_t None = kNothing>
using OfFiles = Counted<Function, g_fileFaults, None, Signature>;
template<Name Function, class Signature>
using OfRegistry = Counted<Function, g_registryFaults, kNothing, Signature>;
template<Name Function, class Signature>
using OfCom = Counted<Function, g_comFaults, kNothing, Signature>;

/// NtQueryInformationFile, whose codes are those of the kernel.
class CountedFileQuery {
  public:
    static bool Install() {
        s_original = reinterpret_cast<Original>(
            ReplaceImport("NtQueryInformationFile", reinterpret_cast<void*>(&Call)));
        return s_original != nullptr;
    }

  private:
    using Original = decltype(&NtQueryInformationFile);
    static constexpr auto kAccessDenied = static_cast<NTSTATUS>(0xC0000022);

    static NTSTATUS NTAPI Call(HANDLE file, IO_STATUS_BLOCK* status, void* information, ULONG length,
                               FILE_INFORMATION_CLASS kind) {
        return g_fileFaults.Fails() ? kAccessDenied : s_original(file, status, information, length, kind);
    }
    static inline Original s_original = nullptr;
};

using Installer = bool (*)();

constexpr Installer kFunctions[] = {
    OfFiles<"CreateFileW", decltype(&CreateFileW), kNoHandle>::Install,
    OfFiles<"ReadFile", decltype(&ReadFile)>::Install,
    OfFiles<"WriteFile", decltype(&WriteFile)>::Install,
    OfFiles<"FlushFileBuffers", decltype(&FlushFileBuffers)>::Install,
    OfFiles<"MoveFileExW", decltype(&MoveFileExW)>::Install,
    OfFiles<"DeleteFileW", decltype(&DeleteFileW)>::Install,
    OfFiles<"GetFileSizeEx", decltype(&GetFileSizeEx)>::Install,
    OfFiles<"GetFileType", decltype(&GetFileType)>::Install,
    OfFiles<"GetFileAttributesW", decltype(&GetFileAttributesW), kNoHandle>::Install,
    OfFiles<"GetFileInformationByHandleEx", decltype(&GetFileInformationByHandleEx)>::Install,
    OfFiles<"FindFirstFileW", decltype(&FindFirstFileW), kNoHandle>::Install,
    OfFiles<"FindNextFileW", decltype(&FindNextFileW)>::Install,
    CountedFileQuery::Install,
    OfRegistry<"RegOpenKeyExW", decltype(&RegOpenKeyExW)>::Install,
    OfRegistry<"RegEnumKeyExW", decltype(&RegEnumKeyExW)>::Install,
    OfRegistry<"RegQueryValueExW", decltype(&RegQueryValueExW)>::Install,
    OfCom<"CoCreateInstance", decltype(&CoCreateInstance)>::Install,
    OfCom<"CoCreateGuid", decltype(&CoCreateGuid)>::Install,
    OfCom<"StgCreateDocfileOnILockBytes", decltype(&StgCreateDocfileOnILockBytes)>::Install,
    OfCom<"CreateILockBytesOnHGlobal", decltype(&CreateILockBytesOnHGlobal)>::Install,
    OfCom<"SysAllocStringLen", decltype(&SysAllocStringLen)>::Install,
};

}  // namespace

int InstallPlatformFaults() {
    const int methods = InstallDocumentFaults();
    const bool all = std::ranges::all_of(kFunctions, [](Installer install) { return install(); });
    return all && methods > 0 ? methods + static_cast<int>(std::size(kFunctions)) : 0;
}
