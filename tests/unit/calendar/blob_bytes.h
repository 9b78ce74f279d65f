#pragma once

// Bytes of a binary property, put together field by field.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "calendar/recurrence_blob.h"
#include "calendar/recurrence_pattern.h"

/// Little-endian numbers and texts, one behind the other.
class BlobBytes {
  public:
    BlobBytes& U16(std::uint16_t number) { return Number(number, 2); }
    BlobBytes& U32(std::uint32_t number) { return Number(number, 4); }
    BlobBytes& Narrow(std::string_view text) {
        m_bytes.insert(m_bytes.end(), text.begin(), text.end());
        return *this;
    }
    BlobBytes& Wide(WideView text) {
        for (const wide unit : text) {
            U16(static_cast<std::uint16_t>(unit));
        }
        return *this;
    }
    BlobBytes& Fill(std::size_t count, std::uint8_t filling) {
        m_bytes.insert(m_bytes.end(), count, filling);
        return *this;
    }
    BlobBytes& Add(const BlobBytes& other) {
        m_bytes.insert(m_bytes.end(), other.m_bytes.begin(), other.m_bytes.end());
        return *this;
    }
    [[nodiscard]] const std::vector<std::uint8_t>& Bytes() const { return m_bytes; }
    [[nodiscard]] std::uint32_t Size() const { return static_cast<std::uint32_t>(m_bytes.size()); }

  private:
    // Inlined, it makes GCC 12 warn of a write behind the vector that cannot happen.
    [[gnu::noinline]] BlobBytes& Number(std::uint32_t number, int bytes) {
        for (int i = 0; i < bytes; ++i) {
            m_bytes.push_back(static_cast<std::uint8_t>(number >> 8 * i & 0xFFU));
        }
        return *this;
    }

    std::vector<std::uint8_t> m_bytes;
};

/// What the reader made of a blob.
struct ReadRecurrence {
    std::uint32_t result = 0;
    NAMESPACE_MAPI::tagRecurrencePattern pattern;
};

/// Reads a blob that lies in memory of exactly its size, so that a sanitizer sees each byte too far.
inline ReadRecurrence ReadExactly(const std::uint8_t* bytes, std::size_t size) {
    const auto copy = std::make_unique<std::uint8_t[]>(size);
    std::copy_n(bytes, size, copy.get());
    ReadRecurrence read;
    read.result = ParseRecurrenceBlob(copy.get(), static_cast<std::uint32_t>(size), read.pattern);
    return read;
}

inline ReadRecurrence ReadExactly(const std::vector<std::uint8_t>& bytes) {
    return ReadExactly(bytes.data(), bytes.size());
}

inline ReadRecurrence ReadExactly(const BlobBytes& blob) {
    return ReadExactly(blob.Bytes());
}
