#include "localstore/message_store.h"

#include <mapitags.h>

#include <cstring>

#include "localstore/buffers.h"
#include "localstore/open_entry.h"

namespace localstore {

namespace {

constexpr LONG kSupportMask = STORE_ENTRYID_UNIQUE | STORE_MODIFY_OK | STORE_CREATE_OK | STORE_ATTACH_OK |
                              STORE_MV_PROPS_OK | 0x00040000;

constexpr PropertyId Id(ULONG tag) {
    return static_cast<PropertyId>(tag >> 16U);
}

std::optional<EntryId> Decoded(ULONG size, const ENTRYID* id) {
    std::optional<EntryId> decoded = EntryId::Decode(reinterpret_cast<const std::uint8_t*>(id), size);
    if (decoded) {
        decoded->isLongTerm = false;
    }
    return decoded;
}

}  // namespace

bool SameEntry(ULONG size1, const ENTRYID* id1, ULONG size2, const ENTRYID* id2) {
    const std::optional<EntryId> first = Decoded(size1, id1);
    const std::optional<EntryId> second = Decoded(size2, id2);
    Require(first && second, MAPI_E_INVALID_ENTRYID);
    return *first == *second;
}

std::optional<Property> StoreSource::Find(PropertyId id) const {
    const StoreTree& tree = *m_info.tree;
    switch (id) {
        case Id(PR_DEFAULT_STORE):
            return BooleanProperty(PR_DEFAULT_STORE, m_info.isDefault);
        case Id(PR_ENTRYID):
            return IdProperty(PR_ENTRYID, tree.StoreId());
        case Id(PR_STORE_ENTRYID):
            return IdProperty(PR_STORE_ENTRYID, tree.StoreId());
        case Id(PR_RECORD_KEY):
            return IdProperty(PR_RECORD_KEY, tree.StoreId());
        case Id(PR_STORE_RECORD_KEY):
            return IdProperty(PR_STORE_RECORD_KEY, tree.StoreId());
        case Id(PR_INSTANCE_KEY):
            return IdProperty(PR_INSTANCE_KEY, tree.StoreId());
        case Id(PR_MAPPING_SIGNATURE):
            return IdProperty(PR_MAPPING_SIGNATURE, tree.StoreId());
        case Id(PR_DISPLAY_NAME):
            return Property::OfText(PR_DISPLAY_NAME_W, tree.DisplayName());
        case Id(PR_PROVIDER_DISPLAY):
            return Property::OfText(PR_PROVIDER_DISPLAY_W, L"Local store");
        case Id(PR_OBJECT_TYPE):
            return LongProperty(PR_OBJECT_TYPE, MAPI_STORE);
        case Id(PR_RESOURCE_TYPE):
            return LongProperty(PR_RESOURCE_TYPE, MAPI_STORE_PROVIDER);
        case Id(PR_STORE_SUPPORT_MASK):
            return LongProperty(PR_STORE_SUPPORT_MASK, kSupportMask);
        case Id(PR_VALID_FOLDER_MASK):
            return LongProperty(PR_VALID_FOLDER_MASK, FOLDER_IPM_SUBTREE_VALID);
        case Id(PR_IPM_SUBTREE_ENTRYID):
            return IdProperty(PR_IPM_SUBTREE_ENTRYID, tree.FolderId({}));
        default:
            return std::nullopt;
    }
}

std::vector<PropertyTag> StoreSource::Tags() const {
    return {PR_DEFAULT_STORE,     PR_ENTRYID,
            PR_STORE_ENTRYID,     PR_RECORD_KEY,
            PR_INSTANCE_KEY,      PR_STORE_RECORD_KEY,
            PR_MAPPING_SIGNATURE, PR_DISPLAY_NAME_W,
            PR_OBJECT_TYPE,       PR_PROVIDER_DISPLAY_W,
            PR_RESOURCE_TYPE,     PR_STORE_SUPPORT_MASK,
            PR_VALID_FOLDER_MASK, PR_IPM_SUBTREE_ENTRYID};
}

bool MessageStore::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPIProp) ||
           IsEqualGUID(iid, IID_IMsgStore);
}

CallSubject MessageStore::Subject() const {
    return {"IMsgStore", m_source.Tree()->Name(), &Names()};
}

STDMETHODIMP MessageStore::CompareEntryIDs(ULONG size1, LPENTRYID id1, ULONG size2, LPENTRYID id2,
                                           ULONG flags, ULONG* result) {
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

STDMETHODIMP MessageStore::OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                                     LPUNKNOWN* object) {
    const auto describe = [&](CallText& text) {
        text.Identifier("id", reinterpret_cast<const BYTE*>(id), size).Interface(iid).Flags("flags", flags);
    };
    return Call("OpenEntry", describe,
                [&] { return OpenStoreEntry(m_source.Tree(), size, id, iid, flags, type, object); });
}

STDMETHODIMP MessageStore::GetReceiveFolder(LPTSTR messageClass, ULONG flags, ULONG* size, LPENTRYID* id,
                                            LPTSTR* explicitClass) {
    const bool unicode = (flags & MAPI_UNICODE) != 0;
    const auto describe = [&](CallText& text) {
        if (unicode) {
            text.String("class", messageClass);
        }
        text.Flags("flags", flags);
    };
    return Call("GetReceiveFolder", describe, [&] {
        Require(size != nullptr && id != nullptr, MAPI_E_INVALID_PARAMETER);
        *size = 0;
        *id = nullptr;
        Require((flags & ~static_cast<ULONG>(MAPI_UNICODE)) == 0, MAPI_E_UNKNOWN_FLAGS);
        const std::optional<Text> inbox = m_source.Tree()->ReceiveFolder();
        Require(inbox.has_value(), MAPI_E_NOT_FOUND);
        const Bytes bytes = m_source.Tree()->FolderId(*inbox).Encode();
        Buffer<ENTRYID> copy(bytes.size());
        std::memcpy(copy.Get(), bytes.data(), bytes.size());
        if (explicitClass != nullptr) {
            // The one folder takes every class, which the empty class stands for.
            Buffer<wchar_t> empty(sizeof(wchar_t));
            *empty.Get() = L'\0';
            *explicitClass = empty.Detach();
        }
        *size = static_cast<ULONG>(bytes.size());
        *id = copy.Detach();
        return S_OK;
    });
}

STDMETHODIMP MessageStore::StoreLogoff(ULONG* flags) {
    return Call(
        "StoreLogoff", [](CallText&) {},
        [&] {
            Require(flags != nullptr, MAPI_E_INVALID_PARAMETER);
            *flags = LOGOFF_COMPLETE;
            return S_OK;
        });
}

}  // namespace localstore
