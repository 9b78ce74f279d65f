#include "localstore/message_cache.h"

#include <algorithm>
#include <iterator>

#include "localstore/diagnostics.h"
#include "localstore/failure.h"

namespace localstore {

namespace {

constexpr std::uint64_t kLeastKeptBytes = 256ULL * 1024 * 1024;

std::shared_ptr<const MessageContent> Parse(const FileContent& file, const StorageCalls& calls,
                                            const char*& reason) {
    if (file.isTooLong) {
        reason = "it is longer than any message";
        return nullptr;
    }
    std::optional<StorageTree> tree = ReadStorage(file.bytes, reason, calls);
    if (!tree) {
        return nullptr;
    }
    std::optional<MessageContent> message = ReadMessage(std::move(*tree), reason);
    return message ? std::make_shared<const MessageContent>(std::move(*message)) : nullptr;
}

}  // namespace

std::uint64_t MessageCache::KeptBytes() noexcept {
    MEMORYSTATUSEX memory{};
    memory.dwLength = sizeof(memory);
    return GlobalMemoryStatusEx(&memory) == FALSE ? kLeastKeptBytes
                                                  : std::max(kLeastKeptBytes, memory.ullTotalPhys / 4);
}

MessageCache& MessageCache::Instance() {
    static MessageCache cache;
    return cache;
}

LoadedMessage MessageCache::Load(const Text& path, FileEntry listed) {
    const auto place = Find(path);
    if (place == m_entries.end() || place->stamp != listed.stamp) {
        return Read(path);
    }
    m_entries.splice(m_entries.begin(), m_entries, place);
    Require(place->content != nullptr, MAPI_E_CORRUPT_DATA);
    return {place->content, std::move(listed)};
}

MessageCache::Place MessageCache::Find(const Text& path) {
    auto place = m_next;
    if (place == m_entries.end() || place->path != path) {
        const auto found = m_places.find(path);
        place = found == m_places.end() ? m_entries.end() : found->second;
    }
    const bool hasNext = place != m_entries.end() && place != m_entries.begin();
    m_next = hasNext ? std::prev(place) : m_entries.end();
    return place;
}

void MessageCache::Erase(Place place) noexcept {
    if (m_next == place) {
        m_next = m_entries.end();
    }
    m_bytes -= place->Weight();
    m_places.erase(place->path);
    m_entries.erase(place);
}

LoadedMessage MessageCache::Load(const Text& path) {
    std::optional<FileEntry> file = QueryFile(path);
    Require(file.has_value() && !file->isFolder, MAPI_E_NOT_FOUND);
    return Load(path, std::move(*file));
}

LoadedMessage MessageCache::Read(const Text& path) {
    Forget(path);
    const FileContent file = ReadWholeFile(path);
    ++m_filesRead;
    const char* reason = "";
    std::shared_ptr<const MessageContent> content = Parse(file, m_calls, reason);
    if (!content) {
        ReportSkipped(path, reason);
    }
    // Whatever memory may be short for comes first, so that list and places always agree.
    std::list<Entry> entry;
    entry.push_front({path, file.stamp, file.creationTime, content});
    m_places.emplace(entry.front().path, entry.begin());
    m_entries.splice(m_entries.begin(), entry);
    m_bytes += m_entries.front().Weight();
    Trim();
    Require(content != nullptr, MAPI_E_CORRUPT_DATA);
    return {content, {LastComponent(path), false, file.stamp, file.creationTime}};
}

void MessageCache::Trim() {
    // Folders are read from end to end, again and again. What was used last is what such a reader needs last.
    // Were the least recently used to go, it would find nothing of a folder for which there is no room.
    while (m_bytes > m_mostBytes && m_entries.size() > 1) {
        Erase(std::next(m_entries.begin()));
    }
}

void MessageCache::Forget(const Text& path) noexcept {
    const auto found = m_places.find(path);
    if (found != m_places.end()) {
        Erase(found->second);
    }
}

void MessageCache::Clear() {
    m_places.clear();
    m_entries.clear();
    m_next = m_entries.end();
    m_bytes = 0;
}

}  // namespace localstore
