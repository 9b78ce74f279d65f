#pragma once

// The property stream of the published .msg format (MS-OXMSG, sections 2.1 and 2.4) with the streams that its
// entries name: reading and writing side by side.

#include <optional>

#include "localstore/storage_tree.h"

namespace localstore {

/// The name of the property stream in every storage that holds an object.
inline constexpr wide kPropertyStreamName[] = WIDE("__properties_version1.0");

/// Bytes in front of the first entry, by the kind of object (MS-OXMSG, section 2.4.1).
constexpr std::size_t kTopLevelHeader = 32;
constexpr std::size_t kEmbeddedHeader = 24;
constexpr std::size_t kAttachmentHeader = 8;

/// More entries or values than this count as damage, so that a hostile count cannot ask for memory without
/// end.
constexpr std::size_t kMostEntries = 1'048'576;

struct ObjectProperties {
    /// The header's bytes, of the size asked for.
    Bytes header;
    PropertyBag properties;
};

/// Reads the property stream of a storage and the streams that belong to its entries. What was read is taken
/// out of the storage; all that stays behind is not understood and belongs back into the file. Nothing if
/// there is no property stream, if it is shorter than its header or if it has too many entries. An entry
/// without its stream is an empty text or binary if its size says so, and is left out otherwise.
std::optional<ObjectProperties> TakePropertyStream(StorageTree& storage, std::size_t headerSize);

/// Adds a property stream and the streams of its values to a storage.
void AddPropertyStream(StorageTree& storage, const Bytes& header, const PropertyBag& properties);

/// The name of the stream that holds the value of a tag, for example __substg1.0_0037001F.
Text ValueStreamName(PropertyTag tag);

/// The eight upper-case digits of a number, as names of streams and storages carry them.
Text HexDigits(std::uint32_t number);

}  // namespace localstore
