#pragma once

// The buffers of MAPIAllocateBuffer and MAPIAllocateMore, from the side of the store that fills them.

#include <windows.h>

#include <mapix.h>

#include <utility>

#include "localstore/failure.h"

namespace localstore {

/// Memory for a client to free. Ends the operation with MAPI_E_NOT_ENOUGH_MEMORY when there is none.
void* NewBuffer(std::size_t bytes);
/// Memory that is freed together with a buffer.
void* NewBufferUnder(void* parent, std::size_t bytes);
/// Frees a buffer with everything under it; null is permitted. False if the pointer is not one of a live
/// buffer.
bool FreeBuffer(void* buffer) noexcept;

/// Blocks that were allocated and not yet freed, the ones under others counted too.
long LiveBufferCount() noexcept;

/// Owns a buffer until it is handed to the client.
template<class T>
class Buffer {
  public:
    explicit Buffer(std::size_t bytes = sizeof(T)) : m_buffer(static_cast<T*>(NewBuffer(bytes))) {}
    Buffer(Buffer&& other) noexcept : m_buffer(std::exchange(other.m_buffer, nullptr)) {}
    Buffer& operator=(Buffer&&) = delete;
    Buffer(const Buffer&) = delete;
    Buffer& operator=(const Buffer&) = delete;
    ~Buffer() { FreeBuffer(m_buffer); }

    [[nodiscard]] T* Get() const noexcept { return m_buffer; }
    [[nodiscard]] T* operator->() const noexcept { return m_buffer; }
    [[nodiscard]] T* Detach() noexcept { return std::exchange(m_buffer, nullptr); }

  private:
    T* m_buffer;
};

}  // namespace localstore
