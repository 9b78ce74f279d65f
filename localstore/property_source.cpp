#include "localstore/property_source.h"

#include "localstore/buffers.h"

namespace localstore {

namespace {

/// More tags or values than this are no request that a client means.
constexpr ULONG kMostTags = 0x10000;

}  // namespace

std::optional<Property> FixedSource::Find(PropertyId id) const {
    const Property* found = m_properties.Find(id);
    return found == nullptr ? std::nullopt : std::optional(*found);
}

std::vector<PropertyTag> FixedSource::Tags() const {
    std::vector<PropertyTag> tags;
    for (const Property& property : m_properties.All()) {
        tags.push_back(property.tag);
    }
    return tags;
}

Property LongProperty(PropertyTag tag, LONG value) {
    return Property::OfFixed(tag, static_cast<std::uint32_t>(value));
}

Property BooleanProperty(PropertyTag tag, bool value) {
    return Property::OfFixed(tag, value ? 1 : 0);
}

Property TimeProperty(PropertyTag tag, std::uint64_t fileTime) {
    return Property::OfFixed(tag, fileTime);
}

Property IdProperty(PropertyTag tag, const EntryId& id) {
    return Property::OfBytes(tag, id.Encode());
}

std::vector<PropertyTag> TagsOfClient(const SPropTagArray* tags) {
    Require(tags != nullptr && tags->cValues <= kMostTags, MAPI_E_INVALID_PARAMETER);
    return {tags->aulPropTag, tags->aulPropTag + tags->cValues};
}

bool FillValues(const PropertySource& source, const std::vector<PropertyTag>& tags, bool unicode,
                std::size_t longest, void* parent, SPropValue* values) {
    bool complete = true;
    ValueRequest request{0, unicode, CP_ACP, longest};
    bool knowsCodePage = false;
    for (std::size_t i = 0; i < tags.size(); ++i) {
        const std::optional<Property> property = source.Find(IdOf(tags[i]));
        if (!knowsCodePage && property && (property->Type() & ~kMultipleFlag) == kTypeString8) {
            // Only 8-bit strings need it, and most messages have none.
            request.codePage = source.CodePage();
            knowsCodePage = true;
        }
        request.tag = tags[i];
        complete = PutValue(property ? &*property : nullptr, request, parent, values[i]) && complete;
    }
    return complete;
}

HRESULT GetPropsOf(const PropertySource& source, const SPropTagArray* tags, ULONG flags, ULONG* count,
                   LPSPropValue* values) {
    Require(count != nullptr && values != nullptr, MAPI_E_INVALID_PARAMETER);
    *count = 0;
    *values = nullptr;
    Require((flags & ~static_cast<ULONG>(MAPI_UNICODE)) == 0, MAPI_E_UNKNOWN_FLAGS);
    const bool unicode = (flags & MAPI_UNICODE) != 0;
    std::vector<PropertyTag> wanted;
    if (tags != nullptr) {
        Require(tags->cValues != 0, MAPI_E_INVALID_PARAMETER);
        wanted = TagsOfClient(tags);
    } else {
        for (const PropertyTag tag : source.Tags()) {
            wanted.push_back(MakeTag(IdOf(tag), ClientType(TypeOf(tag), unicode)));
        }
    }
    Buffer<SPropValue> result((wanted.size() + 1) * sizeof(SPropValue));
    const bool complete = FillValues(source, wanted, unicode, kLongestValue, result.Get(), result.Get());
    *count = static_cast<ULONG>(wanted.size());
    *values = result.Detach();
    return complete ? S_OK : MAPI_W_ERRORS_RETURNED;
}

HRESULT GetPropListOf(const PropertySource& source, ULONG flags, LPSPropTagArray* tags) {
    Require(tags != nullptr, MAPI_E_INVALID_PARAMETER);
    *tags = nullptr;
    Require((flags & ~static_cast<ULONG>(MAPI_UNICODE)) == 0, MAPI_E_UNKNOWN_FLAGS);
    const std::vector<PropertyTag> all = source.Tags();
    const auto count = static_cast<ULONG>(all.size());
    Buffer<SPropTagArray> result(CbNewSPropTagArray(count + 1));
    result->cValues = count;
    for (ULONG i = 0; i < count; ++i) {
        result->aulPropTag[i] =
            MakeTag(IdOf(all[i]), ClientType(TypeOf(all[i]), (flags & MAPI_UNICODE) != 0));
    }
    *tags = result.Detach();
    return S_OK;
}

}  // namespace localstore
