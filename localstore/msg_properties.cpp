#include "localstore/msg_properties.h"

#include <algorithm>

#include "localstore/little_endian.h"

namespace localstore {

namespace {

constexpr std::size_t kEntrySize = 16;
constexpr std::size_t kGuidSize = 16;

Text ItemStreamName(PropertyTag tag, std::size_t index) {
    return ValueStreamName(tag) + WIDE("-") + HexDigits(static_cast<std::uint32_t>(index));
}

/// The bytes of a string's terminator, and 0 for other types.
std::size_t TerminatorSize(PropertyType type) {
    switch (type & ~kMultipleFlag) {
        case kTypeString8:
            return 1;
        case kTypeUnicode:
            return 2;
        default:
            return 0;
    }
}

/// The same bytes without one terminator at the end. Writers differ in whether the stream holds it.
SharedBytes WithoutTerminator(SharedBytes bytes, PropertyType type) {
    const std::size_t size = TerminatorSize(type);
    if (size == 0 || bytes->size() < size ||
        !std::all_of(bytes->end() - static_cast<std::ptrdiff_t>(size), bytes->end(),
                     [](std::uint8_t byte) { return byte == 0; }) ||
        (size == 2 && bytes->size() % 2 != 0)) {
        return bytes;
    }
    return std::make_shared<const Bytes>(bytes->begin(), bytes->end() - static_cast<std::ptrdiff_t>(size));
}

bool TakeVariable(StorageTree& storage, Property& property, std::uint32_t claimedSize) {
    std::optional<SharedBytes> stream = storage.TakeStream(ValueStreamName(property.tag));
    if (!stream) {
        property.data = std::make_shared<const Bytes>();
        return property.Type() != kTypeGuid && claimedSize <= TerminatorSize(property.Type());
    }
    if (property.Type() == kTypeGuid && (*stream)->size() != kGuidSize) {
        return false;
    }
    const std::size_t whole = (*stream)->size();
    property.data = WithoutTerminator(std::move(*stream), property.Type());
    property.hasTerminator = property.data->size() != whole;
    return true;
}

bool TakeMultipleVariable(StorageTree& storage, Property& property) {
    const std::optional<SharedBytes> lengths = storage.TakeStream(ValueStreamName(property.tag));
    if (!lengths) {
        return false;
    }
    const bool binary = (property.Type() & ~kMultipleFlag) == kTypeBinary;
    const std::size_t count = (*lengths)->size() / (binary ? 8 : 4);
    if (count > kMostEntries) {
        return false;
    }
    for (std::size_t i = 0; i < count; ++i) {
        std::optional<SharedBytes> item = storage.TakeStream(ItemStreamName(property.tag, i));
        property.items.push_back(item ? WithoutTerminator(std::move(*item), property.Type())
                                      : std::make_shared<const Bytes>());
    }
    return true;
}

/// Reads the value of one entry. False leaves the property out.
bool TakeValue(StorageTree& storage, Property& property) {
    switch (ShapeOf(property.Type())) {
        case ValueShape::Variable: {
            const auto claimed = static_cast<std::uint32_t>(property.fixed & 0xFFFFFFFFU);
            property.fixed = 0;
            return TakeVariable(storage, property, claimed);
        }
        case ValueShape::MultipleFixed: {
            property.fixed = 0;
            std::optional<SharedBytes> stream = storage.TakeStream(ValueStreamName(property.tag));
            property.data = stream ? std::move(*stream) : nullptr;
            return property.data != nullptr && property.Count() <= kMostEntries;
        }
        case ValueShape::MultipleVariable:
            property.fixed = 0;
            return TakeMultipleVariable(storage, property);
        case ValueShape::Fixed: {
            const std::size_t bits = FixedSizeOf(property.Type()) * 8;
            property.fixed = bits == 64 ? property.fixed : property.fixed & ((1ULL << bits) - 1);
            return true;
        }
        case ValueShape::Unknown:
            break;
    }
    return true;
}

/// Adds the streams of a value and returns what the entry's size field says.
std::uint64_t AddValue(StorageTree& storage, const Property& property) {
    const std::size_t terminator = TerminatorSize(property.Type());
    switch (ShapeOf(property.Type())) {
        case ValueShape::Variable: {
            Bytes value = property.Data();
            value.resize(value.size() + (property.hasTerminator ? terminator : 0));
            const std::size_t size = value.size() + terminator;
            storage.AddStream(ValueStreamName(property.tag), std::move(value));
            return size;
        }
        case ValueShape::MultipleFixed:
            storage.AddStream(ValueStreamName(property.tag), property.Data());
            return property.Data().size();
        case ValueShape::MultipleVariable: {
            // In a multiple string, unlike in a single one, streams and lengths hold the terminators.
            Bytes lengths;
            for (std::size_t i = 0; i < property.items.size(); ++i) {
                Bytes item = *property.items[i];
                // Half a unit at the end of a damaged text would keep the reader from seeing a terminator.
                item.resize(item.size() + (terminator == 2 && item.size() % 2 != 0 ? 0 : terminator));
                AppendNumber(lengths, item.size(), terminator == 0 ? 8 : 4);
                storage.AddStream(ItemStreamName(property.tag, i), std::move(item));
            }
            const std::size_t size = lengths.size();
            storage.AddStream(ValueStreamName(property.tag), std::move(lengths));
            return size;
        }
        case ValueShape::Fixed:
        case ValueShape::Unknown:
            break;
    }
    return property.fixed;
}

}  // namespace

Text HexDigits(std::uint32_t number) {
    constexpr wide digits[] = WIDE("0123456789ABCDEF");
    Text text;
    for (int shift = 28; shift >= 0; shift -= 4) {
        text.push_back(digits[number >> static_cast<unsigned>(shift) & 0xFU]);
    }
    return text;
}

Text ValueStreamName(PropertyTag tag) {
    return WIDE("__substg1.0_") + HexDigits(tag);
}

std::optional<ObjectProperties> TakePropertyStream(StorageTree& storage, std::size_t headerSize) {
    const auto found = storage.streams.find(kPropertyStreamName);
    if (found == storage.streams.end() || found->second->size() < headerSize) {
        return std::nullopt;
    }
    const SharedBytes stream = found->second;
    const std::size_t count = (stream->size() - headerSize) / kEntrySize;
    if (count > kMostEntries) {
        return std::nullopt;
    }
    storage.streams.erase(found);

    ObjectProperties result;
    result.header.assign(stream->begin(), stream->begin() + static_cast<std::ptrdiff_t>(headerSize));
    std::vector<Property> properties;
    properties.reserve(count);
    for (std::size_t i = 0; i < count; ++i) {
        const std::size_t offset = headerSize + i * kEntrySize;
        Property property;
        property.tag = ReadU32(*stream, offset);
        property.flags = ReadU32(*stream, offset + 4);
        property.fixed = ReadNumber(*stream, offset + 8, 8);
        if (TakeValue(storage, property)) {
            properties.push_back(std::move(property));
        }
    }
    result.properties.Load(std::move(properties));
    return result;
}

void AddPropertyStream(StorageTree& storage, const Bytes& header, const PropertyBag& properties) {
    Bytes stream = header;
    stream.reserve(header.size() + properties.All().size() * kEntrySize);
    for (const Property& property : properties.All()) {
        AppendU32(stream, property.tag);
        AppendU32(stream, property.flags);
        AppendNumber(stream, AddValue(storage, property), 8);
    }
    storage.AddStream(kPropertyStreamName, std::move(stream));
}

}  // namespace localstore
