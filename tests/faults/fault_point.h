#pragma once

// The place where a call of one kind is counted and, on request, fails instead of being made.

#include <atomic>
#include <cstddef>
#include <cstdint>

class FaultPoint {
  public:
    /// Fails the n-th call from now on (1 is the next one), and with `forever` every one behind it. `code` is
    /// what the caller is told, in the terms of the kind.
    void Arm(std::size_t n, bool forever, std::uint32_t code) noexcept {
        m_code = code;
        m_forever = forever;
        m_failed = false;
        m_failIn = n;
    }
    /// Lets every call pass again. Returns true if one has failed since Arm.
    bool Disarm() noexcept {
        m_failIn = 0;
        return m_failed;
    }
    /// Counts one call; true if it is to fail.
    bool Fails() noexcept {
        if (m_failIn == 0 || --m_failIn != 0) {
            return false;
        }
        m_failIn = m_forever ? 1 : 0;
        m_failed = true;
        return true;
    }
    [[nodiscard]] std::uint32_t Code() const noexcept { return m_code; }

  private:
    std::atomic<std::size_t> m_failIn = 0;
    std::atomic<std::uint32_t> m_code = 0;
    std::atomic<bool> m_forever = false;
    std::atomic<bool> m_failed = false;
};
