#pragma once

// One property and the bag of properties of an object, as the published .msg format stores them: variable
// values are kept as the bytes of their stream, so what is not understood is written back as it was read.

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "support/wide.h"

namespace localstore {

using Bytes = std::vector<std::uint8_t>;
/// Values are shared between the kept copy of a message, its open objects and table rows, and never changed
/// in place.
using SharedBytes = std::shared_ptr<const Bytes>;
using Text = std::basic_string<wide>;

/// A property tag: the identifier in the upper and the type in the lower 16 bits.
using PropertyTag = std::uint32_t;
using PropertyId = std::uint16_t;
using PropertyType = std::uint16_t;

constexpr PropertyId IdOf(PropertyTag tag) {
    return static_cast<PropertyId>(tag >> 16U);
}
constexpr PropertyType TypeOf(PropertyTag tag) {
    return static_cast<PropertyType>(tag & 0xFFFFU);
}
constexpr PropertyTag MakeTag(PropertyId id, PropertyType type) {
    return static_cast<PropertyTag>(id) << 16U | type;
}

// The property types of MS-OXCDATA, section 2.11.1.
constexpr PropertyType kTypeUnspecified = 0x0000;
constexpr PropertyType kTypeInteger16 = 0x0002;
constexpr PropertyType kTypeInteger32 = 0x0003;
constexpr PropertyType kTypeFloating32 = 0x0004;
constexpr PropertyType kTypeFloating64 = 0x0005;
constexpr PropertyType kTypeCurrency = 0x0006;
constexpr PropertyType kTypeFloatingTime = 0x0007;
constexpr PropertyType kTypeErrorCode = 0x000A;
constexpr PropertyType kTypeBoolean = 0x000B;
constexpr PropertyType kTypeObject = 0x000D;
constexpr PropertyType kTypeInteger64 = 0x0014;
constexpr PropertyType kTypeString8 = 0x001E;
constexpr PropertyType kTypeUnicode = 0x001F;
constexpr PropertyType kTypeTime = 0x0040;
constexpr PropertyType kTypeGuid = 0x0048;
constexpr PropertyType kTypeBinary = 0x0102;
constexpr PropertyType kMultipleFlag = 0x1000;

/// Identifiers from here up stand for a name.
constexpr PropertyId kFirstNamedId = 0x8000;

/// How the value of a type is kept.
enum class ValueShape {
    Unknown,           ///< a type that the published list does not have
    Fixed,             ///< up to 8 bytes in the property's own entry
    Variable,          ///< one stream
    MultipleFixed,     ///< one stream that holds all values
    MultipleVariable,  ///< a stream of lengths and a stream for each value
};

/// The shape of a type.
ValueShape ShapeOf(PropertyType type);

/// Bytes of one value of a fixed type, or of a fixed type behind kMultipleFlag; 0 for all others.
std::size_t FixedSizeOf(PropertyType type);

constexpr bool IsString(PropertyType type) {
    return type == kTypeString8 || type == kTypeUnicode;
}

/// Readable and writable: the flags of a property that a client has set.
constexpr std::uint32_t kPropertyReadableWritable = 0x00000006;

struct Property {
    PropertyTag tag = 0;
    /// The attribute flags of the entry, kept as they were read.
    std::uint32_t flags = kPropertyReadableWritable;
    /// The entry's 8 value bytes of a fixed or unknown type, little-endian.
    std::uint64_t fixed = 0;
    /// A variable value without a terminator, or all values of a multiple fixed type. Null counts as empty.
    SharedBytes data;
    /// The stream of a string had a terminator, as some writers leave it there, and gets it back.
    bool hasTerminator = false;
    /// The values of a multiple variable type, without terminators.
    std::vector<SharedBytes> items;

    [[nodiscard]] PropertyId Id() const { return IdOf(tag); }
    [[nodiscard]] PropertyType Type() const { return TypeOf(tag); }
    /// The bytes of a variable value.
    [[nodiscard]] const Bytes& Data() const;
    /// The number of values of a multiple type.
    [[nodiscard]] std::size_t Count() const;

    static Property OfFixed(PropertyTag tag, std::uint64_t value);
    static Property OfBytes(PropertyTag tag, Bytes bytes);
    /// A Unicode text; the type of the tag becomes kTypeUnicode.
    static Property OfText(PropertyTag tag, std::basic_string_view<wide> text);

    /// Equal tags and values; the flags are left out.
    [[nodiscard]] bool SameValue(const Property& other) const;
};

/// The bytes of a text, little-endian and without a terminator, and the way back. An odd last byte is left
/// out.
Bytes BytesOfText(std::basic_string_view<wide> text);
Text TextOfBytes(const Bytes& bytes);

/// The properties of one object, ordered by tag. An identifier stands for one value, whatever its type.
class PropertyBag {
  public:
    /// The property of an identifier, or null.
    [[nodiscard]] const Property* Find(PropertyId id) const;
    /// Puts a property in the place of what its identifier had.
    void Set(Property property);
    /// Makes room for properties, so that setting so many cannot fail.
    void MakeRoom(std::size_t count);
    /// Removes the property of an identifier. Returns false if there was none.
    bool Remove(PropertyId id);
    /// Takes over what a file holds. A tag that comes twice keeps its first value.
    void Load(std::vector<Property> properties);

    [[nodiscard]] const std::vector<Property>& All() const { return m_properties; }
    [[nodiscard]] bool IsEmpty() const { return m_properties.empty(); }

  private:
    std::vector<Property> m_properties;
};

}  // namespace localstore
