#include "localstore/store_tree.h"

#include <algorithm>
#include <array>
#include <cstring>

#include "localstore/file_names.h"
#include "localstore/profile_tree.h"

namespace localstore {

namespace {

/// Folders inside one another; deeper ones stand in the table of theirs and do not open.
constexpr int kDeepestFolder = 32;

/// The folders that a store knows by their name, with the property that names them on the root and on the
/// Inbox.
struct KnownFolder {
    const wchar_t* name;
    const wchar_t* containerClass;
    PropertyId property;
};

constexpr std::array<KnownFolder, 7> kKnownFolders = {{
    {L"Calendar", L"IPF.Appointment", 0x36D0},
    {L"Contacts", L"IPF.Contact", 0x36D1},
    {L"Journal", L"IPF.Journal", 0x36D2},
    {L"Notes", L"IPF.StickyNote", 0x36D3},
    {L"Tasks", L"IPF.Task", 0x36D4},
    {L"Drafts", L"IPF.Note", 0x36D7},
    {L"Inbox", L"IPF.Note", 0},
}};

Text ParentOf(const Text& path) {
    const std::size_t cut = path.rfind(L'\\');
    return cut == Text::npos ? Text() : path.substr(0, cut);
}

}  // namespace

std::shared_ptr<StoreTree> StoreTree::Of(const Text& profileFolder, const Text& profile, const Text& name) {
    static std::map<Text, std::shared_ptr<StoreTree>> stores;
    const Text directory = JoinPath(profileFolder, name);
    std::shared_ptr<StoreTree>& store = stores[directory];
    if (!store) {
        store = std::make_shared<StoreTree>(directory, JoinPath(profile, name), name);
    }
    return store;
}

StoreTree::StoreTree(Text directory, const Text& idPath, Text name)
    : m_directory(std::move(directory)), m_name(std::move(name)), m_digest(DigestOf(idPath)) {}

Text StoreTree::DisplayName() const {
    return ReadFolderIni(m_directory).Find(L"Store", L"Name").value_or(m_name);
}

bool StoreTree::HasLongTermIds() const {
    return ReadFolderIni(m_directory).FindFlag(L"Store", L"LongTermIds").value_or(false);
}

bool StoreTree::NamesDefaultFolders(std::wstring_view object) const {
    const std::optional<Text> only = ReadFolderIni(m_directory).Find(L"Store", L"DefaultFoldersOn");
    return !only || SameName(*only, object);
}

EntryId StoreTree::StoreId() const {
    EntryId id;
    id.store = m_digest;
    return id;
}

EntryId StoreTree::RootId() const {
    EntryId id = StoreId();
    id.kind = EntryKind::Root;
    return id;
}

EntryId StoreTree::FolderId(const Text& path) const {
    EntryId id = StoreId();
    id.kind = EntryKind::Folder;
    id.folder = DigestOf(path);
    return id;
}

EntryId StoreTree::MessageId(const NameDigest& folder, const NameDigest& message) const {
    EntryId id = StoreId();
    id.kind = EntryKind::Message;
    id.folder = folder;
    id.message = message;
    return id;
}

std::optional<Text> StoreTree::ClassOf(const Text& path, const FolderIni& ini) const {
    if (std::optional<Text> given = ini.Find(L"Folder", L"Class")) {
        // An empty value says that the folder has no class.
        return given->empty() ? std::nullopt : given;
    }
    if (const Text parent = ParentOf(path); !parent.empty()) {
        if (std::optional<Text> inherited = ClassOf(parent, ReadFolderIni(FullPath(parent)))) {
            return inherited;
        }
    }
    const Text name = LastComponent(path);
    const auto* known = std::find_if(kKnownFolders.begin(), kKnownFolders.end(),
                                     [&](const KnownFolder& one) { return SameName(one.name, name); });
    return known == kKnownFolders.end() ? std::nullopt : std::optional<Text>(known->containerClass);
}

FolderInfo StoreTree::Folder(const Text& path) const {
    if (path.empty()) {
        return {path, DisplayName(), std::nullopt};
    }
    // Read once: some systems look through the whole folder for a file that is not there.
    const FolderIni ini = ReadFolderIni(FullPath(path));
    return {path, ini.Find(L"Folder", L"Name").value_or(LastComponent(path)), ClassOf(path, ini)};
}

std::vector<FolderInfo> StoreTree::SubFolders(const Text& path) const {
    std::vector<FolderInfo> folders;
    for (const Text& name : ListSubFolders(FullPath(path))) {
        folders.push_back(Folder(JoinPath(path, name)));
    }
    return folders;
}

std::size_t StoreTree::DigestHash::operator()(const NameDigest& digest) const noexcept {
    std::size_t hash = 0;
    static_assert(sizeof(hash) <= sizeof(NameDigest));
    std::memcpy(&hash, digest.data(), sizeof(hash));
    return hash;
}

bool StoreTree::MessageIndex::HasNamesOf(const std::vector<FileEntry>& files) const {
    return std::equal(
        files.begin(), files.end(), names.begin(), names.end(),
        [](const FileEntry& file, const IndexedName& known) { return file.name == known.name; });
}

StoreTree::MessageIndex StoreTree::MessageIndex::Of(const std::vector<FileEntry>& files) const {
    MessageIndex fresh;
    fresh.names.reserve(files.size());
    fresh.places.reserve(files.size());
    // Both stand in order of the names, so one walk along the known ones finds those that stay.
    auto known = names.begin();
    for (const FileEntry& file : files) {
        known =
            std::find_if(known, names.end(), [&](const IndexedName& one) { return one.name >= file.name; });
        const bool stays = known != names.end() && known->name == file.name;
        const NameDigest digest = stays ? known->digest : DigestOf(file.name);
        fresh.places.emplace(digest, fresh.names.size());
        fresh.names.push_back({file.name, digest});
    }
    return fresh;
}

std::vector<MessageFile> StoreTree::MessageFiles(const Text& folder) {
    std::vector<FileEntry> files = ListFolder(FullPath(folder));
    std::erase_if(files,
                  [](const FileEntry& entry) { return entry.isFolder || !IsMessageFileName(entry.name); });
    MessageIndex& index = m_messages[folder];
    if (!index.HasNamesOf(files)) {
        index = index.Of(files);
    }
    std::vector<MessageFile> messages;
    messages.reserve(files.size());
    for (FileEntry& file : files) {
        messages.push_back({std::move(file), index.names[messages.size()].digest});
    }
    return messages;
}

void StoreTree::IndexFolders(const Text& path, int depth) {
    m_folders.emplace(DigestOf(path), path);
    if (depth == kDeepestFolder) {
        return;
    }
    for (const Text& name : ListSubFolders(FullPath(path))) {
        IndexFolders(JoinPath(path, name), depth + 1);
    }
}

std::optional<Text> StoreTree::LastSeenFolder(const NameDigest& digest) {
    auto found = m_folders.find(digest);
    if (found == m_folders.end()) {
        m_folders.clear();
        IndexFolders({}, 0);
        found = m_folders.find(digest);
    }
    return found == m_folders.end() ? std::nullopt : std::optional(found->second);
}

std::optional<Text> StoreTree::FindFolder(const NameDigest& digest) {
    std::optional<Text> path = LastSeenFolder(digest);
    return path && FolderExists(FullPath(*path)) ? path : std::nullopt;
}

std::optional<Text> StoreTree::FindMessage(const Text& folder, const NameDigest& digest) {
    for (const bool again : {false, true}) {
        if (again) {
            if (!FolderExists(FullPath(folder))) {
                break;
            }
            MessageFiles(folder);
        }
        const auto index = m_messages.find(folder);
        if (index == m_messages.end()) {
            continue;
        }
        const auto found = index->second.places.find(digest);
        if (found != index->second.places.end()) {
            return index->second.names[found->second].name;
        }
    }
    return std::nullopt;
}

std::optional<Text> StoreTree::TopFolder(std::wstring_view name) const {
    // A look at the listing, and not at the name asked for: the identifier is made of the name as it is
    // written on the disk.
    const std::vector<Text> names = ListSubFolders(m_directory);
    const auto found =
        std::find_if(names.begin(), names.end(), [&](const Text& one) { return SameName(one, name); });
    return found == names.end() ? std::nullopt : std::optional(*found);
}

std::optional<Text> StoreTree::DefaultFolder(PropertyId property) const {
    for (const KnownFolder& known : kKnownFolders) {
        if (known.property == property && property != 0) {
            return TopFolder(known.name);
        }
    }
    return std::nullopt;
}

std::optional<Text> StoreTree::ReceiveFolder() const {
    return TopFolder(L"Inbox");
}

}  // namespace localstore
