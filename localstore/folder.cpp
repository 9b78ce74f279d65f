#include "localstore/folder.h"

#include <mapitags.h>

#include <new>

#include "localstore/diagnostics.h"
#include "localstore/message.h"
#include "localstore/open_entry.h"
#include "localstore/table.h"

namespace localstore {

namespace {

constexpr ULONG kTableFlags = MAPI_UNICODE | MAPI_DEFERRED_ERRORS;

const std::vector<PropertyTag> kContentsColumns = {
    PR_ENTRYID,       PR_INSTANCE_KEY,  PR_RECORD_KEY,   PR_MESSAGE_CLASS_W,
    PR_SUBJECT_W,     PR_MESSAGE_FLAGS, PR_MESSAGE_SIZE, PR_LAST_MODIFICATION_TIME,
    PR_CREATION_TIME, PR_HASATTACH};

const std::vector<PropertyTag> kHierarchyColumns = {PR_ENTRYID,           PR_INSTANCE_KEY, PR_RECORD_KEY,
                                                    PR_DISPLAY_NAME_W,    PR_SUBFOLDERS,   PR_CONTENT_COUNT,
                                                    PR_CONTAINER_CLASS_W, PR_DEPTH,        PR_OBJECT_TYPE};

void AddFolderRows(const FolderSource& parent, LONG depth, bool deep, std::vector<TableRow>& rows) {
    for (FolderInfo& folder : parent.SubFolders()) {
        const auto row = std::make_shared<const FolderSource>(parent.Tree(), std::move(folder), depth);
        rows.push_back(row);
        if (deep) {
            AddFolderRows(*row, depth + 1, deep, rows);
        }
    }
}

CallSubject TableSubject(const FolderSource& source, const wchar_t* kind) {
    return {"IMAPITable", source.Label() + kind, &source.Tree()->Names()};
}

/// Deletes one message of a folder. Ends the operation if the identifier is not of a message in it.
void DeleteOne(StoreTree& tree, const Text& folder, const SBinary& entry) {
    const std::optional<EntryId> id = EntryId::Decode(entry.lpb, entry.cb);
    Require(id && id->kind == EntryKind::Message && id->store == tree.Digest(), MAPI_E_INVALID_ENTRYID);
    Require(id->folder == DigestOf(folder), MAPI_E_NOT_FOUND);
    const std::optional<Text> name = tree.FindMessage(folder, id->message);
    Require(name.has_value(), MAPI_E_NOT_FOUND);
    const Text path = tree.FullPath(JoinPath(folder, *name));
    RemoveFile(path);
    MessageCache::Instance().Forget(path);
}

/// Calls `visit` with each message among some files of a folder, and with the digest of its file.
template<class Visit>
void VisitMessages(const Text& directory, std::vector<MessageFile> files, const Visit& visit) {
    Text path;
    for (MessageFile& one : files) {
        path.assign(directory).append(1, L'\\').append(one.file.name);
        try {
            visit(MessageCache::Instance().Load(path, std::move(one.file)), one.digest);
        } catch (const StoreError& error) {
            // A damaged file is no reason to hide the others, and one that vanished is none any more. One
            // that is there and cannot be read now must not be left out in silence: who compares the table
            // with an earlier one would take the message for deleted.
            if (error.Code() != MAPI_E_NOT_FOUND && error.Code() != MAPI_E_CORRUPT_DATA) {
                ReportSkipped(path, "it cannot be read now");
                throw;
            }
        }
    }
}

}  // namespace

std::vector<TableRow> MessageRows(const std::shared_ptr<StoreTree>& tree, const Text& folder,
                                  MessageSource::Role role) {
    std::vector<MessageFile> files = tree->MessageFiles(folder);
    const auto shared = std::make_shared<const MessageFolder>(MessageFolder{folder, DigestOf(folder)});
    std::vector<TableRow> rows;
    rows.reserve(files.size());
    VisitMessages(
        tree->FullPath(folder), std::move(files), [&](LoadedMessage message, const NameDigest& digest) {
            rows.push_back(std::make_shared<MessageSource>(tree, shared, std::move(message), role, digest));
        });
    return rows;
}

LONG CountMessages(StoreTree& tree, const Text& folder) {
    LONG count = 0;
    VisitMessages(tree.FullPath(folder), tree.MessageFiles(folder),
                  [&](const LoadedMessage& /*message*/, const NameDigest& /*digest*/) { ++count; });
    return count;
}

Folder::Folder(std::unique_ptr<const FolderSource> source) : m_source(std::move(source)) {}

bool Folder::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPIProp) ||
           IsEqualGUID(iid, IID_IMAPIContainer) || IsEqualGUID(iid, IID_IMAPIFolder);
}

CallSubject Folder::Subject() const {
    return {"IMAPIFolder", m_source->Label(), &Names()};
}

STDMETHODIMP Folder::GetContentsTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetContentsTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        Require((flags & ~(kTableFlags | MAPI_ASSOCIATED)) == 0, MAPI_E_UNKNOWN_FLAGS);
        std::vector<TableRow> rows;
        if (!m_source->IsRoot() && (flags & MAPI_ASSOCIATED) == 0) {
            using Role = MessageSource::Role;
            const Role role = m_source->Tree()->HasLongTermIds() ? Role::RowWithLongTermId : Role::Row;
            rows = MessageRows(m_source->Tree(), m_source->Path(), role);
        }
        *table = NewTable(TableSubject(*m_source, L" contents"), std::move(rows), kContentsColumns,
                          (flags & MAPI_UNICODE) != 0);
        return S_OK;
    });
}

STDMETHODIMP Folder::GetHierarchyTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetHierarchyTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        Require((flags & ~(kTableFlags | CONVENIENT_DEPTH)) == 0, MAPI_E_UNKNOWN_FLAGS);
        std::vector<TableRow> rows;
        AddFolderRows(*m_source, 1, (flags & CONVENIENT_DEPTH) != 0, rows);
        *table = NewTable(TableSubject(*m_source, L" hierarchy"), std::move(rows), kHierarchyColumns,
                          (flags & MAPI_UNICODE) != 0);
        return S_OK;
    });
}

STDMETHODIMP Folder::OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                               LPUNKNOWN* object) {
    const auto describe = [&](CallText& text) {
        text.Identifier("id", reinterpret_cast<const BYTE*>(id), size).Interface(iid).Flags("flags", flags);
    };
    return Call("OpenEntry", describe,
                [&] { return OpenStoreEntry(m_source->Tree(), size, id, iid, flags, type, object); });
}

STDMETHODIMP Folder::CreateMessage(LPCIID iid, ULONG flags, LPMESSAGE* message) {
    const auto describe = [&](CallText& text) { text.Interface(iid).Flags("flags", flags); };
    return Call("CreateMessage", describe, [&] {
        Require(message != nullptr, MAPI_E_INVALID_PARAMETER);
        *message = nullptr;
        Require((flags & ~static_cast<ULONG>(MAPI_DEFERRED_ERRORS)) == 0, MAPI_E_NO_SUPPORT);
        Require(!m_source->IsRoot(), MAPI_E_NO_ACCESS);
        const LoadedMessage empty{std::make_shared<const MessageContent>(), {}};
        const Text& path = m_source->Path();
        auto created = MakeObject<Message>(m_source->Tree(), MessageFolder{path, DigestOf(path)}, empty,
                                           Message::Mode::New);
        RequireInterface(*created.Get(), iid);
        *message = created.Detach();
        return S_OK;
    });
}

STDMETHODIMP Folder::DeleteMessages(LPENTRYLIST list, ULONG, LPMAPIPROGRESS, ULONG flags) {
    const auto describe = [&](CallText& text) {
        for (ULONG i = 0; list != nullptr && list->lpbin != nullptr && i < list->cValues; ++i) {
            text.Identifier("id", list->lpbin[i].lpb, list->lpbin[i].cb);
        }
        text.Flags("flags", flags);
    };
    return Call("DeleteMessages", describe, [&] {
        Require(list != nullptr && (list->cValues == 0 || list->lpbin != nullptr), MAPI_E_INVALID_PARAMETER);
        HRESULT problem = S_OK;
        ULONG deleted = 0;
        for (ULONG i = 0; i < list->cValues; ++i) {
            try {
                DeleteOne(*m_source->Tree(), m_source->Path(), list->lpbin[i]);
                ++deleted;
            } catch (const StoreError& error) {
                problem = error.Code();
            } catch (const std::bad_alloc&) {
                // The others that are gone already must not be reported as still there.
                problem = MAPI_E_NOT_ENOUGH_MEMORY;
            }
        }
        return problem == S_OK || deleted == 0 ? problem : MAPI_W_PARTIAL_COMPLETION;
    });
}

}  // namespace localstore
