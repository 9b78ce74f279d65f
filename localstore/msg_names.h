#pragma once

// The named property mapping of the published .msg format (MS-OXMSG, section 2.2.3): which name an identifier
// of 0x8000 and up stands for inside one file.

#include <array>
#include <optional>
#include <unordered_map>
#include <vector>

#include "localstore/storage_tree.h"

namespace localstore {

using GuidBytes = std::array<std::uint8_t, 16>;

/// The storage of the mapping at the top of a file.
inline constexpr wide kNamesStorageName[] = WIDE("__nameid_version1.0");

/// PS_MAPI and PS_PUBLIC_STRINGS, the two sets that the format knows by number.
extern const GuidBytes kPropertySetMapi;
extern const GuidBytes kPropertySetPublicStrings;

/// The name of a property: a set, and a number or a text in it.
struct PropertyName {
    GuidBytes set{};
    bool isText = false;
    std::uint32_t number = 0;
    Text text;

    friend bool operator==(const PropertyName&, const PropertyName&) = default;
};

struct PropertyNameHash {
    std::size_t operator()(const PropertyName& name) const;
};

/// The mapping of one file. Names are only ever added: the identifiers of a file, which its attachments and
/// embedded messages use too, stay what they are.
class NameMap {
  public:
    /// Takes the mapping out of the top storage of a file. A file without one has an empty mapping. An entry
    /// that cannot be read keeps its place and gives no name. Returns false if the mapping has more entries
    /// than the format can number.
    bool Take(StorageTree& top);

    /// Adds the mapping to the top storage of a file: the storage that was read if nothing was added since.
    void AddTo(StorageTree& top) const;

    /// The name of an identifier, or null.
    [[nodiscard]] const PropertyName* NameOf(PropertyId id) const;
    /// The identifier of a name.
    [[nodiscard]] std::optional<PropertyId> IdOfName(const PropertyName& name) const;
    /// The identifier of a name, given to it now if need be. No identifier below `lowest` is given out, as
    /// the file may use some without a name. Nothing when all are used up.
    std::optional<PropertyId> Add(const PropertyName& name, PropertyId lowest);

  private:
    struct Entry {
        /// The 8 bytes as they were read, for an entry that cannot be read.
        std::uint64_t raw = 0;
        PropertyId id = 0;
        std::optional<PropertyName> name;
    };

    void Index(const Entry& entry);
    [[nodiscard]] StorageTree Build() const;

    std::vector<Entry> m_entries;
    std::unordered_map<PropertyId, PropertyName> m_nameOfId;
    std::unordered_map<PropertyName, PropertyId, PropertyNameHash> m_idOfName;
    /// The property sets behind the two known ones, in the order of the file.
    std::vector<GuidBytes> m_sets;
    /// What the file had; empty once a name was added.
    std::optional<StorageTree> m_original;
};

}  // namespace localstore
