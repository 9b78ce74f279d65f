#include "localstore/named_properties.h"

#include <cstring>
#include <new>
#include <vector>

#include "localstore/buffers.h"

namespace localstore {

namespace {

constexpr std::size_t kMostNames = 0xFFFE - kFirstNamedId;

GuidBytes BytesOfGuid(const GUID& guid) {
    GuidBytes bytes{};
    std::memcpy(bytes.data(), &guid, sizeof(guid));
    return bytes;
}

bool IsMapiNumber(const PropertyName& name) {
    return name.set == kPropertySetMapi && !name.isText && name.number > 0 && name.number < kFirstNamedId;
}

/// A name as a client reads it, with all its parts under one buffer.
MAPINAMEID* CopyName(const PropertyName& name, void* parent) {
    auto* copy = static_cast<MAPINAMEID*>(NewBufferUnder(parent, sizeof(MAPINAMEID)));
    *copy = {};
    copy->lpguid = static_cast<LPGUID>(NewBufferUnder(parent, sizeof(GUID)));
    std::memcpy(copy->lpguid, name.set.data(), sizeof(GUID));
    copy->ulKind = name.isText ? MNID_STRING : MNID_ID;
    if (name.isText) {
        const std::size_t bytes = (name.text.size() + 1) * sizeof(wchar_t);
        copy->Kind.lpwstrName = static_cast<LPWSTR>(NewBufferUnder(parent, bytes));
        std::memcpy(copy->Kind.lpwstrName, name.text.c_str(), bytes);
    } else {
        copy->Kind.lID = static_cast<LONG>(name.number);
    }
    return copy;
}

bool IsWanted(const PropertyName& name, const GUID* set, ULONG flags) {
    if ((flags & MAPI_NO_STRINGS) != 0 && name.isText) {
        return false;
    }
    if ((flags & MAPI_NO_IDS) != 0 && !name.isText) {
        return false;
    }
    return set == nullptr || name.set == BytesOfGuid(*set);
}

}  // namespace

std::optional<PropertyId> NamedProperties::IdOf(const PropertyName& name, bool create) {
    if (IsMapiNumber(name)) {
        return static_cast<PropertyId>(name.number);
    }
    const auto found = m_ids.find(name);
    if (found != m_ids.end()) {
        return found->second;
    }
    if (!create || m_names.size() >= kMostNames) {
        return std::nullopt;
    }
    const auto id = static_cast<PropertyId>(kFirstNamedId + m_names.size());
    m_names.push_back(name);
    try {
        m_ids.emplace(name, id);
    } catch (const std::bad_alloc&) {
        // With one half only, the next look-up would give the name a second identifier.
        m_names.pop_back();
        throw;
    }
    return id;
}

const PropertyName* NamedProperties::NameOf(PropertyId id) const {
    const std::size_t index = static_cast<std::size_t>(id) - kFirstNamedId;
    return id >= kFirstNamedId && index < m_names.size() ? &m_names[index] : nullptr;
}

std::optional<PropertyName> NameOfClient(const MAPINAMEID* name) {
    if (name == nullptr || name->lpguid == nullptr) {
        return std::nullopt;
    }
    PropertyName result;
    result.set = BytesOfGuid(*name->lpguid);
    if (name->ulKind == MNID_ID) {
        result.number = static_cast<std::uint32_t>(name->Kind.lID);
        return result;
    }
    if (name->ulKind != MNID_STRING || name->Kind.lpwstrName == nullptr) {
        return std::nullopt;
    }
    result.isText = true;
    result.text = name->Kind.lpwstrName;
    return result;
}

HRESULT GetIDsFromNames(NamedProperties& names, ULONG count, LPMAPINAMEID* list, ULONG flags,
                        LPSPropTagArray* tags) {
    Require(tags != nullptr, MAPI_E_INVALID_PARAMETER);
    *tags = nullptr;
    Require((flags & ~static_cast<ULONG>(MAPI_CREATE)) == 0, MAPI_E_UNKNOWN_FLAGS);
    // Without a list, all identifiers are asked for. Nobody does, and the answer would not be of use.
    Require(count != 0 && list != nullptr, MAPI_E_TOO_BIG);
    Require(count <= kMostNames, MAPI_E_TOO_BIG);
    Buffer<SPropTagArray> result(CbNewSPropTagArray(count));
    result->cValues = count;
    bool complete = true;
    for (ULONG i = 0; i < count; ++i) {
        const std::optional<PropertyName> name = NameOfClient(list[i]);
        Require(name.has_value(), MAPI_E_INVALID_PARAMETER);
        const std::optional<PropertyId> id = names.IdOf(*name, (flags & MAPI_CREATE) != 0);
        complete = complete && id.has_value();
        result->aulPropTag[i] = id ? MakeTag(*id, PT_UNSPECIFIED) : static_cast<ULONG>(PT_ERROR);
    }
    *tags = result.Detach();
    return complete ? S_OK : MAPI_W_ERRORS_RETURNED;
}

HRESULT GetNamesFromIDs(NamedProperties& names, LPSPropTagArray* tags, const GUID* set, ULONG flags,
                        ULONG* count, LPMAPINAMEID** list) {
    Require(tags != nullptr && count != nullptr && list != nullptr, MAPI_E_INVALID_PARAMETER);
    std::vector<PropertyId> ids;
    if (*tags != nullptr) {
        for (ULONG i = 0; i < (*tags)->cValues; ++i) {
            ids.push_back(IdOf((*tags)->aulPropTag[i]));
        }
    } else {
        for (std::uint32_t id = kFirstNamedId; names.NameOf(static_cast<PropertyId>(id)) != nullptr; ++id) {
            if (IsWanted(*names.NameOf(static_cast<PropertyId>(id)), set, flags)) {
                ids.push_back(static_cast<PropertyId>(id));
            }
        }
    }
    Buffer<LPMAPINAMEID> result((ids.size() + 1) * sizeof(LPMAPINAMEID));
    bool complete = true;
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const PropertyName* name = names.NameOf(ids[i]);
        const bool wanted = name != nullptr && IsWanted(*name, set, flags);
        result.Get()[i] = wanted ? CopyName(*name, result.Get()) : nullptr;
        complete = complete && wanted;
    }
    if (*tags == nullptr) {
        const auto size = static_cast<ULONG>(ids.size());
        Buffer<SPropTagArray> listed(CbNewSPropTagArray(size + 1));
        listed->cValues = size;
        for (std::size_t i = 0; i < ids.size(); ++i) {
            listed->aulPropTag[i] = MakeTag(ids[i], PT_UNSPECIFIED);
        }
        *tags = listed.Detach();
    }
    *count = static_cast<ULONG>(ids.size());
    *list = result.Detach();
    return complete ? S_OK : MAPI_W_ERRORS_RETURNED;
}

}  // namespace localstore
