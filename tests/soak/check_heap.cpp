// Looks from outside at the heaps of a program that runs: check_heap PROGRAM VALIDATOR. The validator is
// loaded into it; 0 if that says that all heaps are whole, 1 if not, and 2 if it cannot be asked.

#include <windows.h>

// Behind windows.h, which it needs.
#include <tlhelp32.h>

#include <cstdio>
#include <cwchar>
#include <string_view>

#include "support/owners.h"

namespace {

enum Result { kWhole, kDamaged, kNotAsked };

/// The number of the process of a program, or 0.
DWORD ProcessOf(std::wstring_view program) {
    const FileHandle processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL found = Process32FirstW(processes.Get(), &entry); found != FALSE;
         found = Process32NextW(processes.Get(), &entry)) {
        if (program == entry.szExeFile) {
            return entry.th32ProcessID;
        }
    }
    return 0;
}

/// Loads a library into a process, which keeps it. The system's libraries lie at the same place in all.
Result Load(HANDLE process, const wchar_t* library) {
    const SIZE_T size = (std::wcslen(library) + 1) * sizeof(wchar_t);
    void* const path = VirtualAllocEx(process, nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    if (path == nullptr || WriteProcessMemory(process, path, library, size, nullptr) == FALSE) {
        return kNotAsked;
    }
    const auto load = reinterpret_cast<LPTHREAD_START_ROUTINE>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "LoadLibraryW")));
    const Handle thread(CreateRemoteThread(process, nullptr, 0, load, path, 0, nullptr));
    DWORD loaded = 0;
    if (!thread || WaitForSingleObject(thread.Get(), INFINITE) != WAIT_OBJECT_0 ||
        GetExitCodeThread(thread.Get(), &loaded) == FALSE) {
        return kNotAsked;
    }
    return loaded != 0 ? kWhole : kDamaged;
}

}  // namespace

int wmain(int count, wchar_t** words) {
    const Handle process(count == 3 ? OpenProcess(PROCESS_ALL_ACCESS, FALSE, ProcessOf(words[1])) : nullptr);
    if (!process) {
        (void)std::fputs("usage: check_heap PROGRAM VALIDATOR, with a program that runs\n", stderr);
        return kNotAsked;
    }
    return Load(process.Get(), words[2]);
}
