#pragma once

// Structured storage files through the platform: bytes of a file to a storage tree and back. The platform
// works in memory here, which is several times faster than on a file and keeps a half-written file off the
// disk.

#include <optional>

#include "localstore/storage_tree.h"

namespace localstore {

/// Reads a file's bytes. On failure nothing comes back, and `reason` says in English what is wrong.
std::optional<StorageTree> ReadStorage(const Bytes& file, const char*& reason);

/// Makes the bytes of a file. Ends the operation with the platform's result code if that fails.
Bytes WriteStorage(const StorageTree& tree);

}  // namespace localstore
