#include "localstore/open_entry.h"

#include "localstore/folder.h"
#include "localstore/message.h"

namespace localstore {

namespace {

struct Opened {
    ComPtr<IUnknown> object;
    ULONG type = 0;
};

template<class Object>
Opened Handed(ComPtr<Object> object, ULONG type, LPCIID iid) {
    RequireInterface(*object.Get(), iid);
    Opened opened;
    opened.object = Adopt<IUnknown>(object.Detach());
    opened.type = type;
    return opened;
}

Opened OpenFolder(std::unique_ptr<const FolderSource> source, LPCIID iid) {
    return Handed(MakeObject<Folder>(std::move(source)), MAPI_FOLDER, iid);
}

Opened OpenMessage(const std::shared_ptr<StoreTree>& tree, const EntryId& id, LPCIID iid, ULONG flags) {
    // Whether the folder is still there needs no question of its own: a file that is has one.
    std::optional<Text> folder = tree->LastSeenFolder(id.folder);
    Require(folder.has_value(), MAPI_E_NOT_FOUND);
    const std::optional<Text> name = tree->FindMessage(*folder, id.message);
    Require(name.has_value(), MAPI_E_NOT_FOUND);
    const Text path = tree->FullPath(JoinPath(*folder, *name));
    LoadedMessage message = MessageCache::Instance().Load(path);
    const bool best = (flags & MAPI_BEST_ACCESS) != 0;
    const bool modify = (flags & MAPI_MODIFY) != 0;
    // With the best access that there is, a file that cannot be written shows at SaveChanges.
    Require(!modify || best || !IsReadOnlyFile(path), MAPI_E_NO_ACCESS);
    const Message::Mode mode = modify || best ? Message::Mode::ReadWrite : Message::Mode::ReadOnly;
    auto object = MakeObject<Message>(tree, MessageFolder{std::move(*folder), id.folder}, std::move(message),
                                      mode, id.message);
    return Handed(std::move(object), MAPI_MESSAGE, iid);
}

Opened Open(const std::shared_ptr<StoreTree>& tree, ULONG size, const ENTRYID* bytes, LPCIID iid,
            ULONG flags) {
    if (size == 0 || bytes == nullptr) {
        return OpenFolder(std::make_unique<FolderSource>(tree), iid);
    }
    const std::optional<EntryId> id = EntryId::Decode(reinterpret_cast<const std::uint8_t*>(bytes), size);
    Require(id && id->store == tree->Digest() && id->kind != EntryKind::Store, MAPI_E_INVALID_ENTRYID);
    if (id->kind == EntryKind::Root) {
        return OpenFolder(std::make_unique<FolderSource>(tree), iid);
    }
    if (id->kind == EntryKind::Message) {
        return OpenMessage(tree, *id, iid, flags);
    }
    const std::optional<Text> folder = tree->FindFolder(id->folder);
    Require(folder.has_value(), MAPI_E_NOT_FOUND);
    return OpenFolder(std::make_unique<FolderSource>(tree, *folder), iid);
}

}  // namespace

HRESULT OpenStoreEntry(const std::shared_ptr<StoreTree>& tree, ULONG size, const ENTRYID* id, LPCIID iid,
                       ULONG flags, ULONG* type, LPUNKNOWN* object) {
    Require(object != nullptr, MAPI_E_INVALID_PARAMETER);
    *object = nullptr;
    Opened opened = Open(tree, size, id, iid, flags);
    if (type != nullptr) {
        *type = opened.type;
    }
    *object = opened.object.Detach();
    return S_OK;
}

}  // namespace localstore
