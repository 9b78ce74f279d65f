#include <mapitags.h>

#include "localstore/content_source.h"
#include "localstore/folder.h"

namespace localstore {

namespace {

constexpr LONG kFolderAccess =
    MAPI_ACCESS_READ | MAPI_ACCESS_CREATE_CONTENTS | MAPI_ACCESS_DELETE | MAPI_ACCESS_MODIFY;

constexpr PropertyId IdPart(ULONG tag) {
    return static_cast<PropertyId>(tag >> 16U);
}

Text ParentPath(const Text& path) {
    const std::size_t cut = path.rfind(L'\\');
    return cut == Text::npos ? Text() : path.substr(0, cut);
}

}  // namespace

FolderSource::FolderSource(std::shared_ptr<StoreTree> tree)
    : m_tree(std::move(tree)), m_folder(FolderInfo{{}, L"Root", std::nullopt}), m_isRoot(true) {}

FolderSource::FolderSource(std::shared_ptr<StoreTree> tree, Text path)
    : m_tree(std::move(tree)), m_path(std::move(path)), m_isRoot(false) {}

FolderSource::FolderSource(std::shared_ptr<StoreTree> tree, FolderInfo folder, LONG depth)
    : m_tree(std::move(tree)),
      m_path(folder.path),
      m_folder(std::move(folder)),
      m_isRoot(false),
      m_depth(depth) {}

const FolderInfo& FolderSource::Folder() const {
    if (!m_folder) {
        m_folder = m_tree->Folder(m_path);
    }
    return *m_folder;
}

Text FolderSource::Label() const {
    if (m_isRoot) {
        return L"(root)";
    }
    return m_path.empty() ? L"(top)" : m_path;
}

EntryId FolderSource::Id() const {
    return m_isRoot ? m_tree->RootId() : m_tree->FolderId(m_path);
}

EntryId FolderSource::ParentId() const {
    // The root is its own parent.
    return m_isRoot || m_path.empty() ? m_tree->RootId() : m_tree->FolderId(ParentPath(m_path));
}

std::vector<FolderInfo> FolderSource::SubFolders() const {
    return m_isRoot ? std::vector{m_tree->Folder({})} : m_tree->SubFolders(m_path);
}

std::optional<Property> FolderSource::DefaultFolderId(PropertyId id) const {
    const bool isInbox = !m_isRoot && !m_path.empty() && m_tree->ReceiveFolder() == m_path;
    if ((!m_isRoot && !isInbox) || !m_tree->NamesDefaultFolders(m_isRoot ? L"Root" : L"Inbox")) {
        return std::nullopt;
    }
    const std::optional<Text> path = m_tree->DefaultFolder(id);
    return path ? std::optional(IdProperty(MakeTag(id, kTypeBinary), m_tree->FolderId(*path))) : std::nullopt;
}

std::optional<Property> FolderSource::StoreProperty(PropertyId id) const {
    switch (id) {
        case IdPart(PR_STORE_ENTRYID):
            return IdProperty(PR_STORE_ENTRYID, m_tree->StoreId());
        case IdPart(PR_STORE_RECORD_KEY):
            return IdProperty(PR_STORE_RECORD_KEY, m_tree->StoreId());
        case IdPart(PR_MAPPING_SIGNATURE):
            return IdProperty(PR_MAPPING_SIGNATURE, m_tree->StoreId());
        default:
            return DefaultFolderId(id);
    }
}

std::optional<Property> FolderSource::Find(PropertyId id) const {
    switch (id) {
        case IdPart(PR_ENTRYID):
            return IdProperty(PR_ENTRYID, Id());
        case IdPart(PR_RECORD_KEY):
            return IdProperty(PR_RECORD_KEY, Id());
        case IdPart(PR_INSTANCE_KEY):
            return IdProperty(PR_INSTANCE_KEY, Id());
        case IdPart(PR_PARENT_ENTRYID):
            return IdProperty(PR_PARENT_ENTRYID, ParentId());
        case IdPart(PR_DISPLAY_NAME):
            return Property::OfText(PR_DISPLAY_NAME_W, Folder().displayName);
        case IdPart(PR_CONTAINER_CLASS):
            return Folder().containerClass
                       ? std::optional(Property::OfText(PR_CONTAINER_CLASS_W, *Folder().containerClass))
                       : std::nullopt;
        case IdPart(PR_SUBFOLDERS):
            return BooleanProperty(PR_SUBFOLDERS, m_isRoot || m_tree->HasSubFolders(m_path));
        case IdPart(PR_CONTENT_COUNT):
            return LongProperty(PR_CONTENT_COUNT, m_isRoot ? 0 : CountMessages(*m_tree, m_path));
        case IdPart(PR_FOLDER_TYPE):
            return LongProperty(PR_FOLDER_TYPE, m_isRoot ? FOLDER_ROOT : FOLDER_GENERIC);
        case IdPart(PR_DEPTH):
            return LongProperty(PR_DEPTH, m_depth);
        case IdPart(PR_OBJECT_TYPE):
            return LongProperty(PR_OBJECT_TYPE, MAPI_FOLDER);
        case IdPart(PR_ACCESS):
            return LongProperty(PR_ACCESS, kFolderAccess);
        default:
            return StoreProperty(id);
    }
}

std::vector<PropertyTag> FolderSource::Tags() const {
    std::vector<PropertyTag> tags = {PR_ENTRYID,        PR_RECORD_KEY,       PR_PARENT_ENTRYID,
                                     PR_DISPLAY_NAME_W, PR_SUBFOLDERS,       PR_CONTENT_COUNT,
                                     PR_FOLDER_TYPE,    PR_OBJECT_TYPE,      PR_ACCESS,
                                     PR_STORE_ENTRYID,  PR_STORE_RECORD_KEY, PR_MAPPING_SIGNATURE};
    if (Folder().containerClass) {
        tags.push_back(PR_CONTAINER_CLASS_W);
    }
    constexpr PropertyId firstDefault = 0x36D0;
    constexpr PropertyId lastDefault = 0x36D7;
    for (PropertyId id = firstDefault; id <= lastDefault; ++id) {
        if (DefaultFolderId(id)) {
            tags.push_back(MakeTag(id, kTypeBinary));
        }
    }
    return tags;
}

}  // namespace localstore
