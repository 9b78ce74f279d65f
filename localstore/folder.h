#pragma once

// IMAPIFolder.

#include "localstore/content_source.h"
#include "localstore/prop_object.h"
#include "localstore/store_tree.h"

namespace localstore {

/// The properties of a mail folder, of the top of the mail folders, or of the root that has this top as its
/// one sub-folder.
class FolderSource : public PropertySource {
  public:
    /// The root of a store.
    explicit FolderSource(std::shared_ptr<StoreTree> tree);
    /// A folder by its path. Its settings are read when something asks for them: nothing asks those folders
    /// that a read of changes opens, and some systems look through all of a folder to find that it has none.
    FolderSource(std::shared_ptr<StoreTree> tree, Text path);
    /// A folder as it stands in a hierarchy, at a depth below the folder whose table it is.
    FolderSource(std::shared_ptr<StoreTree> tree, FolderInfo folder, LONG depth);

    [[nodiscard]] std::optional<Property> Find(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyTag> Tags() const override;

    [[nodiscard]] bool IsRoot() const { return m_isRoot; }
    /// The path below the store; empty for the root too.
    [[nodiscard]] const Text& Path() const { return m_path; }
    [[nodiscard]] const std::shared_ptr<StoreTree>& Tree() const { return m_tree; }
    /// What the recorder calls the folder.
    [[nodiscard]] Text Label() const;
    [[nodiscard]] std::vector<FolderInfo> SubFolders() const;

  private:
    [[nodiscard]] const FolderInfo& Folder() const;
    [[nodiscard]] EntryId Id() const;
    [[nodiscard]] EntryId ParentId() const;
    [[nodiscard]] std::optional<Property> DefaultFolderId(PropertyId id) const;
    [[nodiscard]] std::optional<Property> StoreProperty(PropertyId id) const;

    std::shared_ptr<StoreTree> m_tree;
    Text m_path;
    /// Read once, so that an object goes on saying the same.
    mutable std::optional<FolderInfo> m_folder;
    bool m_isRoot;
    LONG m_depth = 0;
};

class Folder final : public PropObject<RefusingFolder> {
  public:
    explicit Folder(std::unique_ptr<const FolderSource> source);

    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP GetHierarchyTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenEntry(ULONG size, LPENTRYID id, LPCIID iid, ULONG flags, ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP CreateMessage(LPCIID iid, ULONG flags, LPMESSAGE* message) override;
    STDMETHODIMP DeleteMessages(LPENTRYLIST list, ULONG window, LPMAPIPROGRESS progress,
                                ULONG flags) override;

    [[nodiscard]] bool Supports(REFIID iid) const override;
    [[nodiscard]] CallSubject Subject() const override;

  protected:
    [[nodiscard]] const PropertySource& Source() const override { return *m_source; }
    [[nodiscard]] NamedProperties& Names() const override { return m_source->Tree()->Names(); }

  private:
    std::unique_ptr<const FolderSource> m_source;
};

/// The rows of a folder's messages. Damaged files are left out.
std::vector<std::shared_ptr<const PropertySource>> MessageRows(const std::shared_ptr<StoreTree>& tree,
                                                               const Text& folder, MessageSource::Role role);

/// How many rows a folder has: its messages without damaged files.
LONG CountMessages(StoreTree& tree, const Text& folder);

}  // namespace localstore
