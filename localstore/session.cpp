#include "localstore/session.h"

#include <mapitags.h>

#include "localstore/message_store.h"
#include "localstore/open_entry.h"
#include "localstore/table.h"

namespace localstore {

namespace {

HRESULT NoLastError(LPMAPIERROR* error) {
    Require(error != nullptr, MAPI_E_INVALID_PARAMETER);
    *error = nullptr;
    return S_OK;
}

/// The store of this profile that an identifier of it, or of something in it, stands for.
std::optional<StoreInfo> FindStore(const Text& profile, ULONG size, const ENTRYID* bytes, EntryId& id) {
    const std::optional<EntryId> decoded =
        EntryId::Decode(reinterpret_cast<const std::uint8_t*>(bytes), size);
    Require(decoded.has_value(), MAPI_E_INVALID_ENTRYID);
    id = *decoded;
    for (StoreInfo& store : ListStores(profile)) {
        if (store.tree->Digest() == id.store) {
            return std::move(store);
        }
    }
    return std::nullopt;
}

TableRow ProfileRow(const ProfileInfo& profile) {
    PropertyBag row;
    row.Set(Property::OfText(PR_DISPLAY_NAME_W, profile.name));
    row.Set(BooleanProperty(PR_DEFAULT_PROFILE, profile.isDefault));
    return std::make_shared<FixedSource>(std::move(row));
}

}  // namespace

bool Session::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPISession);
}

CallSubject Session::Subject() const {
    return {"IMAPISession", m_profile, nullptr};
}

void Session::RequireOpen() const {
    Require(!m_loggedOff, MAPI_E_END_OF_SESSION);
}

STDMETHODIMP Session::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
    const auto describe = [&](CallText& text) {
        text.Flags("result", static_cast<ULONG>(result)).Flags("flags", flags);
    };
    return Call("GetLastError", describe, [&] { return NoLastError(error); });
}

STDMETHODIMP Session::GetMsgStoresTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetMsgStoresTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        RequireOpen();
        Require((flags & ~static_cast<ULONG>(MAPI_UNICODE)) == 0, MAPI_E_UNKNOWN_FLAGS);
        std::vector<TableRow> rows;
        for (StoreInfo& store : ListStores(m_profile)) {
            rows.push_back(std::make_shared<StoreSource>(std::move(store)));
        }
        *table = NewTable({"IMAPITable", m_profile + L" stores", nullptr}, std::move(rows),
                          {PR_ENTRYID, PR_DISPLAY_NAME_W, PR_DEFAULT_STORE, PR_RECORD_KEY, PR_RESOURCE_TYPE},
                          (flags & MAPI_UNICODE) != 0);
        return S_OK;
    });
}

STDMETHODIMP Session::OpenMsgStore(ULONG_PTR, ULONG size, LPENTRYID id, LPCIID iid, ULONG flags,
                                   LPMDB* store) {
    const auto describe = [&](CallText& text) {
        text.Identifier("id", reinterpret_cast<const BYTE*>(id), size).Interface(iid).Flags("flags", flags);
    };
    return Call("OpenMsgStore", describe, [&] {
        Require(store != nullptr && id != nullptr, MAPI_E_INVALID_PARAMETER);
        *store = nullptr;
        RequireOpen();
        EntryId decoded;
        std::optional<StoreInfo> found = FindStore(m_profile, size, id, decoded);
        Require(decoded.kind == EntryKind::Store, MAPI_E_INVALID_ENTRYID);
        Require(found.has_value(), MAPI_E_NOT_FOUND);
        Require(!found->refuses, MAPI_E_FAILONEPROVIDER);
        auto opened = MakeObject<MessageStore>(std::move(*found));
        RequireInterface(*opened.Get(), iid);
        *store = opened.Detach();
        return S_OK;
    });
}

STDMETHODIMP Session::OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                                LPUNKNOWN* object) {
    const auto describe = [&](CallText& text) {
        text.Identifier("id", reinterpret_cast<const BYTE*>(id), size).Interface(iid).Flags("flags", flags);
    };
    return Call("OpenEntry", describe, [&] {
        Require(object != nullptr && id != nullptr, MAPI_E_INVALID_PARAMETER);
        *object = nullptr;
        RequireOpen();
        EntryId decoded;
        const std::optional<StoreInfo> found = FindStore(m_profile, size, id, decoded);
        Require(found.has_value(), MAPI_E_UNKNOWN_ENTRYID);
        Require(!found->refuses, MAPI_E_FAILONEPROVIDER);
        return OpenStoreEntry(found->tree, size, id, iid, flags, type, object);
    });
}

STDMETHODIMP Session::CompareEntryIDs(ULONG size1, LPENTRYID id1, ULONG size2, LPENTRYID id2, ULONG flags,
                                      ULONG* result) {
    const auto describe = [&](CallText& text) {
        text.Identifier("id1", reinterpret_cast<const BYTE*>(id1), size1)
            .Identifier("id2", reinterpret_cast<const BYTE*>(id2), size2)
            .Flags("flags", flags);
    };
    return Call("CompareEntryIDs", describe, [&] {
        Require(result != nullptr, MAPI_E_INVALID_PARAMETER);
        *result = SameEntry(size1, id1, size2, id2) ? TRUE : FALSE;
        return S_OK;
    });
}

STDMETHODIMP Session::Logoff(ULONG_PTR, ULONG flags, ULONG) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("Logoff", describe, [&] {
        RequireOpen();
        m_loggedOff = true;
        return S_OK;
    });
}

bool ProfileAdmin::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IProfAdmin);
}

CallSubject ProfileAdmin::Subject() const {
    return {"IProfAdmin", {}, nullptr};
}

STDMETHODIMP ProfileAdmin::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) {
    const auto describe = [&](CallText& text) {
        text.Flags("result", static_cast<ULONG>(result)).Flags("flags", flags);
    };
    return Call("GetLastError", describe, [&] { return NoLastError(error); });
}

STDMETHODIMP ProfileAdmin::GetProfileTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetProfileTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        Require((flags & ~static_cast<ULONG>(MAPI_UNICODE)) == 0, MAPI_E_UNKNOWN_FLAGS);
        std::vector<TableRow> rows;
        for (const ProfileInfo& profile : ListProfiles()) {
            rows.push_back(ProfileRow(profile));
        }
        *table = NewTable({"IMAPITable", L"profiles", nullptr}, std::move(rows),
                          {PR_DISPLAY_NAME_W, PR_DEFAULT_PROFILE}, (flags & MAPI_UNICODE) != 0);
        return S_OK;
    });
}

ComPtr<Session> LogOn(const Text& name, bool useDefault) {
    for (const ProfileInfo& profile : ListProfiles()) {
        if (name.empty() ? useDefault && profile.isDefault : SameName(name, profile.name)) {
            return MakeObject<Session>(profile.directory);
        }
    }
    throw StoreError(MAPI_E_LOGON_FAILED);
}

}  // namespace localstore
