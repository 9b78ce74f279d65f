#pragma once

// One message store as folders and files: names, identifiers and the way from one to the other. No object of
// MAPI is known here.

#include <map>
#include <memory>
#include <optional>
#include <unordered_map>
#include <vector>

#include "localstore/entry_id.h"
#include "localstore/file_system.h"
#include "localstore/folder_ini.h"
#include "localstore/named_properties.h"

namespace localstore {

/// A mail folder. The path is that below the store, with backslashes; the top of the mail folders has an
/// empty one.
struct FolderInfo {
    Text path;
    Text displayName;
    /// Nothing if neither folder.ini, name nor parent give one.
    std::optional<Text> containerClass;
};

/// A file with the digest of its name.
struct MessageFile {
    FileEntry file;
    NameDigest digest{};
};

class StoreTree {
  public:
    /// The store of a folder. One object stands for it as long as the process lives, so that the identifiers
    /// of named properties stay what they are.
    static std::shared_ptr<StoreTree> Of(const Text& profileFolder, const Text& profile, const Text& name);

    StoreTree(Text directory, const Text& idPath, Text name);

    [[nodiscard]] const Text& Directory() const { return m_directory; }
    /// The name of the folder.
    [[nodiscard]] const Text& Name() const { return m_name; }
    [[nodiscard]] Text DisplayName() const;
    [[nodiscard]] const NameDigest& Digest() const { return m_digest; }
    [[nodiscard]] NamedProperties& Names() { return m_names; }
    /// Rows of tables carry long-term identifiers, as folder.ini says now.
    [[nodiscard]] bool HasLongTermIds() const;

    [[nodiscard]] EntryId StoreId() const;
    [[nodiscard]] EntryId RootId() const;
    [[nodiscard]] EntryId FolderId(const Text& path) const;
    /// The identifier of a message, from the digests of its folder's path and of its file's name.
    [[nodiscard]] EntryId MessageId(const NameDigest& folder, const NameDigest& message) const;

    /// The file or folder that a path below the store stands for.
    [[nodiscard]] Text FullPath(const Text& path) const { return JoinPath(m_directory, path); }

    [[nodiscard]] FolderInfo Folder(const Text& path) const;
    [[nodiscard]] std::vector<FolderInfo> SubFolders(const Text& path) const;
    [[nodiscard]] bool HasSubFolders(const Text& path) const {
        return localstore::HasSubFolders(FullPath(path));
    }
    /// The message files of a folder in order of their names, damaged ones included.
    std::vector<MessageFile> MessageFiles(const Text& folder);

    /// The folder of a digest, if there was one when the folders were last looked through or is one now.
    std::optional<Text> LastSeenFolder(const NameDigest& digest);
    /// The folder of a digest, if there is one now.
    std::optional<Text> FindFolder(const NameDigest& digest);
    /// The file name of a message's digest, if the folder had one when it was last listed or has one now.
    std::optional<Text> FindMessage(const Text& folder, const NameDigest& digest);

    /// The path of the default folder that an entry identifier property such as PR_IPM_CONTACT_ENTRYID names.
    [[nodiscard]] std::optional<Text> DefaultFolder(PropertyId property) const;
    /// The folder of incoming messages.
    [[nodiscard]] std::optional<Text> ReceiveFolder() const;
    /// True if an object, "Inbox" or "Root", names the default folders.
    [[nodiscard]] bool NamesDefaultFolders(std::wstring_view object) const;

  private:
    /// Any bits of a digest are as good as chance.
    struct DigestHash {
        std::size_t operator()(const NameDigest& digest) const noexcept;
    };
    struct IndexedName {
        Text name;
        NameDigest digest{};
    };
    /// The names of a folder's messages, in order, and the place of each by its digest. A folder that is
    /// listed again is compared from end to end, which takes no look at a hash table.
    struct MessageIndex {
        std::vector<IndexedName> names;
        std::unordered_map<NameDigest, std::size_t, DigestHash> places;

        /// True if it has the names of these files and no others.
        [[nodiscard]] bool HasNamesOf(const std::vector<FileEntry>& files) const;
        /// An index of these files, with the digests that this one knows already.
        [[nodiscard]] MessageIndex Of(const std::vector<FileEntry>& files) const;
    };

    /// The class of a folder below the top with its folder.ini.
    [[nodiscard]] std::optional<Text> ClassOf(const Text& path, const FolderIni& ini) const;
    [[nodiscard]] std::optional<Text> TopFolder(std::wstring_view name) const;
    void IndexFolders(const Text& path, int depth);

    Text m_directory;
    Text m_name;
    NameDigest m_digest;
    NamedProperties m_names;
    std::map<NameDigest, Text> m_folders;
    std::map<Text, MessageIndex> m_messages;
};

}  // namespace localstore
