#pragma once

#include <cstddef>

namespace localstore_test {

/// As long as it lives, the n-th allocation of this program (1 is the next one) fails, and with `forever`
/// every one behind it. It covers all that goes through operator new, which is all that the store allocates
/// itself. Not more than one at a time.
class ScarceMemory {
  public:
    ScarceMemory(std::size_t n, bool forever) noexcept;
    ScarceMemory(const ScarceMemory&) = delete;
    ScarceMemory& operator=(const ScarceMemory&) = delete;
    ~ScarceMemory();

    /// True once an allocation has failed in this object's life.
    [[nodiscard]] bool HasFailed() const noexcept;

  private:
    std::size_t m_failedBefore;
};

/// Allocations of this program through operator new that have not been freed.
std::size_t LiveAllocations() noexcept;

}  // namespace localstore_test
