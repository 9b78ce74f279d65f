#include "localstore/message.h"

#include <mapitags.h>

#include <algorithm>

#include "localstore/attachment.h"
#include "localstore/file_names.h"
#include "localstore/msg_storage.h"
#include "localstore/table.h"

namespace localstore {

namespace {

constexpr ULONG kSaveFlags = KEEP_OPEN_READONLY | KEEP_OPEN_READWRITE | FORCE_SAVE | MAPI_DEFERRED_ERRORS;

/// Names that are tried with a number behind the title before a random one is taken.
constexpr int kNumberedNames = 20;

std::uint64_t Now() {
    FILETIME now{};
    GetSystemTimeAsFileTime(&now);
    return static_cast<std::uint64_t>(now.dwHighDateTime) << 32U | now.dwLowDateTime;
}

Text RandomDigits() {
    GUID guid{};
    RequireSuccess(CoCreateGuid(&guid));
    return HexDigits(guid.Data1);
}

bool AsksForId(const SPropTagArray* tags) {
    constexpr auto isId = [](ULONG tag) {
        return PROP_ID(tag) == PROP_ID(PR_ENTRYID) || PROP_ID(tag) == PROP_ID(PR_RECORD_KEY);
    };
    return tags == nullptr || std::any_of(tags->aulPropTag, tags->aulPropTag + tags->cValues, isId);
}

std::vector<PropertyTag> PartColumns(PartSource::Kind kind) {
    if (kind == PartSource::Kind::Attachment) {
        return {PR_ATTACH_NUM, PR_ATTACH_SIZE, PR_ATTACH_METHOD, PR_ATTACH_FILENAME_W, PR_RENDERING_POSITION};
    }
    return {PR_ROWID, PR_DISPLAY_NAME_W, PR_EMAIL_ADDRESS_W, PR_ADDRTYPE_W, PR_RECIPIENT_TYPE};
}

/// Gives a new file the first name that is free. Two processes can look for one at the same time, so the
/// system decides. `name` receives the one that was taken.
FileStamp NameNewFile(WrittenFile& file, const Text& folder, const Text& title, Text& name) {
    const Text stem = FileNameOfTitle(title);
    for (int number = 1;; ++number) {
        name = number == 1 ? stem : stem + L" (" + std::to_wstring(number) + L")";
        if (number > kNumberedNames) {
            name = stem + L" " + RandomDigits();
        }
        name += L".msg";
        try {
            return file.Rename(JoinPath(folder, name), false);
        } catch (const StoreError& error) {
            Require(error.Code() == MAPI_E_COLLISION && number <= 2 * kNumberedNames, error.Code());
        }
    }
}

}  // namespace

Message::Message(std::shared_ptr<StoreTree> tree, MessageFolder folder, LoadedMessage message, Mode mode,
                 std::optional<NameDigest> digest)
    : m_source(std::move(tree), std::make_shared<const MessageFolder>(std::move(folder)), std::move(message),
               MessageSource::Role::Message, digest),
      m_mode(mode),
      m_nextAttachment(m_source.Content().NextAttachment()) {}

bool Message::Supports(REFIID iid) const {
    return IsEqualGUID(iid, IID_IUnknown) || IsEqualGUID(iid, IID_IMAPIProp) ||
           IsEqualGUID(iid, IID_IMessage);
}

CallSubject Message::Subject() const {
    return {"IMessage", m_source.Label(), &Names()};
}

STDMETHODIMP Message::GetProps(LPSPropTagArray tags, ULONG flags, ULONG* count, LPSPropValue* values) {
    return Call(
        "GetProps", [&](CallText& text) { text.Tags(tags).Flags("flags", flags); },
        [&] {
            if (m_mode == Mode::New && AsksForId(tags)) {
                ReserveName();
            }
            return GetPropsOf(m_source, tags, flags, count, values);
        });
}

void Message::ReserveName() {
    if (m_source.Name().empty()) {
        // The file does not exist yet, so only chance can keep the name free.
        m_source.SetName(FileNameOfTitle(TitleOf(m_source.Content())) + L" " + RandomDigits() + L".msg");
    }
}

void Message::RequireWritable() const {
    Require(m_mode != Mode::ReadOnly, MAPI_E_NO_ACCESS);
}

MessageContent& Message::Edit() {
    if (!m_own) {
        m_own = std::make_shared<MessageContent>(m_source.Content());
        m_source.SetContent(m_own);
    }
    m_changed = true;
    return *m_own;
}

HRESULT Message::SetOne(Property property) {
    if (IsComputedProperty(property.Id())) {
        return MAPI_E_COMPUTED;
    }
    if (property.Id() >= kFirstNamedId) {
        const PropertyName* name = Names().NameOf(property.Id());
        const std::optional<PropertyId> id = name == nullptr ? std::nullopt : Edit().AddName(*name);
        if (!id) {
            return MAPI_E_INVALID_PARAMETER;
        }
        property.tag = MakeTag(*id, property.Type());
    }
    PutProperty(Edit(), std::move(property));
    return S_OK;
}

HRESULT Message::RemoveOne(PropertyId id) {
    if (IsComputedProperty(id)) {
        return MAPI_E_COMPUTED;
    }
    const std::optional<PropertyId> fileId = m_source.FileId(id);
    const bool exists = fileId && m_source.Content().properties.Find(*fileId) != nullptr;
    return exists && TakeProperty(Edit(), *fileId) ? S_OK : MAPI_E_NOT_FOUND;
}

STDMETHODIMP Message::SaveChanges(ULONG flags) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("SaveChanges", describe, [&] {
        Require((flags & ~kSaveFlags) == 0, MAPI_E_UNKNOWN_FLAGS);
        RequireWritable();
        if (m_changed || m_mode == Mode::New) {
            Save(flags);
        }
        if ((flags & KEEP_OPEN_READONLY) != 0) {
            m_mode = Mode::ReadOnly;
        }
        return S_OK;
    });
}

void Message::Save(ULONG flags) {
    const StoreTree& tree = m_source.Tree();
    const Text folder = tree.FullPath(m_source.Folder());
    const Text path = JoinPath(folder, m_source.Name());
    std::uint64_t created = Now();
    if (m_mode == Mode::New) {
        Require(FolderExists(folder), MAPI_E_OBJECT_DELETED);
    } else {
        const std::optional<FileEntry> current = QueryFile(path);
        Require(current.has_value(), MAPI_E_OBJECT_DELETED);
        Require(current->stamp == m_source.Stamp() || (flags & FORCE_SAVE) != 0, MAPI_E_OBJECT_CHANGED);
        Require(!IsReadOnlyFile(path), MAPI_E_NO_ACCESS);
        created = current->creationTime;
    }
    // A writer that was told of a failure may try again with a new message, so whatever can fail comes before
    // the renaming, which is the moment of saving.
    auto saved = std::make_shared<MessageContent>(m_source.Content());
    saved->NoteNextAttachment(m_nextAttachment);
    PrepareForSaving(*saved, created, Now());
    Text name = m_source.Name();
    WrittenFile file(folder, WriteStorage(WriteMessage(*saved)));
    const FileStamp stamp = name.empty() ? NameNewFile(file, folder, TitleOf(*saved), name)
                                         : file.Rename(path, m_mode != Mode::New);
    NoteSaved(path, std::move(name), stamp, std::move(saved));
}

void Message::NoteSaved(const Text& path, Text name, const FileStamp& stamp,
                        std::shared_ptr<MessageContent> saved) noexcept {
    MessageCache::Instance().Forget(path);
    m_source.SetName(std::move(name));
    m_source.SetStamp(stamp);
    m_source.SetContent(saved);
    m_own = std::move(saved);
    m_mode = Mode::ReadWrite;
    m_changed = false;
}

LPMAPITABLE Message::PartTable(const wchar_t* label, const std::vector<PartContent>& parts,
                               PartSource::Kind kind, ULONG flags) {
    Require((flags & ~static_cast<ULONG>(MAPI_UNICODE | MAPI_DEFERRED_ERRORS)) == 0, MAPI_E_UNKNOWN_FLAGS);
    // The rows are a snapshot, and this message may go on changing.
    const auto content = m_own ? std::make_shared<const MessageContent>(*m_own) : m_source.SharedContent();
    const std::shared_ptr<StoreTree> tree = m_source.SharedTree();
    std::vector<TableRow> rows;
    rows.reserve(parts.size());
    for (const PartContent& part : parts) {
        rows.push_back(std::make_shared<PartSource>(tree, content, part, kind));
    }
    CallSubject subject = Subject();
    subject.object += label;
    return NewTable(std::move(subject), std::move(rows), PartColumns(kind), (flags & MAPI_UNICODE) != 0);
}

STDMETHODIMP Message::GetAttachmentTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetAttachmentTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        *table =
            PartTable(L" attachments", m_source.Content().attachments, PartSource::Kind::Attachment, flags);
        return S_OK;
    });
}

STDMETHODIMP Message::GetRecipientTable(ULONG flags, LPMAPITABLE* table) {
    const auto describe = [&](CallText& text) { text.Flags("flags", flags); };
    return Call("GetRecipientTable", describe, [&] {
        Require(table != nullptr, MAPI_E_INVALID_PARAMETER);
        *table = nullptr;
        *table = PartTable(L" recipients", m_source.Content().recipients, PartSource::Kind::Recipient, flags);
        return S_OK;
    });
}

STDMETHODIMP Message::OpenAttach(ULONG number, LPCIID iid, ULONG flags, LPATTACH* attachment) {
    const auto describe = [&](CallText& text) {
        text.Number("number", number).Interface(iid).Flags("flags", flags);
    };
    return Call("OpenAttach", describe, [&] {
        Require(attachment != nullptr, MAPI_E_INVALID_PARAMETER);
        *attachment = nullptr;
        const PartContent* part = m_source.Content().FindAttachment(number);
        Require(part != nullptr, MAPI_E_NOT_FOUND);
        const bool modify = (flags & MAPI_MODIFY) != 0;
        Require(!modify || (flags & MAPI_BEST_ACCESS) != 0 || m_mode != Mode::ReadOnly, MAPI_E_NO_ACCESS);
        const bool writable = m_mode != Mode::ReadOnly && (flags & (MAPI_MODIFY | MAPI_BEST_ACCESS)) != 0;
        auto object = MakeObject<Attachment>(this, *part, writable);
        RequireInterface(*object.Get(), iid);
        *attachment = object.Detach();
        return S_OK;
    });
}

STDMETHODIMP Message::CreateAttach(LPCIID iid, ULONG flags, ULONG* number, LPATTACH* attachment) {
    const auto describe = [&](CallText& text) { text.Interface(iid).Flags("flags", flags); };
    return Call("CreateAttach", describe, [&] {
        Require(number != nullptr && attachment != nullptr, MAPI_E_INVALID_PARAMETER);
        *attachment = nullptr;
        RequireWritable();
        Require(m_source.Content().attachments.size() < kMostParts && m_nextAttachment < MAXLONG,
                MAPI_E_NOT_ENOUGH_RESOURCES);
        PartContent part;
        part.number = m_nextAttachment;
        part.header = Bytes(kAttachmentHeader);
        part.properties.Set(LongProperty(PR_ATTACH_NUM, static_cast<LONG>(part.number)));
        auto object = MakeObject<Attachment>(this, std::move(part), true);
        RequireInterface(*object.Get(), iid);
        *number = m_nextAttachment++;
        *attachment = object.Detach();
        return S_OK;
    });
}

STDMETHODIMP Message::DeleteAttach(ULONG number, ULONG, LPMAPIPROGRESS, ULONG flags) {
    const auto describe = [&](CallText& text) { text.Number("number", number).Flags("flags", flags); };
    return Call("DeleteAttach", describe, [&] {
        RequireWritable();
        Require(m_source.Content().FindAttachment(number) != nullptr, MAPI_E_NOT_FOUND);
        std::erase_if(Edit().attachments,
                      [number](const PartContent& part) { return part.number == number; });
        return S_OK;
    });
}

}  // namespace localstore
