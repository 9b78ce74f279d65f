#include "localstore/buffers.h"

#include <atomic>
#include <cstdint>
#include <new>

namespace localstore {

namespace {

constexpr std::uint64_t kParentMark = 0x4C53426F7756A11EULL;
constexpr std::uint64_t kChildMark = 0x4C53426F77C41D00ULL;

/// Stands in front of every block. The chain of a parent leads to its children, the chain of a child to the
/// next one.
struct alignas(16) Header {
    std::uint64_t mark;
    std::atomic<Header*> chain;
};

std::atomic<long> g_liveBuffers = 0;  ///< blocks of this module that are not yet freed

Header* HeaderOf(void* buffer) {
    return static_cast<Header*>(buffer) - 1;
}

Header* Allocate(std::size_t bytes, std::uint64_t mark) {
    if (bytes > MAXLONG) {
        return nullptr;
    }
    void* memory = ::operator new(sizeof(Header) + bytes, std::nothrow);
    if (memory == nullptr) {
        return nullptr;
    }
    ++g_liveBuffers;
    return new (memory) Header{mark, nullptr};
}

void Release(Header* block) {
    block->mark = 0;
    ::operator delete(block);
    --g_liveBuffers;
}

}  // namespace

void* NewBuffer(std::size_t bytes) {
    Header* block = Allocate(bytes, kParentMark);
    Require(block != nullptr, MAPI_E_NOT_ENOUGH_MEMORY);
    return block + 1;
}

void* NewBufferUnder(void* parent, std::size_t bytes) {
    Require(parent != nullptr && HeaderOf(parent)->mark == kParentMark, MAPI_E_INVALID_PARAMETER);
    Header* block = Allocate(bytes, kChildMark);
    Require(block != nullptr, MAPI_E_NOT_ENOUGH_MEMORY);
    Header* first = HeaderOf(parent)->chain;
    do {
        block->chain = first;
    } while (!HeaderOf(parent)->chain.compare_exchange_weak(first, block));
    return block + 1;
}

bool FreeBuffer(void* buffer) noexcept {
    if (buffer == nullptr) {
        return true;
    }
    Header* block = HeaderOf(buffer);
    if (block->mark != kParentMark) {
        return false;
    }
    for (Header* child = block->chain; child != nullptr;) {
        Header* next = child->chain;
        Release(child);
        child = next;
    }
    Release(block);
    return true;
}

long LiveBufferCount() noexcept {
    return g_liveBuffers;
}

}  // namespace localstore
