#include "mapi/store_entries.h"

#include <mapitags.h>

#include "mapi/folder_types.h"
#include "mapi/hex_text.h"

namespace {

constexpr ULONG kModifyAccess = MAPI_BEST_ACCESS | MAPI_MODIFY;

template<class Container>
OpenedEntry OpenEntry(Container* container, ULONG cb, const ENTRYID* entryId, ULONG flags) {
    OpenedEntry entry;
    const HRESULT result = container->OpenEntry(cb, const_cast<LPENTRYID>(entryId), nullptr, flags,
                                                &entry.type, entry.object.GetAddressOf());
    if (result != S_OK) {
        entry.object.Reset();
    }
    return entry;
}

/// An entry as the interface that it was opened for. Without an interface asked for, MAPI hands out the
/// object's own one, so an entry of another type than expected, such as a message for a folder, must not be
/// taken for it.
template<class Interface>
ComPtr<Interface> As(OpenedEntry entry, ULONG type) {
    if (entry.type != type) {
        return nullptr;
    }
    return Adopt(static_cast<Interface*>(entry.object.Detach()));
}

ComPtr<IMAPIFolder> AsFolder(OpenedEntry entry) {
    return As<IMAPIFolder>(std::move(entry), MAPI_FOLDER);
}

ComPtr<IMessage> AsMessage(OpenedEntry entry) {
    return As<IMessage>(std::move(entry), MAPI_MESSAGE);
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
    return AsFolder(OpenEntry(store, cb, entryId.Get(), MAPI_BEST_ACCESS));
}

ComPtr<IMAPIFolder> OpenRoot(IMsgStore* store) {
    return AsFolder(OpenEntry(store, 0, nullptr, MAPI_BEST_ACCESS));
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

OpenedEntry OpenStoreEntry(IMsgStore* store, ULONG cb, const ENTRYID* entryId) {
    return store == nullptr ? OpenedEntry() : OpenEntry(store, cb, entryId, MAPI_BEST_ACCESS);
}

ComPtr<IMAPIFolder> OpenStoreFolder(IMsgStore* store, ULONG cb, const ENTRYID* entryId) {
    return AsFolder(OpenStoreEntry(store, cb, entryId));
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

OpenedEntry OpenFolderEntry(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId, ULONG flags) {
    return OpenEntry(folder, cb, entryId, flags);
}

ComPtr<IMessage> OpenMessageByHexId(IMAPIFolder* folder, const CString& hexId) {
    if (folder == nullptr || hexId.empty()) {
        return nullptr;
    }
    const auto id = HexStringToBinary(hexId);
    return AsMessage(OpenFolderEntry(folder, static_cast<ULONG>(id.size()),
                                     reinterpret_cast<const ENTRYID*>(id.empty() ? nullptr : id.data()),
                                     kModifyAccess));
}

ComPtr<IMAPIFolder> OpenParentFolderByEntryId(IMAPIFolder* folder, ULONG cb, const ENTRYID* entryId) {
    if (folder == nullptr || entryId == nullptr) {
        return nullptr;
    }
    const ComPtr<IMessage> message = AsMessage(OpenFolderEntry(folder, cb, entryId, kModifyAccess));
    if (!message) {
        return nullptr;
    }
    SizedSPropTagArray(1, tags) = {1, {PR_PARENT_ENTRYID}};
    ULONG count = 0;
    MapiBuffer<SPropValue> parent;
    message->GetProps(reinterpret_cast<LPSPropTagArray>(&tags), MAPI_UNICODE, &count, parent.Put());
    if (count == 0 || !parent || PROP_TYPE(parent->ulPropTag) != PT_BINARY) {
        return nullptr;
    }
    const SBinary& id = parent->Value.bin;
    return AsFolder(
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
