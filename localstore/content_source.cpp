#include "localstore/content_source.h"

#include <mapitags.h>

#include <algorithm>
#include <array>

#include "localstore/text_convert.h"

namespace localstore {

namespace {

constexpr PropertyTag kMessageCodePage = 0x3FFD0003;
constexpr PropertyTag kInternetCodePage = 0x3FDE0003;
constexpr PropertyTag kLongTermEntryIdFromTable = 0x66700102;

constexpr LONG kAllAccess = MAPI_ACCESS_MODIFY | MAPI_ACCESS_READ | MAPI_ACCESS_DELETE;

constexpr PropertyId Id(ULONG tag) {
    return static_cast<PropertyId>(tag >> 16U);
}

std::optional<UINT> CodePageIn(const PropertyBag& bag, PropertyTag tag) {
    const Property* property = bag.Find(IdOf(tag));
    return property != nullptr && property->tag == tag ? std::optional(static_cast<UINT>(property->fixed))
                                                       : std::nullopt;
}

}  // namespace

UINT CodePageOf(const PropertyBag& message) {
    for (const PropertyTag tag : {kMessageCodePage, kInternetCodePage}) {
        if (const std::optional<UINT> codePage = CodePageIn(message, tag)) {
            return UsableCodePage(*codePage);
        }
    }
    return CP_ACP;
}

bool IsComputedProperty(PropertyId id) {
    constexpr std::array computed = {
        Id(PR_ENTRYID),    Id(PR_PARENT_ENTRYID), Id(PR_STORE_ENTRYID),     Id(PR_STORE_RECORD_KEY),
        Id(PR_RECORD_KEY), Id(PR_INSTANCE_KEY),   Id(PR_MAPPING_SIGNATURE), Id(PR_OBJECT_TYPE),
        Id(PR_ACCESS),     Id(PR_ACCESS_LEVEL),   Id(PR_ATTACH_NUM),        IdOf(kLongTermEntryIdFromTable)};
    return std::find(computed.begin(), computed.end(), id) != computed.end();
}

std::optional<PropertyId> ContentSource::FileId(PropertyId id) const {
    if (id < kFirstNamedId) {
        return id;
    }
    const PropertyName* name = m_tree->Names().NameOf(id);
    return name == nullptr ? std::nullopt : m_content->names.IdOfName(*name);
}

std::optional<Property> ContentSource::Find(PropertyId id) const {
    if (std::optional<Property> computed = Computed(id)) {
        return computed;
    }
    const std::optional<PropertyId> fileId = FileId(id);
    const Property* kept = fileId && !IsComputedProperty(*fileId) ? Bag().Find(*fileId) : nullptr;
    return kept != nullptr ? std::optional(*kept) : Default(id);
}

std::vector<PropertyTag> ContentSource::Tags() const {
    std::vector<PropertyTag> tags;
    for (const PropertyId id : OwnIds()) {
        if (const std::optional<Property> property = Find(id)) {
            tags.push_back(property->tag);
        }
    }
    const auto own = static_cast<std::ptrdiff_t>(tags.size());
    for (const Property& property : Bag().All()) {
        const auto same = [&](PropertyTag tag) { return IdOf(tag) == property.Id(); };
        if (property.Id() < kFirstNamedId) {
            if (!IsComputedProperty(property.Id()) && std::none_of(tags.begin(), tags.begin() + own, same)) {
                tags.push_back(property.tag);
            }
            continue;
        }
        const PropertyName* name = m_content->names.NameOf(property.Id());
        const std::optional<PropertyId> id =
            name == nullptr ? std::nullopt : m_tree->Names().IdOf(*name, true);
        if (id) {
            tags.push_back(MakeTag(*id, property.Type()));
        }
    }
    return tags;
}

UINT ContentSource::CodePage() const {
    return CodePageOf(m_content->properties);
}

MessageSource::MessageSource(std::shared_ptr<StoreTree> tree, SharedFolder folder, LoadedMessage message,
                             Role role, std::optional<NameDigest> digest)
    : ContentSource(std::move(tree), std::move(message.content)),
      m_folder(std::move(folder)),
      m_file(std::move(message.file)),
      m_role(role),
      m_digest(digest) {}

Text MessageSource::Label() const {
    return JoinPath(Folder(), Name().empty() ? L"(new)" : Name());
}

EntryId MessageSource::EntryIdOfMessage() const {
    return Tree().MessageId(m_folder->digest, m_digest ? *m_digest : DigestOf(Name()));
}

std::optional<Property> MessageSource::Computed(PropertyId id) const {
    const bool hasId = !Name().empty();
    switch (id) {
        case Id(PR_ENTRYID):
            return hasId ? std::optional(IdProperty(PR_ENTRYID, EntryIdOfMessage())) : std::nullopt;
        case Id(PR_RECORD_KEY):
            return hasId ? std::optional(IdProperty(PR_RECORD_KEY, EntryIdOfMessage())) : std::nullopt;
        case Id(PR_INSTANCE_KEY):
            return m_role == Role::Message ? std::nullopt
                                           : std::optional(IdProperty(PR_INSTANCE_KEY, EntryIdOfMessage()));
        case IdOf(kLongTermEntryIdFromTable): {
            if (m_role != Role::RowWithLongTermId) {
                return std::nullopt;
            }
            EntryId longTerm = EntryIdOfMessage();
            longTerm.isLongTerm = true;
            return IdProperty(kLongTermEntryIdFromTable, longTerm);
        }
        case Id(PR_PARENT_ENTRYID):
            return IdProperty(PR_PARENT_ENTRYID, Tree().FolderId(Folder()));
        case Id(PR_STORE_ENTRYID):
            return IdProperty(PR_STORE_ENTRYID, Tree().StoreId());
        case Id(PR_STORE_RECORD_KEY):
            return IdProperty(PR_STORE_RECORD_KEY, Tree().StoreId());
        case Id(PR_MAPPING_SIGNATURE):
            return IdProperty(PR_MAPPING_SIGNATURE, Tree().StoreId());
        case Id(PR_OBJECT_TYPE):
            return LongProperty(PR_OBJECT_TYPE, MAPI_MESSAGE);
        case Id(PR_ACCESS):
            return LongProperty(PR_ACCESS, kAllAccess);
        case Id(PR_ACCESS_LEVEL):
            return LongProperty(PR_ACCESS_LEVEL, MAPI_MODIFY);
        default:
            return std::nullopt;
    }
}

std::optional<Property> MessageSource::Default(PropertyId id) const {
    switch (id) {
        case Id(PR_HASATTACH):
            return BooleanProperty(PR_HASATTACH, !Content().attachments.empty());
        case Id(PR_MESSAGE_CLASS):
            return Property::OfText(PR_MESSAGE_CLASS_W, L"IPM.Note");
        case Id(PR_MESSAGE_FLAGS):
            return LongProperty(PR_MESSAGE_FLAGS, MSGFLAG_READ);
        case Id(PR_MESSAGE_SIZE):
            return LongProperty(PR_MESSAGE_SIZE, static_cast<LONG>(m_file.stamp.size & 0x7FFFFFFFU));
        case Id(PR_CREATION_TIME):
            return m_file.creationTime == 0
                       ? std::nullopt
                       : std::optional(TimeProperty(PR_CREATION_TIME, m_file.creationTime));
        case Id(PR_LAST_MODIFICATION_TIME):
            return m_file.stamp.writeTime == 0
                       ? std::nullopt
                       : std::optional(TimeProperty(PR_LAST_MODIFICATION_TIME, m_file.stamp.writeTime));
        default:
            return std::nullopt;
    }
}

std::vector<PropertyId> MessageSource::OwnIds() const {
    return {Id(PR_ENTRYID),
            Id(PR_RECORD_KEY),
            Id(PR_INSTANCE_KEY),
            IdOf(kLongTermEntryIdFromTable),
            Id(PR_PARENT_ENTRYID),
            Id(PR_STORE_ENTRYID),
            Id(PR_STORE_RECORD_KEY),
            Id(PR_MAPPING_SIGNATURE),
            Id(PR_OBJECT_TYPE),
            Id(PR_ACCESS),
            Id(PR_ACCESS_LEVEL),
            Id(PR_HASATTACH),
            Id(PR_MESSAGE_CLASS),
            Id(PR_MESSAGE_FLAGS),
            Id(PR_MESSAGE_SIZE),
            Id(PR_CREATION_TIME),
            Id(PR_LAST_MODIFICATION_TIME)};
}

PartSource::PartSource(std::shared_ptr<StoreTree> tree, std::shared_ptr<const MessageContent> content,
                       PartContent part, Kind kind)
    : ContentSource(std::move(tree), std::move(content)), m_part(std::move(part)), m_kind(kind) {}

std::optional<Property> PartSource::Computed(PropertyId id) const {
    const bool isAttachment = m_kind == Kind::Attachment;
    switch (id) {
        case Id(PR_ATTACH_NUM):
            return isAttachment ? std::optional(LongProperty(PR_ATTACH_NUM, static_cast<LONG>(m_part.number)))
                                : std::nullopt;
        case Id(PR_ROWID):
            return isAttachment ? std::nullopt
                                : std::optional(LongProperty(PR_ROWID, static_cast<LONG>(m_part.number)));
        case Id(PR_OBJECT_TYPE):
            return isAttachment ? std::optional(LongProperty(PR_OBJECT_TYPE, MAPI_ATTACH)) : std::nullopt;
        case Id(PR_STORE_ENTRYID):
            return isAttachment ? std::optional(IdProperty(PR_STORE_ENTRYID, Tree().StoreId()))
                                : std::nullopt;
        case Id(PR_MAPPING_SIGNATURE):
            return isAttachment ? std::optional(IdProperty(PR_MAPPING_SIGNATURE, Tree().StoreId()))
                                : std::nullopt;
        default:
            return std::nullopt;
    }
}

std::optional<Property> PartSource::Default(PropertyId id) const {
    if (m_kind != Kind::Attachment || id != Id(PR_ATTACH_SIZE)) {
        return std::nullopt;
    }
    const Property* data = m_part.properties.Find(Id(PR_ATTACH_DATA_BIN));
    return LongProperty(PR_ATTACH_SIZE, data == nullptr ? 0 : static_cast<LONG>(data->Data().size()));
}

std::vector<PropertyId> PartSource::OwnIds() const {
    return {Id(PR_ATTACH_NUM),        Id(PR_ROWID),      Id(PR_OBJECT_TYPE), Id(PR_STORE_ENTRYID),
            Id(PR_MAPPING_SIGNATURE), Id(PR_ATTACH_SIZE)};
}

}  // namespace localstore
