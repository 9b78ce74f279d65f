#include "localstore/msg_content.h"

#include <algorithm>

#include "localstore/little_endian.h"

namespace localstore {

namespace {

inline constexpr wide kAttachmentPrefix[] = WIDE("__attach_version1.0_#");
inline constexpr wide kRecipientPrefix[] = WIDE("__recip_version1.0_#");

// The class of a message file (MS-OXMSG, section 2.2.3 of the compound file's root).
constexpr ClassId kMessageClass = {0x0B, 0x0D, 0x02, 0x00, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
// That of a storage which was given none.
constexpr ClassId kNoClass{};

constexpr std::uint32_t kHighestNumber = 0x3FFFFFFF;

// Offsets in the header of the top-level property stream.
constexpr std::size_t kNextRecipient = 8;
constexpr std::size_t kNextAttachment = 12;
constexpr std::size_t kRecipientCount = 16;
constexpr std::size_t kAttachmentCount = 20;

std::optional<std::uint32_t> NumberOf(const Text& digits) {
    if (digits.size() != 8) {
        return std::nullopt;
    }
    std::uint32_t number = 0;
    for (const wide digit : digits) {
        std::uint32_t value = 0;
        if (digit >= WIDE('0') && digit <= WIDE('9')) {
            value = static_cast<std::uint32_t>(digit - WIDE('0'));
        } else if (digit >= WIDE('A') && digit <= WIDE('F')) {
            value = static_cast<std::uint32_t>(digit - WIDE('A')) + 10;
        } else {
            return std::nullopt;
        }
        number = number << 4U | value;
    }
    return number;
}

/// Takes the parts whose storages begin with a prefix. One that cannot be read stays where it is, and so in
/// the file.
std::vector<PartContent> TakeParts(StorageTree& file, const Text& prefix) {
    std::vector<PartContent> parts;
    for (auto place = file.storages.lower_bound(prefix);
         place != file.storages.end() && place->first.starts_with(prefix) && parts.size() < kMostParts;) {
        const std::optional<std::uint32_t> number = NumberOf(place->first.substr(prefix.size()));
        std::optional<ObjectProperties> stream;
        if (number) {
            stream = TakePropertyStream(place->second, kAttachmentHeader);
        }
        if (!stream) {
            ++place;
            continue;
        }
        PartContent part;
        part.number = *number;
        part.header = std::move(stream->header);
        part.properties = std::move(stream->properties);
        part.rest = std::move(place->second);
        parts.push_back(std::move(part));
        place = file.storages.erase(place);
    }
    return parts;
}

void AddParts(StorageTree& file, const Text& prefix, const std::vector<PartContent>& parts) {
    for (const PartContent& part : parts) {
        StorageTree storage = part.rest;
        AddPropertyStream(storage, part.header, part.properties);
        file.storages[prefix + HexDigits(part.number)] = std::move(storage);
    }
}

void PutU32(Bytes& bytes, std::size_t offset, std::uint32_t value) {
    for (std::size_t i = 0; i < 4; ++i) {
        bytes[offset + i] = static_cast<std::uint8_t>(value >> (8 * i) & 0xFFU);
    }
}

std::uint32_t NextNumber(const std::vector<PartContent>& parts) {
    std::uint32_t next = 0;
    for (const PartContent& part : parts) {
        next = std::max(next, part.number == 0xFFFFFFFF ? part.number : part.number + 1);
    }
    return next;
}

PropertyId FirstUnusedId(const PropertyBag& bag, PropertyId lowest) {
    if (bag.IsEmpty()) {
        return lowest;
    }
    const PropertyId last = bag.All().back().Id();
    return last < lowest || last == 0xFFFF ? std::max(lowest, last) : static_cast<PropertyId>(last + 1);
}

}  // namespace

const PartContent* MessageContent::FindAttachment(std::uint32_t number) const {
    const auto same = [number](const PartContent& part) { return part.number == number; };
    const auto found = std::find_if(attachments.begin(), attachments.end(), same);
    return found == attachments.end() ? nullptr : &*found;
}

std::uint32_t MessageContent::NextAttachment() const {
    // A number that nobody can have reached is damage, and would leave none for new attachments.
    const std::uint32_t noted = ReadU32(header, kNextAttachment);
    return std::max(noted > kHighestNumber ? 0 : noted, NextNumber(attachments));
}

void MessageContent::NoteNextAttachment(std::uint32_t number) {
    PutU32(header, kNextAttachment, number);
}

std::optional<PropertyId> MessageContent::AddName(const PropertyName& name) {
    PropertyId lowest = FirstUnusedId(properties, kFirstNamedId);
    for (const PartContent& part : attachments) {
        lowest = FirstUnusedId(part.properties, lowest);
    }
    for (const PartContent& part : recipients) {
        lowest = FirstUnusedId(part.properties, lowest);
    }
    return names.Add(name, lowest);
}

std::optional<MessageContent> ReadMessage(StorageTree file, const char*& reason) {
    MessageContent message;
    std::optional<ObjectProperties> stream = TakePropertyStream(file, kTopLevelHeader);
    if (!stream) {
        reason = "it has no readable property stream";
        return std::nullopt;
    }
    message.header = std::move(stream->header);
    message.properties = std::move(stream->properties);
    if (!message.names.Take(file)) {
        reason = "it has more named properties than the format can number";
        return std::nullopt;
    }
    message.attachments = TakeParts(file, kAttachmentPrefix);
    message.recipients = TakeParts(file, kRecipientPrefix);
    message.rest = std::move(file);
    return message;
}

StorageTree WriteMessage(const MessageContent& message) {
    StorageTree file = message.rest;
    if (file.classId == kNoClass) {
        file.classId = kMessageClass;
    }
    Bytes header = message.header;
    PutU32(header, kNextRecipient, std::max(ReadU32(header, kNextRecipient), NextNumber(message.recipients)));
    PutU32(header, kNextAttachment, message.NextAttachment());
    PutU32(header, kRecipientCount, static_cast<std::uint32_t>(message.recipients.size()));
    PutU32(header, kAttachmentCount, static_cast<std::uint32_t>(message.attachments.size()));
    AddPropertyStream(file, header, message.properties);
    message.names.AddTo(file);
    AddParts(file, kAttachmentPrefix, message.attachments);
    AddParts(file, kRecipientPrefix, message.recipients);
    return file;
}

}  // namespace localstore
