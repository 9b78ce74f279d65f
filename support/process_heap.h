#pragma once

// Memory that may be allocated by one module and freed by another: the change-log library grows an array that
// the agent created, and the two need not share a run-time library.

#include <cstddef>
#include <limits>
#include <new>

/// Allocates bytes from the heap of the process. Returns null when there are none left.
void* ProcessHeapAllocate(std::size_t bytes) noexcept;

/// Gives back what ProcessHeapAllocate returned; null is permitted.
void ProcessHeapFree(void* memory) noexcept;

/// A standard allocator over the heap of the process.
template<class T>
struct ProcessHeapAllocator {
    using value_type = T;

    ProcessHeapAllocator() noexcept = default;
    template<class U>
    ProcessHeapAllocator(const ProcessHeapAllocator<U>&) noexcept {}

    T* allocate(std::size_t count) {
        if (count > std::numeric_limits<std::size_t>::max() / sizeof(T)) {
            throw std::bad_alloc();
        }
        void* memory = ProcessHeapAllocate(count * sizeof(T));
        if (memory == nullptr) {
            throw std::bad_alloc();
        }
        return static_cast<T*>(memory);
    }
    void deallocate(T* memory, std::size_t) noexcept { ProcessHeapFree(memory); }

    friend bool operator==(const ProcessHeapAllocator&, const ProcessHeapAllocator&) noexcept { return true; }
};
