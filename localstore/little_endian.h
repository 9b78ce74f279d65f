#pragma once

// Numbers in the byte order of the published formats. Reading past the end is the caller's to exclude: every
// reader here is called behind a check of the length.

#include <cstddef>
#include <cstdint>

#include "localstore/property.h"

namespace localstore {

/// The number in `size` bytes (at most 8) from `offset` on.
inline std::uint64_t ReadNumber(const Bytes& bytes, std::size_t offset, std::size_t size) {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < size; ++i) {
        value |= static_cast<std::uint64_t>(bytes[offset + i]) << (8 * i);
    }
    return value;
}

inline std::uint16_t ReadU16(const Bytes& bytes, std::size_t offset) {
    return static_cast<std::uint16_t>(ReadNumber(bytes, offset, 2));
}

inline std::uint32_t ReadU32(const Bytes& bytes, std::size_t offset) {
    return static_cast<std::uint32_t>(ReadNumber(bytes, offset, 4));
}

inline void AppendNumber(Bytes& bytes, std::uint64_t value, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i) {
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i) & 0xFFU));
    }
}

inline void AppendU16(Bytes& bytes, std::uint16_t value) {
    AppendNumber(bytes, value, 2);
}
inline void AppendU32(Bytes& bytes, std::uint32_t value) {
    AppendNumber(bytes, value, 4);
}

}  // namespace localstore
