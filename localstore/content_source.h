#pragma once

// The properties of messages, attachments and recipients: what their file holds, with what the store knows
// better or adds.

#include <memory>

#include "localstore/message_cache.h"
#include "localstore/property_source.h"
#include "localstore/store_tree.h"

namespace localstore {

/// Properties of a bag in a file. Named ones have the file's identifiers there and the store's outside.
class ContentSource : public PropertySource {
  public:
    [[nodiscard]] std::optional<Property> Find(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyTag> Tags() const override;
    [[nodiscard]] UINT CodePage() const override;

    [[nodiscard]] StoreTree& Tree() const { return *m_tree; }
    [[nodiscard]] const std::shared_ptr<StoreTree>& SharedTree() const { return m_tree; }
    [[nodiscard]] const MessageContent& Content() const { return *m_content; }
    [[nodiscard]] const std::shared_ptr<const MessageContent>& SharedContent() const { return m_content; }

    /// The identifier in the file of a property; nothing if the name is not in the file.
    [[nodiscard]] std::optional<PropertyId> FileId(PropertyId id) const;

  protected:
    ContentSource(std::shared_ptr<StoreTree> tree, std::shared_ptr<const MessageContent> content)
        : m_tree(std::move(tree)), m_content(std::move(content)) {}

    void SetContent(std::shared_ptr<const MessageContent> content) { m_content = std::move(content); }

    [[nodiscard]] virtual const PropertyBag& Bag() const = 0;
    /// A property that the store gives whatever the file says.
    [[nodiscard]] virtual std::optional<Property> Computed(PropertyId id) const = 0;
    /// A property that the store gives if the file has none.
    [[nodiscard]] virtual std::optional<Property> Default(PropertyId id) const = 0;
    /// The identifiers of both kinds.
    [[nodiscard]] virtual std::vector<PropertyId> OwnIds() const = 0;

  private:
    std::shared_ptr<StoreTree> m_tree;
    std::shared_ptr<const MessageContent> m_content;
};

/// The code page of a message's 8-bit strings: PR_MESSAGE_CODEPAGE, else PR_INTERNET_CPID, else the system's.
UINT CodePageOf(const PropertyBag& message);

/// The folder of messages, which those of a table share: its path below the store with the digest.
struct MessageFolder {
    Text path;
    NameDigest digest{};
};
using SharedFolder = std::shared_ptr<const MessageFolder>;

/// A message in a folder, or one that was never saved.
class MessageSource : public ContentSource {
  public:
    /// Rows of tables have properties that messages do not have.
    enum class Role { Message, Row, RowWithLongTermId };

    /// `digest` is that of the file's name, if it is known.
    MessageSource(std::shared_ptr<StoreTree> tree, SharedFolder folder, LoadedMessage message, Role role,
                  std::optional<NameDigest> digest = std::nullopt);

    [[nodiscard]] const Text& Folder() const { return m_folder->path; }
    /// The file name; empty as long as a new message has none.
    [[nodiscard]] const Text& Name() const { return m_file.name; }
    [[nodiscard]] const FileStamp& Stamp() const { return m_file.stamp; }
    /// What the recorder calls the message.
    [[nodiscard]] Text Label() const;

    void SetContent(std::shared_ptr<const MessageContent> content) {
        ContentSource::SetContent(std::move(content));
    }
    void SetName(Text name) {
        m_file.name = std::move(name);
        m_digest.reset();
    }
    void SetStamp(const FileStamp& stamp) { m_file.stamp = stamp; }

  protected:
    [[nodiscard]] const PropertyBag& Bag() const override { return Content().properties; }
    [[nodiscard]] std::optional<Property> Computed(PropertyId id) const override;
    [[nodiscard]] std::optional<Property> Default(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyId> OwnIds() const override;

  private:
    [[nodiscard]] EntryId EntryIdOfMessage() const;

    SharedFolder m_folder;
    FileEntry m_file;
    Role m_role;
    std::optional<NameDigest> m_digest;
};

/// An attachment or recipient of a message.
class PartSource : public ContentSource {
  public:
    enum class Kind { Attachment, Recipient };

    PartSource(std::shared_ptr<StoreTree> tree, std::shared_ptr<const MessageContent> content,
               PartContent part, Kind kind);

    [[nodiscard]] const PartContent& Part() const { return m_part; }
    [[nodiscard]] PartContent& Part() { return m_part; }
    void SetContent(std::shared_ptr<const MessageContent> content) {
        ContentSource::SetContent(std::move(content));
    }

  protected:
    [[nodiscard]] const PropertyBag& Bag() const override { return m_part.properties; }
    [[nodiscard]] std::optional<Property> Computed(PropertyId id) const override;
    [[nodiscard]] std::optional<Property> Default(PropertyId id) const override;
    [[nodiscard]] std::vector<PropertyId> OwnIds() const override;

  private:
    PartContent m_part;
    Kind m_kind;
};

/// True for a property of a message or attachment that only the store can give.
bool IsComputedProperty(PropertyId id);

}  // namespace localstore
