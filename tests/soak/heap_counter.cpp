// A library that counts what lives in the heaps of the process that it is loaded into, and does not stay
// there.

#include <windows.h>

#include <algorithm>
#include <array>
#include <span>

#include "tests/shared_value.h"
#include "tests/soak/heap_count.h"

namespace {

/// Adds what lives in a heap; false if it could not be walked to its end.
bool CountHeap(HANDLE heap, HeapCount& count) {
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

HeapCount CountHeaps() {
    HeapCount count{};
    std::array<HANDLE, 256> heaps{};
    const DWORD number = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
    count.isComplete = number != 0 && number <= heaps.size() &&
                               std::ranges::all_of(std::span(heaps).first(number),
                                                   [&](HANDLE heap) { return CountHeap(heap, count); })
                           ? 1
                           : 0;
    return count;
}

}  // namespace

BOOL WINAPI DllMain(HINSTANCE /*library*/, DWORD reason, void* /*reserved*/) {
    if (reason == DLL_PROCESS_ATTACH) {
        const auto count = SharedValue<HeapCount>::Open(kHeapCount);
        if (count) {
            *count.Get() = CountHeaps();
        }
    }
    return FALSE;
}
