#include "localstore/msg_names.h"

#include <algorithm>
#include <new>

#include "localstore/little_endian.h"
#include "localstore/msg_properties.h"

namespace localstore {

namespace {

constexpr PropertyTag kSetStream = 0x00020102;
constexpr PropertyTag kEntryStream = 0x00030102;
constexpr PropertyTag kTextStream = 0x00040102;
constexpr PropertyId kFirstLookupStream = 0x1000;
constexpr std::uint32_t kLookupStreams = 0x1F;

constexpr std::size_t kEntrySize = 8;
constexpr std::size_t kGuidSize = 16;
constexpr std::uint16_t kFirstOwnSet = 3;
constexpr std::uint64_t kWithoutSet = 0xFFFF0000FFFFFFFF;
constexpr std::size_t kMostNames = 0x10000 - kFirstNamedId;

Bytes StreamOf(const StorageTree& storage, PropertyTag tag) {
    const auto found = storage.streams.find(ValueStreamName(tag));
    return found == storage.streams.end() ? Bytes() : *found->second;
}

std::vector<GuidBytes> ReadSets(const Bytes& stream) {
    std::vector<GuidBytes> sets(stream.size() / kGuidSize);
    for (std::size_t i = 0; i < sets.size(); ++i) {
        std::copy_n(stream.begin() + static_cast<std::ptrdiff_t>(i * kGuidSize), kGuidSize, sets[i].begin());
    }
    return sets;
}

/// A text in the stream of texts: four bytes of length in front of it.
std::optional<Text> ReadText(const Bytes& stream, std::uint32_t offset) {
    if (stream.size() < 4 || offset > stream.size() - 4) {
        return std::nullopt;
    }
    const std::uint32_t length = ReadU32(stream, offset);
    const std::size_t begin = offset + 4U;
    if (length > stream.size() - begin || length % 2 != 0) {
        return std::nullopt;
    }
    const auto first = stream.begin() + static_cast<std::ptrdiff_t>(begin);
    return TextOfBytes(Bytes(first, first + static_cast<std::ptrdiff_t>(length)));
}

std::optional<PropertyName> ReadName(std::uint64_t raw, const std::vector<GuidBytes>& sets,
                                     const Bytes& texts) {
    const auto value = static_cast<std::uint32_t>(raw & 0xFFFFFFFFU);
    const auto kindAndSet = static_cast<std::uint16_t>(raw >> 32U & 0xFFFFU);
    const auto set = static_cast<std::uint16_t>(kindAndSet >> 1U);
    PropertyName name;
    if (set == 1) {
        name.set = kPropertySetMapi;
    } else if (set == 2) {
        name.set = kPropertySetPublicStrings;
    } else if (set >= kFirstOwnSet && static_cast<std::size_t>(set - kFirstOwnSet) < sets.size()) {
        name.set = sets[static_cast<std::size_t>(set - kFirstOwnSet)];
    } else {
        return std::nullopt;
    }
    name.isText = (kindAndSet & 1U) != 0;
    if (!name.isText) {
        name.number = value;
        return name;
    }
    std::optional<Text> text = ReadText(texts, value);
    if (!text) {
        return std::nullopt;
    }
    name.text = std::move(*text);
    return name;
}

/// The checksum that stands for a text in the look-up streams (MS-OXRTFCP, section 2.1.3.2: no inversion).
std::uint32_t Checksum(const Bytes& bytes) {
    std::uint32_t crc = 0;
    for (const std::uint8_t byte : bytes) {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit) {
            crc = (crc & 1U) != 0 ? crc >> 1U ^ 0xEDB88320U : crc >> 1U;
        }
    }
    return crc;
}

}  // namespace

const GuidBytes kPropertySetMapi = {0x28, 0x03, 0x02, 0x00, 0, 0, 0, 0, 0xC0, 0, 0, 0, 0, 0, 0, 0x46};
const GuidBytes kPropertySetPublicStrings = {0x29, 0x03, 0x02, 0x00, 0, 0, 0, 0,
                                             0xC0, 0,    0,    0,    0, 0, 0, 0x46};

std::size_t PropertyNameHash::operator()(const PropertyName& name) const {
    const std::size_t value = name.isText ? std::hash<Text>()(name.text) : name.number;
    std::size_t set = 0;
    for (const std::uint8_t byte : name.set) {
        set = set * 31 + byte;
    }
    return value * 1'000'003 + set * 2 + (name.isText ? 1 : 0);
}

bool NameMap::Take(StorageTree& top) {
    const auto found = top.storages.find(kNamesStorageName);
    if (found == top.storages.end()) {
        return true;
    }
    const Bytes entries = StreamOf(found->second, kEntryStream);
    const Bytes texts = StreamOf(found->second, kTextStream);
    const std::size_t count = entries.size() / kEntrySize;
    if (count > kMostNames) {
        return false;
    }
    m_sets = ReadSets(StreamOf(found->second, kSetStream));
    for (std::size_t i = 0; i < count; ++i) {
        Entry entry;
        entry.raw = ReadNumber(entries, i * kEntrySize, kEntrySize);
        const auto index = static_cast<std::uint16_t>(entry.raw >> 48U);
        if (index < kMostNames) {
            entry.id = static_cast<PropertyId>(kFirstNamedId + index);
            entry.name = ReadName(entry.raw, m_sets, texts);
        }
        Index(entry);
        m_entries.push_back(std::move(entry));
    }
    m_original = std::move(found->second);
    top.storages.erase(found);
    return true;
}

void NameMap::Index(const Entry& entry) {
    if (entry.name && m_nameOfId.emplace(entry.id, *entry.name).second) {
        m_idOfName.emplace(*entry.name, entry.id);
    }
}

const PropertyName* NameMap::NameOf(PropertyId id) const {
    const auto found = m_nameOfId.find(id);
    return found == m_nameOfId.end() ? nullptr : &found->second;
}

std::optional<PropertyId> NameMap::IdOfName(const PropertyName& name) const {
    const auto found = m_idOfName.find(name);
    return found == m_idOfName.end() ? std::nullopt : std::optional(found->second);
}

std::optional<PropertyId> NameMap::Add(const PropertyName& name, PropertyId lowest) {
    if (const std::optional<PropertyId> known = IdOfName(name)) {
        return known;
    }
    std::uint32_t next = std::max<std::uint32_t>(lowest, kFirstNamedId);
    for (const Entry& entry : m_entries) {
        next = std::max(next, static_cast<std::uint32_t>(entry.id) + 1);
    }
    next = std::max(next, static_cast<std::uint32_t>(kFirstNamedId + m_entries.size()));
    // 0xFFFF is no identifier of a property.
    if (next >= 0xFFFF) {
        return std::nullopt;
    }
    Entry entry;
    entry.id = static_cast<PropertyId>(next);
    entry.name = name;
    m_entries.push_back(std::move(entry));
    try {
        Index(m_entries.back());
    } catch (const std::bad_alloc&) {
        // A number without its entry would be written into properties, and no reader could tell its name.
        m_nameOfId.erase(m_entries.back().id);
        m_entries.pop_back();
        throw;
    }
    m_original.reset();
    return static_cast<PropertyId>(next);
}

void NameMap::AddTo(StorageTree& top) const {
    top.storages[kNamesStorageName] = m_original ? *m_original : Build();
}

StorageTree NameMap::Build() const {
    Bytes entries;
    Bytes texts;
    std::vector<GuidBytes> sets = m_sets;
    std::array<Bytes, kLookupStreams> lookup;
    for (const Entry& entry : m_entries) {
        if (!entry.name) {
            // Its set must stay one that does not exist: with a name added, the old one might come to mean
            // something.
            AppendNumber(entries, entry.raw & kWithoutSet, kEntrySize);
            continue;
        }
        const PropertyName& name = *entry.name;
        std::size_t set = name.set == kPropertySetMapi ? 1 : 2;
        if (set == 2 && name.set != kPropertySetPublicStrings) {
            const auto place = std::find(sets.begin(), sets.end(), name.set);
            set = kFirstOwnSet + static_cast<std::size_t>(place - sets.begin());
            if (place == sets.end()) {
                sets.push_back(name.set);
            }
        }
        const Bytes text = BytesOfText(name.text);
        const std::uint64_t tail = static_cast<std::uint64_t>(entry.id - kFirstNamedId) << 48U |
                                   static_cast<std::uint64_t>(set << 1U | (name.isText ? 1U : 0U)) << 32U;
        AppendNumber(entries, tail | (name.isText ? texts.size() : name.number), kEntrySize);
        const std::uint32_t key = name.isText ? Checksum(text) : name.number;
        const auto kindAndSet = static_cast<std::uint32_t>(tail >> 32U & 0xFFFFU);
        AppendNumber(lookup[(key ^ kindAndSet) % kLookupStreams], tail | key, kEntrySize);
        if (name.isText) {
            AppendU32(texts, static_cast<std::uint32_t>(text.size()));
            texts.insert(texts.end(), text.begin(), text.end());
            texts.resize((texts.size() + 3) / 4 * 4);
        }
    }

    StorageTree storage;
    Bytes setBytes;
    for (const GuidBytes& set : sets) {
        setBytes.insert(setBytes.end(), set.begin(), set.end());
    }
    storage.AddStream(ValueStreamName(kSetStream), std::move(setBytes));
    storage.AddStream(ValueStreamName(kEntryStream), std::move(entries));
    storage.AddStream(ValueStreamName(kTextStream), std::move(texts));
    for (std::uint32_t i = 0; i < kLookupStreams; ++i) {
        if (!lookup[i].empty()) {
            const auto id = static_cast<PropertyId>(kFirstLookupStream + i);
            storage.AddStream(ValueStreamName(MakeTag(id, kTypeBinary)), std::move(lookup[i]));
        }
    }
    return storage;
}

}  // namespace localstore
