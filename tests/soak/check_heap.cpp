// Looks from outside at the heaps of a program that runs: check_heap PROGRAM VALIDATOR. The validator is
// loaded into it; 0 if that says that all heaps are whole, 1 if not, and 2 if it cannot be asked.

#include <windows.h>

// Behind windows.h, which it needs.
#include <tlhelp32.h>

#include <cstdio>
#include <stdexcept>
#include <string_view>

#include "support/owners.h"
#include "tests/soak/remote_library.h"

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

}  // namespace

int wmain(int count, wchar_t** words) {
    const Handle process(count == 3 ? OpenProcess(PROCESS_ALL_ACCESS, FALSE, ProcessOf(words[1])) : nullptr);
    if (!process) {
        (void)std::fputs("usage: check_heap PROGRAM VALIDATOR, with a program that runs\n", stderr);
        return kNotAsked;
    }
    try {
        return LoadInto(process.Get(), words[2]) ? kWhole : kDamaged;
    } catch (const std::runtime_error& failure) {
        (void)std::fprintf(stderr, "check_heap: %s\n", failure.what());
        return kNotAsked;
    }
}
