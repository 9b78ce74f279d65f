#pragma once

// What lives in the heaps of a process, counted by the process itself.

#include <windows.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

/// How heap_counter.dll tells whoever loaded it into a process.
constexpr const wchar_t* kHeapCount = L"ZebHeapCount";

/// The blocks of all heaps that are allocated and not freed, and the bytes that were asked for in them.
struct HeapCount {
    std::uint64_t blocks;
    std::uint64_t bytes;
    std::uint64_t isComplete;  ///< 1 once all heaps were walked to their ends
};

/// Adds what lives in a heap; false if it could not be walked to its end.
inline bool AddHeap(HANDLE heap, HeapCount& count) noexcept {
    if (HeapLock(heap) == FALSE) {
        return false;
    }
    PROCESS_HEAP_ENTRY entry{};
    while (HeapWalk(heap, &entry) != FALSE) {
        if ((entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0) {
            ++count.blocks;
            count.bytes += entry.cbData;
        }
    }
    const bool isAtEnd = GetLastError() == ERROR_NO_MORE_ITEMS;
    return HeapUnlock(heap) != FALSE && isAtEnd;
}

/// What lives in all heaps, those of the platform's libraries among them. Allocates nothing.
inline HeapCount CountHeaps() noexcept {
    HeapCount count{};
    std::array<HANDLE, 256> heaps{};
    const DWORD number = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    const bool isComplete = number != 0 && number <= heaps.size() &&
                            std::ranges::all_of(std::span(heaps).first(number),
                                                [&](HANDLE heap) { return AddHeap(heap, count); });
    count.isComplete = isComplete ? 1 : 0;
    return count;
}
