#pragma once

// A message as a value: what a .msg file holds, read from and written to a storage tree (MS-OXMSG,
// section 2.2).

#include <optional>
#include <vector>

#include "localstore/msg_names.h"
#include "localstore/msg_properties.h"
#include "localstore/storage_tree.h"

namespace localstore {

/// An attachment or a recipient of a message.
struct PartContent {
    /// The number in the name of its storage.
    std::uint32_t number = 0;
    Bytes header;
    PropertyBag properties;
    /// What is not understood or not looked into: an embedded message, streams of unknown types.
    StorageTree rest;
};

struct MessageContent {
    Bytes header = Bytes(kTopLevelHeader);
    PropertyBag properties;
    NameMap names;
    std::vector<PartContent> attachments;
    std::vector<PartContent> recipients;
    StorageTree rest;

    /// The attachment of a number, or null.
    [[nodiscard]] const PartContent* FindAttachment(std::uint32_t number) const;
    /// The number that a new attachment gets.
    [[nodiscard]] std::uint32_t NextAttachment() const;
    /// Notes in the file that all numbers below this one were given out.
    void NoteNextAttachment(std::uint32_t number);
    /// The identifier in this file of a name, given to it now if need be; nothing when all are used up.
    std::optional<PropertyId> AddName(const PropertyName& name);
};

/// Attachments or recipients of one message (MS-OXMSG, sections 2.2.1 and 2.2.2).
constexpr std::size_t kMostParts = 2048;

/// Makes a message of what a file holds. On failure nothing comes back, and `reason` says in English what is
/// wrong.
std::optional<MessageContent> ReadMessage(StorageTree file, const char*& reason);

/// Makes the content of a file of a message.
StorageTree WriteMessage(const MessageContent& message);

}  // namespace localstore
