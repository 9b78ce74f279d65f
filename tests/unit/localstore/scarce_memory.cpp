#include "scarce_memory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace localstore_test {

namespace {

std::atomic<std::size_t> g_failIn = 0;  ///< allocations until one fails, 0 for never
std::atomic<bool> g_forever = false;    ///< the ones behind it fail too
std::atomic<std::size_t> g_failed = 0;  ///< allocations that have failed
std::atomic<std::size_t> g_live = 0;    ///< allocations that have not been freed

bool IsRefused() noexcept {
    if (g_failIn == 0 || --g_failIn != 0) {
        return false;
    }
    g_failIn = g_forever ? 1 : 0;
    ++g_failed;
    return true;
}

void* Allocate(std::size_t size) noexcept {
    void* const memory = IsRefused() ? nullptr : std::malloc(size == 0 ? 1 : size);
    g_live += memory == nullptr ? 0U : 1U;
    return memory;
}

void Free(void* memory) noexcept {
    g_live -= memory == nullptr ? 0U : 1U;
    std::free(memory);
}

}  // namespace

ScarceMemory::ScarceMemory(std::size_t n, bool forever) noexcept : m_failedBefore(g_failed) {
    g_forever = forever;
    g_failIn = n;
}

ScarceMemory::~ScarceMemory() {
    g_failIn = 0;
}

bool ScarceMemory::HasFailed() const noexcept {
    return g_failed != m_failedBefore;
}

std::size_t LiveAllocations() noexcept {
    return g_live;
}

}  // namespace localstore_test

// The program's own versions of the replaceable functions, for arrays too: a sanitizer brings its own
// otherwise.

void* operator new(std::size_t size) {
    void* memory = localstore_test::Allocate(size);
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    return memory;
}

void* operator new[](std::size_t size) {
    return ::operator new(size);
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return localstore_test::Allocate(size);
}

void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return localstore_test::Allocate(size);
}

void operator delete(void* memory) noexcept {
    localstore_test::Free(memory);
}

void operator delete[](void* memory) noexcept {
    localstore_test::Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    localstore_test::Free(memory);
}

void operator delete[](void* memory, std::size_t) noexcept {
    localstore_test::Free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    localstore_test::Free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept {
    localstore_test::Free(memory);
}
