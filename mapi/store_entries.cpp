#include "mapi/store_entries.h"

#include <mapitags.h>

#include "mapi/folder_types.h"
#include "mapi/hex_text.h"

namespace {

constexpr ULONG kModifyAccess = MAPI_BEST_ACCESS | MAPI_MODIFY;

/// Takes an object over as the interface that it was opened for: without an interface asked for, MAPI hands
/// out the object's own one.
template<class Interface>
ComPtr<Interface> As(ComPtr<IUnknown> object) {
    return Adopt(static_cast<Interface*>(object.Detach()));
}

template<class Container>
ComPtr<IUnknown> OpenEntry(Container* container, ULONG cb, const ENTRYID* entryId, ULONG flags) {
    ULONG type = 0;
    ComPtr<IUnknown> object;
    const HRESULT result = container->OpenEntry(cb, const_cast<LPENTRYID>(entryId), nullptr, flags, &type,
                                                object.GetAddressOf());
    if (result != S_OK) {
        object.Reset();
    }
    return object;
}

ComPtr<IMAPIFolder> OpenInbox(IMsgStore* store) {
    wchar_t messageClass[] = L"IPM.Note";
    ULONG cb = 0;
    MapiBuffer<ENTRYID> entryId;
    const HRESULT result = store->GetReceiveFolder(reinterpret_cast<LPTSTR>(messageClass), MAPI_UNICODE, &cb,
                                                   entryId.Put(), nullptr);
    if (result != S_OK || !entryId) {
        return nullptr;
    }
    return As<IMAPIFolder>(OpenEntry(store, cb, entryId.Get(), MAPI_BEST_ACCESS));
}

ComPtr<IMAPIFolder> OpenRoot(IMsgStore* store) {
    return As<IMAPIFolder>(OpenEntry(store, 0, nullptr, MAPI_BEST_ACCESS));
}

/// One property of a folder; empty without a folder or a value.
MapiBuffer<SPropValue> GetOneProp(IMAPIFolder* folder, ULONG tag) {
    MapiBuffer<SPropValue> value;
    if (folder != nullptr && pfnHrGetOneProp(folder, tag, value.Put()) != S_OK) {
        value.Reset();
    }
    return value;
}

bool IsBinaryWithBytes(const MapiBuffer<SPropValue>& value) {
    return value && PROP_TYPE(value->ulPropTag) == PT_BINARY && value->Value.bin.cb != 0;
}

}  // namespace

ComPtr<IUnknown> OpenStoreEntry(IMsgStore* store, ULONG cb, const ENTRYID* entryId) {
    return store == nullptr ? nullptr : OpenEntry(store, cb, entryId, MAPI_BEST_ACCESS);
}

ComPtr<IMAPIFolder> OpenStoreFolder(IMsgStore* store, ULONG cb, const ENTRYID* entryId) {
    return As<IMAPIFolder>(OpenStoreEntry(store, cb, entryId));
}

ComPtr<IMAPIFolder> GetDefaultFolder(IMsgStore* store, ULONG tag) {
    if (store == nullptr) {
        return nullptr;
    }
    MapiBuffer<SPropValue> value = GetOneProp(OpenInbox(store).Get(), tag);
    if (!value) {
        value = GetOneProp(OpenRoot(store).Get(), tag);
    }
    if (!IsBinaryWithBytes(value)) {
        return nullptr;
    }
    const SBinary& id = value->Value.bin;
    return OpenStoreFolder(store, id.cb, reinterpret_cast<const ENTRYID*>(id.lpb));
}

void LoadDefaultFolderIds(IMsgStore* store, CArray<CString>& ids) {
    const ComPtr<IMAPIFolder> inbox = OpenInbox(store);
    const ComPtr<IMAPIFolder> root = OpenRoot(store);
    for (std::size_t type = 0; type < kFolderTypes.size(); ++type) {
        MapiBuffer<SPropValue> value = GetOneProp(inbox.Get(), kFolderTypes[type].defaultFolderTag);
        if (!value) {
            value = GetOneProp(root.Get(), kFolderTypes[type].defaultFolderTag);
        }
        if (IsBinaryWithBytes(value)) {
            ids[type] = BinaryToHexString(value->Value.bin.lpb, value->Value.bin.cb);
        }
    }
}

ComPtr<IUnknown> OpenFolderEntry(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId, ULONG flags) {
    return OpenEntry(folder, cb, entryId, flags);
}

ComPtr<IMessage> OpenMessageByHexId(IMAPIFolder* folder, const CString& hexId) {
    if (folder == nullptr || hexId.empty()) {
        return nullptr;
    }
    const auto id = HexStringToBinary(hexId);
    return As<IMessage>(OpenFolderEntry(folder, static_cast<ULONG>(id.size()),
                                        reinterpret_cast<const ENTRYID*>(id.empty() ? nullptr : id.data()),
                                        kModifyAccess));
}

ComPtr<IMAPIFolder> OpenParentFolderByEntryId(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId) {
    if (folder == nullptr || entryId == nullptr) {
        return nullptr;
    }
    const ComPtr<IMessage> message = As<IMessage>(OpenFolderEntry(folder, cb, entryId, kModifyAccess));
    if (!message) {
        return nullptr;
    }
    SizedSPropTagArray(1, tags) = {1, {PR_PARENT_ENTRYID}};
    ULONG count = 0;
    MapiBuffer<SPropValue> parent;
    message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, parent.Put());
    if (count == 0 || !parent || PROP_TYPE(parent->ulPropTag) == PT_ERROR) {
        return nullptr;
    }
    const SBinary& id = parent->Value.bin;
    return As<IMAPIFolder>(
        OpenFolderEntry(folder, id.cb, reinterpret_cast<const ENTRYID*>(id.lpb), MAPI_BEST_ACCESS));
}

ComPtr<IMAPIFolder> OpenParentFolderByHexId(IMAPIFolder* folder, const CString& hexId) {
    if (folder == nullptr || hexId.empty()) {
        return nullptr;
    }
    const auto id = HexStringToBinary(hexId);
    return OpenParentFolderByEntryId(folder, static_cast<ULONG>(id.size()),
                                     reinterpret_cast<const ENTRYID*>(id.empty() ? nullptr : id.data()));
}
