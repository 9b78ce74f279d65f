#pragma once

#include <windows.h>

// Behind the base types, which it uses.
#include <winternl.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <vector>

/// The handles that this process has open, as the platform lists them. (GetProcessHandleCount does not count
/// on every platform.)
inline std::size_t OpenHandles() {
    // SYSTEM_HANDLE_INFORMATION_EX, of the class SystemExtendedHandleInformation.
    struct Entry {
        void* object;
        ULONG_PTR process;
        ULONG_PTR handle;
        ULONG others[4];
    };
    struct List {
        ULONG_PTR count;
        ULONG_PTR reserved;
    };
    constexpr int kExtendedHandleInformation = 64;
    using Query = NTSTATUS(NTAPI*)(int, void*, ULONG, ULONG*);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));

    std::vector<std::uint64_t> room(1 << 20);
    ULONG size = 0;
    if (query(kExtendedHandleInformation, room.data(), static_cast<ULONG>(room.size() * sizeof(room[0])),
              &size) != 0) {
        throw std::runtime_error("the list of handles");
    }
    const auto* const list = reinterpret_cast<const List*>(room.data());
    const auto* const entries = reinterpret_cast<const Entry*>(list + 1);
    std::size_t own = 0;
    for (ULONG_PTR i = 0; i < list->count; ++i) {
        own += entries[i].process == GetCurrentProcessId() ? 1U : 0U;
    }
    return own;
}
