#include "support/process_heap.h"

#ifdef _WIN32
#include <windows.h>
#else
#include <cstdlib>
#endif

void* ProcessHeapAllocate(std::size_t bytes) noexcept {
#ifdef _WIN32
    return HeapAlloc(GetProcessHeap(), 0, bytes);
#else
    return std::malloc(bytes);
#endif
}

void ProcessHeapFree(void* memory) noexcept {
#ifdef _WIN32
    if (memory != nullptr) {
        HeapFree(GetProcessHeap(), 0, memory);
    }
#else
    std::free(memory);
#endif
}
