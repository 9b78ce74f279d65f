#pragma once

// The content of a structured storage file in memory: what the platform's storages and streams hold, without
// them.

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>

#include "localstore/property.h"

namespace localstore {

using ClassId = std::array<std::uint8_t, 16>;

/// Storages inside one another: deeper ones make a file unreadable. Eight levels of embedded messages
/// need 24.
constexpr int kDeepestStorage = 64;

struct StorageTree {
    ClassId classId{};
    std::map<Text, SharedBytes> streams;
    std::map<Text, StorageTree> storages;

    /// Takes the stream of a name out of this storage. Nothing if there is none.
    std::optional<SharedBytes> TakeStream(const Text& name) {
        const auto found = streams.find(name);
        if (found == streams.end()) {
            return std::nullopt;
        }
        SharedBytes bytes = std::move(found->second);
        streams.erase(found);
        return bytes ? bytes : std::make_shared<const Bytes>();
    }

    void AddStream(const Text& name, Bytes bytes) {
        streams[name] = std::make_shared<const Bytes>(std::move(bytes));
    }

    friend bool operator==(const StorageTree& left, const StorageTree& right) {
        const auto sameStream = [](const auto& one, const auto& other) {
            return one.first == other.first && *one.second == *other.second;
        };
        return left.classId == right.classId && left.storages == right.storages &&
               std::equal(left.streams.begin(), left.streams.end(), right.streams.begin(),
                          right.streams.end(), sameStream);
    }
};

}  // namespace localstore
