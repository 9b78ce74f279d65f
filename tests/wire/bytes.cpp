#include "tests/wire/bytes.h"

#include <cctype>

Bytes Hex(const std::string& digits) {
    std::string packed;
    for (const char digit : digits) {
        if (digit != ' ') {
            packed += digit;
        }
    }
    if (packed.size() % 2 != 0) {
        throw std::invalid_argument("half a byte in " + digits);
    }
    Bytes bytes;
    for (std::size_t i = 0; i < packed.size(); i += 2) {
        bytes.push_back(static_cast<std::uint8_t>(std::stoul(packed.substr(i, 2), nullptr, 16)));
    }
    return bytes;
}

std::string ToHex(const Bytes& bytes) {
    static constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    for (const std::uint8_t byte : bytes) {
        text += text.empty() ? "" : " ";
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text;
}

ByteWriter& ByteWriter::U8(std::uint8_t value) {
    m_bytes.push_back(value);
    return *this;
}

ByteWriter& ByteWriter::U16(std::uint16_t value) {
    return U8(static_cast<std::uint8_t>(value & 0xFF)).U8(static_cast<std::uint8_t>(value >> 8));
}

ByteWriter& ByteWriter::U32(std::uint32_t value) {
    return U16(static_cast<std::uint16_t>(value & 0xFFFF)).U16(static_cast<std::uint16_t>(value >> 16));
}

ByteWriter& ByteWriter::Raw(const Bytes& bytes) {
    m_bytes.insert(m_bytes.end(), bytes.begin(), bytes.end());
    return *this;
}

ByteWriter& ByteWriter::Align(std::size_t boundary) {
    while (m_bytes.size() % boundary != 0) {
        m_bytes.push_back(0);
    }
    return *this;
}

ByteWriter& ByteWriter::String(const std::u16string& units, std::uint32_t maximum) {
    Align(4).U32(maximum).U32(0).U32(static_cast<std::uint32_t>(units.size()));
    for (const char16_t unit : units) {
        U16(unit);
    }
    return *this;
}

ByteWriter& ByteWriter::String(const std::u16string& text) {
    return String(text + u'\0', static_cast<std::uint32_t>(text.size() + 1));
}

std::uint8_t ByteReader::U8() {
    return m_bytes.at(m_position++);
}

std::uint16_t ByteReader::U16() {
    const std::uint16_t low = U8();
    return static_cast<std::uint16_t>(low | U8() << 8);
}

std::uint32_t ByteReader::U32() {
    const std::uint32_t low = U16();
    return low | static_cast<std::uint32_t>(U16()) << 16;
}

Bytes ByteReader::Raw(std::size_t count) {
    if (count > m_bytes.size() - m_position) {
        throw std::out_of_range("bytes are missing");
    }
    const auto begin = m_bytes.begin() + static_cast<std::ptrdiff_t>(m_position);
    m_position += count;
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

void ByteReader::Align(std::size_t boundary) {
    while (m_position % boundary != 0) {
        U8();
    }
}

WireString ReadString(ByteReader& reader) {
    reader.Align(4);
    WireString string;
    string.maximum = reader.U32();
    string.offset = reader.U32();
    for (std::uint32_t left = reader.U32(); left != 0; --left) {
        string.units += static_cast<char16_t>(reader.U16());
    }
    return string;
}
