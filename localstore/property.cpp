#include "localstore/property.h"

#include <algorithm>

namespace localstore {

namespace {

bool IdBefore(const Property& property, PropertyId id) {
    return property.Id() < id;
}

bool SameBytes(const SharedBytes& left, const SharedBytes& right) {
    static const Bytes none;
    return (left ? *left : none) == (right ? *right : none);
}

}  // namespace

std::size_t FixedSizeOf(PropertyType type) {
    switch (type & ~kMultipleFlag) {
        case kTypeInteger16:
        case kTypeBoolean:
            return 2;
        case kTypeInteger32:
        case kTypeFloating32:
        case kTypeErrorCode:
            return 4;
        case kTypeFloating64:
        case kTypeCurrency:
        case kTypeFloatingTime:
        case kTypeInteger64:
        case kTypeTime:
            return 8;
        case kTypeGuid:
            return (type & kMultipleFlag) != 0 ? 16 : 0;
        default:
            return 0;
    }
}

ValueShape ShapeOf(PropertyType type) {
    const bool multiple = (type & kMultipleFlag) != 0;
    if (FixedSizeOf(type) != 0) {
        return multiple ? ValueShape::MultipleFixed : ValueShape::Fixed;
    }
    switch (type & ~kMultipleFlag) {
        case kTypeString8:
        case kTypeUnicode:
        case kTypeBinary:
            return multiple ? ValueShape::MultipleVariable : ValueShape::Variable;
        case kTypeGuid:
            return ValueShape::Variable;
        default:
            // An object's entry is kept whole; its content is a storage of its own.
            return ValueShape::Unknown;
    }
}

const Bytes& Property::Data() const {
    static const Bytes none;
    return data ? *data : none;
}

std::size_t Property::Count() const {
    const std::size_t size = FixedSizeOf(Type());
    return ShapeOf(Type()) == ValueShape::MultipleFixed ? Data().size() / size : items.size();
}

Property Property::OfFixed(PropertyTag tag, std::uint64_t value) {
    Property property;
    property.tag = tag;
    property.fixed = value;
    return property;
}

Property Property::OfBytes(PropertyTag tag, Bytes bytes) {
    Property property;
    property.tag = tag;
    property.data = std::make_shared<const Bytes>(std::move(bytes));
    return property;
}

Property Property::OfText(PropertyTag tag, std::basic_string_view<wide> text) {
    return OfBytes(MakeTag(IdOf(tag), kTypeUnicode), BytesOfText(text));
}

bool Property::SameValue(const Property& other) const {
    return tag == other.tag && fixed == other.fixed && SameBytes(data, other.data) &&
           std::equal(items.begin(), items.end(), other.items.begin(), other.items.end(), SameBytes);
}

Bytes BytesOfText(std::basic_string_view<wide> text) {
    Bytes bytes;
    bytes.reserve(text.size() * 2);
    for (const wide unit : text) {
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(unit) & 0xFFU));
        bytes.push_back(static_cast<std::uint8_t>(static_cast<std::uint16_t>(unit) >> 8U));
    }
    return bytes;
}

Text TextOfBytes(const Bytes& bytes) {
    Text text;
    text.reserve(bytes.size() / 2);
    for (std::size_t i = 0; i + 1 < bytes.size(); i += 2) {
        text.push_back(static_cast<wide>(bytes[i] | bytes[i + 1] << 8U));
    }
    return text;
}

const Property* PropertyBag::Find(PropertyId id) const {
    const auto place = std::lower_bound(m_properties.begin(), m_properties.end(), id, IdBefore);
    return place != m_properties.end() && place->Id() == id ? &*place : nullptr;
}

void PropertyBag::Set(Property property) {
    Remove(property.Id());
    const auto place = std::lower_bound(m_properties.begin(), m_properties.end(), property.Id(), IdBefore);
    m_properties.insert(place, std::move(property));
}

void PropertyBag::MakeRoom(std::size_t count) {
    if (m_properties.capacity() - m_properties.size() < count) {
        m_properties.reserve(std::max(m_properties.size() + count, 2 * m_properties.size()));
    }
}

bool PropertyBag::Remove(PropertyId id) {
    const auto first = std::lower_bound(m_properties.begin(), m_properties.end(), id, IdBefore);
    auto last = first;
    while (last != m_properties.end() && last->Id() == id) {
        ++last;
    }
    const bool found = first != last;
    m_properties.erase(first, last);
    return found;
}

void PropertyBag::Load(std::vector<Property> properties) {
    const auto before = [](const Property& left, const Property& right) { return left.tag < right.tag; };
    const auto same = [](const Property& left, const Property& right) { return left.tag == right.tag; };
    std::stable_sort(properties.begin(), properties.end(), before);
    properties.erase(std::unique(properties.begin(), properties.end(), same), properties.end());
    m_properties = std::move(properties);
}

}  // namespace localstore
