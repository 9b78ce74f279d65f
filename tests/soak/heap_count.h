#pragma once

// What lives in the heaps of a process, and how heap_counter.dll, loaded into it, tells whoever loaded it.

#include <cstdint>

/// The shared value that the library writes its count to.
constexpr const wchar_t* kHeapCount = L"ZebHeapCount";

/// The blocks of all heaps that are allocated and not freed, and the bytes that were asked for in them.
struct HeapCount {
    std::uint64_t blocks;
    std::uint64_t bytes;
    std::uint64_t isComplete;  ///< 1 once all heaps were walked to their ends
};
