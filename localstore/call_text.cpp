#include "localstore/call_text.h"

#include <mapiguid.h>

#include <cstring>

#include "localstore/named_properties.h"
#include "localstore/text_convert.h"
#include "localstore/values.h"

namespace localstore {

namespace {

std::string Hex(std::uint64_t value, int digits) {
    constexpr char all[] = "0123456789ABCDEF";
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) {
        text.push_back(all[value >> static_cast<unsigned>(shift) & 0xFU]);
    }
    return text;
}

std::string HexBytes(const void* bytes, std::size_t size) {
    std::string text;
    const auto* first = static_cast<const BYTE*>(bytes);
    for (std::size_t i = 0; first != nullptr && i < size; ++i) {
        text += Hex(first[i], 2);
    }
    return text;
}

std::string Join(std::initializer_list<std::string_view> parts) {
    std::string text;
    for (const std::string_view part : parts) {
        text += part;
    }
    return text;
}

std::string Quoted(std::wstring_view text) {
    return Join({"\"", Utf8Of(text), "\""});
}

std::string QuotedClientString(PropertyType type, const void* text) {
    if (text == nullptr) {
        return "null";
    }
    if (type == kTypeUnicode) {
        return Quoted(static_cast<const wchar_t*>(text));
    }
    const auto* first = static_cast<const std::uint8_t*>(text);
    return Quoted(DecodeText(Bytes(first, first + std::strlen(static_cast<const char*>(text))), CP_ACP));
}

/// The set of a name: its first 32 bits if it has the usual rest, else all of it.
std::string SetText(const GuidBytes& set) {
    GUID guid{};
    std::memcpy(&guid, set.data(), sizeof(guid));
    GUID usual = PS_MAPI;
    usual.Data1 = guid.Data1;
    if (IsEqualGUID(guid, usual)) {
        return Hex(guid.Data1, 8);
    }
    return Join(
        {Hex(guid.Data1, 8), "-", Hex(guid.Data2, 4), "-", Hex(guid.Data3, 4), "-", HexBytes(guid.Data4, 8)});
}

std::string NameText(const PropertyName& name) {
    return Join({"{", SetText(name.set), "}:", name.isText ? Quoted(name.text) : Hex(name.number, 4)});
}

std::string FixedText(const Property& property) {
    switch (property.Type()) {
        case kTypeBoolean:
            return property.fixed == 0 ? "false" : "true";
        case kTypeInteger16:
            return std::to_string(static_cast<std::int16_t>(property.fixed));
        case kTypeInteger32:
            return std::to_string(static_cast<std::int32_t>(property.fixed));
        case kTypeTime:
            return std::to_string(property.fixed);
        default:
            return Join({"0x", Hex(property.fixed, static_cast<int>(2 * FixedSizeOf(property.Type())))});
    }
}

std::string ItemsText(const Property& property) {
    std::string text = "[";
    for (const SharedBytes& item : property.items) {
        text += text.size() > 1 ? "," : "";
        text += (property.Type() & ~kMultipleFlag) == kTypeBinary ? HexBytes(item->data(), item->size())
                                                                  : Quoted(TextOfBytes(*item));
    }
    return text + "]";
}

const char* RelationText(ULONG relation) {
    constexpr const char* texts[] = {"<", "<=", ">", ">=", "==", "!=", "~"};
    return relation < std::size(texts) ? texts[relation] : "?";
}

}  // namespace

std::string Utf8Of(std::wstring_view text) {
    const Bytes bytes = EncodeText(text, CP_UTF8);
    return {bytes.begin(), bytes.end()};
}

void CallText::Begin() {
    if (!m_text.empty()) {
        m_text += " ";
    }
}

CallText& CallText::Flags(const char* name, ULONG flags) {
    Begin();
    m_text += Join({name, "=0x", Hex(flags, 8)});
    return *this;
}

CallText& CallText::Number(const char* name, long long number) {
    Begin();
    m_text += Join({name, "=", std::to_string(number)});
    return *this;
}

CallText& CallText::String(const char* name, const wchar_t* text) {
    Begin();
    m_text += Join({name, "=", text == nullptr ? "null" : Quoted(text)});
    return *this;
}

CallText& CallText::Identifier(const char* name, const BYTE* bytes, std::size_t size) {
    Begin();
    m_text += Join({name, "=", bytes == nullptr ? "null" : HexBytes(bytes, size)});
    return *this;
}

std::string CallText::TagText(PropertyTag tag) const {
    const PropertyName* name = m_names == nullptr ? nullptr : m_names->NameOf(IdOf(tag));
    return name == nullptr ? Join({"0x", Hex(tag, 8)}) : Join({NameText(*name), "/", Hex(TypeOf(tag), 4)});
}

CallText& CallText::Tag(PropertyTag tag) {
    Begin();
    m_text += TagText(tag);
    return *this;
}

CallText& CallText::Tags(const SPropTagArray* tags) {
    Begin();
    if (tags == nullptr) {
        m_text += "all";
        return *this;
    }
    for (ULONG i = 0; i < tags->cValues; ++i) {
        m_text += Join({i == 0 ? "" : ",", TagText(tags->aulPropTag[i])});
    }
    return *this;
}

std::string CallText::ValueText(const SPropValue* pointer) const {
    if (pointer == nullptr) {
        return "null";
    }
    const SPropValue& value = *pointer;
    const std::string tag = Join({TagText(value.ulPropTag), "="});
    const PropertyType type = TypeOf(value.ulPropTag);
    if (IsString(type)) {
        return tag + QuotedClientString(type, value.Value.lpszA);
    }
    HRESULT problem = S_OK;
    const std::optional<Property> property = PropertyOfValue(value, problem);
    if (!property) {
        return tag + "?";
    }
    switch (ShapeOf(type)) {
        case ValueShape::Fixed:
            return tag + FixedText(*property);
        case ValueShape::MultipleVariable:
            return tag + ItemsText(*property);
        default:
            return tag + HexBytes(property->Data().data(), property->Data().size());
    }
}

CallText& CallText::Values(ULONG count, const SPropValue* values) {
    for (ULONG i = 0; values != nullptr && i < count; ++i) {
        Begin();
        m_text += ValueText(&values[i]);
    }
    return *this;
}

std::string CallText::ConditionText(const SRestriction& restriction) const {
    const auto list = [this](const char* word, ULONG count, const SRestriction* parts) {
        std::string text = Join({word, "("});
        for (ULONG i = 0; parts != nullptr && i < count; ++i) {
            text += Join({i == 0 ? "" : ",", ConditionText(parts[i])});
        }
        return text + ")";
    };
    switch (restriction.rt) {
        case RES_AND:
            return list("and", restriction.res.resAnd.cRes, restriction.res.resAnd.lpRes);
        case RES_OR:
            return list("or", restriction.res.resOr.cRes, restriction.res.resOr.lpRes);
        case RES_NOT:
            return list("not", 1, restriction.res.resNot.lpRes);
        case RES_EXIST:
            return Join({"exist(", TagText(restriction.res.resExist.ulPropTag), ")"});
        case RES_PROPERTY: {
            const SPropertyRestriction& one = restriction.res.resProperty;
            return Join(
                {"property(", TagText(one.ulPropTag), RelationText(one.relop), ValueText(one.lpProp), ")"});
        }
        case RES_CONTENT: {
            const SContentRestriction& one = restriction.res.resContent;
            return Join({"content(", TagText(one.ulPropTag), "~", Hex(one.ulFuzzyLevel, 8), ",",
                         ValueText(one.lpProp), ")"});
        }
        default:
            return Join({"restriction(", std::to_string(restriction.rt), ")"});
    }
}

CallText& CallText::Condition(const SRestriction* restriction) {
    Begin();
    m_text += restriction == nullptr ? "unrestricted" : ConditionText(*restriction);
    return *this;
}

CallText& CallText::Sort(const SSortOrderSet* order) {
    Begin();
    if (order == nullptr) {
        m_text += "unsorted";
        return *this;
    }
    m_text += "sort";
    for (ULONG i = 0; i < order->cSorts; ++i) {
        m_text += Join({i == 0 ? ":" : ",", TagText(order->aSort[i].ulPropTag),
                        order->aSort[i].ulOrder == TABLE_SORT_DESCEND ? "-" : "+"});
    }
    return *this;
}

CallText& CallText::PropertyNames(ULONG count, const MAPINAMEID* const* names) {
    Begin();
    for (ULONG i = 0; names != nullptr && i < count; ++i) {
        const std::optional<PropertyName> name = NameOfClient(names[i]);
        m_text += Join({i == 0 ? "" : ",", name ? NameText(*name) : "null"});
    }
    return *this;
}

CallText& CallText::Interface(const IID* iid) {
    // Most callers name none, and the object's own is meant.
    if (iid != nullptr) {
        Begin();
        m_text += Join({"iid={", Hex(iid->Data1, 8), "}"});
    }
    return *this;
}

}  // namespace localstore
