#pragma once

// Reading of little-endian numbers out of bytes that may be short or damaged.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "support/text.h"

/// A place in a blob. A number that does not wholly lie in front of the end is not read: the target keeps its
/// value and the place stays. Places count in 32 bits and wrap there, so that a skip may lead anywhere,
/// backwards too; every read looks at the place first.
class BlobCursor {
  public:
    /// The bytes stay the caller's.
    BlobCursor(const std::uint8_t* bytes, std::uint32_t size) noexcept
        : m_bytes(bytes), m_size(size), m_unitsLeft(size / 2) {}

    /// Reads a number of 16 or 32 bits.
    template<class Number>
    void Read(Number& number) noexcept {
        static_assert(std::is_unsigned_v<Number> && (sizeof(Number) == 2 || sizeof(Number) == 4));
        if (!HasRoom(sizeof(Number))) {
            return;
        }
        std::uint32_t value = 0;
        for (std::uint32_t i = 0; i < sizeof(Number); ++i) {
            value |= std::uint32_t{m_bytes[m_offset + i]} << (8 * i);
        }
        number = static_cast<Number>(value);
        m_offset += static_cast<std::uint32_t>(sizeof(Number));
    }

    /// Reads a number; 0 where there is no room for it.
    template<class Number>
    [[nodiscard]] Number Take() noexcept {
        Number number = 0;
        Read(number);
        return number;
    }

    /// Reads a text of 16-bit units. One that does not wholly lie in front of the end is empty, and the place
    /// stays. A null unit ends the text, and the place moves on behind all units. Texts that lie in each
    /// other could take any amount of memory, so one is empty too that is longer than what the blob has room
    /// for beside the texts before it.
    [[nodiscard]] CString TakeText(std::uint16_t units) {
        CString text;
        if (!HasRoom(std::uint32_t{units} * 2U)) {
            return text;
        }
        const std::uint32_t end = m_offset + std::uint32_t{units} * 2U;
        const bool isKept = units <= m_unitsLeft;
        m_unitsLeft -= isKept ? units : 0;
        if (isKept) {
            text.resize(units);
            for (wide& unit : text) {
                unit = static_cast<wide>(Take<std::uint16_t>());
            }
            text.erase(std::min(text.find(WIDE('\0')), text.size()));
        }
        m_offset = end;
        return text;
    }

    /// Moves on without a look at the end.
    void Skip(std::uint32_t bytes) noexcept { m_offset += bytes; }

    /// Skips a block that begins with its size.
    void SkipSizedBlock() noexcept { Skip(Take<std::uint32_t>()); }

    /// The bytes between here and the end; 0 behind it.
    [[nodiscard]] std::uint32_t Remaining() const noexcept {
        return m_offset <= m_size ? m_size - m_offset : 0;
    }

    /// The bytes from the beginning to here, modulo 2^32.
    [[nodiscard]] std::uint32_t Offset() const noexcept { return m_offset; }

  private:
    [[nodiscard]] bool HasRoom(std::uint32_t bytes) const noexcept {
        return m_offset <= m_size && bytes <= m_size - m_offset;
    }

    const std::uint8_t* m_bytes;
    std::uint32_t m_size;
    std::uint32_t m_unitsLeft;  ///< of all texts
    std::uint32_t m_offset = 0;
};
