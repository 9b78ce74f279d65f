// The heap of texts and arrays in a test program that makes memory scarce: they come from operator new like
// everything else.

#include <new>

#include "support/process_heap.h"

void* ProcessHeapAllocate(std::size_t bytes) noexcept {
    return ::operator new(bytes, std::nothrow);
}

void ProcessHeapFree(void* memory) noexcept {
    ::operator delete(memory);
}
