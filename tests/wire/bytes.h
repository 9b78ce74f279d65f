#pragma once

// Bytes as they stand on the wire: little-endian, put together and taken apart one value at a time.

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

using Bytes = std::vector<std::uint8_t>;

/// Bytes written as pairs of hexadecimal digits; blanks are for the reader.
[[nodiscard]] Bytes Hex(const std::string& digits);

/// The way back, for messages of failed checks: pairs of digits with a blank between.
[[nodiscard]] std::string ToHex(const Bytes& bytes);

/// Puts values behind each other.
class ByteWriter {
  public:
    ByteWriter& U8(std::uint8_t value);
    ByteWriter& U16(std::uint16_t value);
    ByteWriter& U32(std::uint32_t value);
    ByteWriter& Raw(const Bytes& bytes);
    /// Zeros up to a multiple of `boundary` from the start of these bytes.
    ByteWriter& Align(std::size_t boundary);
    /// A conformant varying string: the array's size, offset 0, the number of units that follow, the units.
    /// The text brings its terminator if it is to have one.
    ByteWriter& String(const std::u16string& units, std::uint32_t maximum);
    /// The same as a client's stub writes it: a terminator behind the text, and no room to spare.
    ByteWriter& String(const std::u16string& text);

    [[nodiscard]] const Bytes& Written() const { return m_bytes; }

  private:
    Bytes m_bytes;
};

/// Takes values off in order. Whatever is not there throws std::out_of_range.
class ByteReader {
  public:
    explicit ByteReader(const Bytes& bytes) : m_bytes(bytes) {}

    std::uint8_t U8();
    std::uint16_t U16();
    std::uint32_t U32();
    Bytes Raw(std::size_t count);
    Bytes Rest() { return Raw(m_bytes.size() - m_position); }
    void Align(std::size_t boundary);
    [[nodiscard]] bool AtEnd() const { return m_position == m_bytes.size(); }

  private:
    const Bytes& m_bytes;
    std::size_t m_position = 0;
};

/// A conformant varying string with everything that precedes its units.
struct WireString {
    std::uint32_t maximum = 0;
    std::uint32_t offset = 0;
    /// As many as the actual count tells, the terminator among them.
    std::u16string units;
};
[[nodiscard]] WireString ReadString(ByteReader& reader);
