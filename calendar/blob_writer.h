#pragma once

// Writing of little-endian numbers into the bytes of a binary property.

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

/// A place in some room. A number for which there is no room behind the place is left out, and the place
/// stays.
class BlobWriter {
  public:
    /// The room stays the caller's.
    explicit BlobWriter(std::span<std::uint8_t> room) noexcept : m_room(room) {}

    /// Writes a number of 16 or 32 bits.
    template<class Number>
    void Write(Number number) noexcept {
        static_assert(std::is_unsigned_v<Number> && (sizeof(Number) == 2 || sizeof(Number) == 4));
        if (sizeof(Number) > m_room.size() - m_size) {
            return;
        }
        for (std::size_t i = 0; i < sizeof(Number); ++i) {
            m_room[m_size + i] = static_cast<std::uint8_t>(std::uint32_t{number} >> (8 * i) & 0xFFU);
        }
        m_size += sizeof(Number);
    }

    /// The bytes written so far.
    [[nodiscard]] std::uint32_t Size() const noexcept { return static_cast<std::uint32_t>(m_size); }

  private:
    std::span<std::uint8_t> m_room;
    std::size_t m_size = 0;
};
