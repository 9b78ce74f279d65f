#include "localstore/values.h"

#include <cstring>

#include "localstore/buffers.h"
#include "localstore/failure.h"
#include "localstore/text_convert.h"

namespace localstore {

namespace {

constexpr PropertyType BaseType(PropertyType type) {
    return static_cast<PropertyType>(type & ~kMultipleFlag);
}

bool PutError(PropertyTag tag, SCODE code, SPropValue& value) {
    value.ulPropTag = CHANGE_PROP_TYPE(tag, PT_ERROR);
    value.Value.err = code;
    return false;
}

/// Whether a long value comes through a stream only: binaries and the body. Any other string comes whole, for
/// a client that reads a row would take a missing name for a contact without one.
bool IsStreamed(const Property& property) {
    constexpr PropertyId body = PROP_ID(PR_BODY);
    return !IsString(BaseType(property.Type())) || property.Id() == body;
}

void* Copy(const void* bytes, std::size_t size, void* parent) {
    void* copy = NewBufferUnder(parent, size);
    if (size != 0) {
        std::memcpy(copy, bytes, size);
    }
    return copy;
}

/// Copies a string of either type, with a terminator that does for both.
void* CopyString(const void* string, std::size_t size, void* parent) {
    constexpr std::size_t terminator = 2;
    auto* copy = static_cast<BYTE*>(NewBufferUnder(parent, size + terminator));
    if (size != 0) {
        std::memcpy(copy, string, size);
    }
    std::memset(copy + size, 0, terminator);
    return copy;
}

/// A string in the type that a client asked for.
void* StringOf(const Bytes& stored, PropertyType storedType, PropertyType askedType, UINT codePage,
               void* parent) {
    if (storedType == kTypeUnicode && askedType == kTypeUnicode) {
        return CopyString(stored.data(), stored.size() / 2 * 2, parent);
    }
    if (askedType == kTypeUnicode) {
        const Text text = DecodeText(stored, codePage);
        return CopyString(text.data(), text.size() * sizeof(wchar_t), parent);
    }
    if (storedType == kTypeUnicode) {
        const Bytes bytes = EncodeText(TextOfBytes(stored), CP_ACP);
        return CopyString(bytes.data(), bytes.size(), parent);
    }
    if (UsableCodePage(codePage) != CP_ACP && codePage != GetACP()) {
        const Bytes bytes = EncodeText(DecodeText(stored, codePage), CP_ACP);
        return CopyString(bytes.data(), bytes.size(), parent);
    }
    return CopyString(stored.data(), stored.size(), parent);
}

void PutVariable(const SharedBytes& data, PropertyType stored, const ValueRequest& request, void* parent,
                 SPropValue& value) {
    static const Bytes none;
    const Bytes& bytes = data ? *data : none;
    const PropertyType asked = BaseType(TypeOf(value.ulPropTag));
    if (IsString(asked)) {
        value.Value.lpszA =
            static_cast<LPSTR>(StringOf(bytes, BaseType(stored), asked, request.codePage, parent));
    } else if (asked == kTypeGuid) {
        value.Value.lpguid = static_cast<LPGUID>(Copy(bytes.data(), sizeof(GUID), parent));
    } else {
        value.Value.bin.cb = static_cast<ULONG>(bytes.size());
        value.Value.bin.lpb = static_cast<LPBYTE>(Copy(bytes.data(), bytes.size(), parent));
    }
}

void PutMultipleVariable(const Property& property, const ValueRequest& request, void* parent,
                         SPropValue& value) {
    const std::size_t count = property.items.size();
    const bool strings = IsString(BaseType(property.Type()));
    const std::size_t size = strings ? sizeof(LPSTR) : sizeof(SBinary);
    void* array = NewBufferUnder(parent, count * size);
    for (std::size_t i = 0; i < count; ++i) {
        SPropValue one{};
        one.ulPropTag = CHANGE_PROP_TYPE(value.ulPropTag, BaseType(TypeOf(value.ulPropTag)));
        PutVariable(property.items[i], BaseType(property.Type()), request, parent, one);
        if (strings) {
            static_cast<LPSTR*>(array)[i] = one.Value.lpszA;
        } else {
            static_cast<SBinary*>(array)[i] = one.Value.bin;
        }
    }
    value.Value.MVszA.cValues = static_cast<ULONG>(count);
    value.Value.MVszA.lppszA = static_cast<LPSTR*>(array);
}

std::size_t SizeOf(const Property& property) {
    std::size_t size = property.Data().size();
    for (const SharedBytes& item : property.items) {
        size += item->size();
    }
    return size;
}

/// True if a property of one type can be handed out as another: strings convert, nothing else does.
bool IsCompatible(PropertyType stored, PropertyType asked) {
    return stored == asked || ((stored & kMultipleFlag) == (asked & kMultipleFlag) &&
                               IsString(BaseType(stored)) && IsString(BaseType(asked)));
}

/// A client's string as the bytes of a Unicode text. Nothing for a null pointer.
std::optional<Bytes> BytesOfClientText(PropertyType type, const void* text) {
    if (text == nullptr) {
        return std::nullopt;
    }
    if (type == kTypeUnicode) {
        return BytesOfText(static_cast<const wchar_t*>(text));
    }
    const auto* narrow = static_cast<const std::uint8_t*>(text);
    const std::size_t length = std::strlen(static_cast<const char*>(text));
    return BytesOfText(DecodeText(Bytes(narrow, narrow + length), CP_ACP));
}

std::optional<Bytes> BytesOfClientBinary(const void* bytes, std::size_t size) {
    if (bytes == nullptr && size != 0) {
        return std::nullopt;
    }
    const auto* first = static_cast<const std::uint8_t*>(bytes);
    return size == 0 ? Bytes() : Bytes(first, first + size);
}

std::optional<Bytes> BytesOfClientVariable(PropertyType type, const SPropValue& value) {
    if (IsString(type)) {
        return BytesOfClientText(type, value.Value.lpszA);
    }
    if (type == kTypeGuid) {
        return BytesOfClientBinary(value.Value.lpguid, value.Value.lpguid == nullptr ? 1 : sizeof(GUID));
    }
    return BytesOfClientBinary(value.Value.bin.lpb, value.Value.bin.cb);
}

std::optional<std::vector<SharedBytes>> ItemsOfClient(PropertyType type, const SPropValue& value) {
    std::vector<SharedBytes> items;
    const ULONG count = value.Value.MVbin.cValues;
    if (count != 0 && value.Value.MVbin.lpbin == nullptr) {
        return std::nullopt;
    }
    for (ULONG i = 0; i < count; ++i) {
        const SBinary* binary = value.Value.MVbin.lpbin;
        std::optional<Bytes> bytes = IsString(type) ? BytesOfClientText(type, value.Value.MVszA.lppszA[i])
                                                    : BytesOfClientBinary(binary[i].lpb, binary[i].cb);
        if (!bytes) {
            return std::nullopt;
        }
        items.push_back(std::make_shared<const Bytes>(std::move(*bytes)));
    }
    return items;
}

bool FillValue(const SPropValue& value, Property& property) {
    const PropertyType type = TypeOf(value.ulPropTag);
    const PropertyType base = BaseType(type);
    switch (ShapeOf(type)) {
        case ValueShape::Fixed:
            std::memcpy(&property.fixed, &value.Value, FixedSizeOf(type));
            return true;
        case ValueShape::Variable: {
            std::optional<Bytes> bytes = BytesOfClientVariable(base, value);
            property.data = bytes ? std::make_shared<const Bytes>(std::move(*bytes)) : nullptr;
            return property.data != nullptr;
        }
        case ValueShape::MultipleFixed: {
            std::optional<Bytes> bytes =
                BytesOfClientBinary(value.Value.MVl.lpl, value.Value.MVl.cValues * FixedSizeOf(type));
            property.data = bytes ? std::make_shared<const Bytes>(std::move(*bytes)) : nullptr;
            return property.data != nullptr;
        }
        case ValueShape::MultipleVariable: {
            std::optional<std::vector<SharedBytes>> items = ItemsOfClient(base, value);
            property.items = items ? std::move(*items) : std::vector<SharedBytes>();
            return items.has_value();
        }
        case ValueShape::Unknown:
            break;
    }
    return false;
}

}  // namespace

PropertyType ClientType(PropertyType type, bool unicode) {
    if (!IsString(BaseType(type))) {
        return type;
    }
    return static_cast<PropertyType>((type & kMultipleFlag) | (unicode ? kTypeUnicode : kTypeString8));
}

bool PutValue(const Property* property, const ValueRequest& request, void* parent, SPropValue& value) {
    value = {};
    if (property == nullptr) {
        return PutError(request.tag, MAPI_E_NOT_FOUND, value);
    }
    const PropertyType stored = property->Type();
    const PropertyType asked =
        TypeOf(request.tag) == PT_UNSPECIFIED ? ClientType(stored, request.unicode) : TypeOf(request.tag);
    if (stored == PT_ERROR) {
        return PutError(request.tag, static_cast<SCODE>(property->fixed), value);
    }
    if (!IsCompatible(stored, asked)) {
        return PutError(request.tag, MAPI_E_NOT_FOUND, value);
    }
    const ValueShape shape = ShapeOf(stored);
    if (IsStreamed(*property) && SizeOf(*property) > request.longest) {
        return PutError(request.tag, MAPI_E_NOT_ENOUGH_MEMORY, value);
    }
    value.ulPropTag = CHANGE_PROP_TYPE(request.tag, asked);
    switch (shape) {
        case ValueShape::Fixed:
            std::memcpy(&value.Value, &property->fixed, FixedSizeOf(stored));
            break;
        case ValueShape::Variable:
            PutVariable(property->data, stored, request, parent, value);
            break;
        case ValueShape::MultipleFixed:
            value.Value.MVl.cValues = static_cast<ULONG>(property->Count());
            value.Value.MVl.lpl =
                static_cast<LONG*>(Copy(property->Data().data(), property->Data().size(), parent));
            break;
        case ValueShape::MultipleVariable:
            PutMultipleVariable(*property, request, parent, value);
            break;
        case ValueShape::Unknown:
            // An object is opened and has no value of its own.
            return stored == PT_OBJECT ? true : PutError(request.tag, MAPI_E_INVALID_TYPE, value);
    }
    return true;
}

std::optional<Property> PropertyOfValue(const SPropValue& value, HRESULT& problem) {
    const PropertyType type = TypeOf(value.ulPropTag);
    if (ShapeOf(type) == ValueShape::Unknown || type == PT_ERROR) {
        problem = MAPI_E_INVALID_TYPE;
        return std::nullopt;
    }
    Property property;
    property.tag = MakeTag(IdOf(value.ulPropTag), ClientType(type, true));
    if (!FillValue(value, property)) {
        problem = MAPI_E_INVALID_PARAMETER;
        return std::nullopt;
    }
    return property;
}

}  // namespace localstore
