#define WIN32_NO_STATUS
#include <windows.h>
#undef WIN32_NO_STATUS

#include "tests/soak/process_figures.h"

#include <ntstatus.h>
#include <winternl.h>

#include <cstdint>
#include <cstring>
#include <stdexcept>
#include <vector>

#include "support/owners.h"
#include "tests/heap_count.h"
#include "tests/shared_value.h"
#include "tests/soak/remote_library.h"

namespace {

/// Asks the system for a list whose length is not known before.
std::vector<std::uint64_t> QuerySystem(SYSTEM_INFORMATION_CLASS what) {
    std::vector<std::uint64_t> buffer(8192);
    for (;;) {
        const auto size = static_cast<ULONG>(buffer.size() * sizeof(buffer[0]));
        const NTSTATUS status = NtQuerySystemInformation(what, buffer.data(), size, nullptr);
        if (NT_SUCCESS(status)) {
            return buffer;
        }
        if (status != STATUS_INFO_LENGTH_MISMATCH) {
            throw std::runtime_error("the system does not tell what it runs");
        }
        buffer.resize(buffer.size() * 2);
    }
}

/// The program's entry in a list of processes, one behind the other at any address.
SYSTEM_PROCESS_INFORMATION Find(const std::wstring& program, const std::vector<std::uint64_t>& processes) {
    const auto* const begin = reinterpret_cast<const BYTE*>(processes.data());
    const std::size_t size = processes.size() * sizeof(processes[0]);
    for (std::size_t place = 0; size - place >= sizeof(SYSTEM_PROCESS_INFORMATION);) {
        SYSTEM_PROCESS_INFORMATION process;
        std::memcpy(&process, begin + place, sizeof(process));
        const std::wstring name(process.ImageName.Buffer, process.ImageName.Length / sizeof(wchar_t));
        if (name.ends_with(program)) {
            return process;
        }
        if (process.NextEntryOffset == 0 || process.NextEntryOffset > size - place) {
            break;
        }
        place += process.NextEntryOffset;
    }
    throw std::runtime_error("the program whose figures are asked for does not run");
}

/// The library that counts, which lies beside this program.
std::wstring CounterPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.find_last_of(L'\\') + 1) + L"heap_counter.dll";
}

HeapCount CountHeaps(DWORD id) {
    const auto shared = SharedValue<HeapCount>::Make(kHeapCount);
    const Handle process(OpenProcess(PROCESS_ALL_ACCESS, FALSE, id));
    if (!shared || !process) {
        throw std::runtime_error("the heaps of a process cannot be looked at");
    }
    // The library counts while it is loaded and never stays.
    LoadInto(process.Get(), CounterPath().c_str());
    const HeapCount count = *shared.Get();
    if (count.isComplete == 0) {
        throw std::runtime_error("the heaps of a process were not counted");
    }
    return count;
}

}  // namespace

/// Asked of the system and not of the process, and counted one by one: not every system keeps a count.
ProcessFigures QueryFigures(const std::wstring& program) {
    const std::vector<std::uint64_t> processes = QuerySystem(SystemProcessInformation);
    const SYSTEM_PROCESS_INFORMATION process = Find(program, processes);
    const auto id = reinterpret_cast<std::uintptr_t>(process.UniqueProcessId);
    const std::vector<std::uint64_t> list = QuerySystem(SystemHandleInformation);
    const auto& handles = *reinterpret_cast<const SYSTEM_HANDLE_INFORMATION*>(list.data());
    ProcessFigures figures;
    figures.bytes = process.VirtualMemoryCounters.PagefileUsage;
    for (ULONG i = 0; i < handles.Count; ++i) {
        figures.handles += handles.Handle[i].OwnerPid == id;
    }
    const HeapCount count = CountHeaps(static_cast<DWORD>(id));
    figures.heapBlocks = count.blocks;
    figures.heapBytes = count.bytes;
    return figures;
}
