#pragma once

// Structured storage files through the platform: bytes of a file to a storage tree and back. The platform
// works in memory here, which is several times faster than on a file and keeps a half-written file off the
// disk.

#include <windows.h>

#include <objbase.h>

#include <optional>

#include "localstore/storage_tree.h"

namespace localstore {

/// The platform functions that a test makes fail.
struct StorageCalls {
    decltype(&::CreateILockBytesOnHGlobal) createMemory = &::CreateILockBytesOnHGlobal;
    decltype(&::StgOpenStorageOnILockBytes) open = &::StgOpenStorageOnILockBytes;
};

/// Reads a file's bytes. From a damaged file nothing comes back, and `reason` says in English what is wrong.
/// A shortage of memory says nothing about the file and ends the operation with MAPI_E_NOT_ENOUGH_MEMORY.
std::optional<StorageTree> ReadStorage(const Bytes& file, const char*& reason,
                                       const StorageCalls& calls = {});

/// Makes the bytes of a file, which are known to hold the whole tree. Ends the operation with
/// MAPI_E_NOT_ENOUGH_MEMORY if memory is short, else with the platform's result code if that fails.
Bytes WriteStorage(const StorageTree& tree, const StorageCalls& calls = {});

}  // namespace localstore
