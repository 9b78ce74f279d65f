// The heap of MAPI32.dll: operator new and delete of this module. The provider keeps messages in many small
// blocks for as long as the process lives. Among them, what the platform and the client allocate for a moment
// would leave holes behind, through all of which some systems look for room with every larger block: with
// 50,000 messages nearly all time would go there.

#include <windows.h>

#include <new>

#include "support/owners.h"

namespace {

struct HeapTraits {
    using Type = HANDLE;
    static Type Empty() noexcept { return nullptr; }
    static void Close(Type heap) noexcept { HeapDestroy(heap); }
};

/// Made before all other objects of this module, which may allocate, and destroyed after them. Should there
/// be none, the process's heap takes its place from the start.
[[gnu::init_priority(101)]] const Owner<HeapTraits> g_heap(HeapCreate(0, 0, 0));

HANDLE Heap() noexcept {
    return g_heap ? g_heap.Get() : GetProcessHeap();
}

}  // namespace

// Those for arrays and those that do not throw come here too.

void* operator new(std::size_t size) {
    void* memory = HeapAlloc(Heap(), 0, size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void operator delete(void* memory) noexcept {
    HeapFree(Heap(), 0, memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    HeapFree(Heap(), 0, memory);
}
